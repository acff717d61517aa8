// Objects that tell, their listeners, and the order of what happens about a change.
#include "tests/support/memory_scope.h"
#include "tests/support/memory_watch.h"
#include "tests/ui/notify/notify_stage.h"

#include "canvas/ui_error.h"
#include "ui/notify/notify_delivery.h"

#include <memory>
#include <stdexcept>

namespace {

using State = ccUINotifyObject::State;
using Types = std::vector<int>;

struct NotifyObject : ::testing::Test {
  HookLog log;
  TestRoot root;
  SpyShapesFrame frame{log, "frame", root.groundPlane(), ccUIRect(0, 0, 80, 60)};
  std::unique_ptr<TellingBox> box = std::make_unique<TellingBox>(&frame);
  Heard heard;
  std::vector<ccUINotifyListenerTag> tags;

  NotifyObject()
  {
    cfOn(frame);
    frame.incrementCount(ccUITablet::imageLayer);
    box->condVisible(true);
  }
  ~NotifyObject() override
  {
    for (auto const& tag : tags)
      ccUINotifyObject::removeListener(tag);
    cfWaitForDelivery();  // nobody calls a listener of a test that is over
  }
  ccUINotifyListenerTag& listen(Heard& to, unsigned long mask = kAllTypes)
  {
    tags.push_back(ccUINotifyObject::addListener(box.get(), &to, &Heard::callback, mask));
    return tags.back();
  }
};

TEST_F(NotifyObject, twoListenersOnOneNodeHearTheirOwnTypeOnly)
{
  Heard second;
  std::vector<int> order;
  heard.onCall = [&](auto const&) { order.push_back(2); };
  second.onCall = [&](auto const&) { order.push_back(4); };
  listen(second, 4);
  listen(heard, 2);

  State const before = box->beginStateChange();
  box->number = 5;
  box->endStateChange(before, false, false);
  cfWaitForDelivery();

  EXPECT_EQ(heard.types(), Types{2});
  EXPECT_EQ(second.types(), Types{4});
  EXPECT_EQ(order, (std::vector<int>{2, 4}));
}

TEST_F(NotifyObject, aChangeIsToldWithTheStateBeforeAndAfter)
{
  listen(heard);
  box->number = 3;
  State const before = box->beginStateChange();
  EXPECT_EQ(cfNumber(before), 3);
  box->number = 4;

  box->endStateChange(before, false, false);
  cfWaitForDelivery();

  ASSERT_EQ(heard.types(), (Types{2, 4}));
  EXPECT_EQ(heard.entries[0].key, box->key());
  EXPECT_EQ(heard.entries[0].before, 3);
  EXPECT_EQ(heard.entries[1].before, 3);
  EXPECT_EQ(heard.entries[1].after, 4);
}

TEST_F(NotifyObject, aNullStateBeforeTheChangeIsLegal)
{
  listen(heard);

  box->endStateChange(State(), false, false);
  cfWaitForDelivery();

  ASSERT_EQ(heard.types(), Types{4});
  EXPECT_EQ(heard.entries[0].before, -1);
  EXPECT_EQ(heard.entries[0].after, 0);
}

TEST_F(NotifyObject, whileOffNothingIsToldAndTheChangeIsStillRedrawn)
{
  listen(heard);
  box->isNotificationEnabled(false);
  EXPECT_FALSE(box->isNotificationEnabled());
  bool asked = false, ended = false;
  box->onState = [&] { asked = true; };
  box->onEnd = [&] { ended = true; };
  long const draws = box->draws;

  State const before = box->beginStateChange();
  box->endStateChange(before, /*redraw=*/true, /*flush=*/false);
  cfWaitForDelivery();

  EXPECT_FALSE(before);
  EXPECT_FALSE(asked);
  EXPECT_TRUE(ended);
  EXPECT_GT(box->draws, draws);
  EXPECT_TRUE(heard.entries.empty());
}

TEST_F(NotifyObject, withoutRedrawNothingIsDrawn)
{
  root.globalUpdate();  // shows what the arrangement has marked
  long const draws = box->draws;
  box->endStateChange(box->beginStateChange(), /*redraw=*/false, /*flush=*/true);
  EXPECT_EQ(box->draws, draws);
}

TEST_F(NotifyObject, aManipulableShapeShowsItsHandlesThenPlacesThemThenIsDrawn)
{
  TellingManShape shape(log, &frame);
  shape.condVisible(true);
  cfTake(log);
  // Its ancestors are not selected, so neither is it.
  shape.endStateChange(State(), /*redraw=*/true, /*flush=*/false);
  EXPECT_EQ(cfTake(log), (HookLog{"endStateChange_", "hideHandles", "updateHandles", "draw"}));

  root.groundPlane()->condSelected(true, false);
  root.condSelected(true, false);
  frame.condSelected(true, false);
  shape.condSelected(true, false);
  ASSERT_TRUE(shape.selected());
  cfTake(log);
  shape.endStateChange(State(), /*redraw=*/true, /*flush=*/false);
  EXPECT_EQ(cfTake(log), (HookLog{"endStateChange_", "showHandles", "updateHandles", "draw"}));

  shape.manipulable(false);
  cfTake(log);
  shape.endStateChange(State(), /*redraw=*/true, /*flush=*/false);
  EXPECT_EQ(cfTake(log), (HookLog{"endStateChange_", "hideHandles", "updateHandles", "draw"}));
}

TEST(NotifyFlush, bringsTheChangeToTheScreenBeforeListenersHearOfIt)
{
  MemoryScope scope({80, 60});
  TestRoot root(&scope, nullptr);
  HookLog log;
  SpyShapesFrame frame(log, "frame", root.groundPlane(), ccUIRect(0, 0, 80, 60));
  cfOn(frame);
  frame.incrementCount(ccUITablet::imageLayer);
  TellingBox box(&frame);
  box.condVisible(true);
  root.globalUpdate();
  scope.clearLog();
  Heard heard;
  long presentedBefore = -1;
  heard.onCall = [&](auto const&) {
    ccLock lock(root.mutex());
    presentedBefore = scope.presentations();
  };
  auto const tag = ccUINotifyObject::addListener(&box, &heard, &Heard::callback, 4);

  box.endStateChange(State(), /*redraw=*/true, /*flush=*/true);
  cfWaitForDelivery();

  EXPECT_EQ(scope.presentations(), 1);
  EXPECT_EQ(presentedBefore, 1);
  ccUINotifyObject::removeListener(tag);
}

TEST(NotifyFlush, showsWhateverWaitsForTheScreenIfItIsAskedTo)
{
  MemoryScope scope({80, 60});
  TestRoot root(&scope, nullptr);
  HookLog log;
  SpyShapesFrame frame(log, "frame", root.groundPlane(), ccUIRect(0, 0, 80, 60));
  cfOn(frame);
  TellingBox box(&frame);
  root.globalUpdate();
  scope.clearLog();
  root.update(ccUIRect(5, 5, 10, 10), ccUITablet::imageLayer, /*now=*/false);

  box.endStateChange(State(), /*redraw=*/false, /*flush=*/false);
  EXPECT_EQ(scope.presentations(), 0);
  box.endStateChange(State(), /*redraw=*/false, /*flush=*/true);
  EXPECT_EQ(scope.presentations(), 1);
}

TEST_F(NotifyObject, theHookRunsBetweenSnapshotAndPost)
{
  listen(heard);
  box->number = 1;
  box->onEnd = [&] { box->number = 2; };

  box->endStateChange(State(), false, false);
  cfWaitForDelivery();

  ASSERT_EQ(heard.entries.size(), 1u);
  EXPECT_EQ(heard.entries[0].after, 1);
}

TEST_F(NotifyObject, aHookThatSwitchesNotificationOffKeepsTheChangeUntold)
{
  listen(heard);
  box->onEnd = [&] { box->isNotificationEnabled(false); };

  box->endStateChange(State(), false, false);
  cfWaitForDelivery();

  EXPECT_TRUE(heard.entries.empty());
}

TEST_F(NotifyObject, aHookThatSwitchesNotificationOnTellsNothingOfThisChange)
{
  listen(heard);
  box->isNotificationEnabled(false);
  box->onEnd = [&] { box->isNotificationEnabled(true); };

  box->endStateChange(State(), false, false);
  cfWaitForDelivery();

  EXPECT_TRUE(heard.entries.empty());
}

TEST_F(NotifyObject, hooksThatThrowLeaveNothingToldAndNoLockHeld)
{
  listen(heard);
  box->onState = [] { throw std::runtime_error("state"); };
  EXPECT_THROW(box->beginStateChange(), std::runtime_error);
  EXPECT_THROW(box->endStateChange(State(), true, true), std::runtime_error);
  box->onState = nullptr;
  box->onEnd = [] { throw std::runtime_error("end"); };
  EXPECT_THROW(box->endStateChange(State(), true, true), std::runtime_error);
  cfWaitForDelivery();

  EXPECT_TRUE(heard.entries.empty());
  EXPECT_FALSE(root.mutex().lockedByMe());
  box->onEnd = nullptr;
  box->endStateChange(State(), true, true);
  cfWaitForDelivery();
  EXPECT_EQ(heard.types(), Types{4});
}

TEST_F(NotifyObject, aHookMayDeleteTheNode)
{
  listen(heard);
  box->onEnd = [&] { box.reset(); };
  box->endStateChange(State(), true, true);
  cfWaitForDelivery();
  EXPECT_EQ(heard.types(), Types{1});

  for (bool const begin : {true, false}) {
    heard.entries.clear();
    box = std::make_unique<TellingBox>(&frame);
    listen(heard);
    box->onState = [&] { box.reset(); };
    // Its state is asked for, and is gone with it.
    if (begin)
      box->beginStateChange();
    else
      box->endStateChange(State(), true, true);
    cfWaitForDelivery();
    EXPECT_EQ(heard.types(), Types{1}) << begin;
  }
}

TEST_F(NotifyObject, theEndOfANodeIsToldAfterItsDeathAndAListenerMayRemoveItself)
{
  std::uint32_t const key = box->key();
  ccUIObject* const node = box.get();
  bool wasValid = true;
  listen(heard);
  heard.onCall = [&](ccUINotification const& n) {
    wasValid = ccUIObject::isValid(node, n.key(), &root);
    ccUINotifyObject::removeListener(tags[0]);
  };

  box.reset();
  cfWaitForDelivery();

  ASSERT_EQ(heard.types(), Types{1});
  EXPECT_EQ(heard.entries[0].key, key);
  EXPECT_FALSE(wasValid);
}

TEST_F(NotifyObject, theEndOfANodeThatWasNeverUsedOrIsSwitchedOffIsNotTold)
{
  cc_NotifyDelivery& delivery = cc_NotifyDelivery::theOne();
  auto const listenByKey = [&](TellingBox& to) {
    tags.push_back(delivery.addListener(to.key(), &heard, &Heard::callback, kAllTypes));
  };
  auto unused = std::make_unique<TellingBox>();
  listenByKey(*unused);
  unused.reset();
  listen(heard);
  box->isNotificationEnabled(false);
  box.reset();
  cfWaitForDelivery();
  EXPECT_TRUE(heard.entries.empty());

  auto used = std::make_unique<TellingBox>();
  listenByKey(*used);
  used->uiObject();
  used.reset();
  cfWaitForDelivery();
  EXPECT_EQ(heard.types(), Types{1});
}

// The base that tells goes before the node, or after it.
class TellsFirst : public ccUINotifyObject, public BoxShape {
public:
  TellsFirst() : BoxShape(nullptr) {}
  State state() override { return State(); }
};

TEST_F(NotifyObject, theKeyOfADeadNodeIsKnownWhateverTheOrderOfTheBases)
{
  auto node = std::make_unique<TellsFirst>();
  std::uint32_t const key = node->key();
  tags.push_back(ccUINotifyObject::addListener(node.get(), &heard, &Heard::callback, 1));

  node.reset();
  cfWaitForDelivery();

  ASSERT_EQ(heard.entries.size(), 1u);
  EXPECT_EQ(heard.entries[0].key, key);
}

TEST_F(NotifyObject, aTagThatIsOffHearsNothingInThatSpanAndNothingOfItLater)
{
  ccUINotifyListenerTag& tag = listen(heard);
  {
    ccUINotifyListenerTag::Enabler const off(tag, false);
    EXPECT_FALSE(tag.isEnabled());
    box->beginStateChange();
    cfWaitForDelivery();
  }
  EXPECT_TRUE(tag.isEnabled());
  cfWaitForDelivery();
  EXPECT_TRUE(heard.entries.empty());

  box->beginStateChange();
  cfWaitForDelivery();
  EXPECT_EQ(heard.types(), Types{2});
}

TEST_F(NotifyObject, theSwitchIsReadWhenTheListenersTurnComes)
{
  Heard gate;
  ccEvent reached(true), open(true);
  gate.onCall = [&](auto const&) { reached.set(), open.lock(30); };
  listen(gate, 2);
  ccUINotifyListenerTag tag = listen(heard, 4);

  // On while it is posted, off when its turn comes.
  box->endStateChange(box->beginStateChange(), false, false);
  ASSERT_TRUE(reached.lock(30));
  tag.isEnabled(false);
  open.set();
  cfWaitForDelivery();

  EXPECT_TRUE(heard.entries.empty());
}

TEST_F(NotifyObject, allCopiesOfATagShareOneSwitch)
{
  ccUINotifyListenerTag const tag = listen(heard);
  ccUINotifyListenerTag copy = tag;
  copy.isEnabled(false);
  EXPECT_FALSE(tag.isEnabled());
  box->beginStateChange();
  cfWaitForDelivery();
  EXPECT_TRUE(heard.entries.empty());
  EXPECT_TRUE(tag.match(copy) && copy.match(tag));
}

TEST_F(NotifyObject, tagsMatchWhenBothAreValidAndTheirKeysEqual)
{
  ccUINotifyListenerTag const a = listen(heard), b = listen(heard), none, noneToo;
  EXPECT_TRUE(a.isValid() && a.isEnabled());
  EXPECT_TRUE(a.match(a));
  EXPECT_FALSE(a.match(b));
  EXPECT_FALSE(a.match(none));
  EXPECT_FALSE(none.match(a));
  EXPECT_FALSE(none.match(noneToo));
  EXPECT_FALSE(none.isEnabled());
}

TEST_F(NotifyObject, aMaskOfZeroOrNoObjectGivesAnInvalidTag)
{
  EXPECT_FALSE(ccUINotifyObject::addListener(box.get(), &heard, &Heard::callback, 0).isValid());
  EXPECT_FALSE(ccUINotifyObject::addListener(nullptr, &heard, &Heard::callback, 7).isValid());
  // Also without a callback: what is not listened for needs none.
  EXPECT_FALSE(ccUINotifyObject::addListener(box.get(), &heard, nullptr, 0).isValid());
  ccUINotifyObject::removeListener(ccUINotifyListenerTag());
}

TEST_F(NotifyObject, aNullCallbackIsRefused)
{
  EXPECT_THROW(ccUINotifyObject::addListener(box.get(), &heard, nullptr, 7), ccUIError::BadParams);
}

class NoNode : public ccUINotifyObject {
public:
  State state() override { return State(); }
};

TEST_F(NotifyObject, anObjectThatIsNoNodeThrowsAtItsFirstUse)
{
  NoNode none;
  EXPECT_EQ(ccUINotification(&none, ccUINotification::objectDestroyed).key(), 0xFFFFFFFFu);
  EXPECT_THROW(none.uiObject(), ccUIError::BadParams);
  EXPECT_THROW(none.beginStateChange(), ccUIError::BadParams);
  EXPECT_THROW(none.endStateChange(State(), true, true), ccUIError::BadParams);
  EXPECT_THROW(none.isNotificationEnabled(), ccUIError::BadParams);
  EXPECT_THROW(none.isNotificationEnabled(false), ccUIError::BadParams);
  EXPECT_THROW(ccUINotifyObject::addListener(&none, &heard, &Heard::callback, 7), ccUIError::BadParams);
  EXPECT_THROW(ccUINotifyObject::Enabler(&none, false), ccUIError::BadParams);
}

TEST_F(NotifyObject, aScopeSwitchesNotificationAndRestoresWhatWas)
{
  listen(heard);
  {
    ccUINotifyObject::Enabler const off(box.get(), false);
    EXPECT_FALSE(box->isNotificationEnabled());
    {
      ccUINotifyObject::Enabler const on(box.get(), true);
      box->beginStateChange();
    }
    EXPECT_FALSE(box->isNotificationEnabled());
    box->beginStateChange();
  }
  EXPECT_TRUE(box->isNotificationEnabled());
  cfWaitForDelivery();
  EXPECT_EQ(heard.types(), Types{2});

  ccUINotifyObject::Enabler const nobody(nullptr, false);
  ccUINotifyObject::Enabler const survivor(box.get(), false);
  box.reset();
}

TEST(Notification, carriesWhatItsTypeHas)
{
  TellingBox box;
  State const one(new NumberState(1)), two(new NumberState(2));
  ccUINotification const about(&box, one), changed(&box, one, two), gone(&box, ccUINotification::objectDestroyed),
      nobody(nullptr, one);
  EXPECT_EQ(about.type(), 2);
  EXPECT_EQ(cfNumber(about.preChangeState()), 1);
  EXPECT_THROW(about.postChangeState(), ccUIError::BadParams);
  EXPECT_EQ(changed.type(), 4);
  EXPECT_EQ(cfNumber(changed.preChangeState()), 1);
  EXPECT_EQ(cfNumber(changed.postChangeState()), 2);
  EXPECT_EQ(gone.type(), 1);
  EXPECT_EQ(gone.key(), box.key());
  EXPECT_THROW(gone.preChangeState(), ccUIError::BadParams);
  EXPECT_THROW(gone.postChangeState(), ccUIError::BadParams);
  EXPECT_EQ(nobody.key(), 0xFFFFFFFFu);
}

TEST_F(NotifyObject, aListenerMayTouchTheTree)
{
  listen(heard);
  heard.onCall = [&](ccUINotification const& n) {
    ccLock lock(root.mutex());
    if (ccUIObject::isValid(box.get(), n.key(), &root))
      box->pos(box->pos() + ccVector<2>(1, 0));
  };
  for (int i = 0; i < 20; ++i) {
    ccLock lock(root.mutex());
    box->endStateChange(box->beginStateChange(), true, true);
  }
  cfWaitForDelivery();
  ccLock lock(root.mutex());
  EXPECT_EQ(box->pos(), ccVector<2>(40, 0));
}

TEST_F(NotifyObject, aListenerThatBreaksTheWaitsOfItsThreadIsTheOnlyOneToNotice)
{
  listen(heard);
  ccThreadID thread = 0;
  heard.onCall = [&](auto const&) {
    thread = cfCurrentThreadID();
    cc_Resource::breakLocks(thread);
  };
  box->beginStateChange();
  cfWaitForDelivery();
  cfWaitForDelivery();
  cc_Resource::mendLocks(thread);
  EXPECT_EQ(heard.types(), Types{2});
}

struct TellingStage {
  TellingBox box;
  Heard heard;
  State before;
  ccUINotifyListenerTag tag = ccUINotifyObject::addListener(&box, &heard, &Heard::callback, kAllTypes);
  ~TellingStage()
  {
    ccUINotifyObject::removeListener(tag);
    cfWaitForDelivery();
  }
};

TEST(NotifyWithoutMemory, aChangeIsToldOrItsCallerHearsThatItIsNot)
{
  cfWaitForDelivery();  // the thread runs
  long const failures = failEach([] { return std::make_unique<TellingStage>(); },
                                 [](TellingStage& s) { s.box.endStateChange(State(), true, true); },
                                 [](TellingStage& s, bool failed) {
                                   cfWaitForDelivery();
                                   EXPECT_EQ(s.heard.entries.size(), failed ? 0u : 1u);
                                   EXPECT_FALSE(s.box.rootMutex().lockedByMe());
                                 });
  EXPECT_GE(failures, 2);
}

TEST(NotifyWithoutMemory, aNodeDiesWhetherItsListenersHearOfItOrNot)
{
  struct Stage : TellingStage {
    std::unique_ptr<TellingBox> dying = std::make_unique<TellingBox>();
    Heard last;
    ccUINotifyListenerTag lastTag = ccUINotifyObject::addListener(dying.get(), &last, &Heard::callback, 1);
    ~Stage() { ccUINotifyObject::removeListener(lastTag); }
  };
  long const failures = failEach([] { return std::make_unique<Stage>(); }, [](Stage& s) { s.dying.reset(); },
                                 [](Stage& s, bool failed) {
                                   cfWaitForDelivery();
                                   EXPECT_EQ(s.last.entries.size(), failed ? 0u : 1u);
                                 });
  EXPECT_GE(failures, 1);
}

}  // namespace
