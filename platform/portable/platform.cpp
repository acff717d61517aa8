// The concrete objects behind the interfaces of this variant; nothing else names them.
#include "foundation/leaf_mutex.h"
#include "platform/app.h"
#include "platform/portable/raster/graphics_objects.h"
#include "platform/portable/windows/core.h"
#include "platform/portable/windows/menus.h"
#include "platform/testing.h"
#include "platform/window.h"

namespace plat {
namespace {

cc_LeafMutex<cc_LockRank::sink> sinkMutex;
std::function<void(std::string_view)> sink;

}  // namespace

Platform& platform()
{
  static Platform all{portable::Core::instance(), portable::menus(), portable::graphicsObjects(), builtInResources()};
  return all;
}

void debugText(std::string_view text)
{
  std::lock_guard const lock(sinkMutex);
  if (sink)
    sink(text);
}

void testing::debugSink(std::function<void(std::string_view)> to)
{
  std::lock_guard const lock(sinkMutex);
  sink = std::move(to);
}

bool init(InitOptions const& options) { return portable::Core::unstarted().start(options); }

bool pump(int timeoutMs) { return portable::Core::instance().pump(timeoutMs); }

int run() { return portable::Core::instance().run(); }

void quit(int code) { portable::Core::instance().quit(code); }

HWND attachNativeWindow(std::uintptr_t id) { return portable::Core::instance().attachNative(id); }

void dropHandler(std::function<void(HWND, std::vector<std::string> const&)> handler)
{
  portable::Core::unstarted().dropHandler(std::move(handler));
}

void detach(HWND window) { portable::Core::instance().detach(window); }

}  // namespace plat
