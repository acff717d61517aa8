#include "foundation/observer.h"

#include <algorithm>
#include <cstdint>

// What guards and observers know of a subject. It outlives the subject, which is null by then.
class cc_SubjectState : public std::enable_shared_from_this<cc_SubjectState> {
public:
  explicit cc_SubjectState(ccSubject* subject) : subject_(subject) {}

  void attach(ccObserver* observer)
  {
    if (!observer || !subject_ || place_(observer) != attachments_.end())
      return;
    if (attachments_.size() == attachments_.capacity())
      attachments_.reserve(2 * attachments_.size() + 1);
    observer->subjects_.push_back(shared_from_this());
    attachments_.push_back({observer, ++last_});
  }

  void detach(ccObserver* observer)
  {
    auto const place = place_(observer);
    if (place == attachments_.end())
      return;
    attachments_.erase(place);
    std::erase(observer->subjects_, shared_from_this());
  }

  void enter() { ++guards_; }

  void leave(void* argument)
  {
    if (--guards_ > 0)
      return;
    // Observers come and go inside the calls, even at the same address, so an attachment goes by its number. Numbers rise
    // along the list. A destructor is at work, which must not need memory for a copy.
    std::uint64_t const round = last_;
    for (std::uint64_t told = 0; told < round;) {
      auto const next = std::upper_bound(attachments_.begin(), attachments_.end(), told,
                                         [](std::uint64_t n, cs_Attachment const& one) { return n < one.number; });
      if (next == attachments_.end() || next->number > round)
        return;
      told = next->number;
      try {
        next->observer->subjectChanged(subject_, argument);
      } catch (...) {
        // The guard dies in the midst of another operation, which an observer must not undo.
      }
    }
  }

  void end()
  {
    ccSubject* const gone = subject_;
    subject_ = nullptr;
    while (!attachments_.empty()) {
      ccObserver* const observer = attachments_.front().observer;
      detach(observer);
      try {
        observer->subjectGone(gone);
      } catch (...) {
        // A destructor is at work.
      }
    }
  }

private:
  struct cs_Attachment {
    ccObserver* observer;
    std::uint64_t number;
  };
  std::vector<cs_Attachment>::iterator place_(ccObserver const* observer)
  {
    return std::find_if(attachments_.begin(), attachments_.end(),
                        [observer](cs_Attachment const& one) { return one.observer == observer; });
  }

  ccSubject* subject_;
  std::vector<cs_Attachment> attachments_;  // in order of attaching
  std::uint64_t last_ = 0;
  int guards_ = 0;
};

ccObserver::~ccObserver()
{
  while (!subjects_.empty()) {
    auto const subject = subjects_.back();
    subject->detach(this);
  }
}

ccSubject::ccSubject() : state_(std::make_shared<cc_SubjectState>(this)) {}
ccSubject::~ccSubject() { announceEnd(); }
void ccSubject::attach(ccObserver* observer) { state_->attach(observer); }
void ccSubject::detach(ccObserver* observer) { state_->detach(observer); }
void ccSubject::announceEnd() { state_->end(); }

ccNotifyObservers::ccNotifyObservers(ccSubject* subject, void* argument)
    : state_(subject ? subject->state_ : nullptr), argument_(argument)
{
  if (state_)
    state_->enter();
}

ccNotifyObservers::~ccNotifyObservers()
{
  if (state_)
    state_->leave(argument_);
}
