#include "tests/geometry/families.h"

#include "geometry/all.h"
#include "tests/geometry/poly_support.h"

namespace krs_test {

namespace {

using Handle = ccPtrHandle_const<ccShape>;

// Makes the parts of shapes.
struct Maker {
  Random& r;
  Scale scale;

  V place() { return r.vector(r.chance(4) ? scale.far : scale.near); }
  double length() { return r.chance(10) ? 0.0 : r.magnitude(scale.least, scale.most); }
  V lengths() { return V(length(), length()); }
  double fraction() { return r.chance(4) ? 0 : r.chance(3) ? 1 : r.in(0, 1); }
  ccRadian span() { return r.chance(8) ? deg(360) : r.chance(8) ? deg(90) : deg(r.in(-360, 360)); }

  // Points around a place, some of them the same, sometimes squeezed to a line or almost.
  std::vector<V> points(int count)
  {
    V const at = place();
    double const size = r.magnitude(scale.least, scale.most);
    double const squeeze = r.chance(3) ? r.magnitude(scale.least / scale.most, 1) : r.chance(8) ? 0.0 : 1.0;
    ccMatrix<2> const lie = ccMatrix<2>(r.angle(), size) * ccMatrix<2>(1, 0, 0, squeeze);
    std::vector<V> list;
    for (int i = 0; i < count; ++i)
      list.push_back(i > 0 && r.chance(6) ? list[static_cast<std::size_t>(r.below(i))] : at + lie * r.vector(1));
    return list;
  }

