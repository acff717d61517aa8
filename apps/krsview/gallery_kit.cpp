#include "apps/krsview/gallery_kit.h"

#include "backend/win32/win32_display.h"
#include "platform/objects.h"
#include "platform/window.h"
#include "ui/core/nested_coord_frame.h"

#include <cmath>

namespace {

constexpr long kTitleY = 8, kTop = 40, kMargin = 16, kCaption = 18;

}  // namespace

cc_GalleryFonts::cc_GalleryFonts(ccWin32Display& display)
{
  plat::FontDesc const wanted[count] = {
      {"", 18, true, false, false, false},  {"", 13, true, false, false, false},  {"", 13, false, false, false, true},
      {"", 24, false, false, false, false}, {"", 24, false, false, false, true}, {"", 16, true, false, false, false},
      {"", 16, false, true, false, false}, {"", 16, true, true, false, false},   {"", 16, false, false, true, false},
  };
  std::vector<HFONT> table = display.fontTable();
  first_ = static_cast<long>(table.size());
  for (plat::FontDesc const& font : wanted)
    fonts_.push_back(plat::platform().objects.createFont(font));
  table.insert(table.end(), fonts_.begin(), fonts_.end());
  display.fontTable(table);
}

cc_GalleryFonts::~cc_GalleryFonts()
{
  for (HFONT font : fonts_)
    plat::platform().objects.deleteFont(font);
}

ccGalleryStage::ccGalleryStage(ccWin32Display& display, cc_GalleryFonts const& fonts) : display_(display), fonts_(fonts)
{
  image(sheet());
}

ccGalleryStage::~ccGalleryStage()
{
  frames_.clear();
  for (auto const cs : {ccDisplay::displayCoords, ccDisplay::imageCoords, ccDisplay::clientCoords})
    display_.eraseSketch(cs);
}

ccUITablet::Layers ccGalleryStage::layer() const
{
  return display_.enableOverlay() == ccDisplay::overlayOn ? ccUITablet::overlayLayer : ccUITablet::imageLayer;
}

void ccGalleryStage::image(ccPelBuffer<unsigned char> const& pels)
{
  image_ = pels;
  // At depth 8 pels stay in the grey ramp of the palette.
  display_.image(image_, /*mapPels=*/display_.displayFormat() != ccDisplay::format8);
  display_.mag(1);
  display_.pan(ccVector<2>(0, 0));
}

ccPelBuffer<unsigned char> ccGalleryStage::sheet(unsigned char grey)
{
  ccPelBuffer<unsigned char> out(width, height);
  for (long y = 0; y < height; ++y)
    for (long x = 0; x < width; ++x)
      out.setPel(x, y, grey);
  return out;
}

// A bright plate with a dark bore in its middle and four holes around it, before a dark ground.
ccPelBuffer<unsigned char> ccGalleryStage::part(long w, long h)
{
  ccPelBuffer<unsigned char> out(w, h);
  double const cx = static_cast<double>(w) / 2, cy = static_cast<double>(h) / 2, size = std::min(cx, cy);
  for (long y = 0; y < h; ++y)
    for (long x = 0; x < w; ++x) {
      double const dx = (static_cast<double>(x) - cx) / size, dy = (static_cast<double>(y) - cy) / size;
      double const r = std::hypot(dx, dy);
      double const hole = std::hypot(std::abs(dx) - 0.45, std::abs(dy) - 0.45);
      bool const metal = r < 0.84 && r > 0.25 && hole > 0.12;
      out.setPel(x, y, static_cast<unsigned char>(metal ? 200 - 30 * r : r < 0.84 ? 40 : 60));
    }
  return out;
}

void ccGalleryStage::title(std::string const& text)
{
  ccUIFormat format;
  format.fontId(font(cc_GalleryFonts::title));
  // The frame of display coordinates lies before the others, so what zooms slides below the title.
  ccUITablet& shown = tablet(ccDisplay::displayCoords);
  shown.set(ccUIRect(0, 0, 4096, kTop - 8), ccColor(40, 60, 90), layer());
  shown.draw(text, ccPoint(kMargin, kTitleY - 2), ccColor::whiteColor(), ccColor::passColor(), format, layer());
}

void ccGalleryStage::text(std::string const& text, ccPoint const& at, ccUIFormat::Alignment alignment, ccColor const& color,
                          long font)
{
  ccUIFormat format(alignment);
  format.fontId(font);
  tablet().draw(text, at, color, ccColor::passColor(), format, layer());
}

void ccGalleryStage::heading(std::string const& text, ccPoint const& at)
{
  ccUIFormat format;
  format.fontId(font(cc_GalleryFonts::heading));
  tablet().draw(text, at, ccColor::blackColor(), ccColor::passColor(), format, layer());
}

void ccGalleryStage::cells(long columns, long rows)
{
  columns_ = columns;
  rows_ = rows;
  cell_ = 0;
}

ccPoint ccGalleryStage::next(std::string const& caption)
{
  double const w = static_cast<double>(width - 2 * kMargin) / static_cast<double>(columns_);
  double const h = static_cast<double>(height - kTop - 8) / static_cast<double>(rows_);
  double const left = kMargin + w * static_cast<double>(cell_ % columns_), top = kTop + h * static_cast<double>(cell_ / columns_);
  ++cell_;
  // Whole pels, so that captions and figures line up.
  double const x = std::floor(left + w / 2);
  text(caption, ccPoint(x, std::floor(top + h)), ccUIFormat::bottomCenter);
  return ccPoint(x, std::floor(top + (h - kCaption) / 2));
}

ccUINestedCoordFrame& ccGalleryStage::frame(ccXform<2> const& map)
{
  ccPair<long> const size = display_.clientArea();
  frames_.push_back(std::make_unique<ccUINestedCoordFrame>(&display_, ccUIRect(0, 0, size.x(), size.y())));
  frames_.back()->parentFromChild(map);
  frames_.back()->condVisible(true);
  return *frames_.back();
}

void ccGalleryStage::show()
{
  for (auto const cs : {ccDisplay::imageCoords, ccDisplay::clientCoords, ccDisplay::displayCoords})
    display_.drawSketch(tablets_[cs].sketch(), cs);
  for (auto const& frame : frames_)
    frame->redraw(ccUITablet::bothLayers);
}
