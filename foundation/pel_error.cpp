#include "foundation/pel_error.h"

#include "foundation/exception_impl.h"

KRS_DEFINE_EXCEPTION(ccPelError::BadSize, ccExceptionWithString, 0x10000160)
KRS_DEFINE_EXCEPTION(ccPelError::BadTable, ccExceptionWithString, 0x10000161)
