// Live display on a scope that has no live machine: nothing runs, and the picture is that of the cache surface.
#include "backend/scope/win32_scope.h"

bool ccWin32UIScope::startLiveDisplay(ccAcqFifo*, ccWin32Display*, ccLiveDisplayProps const*) { return false; }
void ccWin32UIScope::stopLiveDisplay() {}
double ccWin32UIScope::liveFrameRate() const { return root_().lastFrameRate_; }
unsigned char ccWin32UIScope::liveStatus() const { return root_().lastLiveStatus_; }
void ccWin32UIScope::magChange(double) {}

ccDirectDrawSurface* ccWin32UIScope::getCacheSurface() { return &root_().cache_; }

ccPair<long> ccWin32UIScope::getCacheSize() const
{
  ccDirectDrawSurface const& cache = root_().cache_;
  if (!cache.created())
    return ccPair<long>();
  return ccPair<long>(static_cast<long>(cache.description().width()), static_cast<long>(cache.description().height()));
}
