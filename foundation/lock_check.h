// The watch over lock_order.h. In checked builds every lock tells what it does; a lock that is wanted out of turn, or in a
// circle with what other threads have done before, is a fault: the handler gets a text with the present stack and the one
// of the opposite order. The usual handler prints it and aborts. Elsewhere all of this is nothing.
//
// What may be had at once or not at all (a poll, a wait with a time limit) cannot hang and is never at fault; once taken
// it counts like any other lock that is held.
#pragma once

#include "foundation/lock_order.h"

#include <cstdint>

namespace cc_LockCheck {

using Handler = void (*)(char const* text);
Handler handler(Handler);  // the former one; null is the usual one

#ifdef KRS_CHECK_LOCKS
constexpr bool on = true;
void wanted(void const* lock, cc_LockRank);  // before a wait that may last for ever
void taken(void const* lock, cc_LockRank);
void given(void const* lock, cc_LockRank);
void died(void const* lock);
// Another thread has to give something before the wait ends: what it holds while it gives belongs to the circle.
void waits(void const* what, cc_LockRank);
void gives(void const* what);
int held();                         // locks of the calling thread, the window's thread not counted
bool describeHeld(char* to, int room);  // their names; false if there are none
#else
constexpr bool on = false;
inline void wanted(void const*, cc_LockRank) {}
inline void taken(void const*, cc_LockRank) {}
inline void given(void const*, cc_LockRank) {}
inline void died(void const*) {}
inline void waits(void const*, cc_LockRank) {}
inline void gives(void const*) {}
inline int held() { return 0; }
inline bool describeHeld(char*, int) { return false; }
#endif

// Something that a thread holds without ever waiting for it.
class Hold {
public:
  Hold(void const* what, cc_LockRank rank) : what_(what), rank_(rank) { taken(what_, rank_); }
  Hold(Hold const&) = delete;
  Hold& operator=(Hold const&) = delete;
  ~Hold() { given(what_, rank_); }

private:
  void const* what_;
  cc_LockRank rank_;
};

}  // namespace cc_LockCheck
