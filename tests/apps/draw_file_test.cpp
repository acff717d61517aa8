// Draw files: what each kind paints, where, and on which layer. The image is black and as large as the window, so that at
// magnification 1 image pel (x, y) is client pel (x, y).
#include "tests/apps/draw_kit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

using Rows = std::vector<std::string>;

namespace {

// A window of 80 by 60 over the image of 40 by 30 at eightfold zoom: the middle of both coincide.
DrawnView eightfold()
{
  DrawnView v;
  v.windowW = 80;
  v.windowH = 60;
  v.mag = 8;
  return v;
}

// A column of an image coordinate at eightfold zoom, and a row.
long column(long x) { return 8 * (x - 20) + 40; }
long row(long y) { return 8 * (y - 15) + 30; }

}  // namespace

// ---- Coordinates

TEST(DrawFile, aSegmentPaintsBothItsEndsAndNothingBeside)
{
  DrawnPels const p = drawn(R"({"kind": "lineSeg", "p1": [5, 10], "p2": [15, 10], "color": "red"})");

  EXPECT_EQ(p.count(kRed, 5, 10, 16, 11), 11);
  EXPECT_EQ(p.count(kBlack), 40 * 30 - 11);
}

TEST(DrawFile, imageCoordinatesFollowTheZoomAndThePenStaysOnePelWide)
{
  DrawnPels const p = drawn(R"({"kind": "lineSeg", "p1": [17, 14], "p2": [23, 14], "color": "red"})", eightfold());

  EXPECT_EQ(p.count(kRed, column(17), row(14), column(23) + 1, row(14) + 1), 49);  // six pels of eight, and the last one
  EXPECT_EQ(p.count(kRed), 49);
}

TEST(DrawFile, imageCoordinatesFollowThePan)
{
  DrawnView v = eightfold();
  v.panX = 1;
  v.panY = -2;

  DrawnPels const p = drawn(R"({"kind": "lineSeg", "p1": [17, 14], "p2": [17, 16], "color": "red"})", v);

  EXPECT_EQ(p.count(kRed, column(17) + 8, row(14) - 16, column(17) + 9, row(16) - 15), 17);
  EXPECT_EQ(p.count(kRed), 17);
}

TEST(DrawFile, displayCoordinatesArePelsOfTheWindowWhateverZoomAndPan)
{
  std::string const entry = R"({"kind": "lineSeg", "coords": "display", "p1": [3, 4], "p2": [12, 4], "color": "red"})";
  for (long mag : {1L, 3L, 8L, -2L}) {
    DrawnView v = eightfold();
    v.mag = mag;
    v.panX = 4;
    v.panY = 3;
    DrawnPels const p = drawn(entry, v);
    EXPECT_EQ(p.count(kRed, 3, 4, 13, 5), 10) << mag;
    EXPECT_EQ(p.count(kRed), 10) << mag;
  }
}

TEST(DrawFile, clientCoordinatesGoThroughTheTransformOfTheImage)
{
  // A client unit is two image pels, and client (0, 0) is image (10, 10): c = x / 2 - 5.
  std::string const map = R"("clientFromImage": {"matrix": [0.5, 0, 0, 0.5], "trans": [-5, -5]}, )";
  std::string const entry = R"({"kind": "lineSeg", "coords": "client", "p1": [4, 2], "p2": [6, 2], "color": "red"})";

  DrawnPels const whole = drawn(entry, {}, map);
  DrawnPels const zoomed = drawn(entry, eightfold(), map);

  EXPECT_EQ(whole.count(kRed, 18, 14, 23, 15), 5);
  EXPECT_EQ(whole.count(kRed), 5);
  EXPECT_EQ(zoomed.count(kRed, column(18), row(14), column(22) + 1, row(14) + 1), 33);
  EXPECT_EQ(zoomed.count(kRed), 33);
}

TEST(DrawFile, clientCoordinatesAreImageCoordinatesWithoutATransform)
{
  std::string const figure = R"("p1": [5, 5], "p2": [20, 12], "color": "red"})";

  EXPECT_EQ(drawn(R"({"kind": "lineSeg", "coords": "client", )" + figure).pels,
            drawn(R"({"kind": "lineSeg", "coords": "image", )" + figure).pels);
}

TEST(DrawFile, imageCoordinatesAreTheDefault)
{
  std::string const figure = R"("p1": [17, 14], "p2": [22, 16], "color": "red"})";

  EXPECT_EQ(drawn(R"({"kind": "lineSeg", )" + figure, eightfold()).pels,
            drawn(R"({"kind": "lineSeg", "coords": "image", )" + figure, eightfold()).pels);
}

// ---- Layers

TEST(DrawFile, theOverlayLiesOverTheImageWhateverTheOrder)
{
  DrawnPels const p = drawn(R"({"kind": "fillRect", "ul": [5, 5], "sz": [10, 10], "color": "green", "layer": "overlay"},
                               {"kind": "fillRect", "ul": [10, 5], "sz": [10, 10], "color": "red", "layer": "image"})");

  EXPECT_EQ(p.count(kGreen, 5, 5, 15, 15), 100);
  EXPECT_EQ(p.count(kRed, 15, 5, 20, 15), 50);
}

TEST(DrawFile, theOverlayIsTheDefault)
{
  DrawnPels const p = drawn(R"({"kind": "fillRect", "ul": [5, 5], "sz": [10, 10], "color": "green"},
                               {"kind": "fillRect", "ul": [10, 5], "sz": [10, 10], "color": "red", "layer": "image"})");

  EXPECT_EQ(p.count(kGreen), 100);
  EXPECT_EQ(p.count(kRed), 50);
}

TEST(DrawFile, withoutAnOverlayAllGoesToTheImageInTheOrderOfTheFile)
{
  DrawnView v;
  v.overlay = "none";

  DrawnPels const p = drawn(R"({"kind": "fillRect", "ul": [5, 5], "sz": [10, 10], "color": "green"},
                               {"kind": "fillRect", "ul": [10, 5], "sz": [10, 10], "color": "red", "layer": "image"})", v);

  EXPECT_EQ(p.count(kGreen), 50);
  EXPECT_EQ(p.count(kRed), 100);
}

