#include "geometry/wireframe.h"

#include "geometry/bezier.h"

namespace {

ccSMDGDPolyVertex cf_vertex(ccVector<2> const& point, double roundingSize, ccRadian span, ccDimTol const& tol)
{
  return ccSMDGDPolyVertex{point, roundingSize, span, tol};
}

}  // namespace

cc2Wireframe::cc2Wireframe(ccGenPoly const& poly, ccDimTol const& ofAllSegments) : ccGenPoly(poly)
{
  for (long i = 0; i < numSegments(); ++i)
    segmentTol_(i, ofAllSegments);
}

void cc2Wireframe::insertVertex(long after, ccVector<2> const& point, double roundingSize, ccRadian const& span,
                                ccDimTol const& tol)
{
  insert_(after, cf_vertex(point, roundingSize, span, tol));
}

void cc2Wireframe::insertVertex(ccVector<2> const& point, double roundingSize, ccRadian const& span, ccDimTol const& tol)
{
  insert_(numVertices() - 1, cf_vertex(point, roundingSize, span, tol));
}

cc2Wireframe cc2Wireframe::map(ccXform<2> const& x) const
{
  cc2Wireframe image = *this;
  image.mapInPlace_(x);
  return image;
}

cc2Wireframe cc2Wireframe::map(cc2Rigid const& rigid, double scale) const
{
  cc2Wireframe image = *this;
  image.mapInPlace_(rigid, scale);
  return image;
}

ccPtrHandle<ccShape> cc2Wireframe::clone_() const { return new cc2Wireframe(*this); }

ccPtrHandle_const<ccShape> cc2Wireframe::map_(ccXform<2> const& x) const
{
  return keepsClass_(x) ? ccPtrHandle_const<ccShape>(new cc2Wireframe(map(x))) : mapToCurves_(x);
}
