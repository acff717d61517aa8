// Streaming archives with one symmetric operator: `ar || value` reads or writes, in the archive's own direction. All bytes
// are little-endian without padding. One thread at a time per archive.
#pragma once

#include "foundation/exception.h"

#include <cstdint>
#include <typeinfo>

class ccArchive {
public:
  class UnknownVersion : public ccExceptionWithString {  // the text is the type's name
    KRS_EXCEPTION
  public:
    using ccExceptionWithString::ccExceptionWithString;
  };

  ccArchive() = default;
  ccArchive(ccArchive const&) = delete;
  ccArchive& operator=(ccArchive const&) = delete;
  virtual ~ccArchive();

  virtual bool isLoading() const = 0;
  bool isStoring() const { return !isLoading(); }
  bool haveVisited(ccPersistent const*, std::type_info const&);
  void setVisited(ccPersistent const*, std::type_info const&);
};

ccArchive& operator||(ccArchive&, unsigned char&);
