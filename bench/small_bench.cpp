// The small costs that add up: a lock, a step of the pointer through the whole chain, the keyed composition (S4), video formats
// (S8), a sketch recorded and replayed, one shape moved over an image. Where peers/common/ names a limit the ratio is to that;
// locks are held against those of the standard library; the others have none and print 0.
#include "backend/win32/win32_display.h"
#include "canvas/image_converter.h"
#include "foundation/resource.h"
#include "platform/app.h"
#include "platform/surface.h"
#include "platform/testing.h"
#include "platform/window.h"
#include "ui/core/shapes.h"

#include "common/scenes.hpp"

#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace {

using scene::H;
using scene::PELS;
using scene::W;

// As bench::run prints it, for what has no limit.
template <class Work, class Check>
void runAlone(std::string const& name, std::string const& peer, double ops, Work&& work, Check&& check)
{
  if (!bench::selected(name))
    return;
  work();
  std::string const verdict = check();
  std::vector<double> times;
  double const begin = bench::now_ms();
  while (static_cast<int>(times.size()) < bench::opt().min_reps ||
         (bench::now_ms() - begin < bench::opt().budget_ms && static_cast<int>(times.size()) < bench::opt().max_reps)) {
    double const start = bench::now_ms();
    work();
    times.push_back(bench::now_ms() - start);
  }
  double const ms = bench::median(times);
  std::printf("%s,%s,%.5f,%.1f,0,0,%s\n", name.c_str(), peer.c_str(), ms, ops / (ms * 1e-3), verdict.c_str());
}

std::string okIf(bool good) { return good ? "ok" : "BAD"; }

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
  bench::u32 shown(long x, long y) const
  {
    return plat::testing::pel(window, {static_cast<plat::i32>(x), static_cast<plat::i32>(y)});
  }
};

ccPelBuffer<ccPackedRGB32Pel> packed(std::vector<bench::u32> const& pels)
{
  ccPelBuffer<ccPackedRGB32Pel> out(W, H);
  for (long y = 0; y < H; ++y)
    std::memcpy(out.pelAddress(0, y), pels.data() + y * W, W * sizeof(bench::u32));
  return out;
}

// --- Locks, uncontended

void runLocks()
{
  constexpr int count = 100000;
  ccMutex mutex;
  std::mutex plain;
  std::recursive_mutex recursive;
  bench::run(
      "lock_free", "krsdisp ccMutex", count, bench::Unit::Ops,
      [&](std::size_t) {
        for (int i = 0; i < count; ++i) {
          mutex.lock();
          mutex.unlock();
        }
      },
      [&](std::size_t) {
        for (int i = 0; i < count; ++i) {
          plain.lock();
          plain.unlock();
        }
      },
      [&] { return okIf(!mutex.lockedByMe()); });
  mutex.lock();
  recursive.lock();
  bench::run(
      "lock_again", "krsdisp ccMutex", count, bench::Unit::Ops,
      [&](std::size_t) {
        for (int i = 0; i < count; ++i) {
          mutex.lock();
          mutex.unlock();
        }
      },
      [&](std::size_t) {
        for (int i = 0; i < count; ++i) {
          recursive.lock();
          recursive.unlock();
        }
      },
      [&] { return okIf(mutex.lockedByMe()); });
  recursive.unlock();
  mutex.unlock();
}

// --- From the window message to the node

class Target : public ccUIControlFrame {
public:
  using ccUIControlFrame::ccUIControlFrame;
  ~Target() override { beginDestruction(); }

  static long entered, pressed;

protected:
  void idleMouseEnter_() override { ++entered; }  // no button is down
  void mouseDown_() override { ++pressed; }
};
long Target::entered = 0;
long Target::pressed = 0;

constexpr int kColumns = 40, kCell = 20, kTarget = 15;  // pels

