// Draw files: JSON texts that say what to draw over an image: figures, text, icons, pels and fills, each in image, client or
// display coordinates, on the overlay or on the image.
#pragma once

#include "canvas/sketch.h"
#include "foundation/xform.h"
#include "platform/handles.h"
#include "platform/paint.h"
#include "ui/display/display.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class ccWin32Display;

// What a draw file says, or why it cannot be used. A file is taken whole or not at all.
class ccDrawing {
public:
  // Where it will be seen. Entries for the overlay go to the image layer where there is no overlay.
  struct cs_Target {
    ccDisplay::DisplayFormat format = ccDisplay::format32;
    bool overlay = true;
    long firstFont = 0;  // the font table's index of fonts()[0]
  };
  using Command = std::function<void(ccUITablet&, cs_Target const&)>;  // records one entry

  explicit operator bool() const { return error.empty(); }
  std::vector<plat::FontDesc> const& fonts() const { return fonts_; }
  std::optional<ccXform<2>> const& clientFromImage() const { return clientFromImage_; }
  bool usesOverlay() const { return usesOverlay_; }
  std::size_t size() const { return entries_.size(); }
  std::string const& kind(std::size_t i) const { return entries_[i].kind; }
  // Those of one coordinate system, in the order of the file.
  ccUISketch sketch(ccDisplay::CoordinateSystem, cs_Target const&) const;
  ccUISketch sketch(std::size_t entry, cs_Target const&) const;

  std::string error;  // one line that begins with the file's name

private:
  friend class cc_DrawReader;
  struct cs_Entry {
    std::string kind;
    ccDisplay::CoordinateSystem coords;
    Command command;
  };

  std::vector<cs_Entry> entries_;
  std::vector<plat::FontDesc> fonts_;
  std::optional<ccXform<2>> clientFromImage_;
  bool usesOverlay_ = false;
};

// What a file may hold at most.
inline constexpr std::size_t cfMostDrawEntries = 65536;  // those inside sketches counted
inline constexpr std::size_t cfMostDrawFonts = 256;      // different ones

ccDrawing cfReadDrawFile(std::filesystem::path const&);
ccDrawing cfReadDrawing(std::string_view json, std::string const& name);
std::vector<std::string> cfDrawKinds();

// Adds its fonts to those of the display, and its sketches to what the display's three frames keep. The result are the fonts
// that were made; the caller deletes them once the display is gone.
std::vector<HFONT> cfShowDrawing(ccWin32Display&, ccDrawing const&);
