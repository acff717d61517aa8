// Handles of a shape: when they are made, placed, shown and freed.
#include "tests/support/memory_watch.h"
#include "tests/ui/shapes/shape_stage.h"
#include "ui/shapes/handle_set.h"

#include <functional>
#include <memory>

namespace {

class Knob;

// A shape with as many handles as a test says. It logs what is done with them.
class Board : public cc_HandledShape {
public:
  Board(HookLog& hooks, ccUIObject* parent) : cc_HandledShape(parent), log(hooks) {}
  ~Board() override { beginDestruction(); }

  HookLog& log;
  long count = 3;
  long locked = -1;  // the index of a handle that is withheld
  std::function<void(long)> onPlace, onShow;

  using cc_HandledShape::clrLocks;
  using cc_HandledShape::geometryChanged;
  using cc_HandledShape::locks;
  using cc_HandledShape::setLocks;
  using cc_HandledShape::handles_;

protected:
  void pos_(ccVector<2> const& v) override { at_ = v; }
  ccVector<2> pos_() override { return at_; }
  void draw_(ccUITablet&, ccColor const&, DrawMode) override { log.push_back("draw board"); }
  void redim_() override { log.push_back("redim"); }
  long numHandles_() const override { return count; }
  ccUIHandle* makeHandle_(long index) override;
  bool isUnlocked_(long index) const override { return index != locked && (locks() & (1ul << index)) == 0; }

private:
  ccVector<2> at_;
};

class Knob : public cc_HandleOf<Board> {
public:
  Knob(Board* owner, long index) : cc_HandleOf(owner), index_(index) {}

  using ccUIHandle::update;
  void update() override
  {
    Board* const board = owner();
    if (!board)
      return;
    board->log.push_back("place " + std::to_string(index_));
    pos(ccVector<2>(static_cast<double>(index_) * 10, 5));
    if (auto const call = board->onPlace)
      call(index_);
  }

  void show(bool nested) override
  {
    ccUIHandle::show(nested);
    Board* const board = owner();
    if (!board)
      return;
    board->log.push_back("show " + std::to_string(index_));
    if (auto const call = board->onShow)
      call(index_);
  }

  void hide(bool nested) override
  {
    if (Board* const board = owner())
      board->log.push_back("hide " + std::to_string(index_));
    ccUIHandle::hide(nested);
  }

  using cc_HandleOf::owner;

private:
  long const index_;
};

ccUIHandle* Board::makeHandle_(long index)
{
  log.push_back("make " + std::to_string(index));
  return new Knob(this, index);
}

struct HandleSet : ::testing::Test {
  TestDisplay test{100, 60};
  HookLog log;
  std::unique_ptr<Board> board = std::make_unique<Board>(log, test.displayFrame());

