// Help for calling hooks that may delete or move any node: references that know whether their node still stands, walks over
// nodes fixed before the first hook runs, and a screen lock that finds its tablet again.
#pragma once

#include "canvas/tablet.h"
#include "ui/core/object.h"

#include <algorithm>

// A node and the incarnation it had. Asking costs a comparison as long as no node has gone or changed its root at all.
class cc_NodeRef {
public:
  explicit cc_NodeRef(ccUIObject* node = nullptr);

  ccUIObject* node() const { return node_; }
  bool exists() const;  // it is still that node; false for null
  bool alive() const;   // and it still belongs to the same root

  static void nodeWent();  // called whenever a node dies or leaves its root

private:
  ccUIObject* node_;
  ccUIRootObject* root_ = nullptr;
  std::uint32_t key_ = 0;
  std::uint64_t when_ = 0;
};

// A list of nodes to be visited, kept on a stack of the thread that never shrinks, so that walks do not allocate. Nodes are
// added before the first visit.
class cc_NodeWalk {
public:
  cc_NodeWalk();
  cc_NodeWalk(cc_NodeWalk const&) = delete;
  cc_NodeWalk& operator=(cc_NodeWalk const&) = delete;
  ~cc_NodeWalk();

  void add(ccUIObject*);
  void addKidsBackToFront(ccUIObject&);
  void addKidsFrontToBack(ccUIObject&);
  // The kids of a frame whose rectangle holds a local pel, front to back. False, and none, while there are so few that
  // asking each is as quick.
  bool addKidsAt(ccUIFrame&, ccPair<long> const& local);
  void reverse();                                       // what has been added, before the first visit
  template <class Before> void sort(Before before);  // what has been added, before the first visit
  ccUIObject* next();  // the next one that still stands, null at the end

private:
  cc_NodeRef* begin_();

  std::size_t base_, at_, end_;
};

template <class Before> void cc_NodeWalk::sort(Before before)
{
  cc_NodeRef* const first = begin_();
  std::sort(first, first + (end_ - at_), [&](cc_NodeRef const& a, cc_NodeRef const& b) { return before(a.node(), b.node()); });
}

// Finds the tablet that a node draws on again after hooks have run.
class cc_TabletRef {
public:
  explicit cc_TabletRef(ccUITablet*);
  ccUITablet* get() const;  // null when it has gone
  ccUITablet* getOrTop() const;  // the top of its tree when it has gone, null when that has gone too

private:
  ccUITablet* tablet_;
  ccUITablet* top_ = nullptr;
  cc_NodeRef node_, topNode_;
};

// Holds screen updates of a tree back.
class cc_ScreenLock {
public:
  explicit cc_ScreenLock(ccUITablet*, ccUITablet::Layers = ccUITablet::bothLayers);
  cc_ScreenLock(cc_ScreenLock const&) = delete;
  cc_ScreenLock& operator=(cc_ScreenLock const&) = delete;
  ~cc_ScreenLock();

private:
  cc_TabletRef tablet_;
  ccUITablet::Layers layers_;
};
