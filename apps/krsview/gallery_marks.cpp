// Pages of the gallery: points and icons, text, sketches.
#include "apps/krsview/gallery_kit.h"
#include "apps/krsview/gallery_pages.h"
#include "backend/win32/win32_display.h"
#include "canvas/graphic_props.h"
#include "canvas/rle_buffer.h"
#include "geometry/all.h"

namespace {

// Digits are entries of a list of colours, a dot is see-through.
constexpr char const* kSmiley = "|....0000....|"
                                "..00111100..|"
                                ".0111111110.|"
                                ".0111111110.|"
                                "011001100110|"
                                "011001100110|"
                                "011111111110|"
                                "011011110110|"
                                ".0110000110.|"
                                ".0111111110.|"
                                "..00111100..|"
                                "....0000....|";

ccRLEBuffer cf_smiley()
{
  return ccUITablet::makeIcon(kSmiley, {ccColor::blackColor().index(), ccColor::yellowColor().index()});
}

// A ramp with a see-through frame of value 0.
ccPelBuffer<unsigned char> cf_ramp()
{
  ccPelBuffer<unsigned char> out(96, 56);
  for (long y = 0; y < out.height(); ++y)
    for (long x = 0; x < out.width(); ++x) {
      bool const hole = (x / 8 + y / 8) % 2 == 0;
      out.setPel(x, y, static_cast<unsigned char>(hole ? 0 : 20 + 2 * x));
    }
  return out;
}

}  // namespace

void cf_pagePoints(ccGalleryStage& stage)
{
  ccUITablet& tablet = stage.tablet();
  ccUITablet::Layers const layer = stage.layer();
  stage.cells(4, 3);

  ccPoint c = stage.next("points, pens of 1 to 15");
  for (int i = 0; i < 5; ++i) {
    long const widths[] = {1, 3, 5, 9, 15};
    ccPoint const p = c + ccVector<2>(-50 + 25 * i, 0);
    tablet.draw(ccLineSeg(p, p), ccGraphicProps(ccColor::blueColor(), widths[i], ceSolidPen, false), layer);
  }
  c = stage.next("point icons");
  for (int i = 0; i < 5; ++i)
    tablet.drawPointIcon(c + ccVector<2>(-50 + 25 * i, i % 2 == 0 ? -12 : 12), ccGraphicProps(), layer);
  c = stage.next("ccPointSet");
  std::vector<ccVector<2>> points;
  for (int i = 0; i < 9; ++i)
    points.push_back(c + ccVector<2>::polar(6 + 5.5 * i, ccDegree(70.0 * i)));
  tablet.draw(ccPointSet(points), ccColor::redColor(), layer);
  c = stage.next("ccCoordAxes");
  tablet.draw(ccCoordAxes(c + ccVector<2>(-45, 25), c + ccVector<2>(50, 10), c + ccVector<2>(-30, -50)), ccColor::dkGreenColor(),
              layer);

  // Icons stay as small as they are drawn, or grow with the image.
  c = stage.next("icons");
  for (int i = 0; i < 3; ++i)
    tablet.draw(cf_smiley(), c + ccVector<2>(-46 + 40 * i, -6), {}, true, ccColor::passColor().index(), /*dontScale=*/i < 2, layer);
  c = stage.next("pels");
  tablet.draw(cf_ramp(), c + ccVector<2>(-48, -28), false, 0, stage.display().displayFormat() != ccDisplay::format8, layer);
  c = stage.next("masked pels");
  tablet.draw(cf_ramp(), c + ccVector<2>(-48, -28), true, 0, stage.display().displayFormat() != ccDisplay::format8, layer);
  c = stage.next("drawTo");
  tablet.drawStart(c + ccVector<2>(-50, 30), layer);
  for (int i = 0; i < 10; ++i) {
    tablet.drawToRelPels(10, 0, ccColor::blueColor(), layer);
    tablet.drawToRelPels(0, -6, ccColor::redColor(), layer);
  }

  // Rectangles of whole pels, which no zoom moves.
  auto const at = [](ccPoint const& p) {
    return ccUIRect(static_cast<long>(p.x()) - 50, static_cast<long>(p.y()) - 30, 100, 60);
  };
  tablet.set(at(stage.next("set")), ccColor::cyanColor(), layer);
  tablet.outline(at(stage.next("outline, 6 wide")), ccColor::blueColor(), 6, layer);
  tablet.outline3D(at(stage.next("outline3D, 5 wide")), ccColor::whiteColor(), ccColor::dkGreyColor(), 5, layer);
  c = stage.next("drawClipRect");
  tablet.drawClipRect(ccRect(c + ccVector<2>(-40, -25), ccVector<2>(80, 50)), layer);
  tablet.draw(ccCircle(c, 46), ccColor::orangeColor(), layer, /*filled=*/true);
  tablet.draw(ccCircle(c, 34), ccColor::blackColor(), layer);
  tablet.drawClipRect(ccRect(), layer);
}

