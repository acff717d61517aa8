// Figures of every class under maps that scale, turn, shear and mirror: what is painted lies along the mapped outline, no
// farther from it than the pen reaches in pels, and leaves no gap. The outline's points are worked out here.
#include "canvas/graphic_props.h"
#include "canvas/tablet.h"
#include "geometry/affine_rect.h"
#include "geometry/annulus_section.h"
#include "geometry/bezier.h"
#include "geometry/circle.h"
#include "geometry/deboor_spline.h"
#include "geometry/ellipse_arc.h"
#include "geometry/gen_poly.h"
#include "geometry/gen_rect.h"
#include "geometry/hermite_spline.h"
#include "geometry/interp_spline.h"
#include "geometry/lines.h"
#include "geometry/polygon.h"
#include "geometry/shape_tree.h"
#include "geometry/wireframe.h"
#include "tests/backend/scope/scope_fixture.h"
#include "tests/geometry/shape_support.h"

#include <algorithm>
#include <cmath>

namespace {

using krs_test::Random;
using krs_test::Sampler;
using V = ccVector<2>;

constexpr ccUITablet::Layers kImage = ccUITablet::imageLayer;
constexpr long wide = 200, high = 150;
// Of a pel's middle from the outline, beyond half the pen's width. Chords have ends in whole pels and bend by a quarter of one.
constexpr double chordSlack = 1.5;
// Of a point of the outline from a painted pel: the last pel of an open chain stays unpainted.
constexpr double endSlack = 2.5;
// The scope's own ellipses and rectangles lie in boxes of whole pels, whatever way these are turned.
constexpr double boxSlack = 2.3;

struct Drawn {
  double slack;
  std::string name;
  ccPtrHandle_const<ccShape> shape;
  std::function<void(ccUITablet&, ccGraphicProps const&)> draw;
};

template <class Shape> Drawn drawn(std::string const& name, Shape const& shape)
{
  bool const isFigure = std::is_same_v<Shape, ccCircle> || std::is_same_v<Shape, ccEllipse> || std::is_same_v<Shape, ccGenRect> ||
                        std::is_same_v<Shape, ccShapeTree>;
  return {isFigure ? boxSlack : chordSlack, name, shape.clone(), [shape](ccUITablet& t, ccGraphicProps const& p) { t.draw(shape, p, kImage); }};
}

template <class Spline> Spline splineThrough(std::vector<V> const& points, bool closed)
{
  Spline spline;
  for (V const& p : points)
    spline.addControlPoint(p);
  spline.isClosed(closed);
  return spline;
}

// Figures of about unit size about (0, 0).
std::vector<Drawn> figures(Random& random)
{
  auto const place = [&] { return ccPoint(random.in(-0.2, 0.2), random.in(-0.2, 0.2)); };
  double const a = random.in(0.4, 1), b = random.in(0.4, 1);
  ccRadian const turn = random.angle();
  std::vector<V> ring;
  for (int i = 0; i < 6; ++i) {
    double const r = random.in(0.4, 1), angle = i + random.in(-0.3, 0.3);
    ring.push_back(V(r * std::cos(angle), r * std::sin(angle)));
  }
  cc2Wireframe wire;
  ccGenPoly poly;
  for (std::size_t i = 0; i < 4; ++i) {
    V const corner(i == 0 || i == 3 ? -a : a, i < 2 ? -b : b);
    wire.insertVertex(ccPoint(corner), random.in(0, 0.3));
    poly.insertVertex(ccPoint(corner), i % 2 ? 0 : random.in(0, 0.2), ccRadian(i == 2 ? random.in(-1, 1) : 0));
  }
  wire.close();
  poly.close();
  ccShapeTree tree;
  tree.addShape(new ccCircle(place(), a));
  tree.addShape(new ccBezierCurve(ccPoint(ring[0]), ccPoint(ring[1]), ccPoint(ring[2]), ccPoint(ring[3])));
  std::vector<Drawn> all{
      drawn("circle", ccCircle(place(), a)),
      drawn("ellipse", ccEllipse(place(), a, b, turn)),
      drawn("uprightEllipse", ccEllipse(place(), a, b, ccRadian(0))),
      drawn("arc", ccEllipseArc2(ccEllipse2(place(), a, b, turn), random.angle(), ccRadian(random.in(-6, 6)))),
      drawn("genRect", ccGenRect(place(), V(a, b), turn, V(a / 3, b / 4))),
      drawn("uprightRect", ccGenRect(place(), V(a, b), ccRadian(0), V())),
      drawn("skewRect", ccGenRect(place(), a, b, random.chance(2) ? 1 : -1, ccRadian(random.in(-0.8, 0.8)), turn, V(0.4, 0.6))),
      drawn("rect", ccRect(place(), V(a, b))),
      drawn("affineRect", ccAffineRectangle(place(), a, b, turn, ccRadian(random.in(-0.8, 0.8)))),
      drawn("annulus", ccEllipseAnnulus(ccEllipse(ccPoint(), a, b, turn), ccEllipse(ccPoint(), a / 2, b / 2, turn))),
      drawn("section", ccEllipseAnnulusSection(place(), a / 2, a, ccRadian(random.in(0, 3)), ccRadian(random.in(3.2, 6)))),
      drawn("polyline", ccPolyline(ring, true)),
      drawn("bezier", ccBezierCurve(ccPoint(ring[0]), ccPoint(ring[2]), ccPoint(ring[4]), ccPoint(ring[1]))),
      drawn("deBoor", splineThrough<ccDeBoorSpline>(ring, random.chance(2))),
      drawn("hermite", splineThrough<ccHermiteSpline>(ring, random.chance(2))),
      drawn("interp", splineThrough<ccInterpSpline>(ring, true)),
      drawn("wireframe", wire),
      drawn("tree", tree)};
  if (poly.isValid())
    all.push_back(drawn("genPoly", poly));
  return all;
}

// By the definition of a map.
V mapped(ccXform<2> const& x, V const& p)
{
  ccMatrix<2> const& m = x.matrix();
  return V(m.element(0, 0) * p.x() + m.element(0, 1) * p.y() + x.trans().x(),
           m.element(1, 0) * p.x() + m.element(1, 1) * p.y() + x.trans().y());
}

}  // namespace

