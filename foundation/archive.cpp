#include "foundation/archive.h"

#include "foundation/exception_impl.h"
#include "foundation/handle.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>

KRS_DEFINE_EXCEPTION(ccArchive::UnknownVersion, ccExceptionWithString)
KRS_DEFINE_EXCEPTION(ccArchive::UnknownClass, ccExceptionWithString)
KRS_DEFINE_EXCEPTION(ccArchive::EndOfData, ccException)
KRS_DEFINE_EXCEPTION(ccArchive::BadValue, ccExceptionWithString)
KRS_DEFINE_EXCEPTION(ccArchive::TooLarge, ccExceptionWithString)

namespace {

constexpr unsigned char nullTag = 0;
constexpr unsigned char newTag = 1;
constexpr unsigned char earlierTag = 2;

void const* cf_complete(ccPersistent const* object) { return dynamic_cast<void const*>(object); }

void cf_string(ccArchive& ar, std::string& text, std::uint32_t limit)
{
  auto const n = ar.count(static_cast<std::uint32_t>(std::min<std::size_t>(text.size(), 0xFFFFFFFFu)), limit);
  if (ar.isStoring()) {
    ar.bytes(text.data(), n);
    return;
  }
  ar.expect(n);
  std::string read(n, '\0');
  ar.bytes(read.data(), n);
  text = std::move(read);
}

// Deletes an object whose reading failed, unless a handle already holds it.
void cf_discard(ccPersistent* object)
{
  auto const* const counted = dynamic_cast<ccRepBase*>(object);
  if (!counted || counted->refCount() == 0)
    delete object;
}

// An unsigned word in little-endian order.
template <class Word> ccArchive& cf_word(ccArchive& ar, Word& value)
{
  unsigned char raw[sizeof(Word)];
  if (ar.isStoring()) {
    for (std::size_t i = 0; i < sizeof(Word); ++i)
      raw[i] = static_cast<unsigned char>(value >> (8 * i));
    ar.bytes(raw, sizeof(Word));
    return ar;
  }
  ar.bytes(raw, sizeof(Word));
  Word read = 0;
  for (std::size_t i = 0; i < sizeof(Word); ++i)
    read = static_cast<Word>(read | static_cast<Word>(static_cast<Word>(raw[i]) << (8 * i)));
  value = read;
  return ar;
}

// A number of the same size as the word.
template <class Word, class Number> ccArchive& cf_as(ccArchive& ar, Number& value)
{
  static_assert(sizeof(Word) == sizeof(Number));
  Word word = std::bit_cast<Word>(value);
  cf_word(ar, word);
  if (ar.isLoading())
    value = std::bit_cast<Number>(word);
  return ar;
}

}  // namespace

ccArchive::~ccArchive() = default;

void ccArchive::bytes(void* data, std::size_t n)
{
  if (n == 0)
    return;
  if (isLoading())
    read_(data, n);
  else
    write_(data, n);
}

std::uint32_t ccArchive::count(std::uint32_t n, std::uint32_t limit)
{
  if (isStoring() && n > limit)
    throw TooLarge("count");
  *this || n;
  if (n > limit)
    throw TooLarge("count");
  return n;
}

bool ccArchive::haveVisited(ccPersistent const* object, std::type_info const& type)
{
  std::vector<cs_Level>& levels = visited_[cf_complete(object)];
  for (cs_Level const& level : levels)
    if (level.type == type && !level.isOpen)
      return true;
  levels.push_back({type, true});
  ++levels_;
  return false;
}

void ccArchive::setVisited(ccPersistent const* object, std::type_info const& type)
{
  auto const marks = visited_.find(cf_complete(object));
  if (marks != visited_.end())
    for (auto level = marks->second.rbegin(); level != marks->second.rend(); ++level)
      if (level->type == type && level->isOpen) {
        level->isOpen = false;
        break;
      }
  if (levels_ > 0 && --levels_ == 0)
    visited_.clear();
}

void ccArchive::object_(ccPersistent*& object, Accepts accepts)
{
  if (isStoring())
    storeObject_(object);
  else
    object = loadObject_(accepts);
}

void ccArchive::storeObject_(ccPersistent* object)
{
  unsigned char tag = nullTag;
  if (!object) {
    *this || tag;
    return;
  }
  void const* const key = cf_complete(object);
  auto const earlier = stored_.find(key);
  if (earlier != stored_.end()) {
    tag = earlierTag;
    std::uint32_t index = earlier->second;
    *this || tag || index;
    return;
  }
  if (stored_.size() >= maxObjects)
    throw TooLarge("number of objects");
  tag = newTag;
  *this || tag;
  std::string name = object->className();
  cf_string(*this, name, maxClassNameBytes);
  stored_.emplace(key, static_cast<std::uint32_t>(stored_.size()));
  body_(object);
}