TEST(DrawFile, passColourOpensTheOverlay)
{
  DrawnPels const p = drawn(R"({"kind": "fillRect", "ul": [0, 0], "sz": [40, 30], "color": "blue", "layer": "image"},
                               {"kind": "fillRect", "ul": [5, 5], "sz": [10, 10], "color": "green"},
                               {"kind": "fillRect", "ul": [8, 8], "sz": [4, 3], "color": "pass"})");

  EXPECT_EQ(p.count(kGreen), 100 - 12);
  EXPECT_EQ(p.count(kBlue, 8, 8, 12, 11), 12);
  EXPECT_EQ(p.count(kBlue), 1200 - 88);
}

TEST(DrawFile, bothLayersCarryWhatIsDrawnOnBoth)
{
  DrawnPels const p = drawn(R"({"kind": "fillRect", "ul": [5, 5], "sz": [10, 10], "color": "green", "layer": "both"},
                               {"kind": "fillRect", "ul": [5, 5], "sz": [10, 10], "color": "pass", "layer": "overlay"})");

  EXPECT_EQ(p.count(kGreen), 100);
}

TEST(DrawFile, everyDepthShowsBothLayers)
{
  for (int depth : {8, 15, 16, 24, 32}) {
    DrawnView v;
    v.depth = depth;
    DrawnPels const p = drawn(R"({"kind": "fillRect", "ul": [5, 5], "sz": [10, 10], "color": "green"},
                                 {"kind": "fillRect", "ul": [10, 5], "sz": [10, 10], "color": "red", "layer": "image"})", v);
    // 5 bits a channel show 255 as 248, 6 bits as 252.
    EXPECT_EQ(p.count(depth == 15 ? 0x00F800u : depth == 16 ? 0x00FC00u : kGreen, 5, 5, 15, 15), 100) << depth;
    EXPECT_EQ(p.count(depth == 15 || depth == 16 ? 0xF80000u : kRed, 15, 5, 20, 15), 50) << depth;
  }
}

// ---- Pens and colours

TEST(DrawFile, widthIsInPelsAtEveryZoom)
{
  std::string const entry = R"({"kind": "lineSeg", "p1": [17, 14], "p2": [23, 14], "color": "red", "width": 3})";

  DrawnPels const whole = drawn(entry), zoomed = drawn(entry, eightfold());

  for (long d = -3; d <= 3; ++d) {
    std::uint32_t const expected = d >= -1 && d <= 1 ? kRed : kBlack;
    EXPECT_EQ(whole.at(20, 14 + d), expected) << d;
    EXPECT_EQ(zoomed.at(column(20), row(14) + d), expected) << d;
  }
}

TEST(DrawFile, brokenStylesOfThinPensRunInTheirPatterns)
{
  // On and off along the line, from its start.
  struct {
    char const* style;
    std::string pattern;
  } const styles[] = {
      {"solid", std::string(37, 'R')},
      {"dash", std::string(18, 'R') + "......" + std::string(13, 'R')},
      {"dot", "RRR...RRR...RRR...RRR...RRR...RRR...R"},
      {"dashDot", "RRRRRRRRR......RRR......RRRRRRRRR...R"},  // a line's last pel is always painted
      {"dashDotDot", "RRRRRRRRR...RRR...RRR...RRRRRRRRR...R"},
  };
  for (auto const& s : styles) {
    std::string const entry =
        std::string(R"({"kind": "lineSeg", "p1": [1, 10], "p2": [37, 10], "color": "red", "style": ")") + s.style + "\"}";
    EXPECT_EQ(drawn(entry).rows(1, 10, 38, 11)[0], s.pattern) << s.style;
  }
}

TEST(DrawFile, capsEndWidePensRoundFlatOrSquare)
{
  struct {
    char const* cap;
    bool corner, tip;  // of the square that a square cap adds
  } const caps[] = {{"flat", false, false}, {"round", false, true}, {"square", true, true}};
  for (auto const& c : caps) {
    std::string const entry =
        std::string(R"({"kind": "lineSeg", "p1": [12, 14], "p2": [28, 14], "color": "red", "width": 11, "cap": ")") + c.cap + "\"}";
    DrawnPels const p = drawn(entry);
    EXPECT_EQ(p.at(20, 10), kRed) << c.cap;
    EXPECT_EQ(p.at(8, 10) == kRed, c.corner) << c.cap;
    EXPECT_EQ(p.at(8, 14) == kRed, c.tip) << c.cap;
  }
}

TEST(DrawFile, bevelJoinsCutTheCornerThatRoundOnesKeep)
{
  auto const corner = [](char const* join) {
    return drawn(std::string(R"({"kind": "polyline", "points": [[8, 24], [30, 24], [30, 4]], "color": "red", "width": 13, "join": ")") +
                 join + "\"}");
  };

  DrawnPels const round = corner("round"), bevel = corner("bevel");

  // On the corner's diagonal: the round join reaches 6.5 pels, the bevel 6.5 / sqrt(2) = 4.6.
  EXPECT_EQ(round.at(30 + 4, 24 + 4), kRed);  // at 5.7
  EXPECT_EQ(bevel.at(30 + 4, 24 + 4), kBlack);
  EXPECT_EQ(bevel.at(30 + 2, 24 + 2), kRed);  // at 2.8
}

