// Plain types shared by everything under platform/.
#pragma once

#include "platform/handles.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace plat {

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using i32 = std::int32_t;
using uptr = std::uintptr_t;
template <class T> using Ptr = std::unique_ptr<T>;

// A result code: the 32-bit pattern zero-extended, so that comparing with 0x88760082 works whatever the width of long.
// 0 is success; nobody tests the sign.
using Result = long;
constexpr Result result(u32 code) { return static_cast<Result>(code); }

struct Point {
  i32 x = 0, y = 0;
  friend bool operator==(Point const&, Point const&) = default;
};

struct Size {
  i32 w = 0, h = 0;
  friend bool operator==(Size const&, Size const&) = default;
};

// Half open: right and bottom lie outside.
struct Rect {
  i32 left = 0, top = 0, right = 0, bottom = 0;
  // Edges farther apart than a number reaches count as that far.
  i32 width() const { return extent(left, right); }
  i32 height() const { return extent(top, bottom); }
  bool empty() const { return right <= left || bottom <= top; }
  friend bool operator==(Rect const&, Rect const&) = default;

private:
  static i32 extent(i32 from, i32 to)
  {
    i32 size = 0;
    if (__builtin_sub_overflow(to, from, &size))
      size = to > from ? 0x7FFFFFFF : -0x7FFFFFFF - 1;
    return size;
  }
};

// x' = x m11 + y m21 + dx, y' = x m12 + y m22 + dy.
struct Xform {
  float m11 = 1, m12 = 0, m21 = 0, m22 = 1, dx = 0, dy = 0;
};

using WParam = std::uintptr_t;
using LParam = std::intptr_t;
using LResult = std::intptr_t;
using MessageProc = LResult (*)(HWND, unsigned message, WParam, LParam);

struct PaletteEntry {
  u8 r = 0, g = 0, b = 0, flags = 0;
  friend bool operator==(PaletteEntry const&, PaletteEntry const&) = default;
};

}  // namespace plat
