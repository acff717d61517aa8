// The order of all locks of the library. A thread that holds a lock takes only locks that stand further down in this
// list; what it holds already it may take again where the lock is recursive. Nothing is held while another thread is
// waited for, which is why those waits stand first. Checked builds (KRS_CHECK_LOCKS) hold every thread to it.
#pragma once

#include <cstdint>

enum class cc_LockRank : std::uint8_t {
  none,  // a lock of an application: not ordered by this list, but it may not close a circle either

  // Waits for other threads.
  threadEnd,     // the end of a thread, or something that another thread has to give: a semaphore, an event
  windowThread,  // the thread of all windows, which holds this while it runs procedures and closures

  // Mutexes under which hooks and callbacks run.
  displayList,  // ccWin32Display::listMutex
  root,         // of each tree; two meet only where a node changes its tree, the former one first
  orphans,      // of all nodes without a tree; given up while a hook of such a node waits for a root's
  ui,           // the registry of nodes and roots

  // Leaves. Nothing of an application runs under them.
  section,       // ccCriticalSection: short sections of one module
  displayLinks,  // which displays stand on a window
  retired,       // mutexes of roots that have gone, until nobody holds them
  conversions,   // of one acquired image
  windowStart,   // the choice of the screen at first use
  menus,
  backing,       // the pels of one top-level window; whoever paints may look at the table, nobody paints under it
  windowTable,   // all windows, queues and timers
  x11Errors,     // of which windows errors are passed over
  objects,       // fonts and palettes by handle
  device,        // what surfaces share
  glyphs,        // FreeType, which is not for several threads at once
  dictionaries,  // message strings
  persistent,    // classes by name
  sink,          // where debug text goes; its function runs under it
  painters,      // which painter has which number
  wake,          // what ends the wait of a window loop, or of the sender of a call
  resource,      // the inside of one mutex, semaphore or event
  threads,       // all threads that are known
  threadRecord,  // one of them
  count
};

char const* cf_nameOf(cc_LockRank);