// count nodes in a grid; the pointer goes from each to the next, or from the only one to beside it and back.
void runInput(int count)
{
  constexpr int moves = 1000, pairs = 200;
  constexpr unsigned moved = 512, pressed = 513, released = 514;
  Stage stage(kColumns * kCell, 600);
  std::vector<std::unique_ptr<Target>> targets;
  for (int i = 0; i < count; ++i) {
    ccUIRect const place(i % kColumns * kCell, i / kColumns * kCell, kTarget, kTarget);
    targets.push_back(std::make_unique<Target>(stage.display.get(), place));
    targets.back()->opaque(ccUITablet::imageLayer, true);  // else the pointer goes through
    targets.back()->clickable(true);
    targets.back()->condVisible(true);
  }
  plat::testing::drain();
  auto const centre = [](int i) {
    return plat::Point{i % kColumns * kCell + kTarget / 2, i / kColumns * kCell + kTarget / 2};
  };
  plat::Point const outside{790, 590};
  auto const at = [&](int i) { return count > 1 ? centre(i % count) : i % 2 == 0 ? centre(0) : outside; };
  std::string const suffix = std::to_string(count);

  plat::testing::mouse(stage.window, moved, outside, 0);
  Target::entered = 0;
  runAlone(
      "hover_" + suffix, "krsdisp mouse move to node", moves,
      [&] {
        for (int i = 0; i < moves; ++i)
          plat::testing::mouse(stage.window, moved, at(i), 0);
      },
      [&] { return okIf(Target::entered == (count > 1 ? moves : moves / 2)); });

  Target::pressed = 0;
  runAlone(
      "press_" + suffix, "krsdisp press and release", pairs,
      [&] {
        for (int i = 0; i < pairs; ++i) {
          plat::testing::mouse(stage.window, pressed, centre(i % count), 1);
          plat::testing::mouse(stage.window, released, centre(i % count), 0);
        }
      },
      [&] { return okIf(Target::pressed == pairs); });
}

// --- S4: an overlay over an image, by its key

plat::Ptr<plat::Surface> makeSurface(plat::DisplayDevice& device, std::vector<bench::u32> const& pels)
{
  plat::SurfaceDesc desc;
  desc.valid = 1 | 2 | 4;  // caps, height, width; the format is the screen's
  desc.width = W;
  desc.height = H;
  desc.caps = 0x40;
  plat::Ptr<plat::Surface> surface;
  plat::SurfaceDesc locked;
  if (device.createSurface(desc, surface) != 0 || surface->lock(nullptr, locked, 0) != 0) {
    std::fprintf(stderr, "S4: no surface\n");
    std::exit(1);
  }
  for (int y = 0; y < H; ++y) {
    auto* const row = reinterpret_cast<bench::u32*>(static_cast<bench::u8*>(locked.pels) +
                                                    static_cast<std::ptrdiff_t>(y) * locked.pitch);
    for (int x = 0; x < W; ++x)
      row[x] = pels[static_cast<std::size_t>(y) * W + static_cast<std::size_t>(x)] & 0xFFFFFF;
  }
  static_cast<void>(surface->unlock(nullptr));
  return surface;
}