  ccEllipse ellipse() { return ccEllipse(place(), r.chance(4) ? V(1, 1) * length() : lengths(), r.angle()); }
  ccGenRect genRect()
  {
    return ccGenRect(place(), length(), length(), r.chance(2) ? 1 : -1, deg(r.chance(3) ? 0 : r.in(-80, 80)), r.angle(),
                     V(fraction(), fraction()));
  }
  ccBezierCurve curve()
  {
    std::vector<V> const p = points(4);
    std::array<double, 4> w{1, 1, 1, 1};
    if (!r.chance(3))
      for (double& v : w)
        v = r.magnitude(0.01, 100);
    return ccBezierCurve({p[0], p[1], p[2], p[3]}, w);
  }
  ccEllipseAnnulusSection section()
  {
    ccPoint const c = place();
    ccEllipse const first(c, lengths(), r.angle());
    // Radii in one ratio, so that every map is exact.
    double const ratio = r.magnitude(0.2, 5);
    ccRadian const start = r.angle();
    return ccEllipseAnnulusSection(first, ccEllipse(c, first.radii() * ratio, first.rotation()), start,
                                   start + deg(r.chance(10) ? 0 : r.in(0, 359)), r.chance(2), r.chance(2), r.chance(3));
  }
  ccEllipseAnnulus ring()
  {
    ccPoint const c = place();
    return ccEllipseAnnulus(ccEllipse(c, lengths(), r.angle()), ccEllipse(c, lengths(), r.angle()));
  }
  ccBezierPath path()
  {
    ccBezierPath p;
    p.append(ccEllipseArc2(ccEllipse2(ellipse()), r.angle(), span()));
    for (int i = r.below(4); i > 0; --i) {
      ccPoint const from = p.curves().back().endPoint(), to = from + r.vector(scale.most);
      if (r.chance(2))
        p.appendLine(from, to);
      else
        p.append(ccBezierCurve(from, from + r.vector(scale.most), to + r.vector(scale.most), to));
    }
    p.closed(r.chance(2));
    return p;
  }
  cc2Wireframe wire()
  {
    std::vector<ccSMDGDPolyVertex> records;
    for (V const& p : points(1 + r.below(6))) {
      bool const isBent = r.chance(2);
      records.push_back(record(p, 0, isBent ? deg(r.in(-300, 300)) : ccRadian(0), tol(r.in(0, 5))));
    }
    cc2Wireframe w(records, records.size() > 1 && r.chance(2));
    w.polarity(r.chance(2));
    for (long i = 0; i < w.numVertices(); ++i) {
      w.vertexRoundingSize(i, r.magnitude(scale.least, scale.most));
      if (!w.isValid())
        w.vertexRoundingSize(i, 0);
    }
    return w;
  }
  Handle tree(int depth)
  {
    ccPtrHandle<ccShapeTree> const t(new ccShapeTree);
    for (int i = 1 + r.below(3); i > 0; --i)
      t->addShape(depth > 0 && r.chance(3) ? tree(depth - 1)
                  : r.chance(2)            ? Handle(new ccEllipse(ellipse()))
                                           : Handle(new ccPolyline(points(1 + r.below(6)), true)));
    return t;
  }
};

} // namespace

std::vector<Family> families(Scale const& scale)
{
  std::vector<Family> all;
  auto const add = [&](char const* name, auto const& make) {
    all.push_back({name, [scale, make](Random& r) {
                     Maker maker{r, scale};
                     return make(maker, r);
                   }});
  };
  add("ccLineSeg", [](Maker& m, Random& r) -> Handle {
    std::vector<V> const p = m.points(2);
    return new ccLineSeg(p[0], r.chance(2) ? p[1] : m.place());
  });
  add("ccRect", [](Maker& m, Random& r) -> Handle {
    return new ccRect(m.place(), V(m.length(), m.length() * (r.chance(4) ? -1 : 1)));
  });
  add("ccAffineRectangle", [](Maker& m, Random& r) -> Handle {
    return new ccAffineRectangle(m.place(), m.length(), m.length(), r.angle(),
                                 deg(r.in(-80, 80) + (r.chance(3) ? 180 : 0)));
  });
  add("ccGenRect", [](Maker& m, Random&) -> Handle { return new ccGenRect(m.genRect()); });
  add("ccCircle", [](Maker& m, Random&) -> Handle { return new ccCircle(m.place(), m.length()); });
  add("ccEllipse", [](Maker& m, Random&) -> Handle { return new ccEllipse(m.ellipse()); });
  add("ccEllipse2", [](Maker& m, Random&) -> Handle { return new ccEllipse2(m.ellipse()); });
  add("ccEllipseArc", [](Maker& m, Random& r) -> Handle { return new ccEllipseArc(m.ellipse(), r.angle(), m.span()); });
  add("ccEllipseArc2",
      [](Maker& m, Random& r) -> Handle { return new ccEllipseArc2(ccEllipse2(m.ellipse()), r.angle(), m.span()); });
  add("ccEllipseAnnulus", [](Maker& m, Random&) -> Handle { return new ccEllipseAnnulus(m.ring()); });
  add("ccGenAnnulus", [](Maker& m, Random&) -> Handle { return new ccGenAnnulus(m.genRect(), m.genRect()); });
  add("ccEllipseAnnulusSection", [](Maker& m, Random&) -> Handle { return new ccEllipseAnnulusSection(m.section()); });
  add("ccBezierCurve", [](Maker& m, Random&) -> Handle { return new ccBezierCurve(m.curve()); });
  add("ccBezierPath", [](Maker& m, Random&) -> Handle { return new ccBezierPath(m.path()); });
  add("ccPointSet", [](Maker& m, Random& r) -> Handle { return new ccPointSet(m.points(1 + r.below(6))); });
  add("ccPolyline",
      [](Maker& m, Random& r) -> Handle { return new ccPolyline(m.points(1 + r.below(6)), r.chance(2)); });
  add("ccPolygon",
      [](Maker& m, Random& r) -> Handle { return new ccPolygon(m.points(1 + r.below(6)), 1 + r.below(2)); });
  add("ccCoordAxes", [](Maker& m, Random&) -> Handle {
    std::vector<V> const p = m.points(3);
    return new ccCoordAxes(p[0], p[1], p[2]);
  });
  add("ccGenPoly", [](Maker& m, Random&) -> Handle { return new ccGenPoly(m.wire()); });
  add("cc2Wireframe", [](Maker& m, Random&) -> Handle { return new cc2Wireframe(m.wire()); });
  add("ccDeBoorSpline", [](Maker& m, Random& r) -> Handle {
    ccPtrHandle<ccDeBoorSpline> const s(new ccDeBoorSpline(m.points(1 + r.below(7)), r.chance(2)));
    for (long i = 0; i < s->numControlPoints(); ++i)
      s->weight(i, r.chance(2) ? 1 : r.magnitude(0.01, 100));
    return s;
  });
  add("ccHermiteSpline", [](Maker& m, Random& r) -> Handle {
    ccPtrHandle<ccHermiteSpline> const s(new ccHermiteSpline(m.points(1 + r.below(7)), r.chance(2)));
    for (long i = 0; i < s->numControlPoints(); ++i)
      if (r.chance(3))
        s->controlTangent(i, r.vector(1) * m.length());
    return s;
  });
  add("ccInterpSpline", [](Maker& m, Random& r) -> Handle {
    ccPtrHandle<ccInterpSpline> const s(new ccInterpSpline(m.points(1 + r.below(7)), r.chance(2), r.below(3)));
    s->endConditions(r.below(2));
    s->endTangent(r.vector(1) * m.length());
    return s;
  });
  add("ccShapeTree", [](Maker& m, Random&) { return m.tree(2); });
  return all;
}

} // namespace krs_test
