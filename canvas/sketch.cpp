#include "canvas/sketch_op.h"
#include "canvas/tablet_top.h"

cc_SketchOp::~cc_SketchOp() = default;

void cc_SketchOp::replay(ccUITablet& t, Layers l) const
{
  int const common = cf_commonLayers(layers_, l);
  if (common >= 0)
    run_(t, static_cast<Layers>(common));
}

ccUISketch::ccUISketch() = default;
ccUISketch::~ccUISketch() = default;
ccUISketch::ccUISketch(ccUISketch const&) = default;
ccUISketch& ccUISketch::operator=(ccUISketch const&) = default;

void ccUISketch::erase() { ops_.clear(); }

ccUISketch& ccUISketch::operator+=(ccUISketch const& other)
{
  std::size_t const count = other.ops_.size(); // other may be this one
  ops_.reserve(ops_.size() + count);
  for (std::size_t i = 0; i < count; ++i)
    ops_.push_back(other.ops_[i]);
  return *this;
}

void ccUISketch::append(std::shared_ptr<cc_SketchOp const> op) { ops_.push_back(std::move(op)); }
