// The handles of a shape: made, placed, shown and freed in one place for all families. A handle that dies by itself leaves its
// place empty, and is made anew when the shape is next shown selected. Everything runs under the shape's mutex; hooks may
// delete handles and the shape.
#pragma once

#include "ui/core/node_walk.h"
#include "ui/shapes/man_shape.h"

#include <vector>

class ccUIHandle;

class cc_HandleSet {
public:
  explicit cc_HandleSet(ccUIManShape& shape) : shape_(shape) {}
  cc_HandleSet(cc_HandleSet const&) = delete;
  cc_HandleSet& operator=(cc_HandleSet const&) = delete;
  ~cc_HandleSet();  // the handles stay kids of their shape

  long size() const { return static_cast<long>(handles_.size()); }
  ccUIHandle* operator[](long i) const;  // null for a place that is empty or does not exist

  // From now on so many places; those cut off are freed. Fills the empty ones in order with what make(i) has made with new.
  template <class Make> void make(long count, Make const& make)
  {
    resize_(count);
    for (long i = 0; i < count; ++i)
      if (!(*this)[i])
        put_(i, make(i));
  }
  void update();
  template <class Shown> void show(Shown const& shown)  // shown(i): whether handle i is to be seen
  {
    cc_NodeRef const shape(&shape_);
    for (long i = 0; shape.exists() && i < size(); ++i)
      if (ccUIObject* const handle = node_(i))
        handle->condVisible(shown(i));
  }
  void free();
  void takeFrom(cc_HandleSet& other);  // frees its own; the other, of the same shape, is left without places

private:
  friend class ccUIHandle;
  void resize_(long count);
  void put_(long i, ccUIHandle*);
  ccUIObject* node_(long i) const;
  void free_(std::size_t i);
  void forget_(ccUIHandle const*);

  ccUIManShape& shape_;
  std::vector<ccUIHandle*> handles_;
};

// A shape with a set of handles. Its class tells how many there are, how each is made, and which of them locks withhold.
class cc_HandledShape : public ccUIManShape {
public:
  explicit cc_HandledShape(ccUIObject* parent = nullptr) : ccUIManShape(parent) {}
  ~cc_HandledShape() override;

  void updateHandles() override;
  void showHandles(bool on) override;
  void freeHandles() override;

protected:
  virtual long numHandles_() const = 0;
  virtual ccUIHandle* makeHandle_(long index) = 0;  // with new; its constructor puts it below this shape
  virtual bool isUnlocked_(long index) const;       // all by default
  cc_HandleSet const& handles_() const { return set_; }

  // A set bit withdraws an ability. A family that has locks makes these public.
  unsigned long locks() const { return locks_; }
  void locks(unsigned long);
  void setLocks(unsigned long mask);
  void clrLocks(unsigned long mask);

private:
  cc_HandleSet set_{*this};
  unsigned long locks_ = 0;
};
