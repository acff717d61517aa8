// Draws over an image: figures, pens, text, icons and sketches, in three coordinate systems and on two layers.
// docs/drawing.md tells of each part; its samples stand here word for word.
#include "krsdisp.h"

namespace {

void drawFigures(ccWin32Display& display)
{
  ccUITablet tablet;
  tablet.draw(ccCircle(ccPoint(120, 220), 40), ccColor::redColor(), ccUITablet::overlayLayer);
  tablet.draw(ccLineSeg(ccPoint(80, 220), ccPoint(160, 220)), ccColor::redColor(), ccUITablet::overlayLayer);
  display.drawSketch(tablet.sketch(), ccDisplay::imageCoords);
}

void drawLayers(ccWin32Display& display)
{
  display.enableOverlay(ccDisplay::overlayOn);
  ccUITablet tablet;
  tablet.set(ccUIRect(200, 20, 100, 60), ccColor::blueColor(), ccUITablet::overlayLayer);
  tablet.draw(ccCircle(ccPoint(250, 50), 20), ccColor::passColor(), ccUITablet::overlayLayer, /*filled=*/true);
  tablet.draw(ccCircle(ccPoint(250, 80), 30), ccColor::orangeColor(), ccUITablet::imageLayer, /*filled=*/true);
  display.drawSketch(tablet.sketch(), ccDisplay::imageCoords);
}

void drawWithPens(ccUITablet& tablet)
{
  ccGraphicProps pen(ccColor(255, 128, 0), /*width=*/5, ceDashPen, /*fill=*/false);
  pen.capStyle(1);   // flat
  pen.joinStyle(1);  // bevel
  tablet.draw(ccPolyline({{20, 20}, {60, 80}, {100, 20}}), pen, ccUITablet::overlayLayer);

  ccGraphicProps const filled(ccColor::dkGreenColor(), 1, ceSolidPen, /*fill=*/true);
  tablet.draw(ccRect(ccPoint(20, 100), ccVector<2>(80, 40)), filled, ccUITablet::overlayLayer);
}

void drawRounded(ccUITablet& tablet, ccGraphicProps const& pen)
{
  ccGenPoly slot;
  slot.insertVertex(ccPoint(20, 20), /*rounding=*/8);
  slot.insertVertex(ccPoint(100, 20), 8);
  slot.insertVertex(ccPoint(100, 70), 8, /*span=*/ccDegree(180));  // the way to this vertex is half a circle
  slot.insertVertex(ccPoint(20, 70), 8);
  slot.close();
  tablet.draw(slot, pen, ccUITablet::overlayLayer);
}

void drawTree(ccUITablet& tablet, ccGraphicProps const& pen)
{
  ccShapeTree tree;
  tree.addShape(ccPtrHandle_const<ccShape>(new ccCircle(ccPoint(60, 60), 40)));
  tree.addShape(ccPtrHandle_const<ccShape>(new ccBezierCurve({20, 60}, {40, 20}, {80, 100}, {100, 60})));
  tablet.draw(tree, pen, ccUITablet::overlayLayer);
}

std::vector<HFONT> drawText(ccWin32Display& display, ccUITablet& tablet)
{
  plat::FontDesc face;
  face.height = 24;
  face.bold = face.smooth = true;
  std::vector<HFONT> const fonts = {plat::platform().objects.createFont(face)};
  display.fontTable(fonts);
  ccUIFormat format(ccUIFormat::topCenter);
  format.fontId(0);  // -1 is the stock font
  tablet.draw("Lot 4711\nok", ccPoint(400, 20), ccColor::whiteColor(), ccColor::passColor(), format,
              ccUITablet::imageLayer);
  return fonts;  // yours: delete them once no display uses them
}

void drawIcon(ccUITablet& tablet)
{
  char const* const arrow = "|..0..|"
                            ".010.|"
                            "01110|"
                            "..0..|";
  ccRLEBuffer const icon = ccUITablet::makeIcon(arrow, {ccColor::blackColor().index(), ccColor::yellowColor().index()});
  tablet.draw(icon, ccPoint(140, 40), /*map=*/{}, /*transparent=*/true, ccColor::passColor().index(), /*dontScale=*/true,
              ccUITablet::overlayLayer);
}

void drawInMillimetres(ccWin32Display& display, ccPelBuffer<unsigned char> pels)
{
  // 0.05 mm a pel; millimetre (0, 0) lies in pel (320, 240).
  ccXform<2> const imageFromClient(20, 20, ccVector<2>(320, 240));
  pels.clientFromImageXform(imageFromClient.inverse());
  display.image(pels, /*mapPels=*/true);

  ccUITablet tablet;
  tablet.draw(ccCircle(ccPoint(0, 0), /*mm*/ 4.5), ccColor::cyanColor(), ccUITablet::overlayLayer);
  display.drawSketch(tablet.sketch(), ccDisplay::clientCoords);
}

void drawOnAFrame(ccUINestedCoordFrame& frame)
{
  frame.parentFromChild(ccXform<2>(ccMatrix<2>(ccDegree(30), 1.5), ccVector<2>(400, 300)));
  ccUITablet tablet;
  tablet.draw(ccCoordAxes({0, 0}, {40, 0}, {0, 40}), ccColor::greenColor(), ccUITablet::overlayLayer);
  frame.sketch() = tablet.sketch();
  frame.condVisible(true);
  frame.redraw(ccUITablet::bothLayers);
}

}  // namespace

int main()
{
  HWND const window = plat::platform().windows.create(
      {.title = "Drawing", .style = plat::style::top | plat::style::visible, .rect = {0, 0, 640, 480}});
  ccWin32Display display(window);
  ccPelBuffer<unsigned char> pels(640, 480);
  for (long y = 0; y < pels.height(); ++y)
    for (long x = 0; x < pels.width(); ++x)
      pels.setPel(x, y, static_cast<unsigned char>(40 + x / 8));
  drawLayers(display);
  drawInMillimetres(display, pels);
  drawFigures(display);

  ccUITablet tablet;
  ccGraphicProps const pen(ccColor::magentaColor(), 1, ceSolidPen, false);
  drawWithPens(tablet);
  drawText(display, tablet);  // its font lasts as long as the program
  drawIcon(tablet);
  ccUITablet rounded, tree;
  drawRounded(rounded, pen);
  drawTree(tree, pen);
  tablet.draw(rounded.sketch(), ccPoint(480, 20), ccUITablet::bothLayers);
  tablet.draw(tree.sketch(), ccPoint(480, 120), ccUITablet::bothLayers);
  display.drawSketch(tablet.sketch(), ccDisplay::imageCoords);

  ccUINestedCoordFrame frame(&display, ccUIRect(0, 0, 640, 480));
  drawOnAFrame(frame);
  return plat::run();
}