TEST(DrawFile, colorsByNameIndexAndHexadecimalDigits)
{
  struct {
    char const* color;
    std::uint32_t rgb;
  } const colors[] = {
      {"\"black\"", 0x000000},   {"\"white\"", 0xFFFFFF}, {"\"grey\"", 0xA0A0A4},    {"\"ltGrey\"", 0xC0C0C0}, {"\"dkGrey\"", 0x808080},
      {"\"red\"", 0xFF0000},     {"\"dkRed\"", 0x800000}, {"\"green\"", 0x00FF00},   {"\"dkGreen\"", 0x008000}, {"\"blue\"", 0x0000FF},
      {"\"yellow\"", 0xFFFF00},  {"\"magenta\"", 0xFF00FF}, {"\"cyan\"", 0x00FFFF},  {"\"purple\"", 0xA020F0}, {"\"orange\"", 0xFFA500},
      {"\"#102030\"", 0x102030}, {"\"#ABcdEf\"", 0xABCDEF}, {"249", 0xFF0000},       {"7", 0xC0C0C0},           {"100", 0x646464},
  };
  for (auto const& c : colors) {
    DrawnPels const p = drawn(R"({"kind": "fillRect", "ul": [0, 0], "sz": [40, 15], "color": "orange"},
                                 {"kind": "fillRect", "ul": [5, 5], "sz": [4, 3], "color": )" + std::string(c.color) + "}");
    EXPECT_EQ(p.count(c.rgb, 5, 5, 9, 8), 12) << c.color;
  }
}

// ---- Figures

TEST(DrawFile, aPointIsAsLargeAsThePen)
{
  EXPECT_EQ(drawn(R"({"kind": "point", "pos": [7, 9], "color": "red"})").rows(5, 7, 10, 12),
            (Rows{".....", ".....", "..R..", ".....", "....."}));
  DrawnPels const wide = drawn(R"({"kind": "point", "pos": [7, 9], "color": "red", "width": 3})");
  EXPECT_EQ(wide.count(kRed, 6, 8, 9, 11), 9);
  EXPECT_EQ(wide.count(kRed), 9);
}

TEST(DrawFile, pointIconsAreCrossesOfNinePelsAtEveryZoom)
{
  for (char const* const entry : {R"({"kind": "pointIcon", "pos": [20, 15], "color": "red"})",
                                  R"({"kind": "pointSet", "points": [[20, 15]], "color": "red"})"}) {
    DrawnPels const whole = drawn(entry), zoomed = drawn(entry, eightfold());
    EXPECT_EQ(whole.count(kRed, 16, 15, 25, 16), 9);
    EXPECT_EQ(whole.count(kRed, 20, 11, 21, 20), 9);
    EXPECT_EQ(whole.count(kRed), 17);
    EXPECT_EQ(zoomed.count(kRed, column(20) - 4, row(15), column(20) + 5, row(15) + 1), 9);
    EXPECT_EQ(zoomed.count(kRed), 17);
  }
}

TEST(DrawFile, anEndlessLineRunsFromEdgeToEdge)
{
  DrawnPels const p = drawn(R"({"kind": "line", "pos": [3, 12], "dir": [2, 0], "color": "red"})");

  EXPECT_EQ(p.count(kRed, 0, 12, 40, 13), 40);
  EXPECT_EQ(p.count(kRed), 40);
}

TEST(DrawFile, closedPolylinesHaveOneSideMore)
{
  std::string const points = R"({"kind": "polyline", "points": [[5, 5], [15, 5], [15, 15], [5, 15]], "color": "red")";

  DrawnPels const open = drawn(points + "}"), closed = drawn(points + R"(, "closed": true})");

  EXPECT_EQ(open.at(5, 10), kBlack);
  EXPECT_EQ(closed.at(5, 10), kRed);
  EXPECT_EQ(closed.count(kRed), 40);
}

TEST(DrawFile, fillRulesOfAPolygonThatRunsTwiceRound)
{
  auto const p = [](std::string const& rule) {
    return drawn(R"({"kind": "polygon", "points": [[4, 4], [24, 4], [24, 24], [4, 24], [4, 4],
                     [10, 10], [18, 10], [18, 18], [10, 18], [10, 10]], "color": "red")" + rule + "}");
  };

  DrawnPels const open = p(""), evenOdd = p(R"(, "fillRule": 1)"), winding = p(R"(, "fillRule": 2)"), filled = p(R"(, "fill": true)");

  EXPECT_EQ(open.at(7, 20), kBlack);
  EXPECT_EQ(open.at(14, 10), kRed);
  EXPECT_EQ(evenOdd.at(7, 20), kRed);
  EXPECT_EQ(evenOdd.at(14, 14), kBlack);
  EXPECT_EQ(winding.at(7, 20), kRed);
  EXPECT_EQ(winding.at(14, 14), kRed);
  EXPECT_EQ(filled.pels, evenOdd.pels);
}

TEST(DrawFile, rectanglesAreOutlinedOrFilled)
{
  DrawnPels const thin = drawn(R"({"kind": "rect", "ul": [5, 6], "sz": [10, 4], "color": "red"})");
  DrawnPels const byCorner = drawn(R"({"kind": "rect", "ul": [5, 6], "lr": [15, 10], "color": "red"})");
  DrawnPels const filled = drawn(R"({"kind": "rect", "ul": [5, 6], "sz": [10, 4], "color": "red", "fill": true})");

  // Eleven columns and five rows, both sides included.
  EXPECT_EQ(thin.count(kRed, 5, 6, 16, 11), 2 * 11 + 2 * 3);
  EXPECT_EQ(thin.count(kRed), 28);
  EXPECT_EQ(byCorner.pels, thin.pels);
  EXPECT_EQ(filled.count(kRed, 5, 6, 16, 11), 55);
  EXPECT_EQ(filled.count(kRed), 55);
}

TEST(DrawFile, anAffineRectangleLeansAsItsSkewSays)
{
  // With skew 45 the y side points to (-1, 1): corner Py lies left below.
  DrawnPels const p = drawn(R"({"kind": "affineRect", "center": [20, 15], "xLength": 10, "yLength": 14.142135623730951,
                                "xRotation": 0, "skew": 45, "color": "red"})");

  EXPECT_EQ(p.at(20, 10), kRed);   // Po is (20, 10), Px (30, 10)
  EXPECT_EQ(p.at(30, 10), kRed);
  EXPECT_EQ(p.at(10, 20), kRed);   // Py
  EXPECT_EQ(p.at(20, 20), kRed);   // Popp
  EXPECT_EQ(p.at(15, 15), kRed);   // the middle of the left side
  EXPECT_EQ(p.at(20, 15), kBlack);
}

