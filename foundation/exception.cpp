#include "foundation/exception.h"

#include "foundation/archive.h"
#include "foundation/exception_impl.h"
#include "foundation/handle.h"

KRS_DEFINE_EXCEPTION(ccBadPointer, ccException)

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

// The bases follow the text, so that it goes back when they fail.
void ccExceptionWithString::dispatchSerialize(ccArchive& ar)
{
  if (ar.haveVisited(this, typeid(ccExceptionWithString)))
    return;
  std::string former = ar.isLoading() ? text_ : std::string();
  try {
    unsigned char version = 0;
    ar || version;
    serialize_(ar, version);
    ccException::dispatchSerialize(ar);
  } catch (...) {
    if (ar.isLoading())
      text_.swap(former);
    throw;
  }
  ar.setVisited(this, typeid(ccExceptionWithString));
}
