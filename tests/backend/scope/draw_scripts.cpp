#include "tests/backend/scope/draw_scripts.h"

#include "backend/scope/win32_scope.h"
#include "canvas/format.h"
#include "canvas/graphic_props.h"
#include "canvas/rle_buffer.h"
#include "geometry/ellipse_arc.h"
#include "geometry/gen_rect.h"
#include "geometry/lines.h"
#include "geometry/polygon.h"
#include "platform/objects.h"
#include "platform/window.h"

#include <array>
#include <memory>

namespace {

using Points = std::vector<ccVector<2>>;

ccColor const ground(24, 28, 40);
std::array<ccColor, 8> const colors = {ccColor::whiteColor(), ccColor::yellowColor(), ccColor::greenColor(),
                                       ccColor::cyanColor(),  ccColor::redColor(),    ccColor::magentaColor(),
                                       ccColor::orangeColor(), ccColor(120, 160, 250)};

ccColor const& color(int i)
{
  return colors[static_cast<std::size_t>(i) % colors.size()];
}

ccGraphicProps pen(ccColor const& c, long width = 1, int style = 0, bool fill = false, long join = 0, long cap = 0)
{
  ccGraphicProps props(c, width, static_cast<cePenStyle>(style), fill);
  props.joinStyle(join);
  props.capStyle(cap);
  return props;
}

void seg(ccUIScope& s, double x0, double y0, double x1, double y1, ccGraphicProps const& props)
{
  s.draw(ccLineSeg(ccPoint(x0, y0), ccPoint(x1, y1)), props);
}

DrawStep clear()
{
  return DrawStep{"ground", [](ccWin32UIScope& s) { s.set(ground); }};
}

// Star with its five tips on a circle.
Points star(double x, double y, double radius)
{
  Points all;
  for (int i = 0; i < 5; ++i)
    all.push_back(ccVector<2>(x, y) + ccVector<2>::polar(radius, ccRadian(-1.5707963 + i * 4 * 3.14159265 / 5)));
  return all;
}

DrawFamily lines()
{
  DrawFamily f{"lines", {clear()}};
  f.steps.push_back({"fan", [](ccWin32UIScope& s) {
    // Slopes k / 8 in all octants.
    for (int k = -8; k <= 8; ++k) {
      seg(s, 40, 40, 40 + 32, 40 + 4 * k, pen(color(k + 8)));
      seg(s, 40, 40, 40 - 32, 40 + 4 * k, pen(color(k + 9)));
      seg(s, 40, 40, 40 + 4 * k, 40 + 32, pen(color(k + 10)));
      seg(s, 40, 40, 40 + 4 * k, 40 - 32, pen(color(k + 11)));
    }
  }});
  f.steps.push_back({"chain", [](ccWin32UIScope& s) {
    s.drawStart(ccPoint(84, 6));
    for (int i = 0; i < 9; ++i)
      s.drawToRel(8, i % 2 ? -7 - i : 9 + i, pen(color(1)));
    s.drawTo(ccPoint(84, 6), pen(color(2)));
  }});
  f.steps.push_back({"points", [](ccWin32UIScope& s) {
    for (int i = 0; i < 8; ++i)
      seg(s, 84 + 4 * i, 44, 84 + 4 * i, 44, pen(color(i), i % 2));
  }});
  f.steps.push_back({"dashed-rows", [](ccWin32UIScope& s) {
    for (int style = 1; style <= 4; ++style) {
      seg(s, 80, 48 + 4 * style, 156, 48 + 4 * style, pen(color(style), 1, style));
      seg(s, 156, 50 + 4 * style, 80, 50 + 4 * style, pen(color(style), 0, style));
    }
  }});
  f.steps.push_back({"dashed-slants", [](ccWin32UIScope& s) {
    for (int style = 1; style <= 4; ++style) {
      seg(s, 78 + 8 * style, 72, 98 + 8 * style, 116, pen(color(style), 1, style));
      seg(s, 114 + 8 * style, 72, 114 + 8 * style, 117, pen(color(style + 4), 1, style));
    }
  }});
  f.steps.push_back({"far", [](ccWin32UIScope& s) {
    seg(s, -1e6, -5e5 + 80, 1e6, 5e5 + 60, pen(color(0)));
    seg(s, -3000, 100, 3000, 100, pen(color(3), 1, 3));
    seg(s, 30, -1e8, 30, 1e8, pen(color(4)));
    seg(s, 200, 10, 300, 20, pen(color(5)));
  }});
  f.steps.push_back({"child", [](ccWin32UIScope& s) {
    std::unique_ptr<ccUIScope> const part(s.createChildScope(ccUIRect(4, 78, 60, 38), true));
    std::unique_ptr<ccUIScope> const own(s.createChildScope(ccUIRect(8, 82, 40, 30), false));
    for (int k = 0; k <= 12; ++k) {
      seg(*part, 0, 76 + 6 * k, 80, 150 - 6 * k, pen(color(6)));
      seg(*own, -5, 3 * k, 45, 30 - 3 * k, pen(color(7)));
    }
  }});
  return f;
}

DrawFamily wideLines()
{
  DrawFamily f{"wide-lines", {clear()}};
  f.steps.push_back({"widths", [](ccWin32UIScope& s) {
    long x = 6;
    for (int w = 0; w <= 8; ++w) {
      seg(s, static_cast<double>(x), 6, static_cast<double>(x), 26, pen(color(w), w, 0, false, 0, 1));
      x += w + 3;
    }
  }});
  f.steps.push_back({"caps", [](ccWin32UIScope& s) {
    for (int cap = 0; cap <= 2; ++cap) {
      seg(s, 78, 8 + 10 * cap, 100, 8 + 10 * cap, pen(color(4), 7, 0, false, 0, cap));
      seg(s, 78, 8 + 10 * cap, 100, 8 + 10 * cap, pen(color(0)));
      seg(s, 112 + 14 * cap, 8, 118 + 14 * cap, 26, pen(color(2), 6, 0, false, 0, cap));
      seg(s, 112 + 14 * cap, 8, 118 + 14 * cap, 26, pen(color(0)));
    }
  }});
  f.steps.push_back({"joins", [](ccWin32UIScope& s) {
    for (int join = 0; join <= 1; ++join)
      for (int cap = 0; cap <= 2; ++cap) {
        double const x = 6 + 24 * cap + 74 * join;
        s.draw(ccPolyline(Points{{x, 56}, {x + 6, 36}, {x + 12, 56}, {x + 18, 46}}),
               pen(color(1 + join), 5, 0, false, join, cap));
      }
  }});
  f.steps.push_back({"sharp", [](ccWin32UIScope& s) {
    s.draw(ccPolyline(Points{{6, 66}, {50, 68}, {6, 72}}), pen(color(3), 5, 0, false, 0, 1));
    s.draw(ccPolyline(Points{{60, 66}, {100, 68}, {60, 72}}), pen(color(3), 5, 0, false, 1, 1));
    s.draw(ccPolyline(Points{{112, 64}, {150, 64}, {130, 74}}, true), pen(color(6), 4, 0, false, 1, 1));
  }});
  f.steps.push_back({"dashes", [](ccWin32UIScope& s) {
    for (int style = 1; style <= 4; ++style) {
      seg(s, 6, 78 + 5 * style, 74, 78 + 5 * style, pen(color(style), 3, style, false, 0, 1));
      seg(s, 78 + 6 * style, 80, 78 + 6 * style, 116, pen(color(style), 3, style, false, 0, 1));
      seg(s, 106 + 8 * style, 80, 118 + 8 * style, 116, pen(color(style), 2, style, false, 0, 1));
    }
  }});
  f.steps.push_back({"round-dashes", [](ccWin32UIScope& s) {
    for (int cap = 0; cap <= 2; ++cap)
      seg(s, 6, 103 + 6 * cap, 70, 103 + 6 * cap, pen(color(5), 3, 1 + cap, false, 0, cap));
  }});
  f.steps.push_back({"dots", [](ccWin32UIScope& s) {
    for (int cap = 0; cap <= 2; ++cap)
      seg(s, 62 + 12 * cap, 14, 62 + 12 * cap, 14, pen(color(7), 9, 0, false, 0, cap));
  }});
  f.steps.push_back({"far", [](ccWin32UIScope& s) {
    seg(s, -1e6, 118, 1e6, 118, pen(color(2), 3, 2, false, 0, 1));
    seg(s, 157, -1e5, 157, 1e5, pen(color(3), 4, 1, false, 0, 1));
    seg(s, -1e5, -2e5 + 60, 1e5, 2e5 + 60, pen(color(4), 3));
  }});
  return f;
}

DrawFamily polygons()
{
  DrawFamily f{"polygons", {clear()}};
  f.steps.push_back({"stars", [](ccWin32UIScope& s) {
    for (int rule = 0; rule <= 2; ++rule)
      s.draw(ccPolygon(star(26 + 50 * rule, 28, 22), rule), pen(color(rule + 1)));
  }});
  f.steps.push_back({"broken", [](ccWin32UIScope& s) {
    for (int style = 1; style <= 4; ++style)
      s.draw(ccPolygon(Points{{4.0 + 28 * style - 24, 56}, {4.0 + 28 * style - 2, 60}, {4.0 + 28 * style - 14, 76}}, 0),
             pen(color(style), 1, style));
  }});
  f.steps.push_back({"wide", [](ccWin32UIScope& s) {
    s.draw(ccPolygon(Points{{124, 56}, {152, 60}, {136, 76}}, 1), pen(color(5), 4, 0, false, 1, 1));
    s.draw(ccPolyline(star(26, 28, 10), true), pen(color(6), 3));
  }});
  f.steps.push_back({"polylines", [](ccWin32UIScope& s) {
    Points zigzag;
    for (int i = 0; i < 12; ++i)
      zigzag.push_back(ccVector<2>(4 + 6 * i, 84 + (i % 3) * 7));
    s.draw(ccPolyline(zigzag), pen(color(2)));
    for (ccVector<2>& v : zigzag)
      v = v + ccVector<2>(0, 16);
    s.draw(ccPolyline(zigzag, true), pen(color(3), 1, 2));
  }});
  f.steps.push_back({"degenerate", [](ccWin32UIScope& s) {
    s.draw(ccPolygon(Points{{84, 84}}, 1), pen(color(0)));
    s.draw(ccPolygon(Points{{88, 84}, {104, 88}}, 2), pen(color(1)));
    s.draw(ccPolygon(Points{{88, 92}, {104, 92}, {96, 92}}, 1), pen(color(2)));
    s.draw(ccPolyline(Points{{84, 100}}, true), pen(color(3)));
    s.draw(ccPolyline(Points{{88, 100}, {88, 100}, {104, 100}, {104, 100}}), pen(color(4)));
  }});
  f.steps.push_back({"outside", [](ccWin32UIScope& s) {
    s.draw(ccPolygon(Points{{120, 84}, {100000, 90}, {90000, 100000}, {112, 112}}, 2), pen(color(7)));
    s.draw(ccPolygon(Points{{-50, 116}, {-20, -2000}, {2, 118}}, 1), pen(color(4)));
  }});
  f.steps.push_back({"child", [](ccWin32UIScope& s) {
    std::unique_ptr<ccUIScope> const own(s.createChildScope(ccUIRect(116, 88, 40, 28), false));
    own->set(ccUIRect(0, 0, 40, 28), ccColor(ground));
    own->draw(ccPolygon(star(20, 16, 20), 1), pen(color(1)));
  }});
  return f;
}

DrawFamily rectangles()
{
  auto const rect = [](double x, double y, double hx, double hy, double turn, double round) {
    return ccGenRect(ccPoint(x, y), ccVector<2>(hx, hy), ccRadian(turn), ccVector<2>(round, round));
  };
  DrawFamily f{"rectangles", {clear()}};
  f.steps.push_back({"upright", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 5; ++i)
      s.draw(rect(18 + 30 * i, 16, 12, 10, 0, 2.5 * i), pen(color(i)));
  }});
  f.steps.push_back({"filled", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 5; ++i)
      s.draw(rect(18 + 30 * i, 16, 7, 5, 0, 1.5 * i), pen(color(i + 1), 1, 0, true));
  }});
  f.steps.push_back({"turned", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 5; ++i)
      s.draw(rect(18 + 30 * i, 46, 12, 8, 0.31 + 0.37 * i, 2 * i), pen(color(i)));
  }});
  f.steps.push_back({"turned-filled", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 5; ++i)
      s.draw(rect(18 + 30 * i, 46, 7, 4, 0.31 + 0.37 * i, i), pen(color(i + 2), 1, 0, true));
  }});
  f.steps.push_back({"wide", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 5; ++i)
      s.draw(rect(18 + 30 * i, 76, 10, 8, i < 3 ? 0 : 0.3 * i, i == 0 ? 0 : 4), pen(color(i), 2 + i % 3, 0, i == 2, i % 2));
  }});
  f.steps.push_back({"broken", [=](ccWin32UIScope& s) {
    for (int style = 1; style <= 4; ++style)
      s.draw(rect(30 * style - 12, 104, 12, 10, style == 4 ? 0.5 : 0, style == 2 ? 0 : 5), pen(color(style), 1, style));
  }});
  f.steps.push_back({"fractions", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 4; ++i)
      s.draw(rect(134 + 0.25 * i, 96.5 + 6 * i, 5.5 + 0.25 * i, 2.25, 0, 0), pen(color(i)));
  }});
  f.steps.push_back({"child", [=](ccWin32UIScope& s) {
    std::unique_ptr<ccUIScope> const own(s.createChildScope(ccUIRect(144, 90, 16, 30), false));
    own->draw(rect(8, 15, 9, 6, 0.8, 2), pen(color(5)));
    own->draw(rect(8, 15, 3, 3, 0.8, 0), pen(color(6), 1, 0, true));
  }});
  return f;
}

