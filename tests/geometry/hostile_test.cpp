// Numbers that no drawing has: NaN, infinities, coordinates whose differences overflow, sizes next to 0, indices out of
// range, long chains. Every call gives a value or one of the exceptions that geometry throws, and none hangs.
#include "geometry/all.h"
#include "tests/geometry/shape_support.h"

#include <chrono>

using namespace krs_test;

namespace {

using Handle = ccPtrHandle_const<ccShape>;

constexpr double kHuge = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();

class Hostile {
public:
  explicit Hostile(unsigned seed) : random_(seed) {}

  int below(int n) { return random_.below(n); }
  bool chance(int oneIn) { return random_.chance(oneIn); }
  // Mostly usable, so that calls get past the checks of their arguments.
  double number()
  {
    if (!chance(4))
      return random_.in(-100, 100);
    static double const bad[] = {0,      -0.0,  kNan,   cfInfinity, -cfInfinity, 1e308,  -1e308, kHuge,
                                 -kHuge, kTiny, -kTiny, 1e-310,     1e-160,      1e-200, 1e160,  -1e160,
                                 1e200,  1e-9,  1e9,    1e-308,     1e300,       cfPi};
    return bad[below(static_cast<int>(std::size(bad)))];
  }
  double size()
  {
    double const n = number();
    return chance(10) ? n : std::abs(n);
  }
  ccRadian angle() { return chance(3) ? deg(45.0 * (below(41) - 20)) : ccRadian(number() / (chance(2) ? 10 : 1)); }
  V vector() { return V(number(), number()); }
  V sizes() { return V(size(), size()); }
  long index() // around the end of short lists, and far away
  {
    static long const bad[] = {-1, -2, std::numeric_limits<long>::min(), std::numeric_limits<long>::max(), 1000000};
    return chance(5) ? bad[below(5)] : below(6);
  }
  ccMatrix<2> matrix()
  {
    switch (below(4)) {
    case 0:
      return ccMatrix<2>(number(), number(), number(), number());
    case 1:
      return ccMatrix<2>(angle(), number());
    case 2:
      return ccMatrix<2>(angle(), angle(), number(), number());
    default:
      return ccMatrix<2>(number(), 0, 0, number());
    }
  }
  ccXform<2> xform() { return ccXform<2>(matrix(), vector()); }
  std::vector<V> points()
  {
    std::vector<V> list(static_cast<std::size_t>(below(6)));
    for (V& p : list)
      p = chance(6) && &p != &list[0] ? (&p)[-1] : vector();
    return list;
  }
  ccSMDGDPolyVertex vertex()
  {
    ccSMDGDPolyVertex v;
    v.point = vector();
    v.roundingSize = chance(2) ? 0 : size();
    v.span = chance(2) ? ccRadian(0) : angle();
    return v;
  }
  cc2Wireframe wire()
  {
    std::vector<ccSMDGDPolyVertex> list(static_cast<std::size_t>(below(6)));
    for (ccSMDGDPolyVertex& v : list)
      v = vertex();
    return cc2Wireframe(list, list.size() > 1 && chance(2));
  }

private:
  Random random_;
};

ccEllipse ellipse(Hostile& h) { return ccEllipse(h.vector(), h.sizes(), h.angle()); }
ccEllipseArc2 arc(Hostile& h) { return ccEllipseArc2(ccEllipse2(ellipse(h)), h.angle(), h.angle()); }
ccGenRect genRect(Hostile& h)
{
  switch (h.below(4)) {
  case 0:
    return ccGenRect(h.vector(), h.sizes(), h.angle(), h.sizes());
  case 1:
    return ccGenRect(h.vector(), h.matrix(), h.sizes());
  default:
    return ccGenRect(h.vector(), h.size(), h.size(), h.below(5) - 2, h.angle(), h.angle(),
                     V(h.size() / 100, h.size() / 100));
  }
}
ccAffineRectangle affineRect(Hostile& h)
{
  return ccAffineRectangle(h.vector(), h.size(), h.size(), h.angle(), h.angle());
}
ccBezierCurve curve(Hostile& h)
{
  return ccBezierCurve({h.vector(), h.vector(), h.vector(), h.vector()}, {h.size(), h.size(), h.size(), h.size()});
}
ccEllipseAnnulusSection section(Hostile& h)
{
  if (h.chance(2))
    return ccEllipseAnnulusSection(h.vector(), h.size(), h.size(), h.angle(), h.angle(), h.chance(2), h.chance(2),
                                   h.chance(2));
  V const c = h.vector();
  return ccEllipseAnnulusSection(ccEllipse(c, h.sizes(), h.angle()), ccEllipse(c, h.sizes(), h.angle()), h.angle(),
                                 h.angle());
}
ccDeBoorSpline deBoor(Hostile& h)
{
  std::vector<V> const p = h.points();
  std::vector<double> w(p.size());
  for (double& v : w)
    v = h.size();
  return ccDeBoorSpline(p, w, h.chance(2));
}

Handle make(Hostile& h, std::vector<Handle> const& pool)
{
  switch (h.below(25)) {
  case 0:
    return new ccLineSeg(h.vector(), h.vector());
  case 1:
    return new ccRect(h.vector(), h.vector());
  case 2:
    return new ccAffineRectangle(affineRect(h));
  case 3:
    return new ccGenRect(genRect(h));
  case 4:
    return new ccCircle(h.vector(), h.size());
  case 5:
    return new ccEllipse(ellipse(h));
  case 6:
    return new ccEllipse2(ellipse(h));
  case 7:
    return new ccEllipseArc(ellipse(h), h.angle(), h.angle());
  case 8:
    return new ccEllipseArc2(arc(h));
  case 9: {
    V const c = h.vector();
    return new ccEllipseAnnulus(ccEllipse(c, h.sizes(), h.angle()), ccEllipse(c, h.sizes(), h.angle()));
  }
  case 10:
    return new ccGenAnnulus(genRect(h), genRect(h));
  case 11:
    return new ccEllipseAnnulusSection(section(h));
  case 12:
    return new ccBezierCurve(curve(h));
  case 13: {
    ccPtrHandle<ccBezierPath> const p(new ccBezierPath);
    p->append(curve(h));
    p->append(arc(h));
    p->closed(h.chance(2));
    return p;
  }
  case 14:
    return new ccPointSet(h.points());
  case 15:
    return new ccPolyline(h.points(), h.chance(2));
  case 16:
    return new ccPolygon(h.points(), h.below(4));
  case 17:
    return new ccCoordAxes(h.vector(), h.vector(), h.vector());
  case 18:
    return new ccShapeTree(
        {pool[static_cast<std::size_t>(h.below(static_cast<int>(pool.size())))], new ccCircle(V(1, 2), 3)});
  case 19:
    return new ccGenPoly(h.wire());
  case 20:
    return new cc2Wireframe(h.wire());
  case 21:
    return new ccDeBoorSpline(deBoor(h));
  case 22: {
    ccPtrHandle<ccHermiteSpline> const s(new ccHermiteSpline(h.points(), h.chance(2)));
    s->controlTangent(h.below(4), h.vector());
    return s;
  }
  case 23: {
    ccPtrHandle<ccInterpSpline> const s(new ccInterpSpline(h.points(), h.chance(2), h.below(4)));
    s->endConditions(h.below(3));
    s->startTangent(h.vector());
    return s;
  }
  default: {
    ccSMDGDPoly poly(h.wire(), "poly");
    h.chance(2) ? ccSMDGDPolyPrivate::snapRectilinear(poly) : ccSMDGDPolyPrivate::closeRectilinear(poly);
    return new cc2Wireframe(poly.wireframe());
  }
  }
}

// Reads the whole outline.
class Reader : public ccOutlineSink {
public:
  long pieces = 0;
  void point(V const&) override { ++pieces; }
  void moveTo(V const&) override { ++pieces; }
  void lineTo(V const&) override { ++pieces; }
  void arcTo(ccEllipseArc2 const& a) override
  {
    ++pieces;
    a.phiStart(), a.phiEnd(), a.midPoint(), a.isDegenerate();
    ccPoint first, last;
    a.degenerateSegment(first, last);
  }
  void curveTo(ccBezierCurve const& c) override
  {
    ++pieces;
    c.point(0.3), c.derivative(1), c.split(0.5);
    struct Count : Reader {
      void lineTo(V const&) override { ++lines; }
      long lines = 0;
    } count;
    if (pieces == 2)
      c.flatten(1e300, count);
  }
  void close() override { ++pieces; }
};

void measure(Hostile& h, ccShape const& shape)
{
  double const d = shape.distanceToPoint(h.vector());
  EXPECT_GE(d, 0) << typeid(shape).name(); // NaN is not
  EXPECT_EQ(shape.distanceToPoint(V(kNan, 1)), cfInfinity) << typeid(shape).name();
  ccRect const box = shape.encloseRect();
  EXPECT_TRUE(cf_isFinite(box.ul()) && box.width() >= 0 && box.height() >= 0) << typeid(shape).name();
  shape.encloseGenRect();
  Reader reader;
  shape.outline(reader);
}

// Calls one operation of the shape's own class, or a drag of it.
void poke(Hostile& h, ccShape& shape)
{
  if (auto* s = dynamic_cast<ccLineSeg*>(&shape)) {
    s->p1(h.vector()), s->p2(h.vector()), s->closestPoint(h.vector()), s->length(), s->angle();
    ccLine line(h.vector(), h.vector());
    EXPECT_NEAR(line.dir().len(), 1, 1e-12);
    EXPECT_GE(line.distToPoint(h.vector()), 0);
    ccLineSeg part;
    line.clip(ccRect(h.vector(), h.vector()), part);
    line.map(h.xform());
  } else if (auto* a = dynamic_cast<ccAffineRectangle*>(&shape)) {
    cfAffineRectSize(*a, static_cast<int>(h.below(4)), h.vector());
    cfAffineRectSize(*a, h.chance(2) ? std::numeric_limits<int>::min() : h.below(9) - 3, h.vector());
    a->skew(h.angle()), a->xLength(h.size());
    ccGenRect const same(*a);
  } else if (auto* g = dynamic_cast<ccGenRect*>(&shape)) {
    V const unit(h.chance(3) ? h.number() : 2 * h.below(2) - 1, h.chance(3) ? h.number() : 2 * h.below(2) - 1);
    cfGenRectSize(*g, unit, h.vector(), h.vector(), h.chance(2), h.chance(2));
    cfGenRectRound(*g, unit, h.vector());
    g->toUnit(h.vector()), g->fromUnit(h.vector());
    g->xformTo(genRect(h));
    g->rounding(h.sizes()), g->center(h.vector());
    ccAffineRectangle const same(*g);
    g->matrix();
  } else if (auto* e = dynamic_cast<ccEllipse*>(&shape)) {
    e->fromUnit(h.vector()), e->closestPoint(h.vector());
    EXPECT_TRUE(std::isfinite(e->unit().matrix().determinant()) || e->rx() < 1e-100 || e->ry() < 1e-100);
    e->radii(h.sizes()), e->rotation(h.angle());
  } else if (auto* c = dynamic_cast<ccEllipseArc2*>(&shape)) {
    c->oldEllipseArc(), c->isInSpan(h.angle()), c->closestPoint(h.vector()), c->pointAt(h.number());
    c->start(h.angle()), c->span(h.angle());
    cc2SegmentArc const segment(c->oldEllipseArc());
    segment.closestPoint(h.vector()), segment.midDirection();
  } else if (auto* r = dynamic_cast<ccGenAnnulus*>(&shape)) {
    r->center(h.vector());
  } else if (auto* w = dynamic_cast<ccEllipseAnnulusSection*>(&shape)) {
    cfSectionWarp(*w, h.vector(), h.vector(), h.number(), h.number());
    w->start(h.angle()), w->stop(h.angle()), w->middle(), w->span();
  } else if (auto* p = dynamic_cast<ccPointSet*>(&shape)) {
    p->mapCentered(h.xform()), p->angle(), p->degen();
    (*p)[h.index()];
  } else if (auto* b = dynamic_cast<ccBezierCurve*>(&shape)) {
    b->closestPoint(h.vector()), b->point(h.number()), b->split(h.number());
    ccWeightLaw const law(h.size(), h.size());
    b->weight(h.index(), law.weight(h.number()));
    b->controlPoint(h.index(), h.vector());
  } else if (auto* poly = dynamic_cast<cc2Wireframe*>(&shape)) {
    long const i = h.index();
    switch (h.below(12)) {
    case 0:
      poly->insertVertex(i, h.vector(), h.size(), h.angle(),
                         ccDimTol(h.number(), h.number(), h.number(), ccDimTol::eTypeDefault));
      break;
    case 1:
      poly->deleteVertex(i);
      break;
    case 2:
      poly->close(h.angle(), ccDimTol());
      break;
    case 3:
      poly->vertexRoundingSize(i, h.size());
      break;
    case 4:
      poly->segmentAngleSpan(i, h.angle());
      break;
    case 5:
      poly->isValid(), poly->rounding(i), poly->segment(i, false), poly->encloseRect(h.xform());
      break;
    case 6:
      poly->segmentAngleSpan(i, cfArcSpanThrough(h.vector(), h.vector(), h.vector()));
      break;
    case 7:
      cfRoundingSize(*poly, i, h.vector());
      break;
    case 8:
      cfClosePolygon(*poly, i);
      break;
    case 9:
      poly->map(cc2Rigid(ccDegree(h.number()), h.vector()), h.number());
      break;
    default: {
      ccSMDGDPoly edited(*poly, "poly");
      ccSMDGDPolyPrivate::isRectilinear(edited), ccSMDGDPolyPrivate::dominantAngle(edited);
      std::vector<ccSMDGDPoly> pieces;
      ccSMDGDPolyPrivate::deleteSegments(edited, {h.index(), h.index()}, pieces);
      ccSMDGDPolyPrivate::roundPoint(edited, i), ccSMDGDPolyPrivate::vertexAngle(edited, i);
      edited.vertex(i, true);
      ccSMDGDPolyPrivate::replaceVertexRectilinear(edited, i, h.vertex());
      ccSMDGDPolyPrivate::roundedArcSegment_(edited, i);
    }
    }
  } else if (auto* spline = dynamic_cast<ccCubicSpline*>(&shape)) {
    long const i = h.index();
    switch (h.below(6)) {
    case 0:
      spline->insertControlPoint(i, h.vector());
      break;
    case 1:
      spline->deleteControlPoint(i);
      break;
    case 2:
      spline->isClosed(h.chance(2));
      break;
    case 3:
      spline->bezierCurve(i);
      break;
    case 4:
      spline->intervalMode(h.below(4));
      break;
    default:
      spline->controlPoint(i, h.vector());
    }
    if (auto* d = dynamic_cast<ccDeBoorSpline*>(spline))
      d->weight(i, h.size());
    if (auto* t = dynamic_cast<ccHermiteSpline*>(spline))
      t->controlTangent(i, h.vector());
    if (auto* n = dynamic_cast<ccInterpSpline*>(spline))
      n->tangent(i), n->endTangent(h.vector());
  }
  cfAxesAdjust(h.xform(), h.number(), h.chance(2), h.vector(), {h.chance(2), h.chance(2), h.chance(2), h.chance(2)});
}

// Runs a call that may throw what geometry throws.
template <class Call> bool survives(Call const& call)
{
  try {
    call();
    return true;
  } catch (ccShapesError::BadParams const&) {
  } catch (ccShapesError::DegenerateShape const&) {
  } catch (ccShapesError::BadGeom const&) {
  } catch (ccMathError::Singular const&) {
  }
  return false;
}

} // namespace

