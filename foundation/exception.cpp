#include "foundation/exception.h"

#include "foundation/archive.h"
#include "foundation/exception_impl.h"
#include "foundation/handle.h"

KRS_DEFINE_EXCEPTION(ccBadPointer, ccException, 0x10000101)

void cf_throwBadPointer() { throw ccBadPointer(); }

std::string ccException::message() const
{
  try {
    std::string text;
    message_(text);
    return text;
  } catch (...) {
    return std::string();
  }
}

void ccException::message_(std::string&) const {}

void ccExceptionWithString::message_(std::string& out) const { out += text_; }

void cf_serializeLevel(ccArchive&, unsigned char version, char const* name)
{
  if (version != 0)
    throw ccArchive::UnknownVersion(name);
}

KRS_DEFINE_EXCEPTION_FAMILY(ccException, ccPersistent)

void ccExceptionWithString::serialize_(ccArchive& ar, unsigned char version)
{
  cf_serializeLevel(ar, version, "ccExceptionWithString");
  ar || text_;
}

KRS_DEFINE_DISPATCH_(ccExceptionWithString, ccException)
