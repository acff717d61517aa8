// Random events and state changes over random trees, with hooks that delete, move, show, hide, select and capture. After each
// step the trees must be whole. KRS_LONG multiplies the steps by 50.
#include "foundation/resource.h"
#include "tests/support/memory_scope.h"
#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <set>

namespace {

class Storm;

template <class Base> class Tracked : public Spy<Base> {
public:
  template <class... Args> Tracked(Storm& storm, HookLog& log, Args&&... args);
  ~Tracked() override;

private:
  Storm& storm_;
};

class Storm {
public:
  Storm(unsigned seed, bool screens) : random_(seed)
  {
    for (int i = 0; i < 2; ++i) {
      if (screens) {
        scopes_.push_back(std::make_unique<MemoryScope>(ccPair<long>(60, 40)));
        scopes_.push_back(std::make_unique<MemoryScope>(ccPair<long>(60, 40), 32, MemoryScope::overlayPlane));
        roots_.push_back(std::make_unique<TestRoot>(scopes_[scopes_.size() - 2].get(), scopes_.back().get()));
      } else {
        roots_.push_back(std::make_unique<TestRoot>(ccPair<long>(60, 40)));
      }
      roots_.back()->groundPlane();
    }
    for (int i = 0; i < 30; ++i)
      create_();
  }

  ~Storm()
  {
    over_ = true;
    roots_.clear();
    while (!live_.empty())
      delete *live_.begin();
  }

  void born(ccUIObject* node) { live_.insert(node); }
  void dies(ccUIObject* node)
  {
    live_.erase(node);
    if (over_)
      return;
    for (auto const& root : roots_)
      if (root->eventProcessor() && root->eventProcessor()->mouseCapture() == node)
        root->eventProcessor()->mouseCapture(nullptr);
  }
  void hooked()
  {
    ++hooks;
    if (!over_ && depth_ < maxDepth && below_(100) < 6)
      act_();
  }

  void step()
  {
    log_.clear();
    if (live_.size() < 30)
      create_();
    revive_(any_());
    if (below_(100) < 70)
      event_();
    else
      act_();
  }

  // What must hold between steps.
  void check()
  {
    for (auto const& root : roots_) {
      std::set<ccUIObject const*> seen;
      checkNode_(*root, root.get(), seen, 0);
      ccUIEventProcessor const& processor = *root->eventProcessor();
      if (processor.owner()) {
        ASSERT_TRUE(seen.count(processor.owner()));
      }
      ASSERT_FALSE(root->mutex().lockedByMe());
      ccPair<long> const at(below_(70) - 5, below_(50) - 5);
      ASSERT_EQ(root->whoIsTouched(at), touched_(root.get(), ccVector<2>(at)));
    }
    ASSERT_FALSE(ccUIObject::uiMutex().lockedByMe());
    for (std::size_t i = 0; i < scopes_.size(); ++i) {
      ASSERT_FALSE(scopes_[i]->screenUpdatesLocked());
      if (roots_[i / 2]->eventProcessor()->gesture() != ccUIEventProcessor::Gesture::dragging) {
        ASSERT_FALSE(scopes_[i]->isDragging());
      }
    }
  }

  long hooks = 0, deletions = 0, drags = 0;

private:
  using Frame = Tracked<ccUIControlFrame>;
  using ShapesFrame = Tracked<ccUIShapesFrame>;
  using Shape = Tracked<BoxShape>;
  static constexpr int maxDepth = 3;

  long below_(long n) { return std::uniform_int_distribution<long>(0, n - 1)(random_); }
  bool coin_() { return below_(2) != 0; }
  TestRoot& root_() { return *roots_[static_cast<std::size_t>(below_(2))]; }

  ccUIObject* any_()
  {
    if (live_.empty())
      return nullptr;
    auto at = live_.begin();
    std::advance(at, below_(static_cast<long>(live_.size())));
    return *at;
  }
  ccUIRect rect_() { return ccUIRect(below_(20) - 5, below_(15) - 5, 20 + below_(40), 15 + below_(30)); }

  ccUIControlFrame* frameHome_()
  {
    for (int i = 0; i < 2; ++i)
      if (auto* const frame = dynamic_cast<Frame*>(any_()))
        return frame;
    TestRoot& root = root_();
    return coin_() ? root.groundPlane() : root.floatingPlane();
  }
  ccUIObject* shapeHome_()
  {
    for (int i = 0; i < 10; ++i) {
      ccUIObject* const node = any_();
      if (dynamic_cast<ShapesFrame*>(node) || (dynamic_cast<Shape*>(node) && coin_()))
        return node;
    }
    return nullptr;
  }

  template <class Node> Node* settled_(Node* node)
  {
    node->onHook = [this](auto&, std::string const&) { hooked(); };
    node->clickable(coin_());
    node->draggable(coin_());
    node->multiSelectable(coin_());
    node->autoDelete(below_(4) != 0);
    node->dwell(below_(4) == 0);
    if (below_(6) == 0)
      node->rightButtonMode(coin_() ? ccUIObject::rightButtonAsLeft : ccUIObject::rightButtonToObject);
    return node;
  }

