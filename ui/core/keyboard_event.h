// A keyboard event: a key going down or up, or a character.
#pragma once

#include <cstdint>

class ccArchive;

class ccKeyboardEvent {
public:
  enum Event : std::int32_t { keyNone = 0, keyDown = 1, keyUp = 2, keyCharacter = 3 };
  enum KeyType : std::int32_t { asciiKeyType = 0, unicodeKeyType = 1, virtualKeyType = 2 };
  enum VirtualKey : std::int32_t {
    vkNone = 0, vkBackspace = 8, vkTab = 9, vkShift = 16, vkControl = 17, vkAlt = 18, vkPause = 19, vkCapsLock = 20,
    vkEscape = 27, vkSpace = 32, vkPageUp = 33, vkPageDown = 34, vkEnd = 35, vkHome = 36, vkLeft = 37, vkUp = 38,
    vkRight = 39, vkDown = 40, vkInsert = 45, vkDelete = 46, vkHelp = 47, vkF1 = 112, vkF2, vkF3, vkF4, vkF5, vkF6,
    vkF7, vkF8, vkF9, vkF10, vkF11, vkF12, vkF13, vkF14, vkF15, vkF16, vkF17, vkF18, vkF19, vkF20, vkF21, vkF22, vkF23,
    vkF24 = 135, vk208 = 208
  };

  ccKeyboardEvent() = default;

  Event event() const { return event_; }
  void event(Event v) { event_ = v; }
  KeyType keyType() const { return keyType_; }
  bool repeatKey() const { return repeatKey_; }
  void repeatKey(bool v) { repeatKey_ = v; }
  void key(char);        // writes the low byte only, as does the next
  void key(VirtualKey);
  void key(wchar_t);     // writes all 16 bits
  char asciiKey() const { return static_cast<char>(key_ & 0xFF); }
  VirtualKey virtualKey() const { return static_cast<VirtualKey>(key_ & 0xFF); }
  wchar_t unicodeKey() const { return static_cast<wchar_t>(key_); }

  static VirtualKey toVirtualKey(long code);  // the code when it is one of VirtualKey, else vkNone

  friend ccArchive& operator||(ccArchive&, ccKeyboardEvent&);
  friend bool operator==(ccKeyboardEvent const&, ccKeyboardEvent const&) = default;

private:
  Event event_ = keyNone;
  KeyType keyType_ = asciiKeyType;
  bool repeatKey_ = false;
  std::uint16_t key_ = 0;
};
