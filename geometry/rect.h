// An axis-parallel rectangle in doubles. It is not normalised: a negative size is kept. The default one, all zero, is null:
// the neutral element of |, and "no clip" where it limits drawing. A size that is not finite, also of what | would give, throws
// ccShapesError::BadParams.
#pragma once

#include "geometry/shape.h"

class ccRect : public ccShape {
public:
  ccRect() = default;
  ccRect(ccPoint const& ul, ccVector<2> const& sz);
  static ccRect fromCorners(ccPoint const& ul, ccPoint const& lr) { return ccRect(ul, lr - ul); }

  ccPoint ul() const { return ul_; }
  ccPoint lr() const { return ul_ + sz_; }
  ccVector<2> sz() const { return sz_; }
  double width() const { return sz_.x(); }
  double height() const { return sz_.y(); }
  ccPoint center() const { return ul_ + sz_ * 0.5; }
  bool isNull() const { return ul_ == ccVector<2>() && sz_ == ccVector<2>(); }
  bool contains(ccVector<2> const&) const;  // closed

  ccRect& operator|=(ccRect const&);  // the enclosing rectangle
  friend ccRect operator|(ccRect a, ccRect const& b) { return a |= b; }
  friend bool operator==(ccRect const& a, ccRect const& b) { return a.ul_ == b.ul_ && a.sz_ == b.sz_; }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;
  // Itself under a translation and positive axis scales, else a ccAffineRectangle.
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  ccPoint ul_;
  ccVector<2> sz_;
};
