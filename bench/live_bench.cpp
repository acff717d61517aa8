// Scenario S10: 8-bit frames through a colour map to a window of the whole screen, each presentation complete before the next.
// Under X11 the pels of the root window are read back; with SDL's dummy driver those of the window.
#include "backend/win32/win32_display.h"
#include "platform/app.h"
#include "platform/testing.h"
#include "platform/window.h"

#include "common/scenes.hpp"

// After ours: it brings the macros of X11.
#include "common/xcheck.hpp"

#include <functional>

int main(int count, char** values)
{
  bench::init(count, values, /*pin_default=*/false);
  char const* const driver = std::getenv("SDL_VIDEODRIVER");
  bool const x11 = std::getenv("DISPLAY") && !(driver && std::string(driver) == "dummy");
  plat::InitOptions options;
  options.video = plat::InitOptions::window;
  if (!plat::init(options)) {
    std::fprintf(stderr, "bench_live: no display\n");
    return 1;
  }
  plat::WindowDesc desc;
  desc.rect = {0, 0, scene::W, scene::H};
  HWND const window = plat::platform().windows.create(desc);
  plat::platform().windows.place(window, nullptr, 5);
  ccWin32Display display(window);
  plat::testing::drain();

  scene::Show scene(scene::COLD);
  std::vector<ccRGB> map(256);
  for (std::size_t i = 0; i < 256; ++i)
    map[i] = ccRGB(static_cast<unsigned char>(scene.lut[i] >> 16), static_cast<unsigned char>(scene.lut[i] >> 8),
                   static_cast<unsigned char>(scene.lut[i]));
  display.colorMapEx(map);
  std::vector<ccPelBuffer<unsigned char>> frames;
  for (auto const& b : scene.src)
    frames.emplace_back(ccPtrHandle<ccPelRoot<unsigned char>>(
        new ccPelRoot<unsigned char>(b.p, scene::W, scene::H, scene::W)));
  auto const show = [&](std::size_t i) {
    display.image(frames[i % frames.size()], true);
    plat::pump(0);
  };
  scene::LiveLimit limit;
  bench::run(x11 ? "S10_live_x11" : "S10_live_dummy", "krsdisp image()", 1, bench::Unit::Ops, show, std::ref(limit), [&] {
    show(0);
    plat::testing::drain();
    if (x11)
      return xcheck(scene.ref32.data());
    plat::Size size;
    std::vector<plat::u32> const shot = plat::testing::shot(window, size);
    return scene::check32(shot.data(), scene::W * 4, scene::W, scene::H, scene.ref32.data());
  });
}
