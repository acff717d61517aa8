// Defines what KRS_EXCEPTION and KRS_EXCEPTION_FAMILY declare. For source files only.
#pragma once

#include "foundation/archive.h"
#include "foundation/exception.h"
#include "foundation/exception_numbers.h"

#include <memory>

// What every level does directly after its version byte: any version but 0 throws ccArchive::UnknownVersion(name).
void cf_serializeLevel(ccArchive&, unsigned char version, char const* name);

#define KRS_DEFINE_DISPATCH_(Class, Base)                                                                              \
  void Class::dispatchSerialize(ccArchive& ar)                                                                         \
  {                                                                                                                    \
    if (ar.haveVisited(this, typeid(Class)))                                                                           \
      return;                                                                                                          \
    unsigned char version = 0;                                                                                         \
    ar || version;                                                                                                     \
    serialize_(ar, version);                                                                                           \
    Base::dispatchSerialize(ar);                                                                                       \
    ar.setVisited(this, typeid(Class));                                                                                \
  }

#define KRS_DEFINE_SERIALIZE_(Class, Base, name)                                                                       \
  void Class::serialize_(ccArchive& ar, unsigned char version) { cf_serializeLevel(ar, version, name); }               \
  KRS_DEFINE_DISPATCH_(Class, Base)

#define KRS_DEFINE_EXCEPTION_FAMILY(Class, Base) KRS_DEFINE_SERIALIZE_(Class, Base, #Class)

// The class has a row in exception_numbers.h.
#define KRS_DEFINE_EXCEPTION(Class, Base)                                                                              \
  KRS_DEFINE_NUMBERED_EXCEPTION_(Class, Base, cf_exceptionNumber(#Class))

#define KRS_DEFINE_NUMBERED_EXCEPTION_(Class, Base, number)                                                            \
  cc_Instantiator Class::sExemplar(#Class, &Class::make);                                                              \
  ccPersistent* Class::make() { return new Class(); }                                                                  \
  char const* Class::className() const { return #Class; }                                                              \
  long Class::errorNumber() const                                                                                      \
  {                                                                                                                    \
    constexpr long constant = number;                                                                                  \
    return constant;                                                                                                   \
  }                                                                                                                    \
  void Class::suicideAndRethrow()                                                                                      \
  {                                                                                                                    \
    std::unique_ptr<Class> const self(this); /* also when there is no memory for the copy */                           \
    throw Class(*this);                                                                                                \
  }                                                                                                                    \
  KRS_DEFINE_SERIALIZE_(Class, Base, #Class)
