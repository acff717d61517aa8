#include "foundation/handle.h"

void ccRepBase::dropReference_() const
{
  if (count_.fetch_sub(1, std::memory_order_acq_rel) == 1)
    const_cast<ccRepBase*>(this)->destroy_();
}

void ccRepBase::destroy_() { delete this; }
