// What pel roots and pel operations throw.
#pragma once

#include "foundation/exception.h"

class ccPelError {
public:
  // A side below 1, or 2^31 bytes and more.
  class BadSize : public ccExceptionWithString {
    KRS_EXCEPTION
  public:
    using ccExceptionWithString::ccExceptionWithString;
  };
  // A look-up table that is too short.
  class BadTable : public ccExceptionWithString {
    KRS_EXCEPTION
  public:
    using ccExceptionWithString::ccExceptionWithString;
  };
};
