#include "geometry/smdgd_poly.h"

ccSMDGDPoly ccSMDGDPoly::triangle(double width, double height, ccVector<2> const& center)
{
  cf_length(width, "width of a triangle");
  cf_length(height, "height of a triangle");
  ccSMDGDPoly poly;
  ccVector<2> const right(width / 2, height / 2), left(-width / 2, height / 2);
  for (ccVector<2> const& corner : {ccVector<2>(0, -height / 2), right, left})
    poly.wire_.insertVertex(center + corner);
  poly.close();
  return poly;
}

ccSMDGDPolyVertex const& ccSMDGDPoly::vertex(long i, bool wrap) const
{
  long const count = numVertices();
  if (wrap && count > 0) {
    i %= count;
    i += i < 0 ? count : 0;
  }
  cf_require(i >= 0 && i < count, "vertex index");
  return vertices()[static_cast<std::size_t>(i)];
}

void ccSMDGDPoly::vertex(long i, ccSMDGDPolyVertex const& v)
{
  cf_require(i >= 0 && i < numVertices(), "vertex index");
  std::vector<ccSMDGDPolyVertex> changed = vertices();
  changed[static_cast<std::size_t>(i)] = v;
  cc2Wireframe wire(std::move(changed), !isOpen());
  wire.polarity(isPolarityReversed());
  wire_ = std::move(wire);
}

void ccSMDGDPoly::addVertex(ccSMDGDPolyVertex const& v)
{
  wire_.insertVertex(v.point, v.roundingSize, v.span, v.tol);
}
