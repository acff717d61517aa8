#include "canvas/ui_error.h"

#include "foundation/exception_impl.h"

KRS_DEFINE_EXCEPTION_FAMILY(ccUIError::Errors, ccException)
KRS_DEFINE_EXCEPTION(ccUIError::BadKeyValue, ccUIError::Errors, 0x10002B20)
KRS_DEFINE_EXCEPTION(ccUIError::BadParams, ccUIError::Errors, 0x10002B21)
KRS_DEFINE_EXCEPTION(ccUIError::InitFailed, ccUIError::Errors, 0x10002B22)
KRS_DEFINE_EXCEPTION(ccUIError::InvalidColorMapSize, ccUIError::Errors, 0x10002B23)
KRS_DEFINE_EXCEPTION(ccUIError::NotAvailable, ccUIError::Errors, 0x10002B24)
KRS_DEFINE_EXCEPTION(ccUIError::NotEnabled, ccUIError::Errors, 0x10002B25)
KRS_DEFINE_EXCEPTION(ccUIError::NotImplemented, ccUIError::Errors, 0x10002B26)
