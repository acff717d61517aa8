// Colours: ccRGB is three bytes in a 4-byte element, ccColor a palette index and an RGB triple of which one or both are
// given, or the pass-through colour through which the layer below shows.
#pragma once

#include <cstdint>

class ccArchive;

struct ccRGB {
  unsigned char r = 0, g = 0, b = 0, pad = 0;

  constexpr ccRGB() = default;
  constexpr ccRGB(unsigned char red, unsigned char green, unsigned char blue) : r(red), g(green), b(blue) {}
  constexpr unsigned short rgb15() const { return static_cast<unsigned short>((r & 0xF8) << 7 | (g & 0xF8) << 2 | b >> 3); }
  constexpr unsigned short rgb16() const { return static_cast<unsigned short>((r & 0xF8) << 8 | (g & 0xFC) << 3 | b >> 3); }
  friend constexpr bool operator==(ccRGB const& c, ccRGB const& d) { return c.r == d.r && c.g == d.g && c.b == d.b; }
  friend constexpr bool operator!=(ccRGB const& c, ccRGB const& d) { return !(c == d); }
};

class ccColor {
public:
  enum Flags : unsigned char { kStock = 1, kRGB = 2, kIndex = 4, kPass = 8 };

  constexpr ccColor() = default;  // black, as the stock colour
  explicit constexpr ccColor(unsigned char index) : flags_(kIndex), index_(index) {}
  constexpr ccColor(unsigned char r, unsigned char g, unsigned char b) : flags_(kRGB), rgb_(r, g, b) {}
  constexpr ccColor(ccRGB const& rgb) : flags_(kRGB), rgb_(rgb.r, rgb.g, rgb.b) {}

  constexpr unsigned char flags() const { return flags_; }
  constexpr bool isPass() const { return (flags_ & kPass) != 0; }
  unsigned char index() const;   // without an index: the nearest of the system and reserved colours
  ccRGB toRGB() const;           // without RGB: the entry of the default palette
  unsigned long rgb() const;     // 0x00RRGGBB
  unsigned long bgr() const;     // red | green << 8 | blue << 16
  unsigned short rgb15() const { return toRGB().rgb15(); }
  unsigned short rgb16() const { return toRGB().rgb16(); }

  // An entry of a palette: carries both.
  static constexpr ccColor paletteEntry(unsigned char index, ccRGB const& rgb)
  {
    ccColor c(rgb);
    c.flags_ = kRGB | kIndex;
    c.index_ = index;
    return c;
  }

  static ccColor blackColor() { return stock_(0, 0, 0, 0); }
  static ccColor dkRedColor() { return stock_(1, 128, 0, 0); }
  static ccColor dkGreenColor() { return stock_(2, 0, 128, 0); }
  static ccColor ltGreyColor() { return stock_(7, 192, 192, 192); }
  static ccColor passColor() { return stock_(243, 243, 243, 243, kPass); }
  static ccColor purpleColor() { return stock_(244, 160, 32, 240); }
  static ccColor orangeColor() { return stock_(245, 255, 165, 0); }
  static ccColor greyColor() { return stock_(247, 160, 160, 164); }
  static ccColor dkGreyColor() { return stock_(248, 128, 128, 128); }
  static ccColor redColor() { return stock_(249, 255, 0, 0); }
  static ccColor greenColor() { return stock_(250, 0, 255, 0); }
  static ccColor yellowColor() { return stock_(251, 255, 255, 0); }
  static ccColor blueColor() { return stock_(252, 0, 0, 255); }
  static ccColor magentaColor() { return stock_(253, 255, 0, 255); }
  static ccColor cyanColor() { return stock_(254, 0, 255, 255); }
  static ccColor whiteColor() { return stock_(255, 255, 255, 255); }

  // Pass-through flags equal, and then RGB if both carry it, else the index if both carry it, else different.
  friend bool operator==(ccColor const&, ccColor const&);
  friend bool operator!=(ccColor const& a, ccColor const& b) { return !(a == b); }
  friend ccArchive& operator||(ccArchive&, ccColor&);

private:
  static constexpr ccColor stock_(unsigned char index, unsigned char r, unsigned char g, unsigned char b, int extra = 0)
  {
    ccColor c(r, g, b);
    c.flags_ = static_cast<unsigned char>(kStock | kRGB | kIndex | extra);
    c.index_ = index;
    return c;
  }

  unsigned char flags_ = kStock | kRGB | kIndex;
  unsigned char index_ = 0;
  ccRGB rgb_;
};

ccArchive& operator||(ccArchive&, ccRGB&);
