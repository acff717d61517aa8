// Streaming archives with one symmetric operator: `ar || value` reads or writes, in the archive's own direction. All bytes
// are little-endian without padding. The operand is a non-const lvalue; expressions chain from left to right. What is read
// is checked against limits before memory is taken. A value whose reading fails stays as it was. After an exception the
// stream is out of step: use the archive no more.
// One thread at a time per archive.
//
// A `long` moves 32 bits everywhere. std::int64_t, std::size_t and std::uintptr_t are `long` kinds on one system and
// `long long` kinds on another: never archive them, move a `long long`.
#pragma once

#include "foundation/exception.h"
#include "foundation/fwd.h"
#include "foundation/pair.h"
#include "foundation/vector.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <string>
#include <type_traits>
#include <typeindex>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

class ccArchive {
public:
  class UnknownVersion : public ccExceptionWithString {  // the text is the type's name
    KRS_EXCEPTION
  public:
    using ccExceptionWithString::ccExceptionWithString;
  };
  class UnknownClass : public ccExceptionWithString {  // a name that is not registered, or of the wrong type
    KRS_EXCEPTION
  public:
    using ccExceptionWithString::ccExceptionWithString;
  };
  class EndOfData : public ccException {  // a memory archive is exhausted
    KRS_EXCEPTION
  };
  class BadValue : public ccExceptionWithString {  // a value outside its domain
    KRS_EXCEPTION
  public:
    using ccExceptionWithString::ccExceptionWithString;
  };
  class TooLarge : public ccExceptionWithString {  // a limit is passed
    KRS_EXCEPTION
  public:
    using ccExceptionWithString::ccExceptionWithString;
  };

  static constexpr std::uint32_t maxStringBytes = 65535;
  static constexpr std::uint32_t maxClassNameBytes = 255;
  static constexpr std::uint32_t maxElements = 1048576;
  static constexpr std::uint32_t maxVectorBytes = 16u << 20;
  static constexpr std::uint32_t maxPelSide = 16384;
  static constexpr std::uint32_t maxPelBytes = 64u << 20;
  static constexpr std::uint32_t maxObjects = 65536;
  static constexpr int maxNesting = 64;
  static constexpr std::size_t growthBytes = 65536;  // containers grow by at most so much before the data is there

  ccArchive() = default;
  ccArchive(ccArchive const&) = delete;
  ccArchive& operator=(ccArchive const&) = delete;
  virtual ~ccArchive();

  virtual bool isLoading() const = 0;
  bool isStoring() const { return !isLoading(); }

  void bytes(void*, std::size_t);  // as they are, in the archive's direction
  // Before memory is taken for so many bytes: throws EndOfData where it is known that they cannot come.
  void expect(unsigned long long n)
  {
    if (isLoading() && !canRead_(n))
      throw EndOfData();
  }
  // A length word: the one to write, or the one read. Above the limit it throws TooLarge, both ways.
  std::uint32_t count(std::uint32_t n, std::uint32_t limit);

  // Keeps a shared virtual base from being moved twice: each class level of an object is moved once. False opens a level that
  // setVisited closes; when none is open any more, everything is forgotten. A level that was opened closes without memory, so
  // that what was read stays read.
  bool haveVisited(ccPersistent const*, std::type_info const&);
  void setVisited(ccPersistent const*, std::type_info const&);

  // A polymorphic object, null allowed. One that was moved before is moved as a reference to it, so objects must live as
  // long as the archive that writes them. On reading the caller owns each object that it did not get before.
  void object(ccPersistent*& object) { object_(object, nullptr); }
  template <class T>
    requires(std::is_base_of_v<ccPersistent, T> && !std::is_same_v<ccPersistent, T>)
  void object(T*& object)
  {
    ccPersistent* base = object;
    object_(base, [](ccPersistent* o) { return dynamic_cast<T*>(o) != nullptr; });
    if (isLoading())
      object = dynamic_cast<T*>(base);
  }

protected:
  virtual void write_(void const*, std::size_t) = 0;
  virtual void read_(void*, std::size_t) = 0;
  virtual bool canRead_(unsigned long long) const { return true; }  // false: so many bytes are not there

private:
  using Accepts = bool (*)(ccPersistent*);
  void object_(ccPersistent*&, Accepts);
  void storeObject_(ccPersistent*);
  ccPersistent* loadObject_(Accepts);
  void body_(ccPersistent*);

  struct cs_Level {
    std::type_index type;
    bool isOpen;
  };
  std::map<void const*, std::vector<cs_Level>> visited_;  // the class levels of each complete object
  int levels_ = 0;
  int nesting_ = 0;
  std::unordered_map<void const*, std::uint32_t> stored_;  // complete object to order of first appearance
  std::vector<ccPersistent*> loaded_;
};

