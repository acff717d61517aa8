// Scenarios S1, S1b, S2a, S2b and S3 on the road from ccDisplay::image to the drawing surface, as ratios to the memory limit
// measured in the same run. The "shown" rows go on to the window's memory.
#include "backend/win32/win32_display.h"
#include "platform/app.h"
#include "platform/testing.h"
#include "platform/window.h"

#include "common/scenes.hpp"

#include <functional>

namespace {

using scene::Buf;

struct Stage {
  HWND window;
  std::unique_ptr<ccWin32Display> display;

  Stage(int width, int height)
  {
    plat::WindowDesc desc;
    desc.rect = {0, 0, width, height};
    window = plat::platform().windows.create(desc);
    plat::platform().windows.place(window, nullptr, 5);
    display = std::make_unique<ccWin32Display>(window);
    plat::testing::drain();
  }
  ~Stage()
  {
    display.reset();
    plat::platform().windows.destroy(window);
  }
  void lock(bool on)
  {
    if (on)
      display->lockScreenUpdatesPush(true, ccUITablet::bothLayers);
    else
      display->lockScreenUpdatesPop(ccUITablet::bothLayers);
  }
};

std::vector<ccRGB> colorMapOf(scene::Lut const& lut)
{
  std::vector<ccRGB> map(256);
  for (std::size_t i = 0; i < 256; ++i)
    map[i] = ccRGB(static_cast<unsigned char>(lut[i] >> 16), static_cast<unsigned char>(lut[i] >> 8),
                   static_cast<unsigned char>(lut[i]));
  return map;
}

ccPelBuffer<unsigned char> view(Buf const& pels, int w, int h)
{
  return ccPelBuffer<unsigned char>(
      ccPtrHandle<ccPelRoot<unsigned char>>(new ccPelRoot<unsigned char>(pels.p, w, h, w)));
}

// What the drawing surface holds, as packed pels.
template <class Pel> ccPelBuffer<Pel> surface(ccWin32Display& display, int w, int h)
{
  ccPelBuffer<Pel> out(w, h);
  display.getDisplayedImage(out, ccUITablet::imageLayer);
  return out;
}

std::string check32(ccWin32Display& display, int w, int h, scene::u32 const* reference, char const* note = "")
{
  auto const out = surface<ccPackedRGB32Pel>(display, w, h);
  return scene::check32(out.pelAddress(0, 0), static_cast<std::size_t>(out.rowStride()) * 4, w, h, reference, note);
}

void runShow(bool shown)
{
  scene::Show scene(scene::COLD);
  bench::MemLimit hot(scene::PELS, scene::PELS * 4), cold(scene::PELS, scene::PELS * 4, scene::COLD, scene::COLD);
  Stage stage(scene::W, scene::H);
  stage.display->colorMapEx(colorMapOf(scene.lut));
  std::vector<ccPelBuffer<unsigned char>> frames;
  for (Buf const& b : scene.src)
    frames.push_back(view(b, scene::W, scene::H));
  char const* const name = shown ? "krsdisp image() shown" : "krsdisp image()";
  auto const show = [&](std::size_t i) { stage.display->image(frames[i % frames.size()], true); };
  auto const check = [&] {
    show(0);
    return check32(*stage.display, scene::W, scene::H, scene.ref32.data());
  };
  if (!shown)
    stage.lock(true);
  bench::run("S1_show_hot", name, scene::PELS, bench::Unit::Mpel, [&](std::size_t) { show(0); }, std::ref(hot), check);
  // The display has one surface; only its source is cold.
  bench::run("S1_show_cold", name, scene::PELS, bench::Unit::Mpel, [&](std::size_t i) { show(i); }, std::ref(cold), check);
  if (!shown)
    stage.lock(false);
}

void runShow565()
{
  scene::Show scene(1);
  bench::MemLimit hot(scene::PELS, scene::PELS * 2);
  Stage stage(scene::W, scene::H);
  stage.display->colorMapEx(colorMapOf(scene.lut));
  auto const frame = view(scene.src[0], scene::W, scene::H);
  stage.lock(true);
  bench::run("S1b_show565_hot", "krsdisp image()", scene::PELS, bench::Unit::Mpel,
             [&](std::size_t) { stage.display->image(frame, true); }, std::ref(hot), [&] {
               auto const out = surface<ccPackedRGB16Pel>(*stage.display, scene::W, scene::H);
               return scene::check16(out.pelAddress(0, 0), static_cast<std::size_t>(out.rowStride()) * 2, scene::W,
                                     scene::H, scene.ref16.data());
             });
  stage.lock(false);
}

void runScale(char const* name, scene::Scale scene)
{
  std::size_t const pels = static_cast<std::size_t>(scene.dw) * static_cast<std::size_t>(scene.dh);
  bench::MemLimit limit(scene.f > 1 ? static_cast<std::size_t>(scene.sw) * static_cast<std::size_t>(scene.sh)
                                    : static_cast<std::size_t>(scene.sw) * static_cast<std::size_t>(scene.dh),
                        pels * 4);
  Stage stage(scene.dw, scene.dh);
  stage.display->colorMapEx(colorMapOf(scene.lut));
  auto const frame = view(scene.src, scene.sw, scene.sh);
  stage.display->image(frame, true);
  stage.display->magExact(scene.f);
  // The image's upper left pel goes to the window's: half the image and half the window differ by less than a pel.
  ccPoint const corner = stage.display->displayToImage(ccPoint(0, 0));
  stage.display->pan(stage.display->pan() + corner);
  stage.lock(true);
  bench::run(name, "krsdisp image()", static_cast<double>(pels), bench::Unit::Mpel,
             [&](std::size_t) { stage.display->image(frame, true); }, std::ref(limit), [&] {
               auto const out = surface<ccPackedRGB32Pel>(*stage.display, scene.dw, scene.dh);
               return scene.check(out.pelAddress(0, 0), static_cast<std::size_t>(out.rowStride()) * 4);
             });
  stage.lock(false);
}

}  // namespace

int main(int count, char** values)
{
  bench::init(count, values);
  plat::InitOptions options;
  options.video = plat::InitOptions::headless;
  options.screen = {2048, 1536};
  plat::init(options);
  if (bench::selected("S1_show")) {
    runShow(false);
    runShow(true);
  }
  if (bench::selected("S2a_magnify3"))
    runScale("S2a_magnify3", scene::mag3());
  if (bench::selected("S2b_magnify2.7"))
    runScale("S2b_magnify2.7", scene::mag27());
  if (bench::selected("S3_reduce3"))
    runScale("S3_reduce3", scene::reduce3());
  if (bench::selected("S1b_show565")) {
    plat::testing::screen({2048, 1536}, 16);
    runShow565();
  }
}