TEST(DrawFile, aGeneralRectangleTakesHalfLengthsOrientAndRounding)
{
  DrawnPels const sharp = drawn(R"({"kind": "genRect", "center": [20, 15], "halfLengths": [8, 5], "color": "red", "fill": true})");
  DrawnPels const turned = drawn(R"({"kind": "genRect", "center": [20, 15], "hx": 8, "hy": 5, "orient": 90, "color": "red", "fill": true})");
  DrawnPels const round = drawn(R"({"kind": "genRect", "center": [20, 15], "halfLengths": [8, 5], "round": [5, 5], "color": "red", "fill": true})");
  DrawnPels const fractions =
      drawn(R"({"kind": "genRect", "center": [20, 15], "halfLengths": [8, 5], "rounding": [0.625, 1], "color": "red", "fill": true})");

  EXPECT_EQ(sharp.at(13, 11), kRed);  // a corner
  EXPECT_EQ(sharp.at(20, 8), kBlack);
  EXPECT_EQ(turned.at(13, 11), kBlack);
  EXPECT_EQ(turned.at(20, 8), kRed);
  EXPECT_EQ(round.at(13, 11), kBlack);
  EXPECT_EQ(round.at(20, 11), kRed);
  EXPECT_EQ(fractions.pels, round.pels);
}

TEST(DrawFile, aSkewedGeneralRectangleLeansTowardsX)
{
  // tan 45 is 1: the y side of half length 6 leans by 6 towards +x.
  DrawnPels const p = drawn(R"({"kind": "genRect", "center": [20, 15], "halfLengths": [6, 6], "skew": 45, "color": "red", "fill": true})");

  EXPECT_EQ(p.at(31, 21), kRed);    // corner (1, 1) is at (20 + 6 + 6, 21)
  EXPECT_EQ(p.at(10, 20), kBlack);  // where an upright one had its corner
  EXPECT_EQ(p.at(9, 9), kRed);      // corner (-1, -1) is at (20 - 6 - 6, 9)
}

TEST(DrawFile, circlesAndEllipsesHaveTheirRadii)
{
  DrawnPels const circle = drawn(R"({"kind": "circle", "center": [20, 15], "radius": 8, "color": "red"})");
  DrawnPels const filled = drawn(R"({"kind": "circle", "center": [20, 15], "radius": 8, "color": "red", "fill": true})");
  // The box (12, 7) to (28, 23) holds the columns 12 to 27 and the rows 7 to 22. All pels lie within one pel of the circle of
  // radius 7.5 about the middle of these, (19.5, 14.5).
  for (long y = 0; y < 30; ++y)
    for (long x = 0; x < 40; ++x) {
      double const r = std::hypot(static_cast<double>(x) - 19.5, static_cast<double>(y) - 14.5);
      if (circle.at(x, y) == kRed) {
        EXPECT_NEAR(r, 7.5, 1) << x << "," << y;
      }
      if (r < 6.5) {
        EXPECT_EQ(filled.at(x, y), kRed) << x << "," << y;
      }
      if (r > 8.5) {
        EXPECT_EQ(filled.at(x, y), kBlack) << x << "," << y;
      }
    }
  for (DrawnPels const* p : {&circle, &filled})
    for (auto const& [x, y] : {std::pair(12, 14), std::pair(27, 14), std::pair(19, 7), std::pair(19, 22)})
      EXPECT_EQ(p->at(x, y), kRed) << x << "," << y;
  for (char const* const kind : {"ellipse", "ellipse2"}) {
    DrawnPels const e =
        drawn(std::string(R"({"kind": ")") + kind + R"(", "center": [20, 15], "radii": [14, 4], "rotation": 90, "color": "red", "fill": true})");
    // Turned by a right angle it stands upright, in the columns 16 to 23 and the rows 1 to 28.
    EXPECT_EQ(e.at(19, 1), kRed) << kind;
    EXPECT_EQ(e.at(19, 28), kRed) << kind;
    EXPECT_EQ(e.at(19, 29), kBlack) << kind;
    EXPECT_EQ(e.at(26, 15), kBlack) << kind;
    EXPECT_EQ(drawn(std::string(R"({"kind": ")") + kind + R"(", "center": [20, 15], "rx": 14, "ry": 4, "rotation": 90, "color": "red", "fill": true})").pels,
              e.pels);
  }
}

TEST(DrawFile, arcsRunFromStartOverTheirSpan)
{
  for (char const* const kind : {"ellipseArc", "ellipseArc2"}) {
    auto const arc = [&](char const* span) {
      return drawn(std::string(R"({"kind": ")") + kind + R"(", "center": [20, 15], "radii": [10, 10], "start": 0, "color": "red", "span": )" +
                   span + "}");
    };
    DrawnPels const down = arc("90"), up = arc("-90");
    // Angles grow from +x towards +y, which points down.
    EXPECT_GT(down.count(kRed, 20, 15, 40, 30), 10) << kind;
    EXPECT_EQ(down.count(kRed, 0, 0, 40, 14), 0) << kind;
    EXPECT_GT(up.count(kRed, 20, 0, 40, 16), 10) << kind;
    EXPECT_EQ(up.count(kRed, 0, 17, 40, 30), 0) << kind;
  }
}

TEST(DrawFile, ringsHaveTwoOutlines)
{
  std::string const kinds[] = {
      R"({"kind": "circleAnnulus", "center": [20, 15], "firstRadius": 5, "secondRadius": 12, "color": "red"})",
      R"({"kind": "ellipseAnnulus", "center": [20, 15], "first": {"radii": [5, 5]}, "second": {"rx": 12, "ry": 12}, "color": "red"})",
      R"({"kind": "ellipseAnnulus", "center": [20, 15], "firstRadius": 5, "secondRadius": 12, "color": "red"})",
      R"({"kind": "genAnnulus", "center": [20, 15], "first": {"halfLengths": [5, 5]}, "second": {"halfLengths": [12, 12]}, "color": "red"})"};
  for (std::string const& kind : kinds) {
    DrawnPels const p = drawn(kind);
    EXPECT_EQ(p.rows(20, 15, 40, 16)[0], ".....R......R.......") << kind;
    DrawnPels const filled = drawn(kind.substr(0, kind.size() - 1) + ", \"fill\": true}");
    EXPECT_EQ(filled.rows(20, 15, 40, 16)[0], ".....RRRRRRRR.......") << kind;
  }
}

TEST(DrawFile, sectionsOfRingsHaveEndSidesIfWanted)
{
  auto const section = [](char const* more) {
    return drawn(std::string(R"({"kind": "ellipseAnnulusSection", "center": [20, 15], "firstRadius": 5, "secondRadius": 13, "start": 0,
                                 "stop": 180, "color": "red")") + more + "}");
  };

  DrawnPels const whole = section(""), open = section(R"(, "ends": false)"), filled = section(R"(, "fill": true)");

  EXPECT_EQ(whole.at(29, 15), kRed);   // on the side at angle 0
  EXPECT_EQ(open.at(29, 15), kBlack);
  EXPECT_EQ(open.at(20, 28), kRed);    // both arcs
  EXPECT_EQ(open.at(20, 20), kRed);
  EXPECT_EQ(open.count(kRed, 0, 0, 40, 14), 0);
  EXPECT_EQ(filled.at(20, 24), kRed);
  EXPECT_EQ(filled.at(20, 17), kBlack);
}

TEST(DrawFile, axesEndInArrowHeads)
{
  DrawnPels const p =
      drawn(R"({"kind": "coordAxes", "origin": [5, 20], "xEnd": [30, 20], "yEnd": [5, 5], "color": "red"})");

  EXPECT_EQ(p.count(kRed, 5, 20, 31, 21), 26);
  EXPECT_EQ(p.count(kRed, 5, 5, 6, 21), 16);
  EXPECT_GT(p.count(kRed, 24, 17, 30, 20), 1);  // barbs above and below the x axis
  EXPECT_GT(p.count(kRed, 24, 21, 30, 24), 1);
}

TEST(DrawFile, polygonsWithArcsBulgeToTheRightOfTheirWay)
{
  for (char const* const kind : {"genPoly", "wireframe", "smdgdPoly"}) {
    // A half circle over a chord of 20: from (10, 10) to (30, 10) the right of the way is up, to (20, 0).
    DrawnPels const p = drawn(std::string(R"({"kind": ")") + kind +
                              R"(", "vertices": [{"point": [10, 12]}, {"point": [30, 12], "span": 180}], "color": "red"})");
    EXPECT_EQ(p.at(20, 2), kRed) << kind;
    EXPECT_EQ(p.at(20, 12), kBlack) << kind;
    EXPECT_EQ(p.at(20, 22), kBlack) << kind;
    DrawnPels const closed = drawn(std::string(R"({"kind": ")") + kind +
                                   R"(", "vertices": [{"point": [10, 12]}, {"point": [30, 12], "span": 180}], "closed": true, "color": "red"})");
    EXPECT_EQ(closed.at(20, 12), kRed) << kind;
    EXPECT_EQ(drawn(std::string(R"({"kind": ")") + kind +
                    R"(", "vertices": [{"point": [10, 12]}, {"point": [30, 12], "span": 180}], "isOpen": false, "color": "red"})")
                  .pels,
              closed.pels)
        << kind;
  }
}

