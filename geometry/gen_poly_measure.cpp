// Segments and roundings of a polygon, what is measured on them, and maps.

#include "geometry/gen_poly.h"

#include "geometry/bezier.h"
#include "geometry/lines.h"

namespace {

// Whether two roundings leave no room for each other on a segment that starts with out's trim and ends with in's.
bool cf_overlap(cs_PolyRounding const& start, cs_PolyRounding const& end)
{
  return start.fits && end.fits && start.trimOut + end.trimIn > 1 + cf_trimTolerance;
}

// Gathers an outline into one chain of curves.
class cc_CurveSink : public ccOutlineSink {
public:
  ccBezierPath& path() { return path_; }
  void point(ccVector<2> const& p) override { path_.appendLine(p, p); }
  void moveTo(ccVector<2> const& p) override { current_ = p; }
  void lineTo(ccVector<2> const& p) override
  {
    path_.appendLine(current_, p);
    current_ = p;
  }
  void arcTo(ccEllipseArc2 const& arc) override
  {
    path_.append(arc);
    current_ = arc.endPoint();
  }
  void curveTo(ccBezierCurve const& curve) override
  {
    path_.append(curve);
    current_ = curve.endPoint();
  }
  void close() override { path_.closed(true); }

private:
  ccBezierPath path_;
  ccVector<2> current_;
};

}  // namespace

cs_PolySegment ccGenPoly::fullSegment_(long i) const
{
  ccSMDGDPolyVertex const& end = vertices_[static_cast<std::size_t>(i + 1 == numVertices() ? 0 : i + 1)];
  return {vertices_[static_cast<std::size_t>(i)].point, end.point, end.span};
}

cs_PolyRounding ccGenPoly::corner_(long i) const
{
  double const size = vertices_[static_cast<std::size_t>(i)].roundingSize;
  long const last = numVertices() - 1;
  if (size == 0 || last < 1 || (!closed_ && (i == 0 || i == last)))
    return cs_PolyRounding();
  return cf_roundCorner(fullSegment_(i == 0 ? last : i - 1), fullSegment_(i), size);
}

cs_PolyRounding ccGenPoly::rounding(long i) const
{
  checkedVertex_(i);
  cs_PolyRounding const own = corner_(i);
  if (!own.fits)
    return own;
  if (i > 0 && i == numVertices() - 1 && cf_overlap(own, corner_(0)))
    return cs_PolyRounding();
  // In a run of vertices that each overlap with the one before, the first is rounded and then every other one.
  bool isRounded = true;
  cs_PolyRounding current = own;
  for (long k = i; k > 0; --k) {
    cs_PolyRounding const before = corner_(k - 1);
    if (!cf_overlap(before, current))
      break;
    isRounded = !isRounded;
    current = before;
  }
  return isRounded ? own : cs_PolyRounding();
}

std::vector<cs_PolyRounding> ccGenPoly::roundings() const
{
  std::vector<cs_PolyRounding> all;
  all.reserve(vertices_.size());
  long const last = numVertices() - 1;
  for (long i = 0; i <= last; ++i) {
    cs_PolyRounding own = corner_(i);
    if (i > 0 && (cf_overlap(all.back(), own) || (i == last && cf_overlap(own, all.front()))))
      own = cs_PolyRounding();
    all.push_back(own);
  }
  return all;
}

// Calls piece for each segment between its roundings and for each rounding that fits, in order of travel: from the end of the
// rounding of vertex 0 to there again, or from end to end. There are two vertices or more.
template <class Piece> void ccGenPoly::forEachPiece_(Piece const& piece) const
{
  cs_PolyRounding const first = corner_(0);
  cs_PolyRounding before = first;
  long const count = numSegments(), last = numVertices() - 1;
  for (long i = 0; i < count; ++i) {
    cs_PolySegment const whole = fullSegment_(i);
    cs_PolyRounding end;
    if (i == last) {
      end = first;
    } else {
      end = corner_(i + 1);
      if (cf_overlap(before, end) || (closed_ && i + 1 == last && cf_overlap(end, first)))
        end = cs_PolyRounding();
    }
    if (before.fits || end.fits)
      piece(whole.part(before.trimOut, 1 - end.trimIn));
    else
      piece(whole);
    if (end.fits)
      piece(end.arc);
    before = end;
  }
}

cs_PolySegment ccGenPoly::segment(long i, bool full) const
{
  checkedSegment_(i);
  cs_PolySegment const whole = fullSegment_(i);
  if (full)
    return whole;
  cs_PolyRounding const start = rounding(i), end = rounding(nextVertexIndex(i));
  return start.fits || end.fits ? whole.part(start.trimOut, 1 - end.trimIn) : whole;
}

ccLineSeg ccGenPoly::lineSegment(long i, bool full) const
{
  cf_require(isLineSegment(i), "line segment asked of an arc");
  cs_PolySegment const s = segment(i, full);
  return ccLineSeg(s.a, s.b);
}