  void create_()
  {
    if (live_.size() > 60)
      return;
    switch (below_(4)) {
    case 0:
    case 1: {
      auto* const frame = settled_(new Frame(*this, log_, "f", frameHome_(), rect_()));
      frame->opaque(ccUITablet::imageLayer, coin_());
      frame->condVisible(true);
      break;
    }
    case 2: {
      auto* const frame = settled_(new ShapesFrame(*this, log_, "s", frameHome_(), rect_()));
      frame->incrementCount(ccUITablet::imageLayer);
      frame->opaque(ccUITablet::imageLayer, below_(4) == 0);
      frame->condVisible(true);
      break;
    }
    default: {
      auto* const shape = settled_(new Shape(*this, log_, "x", shapeHome_(), ccVector<2>(double(below_(20)), double(below_(20)))));
      shape->condVisible(true);
    }
    }
  }

  // Keeps the tree from going out.
  void revive_(ccUIObject* node)
  {
    if (!node)
      return;
    if (node->parent())
      wake_(node);
    else if (below_(4) == 0)
      reparent_(node);
  }
  void wake_(ccUIObject* node)
  {
    auto const key = node->key();
    ccUIRootObject const* const root = node->root();
    node->condVisible(true);
    if (ccUIObject::isValid(node, key, root))
      node->condEnabled(true);
  }

  void act_()
  {
    ccUIObject* const node = any_();
    if (!node)
      return;
    ++depth_;
    switch (below_(16)) {
    case 0:
      ++deletions;
      delete node;
      break;
    case 1:
    case 2:
      reparent_(node);
      break;
    case 3:
    case 4:
      node->condVisible(below_(3) != 0);
      break;
    case 5:
      node->condEnabled(below_(3) != 0);
      break;
    case 6:
    case 7:
      node->condSelected(below_(3) != 0, coin_());
      break;
    case 8:
      node->userSelect(below_(5) - 2);
      break;
    case 9:
      coin_() ? node->front() : node->back();
      break;
    case 10:
      capture_(node);
      break;
    case 11:
      node->keepSel(below_(4) == 0);
      break;
    case 12:
      move_(node);
      break;
    case 13:
      create_();
      break;
    case 14:
      resizable_(node);
      break;
    default:
      key_();
    }
    --depth_;
  }

  void capture_(ccUIObject* node)
  {
    for (auto const& root : roots_)
      root->eventProcessor()->mouseCapture(coin_() && node->root() == root.get() ? node : nullptr);
  }

  void reparent_(ccUIObject* node)
  {
    // Whoever holds the mouse gives it back before the tree changes.
    for (auto const& root : roots_)
      root->eventProcessor()->mouseCapture(nullptr);
    if (ccUIShapes* const shape = node->shapes(true)) {
      ccUIObject* const home = below_(6) == 0 ? nullptr : shapeHome_();
      ccUIObject const* above = home;
      while (above && above != node)
        above = above->parent();
      if (!above)
        shape->parent(home);
    } else {
      node->frame(true)->setParent(*frameHome_(), rect_());
    }
  }

  void move_(ccUIObject* node)
  {
    if (ccUIShapes* const shape = node->shapes(true))
      shape->pos(ccVector<2>(double(below_(20)), double(below_(20))));
    else
      node->frame(true)->scopeRect(rect_());
  }

  void resizable_(ccUIObject* node)
  {
    if (ccUIFrame* const frame = node->frame(true))
      frame->resizable(coin_());
  }

  void key_()
  {
    ccKeyboardEvent e;
    e.event(static_cast<ccKeyboardEvent::Event>(1 + below_(3)));
    root_().eventProcessor()->processEvent(e);
  }

  void event_()
  {
    TestRoot& root = root_();
    std::uint32_t const button = below_(5) == 0 ? (coin_() ? 2u : 4u) : 1u;
    ccPair<long> const at(below_(60), below_(40));
    std::uint32_t const keys = below_(3) == 0 ? 4u : 0u;
    auto const send = [&](ccMouseEvent::Event event, std::uint32_t which, std::uint32_t buttons) {
      root.eventProcessor()->processEvent(cfMouse(event, at, which, buttons, keys));
    };
    switch (below_(8)) {
    case 0:
    case 1:
      send(ccMouseEvent::mousePressed, button, button);
      break;
    case 2:
    case 3:
      send(ccMouseEvent::mouseMoved, 0, button);
      break;
    case 4:
      send(ccMouseEvent::mouseReleased, button, 0);
      break;
    case 5:
      send(coin_() ? ccMouseEvent::mouseDwell : ccMouseEvent::mouseDblClicked, button, button);
      break;
    default:
      send(ccMouseEvent::mouseMoved, 0, 0);
    }
    if (root.eventProcessor()->gesture() == ccUIEventProcessor::Gesture::dragging)
      ++drags;
  }

