// The viewer: one window with a display, and a list of image files to step through.
#pragma once

#include "apps/common/image_file.h"
#include "apps/krsview/draw_file.h"
#include "apps/krsview/gallery.h"
#include "apps/krsview/options.h"
#include "backend/win32/win32_display.h"
#include "platform/types.h"

#include <filesystem>
#include <iosfwd>
#include <memory>

class ccViewer {
public:
  // The platform must have been started.
  ccViewer(ccViewOptions const&, std::ostream& errors);
  ~ccViewer();

  // Keeps drawings over whatever image is shown.
  void draw(std::vector<ccDrawing> const&);
  ccGallery* gallery() { return gallery_.get(); }  // null unless the options ask for it
  bool showPage(std::string const& name);  // of the gallery; false if it has none of that name
  // Puts files and the image files of folders on the list, and shows the first good one.
  void open(std::vector<std::string> const& names);
  bool step(long by);         // shows the next good image in that direction; false if there is none
  void checkTheRest();        // reads what has not been read yet, so that every bad file is told of
  bool anyFailed() const { return anyFailed_; }
  bool showsImage() const { return current_ != nullptr || gallery_ != nullptr; }
  std::string info() const;   // JSON
  std::string writeShot(std::string const& file) const;  // error text, empty if all is well
  ccWin32Display& display() { return *display_; }
  HWND window() const { return top_; }      // its client area is what a shot shows
  HWND view() const { return view_; }       // the window of the display
  void resize(long width, long height);     // of the top window's client area

  // What the keys do. Zooming steps through whole factors and keeps the image point under a client point in its place.
  void zoom(int steps, ccPair<long> const& at);
  void panBy(int columns, int rows);        // in tenths of the view

private:
  struct cs_Entry {
    std::filesystem::path path;
    enum State { unread, good, bad } state = unread;
  };

  void list_(std::vector<std::string> const& names);
  void drop_(std::vector<std::string> const& names);
  bool show_(std::size_t index);
  bool turnPage_(long by);
  void fail_(std::string const& line);
  ccImageTrust trust_() const { return options_.large ? ccImageTrust::large : ccImageTrust::bounded; }
  bool key_(unsigned virtualKey);
  bool character_(unsigned c);
  static plat::LResult proc_(HWND, unsigned message, plat::WParam, plat::LParam);
  plat::LResult message_(HWND, unsigned message, plat::WParam, plat::LParam);
  void applyView_();

  ccViewOptions options_;
  std::ostream& errors_;
  HWND top_ = nullptr;
  HWND view_ = nullptr;  // the window of the display; a kid of the top window when scroll bars stand beside it
  std::unique_ptr<ccWin32Display> display_;
  std::vector<cs_Entry> entries_;
  std::size_t index_ = 0;
  std::unique_ptr<ccImageFile> current_;
  ccXform<2> clientFromImage_;
  std::vector<HFONT> fonts_;
  std::unique_ptr<ccGallery> gallery_;
  bool anyFailed_ = false;
};
