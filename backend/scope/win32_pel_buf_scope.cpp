#include "backend/scope/win32_pel_buf_scope.h"

#include "foundation/pel_ops.h"
#include "platform/messages.h"
#include "platform/window.h"

#include <algorithm>

namespace {

// Between the buffer and the locked surface. Direction is that of the copy.
template <class T> void copyRows(ccDirectDrawSurface& surface, ccPelBuffer<T> const& pels, bool toSurface)
{
  if (!pels.isBound() || surface.lock() != ceDDOk)
    return;
  ccDirectDrawSurfaceDesc const& desc = surface.description();
  constexpr long bytes = static_cast<long>(sizeof(T));
  if (desc.surface() && desc.pixelFormat().bitCount() == sizeof(T) * 8) {
    long const width = std::min(pels.width(), static_cast<long>(desc.width())) * bytes;
    long const height = std::min(pels.height(), static_cast<long>(desc.height()));
    long const stride = pels.rowStride() * bytes;
    if (toSurface) {
      cf_PelCopyVid(desc.surface(), desc.pitch(), pels.pointToOffset(), stride, width, height);
    } else {
      pels.mutating();
      cf_PelCopyVid(pels.pointToOffset(), stride, desc.surface(), desc.pitch(), width, height);
    }
  }
  static_cast<void>(surface.unlock());
}

}  // namespace

ccWin32PelBufUIScope::ccWin32PelBufUIScope(ccPelBuffer<unsigned char>& pels)
    : ccWin32UIScope(nullptr, ccPair<long>(), false, nullptr)
{
  makeWindow_();
  static_cast<void>(buffer(pels));
}

ccWin32PelBufUIScope::ccWin32PelBufUIScope(ccPelBuffer<unsigned short>& pels)
    : ccWin32UIScope(nullptr, ccPair<long>(), false, nullptr)
{
  makeWindow_();
  static_cast<void>(buffer(pels));
}

ccWin32PelBufUIScope::~ccWin32PelBufUIScope()
{
  static_cast<void>(destroy());
  if (hidden_)
    plat::platform().windows.destroy(hidden_);
}

// Surfaces need a window to belong to; this one is never shown.
void ccWin32PelBufUIScope::makeWindow_()
{
  plat::WindowDesc desc;
  desc.style = plat::style::top;
  desc.rect = plat::Rect{0, 0, 10, 10};
  hidden_ = plat::platform().windows.create(desc);
}

long ccWin32PelBufUIScope::buffer(ccPelBuffer<unsigned char>& pels)
{
  pels8_ = pels;
  pels16_.setUnbound();
  long const result = create(hidden_, pels.size(), 8);
  rsync();
  return result;
}

long ccWin32PelBufUIScope::buffer(ccPelBuffer<unsigned short>& pels)
{
  pels16_ = pels;
  pels8_.setUnbound();
  long const result = create(hidden_, pels.size(), 16);
  rsync();
  return result;
}

void ccWin32PelBufUIScope::rsync()
{
  stopDrawPhase();
  copyRows(drawing_, pels8_, true);
  copyRows(drawing_, pels16_, true);
}

void ccWin32PelBufUIScope::sync()
{
  stopDrawPhase();
  copyRows(drawing_, pels8_, false);
  copyRows(drawing_, pels16_, false);
}
