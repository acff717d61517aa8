#include "ui/core/keyboard_event.h"

#include "foundation/archive.h"

void ccKeyboardEvent::key(char c)
{
  keyType_ = asciiKeyType;
  key_ = static_cast<std::uint16_t>((key_ & 0xFF00) | static_cast<unsigned char>(c));
}

void ccKeyboardEvent::key(VirtualKey k)
{
  keyType_ = virtualKeyType;
  key_ = static_cast<std::uint16_t>((key_ & 0xFF00) | (k & 0xFF));
}

void ccKeyboardEvent::key(wchar_t c)
{
  keyType_ = unicodeKeyType;
  key_ = static_cast<std::uint16_t>(c);
}

ccKeyboardEvent::VirtualKey ccKeyboardEvent::toVirtualKey(long code)
{
  static constexpr struct {
    long first, last;
  } ranges[] = {{vkBackspace, vkTab}, {vkShift, vkCapsLock}, {vkEscape, vkEscape}, {vkSpace, vkDown},
                {vkInsert, vkHelp},   {vkF1, vkF24},         {vk208, vk208}};
  for (auto const& range : ranges)
    if (code >= range.first && code <= range.last)
      return static_cast<VirtualKey>(code);
  return vkNone;
}

ccArchive& operator||(ccArchive& ar, ccKeyboardEvent& e)
{
  std::uint32_t version = 0;
  ar || version;
  if (version != 0)
    throw ccArchive::UnknownVersion("ccKeyboardEvent");
  ccKeyboardEvent moved(e);  // an event that ends half-way leaves the former one
  ar || moved.event_ || moved.keyType_ || moved.repeatKey_;
  switch (moved.keyType_) {
  case ccKeyboardEvent::asciiKeyType: {
    auto byte = static_cast<unsigned char>(moved.key_ & 0xFF);
    ar || byte;
    if (ar.isLoading())
      moved.key_ = byte;
    break;
  }
  case ccKeyboardEvent::unicodeKeyType:
    ar || moved.key_;
    break;
  case ccKeyboardEvent::virtualKeyType: {
    std::uint32_t word = moved.key_ & 0xFFu;
    ar || word;
    if (ar.isLoading())
      moved.key_ = static_cast<std::uint16_t>(word & 0xFF);
    break;
  }
  default:
    throw ccArchive::BadValue("ccKeyboardEvent");
  }
  if (ar.isLoading())
    e = moved;
  return ar;
}
