// Scenario S10: 8-bit frames through a colour map to a window of the whole X screen, each presentation complete before the
// next. The pels of the root window are read back.
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
  bench::run("S10_live_x11", "krsdisp image()", 1, bench::Unit::Ops, show, std::ref(limit), [&] {
    show(0);
    plat::testing::drain();
    return xcheck(scene.ref32.data());
  });
}
