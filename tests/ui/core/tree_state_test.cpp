// Wishes, effective state, and the order of hooks.
#include "foundation/resource.h"
#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

namespace {

struct Family : ::testing::Test {
  HookLog log;
  TestRoot root;
  SpyFrame top{log, "top", &root, ccUIRect(0, 0, 100, 100)};
  SpyFrame back{log, "back", &top, ccUIRect(0, 0, 50, 50)};
  SpyFrame front{log, "front", &top, ccUIRect(0, 0, 50, 50)};
  SpyFrame leaf{log, "leaf", &front, ccUIRect(0, 0, 20, 20)};
};

using TreeState = Family;

TEST(ObjectDefaults, aNewNodeIsEnabledAndNothingElse)
{
  HookLog log;
  SpyFrame node(log, "a", nullptr, ccUIRect(0, 0, 1, 1));

  EXPECT_TRUE(node.condEnabled());
  EXPECT_FALSE(node.condVisible() || node.condSelected() || node.clickable() || node.draggable() || node.dragging());
  EXPECT_FALSE(node.dontMove() || node.autoDelete() || node.mark() || node.opNew() || node.keepSel() || node.dwell());
  EXPECT_FALSE(node.multiSelectable() || node.resizable());
  EXPECT_EQ(node.rightButtonMode(), ccUIObject::rightButtonSendsBack);
  EXPECT_EQ(node.drawLayer(), ccUITablet::imageLayer);
  EXPECT_EQ(node.root(), nullptr);
}

TEST(ObjectDefaults, eachFlagIsSetAndClearedAlone)
{
  HookLog log;
  SpyFrame node(log, "a", nullptr, ccUIRect(0, 0, 1, 1));
  struct {
    char const* name;
    void (ccUIObject::*set)(bool);
    bool (ccUIObject::*get)() const;
  } const flags[] = {
      {"clickable", &ccUIObject::clickable, &ccUIObject::clickable},
      {"draggable", &ccUIObject::draggable, &ccUIObject::draggable},
      {"dragging", &ccUIObject::dragging, &ccUIObject::dragging},
      {"dontMove", &ccUIObject::dontMove, &ccUIObject::dontMove},
      {"autoDelete", &ccUIObject::autoDelete, &ccUIObject::autoDelete},
      {"mark", &ccUIObject::mark, &ccUIObject::mark},
      {"dwell", &ccUIObject::dwell, &ccUIObject::dwell},
      {"multiSelectable", &ccUIObject::multiSelectable, &ccUIObject::multiSelectable},
  };
  for (auto const& flag : flags) {
    (node.*flag.set)(true);
    for (auto const& other : flags)
      EXPECT_EQ((node.*other.get)(), &other == &flag) << flag.name << " " << other.name;
    (node.*flag.set)(false);
    EXPECT_FALSE((node.*flag.get)()) << flag.name;
  }
  EXPECT_TRUE(log.empty());
}

TEST_F(TreeState, aParentlessNodeThatIsNoRootIsNeverVisible)
{
  SpyFrame orphan(log, "orphan", nullptr, ccUIRect(0, 0, 1, 1));

  EXPECT_FALSE(orphan.condVisible(true));

  EXPECT_FALSE(orphan.visible());
  EXPECT_TRUE(orphan.enabled());  // which asks for flags alone
  EXPECT_TRUE(log.empty());
}

TEST_F(TreeState, aRootIsVisibleOnItsOwnFlag)
{
  EXPECT_TRUE(root.visible());
  EXPECT_TRUE(root.enabled());
  EXPECT_TRUE(root.selected());

  root.condVisible(false);

  EXPECT_FALSE(root.visible());
}

TEST_F(TreeState, effectiveStateNeedsAllAncestors)
{
  for (SpyFrame* node : {&top, &front, &leaf})
    EXPECT_FALSE(node->visible());
  leaf.condVisible(true);
  front.condVisible(true);
  EXPECT_FALSE(leaf.visible());

  top.condVisible(true);

  EXPECT_TRUE(leaf.visible() && leaf.enabled());
  front.condEnabled(false);
  EXPECT_TRUE(leaf.visible());
  EXPECT_FALSE(leaf.enabled());
}

TEST_F(TreeState, combinedGettersLookAtTheNodesOwnBitsOnly)
{
  leaf.condVisible(true);
  EXPECT_TRUE(leaf.condVisAndEnab());
  EXPECT_FALSE(leaf.condVisEnabAndSel());

  leaf.condSelected(true, false);

  EXPECT_TRUE(leaf.condVisEnabAndSel());
  EXPECT_FALSE(leaf.visible() || leaf.enabled() || leaf.selected());
  leaf.condEnabled(false);
  EXPECT_FALSE(leaf.condVisAndEnab() || leaf.condVisEnabAndSel());
}

TEST_F(TreeState, showingGoesTopDownAndBackToFront)
{
  for (SpyFrame* node : {&back, &front, &leaf})
    node->condVisible(true);
  cfTake(log);

  EXPECT_TRUE(top.condVisible(true));

  EXPECT_EQ(cfTake(log), (HookLog{"top show", "back show nested", "front show nested", "leaf show nested",
                                  "top enable visible", "back enable visible nested", "front enable visible nested",
                                  "leaf enable visible nested"}));
}

TEST_F(TreeState, hidingGoesBottomUpAndFrontToBack)
{
  for (SpyFrame* node : {&back, &front, &leaf, &top})
    node->condVisible(true);
  for (SpyFrame* node : {&back, &front, &leaf, &top})
    node->condSelected(true, false);
  cfTake(log);

  EXPECT_TRUE(top.condVisible(false));

  EXPECT_EQ(cfTake(log), (HookLog{"leaf deselect visible nested", "front deselect visible nested",
                                  "back deselect visible nested", "top deselect visible",
                                  "leaf disable visible nested", "front disable visible nested",
                                  "back disable visible nested", "top disable visible",
                                  "leaf hide nested", "front hide nested", "back hide nested", "top hide"}));
  EXPECT_FALSE(top.visible());
}

TEST_F(TreeState, descentsPassOnlyKidsWithTheirOwnBit)
{
  front.condVisible(true);  // back and leaf are not
  leaf.condVisible(true);
  leaf.condEnabled(false);
  back.condEnabled(false);
  cfTake(log);

  top.condVisible(true);

  // The enabling descent asks kids for condEnabled, not whether they are visible.
  EXPECT_EQ(cfTake(log), (HookLog{"top show", "front show nested", "leaf show nested", "top enable visible",
                                  "front enable visible nested"}));
}

TEST_F(TreeState, theVisibleBitIsClearedAfterTheHooksAndTheEnabledBitBefore)
{
  top.condVisible(true);
  bool visibleInHide = false, enabledInDisable = true;
  top.onHook = [&](SpyFrame& node, std::string const& hook) {
    if (hook == "hide")
      visibleInHide = node.condVisible();
    if (hook == "disable")
      enabledInDisable = node.condEnabled();
  };

  top.condEnabled(false);
  EXPECT_FALSE(enabledInDisable);
  top.condEnabled(true);
  top.condVisible(false);

  EXPECT_TRUE(visibleInHide);
}

TEST_F(TreeState, anUnchangedWishCallsNothing)
{
  top.condVisible(true);
  cfTake(log);

  EXPECT_FALSE(top.condVisible(true));
  EXPECT_FALSE(top.condEnabled(true));
  EXPECT_FALSE(top.condSelected(false, false));

  EXPECT_TRUE(log.empty());
}

TEST_F(TreeState, enablingSelectsWhatWasSelectedAndAnswersWhetherEnabled)
{
  top.condVisible(true);
  root.condSelected(true, false);
  top.condSelected(true, false);
  top.condEnabled(false);
  cfTake(log);

  EXPECT_TRUE(top.condEnabled(true));
  EXPECT_EQ(cfTake(log), (HookLog{"top enable enabled", "back enable enabled nested", "front enable enabled nested",
                                  "leaf enable enabled nested", "top select enabled"}));

  EXPECT_TRUE(top.condEnabled(false));
  EXPECT_EQ(cfTake(log), (HookLog{"top deselect enabled", "leaf disable enabled nested", "front disable enabled nested",
                                  "back disable enabled nested", "top disable enabled"}));
  leaf.condVisible(true);
  cfTake(log);
  EXPECT_FALSE(leaf.condEnabled(false));  // it wasn't enabled in fact
  EXPECT_FALSE(leaf.condEnabled(true));
  EXPECT_TRUE(log.empty());
}

TEST_F(TreeState, showAndHideSwitchTheTablet)
{
  EXPECT_FALSE(top.isVisible());
  top.condVisible(true);
  EXPECT_TRUE(top.isVisible());
  EXPECT_FALSE(leaf.isVisible());
  top.condVisible(false);
  EXPECT_FALSE(top.isVisible());
}

TEST_F(TreeState, frontAndBackReorderAmongSiblings)
{
  EXPECT_EQ(top.backKid(), &back);
  EXPECT_EQ(top.frontKid(), &front);
  EXPECT_EQ(back.closerSib(), &front);
  EXPECT_EQ(front.fartherSib(), &back);
  EXPECT_EQ(back.frontSib(), &front);
  EXPECT_EQ(front.backSib(), &back);
  EXPECT_EQ(top.numKids(), 2);

  back.front();
  EXPECT_EQ(top.frontKid(), &back);
  back.back();
  EXPECT_EQ(top.frontKid(), &front);

  SpyFrame orphan(log, "orphan", nullptr, ccUIRect(0, 0, 1, 1));
  EXPECT_EQ(orphan.frontSib(), &orphan);
  EXPECT_EQ(orphan.backSib(), &orphan);
  orphan.front();  // nothing
}

TEST_F(TreeState, aPlainTabletAmongKidsIsNoNode)
{
  ccUITablet plain(top, ccUIRect(0, 0, 5, 5));

  EXPECT_EQ(top.frontKid(), &front);
  EXPECT_EQ(front.closerSib(), nullptr);
  EXPECT_EQ(top.whoIsTouched(ccPair<long>(1, 1)), nullptr);
}

TEST_F(TreeState, classQuestionsAnswerTheNodesKind)
{
  EXPECT_EQ(top.frame(false), &top);
  EXPECT_EQ(top.shapes(true), nullptr);
  EXPECT_EQ(top.shapesFrame(true), nullptr);
  EXPECT_EQ(top.rootObject(true), nullptr);
  EXPECT_EQ(root.rootObject(false), &root);
  EXPECT_EQ(top.tablet(), static_cast<ccUITablet*>(&top));
}

TEST_F(TreeState, aHookThatDeletesSiblingsAndItselfLeavesTheDescentWhole)
{
  top.condVisible(true);
  auto* a = new SpyFrame(log, "a", &leaf, ccUIRect(0, 0, 1, 1));
  auto* b = new SpyFrame(log, "b", &leaf, ccUIRect(0, 0, 1, 1));
  auto* c = new SpyFrame(log, "c", &leaf, ccUIRect(0, 0, 1, 1));
  for (SpyFrame* kid : {a, b, c})
    kid->condVisible(true);
  front.condVisible(true);
  a->onHook = [&](SpyFrame& self, std::string const& hook) {
    if (hook != "show")
      return;
    delete b;
    delete &self;
  };
  cfTake(log);

  leaf.condVisible(true);

  EXPECT_EQ(cfTake(log), (HookLog{"leaf show", "a show nested", "c show nested", "leaf enable visible",
                                  "c enable visible nested"}));
  EXPECT_EQ(leaf.numKids(), 1);
}

TEST_F(TreeState, aHookThatBringsAKidToTheFrontStrandsNoSibling)
{
  top.condVisible(true);
  SpyFrame a(log, "a", &leaf, ccUIRect(0, 0, 1, 1)), b(log, "b", &leaf, ccUIRect(0, 0, 1, 1));
  a.condVisible(true), b.condVisible(true);
  front.condVisible(true);
  a.onHook = [&](SpyFrame& self, std::string const&) { self.front(); };
  cfTake(log);

  leaf.condVisible(true);

  EXPECT_EQ(cfTake(log), (HookLog{"leaf show", "a show nested", "b show nested", "leaf enable visible",
                                  "b enable visible nested", "a enable visible nested"}));
}

TEST(ObjectColors, defaultsAndTheSelectionColor)
{
  TestRoot root;
  HookLog log;
  SpyFrame node(log, "a", &root, ccUIRect(0, 0, 1, 1));

  EXPECT_EQ(ccUIObject::dragColor(), ccColor::magentaColor());
  EXPECT_EQ(ccUIObject::selectColor(), ccColor::yellowColor());
  EXPECT_EQ(node.deselColor(), ccColor::cyanColor());
  EXPECT_EQ(node.faceColor(), ccColor::greyColor());
  EXPECT_EQ(node.lightColor(), ccColor::ltGreyColor());
  EXPECT_EQ(node.shadowColor(), ccColor::dkGreyColor());
  EXPECT_EQ(node.textColor(), ccColor::blackColor());
  EXPECT_EQ(node.curSelColor(), ccColor::cyanColor());

  node.condSelected(true, false);
  EXPECT_EQ(node.curSelColor(), ccColor::yellowColor());

  ccUIObject::selectColor(ccColor::redColor());
  ccUIObject::dragColor(ccColor::blueColor());
  EXPECT_EQ(node.curSelColor(), ccColor::redColor());
  EXPECT_EQ(ccUIObject::dragColor(), ccColor::blueColor());
  ccUIObject::selectColor(ccColor::yellowColor());
  ccUIObject::dragColor(ccColor::magentaColor());
}

TEST_F(TreeState, hooksRunWithTheRootsMutexHeld)
{
  bool held = false;
  top.onHook = [&](SpyFrame&, std::string const& hook) {
    if (hook == "show")
      held = root.mutex().lockedByMe();
  };

  top.condVisible(true);

  EXPECT_TRUE(held);
  EXPECT_FALSE(root.mutex().lockedByMe());
  EXPECT_EQ(&top.rootMutex(), &root.mutex());
}

TEST(ObjectMutex, nodesWithoutARootUseTheOrphansMutex)
{
  HookLog log;
  SpyFrame orphan(log, "a", nullptr, ccUIRect(0, 0, 1, 1));

  EXPECT_EQ(&orphan.rootMutex(), &ccUIObject::orphanMutex());
}

// Touching

TEST_F(TreeState, whoIsTouchedFindsTheFrontmostOpaqueFrameInLocalCoordinates)
{
  top.moveAbs({10, 20});
  front.moveAbs({5, 5});
  for (SpyFrame* node : {&top, &back, &front, &leaf})
    cfOn(*node);

  EXPECT_EQ(root.whoIsTouched({16, 26}), &leaf);   // local (1,1) of the leaf
  EXPECT_EQ(root.whoIsTouched({36, 46}), &front);  // past the leaf
  EXPECT_EQ(root.whoIsTouched({12, 22}), &back);   // left of the front one
  EXPECT_EQ(root.whoIsTouched({90, 99}), &top);
  EXPECT_EQ(root.whoIsTouched({5, 5}), nullptr);   // the root is transparent without a screen
}

TEST_F(TreeState, aRectangleIsHalfOpenForTouching)
{
  cfOn(top);

  EXPECT_EQ(root.whoIsTouched({0, 0}), &top);
  EXPECT_EQ(root.whoIsTouched({99, 99}), &top);
  EXPECT_EQ(root.whoIsTouched({100, 99}), nullptr);
  EXPECT_EQ(root.whoIsTouched({99, 100}), nullptr);
  EXPECT_EQ(root.whoIsTouched({-1, 0}), nullptr);
}

TEST_F(TreeState, whoIsTouchedOfAFrameWithAllLayersTransparentReturnsAKidOrNullNeverTheFrame)
{
  top.condVisible(true);
  cfOn(back);

  EXPECT_EQ(root.whoIsTouched({10, 10}), &back);
  EXPECT_EQ(root.whoIsTouched({60, 60}), nullptr);
}

TEST_F(TreeState, aHiddenFrameIsNotTouchedButADisabledOneIs)
{
  cfOn(top);
  top.condEnabled(false);
  EXPECT_EQ(root.whoIsTouched({1, 1}), &top);
  top.condVisible(false);
  EXPECT_EQ(root.whoIsTouched({1, 1}), nullptr);
}

}  // namespace