// An archive in memory.
class ccMemoryArchive : public ccArchive {
public:
  ccMemoryArchive() = default;                                                      // for writing
  explicit ccMemoryArchive(std::vector<unsigned char> data) : loading_(true), data_(std::move(data)) {}  // for reading

  bool isLoading() const override { return loading_; }
  std::vector<unsigned char> const& data() const { return data_; }
  std::size_t remaining() const { return data_.size() - position_; }  // bytes not read yet

protected:
  void write_(void const*, std::size_t) override;
  void read_(void*, std::size_t) override;  // throws EndOfData and reads nothing when fewer bytes are left
  bool canRead_(unsigned long long n) const override { return n <= remaining(); }

private:
  bool loading_ = false;
  std::vector<unsigned char> data_;
  std::size_t position_ = 0;
};

// One byte. A bool is 0 or 1; every other byte reads as true.
ccArchive& operator||(ccArchive&, bool&);
ccArchive& operator||(ccArchive&, char&);
ccArchive& operator||(ccArchive&, signed char&);
ccArchive& operator||(ccArchive&, unsigned char&);
// Two bytes. A wide character above 0xFFFF throws BadValue on writing.
ccArchive& operator||(ccArchive&, short&);
ccArchive& operator||(ccArchive&, unsigned short&);
ccArchive& operator||(ccArchive&, wchar_t&);
// Four bytes. A long kind beyond 32 bits throws BadValue on writing.
ccArchive& operator||(ccArchive&, int&);
ccArchive& operator||(ccArchive&, unsigned int&);
ccArchive& operator||(ccArchive&, long&);
ccArchive& operator||(ccArchive&, unsigned long&);
ccArchive& operator||(ccArchive&, float&);
// Eight bytes.
ccArchive& operator||(ccArchive&, long long&);
ccArchive& operator||(ccArchive&, unsigned long long&);
ccArchive& operator||(ccArchive&, double&);

// A length and UTF-8 bytes.
ccArchive& operator||(ccArchive&, std::string&);

// x, then y.
ccArchive& operator||(ccArchive&, ccVector<2>&);

// A version word of 0, a byte that tells whether the buffer is bound, and if so width, height, offset and the rows of the
// window from the top. The transform is not moved: what is read has the identity and a root of its own.
template <class T> ccArchive& operator||(ccArchive&, ccPelBuffer<T>&);
template <class T> ccArchive& operator||(ccArchive&, ccPelBuffer_const<T>&);

// Every enumeration takes four bytes.
template <class E>
  requires std::is_enum_v<E>
ccArchive& operator||(ccArchive& ar, E& value)
{
  using Number = std::underlying_type_t<E>;
  static_assert(sizeof(Number) <= 4, "an archived enumeration has at most 32 bits");
  std::uint32_t word = static_cast<std::uint32_t>(static_cast<Number>(value));
  ar || word;
  if (ar.isLoading()) {
    auto const number = static_cast<Number>(word);
    if (static_cast<std::uint32_t>(number) != word)
      throw ccArchive::BadValue("enumeration");
    value = static_cast<E>(number);
  }
  return ar;
}

template <class T> ccArchive& operator||(ccArchive& ar, ccPair<T>& p)
{
  ccPair<T> moved(p);
  ar || moved.x() || moved.y();
  if (ar.isLoading())
    p = moved;
  return ar;
}

// A count and the elements.
template <class T> ccArchive& operator||(ccArchive& ar, std::vector<T>& list)
{
  constexpr std::uint32_t limit = ccArchive::maxVectorBytes / sizeof(T) < ccArchive::maxElements
                                      ? static_cast<std::uint32_t>(ccArchive::maxVectorBytes / sizeof(T))
                                      : ccArchive::maxElements;
  constexpr std::size_t step = sizeof(T) < ccArchive::growthBytes ? ccArchive::growthBytes / sizeof(T) : 1;
  auto const n = ar.count(static_cast<std::uint32_t>(std::min<std::size_t>(list.size(), 0xFFFFFFFFu)), limit);
  if (ar.isStoring()) {
    for (auto&& element : list) {
      if constexpr (std::is_same_v<T, bool>) {
        bool flag = element;
        ar || flag;
      } else {
        ar || element;
      }
    }
    return ar;
  }
  // In pieces, so that a count alone takes no memory that its elements don't fill.
  std::vector<std::vector<T>> pieces;
  for (std::size_t done = 0; done < n; done += pieces.back().size()) {
    pieces.emplace_back();
    pieces.back().reserve(std::min<std::size_t>(step, n - done));
    while (pieces.back().size() < std::min<std::size_t>(step, n - done)) {
      T element{};
      ar || element;
      pieces.back().push_back(std::move(element));
    }
  }
  std::vector<T> all;
  all.reserve(n);
  for (auto& piece : pieces)
    std::move(piece.begin(), piece.end(), std::back_inserter(all));
  list = std::move(all);
  return ar;
}
