// What the pages of the gallery draw with.
#pragma once

#include "canvas/format.h"
#include "canvas/tablet.h"
#include "platform/handles.h"
#include "ui/display/display.h"

#include <memory>
#include <string>
#include <vector>

class ccUINestedCoordFrame;
class ccWin32Display;

// The fonts of all pages, as entries of the display's font table.
class cc_GalleryFonts {
public:
  enum Font { title, heading, smooth, plain24, smooth24, bold, italic, boldItalic, fixedPitch, count };

  explicit cc_GalleryFonts(ccWin32Display&);
  ~cc_GalleryFonts();
  long id(Font f) const { return first_ + f; }

private:
  std::vector<HFONT> fonts_;
  long first_ = 0;
};

// One page: a sheet of 640 by 480 pels, which is the display's image, and three tablets that record what will be drawn in
// each coordinate system. The page goes with the stage.
class ccGalleryStage {
public:
  static constexpr long width = 640, height = 480;

  ccGalleryStage(ccWin32Display&, cc_GalleryFonts const&);
  ~ccGalleryStage();
  ccGalleryStage(ccGalleryStage const&) = delete;
  ccGalleryStage& operator=(ccGalleryStage const&) = delete;

  ccWin32Display& display() { return display_; }
  ccUITablet& tablet(ccDisplay::CoordinateSystem cs = ccDisplay::imageCoords) { return tablets_[cs]; }
  ccUITablet::Layers layer() const;  // the overlay, or the image where there is no overlay
  long font(cc_GalleryFonts::Font f) const { return fonts_.id(f); }

  // The image that is drawn over: an empty sheet unless a page says otherwise.
  void image(ccPelBuffer<unsigned char> const&);
  static ccPelBuffer<unsigned char> sheet(unsigned char grey = 228);
  static ccPelBuffer<unsigned char> part(long w, long h);  // a machined part as a camera would see it

  void title(std::string const&);  // stands still whatever the zoom
  void text(std::string const&, ccPoint const& at, ccUIFormat::Alignment = ccUIFormat::topLeft,
            ccColor const& = ccColor::blackColor(), long font = -1);
  void heading(std::string const&, ccPoint const& at);

  // Divides the sheet below the title into cells. Each call of next gives the middle of the next cell, and writes its caption.
  void cells(long columns, long rows);
  ccPoint next(std::string const& caption);

  // A frame of its own over the image, with its own map to the display's pels.
  ccUINestedCoordFrame& frame(ccXform<2> const&);

  void show();  // draws what was recorded

private:
  ccWin32Display& display_;
  cc_GalleryFonts const& fonts_;
  ccUITablet tablets_[3];
  std::vector<std::unique_ptr<ccUINestedCoordFrame>> frames_;
  ccPelBuffer<unsigned char> image_;
  long columns_ = 1, rows_ = 1, cell_ = 0;
};
