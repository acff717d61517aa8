// The gallery: pages that show all that the library can draw. Each page is a function that uses the library as an
// application would, so it serves as example code.
#pragma once

#include "apps/krsview/gallery_kit.h"

#include <memory>
#include <string>
#include <vector>

class ccGallery {
public:
  explicit ccGallery(ccWin32Display&);  // shows the first page
  ~ccGallery();                         // before the display goes
  ccGallery(ccGallery const&) = delete;
  ccGallery& operator=(ccGallery const&) = delete;

  long size() const;
  long page() const { return page_; }
  bool show(long page);  // false if there is none, or it is shown already
  bool show(std::string const& name);
  std::string name(long page) const;
  std::string name() const { return name(page_); }
  std::string title() const;

private:
  ccWin32Display& display_;
  cc_GalleryFonts fonts_;
  std::unique_ptr<ccGalleryStage> stage_;
  long page_ = -1;
};