TEST(DrawFile, roundingsCutCorners)
{
  DrawnPels const p = drawn(R"({"kind": "genPoly", "vertices": [{"point": [5, 5]}, {"point": [35, 5], "roundingSize": 10},
                                {"point": [35, 28]}], "color": "red"})");

  EXPECT_EQ(p.at(35, 5), kBlack);
  EXPECT_EQ(p.at(25, 5), kRed);   // where the circle of radius 10 about (25, 15) touches
  EXPECT_EQ(p.at(35, 15), kRed);
  EXPECT_EQ(p.at(32, 8), kRed);   // 25 + 7.07, 15 - 7.07
}

TEST(DrawFile, wireframesShowVerticesAndDirection)
{
  std::string const wire = R"({"kind": "wireframe", "vertices": [{"point": [5, 15]}, {"point": [35, 15]}], "color": "red")";

  DrawnPels const plain = drawn(wire + "}"), vertices = drawn(wire + R"(, "showVertices": true})"),
                  direction = drawn(wire + R"(, "showDirection": true})");

  EXPECT_EQ(plain.count(kRed), 31);
  // Squares of five pels: their rings have 16 pels, and the line crosses them at (5, 15), (7, 15) and (33, 15).
  EXPECT_EQ(vertices.rows(3, 13, 9, 18), (Rows{"RRRRR.", "R...R.", "R.RRRR", "R...R.", "RRRRR."}));
  EXPECT_GT(direction.count(kRed, 12, 10, 21, 15), 1);  // a barb of the arrow head in the middle
  EXPECT_EQ(direction.count(kRed, 22, 10, 40, 15), 0);
}

TEST(DrawFile, curvesRunThroughTheirEndsAndTheMiddleThatTheirFormulaGives)
{
  // (P0 + 3 P1 + 3 P2 + P3) / 8 = (20, (24 + 3 * 0 + 3 * 0 + 24) / 8) = (20, 6).
  DrawnPels const bezier =
      drawn(R"({"kind": "bezierCurve", "controlPoints": [[4, 24], [4, 0], [36, 0], [36, 24]], "color": "red"})");
  EXPECT_EQ(bezier.at(4, 24), kRed);
  EXPECT_EQ(bezier.at(36, 23), kRed);  // of an open chain the last pel is left out
  EXPECT_EQ(bezier.at(20, 6), kRed);
  // With weights 1, 2, 2, 1 the middle has 1/14 of the ends each and 6/14 of the others: 48/14 = 3.4.
  DrawnPels const heavy = drawn(
      R"({"kind": "bezierCurve", "controlPoints": [[4, 24], [4, 0], [36, 0], [36, 24]], "weights": [1, 2, 2, 1], "color": "red"})");
  EXPECT_EQ(heavy.at(20, 3), kRed);
  EXPECT_EQ(heavy.at(20, 6), kBlack);
  DrawnPels const path = drawn(
      R"({"kind": "bezierPath", "curves": [{"controlPoints": [[4, 24], [4, 0], [36, 0], [36, 24]]}], "closed": true, "color": "red"})");
  EXPECT_EQ(path.at(20, 6), kRed);
  EXPECT_EQ(path.at(20, 24), kRed);
}

