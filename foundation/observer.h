// Subjects and observers. A guard of ccNotifyObservers around each change tells the observers once the change is complete.
// No locks: callers serialise.
#pragma once

#include <memory>
#include <vector>

class ccSubject;
class cc_SubjectState;

class ccObserver {
public:
  ccObserver() = default;
  ccObserver(ccObserver const&) = delete;
  ccObserver& operator=(ccObserver const&) = delete;
  virtual ~ccObserver();  // detaches everywhere

  virtual void subjectChanged(ccSubject*, void* argument) = 0;
  // Comes once. The subject is only an address by then; the observer is detached already and may delete itself.
  virtual void subjectGone(ccSubject*) = 0;

private:
  friend class cc_SubjectState;
  std::vector<std::shared_ptr<cc_SubjectState>> subjects_;
};

class ccSubject {
public:
  ccSubject();
  ccSubject(ccSubject const&) = delete;
  ccSubject& operator=(ccSubject const&) = delete;
  virtual ~ccSubject();

  // Null, a second attachment and an unknown observer are ignored.
  void attach(ccObserver*);
  void detach(ccObserver*);

protected:
  void announceEnd();  // call it first in the destructor of a concrete subject

private:
  friend class ccNotifyObservers;
  std::shared_ptr<cc_SubjectState> state_;
};

// Guards on one subject nest; only the outermost tells, once, when it dies, with its own argument, in the order of
// attaching. Observers that leave during the round are skipped, those that join wait for the next. Exceptions of observers
// are swallowed. A subject that dies under its guard voids it.
class ccNotifyObservers {
public:
  explicit ccNotifyObservers(ccSubject*, void* argument = nullptr);
  ccNotifyObservers(ccNotifyObservers const&) = delete;
  ccNotifyObservers& operator=(ccNotifyObservers const&) = delete;
  ~ccNotifyObservers();

private:
  std::shared_ptr<cc_SubjectState> state_;
  void* argument_;
};
