// Each allocation of each operation fails in turn: it is done, or nothing has changed.
#include "tests/support/made_or_not.h"

#include "foundation/math_error.h"
#include "foundation/message_string.h"
#include "foundation/observer.h"
#include "foundation/pel_ops.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using namespace krs_test;

namespace {

struct Listener : ccObserver {
  int told = 0, gone = 0;
  void subjectChanged(ccSubject*, void*) override { ++told; }
  void subjectGone(ccSubject*) override { ++gone; }
};

template <class T> class FailingPels : public testing::Test {};
using PelTypes = testing::Types<unsigned char, unsigned short, ccPackedRGB16Pel, ccPackedRGB32Pel>;
TYPED_TEST_SUITE(FailingPels, PelTypes);

}  // namespace

TEST(FailingMemory, attachingIsDoneOrUndone)
{
  struct Stage {
    ccSubject subject;
    Listener listener;
  };
  long const failures = failEach([] { return std::make_unique<Stage>(); },
                                 [](Stage& s) { s.subject.attach(&s.listener); },
                                 [](Stage& s, bool failed) {
                                   { ccNotifyObservers const guard(&s.subject); }
                                   EXPECT_EQ(s.listener.told, failed ? 0 : 1);
                                   s.subject.attach(&s.listener);
                                   { ccNotifyObservers const guard(&s.subject); }
                                   EXPECT_EQ(s.listener.told, failed ? 1 : 2) << "attached once";
                                 });
  EXPECT_EQ(failures, 2);
}

TEST(FailingMemory, anObserverThatWasNotAttachedGoesAlone)
{
  // The subject stays, so an observer that believed itself attached would look for itself in it.
  ccSubject subject;
  failEach([] { return std::make_unique<std::unique_ptr<Listener>>(std::make_unique<Listener>()); },
           [&](std::unique_ptr<Listener>& one) { subject.attach(one.get()); },
           [&](std::unique_ptr<Listener>& one, bool failed) {
             if (!failed)
               return;
             long const gone = one->gone;
             { ccNotifyObservers const guard(&subject); }
             EXPECT_EQ(one->told, 0);
             EXPECT_EQ(gone, 0);
             one.reset();
           });
}

TEST(FailingMemory, aRoundOfNoticesTakesNone)
{
  ccSubject subject;
  std::vector<std::unique_ptr<Listener>> listeners;
  for (int i = 0; i < 20; ++i) {
    listeners.push_back(std::make_unique<Listener>());
    subject.attach(listeners.back().get());
  }
  {
    MemoryWatch const watch(1);
    { ccNotifyObservers const guard(&subject); }
    EXPECT_FALSE(watch.failed()) << "a destructor would have ended the process";
  }
  for (auto const& one : listeners)
    EXPECT_EQ(one->told, 1);
}

TEST(FailingMemory, detachingAndEndingTakeNone)
{
  Listener listener;
  auto subject = std::make_unique<ccSubject>();
  subject->attach(&listener);
  MemoryWatch const watch(1);
  subject->detach(&listener);
  {
    ccNotifyObservers const guard(subject.get());
    subject.reset();
  }
  EXPECT_FALSE(watch.failed());
  EXPECT_EQ(listener.told, 0);
}

TEST(FailingMemory, dictionariesStayAsTheyWere)
{
  struct Stage {
    ccDllDictionary dictionary{"failing_memory_test"};
    Stage() { dictionary.set(1, std::string(40, 'f')); }
  };
  for (long id : {1L, 2L})
    failEach([] { return std::make_unique<Stage>(); },
             [id](Stage& s) { s.dictionary.set(id, std::string(60, 'n')); },
             [id](Stage& s, bool failed) {
               std::string text = "none";
               bool const found = s.dictionary.lookup(id, text);
               EXPECT_EQ(found, !failed || id == 1);
               if (found) {
                 EXPECT_EQ(text, failed ? std::string(40, 'f') : std::string(60, 'n'));
               }
             });
  expectMadeOrNot("dictionary", [] { return std::make_unique<ccDllDictionary>("a module with a long name: failing"); },
                  [](auto const&) { EXPECT_NE(ccDllDictionary::find("a module with a long name: failing"), nullptr); });
  EXPECT_EQ(ccDllDictionary::find("a module with a long name: failing"), nullptr) << "none is left behind";
}

