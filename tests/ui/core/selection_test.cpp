// Selection: wishes, and what a press makes of them among siblings.
#include "tests/support/test_tree.h"

#include <gtest/gtest.h>

namespace {

struct Siblings : ::testing::Test {
  HookLog log;
  TestRoot root;
  SpyFrame top{log, "top", &root, ccUIRect(0, 0, 100, 100)};
  SpyFrame a{log, "a", &top, ccUIRect(0, 0, 10, 10)};
  SpyFrame b{log, "b", &top, ccUIRect(20, 0, 10, 10)};
  SpyFrame c{log, "c", &top, ccUIRect(40, 0, 10, 10)};

  Siblings()
  {
    for (SpyFrame* node : {&top, &a, &b, &c})
      cfOn(*node);
    top.condSelected(true, false);
    cfTake(log);
  }
  void select(std::initializer_list<SpyFrame*> nodes)
  {
    for (SpyFrame* node : nodes)
      node->condSelected(true, false);
    cfTake(log);
  }
  void multi(std::initializer_list<SpyFrame*> nodes)
  {
    for (SpyFrame* node : nodes)
      node->multiSelectable(true);
  }
  std::string selected() const
  {
    std::string names;
    for (SpyFrame const* node : {&a, &b, &c})
      if (node->condSelected())
        names += node->name();
    return names;
  }
};

using Selection = Siblings;

TEST_F(Selection, selectingAHiddenNodeStillCallsSelectAndShowingItCallsSelectAgain)
{
  a.condVisible(false);
  cfTake(log);

  EXPECT_TRUE(a.condSelected(true, false));
  EXPECT_EQ(cfTake(log), HookLog{"a select selected"});
  EXPECT_FALSE(a.selected());

  a.condVisible(true);
  EXPECT_EQ(cfTake(log), (HookLog{"a show", "a enable visible", "a select visible"}));
  EXPECT_TRUE(a.selected());
}

TEST_F(Selection, deselectingAHiddenNodeCallsNothing)
{
  select({&a});
  a.condVisible(false);
  cfTake(log);

  EXPECT_FALSE(a.condSelected(false, false));

  EXPECT_TRUE(log.empty());
  EXPECT_FALSE(a.condSelected());
}

TEST_F(Selection, aKeepSelNodeCannotBeDeselected)
{
  a.keepSel(true);
  EXPECT_TRUE(a.condSelected());
  EXPECT_EQ(cfTake(log), HookLog{"a select selected"});

  EXPECT_FALSE(a.condSelected(false, false));
  EXPECT_TRUE(a.condSelected());

  a.keepSel(false);  // only clears the bit
  EXPECT_TRUE(a.condSelected());
  EXPECT_TRUE(log.empty());
  EXPECT_TRUE(a.condSelected(false, false));
  EXPECT_EQ(cfTake(log), HookLog{"a deselect selected"});
}

TEST_F(Selection, keepSelOnASelectedNodeSelectsItNoSecondTime)
{
  select({&a});

  a.keepSel(true);

  EXPECT_TRUE(log.empty());
}

TEST_F(Selection, recursionRunsBackToFrontAndAnswersWhetherAnyChanged)
{
  SpyFrame kid(log, "kid", &b, ccUIRect(0, 0, 5, 5));
  cfOn(kid);
  cfTake(log);

  EXPECT_TRUE(top.condSelected(true, /*recurse=*/true));  // top itself is selected
  EXPECT_EQ(cfTake(log), (HookLog{"a select selected", "b select selected", "kid select selected", "c select selected"}));
  EXPECT_FALSE(top.condSelected(true, true));

  EXPECT_TRUE(top.condSelected(false, true));
  EXPECT_EQ(cfTake(log), (HookLog{"c deselect selected nested", "kid deselect selected nested",
                                  "b deselect selected nested", "a deselect selected nested", "top deselect selected"}));
  EXPECT_EQ(selected(), "");
}

TEST_F(Selection, aPlainPressTakesTheSelectionOfAllSiblingsAndBringsToTheFront)
{
  select({&b, &c});

  a.userSelect(0);

  EXPECT_EQ(selected(), "a");
  EXPECT_EQ(cfTake(log), (HookLog{"b deselect selected", "c deselect selected", "a select selected"}));
  EXPECT_EQ(top.frontKid(), &a);
}

TEST_F(Selection, siblingsLoseTheSelectionFromBackToFront)
{
  select({&a, &b, &c});
  SpyFrame d(log, "d", &top, ccUIRect(60, 0, 10, 10));
  cfOn(d);
  cfTake(log);

  d.userSelect(0);

  EXPECT_EQ(cfTake(log), (HookLog{"a deselect selected", "b deselect selected", "c deselect selected",
                                  "d select selected"}));
}

TEST_F(Selection, aPlainPressOnAMemberOfAMultiSelectionKeepsTheOthers)
{
  multi({&a, &b});
  select({&a, &b, &c});

  a.userSelect(0);

  EXPECT_EQ(selected(), "abc");
  EXPECT_TRUE(log.empty());
}

TEST_F(Selection, theMultiSelectionKeyTogglesAMemberAlone)
{
  multi({&a, &b, &c});
  select({&a, &b});

  c.userSelect(1);
  EXPECT_EQ(selected(), "abc");
  a.userSelect(1);
  EXPECT_EQ(selected(), "bc");
  EXPECT_EQ(top.frontKid(), &c);  // toggling brings nothing to the front
  EXPECT_EQ(top.backKid(), &a);
}

TEST_F(Selection, theMultiSelectionKeyOnANewMemberTakesTheSelectionOfSiblingsThatCannotBeMembers)
{
  multi({&a, &b});
  select({&b, &c});

  a.userSelect(1);

  EXPECT_EQ(selected(), "ab");
  EXPECT_EQ(cfTake(log), (HookLog{"c deselect selected", "a select selected"}));
}

TEST_F(Selection, theMultiSelectionKeyOnASelectedMultiSelectableNodeDeselectsJustThatNode)
{
  multi({&a});
  select({&a, &c});

  a.userSelect(1);

  EXPECT_EQ(selected(), "c");
  EXPECT_EQ(cfTake(log), HookLog{"a deselect selected"});
}

TEST_F(Selection, theMultiSelectionKeyOnANodeThatIsntMultiSelectableClearsAllSiblings)
{
  multi({&b});
  select({&b, &c});

  a.userSelect(1);

  EXPECT_EQ(selected(), "a");
}

TEST_F(Selection, levelMinusOnePassedUpFromAKidClearsAllSiblingsOfTheParent)
{
  SpyFrame kid(log, "kid", &a, ccUIRect(0, 0, 5, 5));
  cfOn(kid);
  multi({&a, &b});
  select({&a, &b});

  kid.userSelect(0);

  EXPECT_EQ(selected(), "a");
  EXPECT_TRUE(kid.condSelected());
}

TEST_F(Selection, levelMinusTwoPassedUpSparesMultiSelectableSiblings)
{
  SpyFrame kid(log, "kid", &a, ccUIRect(0, 0, 5, 5));
  cfOn(kid);
  multi({&b});
  select({&b, &c});

  kid.userSelect(1);

  EXPECT_EQ(selected(), "ab");
}

TEST_F(Selection, higherUpTheLevelIsMinusOne)
{
  // kid, a, top, root: the level is 1, -2, -1, -1.
  SpyFrame other(log, "other", &root, ccUIRect(0, 0, 5, 5));
  cfOn(other);
  other.multiSelectable(true);
  other.condSelected(true, false);
  SpyFrame kid(log, "kid", &a, ccUIRect(0, 0, 5, 5));
  cfOn(kid);

  kid.userSelect(1);

  EXPECT_FALSE(other.condSelected());
}

TEST_F(Selection, unknownLevelsLeaveAllSiblingsAlone)
{
  select({&b, &c});

  for (long level : {-3L, 2L})
    a.userSelect(level);

  EXPECT_EQ(selected(), "abc");
}

TEST_F(Selection, aDisabledNodeSelectsNothingButPassesThePressUp)
{
  a.condEnabled(false);
  select({&b});
  top.condSelected(false, false);
  cfTake(log);

  a.userSelect(0);

  EXPECT_EQ(selected(), "b");
  EXPECT_TRUE(top.condSelected());
}

TEST_F(Selection, dontMoveStaysInItsPlace)
{
  a.dontMove(true);

  a.userSelect(0);

  EXPECT_EQ(top.backKid(), &a);
  EXPECT_TRUE(a.condSelected());
}

TEST_F(Selection, keepSelSiblingsKeepTheirSelection)
{
  b.keepSel(true);
  cfTake(log);

  a.userSelect(0);

  EXPECT_EQ(selected(), "ab");
}

TEST_F(Selection, aParentlessNodeSelectsItself)
{
  SpyFrame orphan(log, "orphan", nullptr, ccUIRect(0, 0, 5, 5));
  orphan.condVisible(true);

  orphan.userSelect(0);

  EXPECT_TRUE(orphan.condSelected());
}

TEST_F(Selection, hooksThatDeleteSiblingsLeaveTheWalkWhole)
{
  auto* d = new SpyFrame(log, "d", &top, ccUIRect(60, 0, 10, 10));
  auto* e = new SpyFrame(log, "e", &top, ccUIRect(70, 0, 10, 10));
  SpyFrame f(log, "f", &top, ccUIRect(80, 0, 10, 10));
  for (SpyFrame* node : {d, e, &f})
    cfOn(*node).condSelected(true, false);
  select({&b});
  b.onHook = [&](SpyFrame&, std::string const&) { delete d; };
  e->onHook = [&](SpyFrame& self, std::string const&) { delete &self; };
  cfTake(log);

  a.userSelect(0);

  EXPECT_EQ(cfTake(log), (HookLog{"b deselect selected", "e deselect selected", "f deselect selected",
                                  "a select selected"}));
  EXPECT_EQ(top.numKids(), 4);
}

TEST_F(Selection, multiSelectedNeedsAllFourBitsOnBothSides)
{
  multi({&a, &b});
  select({&a, &b});
  EXPECT_TRUE(a.multiSelected(&b));
  EXPECT_TRUE(c.multiSelected(&c));  // itself, in any state
  EXPECT_FALSE(a.multiSelected(&c));
  EXPECT_FALSE(c.multiSelected(&a));
  EXPECT_FALSE(a.multiSelected(nullptr));

  b.condEnabled(false);
  EXPECT_FALSE(a.multiSelected(&b));
  b.condEnabled(true), b.condVisible(false);
  EXPECT_FALSE(a.multiSelected(&b));
  b.condVisible(true), b.multiSelectable(false);
  EXPECT_FALSE(a.multiSelected(&b));
  b.multiSelectable(true), b.condSelected(false, false);
  EXPECT_FALSE(a.multiSelected(&b));
}

TEST_F(Selection, multiDragableNeedsEveryMemberDraggable)
{
  multi({&a, &b});
  select({&a, &b});
  a.draggable(true);
  EXPECT_FALSE(a.multiDragable());
  b.draggable(true);
  EXPECT_TRUE(a.multiDragable());
  EXPECT_FALSE(c.multiDragable());  // not draggable itself
  b.draggable(false);
  b.condSelected(false, false);
  EXPECT_TRUE(a.multiDragable());

  SpyFrame orphan(log, "orphan", nullptr, ccUIRect(0, 0, 5, 5));
  EXPECT_FALSE(orphan.multiDragable());
  orphan.draggable(true);
  EXPECT_TRUE(orphan.multiDragable());
}

TEST_F(Selection, theRightButtonInMode2DeselectsAndSendsBack)
{
  select({&c});

  c.mouseRight({1, 2}, ccMouseEvent::mousePressed, 0);

  EXPECT_EQ(cfTake(log), HookLog{"c deselect selected"});
  EXPECT_EQ(top.backKid(), &c);
}

TEST_F(Selection, theRightButtonInMode2GoesUpToTheFirstNodeThatMoves)
{
  SpyFrame other(log, "other", &root, ccUIRect(0, 0, 5, 5));
  other.back();
  select({&c});
  c.dontMove(true);

  c.mouseRight({1, 2}, ccMouseEvent::mousePressed, 0);

  EXPECT_EQ(cfTake(log), (HookLog{"c deselect selected nested", "top deselect selected"}));
  EXPECT_TRUE(c.condSelected());  // only the one that moves lost it
  EXPECT_EQ(root.backKid(), &top);
}

TEST_F(Selection, theRightButtonInMode2ActsOnThePressOnlyAndNotWhereNothingMoves)
{
  select({&c});
  c.mouseRight({1, 2}, ccMouseEvent::mouseReleased, 0);
  c.mouseRight({1, 2}, ccMouseEvent::mouseMoved, 0);
  for (ccUIObject* node : std::initializer_list<ccUIObject*>{&c, &top, &root})
    node->dontMove(true);
  c.mouseRight({1, 2}, ccMouseEvent::mousePressed, 0);

  EXPECT_TRUE(c.condSelected() && top.condSelected());
  EXPECT_TRUE(log.empty());
}

TEST_F(Selection, theRightButtonInMode1GoesToTheHookAndOtherModesDoNothing)
{
  c.rightButtonMode(ccUIObject::rightButtonToObject);
  c.mouseRight({1, 2}, ccMouseEvent::mouseReleased, 6);
  EXPECT_EQ(cfTake(log), HookLog{"c mouseRight 1,2 4 6"});

  select({&c});
  for (int mode : {3, 0, 7}) {
    c.rightButtonMode(static_cast<ccUIObject::RightButtonModes>(mode));
    c.mouseRight({1, 2}, ccMouseEvent::mousePressed, 0);
  }
  EXPECT_TRUE(log.empty());
  EXPECT_TRUE(c.condSelected());
}

}  // namespace