DrawFamily ellipses()
{
  auto const ellipse = [](double x, double y, double rx, double ry, double turn) {
    return ccEllipse(ccPoint(x, y), rx, ry, ccRadian(turn));
  };
  DrawFamily f{"ellipses", {clear()}};
  f.steps.push_back({"small", [=](ccWin32UIScope& s) {
    double x = 5;
    for (int i = 0; i < 10; ++i) {
      s.draw(ellipse(x, 10, 1 + 0.5 * i, 1 + 0.5 * i, 0), pen(color(i)));
      x += 6 + i;
    }
  }});
  f.steps.push_back({"upright", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 5; ++i)
      s.draw(ellipse(18 + 30 * i, 36, 13 - 2 * i, 4 + 2.5 * i, 0), pen(color(i)));
  }});
  f.steps.push_back({"filled", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 5; ++i)
      s.draw(ellipse(18 + 30 * i, 36, 8 - i, 2 + 1.5 * i, 0), pen(color(i + 1), 1, 0, true));
  }});
  f.steps.push_back({"turned", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 5; ++i)
      s.draw(ellipse(18 + 30 * i, 66, 13, 7, 0.31 + 0.37 * i), pen(color(i)));
  }});
  f.steps.push_back({"turned-filled", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 5; ++i)
      s.draw(ellipse(18 + 30 * i, 66, 7, 3, 0.31 + 0.37 * i), pen(color(i + 2), 1, 0, true));
  }});
  f.steps.push_back({"wide", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 3; ++i)
      s.draw(ellipse(18 + 30 * i, 98, 12, 8, 0.4 * i), pen(color(i), 3 + i));
    s.draw(ellipse(108, 98, 12, 8, 0), pen(color(4), 3, 2));
  }});
  f.steps.push_back({"broken", [=](ccWin32UIScope& s) {
    for (int style = 1; style <= 4; ++style)
      s.draw(ellipse(140, 98, 2 + 4 * style, 2 + 4 * style, style == 4 ? 0.3 : 0), pen(color(style), 1, style));
  }});
  f.steps.push_back({"flat", [=](ccWin32UIScope& s) {
    s.draw(ellipse(4, 115, 0, 9, 0), pen(color(0)));
    s.draw(ccEllipse2(ccPoint(24, 115), 14, 0, ccRadian(0)), pen(color(1)));
    s.draw(ccEllipse2(ccPoint(50, 112), 0, 5, ccRadian(0.5)), pen(color(2)));
    s.draw(ccEllipse2(ccPoint(70, 114), 9, 4, ccRadian(-0.3)), pen(color(3)));
  }});
  f.steps.push_back({"large", [=](ccWin32UIScope& s) {
    s.draw(ellipse(-400, 60, 500, 300, 0), pen(color(5)));
    s.draw(ellipse(80, 400, 300, 320, 0.3), pen(color(6)));
    s.draw(ellipse(1e5 + 20, 60, 1e5, 1e5, 0), pen(color(7)));
  }});
  return f;
}

