// A shape made of shapes. It holds handles; the shapes themselves are not changed, so several trees may share them.
#pragma once

#include "geometry/shape.h"

#include <atomic>
#include <vector>

class ccShapeTree : public ccShape {
public:
  ccShapeTree() = default;
  ccShapeTree(ccShapeTree const& other) : ccShape(other), shapes_(other.shapes_) {}
  ccShapeTree& operator=(ccShapeTree const&);  // throws as addShape does, and changes nothing then
  explicit ccShapeTree(std::vector<ccPtrHandle_const<ccShape>> shapes);  // a null handle throws ccBadPointer

  // null: ccBadPointer. A tree that holds this one, or one with which a tree gets more than 1000 levels, the trees that hold
  // this one counted: ccShapesError::BadParams.
  void addShape(ccPtrHandle_const<ccShape> const&);
  std::vector<ccPtrHandle_const<ccShape>> const& shapes() const { return shapes_; }
  long size() const { return static_cast<long>(shapes_.size()); }

  ccShapeTree map(ccXform<2> const&) const;
  // Whether both have the same children, by identity.
  friend bool operator==(ccShapeTree const& a, ccShapeTree const& b) { return a.shapes_ == b.shapes_; }

  double distToPoint(ccVector<2> const& p) const { return distanceToPoint(p); }
  double distanceToPoint(ccVector<2> const&) const override;
  ccRect encloseRect() const override;
  void outline(ccOutlineSink&) const override;

protected:
  ccPtrHandle<ccShape> clone_() const override;  // the children are cloned too
  ccPtrHandle_const<ccShape> map_(ccXform<2> const&) const override;

private:
  friend class cc_TreeLevels;
  std::vector<ccPtrHandle_const<ccShape>> shapes_;
  mutable std::atomic<int> above_{0};  // the most levels that were ever above this tree
};

// Moves shapes without reshaping them: each leaf of a tree, or a shape that is none, is shifted as the map shifts the centre
// of its box. The result is never null.
ccPtrHandle_const<ccShape> cfShapeMapShapePosition(ccShape const&, ccXform<2> const&);

// Position maps after a drag of the rectangle around the shapes: turned, with the translation kept; and sized from the current
// rectangle to the edited one, with the rotations of the axes kept. A map without x scale cannot be turned and throws
// ccMathError::Singular.
ccXform<2> cfTurnPosition(ccXform<2> const&, ccRadian by);
ccXform<2> cfSizePosition(ccXform<2> const&, ccGenRect const& current, ccGenRect const& edited);
