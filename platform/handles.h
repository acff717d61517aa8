// Handles of windows, device contexts and other objects of the machine, and its plain colour and rectangle.
// The declarations are those that the system's own header makes, so either order of inclusion compiles. Off Windows
// a handle is a number in disguise and is never dereferenced; a null handle is 0.
#pragma once

#include <cstdint>

struct HWND__;
struct HDC__;
struct HPALETTE__;
struct HFONT__;
struct HMENU__;
struct HICON__;
typedef HWND__* HWND;
typedef HDC__* HDC;
typedef HPALETTE__* HPALETTE;
typedef HFONT__* HFONT;
typedef HMENU__* HMENU;
typedef HICON__* HICON;
typedef HICON HCURSOR;

// A colour is red | green << 8 | blue << 16. A rectangle is half open.
#ifdef _WIN32
typedef unsigned long COLORREF;
struct tagRECT;
typedef tagRECT RECT;
#else
typedef std::uint32_t COLORREF;
struct tagRECT {
  std::int32_t left, top, right, bottom;
};
typedef tagRECT RECT;
#endif
