// The viewer: one window with a display, and a list of image files to step through.
#pragma once

#include "apps/common/image_file.h"
#include "apps/krsview/options.h"
#include "backend/win32/win32_display.h"

#include <filesystem>
#include <iosfwd>
#include <memory>

class ccViewer {
public:
  // The platform must have been started.
  ccViewer(ccViewOptions const&, std::ostream& errors);
  ~ccViewer();

  // Puts files and the image files of folders on the list, and shows the first good one.
  void open(std::vector<std::string> const& names);
  bool step(long by);         // shows the next good image in that direction; false if there is none
  void checkTheRest();        // reads what has not been read yet, so that every bad file is told of
  bool anyFailed() const { return anyFailed_; }
  bool showsImage() const { return current_ != nullptr; }
  std::string info() const;   // JSON
  std::string writeShot(std::string const& file) const;  // error text, empty if all is well
  ccWin32Display& display() { return *display_; }
  HWND window() const { return top_; }

private:
  struct cs_Entry {
    std::filesystem::path path;
    enum State { unread, good, bad } state = unread;
  };

  bool show_(std::size_t index);
  void fail_(std::string const& line);
  void applyView_();

  ccViewOptions options_;
  std::ostream& errors_;
  HWND top_ = nullptr;
  HWND view_ = nullptr;  // the window of the display; a kid of the top window when scroll bars stand beside it
  std::unique_ptr<ccWin32Display> display_;
  std::vector<cs_Entry> entries_;
  std::size_t index_ = 0;
  std::unique_ptr<ccImageFile> current_;
  bool anyFailed_ = false;
};