ccEllipseArc ccGenPoly::arcSegment(long i, bool full) const
{
  cf_require(!isLineSegment(i), "arc asked of a line segment");
  return segment(i, full).arc();
}

bool ccGenPoly::isValid() const
{
  for (ccSMDGDPolyVertex const& v : vertices_)
    if (!cf_isFinite(v.point) || !cf_isFinite(v.roundingSize))
      return false;
  cs_PolyRounding before;
  for (long i = 0; i < numVertices(); ++i) {
    bool const isEnd = !closed_ && (i == 0 || i == numVertices() - 1);
    cs_PolyRounding const current = corner_(i);
    if (!current.fits && !isEnd && vertices_[static_cast<std::size_t>(i)].roundingSize > 0)
      return false;
    if (i > 0 && cf_overlap(before, current))
      return false;
    before = current;
  }
  return !closed_ || !cf_overlap(before, corner_(0));
}

double ccGenPoly::distanceToPoint(ccVector<2> const& p) const
{
  if (numVertices() < 2)
    return vertices_.empty() ? cfInfinity : cf_distance(p.distance(vertices_[0].point));
  double best = cfInfinity;
  forEachPiece_([&](cs_PolySegment const& s) {
    // An arc of at most half a turn lies within the circle over its chord.
    if (!s.isLine() && std::abs(s.span.value()) <= cfPi) {
      double const reach = s.chordLength() / 2;
      if (p.distance((s.a + s.b) * 0.5) - reach >= best)
        return;
    }
    best = std::min(best, s.distance(p));
  });
  return best;
}

ccRect ccGenPoly::encloseRect() const { return encloseRect(ccXform<2>::I); }

ccRect ccGenPoly::encloseRect(ccXform<2> const& x) const
{
  cf_finite(x, "map of a polygon");
  cs_Bounds bounds;
  if (numVertices() == 1)
    bounds.add(x.mapPoint(vertices_[0].point));
  else if (numVertices() > 1)
    forEachPiece_([&](cs_PolySegment const& s) { s.addTo(bounds, x); });
  return bounds.rect();
}

void ccGenPoly::outline(ccOutlineSink& sink) const
{
  if (numVertices() < 2) {
    if (!vertices_.empty())
      sink.point(vertices_[0].point);
    return;
  }
  // One piece behind, since the last side of a closed polygon is drawn by close() if it is straight.
  cs_PolySegment pending;
  bool isFirst = true;
  forEachPiece_([&](cs_PolySegment const& s) {
    if (isFirst)
      sink.moveTo(s.a);
    else
      pending.outline(sink);
    isFirst = false;
    pending = s;
  });
  if (!closed_ || !pending.isLine())
    pending.outline(sink);
  if (closed_)
    sink.close();
}

bool ccGenPoly::keepsClass_(ccXform<2> const& x) const
{
  double scale = 1;
  ccRadian rot;
  bool mirrored = false;
  if (x.similarity(scale, rot, mirrored))
    return true;
  return std::all_of(vertices_.begin(), vertices_.end(), [](ccSMDGDPolyVertex const& v) {
    return v.roundingSize == 0 && v.span.value() == 0;
  });
}

void ccGenPoly::mapInPlace_(ccXform<2> const& x)
{
  cf_finite(x, "map of a polygon");
  cf_require(keepsClass_(x), "map of a polygon with arcs that makes them elliptic");
  double scale = 1;
  ccRadian rot;
  bool mirrored = false;
  x.similarity(scale, rot, mirrored);
  for (ccSMDGDPolyVertex& v : vertices_) {
    v.point = x.mapPoint(v.point);
    v.roundingSize *= scale;
    if (mirrored)
      v.span = -v.span;
  }
}

void ccGenPoly::mapInPlace_(cc2Rigid const& rigid, double scale)
{
  cf_finite(scale, "scale of a polygon");
  cf_finite(rigid.trans(), "map of a polygon");
  cf_finite(ccRadian(rigid.angle()), "map of a polygon");
  for (ccSMDGDPolyVertex& v : vertices_) {
    v.point = rigid.mapPoint(v.point * scale);
    v.roundingSize *= std::abs(scale);
  }
}

ccGenPoly ccGenPoly::map(ccXform<2> const& x) const
{
  ccGenPoly image = *this;
  image.mapInPlace_(x);
  return image;
}

ccGenPoly ccGenPoly::map(cc2Rigid const& rigid, double scale) const
{
  ccGenPoly image = *this;
  image.mapInPlace_(rigid, scale);
  return image;
}

ccPtrHandle_const<ccShape> ccGenPoly::mapToCurves_(ccXform<2> const& x) const
{
  cc_CurveSink sink;
  outline(sink);
  return new ccBezierPath(sink.path().map(x));
}

ccPtrHandle_const<ccShape> ccGenPoly::map_(ccXform<2> const& x) const
{
  return keepsClass_(x) ? ccPtrHandle_const<ccShape>(new ccGenPoly(map(x))) : mapToCurves_(x);
}