void runKeyed(int percent)
{
  std::string const name = "S4_key" + std::to_string(percent);
  if (!bench::selected(name))
    return;
  scene::Overlay scene(percent);
  bench::MemLimit limit(PELS * 4 + scene.drawn * 4, scene.drawn * 4);

  Stage stage(W, H);
  plat::Ptr<plat::DisplayDevice> device;
  if (plat::openDevice(stage.window, device) != 0) {
    std::fprintf(stderr, "S4: no device\n");
    std::exit(1);
  }
  auto const image = makeSurface(*device, scene.image), over = makeSurface(*device, scene.over);
  static_cast<void>(over->setColorKey(8, {scene::KEY & 0xFFFFFF, scene::KEY & 0xFFFFFF}));
  long result = 0;
  bench::run(
      name, "krsdisp surface blt", PELS, bench::Unit::Mpel,
      [&](std::size_t) { result |= image->blt(nullptr, over.get(), nullptr, 0x8000 | 0x1000000, 0); }, std::ref(limit), [&] {
        plat::SurfaceDesc locked;
        if (result != 0 || image->lock(nullptr, locked, 0) != 0)
          return okIf(false);
        auto const verdict =
            scene::check32(locked.pels, static_cast<std::size_t>(locked.pitch), W, H, scene.ref.data());
        static_cast<void>(image->unlock(nullptr));
        return verdict;
      });

  // The way of a display: two surfaces are composed in a third, and that goes to the window.
  ccWin32Display& display = *stage.display;
  display.enableOverlay(ccDisplay::overlayOn);
  display.image(packed(scene.image));
  ccLock lock(display.rootMutex());
  display.overlayScope()->draw(packed(scene.over), ccPoint(0, 0), /*transparent=*/true, scene::KEY);
  ccUIRect const all(0, 0, W, H);
  bench::run(
      name, "krsdisp updateScreen with overlay plane", PELS, bench::Unit::Mpel,
      [&](std::size_t) {
        display.imageScope().invalidateScreen(all);
        display.imageScope().updateScreen();
      },
      std::ref(limit), [&] {
        plat::Size size;
        auto const shot = plat::testing::shot(stage.window, size);
        if (size.w != W || size.h != H)
          return okIf(false);
        return scene::check32(shot.data(), W * sizeof(bench::u32), W, H, scene.ref.data());
      });
}

// --- S8: grey to packed video

void runVideo()
{
  if (!bench::selected("S8a_uyvy") && !bench::selected("S8b_yuy2"))
    return;
  bench::Buf const source = scene::grey8(W, H, 800);
  bench::Buf target(PELS * 2);
  bench::MemLimit limit(PELS, PELS * 2);
  auto* const pels = reinterpret_cast<unsigned short*>(target.p);
  // The darkest and the brightest grey are mapped apart, as video surfaces want it; all others keep their luma.
  auto const check = [&](std::size_t luma) {
    return [&, luma] {
      std::size_t wrong = 0, ends = 0;
      for (std::size_t i = 0; i < PELS; ++i) {
        if (source.p[i] == 0 || source.p[i] == 255)
          ++ends;
        else
          wrong += target.p[2 * i + luma] != source.p[i] || target.p[2 * i + 1 - luma] != 0x80;
      }
      return scene::verdict(wrong, PELS, (" ends=" + std::to_string(ends)).c_str());
    };
  };
  bench::run(
      "S8a_uyvy", "krsdisp ccImageConverter", PELS, bench::Unit::Mpel,
      [&](std::size_t) { ccImageConverter::convert8ToUYVY(source.p, pels, W, H, W, W * 2); }, std::ref(limit), check(1));
  bench::run(
      "S8b_yuy2", "krsdisp ccImageConverter", PELS, bench::Unit::Mpel,
      [&](std::size_t) { ccImageConverter::convert8ToYUY2(source.p, pels, W, H, W, W * 2); }, std::ref(limit), check(0));
}

// --- Sketches

constexpr int kOperations = 10000;

// Half rectangles, half lines from point to point.
void record(ccUITablet& recorder, std::vector<ccUIRect> const& rects)
{
  for (std::size_t i = 0; i < rects.size(); ++i) {
    recorder.set(rects[i], ccColor::redColor(), ccUITablet::imageLayer);
    recorder.drawTo(ccPoint(static_cast<double>(rects[i].ul().x()), static_cast<double>(rects[i].ul().y())),
                    ccColor::greenColor(), ccUITablet::imageLayer);
  }
}

