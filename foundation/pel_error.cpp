#include "foundation/pel_error.h"

#include "foundation/exception_impl.h"

KRS_DEFINE_EXCEPTION(ccPelError::BadSize, ccExceptionWithString)
KRS_DEFINE_EXCEPTION(ccPelError::BadTable, ccExceptionWithString)
