#include "platform/portable/raster/graphics_objects.h"

#include "foundation/leaf_mutex.h"
#include "platform/portable/raster/handle_table.h"
#include "platform/portable/raster/pel_format.h"
#include "platform/portable/raster/screen.h"

namespace plat::portable {

namespace {

class MemGraphicsObjects final : public GraphicsObjects {
public:
  HPALETTE createPalette(std::span<PaletteEntry const> entries) override
  {
    if (entries.empty() || entries.size() > 256)
      return nullptr;
    std::lock_guard const guard(mutex_);
    return palettes_.add({entries.begin(), entries.end()});
  }

  void deletePalette(HPALETTE handle) override
  {
    std::lock_guard const guard(mutex_);
    palettes_.remove(handle);
  }

  std::vector<PaletteEntry> entries(HPALETTE handle) override
  {
    std::lock_guard const guard(mutex_);
    auto const* const found = palettes_.find(handle);
    return found ? *found : std::vector<PaletteEntry>();
  }

  bool entry(HPALETTE handle, unsigned index, PaletteEntry& out) override
  {
    std::lock_guard const guard(mutex_);
    auto const* const found = palettes_.find(handle);
    if (!found || index >= found->size())
      return false;
    out = (*found)[index];
    return true;
  }

  unsigned nearest(HPALETTE handle, COLORREF color) override
  {
    std::lock_guard const guard(mutex_);
    auto const* const found = palettes_.find(handle);
    return found ? nearestEntry(*found, rgbOf(color)) : 0;
  }

  std::vector<PaletteEntry> systemEntries() override
  {
    auto const screen = screenPalette();
    return {screen.begin(), screen.end()};
  }

  // The lock is gone before the screen is told.
  unsigned realize(HWND window, HPALETTE handle) override
  {
    std::vector<PaletteEntry> wanted = entries(handle);
    // A palette of all entries but the system's begins behind the system's first ones.
    constexpr std::size_t systemFirst = 10, ownEntries = 236;
    if (wanted.size() == ownEntries)
      wanted.insert(wanted.begin(), systemFirst, PaletteEntry());
    return wanted.empty() ? 0 : writeScreenPalette(window, wanted);
  }

  HFONT createFont(FontDesc const& desc) override
  {
    std::lock_guard const guard(mutex_);
    return fonts_.add(desc);
  }

  void deleteFont(HFONT handle) override
  {
    std::lock_guard const guard(mutex_);
    fonts_.remove(handle);
  }

  bool font(HFONT handle, FontDesc& out)
  {
    std::lock_guard const guard(mutex_);
    FontDesc const* const found = fonts_.find(handle);
    if (found)
      out = *found;
    return found != nullptr;
  }

private:
  cc_LeafMutex<cc_LockRank::objects> mutex_;
  HandleTable<HPALETTE, std::vector<PaletteEntry>> palettes_;
  HandleTable<HFONT, FontDesc> fonts_;
};

MemGraphicsObjects& objects()
{
  static MemGraphicsObjects* const one = new MemGraphicsObjects;  // objects of static lifetime may use it later
  return *one;
}

}  // namespace

GraphicsObjects& graphicsObjects() { return objects(); }

bool fontOf(HFONT handle, FontDesc& out) { return objects().font(handle, out); }

}  // namespace plat::portable