TEST(DrawFile, splinesFollowTheirPoints)
{
  std::string const points = R"("controlPoints": [[4, 20], [20, 4], [36, 20]], "color": "red")";
  // Through its points.
  EXPECT_EQ(drawn(R"({"kind": "interpSpline", )" + points + "}").at(20, 4), kRed);
  EXPECT_EQ(drawn(R"({"kind": "hermiteSpline", )" + points + "}").at(20, 4), kRed);
  // Three points of a B-spline are a quadratic curve: its middle is (P0 + 2 P1 + P2) / 4 = (20, 12).
  EXPECT_EQ(drawn(R"({"kind": "deBoorSpline", )" + points + "}").at(20, 12), kRed);
  // With weight 3 in the middle: (P0 + 6 P1 + P2) / 8 = (20, (20 + 24 + 20) / 8) = (20, 8).
  EXPECT_EQ(drawn(R"({"kind": "deBoorSpline", "weights": [1, 3, 1], )" + points + "}").at(20, 8), kRed);
  // Closed ones come back.
  for (char const* const kind : {"interpSpline", "hermiteSpline", "deBoorSpline"}) {
    std::string const start = std::string(R"({"kind": ")") + kind + "\", " + points;
    DrawnPels const open = drawn(start + "}"), closed = drawn(start + R"(, "isClosed": true})");
    EXPECT_EQ(open.at(4, 20), kRed) << kind;
    if (std::string(kind) == "deBoorSpline") {
      EXPECT_EQ(closed.at(4, 20), kBlack);
      EXPECT_EQ(closed.at(12, 17), kRed);  // (P2 + 4 P0 + P1) / 6 = (12, 17.3)
    } else {
      EXPECT_EQ(closed.at(4, 20), kRed) << kind;
      EXPECT_EQ(open.count(kRed, 8, 21, 33, 30), 0) << kind;
      EXPECT_GT(closed.count(kRed, 8, 21, 33, 30), 15) << kind;  // the way back
    }
    EXPECT_EQ(drawn(start + R"(, "closed": true})").pels, closed.pels) << kind;
  }
}

TEST(DrawFile, tangentsBendASpline)
{
  // A Hermite curve from (4, 15) to (36, 15) whose tangents are (0, 40) and (0, -40): its middle is offset by
  // (T0 - T1) / 8 = (0, 10).
  DrawnPels const p = drawn(R"({"kind": "hermiteSpline", "controlPoints": [[4, 15], [36, 15]], "controlTangents": [[0, 40], [0, -40]],
                                "color": "red"})");
  EXPECT_EQ(p.at(20, 25), kRed);
  // Automatic ones leave it straight.
  DrawnPels const straight = drawn(R"({"kind": "hermiteSpline", "controlPoints": [[4, 15], [36, 15]], "controlTangents": [null, null],
                                       "color": "red"})");
  EXPECT_EQ(straight.count(kRed, 4, 15, 37, 16), 33);
  DrawnPels const ends = drawn(R"({"kind": "interpSpline", "controlPoints": [[4, 15], [36, 15]], "endConditions": 1,
                                   "startTangent": [0, 40], "endTangent": [0, -40], "color": "red"})");
  EXPECT_EQ(ends.at(20, 25), kRed);
}

TEST(DrawFile, treesDrawEveryShapeInThem)
{
  DrawnPels const p = drawn(R"({"kind": "shapeTree", "shapes": [
      {"kind": "rect", "ul": [5, 5], "sz": [4, 4]},
      {"kind": "shapeTree", "shapes": [{"kind": "lineSeg", "p1": [20, 20], "p2": [30, 20]}, {"kind": "pointSet", "points": [[30, 8]]}]}],
      "color": "red"})");

  EXPECT_EQ(p.count(kRed, 5, 5, 10, 10), 16);
  EXPECT_EQ(p.count(kRed, 20, 20, 31, 21), 11);
  EXPECT_EQ(p.count(kRed, 26, 4, 35, 13), 17);
}

// ---- Text, icons and pels

TEST(DrawFile, textLiesAboutItsPointAsItsAlignmentSays)
{
  struct {
    char const* alignment;
    int column, row;  // 0 after the point, 1 around it, 2 before it
  } const alignments[] = {{"topLeft", 0, 0},     {"topCenter", 1, 0},  {"topRight", 2, 0},
                          {"centerLeft", 0, 1},  {"center", 1, 1},     {"centerRight", 2, 1},
                          {"bottomLeft", 0, 2},  {"bottomCenter", 1, 2}, {"bottomRight", 2, 2}};
  DrawnView v;
  v.windowW = v.imageW = 120;
  v.windowH = v.imageH = 60;
  for (auto const& a : alignments) {
    DrawnPels const p = drawn(R"({"kind": "text", "text": "MMM", "at": [60, 30], "color": "white", "background": "blue", "alignment": ")" +
                                  std::string(a.alignment) + "\"}", v);
    long left = 120, right = 0, top = 60, bottom = 0;
    for (long y = 0; y < 60; ++y)
      for (long x = 0; x < 120; ++x)
        if (p.at(x, y) != kBlack) {
          left = std::min(left, x);
          right = std::max(right, x + 1);
          top = std::min(top, y);
          bottom = std::max(bottom, y + 1);
        }
    ASSERT_LT(left, right) << a.alignment;
    // A background is a whole rectangle.
    EXPECT_EQ(p.count(kBlue) + p.count(kWhite), (right - left) * (bottom - top)) << a.alignment;
    EXPECT_GT(p.count(kWhite), 20) << a.alignment;
    long const x[] = {left, (left + right) / 2, right}, y[] = {top, (top + bottom) / 2, bottom};
    EXPECT_NEAR(static_cast<double>(x[a.column]), 60, a.column == 1 ? 1 : 0) << a.alignment;
    EXPECT_NEAR(static_cast<double>(y[a.row]), 30, a.row == 1 ? 1 : 0) << a.alignment;
  }
}

