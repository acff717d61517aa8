#include "tests/platform/fake_screen.h"

using namespace plat;

namespace {

FakeScreen* current = nullptr;
std::vector<PaletteEntry> greyRamp()
{
  std::vector<PaletteEntry> entries;
  for (unsigned i = 0; i < 256; ++i)
    entries.push_back({static_cast<u8>(i), static_cast<u8>(i), static_cast<u8>(i), 0});
  return entries;
}
std::vector<PaletteEntry> const withoutScreen = greyRamp();

}  // namespace

FakeScreen::FakeScreen(Size wanted, int wantedDepth, Point onScreen, Point inBacking)
    : size(wanted), depth(wantedDepth), clientOnScreen(onScreen), clientInBacking(inBacking)
{
  int const bytes = depth == 15 ? 2 : depth / 8;
  backing.width = size.w;
  backing.height = size.h;
  backing.pitch = size.w * bytes + 4;
  backing.depth = depth;
  pels.assign(static_cast<std::size_t>(backing.pitch) * static_cast<std::size_t>(size.h), 0);
  backing.pels = pels.data();
  visible = {{0, 0, size.w, size.h}};
  palette = greyRamp();
  current = this;
}

FakeScreen::~FakeScreen() { current = nullptr; }

HWND FakeScreen::window() const { return reinterpret_cast<HWND>(std::uintptr_t{0x77}); }

u32 FakeScreen::at(int x, int y) const { return cfPelAt(pels.data(), backing.pitch, depth, x, y); }

u32 cfPelAt(u8 const* pels, long pitch, int depth, long x, long y)
{
  int const bytes = depth == 15 ? 2 : depth / 8;
  u32 value = 0;
  for (int i = 0; i < bytes; ++i)
    value |= u32{pels[y * pitch + x * bytes + i]} << (8 * i);
  return value;
}

namespace plat::portable {

Size screenSize() { return current ? current->size : Size{640, 480}; }
int screenDepth() { return current ? current->depth : 32; }

u32 screenChanges() { return current ? current->changes : 0; }
bool headless() { return current ? current->headless : true; }

std::span<PaletteEntry const, 256> screenPalette()
{
  return std::span<PaletteEntry const, 256>(current ? current->palette.data() : withoutScreen.data(), 256);
}

unsigned writeScreenPalette(HWND, std::span<PaletteEntry const> entries)
{
  if (!current || current->depth != 8)
    return 0;
  ++current->paletteWrites;
  unsigned changed = 0;
  for (std::size_t i = 10; i < 246 && i < entries.size(); ++i)
    if (!(current->palette[i] == entries[i])) {
      current->palette[i] = entries[i];
      ++changed;
    }
  return changed;
}

bool paintVisible(HWND window, void* context, PaintBody body, Rect const& dirty)
{
  if (!current || window != current->window() || current->visible.empty())
    return false;
  body(context, {current->backing, current->clientInBacking, current->clientOnScreen, current->visible});
  if (!dirty.empty())
    current->presented.push_back(dirty);
  return true;
}

}  // namespace plat::portable