TEST(FailingMemory, textsAreMadeOrNot)
{
  ccStringLiteral const literal(7, "a text of more than a few characters: %1 and %2", "failing_memory_test");
  expectMadeOrNot("text", [&] { return literal.text(); }, [](std::string const& s) { EXPECT_EQ(s.size(), 47u); });
  expectMadeOrNot("formatString",
                  [&] { return literal.formatString(cc_MsgArgs().add(std::string(30, 'x')).add(5L).add(2.5)); },
                  [](std::string const& s) { EXPECT_EQ(s.size(), 47u - 4 + 30 + 1); });
  expectMadeOrNot("cfFormat", [] { return cfFormat("%s and a text that needs memory %d %g", "one", 5, 2.5); },
                  [](std::string const& s) { EXPECT_EQ(s, "one and a text that needs memory 5 2.5"); });
  struct Stage {
    cc_MsgArgs args;
    Stage() { args.add("first"); }
  };
  failEach([] { return std::make_unique<Stage>(); }, [](Stage& s) { s.args.add(std::string(50, 'y')); },
           [](Stage& s, bool failed) { EXPECT_EQ(s.args.texts().size(), failed ? 1u : 2u); });
}

TEST(FailingMemory, mapsAreMadeOrNot)
{
  std::vector<ccVector<2>> const from = {{0, 0}, {9, 0}, {0, 9}, {9, 9}, {4, 5}, {2, 7}, {7, 1}};
  std::vector<ccVector<2>> to = from;
  for (auto& p : to)
    p += ccVector<2>(3, p.x() * p.x());
  expectMadeOrNot("polynomial", [&] { return ccPtrHandle_const<cc2XformBase>(new cc2XformPoly(from, to, 2)); },
                  [](auto const& map) { EXPECT_NEAR(map->mapPoint({5, 1}).y(), 26, 1e-6); });
  cc2XformPoly const bent(from, to, 2);
  long const before = MemoryWatch::allocations();
  double const y = bent.mapPoint({5, 1}).y() + bent.linearXform({5, 1}).mapPoint({5, 1}).y();
  EXPECT_EQ(MemoryWatch::allocations(), before) << "images are drawn through it";
  EXPECT_NEAR(y, 52, 1e-6);
}

TYPED_TEST(FailingPels, buffersAreMadeOrNot)
{
  using T = TypeParam;
  expectMadeOrNot("buffer", [] { return ccPelBuffer<T>(33, 7); },
                  [](auto const& b) { EXPECT_EQ(b.size(), ccPair<long>(33, 7)); });
  ccPelBuffer<T> const source(5, 6);
  expectMadeOrNot("copy", [&] { return cfPelCopy<T>(source, nullptr); },
                  [](auto const& b) { EXPECT_EQ(b.size(), ccPair<long>(5, 6)); });
}

TYPED_TEST(FailingPels, viewsChangeWithoutMemory)
{
  using T = TypeParam;
  ccPelBuffer<T> view(9, 8), target(9, 8);
  MemoryWatch const watch(1);
  view.window(1, 1, 5, 5);
  view.offset({3, 3});
  auto const part = view.cut(1, 1, 2, 2);
  T low{}, high{};
  cfPelMove<T>(view, target);
  cfPelMinmax<T>(view, low, high);
  view.setUnbound();
  static_cast<void>(part.imageFromClientXform());
  EXPECT_FALSE(watch.failed());
}

TYPED_TEST(FailingPels, aTransformIsSetOrNot)
{
  using T = TypeParam;
  struct Stage {
    ccPelBuffer<T> b{2, 2};
  };
  long const failures = failEach([] { return std::make_unique<Stage>(); },
                                 [](Stage& s) { s.b.clientFromImageXform(ccXform<2>(2, 2, ccVector<2>())); },
                                 [](Stage& s, bool failed) {
                                   EXPECT_EQ(s.b.imageFromClientXform(),
                                             failed ? ccXform<2>::I : ccXform<2>(0.5, 0.5, ccVector<2>()));
                                 });
  EXPECT_EQ(failures, 1);
}