void cf_pageText(ccGalleryStage& stage)
{
  ccUITablet& tablet = stage.tablet();
  ccUITablet::Layers const layer = stage.layer();

  stage.heading("Nine alignments about their points", ccPoint(16, 48));
  char const* const names[] = {"topLeft",     "topCenter",  "topRight",     "centerLeft", "center",
                               "centerRight", "bottomLeft", "bottomCenter", "bottomRight"};
  for (int i = 0; i < 9; ++i) {
    ccPoint const at(90 + 230 * (i % 3), 92 + 44 * (i / 3));
    tablet.drawPointIcon(at, ccGraphicProps(ccColor::orangeColor(), 1, ceSolidPen, false), layer);
    stage.text(names[i], at, static_cast<ccUIFormat::Alignment>(i));
  }

  stage.heading("Several lines", ccPoint(16, 214));
  char const* const lines = "Lot 4711\nwidth 12.84 mm\nok";
  stage.text(lines, ccPoint(30, 240));
  tablet.draw(ccLineSeg(ccPoint(240, 234), ccPoint(240, 294)), ccColor::redColor(), layer);
  stage.text(lines, ccPoint(240, 240), ccUIFormat::topCenter);

  stage.heading("Backgrounds", ccPoint(336, 214));
  for (int i = 0; i < 8; ++i)
    tablet.set(ccUIRect(336, 236 + 8 * i, 288, 4), ccColor::ltGreyColor(), layer);
  tablet.draw("see-through", ccPoint(350, 258), ccColor::blackColor(), ccColor::passColor(), ccUIFormat(ccUIFormat::centerLeft), layer);
  tablet.draw("yellow", ccPoint(460, 258), ccColor::blackColor(), ccColor::yellowColor(), ccUIFormat(ccUIFormat::centerLeft), layer);
  tablet.draw("on blue", ccPoint(540, 258), ccColor::whiteColor(), ccColor::blueColor(), ccUIFormat(ccUIFormat::centerLeft), layer);

  // A smooth font has grey edges where the surface can show them, and that is the image.
  stage.heading("One-bit and smooth", ccPoint(16, 318));
  auto const write = [&](std::string const& text, ccPoint const& at, cc_GalleryFonts::Font font, ccUITablet::Layers on) {
    ccUIFormat format;
    format.fontId(stage.font(font));
    tablet.draw(text, at, ccColor::blackColor(), ccColor::passColor(), format, on);
  };
  write("Caliper 0.37", ccPoint(30, 338), cc_GalleryFonts::plain24, ccUITablet::imageLayer);
  write("Caliper 0.37", ccPoint(30, 370), cc_GalleryFonts::smooth24, ccUITablet::imageLayer);
  stage.text("on the overlay every font is one-bit", ccPoint(30, 410), ccUIFormat::topLeft, ccColor::blackColor(),
             stage.font(cc_GalleryFonts::smooth));

  stage.heading("Faces", ccPoint(336, 318));
  write("bold", ccPoint(350, 340), cc_GalleryFonts::bold, layer);
  write("italic", ccPoint(350, 362), cc_GalleryFonts::italic, layer);
  write("bold italic", ccPoint(350, 384), cc_GalleryFonts::boldItalic, layer);
  write("fixed pitch 0123", ccPoint(350, 406), cc_GalleryFonts::fixedPitch, layer);
  stage.text("Gr\xF6\xDF" "e 5 \xB5m, 20 \xB0" "C", ccPoint(484, 344));

  // What a text will cover is asked of the display, before it is drawn.
  std::string const boxed = "in its textRect";
  ccUIRect const box = stage.display().textRect(boxed, ccPoint(0, 0), ccUIFormat(), ccUITablet::imageLayer);
  tablet.outline(ccUIRect(484, 380, box.width() + 8, box.height() + 8), ccColor::redColor(), 1, layer);
  stage.text(boxed, ccPoint(488, 384));
}

