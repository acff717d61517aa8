// Callbacks that are held by handle.
#pragma once

#include "foundation/handle.h"

class ccCallback : public virtual ccRepBase {
public:
  virtual void operator()() = 0;
};

template <class P> class ccCallback1 : public virtual ccRepBase {
public:
  virtual void operator()(P) = 0;
};
