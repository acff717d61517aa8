// Pages of the gallery: coordinates, layers, maps and colours.
#include "apps/krsview/gallery_kit.h"
#include "apps/krsview/gallery_pages.h"
#include "backend/win32/win32_display.h"
#include "canvas/graphic_props.h"
#include "geometry/all.h"
#include "ui/core/nested_coord_frame.h"

#include <algorithm>
#include <iterator>

void cf_pageCoordinates(ccGalleryStage& stage)
{
  // Ten client units are 40 image pels, turned by 30 degrees; their origin is the middle of the part.
  ccXform<2> const imageFromClient(ccMatrix<2>(ccDegree(30), 4), ccVector<2>(80, 60));
  ccPelBuffer<unsigned char> pels = ccGalleryStage::part(160, 120);
  pels.clientFromImageXform(imageFromClient.inverse());
  stage.image(pels);
  stage.display().mag(8);
  stage.display().pan(ccVector<2>(0, -2));

  ccUITablet::Layers const layer = stage.layer();

  // Pens stay thin and texts small, whatever the zoom.
  ccUITablet& image = stage.tablet(ccDisplay::imageCoords);
  image.draw(ccCircle(ccPoint(55, 55), 12), ccColor::blueColor(), layer);
  image.draw(ccLineSeg(ccPoint(43, 55), ccPoint(67, 55)), ccGraphicProps(ccColor::blueColor(), 1, ceDashPen, false), layer);
  image.drawPointIcon(ccPoint(55, 55), ccGraphicProps(ccColor::redColor(), 1, ceSolidPen, false), layer);
  image.draw("image coordinates:\nradius 12 pels", ccPoint(55, 57), ccColor::whiteColor(), ccColor::blueColor(),
             ccUIFormat(ccUIFormat::topCenter), layer);

  ccUITablet& client = stage.tablet(ccDisplay::clientCoords);
  client.draw(ccCoordAxes(ccPoint(0, 0), ccPoint(6, 0), ccPoint(0, 6)), ccColor::cyanColor(), layer);
  client.draw(ccRect(ccPoint(1, 1), ccVector<2>(4, 3)), ccGraphicProps(ccColor::cyanColor(), 3, ceSolidPen, false), layer);
  client.draw("client:\n4 by 3 units", ccPoint(3, 2.5), ccColor::cyanColor(), ccColor::blackColor(),
              ccUIFormat(ccUIFormat::center), layer);

  ccUITablet& shown = stage.tablet(ccDisplay::displayCoords);
  shown.set(ccUIRect(16, 424, 300, 40), ccColor::blackColor(), layer);
  shown.outline3D(ccUIRect(16, 424, 300, 40), ccColor::ltGreyColor(), ccColor::dkGreyColor(), 2, layer);
  shown.draw("display coordinates: this box stays where it is", ccPoint(166, 444), ccColor::whiteColor(), ccColor::passColor(),
             ccUIFormat(ccUIFormat::center), layer);
}

void cf_pageLayers(ccGalleryStage& stage)
{
  stage.image(ccGalleryStage::part(ccGalleryStage::width, ccGalleryStage::height));
  ccUITablet& tablet = stage.tablet();
  ccUITablet::Layers const overlay = stage.layer(), image = ccUITablet::imageLayer;

  // Drawn last, yet it lies below the overlay.
  tablet.draw(ccRect(ccPoint(60, 110), ccVector<2>(180, 120)), ccGraphicProps(ccColor::greenColor(), 1, ceSolidPen, true), overlay);
  tablet.draw("on the overlay", ccPoint(70, 120), ccColor::blackColor(), ccColor::passColor(), ccUIFormat(), overlay);
  tablet.draw(ccCircle(ccPoint(240, 230), 70), ccColor::orangeColor(), image, /*filled=*/true);
  tablet.draw("on the image", ccPoint(240, 270), ccColor::blackColor(), ccColor::passColor(), ccUIFormat(ccUIFormat::center), image);

  // The pass colour makes the overlay see-through again.
  tablet.draw(ccGenRect(ccPoint(450, 190), ccVector<2>(110, 80), ccDegree(0), ccVector<2>(20, 20)), ccColor::blueColor(), overlay,
              /*filled=*/true);
  for (int i = 0; i < 3; ++i)
    tablet.draw(ccCircle(ccPoint(390 + 60 * i, 200), 24), ccColor::passColor(), overlay, /*filled=*/true);
  tablet.draw("windows in pass colour", ccPoint(450, 136), ccColor::whiteColor(), ccColor::passColor(),
              ccUIFormat(ccUIFormat::center), overlay);

  // What a measuring tool would show: wide, thin and broken lines over the image.
  tablet.draw(ccEllipseAnnulusSection(ccPoint(320, 240), 166, 196, ccDegree(20), ccDegree(160)),
              ccGraphicProps(ccColor::yellowColor(), 2, ceSolidPen, false), overlay);
  for (int i = 0; i < 12; ++i) {
    ccVector<2> const ray = ccVector<2>::polar(1, ccDegree(26 + 11.6 * i));
    tablet.draw(ccLineSeg(ccPoint(320, 240) + ray * 166, ccPoint(320, 240) + ray * 196), ccColor::yellowColor(), overlay);
  }
  tablet.draw(ccCircle(ccPoint(320, 240), 60), ccGraphicProps(ccColor::cyanColor(), 1, ceDashPen, false), overlay);
  tablet.drawPointIcon(ccPoint(320, 240), ccGraphicProps(ccColor::cyanColor(), 1, ceSolidPen, false), overlay);
}

