// A polygon with a length tolerance per segment and a polarity.
#pragma once

#include "geometry/gen_poly.h"

class cc2Wireframe : public ccGenPoly {
public:
  cc2Wireframe() = default;
  cc2Wireframe(ccGenPoly const&, ccDimTol const& ofAllSegments);
  cc2Wireframe(std::vector<ccSMDGDPolyVertex> vertices, bool closed) : ccGenPoly(std::move(vertices), closed) {}

  using ccGenPoly::insertVertex;
  // The tolerance goes where the span goes.
  void insertVertex(long after, ccVector<2> const& point, double roundingSize, ccRadian const& span, ccDimTol const&);
  void insertVertex(ccVector<2> const& point, double roundingSize, ccRadian const& span, ccDimTol const&);
  using ccGenPoly::close;
  void close(ccRadian const& span, ccDimTol const& tol) { close_(span, tol); }

  ccDimTol segmentLengthTol(long i) const { return segmentTol_(i); }
  void segmentLengthTol(long i, ccDimTol const& tol) { segmentTol_(i, tol); }
  // A flag only: the order of the vertices does not change with it.
  bool isPolarityReversed() const { return reversed_; }
  void polarity(bool reversed) { reversed_ = reversed; }

  cc2Wireframe map(ccXform<2> const&) const;  // tolerances stay as they are
  cc2Wireframe map(cc2Rigid const&, double scale) const;
  friend bool operator==(cc2Wireframe const& a, cc2Wireframe const& b)
  {
    return a.reversed_ == b.reversed_ && a.isOpen() == b.isOpen() && a.vertices() == b.vertices();
  }

protected:
  ccPtrHandle<ccShape> clone_() const override;
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  bool reversed_ = false;
};
