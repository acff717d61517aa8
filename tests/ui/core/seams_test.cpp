// What hooks may do in the middle of a call: end the root, throw, and paint during a drag. Afterwards nothing is raised, and
// nothing more is called on what has gone.
#include "foundation/resource.h"
#include "tests/support/memory_scope.h"
#include "tests/support/memory_watch.h"
#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <random>
#include <stdexcept>

namespace {

struct Thrown : std::runtime_error {
  Thrown() : std::runtime_error("hook") {}
};

// A gesture that reaches each input hook of a frame and of a shape.
void cf_gesture(Hand& hand, bool const& stop)
{
  auto const all = {0, 1, 2, 3, 4, 5, 6, 7, 8};
  for (int step : all) {
    if (stop)
      return;
    switch (step) {
    case 0: hand.moveTo(12, 12); break;
    case 1: hand.press(); break;
    case 2: hand.dwell(); break;
    case 3: hand.release(); break;
    case 4: hand.press(); break;
    case 5: hand.moveTo(16, 14); break;
    case 6: hand.release(); break;
    case 7: hand.dblClick(); break;
    default: hand.moveTo(60, 50); break;
    }
  }
}

TEST(Seams, aRootThatIsDeletedInAnyHookIsLeftAlone)
{
  long hooks = 0;
  for (long which = 1; which < 200; ++which) {
    HookLog log;
    MemoryScope image(ccPair<long>(80, 60));
    auto root = std::make_unique<TestRoot>(&image, nullptr);
    auto* frame = new SpyFrame(log, "f", root->groundPlane(), ccUIRect(10, 10, 30, 30));
    frame->clickable(true);
    frame->draggable(true);
    frame->dwell(true);
    cfOn(*frame);
    root->globalUpdate();
    long count = 0;
    bool gone = false;
    frame->onHook = [&](SpyFrame&, std::string const&) {
      if (++count == which) {
        root.reset();
        gone = true;
        log.clear();
      }
    };
    Hand hand(*root);
    cf_gesture(hand, gone);
    if (!gone) {
      hooks = which - 1;
      break;
    }
    EXPECT_EQ(log, HookLog()) << which;
    EXPECT_FALSE(image.screenUpdatesLocked()) << which;
    EXPECT_FALSE(image.isDragging()) << which;
  }
  EXPECT_GT(hooks, 15);
}

TEST(Seams, aHookThatThrowsLeavesOnlyTheLockOfTheProcessorRaised)
{
  long hooks = 0;
  for (long which = 1; which < 200; ++which) {
    HookLog log;
    MemoryScope image(ccPair<long>(80, 60));
    TestRoot root(&image, nullptr);
    SpyFrame frame(log, "f", root.groundPlane(), ccUIRect(10, 10, 30, 30));
    frame.clickable(true);
    frame.draggable(true);
    frame.dwell(true);
    cfOn(frame);
    root.globalUpdate();
    long count = 0;
    bool thrown = false;
    frame.onHook = [&](SpyFrame&, std::string const&) {
      if (++count == which)
        throw Thrown();
    };
    Hand hand(root);
    try {
      cf_gesture(hand, thrown);
    } catch (Thrown const&) {
      thrown = true;
    }
    if (!thrown) {
      hooks = which - 1;
      break;
    }
    frame.onHook = nullptr;
    while (image.screenUpdatesLocked())
      root.lockScreenUpdatesPop(ccUITablet::bothLayers);
    hand.release();
    hand.release();
    EXPECT_FALSE(root.mutex().lockedByMe()) << which;
    EXPECT_FALSE(image.screenUpdatesLocked()) << which;
    EXPECT_EQ(root.eventProcessor()->owner(), nullptr) << which;
    EXPECT_FALSE(image.isDragging()) << which;
    EXPECT_FALSE(frame.dragging()) << which;
    EXPECT_FALSE(frame.recordChanges()) << which;
    root.globalUpdate();
    auto const seen = image.surface();
    image.poison(7);
    root.fullDraw(ccUITablet::bothLayers);
    root.globalUpdate();
    EXPECT_EQ(seen, image.surface()) << which;
  }
  EXPECT_GT(hooks, 15);
}

TEST(Seams, theDraggingBitIsSetMemberByMember)
{
  TestRoot root;
  HookLog log;
  std::vector<std::unique_ptr<SpyFrame>> frames;
  for (int i = 0; i < 3; ++i) {
    frames.push_back(std::make_unique<SpyFrame>(log, std::string(1, static_cast<char>('a' + i)), root.groundPlane(),
                                                ccUIRect(i * 20, 0, 10, 10)));
    cfOn(*frames.back());
    frames.back()->multiSelectable(true);
    frames.back()->draggable(true);
    frames.back()->condSelected(true, false);
  }
  std::vector<std::string> bits;
  for (auto const& f : frames)
    f->onHook = [&](SpyFrame&, std::string const& hook) {
      if (hook != "dragStart")
        return;
      std::string now;
      for (auto const& each : frames)
        now += each->dragging() ? '1' : '0';
      bits.push_back(now);
    };

  frames[2]->dragStart(ccPair<long>(41, 1));  // the owner comes last

  EXPECT_EQ(bits, (std::vector<std::string>{"100", "110", "111"}));
}

TEST(Seams, aNodeThatEndsInItsOwnDragStartFindsADragToEnd)
{
  MemoryScope image(ccPair<long>(80, 60));
  TestRoot root(&image, nullptr);
  HookLog log;
  auto* frame = new SpyFrame(log, "f", root.groundPlane(), ccUIRect(10, 10, 30, 30));
  cfOn(*frame);
  frame->draggable(true);
  frame->onHook = [&](SpyFrame& f, std::string const& hook) {
    if (hook == "dragStart")
      delete &f;
  };

  Hand(root).pressAt(12, 12);

  EXPECT_FALSE(image.isDragging());
}

TEST(Seams, aHookThatFeedsEventsDuringADragLeavesNoGhost)
{
  MemoryScope image(ccPair<long>(80, 60));
  TestRoot root(&image, nullptr);
  HookLog log;
  struct Feeding : ccUIControlFrame {
    using ccUIControlFrame::ccUIControlFrame;
    Hand* hand = nullptr;
    int feeds = 0;
    void dragAnimate_(ccPair<long> const& from, ccPair<long> const& to) override
    {
      if (hand && ++feeds == 2)
        hand->moveTo(30, 30);
      ccUIControlFrame::dragAnimate_(from, to);
    }
  } frame(root.groundPlane(), ccUIRect(10, 10, 20, 20));
  cfOn(frame);
  frame.draggable(true);
  root.globalUpdate();
  Hand hand(root);
  frame.hand = &hand;

  hand.pressAt(12, 12).moveTo(20, 22).release();
  root.globalUpdate();

  auto const seen = image.surface();
  image.poison(7);
  root.fullDraw(ccUITablet::bothLayers);
  root.globalUpdate();
  EXPECT_EQ(seen, image.surface());
}

// ---- Shapes

struct Painted {
  MemoryScope image{ccPair<long>(80, 60)};
  TestRoot root{&image, nullptr};
  SpyShapesFrame* frame;
  HookLog log;
  Painted() : frame(new SpyShapesFrame(log, "s", root.groundPlane(), ccUIRect(0, 0, 80, 60)))
  {
    frame->condVisible(true);
    frame->incrementCount(ccUITablet::imageLayer);
  }
  void settle()
  {
    root.fullDraw(ccUITablet::bothLayers);
    root.globalUpdate();
  }
  void expectRepaint(std::string const& what)
  {
    root.globalUpdate();
    auto const seen = image.surface();
    image.poison(7);
    settle();
    EXPECT_EQ(seen, image.surface()) << what;
  }
};

struct Unruly : BoxShape {
  using BoxShape::BoxShape;
  std::function<void(Unruly&)> onDraw;
  void draw_(ccUITablet& canvas, ccColor const& color, DrawMode mode) override
  {
    BoxShape::draw_(canvas, color, mode);
    if (auto const call = onDraw)
      call(*this);
  }
};

TEST(Seams, aShapeMayDeleteItselfOrAnotherInItsDrawing)
{
  for (int victim = 0; victim < 3; ++victim)
    for (int how = 0; how < 4; ++how) {
      Painted p;
      std::vector<Unruly*> shapes;
      for (int i = 0; i < 3; ++i) {
        shapes.push_back(new Unruly(p.frame, ccVector<2>(8 * i, 4), 12));
        shapes.back()->condVisible(true);
      }
      p.settle();
      bool done = false;
      shapes[1]->onDraw = [&](Unruly&) {
        if (!done) {
          done = true;
          delete shapes[static_cast<std::size_t>(victim)];
        }
      };
      switch (how) {
      case 0: p.settle(); break;
      case 1: shapes[1]->color(ccColor::cyanColor()); break;  // it lies above closer ones now, in the same colour
      case 2: shapes[0]->pos(ccVector<2>(5, 5)); break;
      default: p.frame->update(ccUIRect(6, 4, 4, 4), ccUITablet::imageLayer, true); break;
      }
      ASSERT_TRUE(done) << victim << how;
      EXPECT_EQ(p.frame->numKids(), 2);
      p.expectRepaint(std::to_string(victim) + std::to_string(how));
    }
}

TEST(Seams, aShapeThatWishedToBeSeenBeforeItJoinedIsDrawnWhenItDoes)
{
  Painted p;
  Unruly shape(p.frame, ccVector<2>(4, 4), 12);
  shape.condVisible(true);
  p.settle();
  shape.parent(nullptr);
  p.settle();
  long draws = 0;
  shape.onDraw = [&](Unruly&) { ++draws; };

  shape.parent(p.frame);

  EXPECT_EQ(draws, 1);
  p.expectRepaint("joined");
}

TEST(Seams, aKidOnAnotherLayerThanItsShapeComesWithTheRepaintOfItsLayer)
{
  Painted p;
  Unruly shape(p.frame, ccVector<2>(4, 4), 12), other(p.frame, ccVector<2>(30, 10), 9);
  for (Unruly* s : {&shape, &other})
    s->condVisible(true);
  p.settle();
  shape.drawLayer(ccUITablet::overlayLayer);
  p.frame->decrementCount(ccUITablet::imageLayer);  // nothing but the kid is left there
  other.parent(&shape);
  p.settle();
  long draws = 0;
  other.onDraw = [&](Unruly&) { ++draws; };

  p.frame->fullDraw(ccUITablet::imageLayer);

  EXPECT_EQ(draws, 1);
  p.expectRepaint("kid");
}

TEST(Seams, aShapeThatThrewIsDrawnAgain)
{
  for (int how = 0; how < 5; ++how) {
    Painted p;
    Unruly a(p.frame, ccVector<2>(2, 2)), b(p.frame, ccVector<2>(8, 8)), kid(&b, ccVector<2>(2, 2), 4);
    for (Unruly* s : {&a, &b, &kid})
      s->condVisible(true);
    p.settle();
    b.onDraw = [](Unruly&) { throw Thrown(); };
    auto const act = [&] {
      switch (how) {
      case 0: p.settle(); break;
      case 1: b.color(ccColor::redColor()); break;
      case 2: b.pos(ccVector<2>(12, 12)); break;
      case 3: a.pos(ccVector<2>(5, 5)); break;
      default:
        b.condVisible(false);
        b.condVisible(true);
        break;
      }
    };
    EXPECT_THROW(act(), Thrown) << how;
    b.onDraw = nullptr;
    EXPECT_FALSE(p.frame->recordChanges()) << how;
    EXPECT_FALSE(p.image.screenUpdatesLocked()) << how;

    p.root.globalUpdate();

    EXPECT_EQ(p.image.pel(static_cast<long>(b.pos().x()) + 1, static_cast<long>(b.pos().y()) + 1),
              p.image.value(b.color()))
        << how;
    p.expectRepaint(std::to_string(how));
    b.pos(ccVector<2>(30, 30));
    p.expectRepaint(std::to_string(how) + " moved");
  }
}

TEST(Seams, hooksThatThrowInStateChangesLeaveAConsistentTree)
{
  for (int off = 0; off < 2; ++off)
    for (long which = 1; which < 40; ++which) {
      HookLog log;
      MemoryScope image(ccPair<long>(80, 60));
      TestRoot root(&image, nullptr);
      SpyFrame outer(log, "o", root.groundPlane(), ccUIRect(5, 5, 50, 40));
      SpyFrame inner(log, "i", &outer, ccUIRect(5, 5, 20, 20));
      SpyFrame last(log, "l", &inner, ccUIRect(2, 2, 10, 10));
      for (SpyFrame* f : {&last, &inner})
        cfOn(*f);
      if (off)
        cfOn(outer);
      root.globalUpdate();
      long count = 0;
      for (SpyFrame* f : {&outer, &inner, &last})
        f->onHook = [&](SpyFrame&, std::string const&) {
          if (++count == which)
            throw Thrown();
        };
      bool thrown = false;
      try {
        outer.condVisible(!off);
      } catch (Thrown const&) {
        thrown = true;
      }
      for (SpyFrame* f : {&outer, &inner, &last})
        f->onHook = nullptr;
      EXPECT_EQ(outer.condVisible(), !off) << which;
      for (SpyFrame* f : {&outer, &inner, &last})
        EXPECT_EQ(f->isShown(), f->visible()) << which << f->name();
      if (!thrown)
        break;
    }
}

TEST(Seams, aFrameFollowsWhatItsNewAncestorsShow)
{
  TestRoot root;
  ccUIControlFrame hidden(root.groundPlane(), ccUIRect(0, 0, 40, 40)), frame(&hidden, ccUIRect(0, 0, 9, 9)),
      kid(&frame, ccUIRect(0, 0, 5, 5));
  frame.condVisible(true);
  kid.condVisible(true);
  ASSERT_FALSE(kid.isShown());

  frame.setParent(*root.groundPlane(), ccUIRect(0, 0, 9, 9));
  EXPECT_TRUE(frame.visible() && frame.isShown() && kid.isShown());

  frame.setParent(hidden, ccUIRect(0, 0, 9, 9));
  EXPECT_FALSE(frame.visible() || frame.isShown() || kid.isShown());
  hidden.condVisible(true);
  EXPECT_TRUE(frame.isShown() && kid.isShown());
}

// ---- Kids by place

// Front to back through all, as the rule is written.
ccUIObject* cf_plainWalk(ccUIFrame& frame, ccPair<long> const& pos)
{
  if (!frame.visible() || !frame.frameRect().within(pos))
    return nullptr;
  ccPair<long> const local = pos - frame.frameRect().ul();
  for (ccUIObject* kid = frame.frontKid(); kid; kid = kid->fartherSib())
    if (ccUIObject* const touched = cf_plainWalk(*kid->frame(true), local))
      return touched;
  return frame.isTouched(local) ? &frame : nullptr;
}

struct Holed : ccUIControlFrame {
  using ccUIControlFrame::ccUIControlFrame;
  bool isTouched(ccPair<long> const& p) override { return (p.x() + p.y()) % 3 != 0; }
};

TEST(KidsByPlace, answersAreThoseOfAWalkOverAllThroughEveryChange)
{
  std::mt19937 random(11);
  auto const below = [&](long n) { return static_cast<long>(random() % static_cast<unsigned long>(n)); };
  auto const rect = [&] {
    return below(20) == 0 ? ccUIRect::firstQuad : ccUIRect(below(220) - 20, below(120) - 20, below(40), 1 + below(30));
  };
  TestRoot root;
  ccUIControlFrame other(&root, ccUIRect(20, 20, 100, 80));
  other.condVisible(true);
  std::vector<std::unique_ptr<ccUIControlFrame>> frames;
  auto const home = [&]() -> ccUIControlFrame& { return below(6) == 0 ? other : *root.groundPlane(); };
  for (int step = 0; step < 6000; ++step) {
    if (frames.size() < 150 || below(30) == 0) {
      frames.push_back(below(3) == 0 ? std::make_unique<Holed>(&home(), rect())
                                     : std::make_unique<ccUIControlFrame>(&home(), rect()));
      cfOn(*frames.back());
    }
    std::size_t const i = static_cast<std::size_t>(below(static_cast<long>(frames.size())));
    ccUIControlFrame& f = *frames[i];
    switch (below(8)) {
    case 0: f.scopeRect(rect()); break;
    case 1: f.front(); break;
    case 2: f.back(); break;
    case 3: f.condVisible(below(3) != 0); break;
    case 4: f.condEnabled(below(2) != 0); break;
    case 5: f.setParent(home(), rect()); break;
    case 6: f.moveRel(ccPair<long>(below(9) - 4, below(9) - 4)); break;
    default: frames.erase(frames.begin() + static_cast<std::ptrdiff_t>(i)); break;
    }
    ccPair<long> const at(below(200), below(100));
    ASSERT_EQ(root.whoIsTouched(at), cf_plainWalk(root, at)) << step;
  }
  EXPECT_GT(root.groundPlane()->numKids(), 64);
}

double cf_msFor(std::function<void()> const& act)
{
  auto const start = std::chrono::steady_clock::now();
  act();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

TEST(KidsByPlace, hoveringAsksWhatLiesNearAndTakesNoMemory)
{
  static long asked = 0;
  struct Asked : ccUIControlFrame {
    using ccUIControlFrame::ccUIControlFrame;
    ccUIObject* whoIsTouched(ccPair<long> const& p) override
    {
      ++asked;
      return ccUIControlFrame::whoIsTouched(p);
    }
  };
  auto const questions = [](long count, long& allocations) {
    TestRoot root(ccPair<long>(10000, 1000));
    std::vector<std::unique_ptr<Asked>> frames;
    for (long i = 0; i < count; ++i) {
      frames.push_back(std::make_unique<Asked>(root.groundPlane(), ccUIRect(i % 400 * 20, i / 400 * 20, 15, 15)));
      cfOn(*frames.back());
    }
    Hand hand(root);
    for (long i = 0; i < 300; ++i)
      hand.moveTo(i * 7, 5);
    long const before = MemoryWatch::allocations();
    asked = 0;
    for (long i = 0; i < 300; ++i)
      hand.moveTo(i * 7, 5);
    allocations = MemoryWatch::allocations() - before;
    return asked;
  };
  long few = 0, many = 0;
  long const ofFew = questions(100, few), ofMany = questions(8000, many);
  EXPECT_EQ(few, 0);
  EXPECT_EQ(many, 0);
  EXPECT_GE(ofFew, 100);      // every third place or more lies on a frame
  EXPECT_LE(ofMany, 300 * 8); // a walk over all asks 2.4 million times
}

TEST(KidsByPlace, shapesRemovedOneByOneLeaveThePictureOfTheRest)
{
  MemoryScope image(ccPair<long>(800, 600));
  TestRoot root(&image, nullptr);
  image.keepLog(false);
  ccUIShapesFrame frame(root.groundPlane(), ccUIRect(0, 0, 800, 600));
  frame.condVisible(true);
  frame.incrementCount(ccUITablet::imageLayer);
  constexpr long count = 10000;
  std::vector<std::unique_ptr<BoxShape>> shapes;
  for (long i = 0; i < count; ++i) {
    shapes.push_back(std::make_unique<BoxShape>(&frame, ccVector<2>(static_cast<double>(i % 130 * 6), static_cast<double>(i / 130 * 7)), 5));
    shapes.back()->condVisible(true);
  }
  root.fullDraw(ccUITablet::bothLayers);
  root.globalUpdate();
  std::mt19937 random(3);
  std::shuffle(shapes.begin(), shapes.end(), random);

  double const ms = cf_msFor([&] {
    while (!shapes.empty()) {
      shapes.back()->parent(nullptr);
      shapes.pop_back();
    }
  });

  std::printf("[ figure   ] %ld shapes removed one by one in %.1f ms\n", count, ms);
  auto const seen = image.surface();
  image.poison(7);
  root.fullDraw(ccUITablet::bothLayers);
  root.globalUpdate();
  EXPECT_EQ(seen, image.surface());
}

TEST(DeepChains, aThousandLevelsAreNoTrouble)
{
  auto const run = [](long depth) {
    TestRoot root(ccPair<long>(500, 500));
    ccUIControlFrame* top = new ccUIControlFrame(root.groundPlane(), ccUIRect(0, 0, 400, 400));
    ccUIControlFrame* deepest = top;
    return cf_msFor([&] {
      for (long i = 0; i < depth; ++i) {
        deepest = new ccUIControlFrame(deepest, ccUIRect(0, 0, 400, 400));
        deepest->condVisible(true);
      }
      deepest->opaque(ccUITablet::imageLayer, true);
      top->condVisible(true);
      EXPECT_TRUE(deepest->visible());
      top->moveAbs(ccPair<long>(3, 4));
      EXPECT_EQ(deepest->screenOrigin(), ccPair<long>(3, 4));
      Hand(root).moveTo(10, 10);
      EXPECT_EQ(root.whoIsTouched(ccPair<long>(10, 10)), deepest);
      root.eventProcessor()->invalidateObject(top);
      top->condVisible(false);
      delete top;
    });
  };
  double const one = run(1000), four = run(4000);
  std::printf("[ figure   ] chains of 1000 frames %.1f ms, of 4000 %.1f ms\n", one, four);
}

// ---- Numbers at their ends

TEST(Seams, positionsAtTheEndsOfTheirTypeDoNoHarm)
{
  MemoryScope image(ccPair<long>(80, 60));
  TestRoot root(&image, nullptr);
  ccUIControlFrame frame(root.groundPlane(), ccUIRect(10, 10, 20, 20));
  cfOn(frame);
  frame.draggable(true);
  constexpr long most = std::numeric_limits<long>::max(), least = std::numeric_limits<long>::min();
  Hand hand(root);
  for (long x : {most, least, 0L})
    for (long y : {least, most, 0L})
      hand.moveTo(x, y).press().moveTo(y, x).release();
  hand.pressAt(12, 12).moveTo(most, least).moveTo(least, most).release();
  frame.dragStart(ccPair<long>(most, most));
  frame.dragAnimate(ccPair<long>(most, least), ccPair<long>(least, most));
  frame.dragStop(ccPair<long>(most, least), ccPair<long>(least, most));
  frame.moveAbs(ccPair<long>(most, least));
  frame.moveRel(ccPair<long>(most, least));
  frame.size(ccPair<long>(most, most));
  frame.attachedTo(ccUIControlFrame::attachedBottomRight);
  root.size(ccPair<long>(most, most));
  root.globalUpdate();
  EXPECT_FALSE(image.isDragging());
  EXPECT_LE(frame.frameRect().right(), ccUIRect::kFar);
}

TEST(Seams, keysF1ToF24HaveTheirNumbers)
{
  EXPECT_EQ(static_cast<int>(ccKeyboardEvent::vkF2), 113);
  EXPECT_EQ(static_cast<int>(ccKeyboardEvent::vkF13), 124);
  EXPECT_EQ(static_cast<int>(ccKeyboardEvent::vkF23), 134);
  EXPECT_EQ(static_cast<int>(ccKeyboardEvent::vkF24), 135);
}

// ---- Failing memory

struct Stage {
  MemoryScope image{ccPair<long>(80, 60)};
  TestRoot root{&image, nullptr};
  ccUIControlFrame outer{root.groundPlane(), ccUIRect(5, 5, 60, 50)};
  ccUIControlFrame inner{&outer, ccUIRect(5, 5, 20, 20)};
  ccUIShapesFrame shapes{&outer, ccUIRect(0, 0, 60, 50)};
  BoxShape a{&shapes, ccVector<2>(3, 3)}, b{&shapes, ccVector<2>(8, 8)}, kid{&b, ccVector<2>(1, 1), 4};

  Stage()
  {
    image.keepLog(false);
    shapes.incrementCount(ccUITablet::imageLayer);
    for (ccUIObject* node : std::initializer_list<ccUIObject*>{&outer, &inner, &shapes, &a, &b, &kid}) {
      node->condVisible(true);
      node->draggable(true);
    }
    inner.opaque(ccUITablet::imageLayer, true);
    root.globalUpdate();
  }
};

TEST(Seams, memoryThatFailsAnywhereLeavesThePictureOfAFullRepaint)
{
  struct Operation {
    char const* name;
    std::function<void(Stage&)> act;
  };
  std::vector<Operation> const operations = {
      {"hide and show", [](Stage& s) { s.outer.condVisible(false); s.outer.condVisible(true); }},
      {"enable", [](Stage& s) { s.outer.condEnabled(false); s.outer.condEnabled(true); }},
      {"select", [](Stage& s) { s.outer.condSelected(true, true); s.outer.condSelected(false, true); }},
      {"userSelect", [](Stage& s) { s.a.userSelect(0); s.b.userSelect(1); }},
      {"front and back", [](Stage& s) { s.a.front(); s.b.back(); s.inner.back(); s.inner.front(); }},
      {"moves", [](Stage& s) { s.outer.moveRel({2, 2}); s.inner.size({5, 5}); }},
      {"pos", [](Stage& s) { s.b.pos(ccVector<2>(12, 12)); }},
      {"color", [](Stage& s) { s.b.color(ccColor::redColor()); s.b.props(ccGraphicProps(ccColor::greenColor(), 1, ceSolidPen, false)); }},
      {"away", [](Stage& s) { s.b.parent(nullptr); s.a.parent(nullptr); }},
      {"across", [](Stage& s) { s.kid.parent(&s.shapes); s.a.parent(&s.b); }},
      {"reparent", [](Stage& s) { s.inner.setParent(*s.root.floatingPlane(), ccUIRect(1, 1, 9, 9)); }},
      {"new", [](Stage& s) {
         auto* f = new ccUIShapesFrame(&s.outer, ccUIRect(0, 0, 5, 5));
         new BoxShape(f, ccVector<2>());
         delete f;
       }},
      {"root", [](Stage&) { TestRoot another; another.frameSizer(); }},
      {"press", [](Stage& s) { Hand(s.root).moveTo(12, 12).press().release(); }},
      {"drag", [](Stage& s) { Hand(s.root).moveTo(12, 12).press().moveTo(20, 20).release(); }},
      {"key", [](Stage& s) {
         ccKeyboardEvent e;
         e.event(ccKeyboardEvent::keyDown);
         s.root.eventProcessor()->processEvent(e);
       }},
      {"resizable", [](Stage& s) { s.outer.condSelected(true, false); s.outer.resizable(true); s.root.globalUpdate(); }},
      {"globalUpdate", [](Stage& s) { s.root.fullDraw(ccUITablet::bothLayers); s.root.globalUpdate(); }},
      {"rootImage", [](Stage& s) { s.root.rootSet(ccUIRect(), ccColor::redColor(), ccUITablet::imageLayer); }},
  };
  for (Operation const& op : operations)
    failEach([] { return std::make_unique<Stage>(); }, op.act,
             [&](Stage& s, bool failed) {
               ASSERT_FALSE(s.root.mutex().lockedByMe()) << op.name;
               while (s.image.screenUpdatesLocked())  // pushed by the processor, and left on purpose
                 s.root.lockScreenUpdatesPop(ccUITablet::bothLayers);
               Hand(s.root).release().release();
               ASSERT_FALSE(s.image.isDragging()) << op.name;
               for (ccUIFrame* f : {static_cast<ccUIFrame*>(&s.outer), static_cast<ccUIFrame*>(&s.inner)})
                 ASSERT_EQ(f->isShown(), f->visible()) << op.name;
               s.root.globalUpdate();
               auto const seen = s.image.surface();
               s.image.poison(7);
               s.root.fullDraw(ccUITablet::bothLayers);
               s.root.globalUpdate();
               ASSERT_EQ(seen, s.image.surface()) << op.name << (failed ? " failed" : "");
             });
}

}  // namespace
