// What a tablet's hooks and failing memory may do in the middle of a call: afterwards nothing is raised, and the next update
// leaves the pels of a full repaint.
#include "tests/canvas/tablet_fixture.h"
#include "tests/support/memory_watch.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>

namespace {

std::vector<std::uint32_t> cf_repaint(TestTree& tree)
{
  tree.image.poison(0x123456);
  tree.top.update(ccUIRect::inf, kBoth, false);
  tree.top.update(kBoth);
  return tree.image.surface();
}

TEST(TabletSeams, whatWasDrawnBehindAnOpaqueTabletThatWasNeverPaintedComesWhenItGoes)
{
  TestTree tree;
  TestTablet behind(tree.top, ccUIRect(2, 2, 10, 10));
  behind.face = plainFace(ccColor::redColor());
  TestTablet cover(tree.top, ccUIRect(4, 4, 4, 4));
  cover.opaque(kImage, true);
  behind.set(ccUIRect(0, 0, 10, 10), ccColor::redColor(), kImage);  // held back under the cover
  ASSERT_EQ(tree.imagePicture(ccUIRect(3, 5, 3, 1)), Rows{"r.."});

  cover.visible(false);
  tree.top.update(kBoth);

  EXPECT_EQ(tree.imagePicture(ccUIRect(3, 5, 3, 1)), Rows{"rrr"});
}

TEST(TabletSeams, whatIsDrawnBehindAnOpaqueTabletThatPaintsOnlyAPartComesWithTheNextUpdate)
{
  TestTree tree;
  TestTablet behind(tree.top, ccUIRect(2, 2, 10, 10));
  behind.face = plainFace(ccColor::redColor());
  TestTablet cover(tree.top, ccUIRect(4, 4, 4, 4));
  cover.face = [](TestTablet& t) { t.set(ccUIRect(0, 0, 2, 4), ccColor::greenColor(), kImage); };
  cover.opaque(kImage, true);
  tree.top.update(kBoth);
  behind.face = plainFace(ccColor::yellowColor());
  behind.set(ccUIRect(0, 0, 10, 10), ccColor::yellowColor(), kImage);

  tree.top.update(kBoth);

  EXPECT_EQ(tree.imagePicture(ccUIRect(3, 5, 6, 1)), Rows{"yggyyy"});
}

TEST(TabletSeams, anOpaqueDescendantThatMovesAwayGivesBackWhatItHid)
{
  TestTree tree;
  TestTablet behind(tree.top, ccUIRect(0, 0, 20, 10));
  behind.face = plainFace(ccColor::greenColor());
  TestTablet holder(tree.top, ccUIRect(2, 2, 8, 6));
  TestTablet cover(holder, ccUIRect(1, 1, 3, 3));
  cover.opaque(kImage, true);
  tree.top.update(kBoth);
  behind.set(ccUIRect(0, 0, 20, 10), ccColor::yellowColor(), kImage);
  behind.face = plainFace(ccColor::yellowColor());
  ASSERT_EQ(tree.imagePicture(ccUIRect(2, 4, 6, 1)), Rows{"y...yy"});

  holder.moveAbs(ccPair<long>(30, 20));
  tree.top.update(kBoth);

  EXPECT_EQ(tree.imagePicture(ccUIRect(2, 4, 6, 1)), Rows{"yyyyyy"});
}

TEST(TabletSeams, marksThatAreLeftAfterTheRoundsOfOneUpdateStay)
{
  TestTree tree;
  TestTablet spot(tree.top, ccUIRect(5, 5, 3, 3));
  int rounds = 0;
  spot.face = [&](TestTablet& t) {
    t.set(ccUIRect(0, 0, 3, 3), ccColor::redColor(), kImage);
    if (++rounds < 7)
      t.update(ccUIRect(5, 5, 3, 3), kImage, false);
  };
  tree.top.update(ccUIRect(5, 5, 3, 3), kImage, false);
  tree.top.update(kBoth);
  EXPECT_LT(rounds, 7);
  EXPECT_TRUE(tree.top.anyChanged(kImage));

  tree.top.update(kBoth);
  EXPECT_EQ(rounds, 7);
}

TEST(TabletSeams, aFaceThatThrowsIsPaintedByTheNextUpdate)
{
  TestTree tree;
  TestTablet a(tree.top, ccUIRect(2, 2, 6, 6)), b(tree.top, ccUIRect(6, 6, 6, 6));
  b.face = plainFace(ccColor::greenColor());
  bool fails = true;
  a.face = [&](TestTablet& t) {
    if (fails)
      throw std::runtime_error("face");
    t.set(ccColor::redColor(), kImage);
  };
  std::vector<std::function<void()>> const calls = {
      [&] { tree.top.update(kBoth); }, [&] { tree.top.fullDraw(kBoth); }, [&] { a.redraw(kBoth); },
      [&] { tree.top.update(ccUIRect(0, 0, 20, 20), kBoth, true); },
      [&] {
        tree.top.dragStart(kImage);
        a.update(ccUIRect(2, 2, 6, 6), kImage, false);
        try {
          tree.top.dragErase(kImage);
        } catch (...) {
          tree.top.dragStop(kImage);
          throw;
        }
      }};
  for (std::size_t i = 0; i < calls.size(); ++i) {
    tree.top.update(ccUIRect(0, 0, 20, 20), kBoth, false);
    fails = true;
    EXPECT_THROW(calls[i](), std::runtime_error) << i;
    EXPECT_FALSE(tree.image.screenUpdatesLocked()) << i;
    EXPECT_FALSE(tree.overlay.screenUpdatesLocked()) << i;
    EXPECT_EQ(a.redrawLayer_, kBoth);
    EXPECT_FALSE(a.inAreaUpdate_);
    fails = false;

    tree.top.update(kBoth);

    auto const seen = tree.image.surface();
    EXPECT_EQ(seen, cf_repaint(tree)) << i;
  }
}

TEST(TabletSeams, aTopThatItsOwnFaceDestroysLivesUntilTheCallHasEnded)
{
  using Act = std::function<void(TestTablet&)>;
  std::vector<Act> const acts = {
      [](TestTablet& t) { t.update(kBoth); },
      [](TestTablet& t) { t.fullDraw(kBoth); },
      [](TestTablet& t) { t.redraw(kBoth); },
      [](TestTablet& t) { t.update(ccUIRect::inf, kBoth, true); },
      [](TestTablet& t) {
        t.dragStart(kImage);
        t.dragErase(kImage);
      }};
  for (std::size_t i = 0; i < acts.size(); ++i) {
    MemoryScope image(ccPair<long>(20, 20)), overlay(ccPair<long>(20, 20), 32, MemoryScope::overlayPlane);
    auto top = std::make_unique<TestTablet>(&image, &overlay);
    auto kid = std::make_unique<TestTablet>(*top, ccUIRect(1, 1, 5, 5));
    TestTablet other(*top, ccUIRect(8, 8, 5, 5));
    other.face = [](TestTablet&) { ADD_FAILURE() << "called in a tree that has gone"; };
    kid->face = [&](TestTablet&) { top.reset(); };
    TestTablet& entry = *top;
    entry.update(ccUIRect::inf, kBoth, false);

    acts[i](entry);

    EXPECT_EQ(top, nullptr) << i;
    EXPECT_FALSE(image.screenUpdatesLocked()) << i;
    EXPECT_FALSE(overlay.screenUpdatesLocked()) << i;
    EXPECT_FALSE(image.isDragging()) << i;
  }
}

TEST(TabletSeams, aTopThatGoesLeavesItsScopesAsTheyCame)
{
  MemoryScope image(ccPair<long>(20, 20));
  {
    TestTablet top(&image, nullptr);
    top.lockScreenUpdatesPush(true, kBoth);
    top.dragStart(kImage);
    top.optimizeDrawing(true, kImage);
  }
  EXPECT_FALSE(image.screenUpdatesLocked());
  EXPECT_FALSE(image.isDragging());
}

// ---- Failing memory

struct Stage {
  TestTree tree;
  TestTablet a{tree.top, ccUIRect(2, 2, 12, 12)};
  TestTablet b{a, ccUIRect(3, 3, 20, 6)};
  TestTablet c{tree.top, ccUIRect(8, 4, 9, 9)};
  ccUISketch sketch;
  std::vector<std::unique_ptr<ccUITablet>> made;

