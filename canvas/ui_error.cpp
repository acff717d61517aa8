#include "canvas/ui_error.h"

#include "foundation/exception_impl.h"

KRS_DEFINE_EXCEPTION_FAMILY(ccUIError::Errors, ccException)
KRS_DEFINE_EXCEPTION(ccUIError::BadKeyValue, ccUIError::Errors)
KRS_DEFINE_EXCEPTION(ccUIError::BadParams, ccUIError::Errors)
KRS_DEFINE_EXCEPTION(ccUIError::InitFailed, ccUIError::Errors)
KRS_DEFINE_EXCEPTION(ccUIError::InvalidColorMapSize, ccUIError::Errors)
KRS_DEFINE_EXCEPTION(ccUIError::NotAvailable, ccUIError::Errors)
KRS_DEFINE_EXCEPTION(ccUIError::NotEnabled, ccUIError::Errors)
KRS_DEFINE_EXCEPTION(ccUIError::NotImplemented, ccUIError::Errors)