class TabletMaps : public ScopeTest {
protected:
  ScopeProbe* created()
  {
    EXPECT_EQ(scope.create(window_, ccPair<long>(wide, high), -1), 0);
    return &scope;
  }
  // Along all of the outline, and only there.
  void expectAlong(Drawn const& figure, ccXform<2> const& map, long penWidth)
  {
    scope.set(ccColor::blackColor());
    tablet.baseMap(map);
    figure.draw(tablet, ccGraphicProps(ccColor::whiteColor(), penWidth, ceSolidPen, false));
    std::vector<std::uint32_t> const pels = pelsOf(scope.surface());
    std::vector<V> outline;
    for (V const& p : Sampler(*figure.shape, 400).points)
      outline.push_back(mapped(map, p));
    double const reach = (penWidth < 2 ? 0 : static_cast<double>(penWidth) / 2) + figure.slack;
    // Distances are looked up near a point only.
    std::vector<double> nearest(pels.size(), 1e9);
    long gaps = 0;
    for (V const& p : outline) {
      long const cx = std::lround(p.x()), cy = std::lround(p.y()), r = static_cast<long>(std::ceil(reach)) + 1;
      bool met = cx < 3 || cy < 3 || cx >= wide - 3 || cy >= high - 3;  // near the edge it may be met outside
      for (long y = std::max(cy - r, 0L); y <= std::min(cy + r, high - 1); ++y)
        for (long x = std::max(cx - r, 0L); x <= std::min(cx + r, wide - 1); ++x) {
          std::size_t const i = static_cast<std::size_t>(y * wide + x);
          double const d = std::hypot(static_cast<double>(x) - p.x(), static_cast<double>(y) - p.y());
          nearest[i] = std::min(nearest[i], d);
          met = met || (pels[i] != 0 && d <= endSlack);
        }
      gaps += met ? 0 : 1;
    }
    EXPECT_EQ(gaps, 0) << figure.name << " width " << penWidth;
    long astray = 0, painted = 0;
    for (std::size_t i = 0; i < pels.size(); ++i)
      if (pels[i] != 0) {
        ++painted;
        astray += nearest[i] > reach ? 1 : 0;
      }
    EXPECT_EQ(astray, 0) << figure.name << " width " << penWidth;
    EXPECT_GT(painted, 0) << figure.name;
  }

  ScopeProbe scope;
  ccUITablet tablet{created(), nullptr};
};

TEST_F(TabletMaps, everyFigureIsPaintedAlongItsOutlineUnderEveryMap)
{
  Random random(7);
  for (int round = 0; round < krs_test::rounds(12); ++round) {
    // Turned, stretched unevenly, turned again and mirrored every other time; or a mere zoom.
    double const x = random.in(18, 60), y = random.chance(3) ? x : random.in(18, 60);
    ccMatrix<2> const stretch(x, 0, 0, random.chance(2) ? y : -y);
    ccMatrix<2> const m =
        random.chance(4) ? ccMatrix<2>(x, 0, 0, x) : ccMatrix<2>(random.angle(), 1) * stretch * ccMatrix<2>(random.angle(), 1);
    ccXform<2> const map(m, V(random.in(60, 140), random.in(50, 100)));
    for (Drawn const& figure : figures(random)) {
      expectAlong(figure, map, 1);
      expectAlong(figure, map, 5);
      if (HasFailure()) {
        ADD_FAILURE() << "round " << round << " matrix " << m.element(0, 0) << ' ' << m.element(0, 1) << ' '
                      << m.element(1, 0) << ' ' << m.element(1, 1);
        return;
      }
    }
  }
}

TEST_F(TabletMaps, pensStayAsWideAsTheyAreAtEveryZoom)
{
  for (double const zoom : {0.05, 0.5, 1.0, 8.0, 400.0, 1e5}) {
    for (long const penWidth : {1L, 4L, 9L}) {
      scope.set(ccColor::blackColor());
      tablet.baseMap(ccXform<2>(ccMatrix<2>(zoom, 0, 0, zoom), V(-1000 * zoom + 100, -1000 * zoom + 75)));
      tablet.draw(ccLineSeg(ccPoint(1000 - 5000 / zoom, 1000), ccPoint(1000 + 5000 / zoom, 1000)),
                  ccGraphicProps(ccColor::whiteColor(), penWidth, ceSolidPen, false), kImage);
      std::vector<std::uint32_t> const pels = pelsOf(scope.surface());
      for (long const x : {0L, 57L, 199L}) {
        long rows = 0;
        for (long y = 0; y < high; ++y)
          rows += pels[static_cast<std::size_t>(y * wide + x)] != 0 ? 1 : 0;
        EXPECT_EQ(rows, penWidth) << zoom << ' ' << x;
      }
    }
  }
}
