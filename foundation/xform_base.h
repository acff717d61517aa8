// Polymorphic maps held by pel buffers, and a small cache of one.
#pragma once

#include "foundation/handle.h"
#include "foundation/xform.h"

#include <vector>

class cc2XformBase : public ccRepBase {
public:
  virtual ccVector<2> mapPoint(ccVector<2> const&) const = 0;
  virtual bool isLinear() const = 0;
  virtual ccXform<2> linearXform(ccVector<2> const& at) const = 0;  // the best linear map near that point
};

class cc2XformLinear : public cc2XformBase {
public:
  explicit cc2XformLinear(ccXform<2> const& xform = ccXform<2>::I) : xform_(xform) {}
  ccVector<2> mapPoint(ccVector<2> const& p) const override { return xform_.mapPoint(p); }
  bool isLinear() const override { return true; }
  ccXform<2> linearXform(ccVector<2> const&) const override { return xform_; }
  static ccPtrHandle_const<cc2XformBase> const& identity();  // one shared object

private:
  ccXform<2> xform_;
};

// A polynomial map of the given order fitted to pairs of points by least squares; linear at order 1. With fewer than 3
// points off one line, the deviation from the identity is fitted with least norm. Empty or unequal lists, and an order
// outside 1 to 20, throw ccShapesError::BadParams. Points are mapped without memory from the heap.
class cc2XformPoly : public cc2XformBase {
public:
  static constexpr long maxOrder = 20;  // beyond it powers drown in rounding, and the fit takes minutes
  cc2XformPoly(std::vector<ccVector<2>> const& from, std::vector<ccVector<2>> const& to, long order);
  ccVector<2> mapPoint(ccVector<2> const&) const override;
  bool isLinear() const override { return order_ == 1; }
  ccXform<2> linearXform(ccVector<2> const& at) const override;

private:
  long order_;
  ccVector<2> centre_;                // the terms are powers of (p - centre_) / scale_
  double scale_ = 1;
  std::vector<ccVector<2>> weights_;  // one for each term x^i y^j, i + j <= order_, of the deviation from the identity
};

// One map; empty acts as the identity.
class cc2XformCache {
public:
  ccPtrHandle_const<cc2XformBase> const& xform() const { return xform_; }
  void xform(ccPtrHandle_const<cc2XformBase> const& x) { xform_ = x; }
  void setIdentity() { xform_.clear(); }
  ccVector<2> mapPoint(ccVector<2> const& p) const { return xform_ ? xform_->mapPoint(p) : p; }

private:
  ccPtrHandle_const<cc2XformBase> xform_;
};