void cf_pageSketches(ccGalleryStage& stage)
{
  ccUITablet& tablet = stage.tablet();
  ccUITablet::Layers const layer = stage.layer();

  // A tablet without a parent records what is drawn on it.
  ccUITablet recorder;
  ccGraphicProps body(ccColor::dkGreyColor(), 1, ceSolidPen, true);
  recorder.draw(ccGenRect(ccPoint(0, 0), ccVector<2>(24, 15), ccDegree(0), ccVector<2>(4, 4)), body, layer);
  for (int i = 0; i < 4; ++i)
    for (int const side : {-1, 1})
      recorder.draw(ccLineSeg(ccPoint(-15 + 10 * i, 16 * side), ccPoint(-15 + 10 * i, 23 * side)),
                    ccGraphicProps(ccColor::blackColor(), 3, ceSolidPen, false), layer);
  recorder.draw(ccCircle(ccPoint(-15, 8), 3), ccColor::whiteColor(), layer, true);
  ccUISketch const chip = recorder.sketch();

  stage.heading("One sketch, drawn at sixteen places", ccPoint(16, 48));
  for (int i = 0; i < 16; ++i)
    tablet.draw(chip, ccPoint(56 + 75 * (i % 8), 100 + 66 * (i / 8)), ccUITablet::bothLayers);

  // Sketches nest: a row of chips with a label is drawn three times.
  ccUITablet row;
  for (int i = 0; i < 3; ++i)
    row.draw(chip, ccPoint(70 * i, 0), ccUITablet::bothLayers);
  row.draw(ccRect(ccPoint(-35, -32), ccVector<2>(210, 64)), ccGraphicProps(ccColor::blueColor(), 1, ceDashPen, false), layer);
  stage.heading("A sketch of sketches", ccPoint(16, 222));
  tablet.draw(row.sketch(), ccPoint(56, 280), ccUITablet::bothLayers);
  tablet.draw(row.sketch(), ccPoint(356, 280), ccUITablet::bothLayers);

  // A clip limits what follows it.
  stage.heading("A sketch within a clip", ccPoint(16, 336));
  tablet.drawClipRect(ccRect(ccPoint(22, 362), ccVector<2>(130, 90)), layer);
  for (int i = 0; i < 12; ++i)
    tablet.draw(chip, ccPoint(18 + 56 * (i % 4), 376 + 58 * (i / 4)), ccUITablet::bothLayers);
  tablet.drawClipRect(ccRect(), layer);
  tablet.draw(ccRect(ccPoint(22, 362), ccVector<2>(130, 90)), ccGraphicProps(ccColor::redColor(), 1, ceSolidPen, false), layer);

  ccUISketch both = chip;
  both += chip;
  both.erase();  // empties this one only
  stage.text("Copies share what is recorded. A display keeps the\nsketches that it was given, and draws them again\n"
             "whenever its image changes or moves.",
             ccPoint(230, 382));
}
