#include "foundation/observer.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

class Subject : public ccSubject {
public:
  ~Subject() override
  {
    if (announceEarly)
      announceEnd();
    alive = false;
  }
  bool announceEarly = false;
  bool alive = true;
};

// Writes down what it hears.
class Observer : public ccObserver {
public:
  Observer(std::vector<std::string>& log, std::string name) : log_(log), name_(std::move(name)) {}
  void subjectChanged(ccSubject* subject, void* argument) override
  {
    lastSubject = subject;
    lastArgument = argument;
    log_.push_back(name_);
    if (onChange)
      onChange();
  }
  void subjectGone(ccSubject* subject) override
  {
    lastSubject = subject;
    log_.push_back(name_ + " gone");
    if (onGone)
      onGone();
  }
  std::function<void()> onChange, onGone;
  ccSubject* lastSubject = nullptr;
  void* lastArgument = nullptr;

private:
  std::vector<std::string>& log_;
  std::string name_;
};

using Log = std::vector<std::string>;

}  // namespace

TEST(Observer, isToldWhenTheGuardDiesInOrderOfAttaching)
{
  Log log;
  Subject subject;
  Observer a(log, "a"), b(log, "b");
  subject.attach(&b);
  subject.attach(&a);
  int argument = 0;
  {
    ccNotifyObservers const guard(&subject, &argument);
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(log, (Log{"b", "a"}));
  EXPECT_EQ(a.lastSubject, &subject);
  EXPECT_EQ(a.lastArgument, &argument);
}

TEST(Observer, nestedGuardsTellOnceWithTheOutermostArgument)
{
  Log log;
  Subject subject;
  Observer a(log, "a");
  subject.attach(&a);
  int outer = 0, inner = 0;
  {
    ccNotifyObservers const guard(&subject, &outer);
    {
      ccNotifyObservers const nested(&subject, &inner);
    }
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(log, (Log{"a"}));
  EXPECT_EQ(a.lastArgument, &outer);
  {
    ccNotifyObservers const again(&subject);
  }
  EXPECT_EQ(log.size(), 2u);
  EXPECT_EQ(a.lastArgument, nullptr);
}

TEST(Observer, guardsOnDifferentSubjectsAreIndependent)
{
  Log log;
  Subject one, two;
  Observer a(log, "a"), b(log, "b");
  one.attach(&a);
  two.attach(&b);
  {
    ccNotifyObservers const outer(&one);
    {
      ccNotifyObservers const inner(&two);
    }
    EXPECT_EQ(log, (Log{"b"}));
  }
  EXPECT_EQ(log, (Log{"b", "a"}));
}

TEST(Observer, nullTwiceAndUnknownAreIgnored)
{
  Log log;
  Subject subject;
  Observer a(log, "a"), stranger(log, "stranger");
  subject.attach(nullptr);
  subject.detach(nullptr);
  subject.attach(&a);
  subject.attach(&a);
  subject.detach(&stranger);
  {
    ccNotifyObservers const guard(&subject);
    ccNotifyObservers const none(nullptr);
  }
  EXPECT_EQ(log, (Log{"a"}));
  subject.detach(&a);
  {
    ccNotifyObservers const guard(&subject);
  }
  EXPECT_EQ(log.size(), 1u);
}

TEST(Observer, roundSkipsThoseThatLeftAndLeavesThoseThatJoinedToTheNext)
{
  Log log;
  Subject subject;
  Observer first(log, "first"), joined(log, "joined"), back(log, "back");
  auto leaving = std::make_unique<Observer>(log, "leaving");
  subject.attach(&first);
  subject.attach(leaving.get());
  subject.attach(&back);
  first.onChange = [&] {
    leaving.reset();
    subject.attach(&joined);
    subject.detach(&back);
    subject.attach(&back);  // joins anew, so it waits too
    first.onChange = nullptr;
  };
  {
    ccNotifyObservers const guard(&subject);
  }
  EXPECT_EQ(log, (Log{"first"}));
  {
    ccNotifyObservers const guard(&subject);
  }
  EXPECT_EQ(log, (Log{"first", "first", "joined", "back"}));
}

TEST(Observer, mayDeleteItselfInTheRound)
{
  Log log;
  Subject subject;
  auto* const self = new Observer(log, "self");
  Observer after(log, "after");
  subject.attach(self);
  subject.attach(&after);
  self->onChange = [self] {
    auto const keep = self->onChange;  // the function itself goes with the observer
    delete self;
  };
  {
    ccNotifyObservers const guard(&subject);
  }
  EXPECT_EQ(log, (Log{"self", "after"}));
}

TEST(Observer, goesOnAfterAnExceptionOfAnother)
{
  Log log;
  Subject subject;
  Observer bad(log, "bad"), good(log, "good");
  bad.onChange = [] { throw std::runtime_error("bad"); };
  subject.attach(&bad);
  subject.attach(&good);
  EXPECT_NO_THROW(ccNotifyObservers(&subject, nullptr));
  EXPECT_EQ(log, (Log{"bad", "good"}));
}

TEST(Observer, changeInsideTheRoundTellsAgain)
{
  Log log;
  Subject subject;
  Observer a(log, "a"), b(log, "b");
  a.onChange = [&] {
    a.onChange = nullptr;
    ccNotifyObservers const guard(&subject);
  };
  subject.attach(&a);
  subject.attach(&b);
  {
    ccNotifyObservers const guard(&subject);
  }
  EXPECT_EQ(log, (Log{"a", "a", "b", "b"}));
}

TEST(Subject, endComesOnceFromTheConcreteDestructor)
{
  Log log;
  auto subject = std::make_unique<Subject>();
  subject->announceEarly = true;
  bool alive = false;
  Observer a(log, "a"), b(log, "b");
  Subject* const address = subject.get();
  a.onGone = [&] { alive = address->alive; };
  subject->attach(&a);
  subject->attach(&b);

  subject.reset();

  EXPECT_EQ(log, (Log{"a gone", "b gone"}));
  EXPECT_TRUE(alive);
  EXPECT_EQ(a.lastSubject, address);
}

TEST(Subject, endComesFromTheBaseOtherwise)
{
  Log log;
  Observer a(log, "a");
  {
    Subject subject;
    subject.attach(&a);
  }
  EXPECT_EQ(log, (Log{"a gone"}));
}

TEST(Subject, observersMayDeleteThemselvesAndOthersAtItsEnd)
{
  Log log;
  auto* const self = new Observer(log, "self");
  auto other = std::make_unique<Observer>(log, "other");
  Observer last(log, "last");
  self->onGone = [self, &other] {
    auto const keep = self->onGone;
    other.reset();
    delete self;
  };
  {
    Subject subject;
    subject.attach(self);
    subject.attach(other.get());
    subject.attach(&last);
  }
  EXPECT_EQ(log, (Log{"self gone", "last gone"}));
}

TEST(Subject, thatDiesUnderAGuardVoidsIt)
{
  Log log;
  Observer a(log, "a");
  auto subject = std::make_unique<Subject>();
  subject->attach(&a);
  {
    ccNotifyObservers const guard(subject.get());
    ccNotifyObservers const nested(subject.get());
    subject.reset();
  }
  EXPECT_EQ(log, (Log{"a gone"}));
}

TEST(Subject, thatDiesInsideTheRoundEndsIt)
{
  Log log;
  Observer a(log, "a"), b(log, "b");
  auto subject = std::make_unique<Subject>();
  subject->attach(&a);
  subject->attach(&b);
  a.onChange = [&] { subject.reset(); };
  {
    ccNotifyObservers const guard(subject.get());
  }
  EXPECT_EQ(log, (Log{"a", "a gone", "b gone"}));
}

TEST(Subject, takesNoObserversAtItsEnd)
{
  Log log;
  Observer a(log, "a"), late(log, "late");
  auto subject = std::make_unique<Subject>();
  subject->attach(&a);
  Subject* const address = subject.get();
  subject->announceEarly = true;
  a.onGone = [&] {
    address->attach(&late);
    address->attach(&a);
  };
  subject.reset();
  EXPECT_EQ(log, (Log{"a gone"}));
}

TEST(Observer, destructorDetachesEverywhere)
{
  Log log;
  Subject one, two;
  {
    Observer a(log, "a");
    one.attach(&a);
    two.attach(&a);
  }
  {
    ccNotifyObservers const first(&one);
    ccNotifyObservers const second(&two);
  }
  EXPECT_TRUE(log.empty());
}