TEST(DrawFile, textNeverGrowsWithTheImage)
{
  std::string const entry = R"({"kind": "text", "text": "M", "at": [20, 15], "color": "white", "alignment": "center"})";

  EXPECT_EQ(drawn(entry).count(kWhite), drawn(entry, eightfold()).count(kWhite));
}

TEST(DrawFile, textOverSeveralLinesIsHigher)
{
  DrawnView v;
  v.windowH = v.imageH = 60;
  DrawnPels const one = drawn(R"({"kind": "text", "text": "M", "at": [2, 2], "color": "white", "background": "blue"})", v);
  DrawnPels const three = drawn(R"({"kind": "text", "text": "M\nM\nM", "at": [2, 2], "color": "white", "background": "blue"})", v);

  EXPECT_EQ(three.count(kWhite), 3 * one.count(kWhite));
}

TEST(DrawFile, fontsAreTallBoldAndSmooth)
{
  DrawnView v;
  v.windowW = v.imageW = 120;
  v.windowH = v.imageH = 60;
  auto const text = [&](char const* font) {
    return drawn(R"({"kind": "text", "layer": "image", "text": "AbC", "at": [10, 5], "color": "white", "font": )" + std::string(font) + "}", v);
  };

  DrawnPels const small = text(R"({"height": 13})"), tall = text(R"({"height": 40})"), bold = text(R"({"height": 13, "bold": true})"),
                  smooth = text(R"({"height": 40, "smooth": true})");

  EXPECT_GT(tall.count(kWhite), 4 * small.count(kWhite));
  EXPECT_GT(bold.count(kWhite), small.count(kWhite));
  auto const greys = [](DrawnPels const& p) { return 120 * 60 - p.count(kBlack) - p.count(kWhite); };
  EXPECT_EQ(greys(tall), 0);
  EXPECT_GT(greys(smooth), 50);
}

TEST(DrawFile, textTakesTheCharactersOfLatin1)
{
  std::string const start = R"({"kind": "text", "at": [2, 2], "color": "white", "text": ")";

  // U+00B5 is in, U+03BC is not.
  EXPECT_GT(drawn(start + "\\u00b5\"}").count(kWhite), 5);
  EXPECT_EQ(drawn(start + "\xC2\xB5\"}").pels, drawn(start + "\\u00b5\"}").pels);
  EXPECT_NE(drawn(start + "\\u00fc\"}").pels, drawn(start + "\\u00b5\"}").pels);
}

TEST(DrawFile, iconsArePaintedPelByPel)
{
  std::string const icon = R"({"kind": "icon", "at": [3, 4], "rows": ["01.", "+10"], "colors": ["red", 252])";

  EXPECT_EQ(drawn(icon + "}").rows(2, 3, 7, 7), (Rows{".....", ".RB..", "..BR.", "....."}));
  DrawnView twofold;
  twofold.mag = 2;  // image (20, 15) stays in the middle of the window
  std::string const middle = R"({"kind": "icon", "at": [20, 15], "rows": ["01.", "+10"], "colors": ["red", 252])";
  EXPECT_EQ(drawn(middle + "}", twofold).rows(19, 14, 24, 18), (Rows{".....", ".RB..", "..BR.", "....."}));
  EXPECT_EQ(drawn(middle + R"(, "dontScale": false})", twofold).rows(19, 14, 27, 20),
            (Rows{"........", ".RRBB...", ".RRBB...", "...BBRR.", "...BBRR.", "........"}));
}

TEST(DrawFile, pelsAreGreyOrColouredAndMasked)
{
  std::string const grey = R"({"kind": "pels", "layer": "image", "at": [3, 4], "grey8": [[10, 200, 30], [40, 10, 60]])";

  DrawnPels const p = drawn(grey + "}"), masked = drawn(R"({"kind": "set", "color": "green", "layer": "image"}, )" + grey + R"(, "maskValue": 10})");

  EXPECT_EQ(p.at(3, 4), 0x0A0A0Au);
  EXPECT_EQ(p.at(4, 4), 0xC8C8C8u);
  EXPECT_EQ(p.at(5, 5), 0x3C3C3Cu);
  EXPECT_EQ(p.at(6, 4), kBlack);
  EXPECT_EQ(masked.at(3, 4), kGreen);
  EXPECT_EQ(masked.at(4, 4), 0xC8C8C8u);
  EXPECT_EQ(masked.at(4, 5), kGreen);
}

TEST(DrawFile, colouredPelsShowAtEveryDepth)
{
  std::string const entry = R"({"kind": "pels", "layer": "image", "at": [3, 4], "rgb": [["red", "#008000"]]})";
  struct {
    int depth;
    std::uint32_t first, second;
  } const depths[] = {
      {32, 0xFF0000, 0x008000},
      {16, 0xF80000, 0x008000},
      {24, 0x3F3F3F, 0x404040},  // 255 / 4 and 2 * 128 / 4
      {15, 0x383838, 0x404040},  // their low bits are zero
      {8, 0x3F3F3F, 0x404040},
  };
  for (auto const& d : depths) {
    DrawnView v;
    v.depth = d.depth;
    DrawnPels const p = drawn(entry, v);
    EXPECT_EQ(p.at(3, 4), d.first) << d.depth;
    EXPECT_EQ(p.at(4, 4), d.second) << d.depth;
  }
}

TEST(DrawFile, pelsGrowWithTheImage)
{
  DrawnPels const p = drawn(R"({"kind": "pels", "layer": "image", "at": [19, 14], "grey8": [[200, 100]]})", eightfold());

  EXPECT_EQ(p.count(0xC8C8C8u, column(19), row(14), column(20), row(15)), 64);
  EXPECT_EQ(p.count(0x646464u, column(20), row(14), column(21), row(15)), 64);
}

// ---- Fills in whole pels, pens, clips, sketches

