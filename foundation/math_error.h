// What the arithmetic of maps and shapes throws.
#pragma once

#include "foundation/exception.h"

class ccMathError {
public:
  // The inverse of a singular map, or the direction of a zero vector.
  class Singular : public ccExceptionWithString {
    KRS_EXCEPTION
  public:
    using ccExceptionWithString::ccExceptionWithString;
  };
};

class ccShapesError {
public:
  class DegenerateShape : public ccExceptionWithString {
    KRS_EXCEPTION
  public:
    using ccExceptionWithString::ccExceptionWithString;
  };
  class BadGeom : public ccExceptionWithString {
    KRS_EXCEPTION
  public:
    using ccExceptionWithString::ccExceptionWithString;
  };
  class BadParams : public ccExceptionWithString {
    KRS_EXCEPTION
  public:
    using ccExceptionWithString::ccExceptionWithString;
  };
};