ccPersistent* ccArchive::loadObject_(Accepts accepts)
{
  unsigned char tag = nullTag;
  *this || tag;
  if (tag == nullTag)
    return nullptr;
  if (tag == earlierTag) {
    std::uint32_t index = 0;
    *this || index;
    if (index >= loaded_.size() || !loaded_[index])
      throw BadValue("object index");
    if (accepts && !accepts(loaded_[index]))
      throw UnknownClass(loaded_[index]->className());
    return loaded_[index];
  }
  if (tag != newTag)
    throw BadValue("object tag");
  if (loaded_.size() >= maxObjects)
    throw TooLarge("number of objects");
  std::string name;
  cf_string(*this, name, maxClassNameBytes);
  std::unique_ptr<ccPersistent, void (*)(ccPersistent*)> made(cc_Instantiator::make(name), &cf_discard);
  if (!made || (accepts && !accepts(made.get())))
    throw UnknownClass(name);
  std::size_t const index = loaded_.size();
  loaded_.push_back(made.get());
  try {
    body_(made.get());
  } catch (...) {
    loaded_[index] = nullptr;
    throw;
  }
  return made.release();
}

// An object that is new to the archive is moved whole, even if another one stood at its address before.
void ccArchive::body_(ccPersistent* object)
{
  if (nesting_ >= maxNesting)
    throw TooLarge("nesting of objects");
  visited_.erase(cf_complete(object));

  int const levels = levels_;
  ++nesting_;
  try {
    object->dispatchSerialize(*this);
  } catch (...) {
    --nesting_;
    levels_ = levels;
    visited_.erase(cf_complete(object));
    if (levels_ == 0)
      visited_.clear();
    throw;
  }
  --nesting_;
}

void ccMemoryArchive::write_(void const* data, std::size_t n)
{
  auto const* const from = static_cast<unsigned char const*>(data);
  data_.insert(data_.end(), from, from + n);
}

void ccMemoryArchive::read_(void* data, std::size_t n)
{
  if (n > remaining())
    throw EndOfData();
  std::memcpy(data, data_.data() + position_, n);
  position_ += n;
}

ccArchive& operator||(ccArchive& ar, bool& value)
{
  unsigned char raw = value ? 1 : 0;
  ar.bytes(&raw, 1);
  if (ar.isLoading())
    value = raw != 0;
  return ar;
}

ccArchive& operator||(ccArchive& ar, char& value) { return ar.bytes(&value, 1), ar; }
ccArchive& operator||(ccArchive& ar, signed char& value) { return ar.bytes(&value, 1), ar; }
ccArchive& operator||(ccArchive& ar, unsigned char& value) { return ar.bytes(&value, 1), ar; }

ccArchive& operator||(ccArchive& ar, short& value) { return cf_as<std::uint16_t>(ar, value); }
ccArchive& operator||(ccArchive& ar, unsigned short& value) { return cf_as<std::uint16_t>(ar, value); }

ccArchive& operator||(ccArchive& ar, wchar_t& value)
{
  auto const code = static_cast<unsigned long>(value);
  if (ar.isStoring() && code > 0xFFFF)
    throw ccArchive::BadValue("wide character beyond 16 bits");
  auto word = static_cast<std::uint16_t>(code & 0xFFFF);
  cf_word(ar, word);
  if (ar.isLoading())
    value = static_cast<wchar_t>(word);
  return ar;
}

ccArchive& operator||(ccArchive& ar, int& value) { return cf_as<std::uint32_t>(ar, value); }
ccArchive& operator||(ccArchive& ar, unsigned int& value) { return cf_as<std::uint32_t>(ar, value); }

ccArchive& operator||(ccArchive& ar, long& value)
{
  auto number = static_cast<std::int32_t>(value);
  if (ar.isStoring() && number != value)
    throw ccArchive::BadValue("long beyond 32 bits");
  cf_as<std::uint32_t>(ar, number);
  if (ar.isLoading())
    value = number;
  return ar;
}

ccArchive& operator||(ccArchive& ar, unsigned long& value)
{
  auto number = static_cast<std::uint32_t>(value);
  if (ar.isStoring() && number != value)
    throw ccArchive::BadValue("unsigned long beyond 32 bits");
  cf_word(ar, number);
  if (ar.isLoading())
    value = number;
  return ar;
}

ccArchive& operator||(ccArchive& ar, float& value) { return cf_as<std::uint32_t>(ar, value); }
ccArchive& operator||(ccArchive& ar, long long& value) { return cf_as<std::uint64_t>(ar, value); }
ccArchive& operator||(ccArchive& ar, unsigned long long& value) { return cf_as<std::uint64_t>(ar, value); }
ccArchive& operator||(ccArchive& ar, double& value) { return cf_as<std::uint64_t>(ar, value); }

ccArchive& operator||(ccArchive& ar, std::string& value)
{
  cf_string(ar, value, ccArchive::maxStringBytes);
  return ar;
}

ccArchive& operator||(ccArchive& ar, ccVector<2>& v)
{
  ccVector<2> moved(v);
  ar || moved.x() || moved.y();
  if (ar.isLoading())
    v = moved;
  return ar;
}
