#include "ui/core/node_walk.h"

#include "ui/core/frame.h"

#include <atomic>
#include <vector>

namespace {

std::atomic<std::uint64_t> departures{0};

// A plain pointer, so that trees that outlive the thread's own objects can still be walked.
thread_local std::vector<cc_NodeRef>* walkNodes = nullptr;

struct WalkNodesOwner {
  ~WalkNodesOwner()
  {
    delete walkNodes;
    walkNodes = nullptr;
  }
};

std::vector<cc_NodeRef>& cf_walkNodes()
{
  if (!walkNodes) {
    static thread_local WalkNodesOwner owner;
    static_cast<void>(owner);
    walkNodes = new std::vector<cc_NodeRef>();
  }
  return *walkNodes;
}

ccUITablet* cf_top(ccUITablet* tablet)
{
  while (tablet && tablet->parentTablet())
    tablet = tablet->parentTablet();
  return tablet;
}

}  // namespace

cc_NodeRef::cc_NodeRef(ccUIObject* node) : node_(node)
{
  if (!node)
    return;
  root_ = node->root_;
  key_ = node->key_;
  when_ = departures.load(std::memory_order_acquire);
}

bool cc_NodeRef::exists() const
{
  return node_ && (when_ == departures.load(std::memory_order_acquire) || ccUIObject::exists_(node_, key_));
}

bool cc_NodeRef::alive() const
{
  return node_ && (when_ == departures.load(std::memory_order_acquire) || ccUIObject::exists_(node_, key_, root_));
}

void cc_NodeRef::nodeWent() { departures.fetch_add(1, std::memory_order_acq_rel); }

cc_NodeWalk::cc_NodeWalk() : base_(cf_walkNodes().size()), at_(base_), end_(base_) {}

cc_NodeWalk::~cc_NodeWalk()
{
  auto& nodes = cf_walkNodes();
  nodes.erase(nodes.begin() + static_cast<std::ptrdiff_t>(base_), nodes.end());
}

void cc_NodeWalk::add(ccUIObject* node)
{
  cf_walkNodes().emplace_back(node);
  ++end_;
}

void cc_NodeWalk::addKidsBackToFront(ccUIObject& parent)
{
  for (ccUIObject* kid = parent.backKid(); kid; kid = kid->closerSib())
    add(kid);
}

void cc_NodeWalk::addKidsFrontToBack(ccUIObject& parent)
{
  for (ccUIObject* kid = parent.frontKid(); kid; kid = kid->fartherSib())
    add(kid);
}

void cc_NodeWalk::reverse() { std::reverse(begin_(), begin_() + (end_ - at_)); }

cc_NodeRef* cc_NodeWalk::begin_() { return cf_walkNodes().data() + at_; }

bool cc_NodeWalk::addKidsAt(ccUIFrame& frame, ccPair<long> const& local)
{
  bool const many = frame.visitKidsAt(
      local,
      [](void* walk, ccUITablet& kid) {
        if (ccUIFrame* const node = cfFrameOf(&kid))
          static_cast<cc_NodeWalk*>(walk)->add(node);
      },
      this);
  sort([](ccUIObject* a, ccUIObject* b) {
    return static_cast<ccUIFrame*>(a)->zOrder() > static_cast<ccUIFrame*>(b)->zOrder();
  });
  return many;
}

ccUIObject* cc_NodeWalk::next()
{
  auto& nodes = cf_walkNodes();
  while (at_ < end_) {
    cc_NodeRef const& ref = nodes[at_++];
    if (ref.alive())
      return ref.node();
  }
  return nullptr;
}

cc_TabletRef::cc_TabletRef(ccUITablet* tablet) : tablet_(tablet), top_(cf_top(tablet))
{
  node_ = cc_NodeRef(cfFrameOf(tablet));
  topNode_ = cc_NodeRef(cfFrameOf(top_));
}

ccUITablet* cc_TabletRef::get() const
{
  // A plain tablet is not watched: whoever puts one into a tree keeps it while events run.
  return node_.node() && !node_.alive() ? nullptr : tablet_;
}

ccUITablet* cc_TabletRef::getOrTop() const
{
  if (ccUITablet* const tablet = get())
    return tablet;
  return topNode_.node() && !topNode_.alive() ? nullptr : top_;
}

cc_ScreenLock::cc_ScreenLock(ccUITablet* tablet, ccUITablet::Layers layers) : tablet_(cf_top(tablet)), layers_(layers)
{
  if (ccUITablet* const top = tablet_.get())
    top->lockScreenUpdatesPush(true, layers_);
}

cc_ScreenLock::~cc_ScreenLock()
{
  if (ccUITablet* const top = tablet_.get())
    top->lockScreenUpdatesPop(layers_);
}