  // The node, its kids and the links between them; effective state worked out from above.
  void checkNode_(ccUIObject& node, ccUIRootObject* root, std::set<ccUIObject const*>& seen, int state)
  {
    ASSERT_TRUE(seen.insert(&node).second);
    bool const isRoot = &node == static_cast<ccUIObject*>(root);
    bool const up[3] = {isRoot || (state & 1), isRoot || (state & 2), isRoot || (state & 4)};
    bool const visible = up[0] && node.condVisible();
    bool const enabled = up[1] && node.condVisible() && node.condEnabled();
    bool const selected = up[2] && node.condVisible() && node.condEnabled() && node.condSelected();
    ASSERT_EQ(node.visible(), visible);
    ASSERT_EQ(node.enabled(), enabled);
    ASSERT_EQ(node.selected(), selected);
    ASSERT_EQ(node.root(), isRoot ? nullptr : root);
    ASSERT_EQ(&node.rootMutex(), &root->mutex());
    ASSERT_TRUE(ccUIObject::isValid(&node, node.key(), node.root()));
    long kids = 0;
    ccUIObject* before = nullptr;
    for (ccUIObject* kid = node.backKid(); kid; kid = kid->closerSib()) {
      ASSERT_EQ(kid->parent(), &node);
      ASSERT_EQ(kid->fartherSib(), before);
      checkNode_(*kid, root, seen, (visible ? 1 : 0) | (enabled ? 2 : 0) | (selected ? 4 : 0));
      if (::testing::Test::HasFatalFailure())
        return;
      before = kid;
      ++kids;
    }
    ASSERT_EQ(node.frontKid(), before);
    ASSERT_EQ(node.numKids(), kids);
  }

  // The rules of touching, from the nodes' plain data. Maps are the identity here.
  static ccUIObject* touched_(ccUIObject* node, ccVector<2> const& at)
  {
    ccUIFrame* const frame = node->frame(true);
    ccUIRect const& r = frame->frameRect();
    if (!node->visible() || at.x() < double(r.left()) || at.x() >= double(r.right()) || at.y() < double(r.top()) ||
        at.y() >= double(r.bottom()))
      return nullptr;
    ccVector<2> const local = at - ccVector<2>(r.ul());
    if (node->shapesFrame(true)) {
      for (ccUIObject* shape = node->backKid(); shape; shape = shape->closerSib())
        if (ccUIObject* const hit = touchedShape_(shape, local))
          return hit;
    } else {
      for (ccUIObject* kid = node->frontKid(); kid; kid = kid->fartherSib())
        if (ccUIObject* const hit = touched_(kid, local))
          return hit;
    }
    bool const solid = frame->opaque(ccUITablet::imageLayer) ||
                       (ccUITablet::overlaySupported() && frame->opaque(ccUITablet::overlayLayer));
    return solid ? node : nullptr;
  }
  static ccUIObject* touchedShape_(ccUIObject* shape, ccVector<2> const& at)
  {
    if (!shape->enabled())
      return nullptr;
    for (ccUIObject* kid = shape->frontKid(); kid; kid = kid->fartherSib())
      if (ccUIObject* const hit = touchedShape_(kid, at))
        return hit;
    return shape->shapes(true)->isTouched(at, 1) ? shape : nullptr;
  }

  std::mt19937 random_;
  HookLog log_;
  std::set<ccUIObject*> live_;
  std::vector<std::unique_ptr<MemoryScope>> scopes_;
  std::vector<std::unique_ptr<TestRoot>> roots_;
  int depth_ = 0;
  bool over_ = false;  // hooks rest
};

template <class Base>
template <class... Args>
Tracked<Base>::Tracked(Storm& storm, HookLog& log, Args&&... args)
    : Spy<Base>(log, std::forward<Args>(args)...), storm_(storm)
{
  storm_.born(this);
}

template <class Base> Tracked<Base>::~Tracked() { storm_.dies(this); }

long cf_steps(long n) { return std::getenv("KRS_LONG") ? 50 * n : n; }

void cf_run(unsigned seed, bool screens, long steps)
{
  Storm storm(seed, screens);
  for (long i = 0; i < steps; ++i) {
    storm.step();
    storm.check();
    if (::testing::Test::HasFatalFailure()) {
      ADD_FAILURE() << "seed " << seed << ", step " << i;
      return;
    }
  }
  // The storm has blown.
  EXPECT_GT(storm.hooks, steps);
  EXPECT_GT(storm.deletions, steps / 200);
  EXPECT_GT(storm.drags, steps / 200);
}

TEST(TreeStorm, treesStayWholeWithoutAScreen)
{
  for (unsigned seed : {1u, 2u, 3u, 4u})
    cf_run(seed, /*screens=*/false, cf_steps(5000));
}

TEST(TreeStorm, treesStayWholeOnAScreen)
{
  for (unsigned seed : {5u, 6u})
    cf_run(seed, /*screens=*/true, cf_steps(1000));
}

}  // namespace
