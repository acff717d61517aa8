#include "ui/shapes/handle_set.h"

#include "foundation/resource.h"
#include "ui/shapes/handle.h"

#include <algorithm>

cc_HandleSet::~cc_HandleSet()
{
  for (ccUIHandle* handle : handles_)
    if (handle)
      handle->set_ = nullptr;
}

ccUIHandle* cc_HandleSet::operator[](long i) const
{
  return i >= 0 && i < size() ? handles_[static_cast<std::size_t>(i)] : nullptr;
}

ccUIObject* cc_HandleSet::node_(long i) const { return (*this)[i]; }

void cc_HandleSet::resize_(long count)
{
  cc_NodeRef const shape(&shape_);
  while (shape.exists() && size() > count) {
    free_(handles_.size() - 1);
    if (shape.exists() && size() > count)
      handles_.pop_back();
  }
  if (shape.exists())
    handles_.resize(static_cast<std::size_t>(std::max(count, 0L)));
}

void cc_HandleSet::put_(long i, ccUIHandle* handle)
{
  handles_[static_cast<std::size_t>(i)] = handle;
  handle->set_ = this;
}

void cc_HandleSet::update()
{
  cc_NodeRef const shape(&shape_);
  for (long i = 0; shape.exists() && i < size(); ++i)
    if (ccUIHandle* const handle = (*this)[i])
      handle->update();
}

void cc_HandleSet::free_(std::size_t i)
{
  ccUIHandle* const handle = handles_[i];
  if (!handle)
    return;
  handles_[i] = nullptr;
  handle->set_ = nullptr;
  if (!handle->dying())
    delete handle;
}

void cc_HandleSet::free()
{
  cc_NodeRef const shape(&shape_);
  for (std::size_t i = 0; shape.exists() && i < handles_.size(); ++i)
    free_(i);
}

void cc_HandleSet::takeFrom(cc_HandleSet& other)
{
  cc_NodeRef const shape(&shape_);
  free();
  if (!shape.exists())
    return;
  handles_.clear();
  handles_.swap(other.handles_);
  for (ccUIHandle* handle : handles_)
    if (handle)
      handle->set_ = this;
}

void cc_HandleSet::forget_(ccUIHandle const* handle)
{
  std::replace(handles_.begin(), handles_.end(), const_cast<ccUIHandle*>(handle), static_cast<ccUIHandle*>(nullptr));
}

cc_HandledShape::~cc_HandledShape() { beginDestruction(); }

bool cc_HandledShape::isUnlocked_(long) const { return true; }

void cc_HandledShape::locks(unsigned long mask)
{
  ccLock lock(rootMutex());
  locks_ = mask;
  showHandles(wantsHandles());
}

void cc_HandledShape::setLocks(unsigned long mask)
{
  ccLock lock(rootMutex());
  locks(locks_ | mask);
}

void cc_HandledShape::clrLocks(unsigned long mask)
{
  ccLock lock(rootMutex());
  locks(locks_ & ~mask);
}

void cc_HandledShape::updateHandles()
{
  ccLock lock(rootMutex());
  set_.update();
}

void cc_HandledShape::showHandles(bool on)
{
  ccLock lock(rootMutex());
  cc_NodeRef const self(this);
  if (on) {
    set_.make(numHandles_(), [this](long i) { return makeHandle_(i); });
    if (self.exists())
      set_.update();
  }
  if (self.exists())
    set_.show([this, on](long i) { return on && isUnlocked_(i); });
}

void cc_HandledShape::freeHandles()
{
  ccLock lock(rootMutex());
  set_.free();
}
