// Text layout: a font and where the text lies about its point. Alignments 0 to 8 run top row to bottom row, left to right.
#pragma once

#include "canvas/rect.h"

#include <cstdint>

class ccUIFormat {
public:
  enum Alignment : std::int32_t {
    topLeft, topCenter, topRight, centerLeft, center, centerRight, bottomLeft, bottomCenter, bottomRight
  };

  ccUIFormat() : ccUIFormat(topLeft) {}
  explicit ccUIFormat(Alignment a) : fontId_(gDefaultFontId()), alignment_(a) {}
  long fontId() const { return fontId_; }
  void fontId(long v) { fontId_ = v; }
  Alignment alignment() const { return alignment_; }
  void alignment(Alignment v) { alignment_ = v; }
  ccUIRect alignRect(ccUIRect const&) const;  // a rectangle whose upper left is the text's point, moved by alignment
  static long gDefaultFontId();               // -1: the scope's stock font
  static void gDefaultFontId(long);
  friend bool operator==(ccUIFormat const&, ccUIFormat const&) = default;

private:
  long fontId_;
  Alignment alignment_;
};
