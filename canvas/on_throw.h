// Runs what must be made good when an exception passes; nothing otherwise. The body must not throw.
#pragma once

#include <exception>
#include <utility>

template <class Body> class cc_OnThrow {
public:
  explicit cc_OnThrow(Body body) : body_(std::move(body)) {}
  ~cc_OnThrow()
  {
    if (std::uncaught_exceptions() > before_)
      body_();
  }
  cc_OnThrow(cc_OnThrow const&) = delete;
  cc_OnThrow& operator=(cc_OnThrow const&) = delete;

private:
  Body body_;
  int before_ = std::uncaught_exceptions();
};

// Runs its body at the end of a scope, however it ends. The body must not throw.
template <class Body> class cc_AtEnd {
public:
  explicit cc_AtEnd(Body body) : body_(std::move(body)) {}
  ~cc_AtEnd() { body_(); }
  cc_AtEnd(cc_AtEnd const&) = delete;
  cc_AtEnd& operator=(cc_AtEnd const&) = delete;

private:
  Body body_;
};