DrawFamily arcs()
{
  auto const arc = [](double x, double y, double rx, double ry, double turn, double start, double span) {
    return ccEllipseArc(ccEllipse(ccPoint(x, y), rx, ry, ccRadian(turn)), ccRadian(start), ccRadian(span));
  };
  DrawFamily f{"arcs", {clear()}};
  f.steps.push_back({"quadrants", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 4; ++i)
      s.draw(arc(20, 20, 15, 15, 0, 1.5707963267948966 * i, 1.5707963267948966), pen(color(i)));
    for (int i = 0; i < 4; ++i)
      s.draw(arc(20, 20, 10, 6, 0, 1.5707963267948966 * i, -1.5707963267948966), pen(color(i + 4)));
  }});
  f.steps.push_back({"spans", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 7; ++i)
      s.draw(arc(60, 20, 3 + 2 * i, 3 + 2 * i, 0, 0.3, 0.8 * (i + 1)), pen(color(i)));
    for (int i = 0; i < 7; ++i)
      s.draw(arc(100, 20, 3 + 2 * i, 3 + 1.5 * i, 0, 0.3, -0.8 * (i + 1)), pen(color(i)));
  }});
  f.steps.push_back({"turned", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 5; ++i)
      s.draw(arc(20 + 30 * i, 56, 13, 8, 0.31 + 0.37 * i, 0.4, 3.9), pen(color(i)));
  }});
  f.steps.push_back({"wide", [=](ccWin32UIScope& s) {
    for (int i = 0; i < 3; ++i)
      s.draw(arc(20 + 34 * i, 90, 13, 10, 0.3 * i, 0.5, 4), pen(color(i), 4, 0, false, 0, i));
  }});
  f.steps.push_back({"broken", [=](ccWin32UIScope& s) {
    for (int style = 1; style <= 4; ++style)
      s.draw(arc(134, 90, 3 + 5 * style, 3 + 5 * style, 0, 0, 4.7), pen(color(style), 1, style));
  }});
  f.steps.push_back({"whole", [=](ccWin32UIScope& s) {
    s.draw(arc(138, 20, 15, 12, 0, 1, 6.283185307179586), pen(color(0)));
    s.draw(arc(138, 20, 11, 8, 0.5, 1, -6.283185307179586), pen(color(1)));
    s.draw(arc(138, 20, 6, 6, 0, 1, 0), pen(color(2)));
  }});
  f.steps.push_back({"flat", [](ccWin32UIScope& s) {
    s.draw(ccEllipseArc2(ccEllipse2(ccPoint(20, 112), 14, 0, ccRadian(0)), ccRadian(-1.5), ccRadian(3.0)), pen(color(3)));
    s.draw(ccEllipseArc2(ccEllipse2(ccPoint(60, 112), 14, 4, ccRadian(0)), ccRadian(-1.5), ccRadian(3.0)), pen(color(4)));
  }});
  return f;
}