void cf_pageMaps(ccGalleryStage& stage)
{
  ccUITablet::Layers const layer = stage.layer();

  // A small scene about (0,0). Its pens keep their width under every map.
  ccUITablet scene;
  ccGraphicProps const body(ccColor::blueColor(), 1, ceSolidPen, false);
  scene.draw(ccGenRect(ccPoint(0, 0), ccVector<2>(44, 28), ccDegree(0), ccVector<2>(10, 10)), body, layer);
  scene.draw(ccCircle(ccPoint(-18, 0), 14), ccColor::redColor(), layer, /*filled=*/true);
  scene.draw(ccEllipse(ccPoint(20, 0), 16, 9, ccDegree(30)), ccGraphicProps(ccColor::dkGreenColor(), 3, ceSolidPen, false), layer);
  scene.draw(ccCoordAxes(ccPoint(-44, 28), ccPoint(-10, 28), ccPoint(-44, -8)), ccColor::blackColor(), layer);
  scene.draw("R", ccPoint(20, -20), ccColor::blackColor(), ccColor::passColor(), ccUIFormat(ccUIFormat::center), layer);

  struct {
    char const* name;
    ccMatrix<2> matrix;
  } const maps[] = {
      {"as it is", ccMatrix<2>()},
      {"turned by 30", ccMatrix<2>(ccDegree(30), 1)},
      {"turned by 90", ccMatrix<2>(ccDegree(90), 1)},
      {"enlarged", ccMatrix<2>(ccDegree(0), 1.4)},
      {"reduced", ccMatrix<2>(ccDegree(0), 0.5)},
      {"mirrored in x", ccMatrix<2>(-1, 0, 0, 1)},
      {"mirrored in y", ccMatrix<2>(1, 0, 0, -1)},
      {"turned and mirrored", ccMatrix<2>(ccDegree(30), 1) * ccMatrix<2>(-1, 0, 0, 1)},
      {"wide and low", ccMatrix<2>(1.4, 0, 0, 0.6)},
      {"sheared", ccMatrix<2>(1, 0.5, 0, 1)},
      {"sheared and turned", ccMatrix<2>(ccDegree(-20), 1) * ccMatrix<2>(1, 0.6, 0, 1)},
      {"flat", ccMatrix<2>(1, 0, 0, 0)},
  };
  stage.cells(4, 3);
  for (auto const& map : maps) {
    ccPoint const at = stage.next(map.name);
    // A frame with a map of its own, as an application makes one for a part that was found somewhere in the image.
    ccUINestedCoordFrame& frame = stage.frame(ccXform<2>(map.matrix, at));
    frame.sketch() = scene.sketch();
  }
}

void cf_pageColours(ccGalleryStage& stage)
{
  ccUITablet& tablet = stage.tablet();
  ccUITablet::Layers const layer = stage.layer();

  struct {
    char const* name;
    ccColor color;
  } const colors[] = {
      {"black", ccColor::blackColor()},     {"dkGrey", ccColor::dkGreyColor()},   {"grey", ccColor::greyColor()},
      {"ltGrey", ccColor::ltGreyColor()},   {"white", ccColor::whiteColor()},     {"red", ccColor::redColor()},
      {"dkRed", ccColor::dkRedColor()},     {"orange", ccColor::orangeColor()},   {"yellow", ccColor::yellowColor()},
      {"green", ccColor::greenColor()},     {"dkGreen", ccColor::dkGreenColor()}, {"cyan", ccColor::cyanColor()},
      {"blue", ccColor::blueColor()},       {"purple", ccColor::purpleColor()},   {"magenta", ccColor::magentaColor()},
      {"pass", ccColor::passColor()},
  };
  stage.heading("The sixteen colours by name; pass shows what lies below", ccPoint(16, 48));
  for (std::size_t i = 0; i < std::size(colors); ++i) {
    long const x = 16 + 77 * static_cast<long>(i % 8), y = 72 + 62 * static_cast<long>(i / 8);
    tablet.set(ccUIRect(x, y, 69, 38), colors[i].color, layer);
    stage.text(colors[i].name, ccPoint(static_cast<double>(x) + 34, static_cast<double>(y) + 40), ccUIFormat::topCenter);
  }

  // On the image: what has the value of the pass colour would be a hole in the overlay, also if it is named otherwise.
  int const bits[] = {8, 15, 16, 24, 32};
  stage.heading("Any red, green and blue, as a screen of " + std::to_string(bits[stage.display().displayFormat()]) +
                    " bits a pel shows it",
                ccPoint(16, 210));
  for (long i = 0; i < 152; ++i) {
    auto const v = static_cast<unsigned char>(i * 255 / 151);
    auto const w = static_cast<unsigned char>(255 - v);
    ccColor const ramps[] = {ccColor(v, 0, 0), ccColor(0, v, 0), ccColor(0, 0, v), ccColor(v, v, v), ccColor(v, w, 128)};
    for (long k = 0; k < 5; ++k)
      tablet.set(ccUIRect(16 + 4 * i, 232 + 18 * k, 4, 16), ramps[k], ccUITablet::imageLayer);
  }

  stage.heading("The 256 entries of the palette", ccPoint(16, 336));
  for (long i = 0; i < 256; ++i)
    tablet.set(ccUIRect(16 + 19 * (i % 64) / 2, 358 + 24 * (i / 64), 8, 22), ccColor(static_cast<unsigned char>(i)),
               ccUITablet::imageLayer);
}
