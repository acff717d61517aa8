// Palettes and fonts by handle. Any thread; no message is sent except by realize.
#pragma once

#include "platform/paint.h"
#include "platform/types.h"

#include <span>
#include <vector>

namespace plat {

class GraphicsObjects {
public:
  virtual ~GraphicsObjects() = default;
  virtual HPALETTE createPalette(std::span<PaletteEntry const>) = 0;  // at most 256; null when empty or longer
  virtual void deletePalette(HPALETTE) = 0;
  virtual std::vector<PaletteEntry> entries(HPALETTE) = 0;  // empty for a stale handle
  virtual bool entry(HPALETTE, unsigned index, PaletteEntry&) = 0;  // false for a stale handle or an index beyond
  virtual unsigned nearest(HPALETTE, COLORREF) = 0;         // smallest squared distance, the first of equals
  virtual std::vector<PaletteEntry> systemEntries() = 0;    // 256
  virtual unsigned realize(HWND, HPALETTE) = 0;             // select and realize; count of entries changed
  virtual HFONT createFont(FontDesc const&) = 0;
  virtual void deleteFont(HFONT) = 0;
};

}  // namespace plat