// An icon in runs: a diamond of value 1 with a core of 2 on 0.
ccRLEBuffer diamond(long side)
{
  std::vector<unsigned char> pels;
  for (long y = 0; y < side; ++y)
    for (long x = 0; x < side; ++x) {
      long const d = std::labs(2 * x - side + 1) + std::labs(2 * y - side + 1);
      pels.push_back(static_cast<unsigned char>(d > side ? 0 : d > side / 2 ? 1 : 2));
    }
  return ccRLEBuffer::fromPels(pels.data(), side, side, side);
}

DrawFamily pelsAndRuns()
{
  DrawFamily f{"points-runs", {clear()}};
  f.steps.push_back({"points", [](ccWin32UIScope& s) {
    for (int y = 0; y < 16; ++y)
      for (int x = 0; x < 16; ++x)
        s.draw(ccPoint(4 + 2 * x, 4 + 2 * y),
               pen(ccColor(static_cast<unsigned char>(17 * x), static_cast<unsigned char>(17 * y), 128)));
  }});
  f.steps.push_back({"palette-points", [](ccWin32UIScope& s) {
    for (int i = 0; i < 256; ++i)
      s.draw(ccPoint(44 + 2 * (i % 16), 4 + 2 * (i / 16)), pen(ccColor(static_cast<unsigned char>(i))));
  }});
  f.steps.push_back({"edges", [](ccWin32UIScope& s) {
    for (int i = -2; i < 162; ++i) {
      s.draw(ccPoint(i, 0), pen(color(i + 2)));
      s.draw(ccPoint(i, 119), pen(color(i + 5)));
    }
  }});
  f.steps.push_back({"runs", [](ccWin32UIScope& s) {
    s.draw(diamond(25), ccPoint(84, 6), std::vector<unsigned char>{249, 250, 252}, false, 0);
    s.draw(diamond(25), ccPoint(114, 6), std::vector<unsigned char>{249, 250, 252}, true, 0);
    s.draw(diamond(25), ccPoint(84, 36), std::vector<unsigned char>{249}, true, 2);
  }});
  f.steps.push_back({"colored-runs", [](ccWin32UIScope& s) {
    s.draw(diamond(25), ccPoint(114, 36), std::vector<ccColor>{ccColor::blackColor(), ccColor(200, 40, 90), color(3)}, true, 0);
  }});
  f.steps.push_back({"cut-runs", [](ccWin32UIScope& s) {
    std::vector<unsigned char> const map{248, 251, 253};
    for (int x : {-13, 146})
      for (int y : {50, 107})
        s.draw(diamond(25), ccPoint(x, y), map, x < 0, 0);
    std::unique_ptr<ccUIScope> const own(s.createChildScope(ccUIRect(30, 60, 40, 40), false));
    own->set(ccUIRect(0, 0, 40, 40), ccColor::dkGreyColor());
    own->draw(diamond(31), ccPoint(-7, 20), map, true, 0);
    own->draw(diamond(31), ccPoint(20, -9), map, false, 0);
  }});
  f.steps.push_back({"clip", [](ccWin32UIScope& s) {
    s.newDisplayClipRect(ccUIRect(86, 70, 50, 30));
    s.draw(diamond(41), ccPoint(80, 66), std::vector<unsigned char>{254, 245, 244}, false, 0);
    for (int i = 0; i < 80; ++i)
      s.draw(ccPoint(70 + i, 60 + i), pen(color(0)));
    s.newDisplayClipRect(ccUIRect());
  }});
  return f;
}