TEST(HostileGeometry, aStormOfBadNumbersGivesValuesOrItsOwnExceptions)
{
  Hostile h(1);
  std::vector<Handle> pool(32, new ccCircle(V(1, 2), 3));
  long measured = 0, edited = 0, mapped = 0, made = 0;
  for (int i = 0; i < rounds(25000); ++i) {
    std::size_t const slot = static_cast<std::size_t>(h.below(32));
    SCOPED_TRACE(i);
    made += survives([&] { pool[slot] = make(h, pool); });
    measured += survives([&] { measure(h, *pool[slot]); });
    edited += survives([&] {
      ccPtrHandle<ccShape> const copy = pool[slot]->clone();
      for (int k = 0; k < 3; ++k)
        survives([&] { poke(h, *copy); });
      measure(h, *copy);
      pool[slot] = copy;
    });
    mapped += survives([&] {
      Handle const image = h.chance(4) ? cfShapeMapShapePosition(*pool[slot], h.xform()) : pool[slot]->map(h.xform());
      ASSERT_TRUE(image);
      pool[slot] = image;
      measure(h, *image);
    });
    bool isUsable = false;
    survives([&] { isUsable = pool[slot]->distanceToPoint(V()) < 1e12; });
    if (!isUsable)
      pool[slot] = new ccCircle(V(1, 2), 3);
    if (HasFailure())
      return;
  }

  // Most calls reach what they call.
  EXPECT_GT(measured, rounds(15000));
  EXPECT_GT(edited, rounds(10000));
  EXPECT_GT(mapped, rounds(5000));
  EXPECT_GT(made, rounds(5000));
}
