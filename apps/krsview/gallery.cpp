#include "apps/krsview/gallery.h"

#include "apps/krsview/gallery_pages.h"
#include "backend/win32/win32_display.h"

#include <iterator>

namespace {

struct cs_Page {
  char const* name;
  char const* title;
  void (*draw)(ccGalleryStage&);
};

constexpr cs_Page kPages[] = {
    {"pens", "Lines and pens", cf_pagePens},
    {"polygons", "Polylines, polygons and fill rules", cf_pagePolygons},
    {"rectangles", "Rectangles", cf_pageRectangles},
    {"ellipses", "Circles, ellipses and arcs", cf_pageEllipses},
    {"rings", "Rings and sections of rings", cf_pageRings},
    {"curves", "Curves and splines", cf_pageCurves},
    {"outlines", "Polygons with arcs and roundings, wireframes, trees", cf_pageOutlines},
    {"points", "Points, axes, icons, pels and fills", cf_pagePoints},
    {"text", "Text", cf_pageText},
    {"sketches", "Sketches", cf_pageSketches},
    {"coordinates", "Three coordinate systems at eightfold zoom", cf_pageCoordinates},
    {"layers", "Overlay over image", cf_pageLayers},
    {"maps", "Maps: rotation, shear, mirror, reduction", cf_pageMaps},
    {"colours", "Colours", cf_pageColours},
};

}  // namespace

ccGallery::ccGallery(ccWin32Display& display) : display_(display), fonts_(display) { show(0); }

ccGallery::~ccGallery() = default;

long ccGallery::size() const { return static_cast<long>(std::size(kPages)); }

std::string ccGallery::name(long page) const { return kPages[page].name; }

std::string ccGallery::title() const { return kPages[page_].title; }

bool ccGallery::show(long page)
{
  if (page < 0 || page >= size() || page == page_)
    return false;
  display_.lockScreenUpdatesPush(true, ccUITablet::bothLayers);
  stage_.reset();  // takes what the former page has drawn away
  stage_ = std::make_unique<ccGalleryStage>(display_, fonts_);
  page_ = page;
  stage_->title(std::to_string(page + 1) + "/" + std::to_string(size()) + "  " + title());
  kPages[page].draw(*stage_);
  stage_->show();
  display_.lockScreenUpdatesPop(ccUITablet::bothLayers);
  return true;
}

bool ccGallery::show(std::string const& name)
{
  for (long i = 0; i < size(); ++i)
    if (name == kPages[i].name)
      return i == page_ || show(i);
  return false;
}