// Fonts by number in the tables of the text families.
std::vector<HFONT> const& fonts()
{
  static std::vector<HFONT> const all = [] {
    std::vector<HFONT> made;
    auto const add = [&](int height, bool bold, bool italic, bool smooth) {
      plat::FontDesc desc;
      desc.height = height;
      desc.bold = bold;
      desc.italic = italic;
      desc.smooth = smooth;
      made.push_back(plat::platform().objects.createFont(desc));
    };
    add(9, false, false, false);
    add(13, true, false, false);
    add(13, false, true, false);
    add(20, false, false, false);
    add(11, false, false, true);
    add(13, true, false, true);
    add(20, false, false, true);
    return made;
  }();
  return all;
}

void text(ccUIScope& s, std::string const& t, double x, double y, ccColor const& fore, ccColor const& back, int alignment = 0,
          long font = -1)
{
  ccUIFormat format(static_cast<ccUIFormat::Alignment>(alignment));
  format.fontId(font);
  s.draw(t, ccPoint(x, y), fore, back, format);
}

DrawStep clearForText()
{
  return DrawStep{"ground", [](ccWin32UIScope& s) {
    s.set(ground);
    s.fontTable(fonts());
  }};
}

DrawFamily alignments(std::string const& name, std::string const& words, long font)
{
  DrawFamily f{name, {clearForText()}};
  for (int a = 0; a < 9; ++a)
    f.steps.push_back({"alignment-" + std::to_string(a), [a, words, font](ccWin32UIScope& s) {
      double const x = 28 + 52 * (a % 3), y = 24 + 36 * (a / 3);
      seg(s, x - 24, y, x + 24, y, pen(ccColor(70, 90, 130)));
      seg(s, x, y - 16, x, y + 16, pen(ccColor(70, 90, 130)));
      text(s, words, x, y, color(a), a % 2 ? ccColor(90, 30, 60) : ccColor::passColor(), a, font);
    }});
  return f;
}