  HandleSet()
  {
    // All above the shape is selected, so that selecting it is one step.
    cfSelect(*test.displayFrame());
    board->condVisible(true);
    cfTake(log);
  }
  HookLog take()
  {
    HookLog lines;
    for (std::string const& line : cfTake(log))
      if (line != "draw board")
        lines.push_back(line);
    return lines;
  }
};

TEST_F(HandleSet, handlesAreMadePlacedAndThenShownWhenTheShapeIsFirstSelected)
{
  EXPECT_EQ(board->numKids(), 0);
  board->condSelected(true, false);
  EXPECT_EQ(take(), (HookLog{"make 0", "make 1", "make 2", "place 0", "place 1", "place 2", "show 0", "show 1", "show 2"}));
  EXPECT_EQ(board->numKids(), 3);
  EXPECT_TRUE(cfHandle(*board, 0)->autoDelete());
}

TEST_F(HandleSet, deselectingHidesThemAndTheNextSelectionShowsTheSameAgain)
{
  board->condSelected(true, false);
  ccUIHandle* const first = cfHandle(*board, 0);
  take();
  board->condSelected(false, false);
  EXPECT_EQ(take(), (HookLog{"hide 0", "hide 1", "hide 2"}));
  EXPECT_EQ(board->numKids(), 3);
  board->condSelected(true, false);
  EXPECT_EQ(take(), (HookLog{"place 0", "place 1", "place 2", "show 0", "show 1", "show 2"}));
  EXPECT_EQ(cfHandle(*board, 0), first);
}

TEST_F(HandleSet, aLockedHandleIsMadeAndPlacedButNotShown)
{
  board->locked = 1;
  board->condSelected(true, false);
  EXPECT_EQ(take(), (HookLog{"make 0", "make 1", "make 2", "place 0", "place 1", "place 2", "show 0", "show 2"}));
  board->locked = 0;
  board->showHandles(true);
  EXPECT_EQ(take(), (HookLog{"place 0", "place 1", "place 2", "hide 0", "show 1"}));
}

TEST_F(HandleSet, locksWithholdHandlesAtOnceAndGiveThemBack)
{
  EXPECT_EQ(board->locks(), 0u);
  board->setLocks(2);
  EXPECT_EQ(board->numKids(), 0);  // not selected: none are made
  board->condSelected(true, false);
  EXPECT_EQ(cfVisibleHandles(*board), 2);
  board->setLocks(4);
  EXPECT_EQ(board->locks(), 6u);
  EXPECT_EQ(cfVisibleHandles(*board), 1);
  board->clrLocks(2);
  EXPECT_EQ(board->locks(), 4u);
  EXPECT_EQ(cfVisibleHandles(*board), 2);
  EXPECT_TRUE(cfHandle(*board, 1)->visible());
  board->locks(0);
  EXPECT_EQ(cfVisibleHandles(*board), 3);
  // A shape that is not manipulable shows none, whatever its locks.
  board->manipulable(false);
  board->locks(1);
  EXPECT_EQ(cfVisibleHandles(*board), 0);
}

TEST_F(HandleSet, aShapeThatIsNotManipulableShowsNoneUntilItIs)
{
  EXPECT_TRUE(board->manipulable());
  board->manipulable(false);
  board->condSelected(true, false);
  EXPECT_EQ(board->numKids(), 0);
  board->manipulable(true);
  EXPECT_EQ(cfVisibleHandles(*board), 3);
  board->manipulable(false);
  EXPECT_EQ(cfVisibleHandles(*board), 0);
  EXPECT_EQ(board->numKids(), 3);
  board->condSelected(false, false);
  board->manipulable(true);
  EXPECT_EQ(cfVisibleHandles(*board), 0);  // not selected
}

TEST_F(HandleSet, afterFreeHandlesThereAreNoneUntilTheyAreShownAgain)
{
  board->condSelected(true, false);
  board->freeHandles();
  EXPECT_EQ(board->numKids(), 0);
  for (long i = 0; i < 3; ++i)
    EXPECT_EQ(board->handles_()[i], nullptr);
  board->updateHandles();
  board->geometryChanged();
  EXPECT_EQ(board->numKids(), 0);
  EXPECT_TRUE(cfPlaces(test.scope(), kMagenta).empty());
  board->showHandles(true);
  EXPECT_EQ(cfVisibleHandles(*board), 3);
}

TEST_F(HandleSet, aHandleThatDiesByItselfLeavesItsPlaceEmpty)
{
  board->condSelected(true, false);
  delete board->handles_()[1];
  EXPECT_EQ(board->handles_()[1], nullptr);
  take();
  board->updateHandles();
  EXPECT_EQ(take(), (HookLog{"place 0", "place 2"}));
  board->showHandles(true);
  EXPECT_EQ(take(), (HookLog{"make 1", "place 0", "place 1", "place 2", "show 1"}));
}

TEST_F(HandleSet, handlesDieWithTheirShapeAndNotBefore)
{
  board->condSelected(true, false);
  ccUIObject* const handle = cfHandle(*board, 0);
  std::uint32_t const key = handle->key();
  board.reset();
  EXPECT_FALSE(ccUIObject::isValid(handle, key, &test.root()));
}

TEST_F(HandleSet, aHandleOfAnotherParentEditsNothingAndOutlivesItsShape)
{
  board->condSelected(true, false);
  auto* const knob = dynamic_cast<Knob*>(cfHandle(*board, 0));
  knob->parent(test.displayFrame());
  EXPECT_EQ(knob->owner(), nullptr);
  board->updateHandles();
  board.reset();
  knob->update();
  delete knob;
}

TEST_F(HandleSet, theNumberOfHandlesMayChange)
{
  board->condSelected(true, false);
  take();
  board->count = 1;
  board->showHandles(true);
  EXPECT_EQ(board->numKids(), 1);
  board->count = 4;
  board->showHandles(true);
  EXPECT_EQ(board->numKids(), 4);
  board->count = 0;
  board->showHandles(true);
  EXPECT_EQ(board->numKids(), 0);
}

TEST_F(HandleSet, oneTakesTheHandlesOfAnother)
{
  cc_HandleSet current(*board), last(*board);
  current.make(2, [&](long i) { return new Knob(board.get(), i); });
  last.make(1, [&](long i) { return new Knob(board.get(), i); });
  ccUIHandle* const first = current[0];
  last.takeFrom(current);
  EXPECT_EQ(board->numKids(), 2);
  EXPECT_EQ(last[0], first);
  EXPECT_EQ(current.size(), 0);
  delete last[1];
  EXPECT_EQ(last[1], nullptr);
  last.free();
  EXPECT_EQ(board->numKids(), 0);
}

TEST_F(HandleSet, aChangeOfGeometryPlacesThenDrawsThenAnnounces)
{
  board->condSelected(true, false);
  cfTake(log);
  board->geometryChanged();
  HookLog const lines = cfTake(log);
  ASSERT_GE(lines.size(), 5u);
  EXPECT_EQ(lines[0], "place 0");
  EXPECT_EQ(lines[2], "place 2");
  EXPECT_EQ(lines[3], "draw board");
  EXPECT_EQ(lines.back(), "redim");
}

TEST_F(HandleSet, handlesLieAboveTheirShapeWhoeverDrawsIt)
{
  board->showHandles(true);  // before it is selected
  take();
  test.clearLogs();
  board->condSelected(true, false);
  // Each stands in one row of seven pels about its place, whatever was drawn last.
  EXPECT_EQ(test.scope().rgb(10, 5), kMagenta);
  EXPECT_GE(test.scope().calls("rle"), 3);
}

TEST_F(HandleSet, aHookMayDeleteTheShapeOrHandlesWhileTheyArePlaced)
{
  board->onPlace = [&](long i) {
    if (i == 1)
      board.reset();
  };
  board->condSelected(true, false);
  EXPECT_EQ(board, nullptr);

  board = std::make_unique<Board>(log, test.displayFrame());
  board->condVisible(true);
  board->onPlace = [&](long i) {
    if (i == 0)
      board->freeHandles();
  };
  board->condSelected(true, false);
  EXPECT_EQ(board->numKids(), 0);
}

TEST_F(HandleSet, aHookMayDeleteTheShapeOrHandlesWhileTheyAreShown)
{
  board->onShow = [&](long i) {
    if (i == 1)
      delete board->handles_()[2];
  };
  board->condSelected(true, false);
  EXPECT_EQ(board->numKids(), 2);
  board->condSelected(false, false);
  board->onShow = [&](long i) {
    if (i == 0)
      board.reset();
  };
  board->condSelected(true, false);
  EXPECT_EQ(board, nullptr);
}

struct BoardStage {
  TestDisplay test{100, 60};
  HookLog log;
  Board board{log, test.displayFrame()};
  BoardStage()
  {
    test.scope().keepLog(false);
    log.reserve(1000);
    board.condVisible(true);
  }
};

TEST(HandleSetWithoutMemory, whatCouldNotBeMadeIsMadeTheNextTime)
{
  ccUIHandle::handleColor(ccColor::magentaColor());
  long const failures = failEach([] { return std::make_unique<BoardStage>(); },
                                 [](BoardStage& s) { s.board.showHandles(true); },
                                 [](BoardStage& s, bool failed) {
                                   EXPECT_FALSE(s.board.rootMutex().lockedByMe());
                                   s.board.showHandles(true);
                                   EXPECT_EQ(s.board.numKids(), 3) << failed;
                                   EXPECT_EQ(cfVisibleHandles(s.board), 3);
                                 });
  EXPECT_GE(failures, 6);
}

}  // namespace