TEST(DrawFile, setFillsAllOrARectangle)
{
  EXPECT_EQ(drawn(R"({"kind": "set", "color": "red"})").count(kRed), 1200);
  DrawnPels const p = drawn(R"({"kind": "set", "color": "red", "ul": [3, 4], "sz": [5, 6]})");
  EXPECT_EQ(p.count(kRed, 3, 4, 8, 10), 30);
  EXPECT_EQ(p.count(kRed), 30);
}

TEST(DrawFile, setComplementFillsAllElse)
{
  DrawnPels const p = drawn(R"({"kind": "setComplement", "color": "red", "ul": [3, 4], "sz": [5, 6]})");

  EXPECT_EQ(p.count(kBlack, 3, 4, 8, 10), 30);
  EXPECT_EQ(p.count(kRed), 1200 - 30);
}

TEST(DrawFile, eraseOpensTheOverlay)
{
  DrawnPels const p = drawn(R"({"kind": "fillRect", "ul": [5, 5], "sz": [10, 10], "color": "green"},
                               {"kind": "erase", "ul": [7, 7], "sz": [3, 4]})");

  EXPECT_EQ(p.count(kBlack, 7, 7, 10, 11), 12);
  EXPECT_EQ(p.count(kGreen), 100 - 12);
}

TEST(DrawFile, outlinesAreRingsInsideTheirRectangles)
{
  EXPECT_EQ(drawn(R"({"kind": "outline", "ul": [3, 4], "sz": [6, 5], "color": "red", "width": 2})").rows(2, 3, 10, 10),
            (Rows{"........", ".RRRRRR.", ".RRRRRR.", ".RR..RR.", ".RRRRRR.", ".RRRRRR.", "........"}));
  EXPECT_EQ(drawn(R"({"kind": "outline3D", "ul": [3, 4], "sz": [5, 4], "light": "white", "shadow": "blue", "width": 1})").rows(2, 3, 9, 9),
            (Rows{".......", ".WWWWB.", ".W...B.", ".W...B.", ".BBBBB.", "......."}));
}

TEST(DrawFile, drawToMovesAPenThroughPointsAndByPels)
{
  DrawnPels const p = drawn(R"({"kind": "drawTo", "start": [2, 2], "to": [[6, 2]], "relPels": [[0, 3], [-4, 0]], "color": "red"})");

  EXPECT_EQ(p.rows(1, 1, 9, 7), (Rows{"........", ".RRRRR..", ".....R..", ".....R..", ".RRRRR..", "........"}));
}

TEST(DrawFile, stepsInPelsStayPelsAtEveryZoom)
{
  DrawnPels const p = drawn(R"({"kind": "drawTo", "start": [20, 15], "relPels": [[5, 0]], "color": "red"})", eightfold());

  EXPECT_EQ(p.count(kRed, column(20), row(15), column(20) + 6, row(15) + 1), 6);
  EXPECT_EQ(p.count(kRed), 6);
}

TEST(DrawFile, aClipHoldsUntilItIsLiftedAndInItsOwnCoordinatesOnly)
{
  DrawnPels const p = drawn(R"({"kind": "clipRect", "ul": [4, 4], "sz": [5, 4]},
                               {"kind": "lineSeg", "p1": [0, 5], "p2": [30, 5], "color": "red"},
                               {"kind": "lineSeg", "coords": "display", "p1": [0, 6], "p2": [30, 6], "color": "blue"},
                               {"kind": "clipRect"},
                               {"kind": "lineSeg", "p1": [0, 7], "p2": [30, 7], "color": "green"})");

  EXPECT_EQ(p.count(kRed, 4, 5, 9, 6), 5);
  EXPECT_EQ(p.count(kRed), 5);
  EXPECT_EQ(p.count(kBlue), 31);
  EXPECT_EQ(p.count(kGreen), 31);
}

TEST(DrawFile, clipsZoomWithTheImage)
{
  DrawnPels const p = drawn(R"({"kind": "clipRect", "ul": [18, 14], "sz": [3, 2]},
                               {"kind": "lineSeg", "p1": [0, 15], "p2": [40, 15], "color": "red"})", eightfold());

  EXPECT_EQ(p.count(kRed, column(18), row(15), column(21), row(15) + 1), 24);
  EXPECT_EQ(p.count(kRed), 24);
}

TEST(DrawFile, sketchesAreDrawnAtTheirPlaceAndNest)
{
  DrawnPels const p = drawn(R"({"kind": "sketch", "at": [10, 5], "draw": [
      {"kind": "lineSeg", "p1": [0, 0], "p2": [3, 0], "color": "red"},
      {"kind": "sketch", "at": [0, 4], "draw": [{"kind": "lineSeg", "p1": [1, 1], "p2": [2, 1], "color": "blue"}]}]})");

  EXPECT_EQ(p.count(kRed, 10, 5, 14, 6), 4);
  EXPECT_EQ(p.count(kBlue, 11, 10, 13, 11), 2);
  EXPECT_EQ(p.count(kBlack), 1200 - 6);
}

TEST(DrawFile, laterEntriesLieOverEarlierOnes)
{
  DrawnPels const p = drawn(R"({"kind": "rect", "ul": [5, 5], "sz": [10, 10], "color": "red", "fill": true},
                               {"kind": "rect", "ul": [8, 8], "sz": [4, 4], "color": "blue", "fill": true})");

  EXPECT_EQ(p.count(kBlue), 25);
  EXPECT_EQ(p.count(kRed), 121 - 25);
}

TEST(DrawFile, farAndHugeFiguresDrawWhatIsSeenOfThem)
{
  DrawnPels const p = drawn(R"({"kind": "lineSeg", "p1": [-1e9, 10], "p2": [1e9, 10], "color": "red"},
                               {"kind": "rect", "ul": [-1e300, -1e300], "sz": [1, 1], "color": "blue"},
                               {"kind": "circle", "center": [1e15, 1e15], "radius": 3, "color": "blue"},
                               {"kind": "text", "text": "far", "at": [1e12, -1e12], "color": "blue"},
                               {"kind": "pointIcon", "pos": [1e308, 1e308], "color": "blue"})");

  EXPECT_EQ(p.count(kRed, 0, 10, 40, 11), 40);
  EXPECT_EQ(p.count(kBlue), 0);
}
