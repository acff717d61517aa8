#include "foundation/math_error.h"

#include "foundation/exception_impl.h"

KRS_DEFINE_EXCEPTION(ccMathError::Singular, ccExceptionWithString, 0x10000130)
KRS_DEFINE_EXCEPTION(ccShapesError::DegenerateShape, ccExceptionWithString, 0x10000140)
KRS_DEFINE_EXCEPTION(ccShapesError::BadGeom, ccExceptionWithString, 0x10000141)
KRS_DEFINE_EXCEPTION(ccShapesError::BadParams, ccExceptionWithString, 0x10000142)
