// What the tree, the display and the canvas report.
#pragma once

#include "foundation/exception.h"

class ccUIError {
public:
  class Errors : public ccException {
    KRS_EXCEPTION_FAMILY
  };
  class BadKeyValue : public Errors {
    KRS_EXCEPTION
  };
  class BadParams : public Errors {
    KRS_EXCEPTION
  };
  class InitFailed : public Errors {
    KRS_EXCEPTION
  };
  class InvalidColorMapSize : public Errors {
    KRS_EXCEPTION
  };
  class NotAvailable : public Errors {
    KRS_EXCEPTION
  };
  class NotEnabled : public Errors {
    KRS_EXCEPTION
  };
  class NotImplemented : public Errors {
    KRS_EXCEPTION
  };
};