  Stage()
  {
    a.face = plainFace(ccColor::redColor());
    b.face = spotFace(ccUIRect(0, 0, 4, 3), ccColor::greenColor());
    c.face = [](TestTablet& t) {
      t.set(ccUIRect(0, 0, 5, 5), ccColor::whiteColor(), kImage);
      t.set(ccUIRect(1, 1, 5, 5), ccColor::cyanColor(), kOverlay);
    };
    tree.image.keepLog(false);
    tree.overlay.keepLog(false);
    tree.top.update(ccUIRect::inf, kBoth, false);  // a tablet is born visible, and unmarked
    tree.top.update(kBoth);
  }
};

struct Operation {
  char const* name;
  std::function<void(Stage&)> act;
};

std::vector<Operation> cf_operations()
{
  return {{"visible", [](Stage& s) { s.a.visible(false); s.c.visible(false); s.a.visible(true); }},
          {"front and back", [](Stage& s) { s.a.front(); s.c.back(); s.a.back(); }},
          {"moves", [](Stage& s) { s.a.moveAbs({4, 5}); s.b.size({3, 3}); s.c.moveRel({1, -2}); }},
          {"setParent", [](Stage& s) { s.c.setParent(s.a, ccUIRect(1, 1, 5, 5)); }},
          {"new kid", [](Stage& s) {
             s.made.push_back(std::make_unique<TestTablet>(s.a, ccUIRect(0, 0, 2, 2)));
             s.made.back()->visible(false);
             s.made.back()->visible(true);
           }},
          {"redraw", [](Stage& s) { s.a.redraw(kBoth); }},
          {"fullDraw", [](Stage& s) { s.tree.top.fullDraw(kBoth); }},
          {"update", [](Stage& s) { s.tree.top.update(ccUIRect(0, 0, 30, 20), kBoth, false); s.tree.top.update(kBoth); }},
          {"update now", [](Stage& s) { s.tree.top.update(ccUIRect(3, 3, 9, 9), kBoth, true); }},
          {"erase", [](Stage& s) { s.a.erase(ccUIRect(0, 0, 5, 5), kBoth); }},
          {"opaque", [](Stage& s) { s.a.opaque(kBoth, true); s.a.opaque(kBoth, false); }},
          {"maps", [](Stage& s) { s.c.scaleExact({2, 2}); s.c.baseMap(ccXform<2>(ccMatrix<2>(), ccVector<2>(1, 1))); }},
          {"setScope", [](Stage& s) { s.tree.top.setScope(kImage, &s.tree.image, false); }},
          {"locks", [](Stage& s) {
             for (int i = 0; i < 70; ++i)
               s.tree.top.lockScreenUpdatesPush(true, kBoth);
             for (int i = 0; i < 70; ++i)
               s.tree.top.lockScreenUpdatesPop(kBoth);
           }},
          {"drag", [](Stage& s) {
             s.c.dragStart(kBoth);
             s.c.dragErase(kBoth);
             s.c.dragAnimate(true, kBoth);
             s.c.dragDel({3, 3});
             s.c.outline(ccUIRect(0, 0, 5, 5), ccColor::yellowColor(), 1, kImage);
             s.c.dragAnimate(false, kBoth);
             s.c.dragErase(kBoth);
             s.c.dragStop(kBoth);
           }},
          {"sketch", [](Stage& s) {
             ccUITablet recorder;
             recorder.set(ccUIRect(1, 1, 2, 2), ccColor::redColor(), kImage);
             recorder.outline(ccUIRect(1, 1, 6, 6), ccColor::whiteColor(), 1, kImage);
             s.sketch += recorder.sketch();
             s.sketch += s.sketch;
           }},
          {"flags", [](Stage& s) {
             for (int i = 0; i < 130; ++i)
               s.a.drawEnabled_.push(true);
           }}};
}

TEST(TabletSeams, memoryThatFailsAnywhereLeavesThePictureOfAFullRepaint)
{
  for (Operation const& op : cf_operations())
    failEach([] { return std::make_unique<Stage>(); }, op.act,
             [&](Stage& s, bool failed) {
               // Whoever started a drag or pushed locks ends it.
               for (int layer = 0; layer < 2; ++layer)
                 s.tree.top.dragStop(static_cast<ccUITablet::Layers>(layer));
               while (s.tree.image.screenUpdatesLocked() || s.tree.overlay.screenUpdatesLocked())
                 s.tree.top.lockScreenUpdatesPop(kBoth);
               s.tree.top.update(kBoth);
               auto const seen = s.tree.image.surface();
               ASSERT_EQ(seen, cf_repaint(s.tree)) << op.name << (failed ? " failed" : "");
               ASSERT_EQ(s.a.redrawLayer_, kBoth) << op.name;
             });
}

}  // namespace
