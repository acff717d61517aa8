#include "geometry/shape_tree.h"

#include "geometry/bounds.h"
#include "geometry/gen_rect.h"

#include <map>

namespace {

// A box of all zeros belongs to a shape without points or to the point (0,0).
bool cf_hasPoints(ccShape const& shape, ccRect const& box)
{
  return !box.isNull() || shape.distanceToPoint(ccVector<2>()) < cfInfinity;
}

constexpr int kMaxLevels = 1000;  // each takes a part of the stack

}  // namespace

// Recursion over trees takes a part of the stack for each level, so the levels are counted from the top, when a tree is hung
// into another one that may hang in others. Shared trees are walked once for each level at which they come to hang.
class cc_TreeLevels {
public:
  explicit cc_TreeLevels(ccShapeTree const& top) : top_(top) {}

  // Throws where the shape can't hang in the top.
  void check(ccShape const& shape)
  {
    auto const* const tree = dynamic_cast<ccShapeTree const*>(&shape);
    if (!tree)
      return;
    visit_(*tree, top_.above_ + 1);
  }
  // Checked before.
  void hang() const
  {
    for (auto const& [tree, level] : levels_)
      if (tree->above_ < level)
        tree->above_ = level;
  }

private:
  void visit_(ccShapeTree const& tree, int level)
  {
    cf_require(&tree != &top_ && level < kMaxLevels, "tree that holds itself or is too deep");
    int& known = levels_[&tree];
    if (known >= level)
      return;
    known = level;
    for (auto const& child : tree.shapes())
      if (auto const* const kid = dynamic_cast<ccShapeTree const*>(child.get()))
        visit_(*kid, level + 1);
  }

  ccShapeTree const& top_;
  std::map<ccShapeTree const*, int> levels_;
};

ccShapeTree::ccShapeTree(std::vector<ccPtrHandle_const<ccShape>> shapes)
{
  shapes_.reserve(shapes.size());
  for (auto const& shape : shapes)
    addShape(shape);
}

void ccShapeTree::addShape(ccPtrHandle_const<ccShape> const& shape)
{
  if (!shape)
    cf_throwBadPointer();
  cc_TreeLevels levels(*this);
  levels.check(*shape);
  shapes_.push_back(shape);
  levels.hang();
}

ccShapeTree& ccShapeTree::operator=(ccShapeTree const& other)
{
  cc_TreeLevels levels(*this);
  for (auto const& shape : other.shapes_)
    levels.check(*shape);
  std::vector<ccPtrHandle_const<ccShape>> shapes = other.shapes_;
  shapes_.swap(shapes);
  levels.hang();
  return *this;
}

ccShapeTree ccShapeTree::map(ccXform<2> const& x) const
{
  ccShapeTree image;
  image.shapes_.reserve(shapes_.size());
  for (auto const& shape : shapes_)
    image.shapes_.push_back(shape->map(x));
  return image;
}

double ccShapeTree::distanceToPoint(ccVector<2> const& p) const
{
  double best = cfInfinity;
  for (auto const& shape : shapes_) {
    ccRect const r = shape->encloseRect();
    cs_Bounds box;
    box.add(r.ul());
    box.add(r.lr());
    if (box.distance(p) < best)
      best = std::min(best, shape->distanceToPoint(p));
  }
  return best;
}

ccRect ccShapeTree::encloseRect() const
{
  cs_Bounds bounds;
  for (auto const& shape : shapes_) {
    ccRect const r = shape->encloseRect();
    if (cf_hasPoints(*shape, r)) {
      bounds.add(r.ul());
      bounds.add(r.lr());
    }
  }
  return bounds.rect();
}

void ccShapeTree::outline(ccOutlineSink& sink) const
{
  for (auto const& shape : shapes_)
    shape->outline(sink);
}

ccPtrHandle<ccShape> ccShapeTree::clone_() const
{
  ccPtrHandle<ccShapeTree> const copy(new ccShapeTree);
  for (auto const& shape : shapes_)
    copy->shapes_.push_back(shape->clone());
  return copy;
}

ccPtrHandle_const<ccShape> ccShapeTree::map_(ccXform<2> const& x) const { return new ccShapeTree(map(x)); }

ccPtrHandle_const<ccShape> cfShapeMapShapePosition(ccShape const& shape, ccXform<2> const& x)
{
  if (auto const* tree = dynamic_cast<ccShapeTree const*>(&shape)) {
    ccPtrHandle<ccShapeTree> const moved(new ccShapeTree);
    for (auto const& child : tree->shapes())
      moved->addShape(cfShapeMapShapePosition(*child, x));
    return moved;
  }
  ccPoint const center = shape.encloseRect().center();
  return shape.map(ccXform<2>(ccMatrix<2>(), x.mapPoint(center) - center));
}

ccXform<2> cfTurnPosition(ccXform<2> const& x, ccRadian by)
{
  ccMatrix<2> const& m = x.matrix();
  return ccXform<2>(ccMatrix<2>::fromRotation(m.rotation() + by, m.shear(), m.aspect(), m.scale()), x.trans());
}

ccXform<2> cfSizePosition(ccXform<2> const& x, ccGenRect const& current, ccGenRect const& edited)
{
  ccMatrix<2> const& m = x.matrix();
  ccXform<2> const a = current.xformTo(edited);
  return ccXform<2>(ccMatrix<2>(m.xRot(), m.yRot(), m.xScale() * a.matrix().xScale(), m.yScale() * a.matrix().yScale()),
                    a.trans());
}
