#include "foundation/math_error.h"

#include "foundation/exception_impl.h"

KRS_DEFINE_EXCEPTION(ccMathError::Singular, ccExceptionWithString)
KRS_DEFINE_EXCEPTION(ccShapesError::DegenerateShape, ccExceptionWithString)
KRS_DEFINE_EXCEPTION(ccShapesError::BadGeom, ccExceptionWithString)
KRS_DEFINE_EXCEPTION(ccShapesError::BadParams, ccExceptionWithString)