DrawFamily texts()
{
  DrawFamily f{"text", {clearForText()}};
  f.steps.push_back({"stock", [](ccWin32UIScope& s) {
    text(s, "Hamburg 0.5 & %", 4, 4, color(0), ccColor::passColor());
    text(s, "\xC4\xD6\xDC\xDF \xE9\xE8 \xB5m \xB1 3\xB0", 4, 22, color(1), ccColor(90, 30, 60));
  }});
  f.steps.push_back({"fonts", [](ccWin32UIScope& s) {
    text(s, "small print 123", 4, 42, color(2), ccColor::passColor(), 0, 0);
    text(s, "Bold", 124, 4, color(3), ccColor::passColor(), 0, 1);
    text(s, "Tilt", 126, 22, color(4), ccColor::passColor(), 0, 2);
    text(s, "Gauge", 90, 36, color(5), ccColor::passColor(), 0, 3);
  }});
  f.steps.push_back({"smooth", [](ccWin32UIScope& s) {
    text(s, "soft small 123", 4, 56, color(0), ccColor::passColor(), 0, 4);
    text(s, "Soft bold", 4, 72, color(1), ccColor(90, 30, 60), 0, 5);
    text(s, "Soft", 100, 60, color(2), ccColor::passColor(), 0, 6);
  }});
  f.steps.push_back({"lines", [](ccWin32UIScope& s) {
    text(s, "one\r\nand two", 4, 86, color(3), ccColor::passColor(), 0, 0);
    text(s, "one\nand two", 80, 86, color(4), ccColor(30, 60, 90), 1, 0);
    text(s, "one\nand two", 156, 86, color(5), ccColor(30, 60, 90), 2, 0);
  }});
  f.steps.push_back({"cut", [](ccWin32UIScope& s) {
    text(s, "outside", 0, 110, color(6), ccColor::passColor(), 1, 0);
    std::unique_ptr<ccUIScope> const own(s.createChildScope(ccUIRect(40, 110, 30, 9), false));
    own->set(ccUIRect(0, 0, 30, 9), ccColor::dkGreyColor());
    text(*own, "window", 15, 5, color(0), ccColor::passColor(), 4);
  }});
  return f;
}

