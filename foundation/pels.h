// Packed colour pels, and the formats of images.
#pragma once

#include <cstdint>

// Red in bits 15 to 11, green 10 to 5, blue 4 to 0. The channels read as 0 to 255 with their low bits zero.
class ccPackedRGB16Pel {
public:
  constexpr ccPackedRGB16Pel() = default;
  explicit constexpr ccPackedRGB16Pel(std::uint16_t word) : word_(word) {}
  constexpr ccPackedRGB16Pel(unsigned char r, unsigned char g, unsigned char b)
      : word_(static_cast<std::uint16_t>((r & 0xF8) << 8 | (g & 0xFC) << 3 | b >> 3))
  {
  }
  constexpr std::uint16_t word() const { return word_; }
  constexpr unsigned char red() const { return static_cast<unsigned char>((word_ >> 8) & 0xF8); }
  constexpr unsigned char green() const { return static_cast<unsigned char>((word_ >> 3) & 0xFC); }
  constexpr unsigned char blue() const { return static_cast<unsigned char>((word_ << 3) & 0xF8); }
  friend constexpr bool operator==(ccPackedRGB16Pel, ccPackedRGB16Pel) = default;

private:
  std::uint16_t word_ = 0;
};

// 0x00RRGGBB: bytes blue, green, red, 0 in memory.
class ccPackedRGB32Pel {
public:
  constexpr ccPackedRGB32Pel() = default;
  explicit constexpr ccPackedRGB32Pel(std::uint32_t word) : word_(word) {}
  constexpr ccPackedRGB32Pel(unsigned char r, unsigned char g, unsigned char b)
      : word_(static_cast<std::uint32_t>(r) << 16 | static_cast<std::uint32_t>(g) << 8 | b)
  {
  }
  constexpr std::uint32_t word() const { return word_; }
  constexpr unsigned char red() const { return static_cast<unsigned char>(word_ >> 16); }
  constexpr unsigned char green() const { return static_cast<unsigned char>(word_ >> 8); }
  constexpr unsigned char blue() const { return static_cast<unsigned char>(word_); }
  friend constexpr bool operator==(ccPackedRGB32Pel, ccPackedRGB32Pel) = default;

private:
  std::uint32_t word_ = 0;
};

enum ceImageFormat : std::int32_t {
  ceImageFormatNone = -1,
  ceImageFormatGrey8 = 1,
  ceImageFormatGrey16 = 2,
  ceImageFormatRGB16 = 3,
  ceImageFormatRGB32 = 4
};