void runSketch()
{
  bench::Rng random(1200);
  std::vector<ccUIRect> rects;
  for (int i = 0; i < kOperations / 2; ++i)
    rects.emplace_back(random.range(0, 780), random.range(0, 580), random.range(5, 20), random.range(5, 20));
  ccUITablet recorder;
  runAlone(
      "sketch_record10k", "krsdisp recording tablet", kOperations,
      [&] {
        recorder.sketch().erase();
        record(recorder, rects);
      },
      [&] { return okIf(recorder.sketch().ops_seq().size() >= kOperations); });

  Stage stage(800, 600);
  ccUISketch const sketch = recorder.sketch();
  ccUIRect const& last = rects.back();
  runAlone(
      "sketch_replay10k", "krsdisp draw(sketch)", kOperations,
      [&] {
        stage.display->lockScreenUpdatesPush(true, ccUITablet::imageLayer);
        stage.display->draw(sketch, ccPoint(0, 0), ccUITablet::imageLayer);
        stage.display->lockScreenUpdatesPop(ccUITablet::imageLayer);
      },
      // Drawn last: the rectangle, and over it the line to its corner.
      [&] { return okIf(stage.shown(last.ul().x() + last.sz().x() - 1, last.ul().y() + last.sz().y() - 1) == 0xFF0000); });
}

// --- One shape over an image

class Mark : public ccUIShapes {
public:
  explicit Mark(ccVector<2> const& at) : at_(at) {}

protected:
  void pos_(ccVector<2> const& v) override { at_ = v; }
  ccVector<2> pos_() override { return at_; }
  void draw_(ccUITablet& tablet, ccColor const& color, DrawMode) override
  {
    ccPair<long> const at = tablet.scopeCoords(ccPoint(absPos().x(), absPos().y()));
    tablet.set(ccUIRect(at, ccPair<long>(14, 14)), color, drawLayer());
  }

private:
  ccVector<2> at_;
};

void runShape(ccUITablet::Layers layer)
{
  constexpr int steps = 200;
  Stage stage(W, H);
  ccWin32Display& display = *stage.display;
  if (layer == ccUITablet::overlayLayer)
    display.enableOverlay(ccDisplay::overlayOn);
  bench::Buf const grey = scene::grey8(W, H, 601);
  ccPelBuffer<unsigned char> image(W, H);
  for (long y = 0; y < H; ++y)
    std::memcpy(image.pelAddress(0, y), grey.p + y * W, W);
  display.image(image, /*mapPels=*/false);
  Mark mark(ccVector<2>(200, 200));
  mark.drawLayer(layer);
  mark.color(ccColor::redColor());
  display.addShape(&mark, ccDisplay::displayCoords);
  mark.condVisible(true);
  plat::testing::drain();
  runAlone(
      layer == ccUITablet::overlayLayer ? "shape_move_overlay" : "shape_move_image", "krsdisp ccUIShapes::move", steps,
      [&] {
        for (int i = 0; i < steps; ++i)
          mark.move(i < steps / 2 ? ccVector<2>(4, 2) : ccVector<2>(-4, -2));
      },
      [&] {
        bool const back = stage.shown(200, 200) == 0xFF0000;
        mark.move(ccVector<2>(100, 0));
        bool const gone = stage.shown(200, 200) != 0xFF0000 && stage.shown(300, 200) == 0xFF0000;
        mark.move(ccVector<2>(-100, 0));
        return okIf(back && gone);
      });
  display.removeShape(&mark);
}

}  // namespace

int main(int count, char** values)
{
  bench::init(count, values);
  plat::InitOptions options;
  options.video = plat::InitOptions::headless;
  options.screen = {2048, 1536};
  plat::init(options);
  runLocks();
  for (int nodes : {1, 1000})
    if (bench::selected("hover_" + std::to_string(nodes)) || bench::selected("press_" + std::to_string(nodes)))
      runInput(nodes);
  for (int percent : {1, 30})
    runKeyed(percent);
  runVideo();
  if (bench::selected("sketch_record10k") || bench::selected("sketch_replay10k"))
    runSketch();
  if (bench::selected("shape_move_image"))
    runShape(ccUITablet::imageLayer);
  if (bench::selected("shape_move_overlay"))
    runShape(ccUITablet::overlayLayer);
}