DrawFamily fills()
{
  DrawFamily f{"fills", {clear()}};
  f.steps.push_back({"rectangles", [](ccWin32UIScope& s) {
    for (int i = 0; i < 8; ++i)
      s.set(ccUIRect(4 + 14 * i, 4 + i, 1 + 2 * i, 20 - 2 * i), color(i));
    for (int i = 0; i < 16; ++i)
      s.set(ccUIRect(124 + 8 * (i % 4), 4 + 8 * (i / 4), 7, 7), ccColor(static_cast<unsigned char>(i < 8 ? i : 240 + i)));
    s.set(ccUIRect(150, 34, 50, 50), color(4));
  }});
  f.steps.push_back({"walls", [](ccWin32UIScope& s) {
    s.draw(ccPolyline(star(30, 62, 28), true), pen(color(0)));
    seg(s, 70, 40, 110, 84, pen(color(4)));
    s.draw(ccEllipse(ccPoint(90, 62), 26, 22, ccRadian(0)), pen(color(0)));
    s.draw(ccPolyline(Points{{120, 90}, {150, 40}}), pen(color(0), 1, 2));
  }});
  f.steps.push_back({"over", [](ccWin32UIScope& s) {
    s.fill(ccPoint(30, 62), color(1), ground, false);
    s.fill(ccPoint(80, 70), color(2), ground, false);
  }});
  f.steps.push_back({"border", [](ccWin32UIScope& s) {
    s.fill(ccPoint(100, 50), color(7), color(0), true);
    s.fill(ccPoint(30, 40), color(6), color(0), true);
  }});
  f.steps.push_back({"child", [](ccWin32UIScope& s) {
    std::unique_ptr<ccUIScope> const own(s.createChildScope(ccUIRect(10, 92, 90, 24), false));
    own->draw(ccEllipse(ccPoint(45, 12), 30, 20, ccRadian(0)), pen(color(0)));
    own->fill(ccPoint(45, 12), color(3), color(0), true);
    own->fill(ccPoint(2, 2), color(5), ground, false);
  }});
  f.steps.push_back({"clip", [](ccWin32UIScope& s) {
    // What a painter paints is cut for a part of the surface only.
    std::unique_ptr<ccUIScope> const part(s.createChildScope(ccUIRect(105, 90, 50, 28), true));
    part->newDisplayClipRect(ccUIRect(110, 94, 40, 20));
    part->set(ccUIRect(100, 90, 20, 30), color(4));
    part->fill(ccPoint(140, 100), color(6), color(4), true);
  }});
  return f;
}

}  // namespace

std::vector<DrawFamily> const& cf_drawFamilies()
{
  static std::vector<DrawFamily> const all = {lines(),       wideLines(), polygons(),
                                              rectangles(),  ellipses(),  arcs(),
                                              pelsAndRuns(), texts(),     alignments("text-aligned", "Right\nAngle", 0),
                                              alignments("text-smooth", "Qg", 6), fills()};
  return all;
}
