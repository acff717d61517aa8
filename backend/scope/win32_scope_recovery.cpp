// Surfaces that were lost, or could not be made: which of them count, and how they come back.
#include "backend/scope/win32_scope.h"

#include <vector>

// Whether the present mode shows the surface or composes with it.
bool ccWin32UIScope::isUsed_(ccDirectDrawSurface const& s) const
{
  bool const overlay = (chromaFlags_ & kOverlay) != 0, yuv = (chromaFlags_ & (kOverlayUYVY | kOverlayYUY2)) != 0;
  if (&s == &graphics_)
    return chromaKeyingEnabled() && (!overlay || yuv);
  if (&s == &combined_)
    return chromaKeyingEnabled() ? !overlay : overlayPlane_;
  return true;
}

void ccWin32UIScope::releaseUnused_()
{
  for (ccDirectDrawSurface* const s : {&graphics_, &combined_})
    if (s->created() && !isUsed_(*s))
      static_cast<void>(s->release());
}

// A surface that the present mode needs and that could not be made.
bool ccWin32UIScope::isMissing_() const
{
  if (!ddraw_.created() || rect_.isNull())
    return false;
  return !drawing_.created() || (!graphics_.created() && isUsed_(graphics_)) || (!combined_.created() && isUsed_(combined_));
}

bool ccWin32UIScope::surfacesLost_() const
{
  if (parent_)
    return parent_->surfacesLost_();
  return deviceGone_ || incomplete_ || isMissing_() || ddraw_.primary().isLost() || drawing_.isLost() || cache_.isLost() ||
         backup_.isLost() || (isUsed_(graphics_) && graphics_.isLost()) || (isUsed_(combined_) && combined_.isLost());
}

bool ccWin32UIScope::attachScreen_()
{
  if (ddraw_.primary().restore() == ceDDOk || ddraw_.primary().recreate() == ceDDOk)
    return true;
  return restoreAll(nullptr) == ceDDOk;
}

// Whatever the redraw throws stays here, as drawing never throws; it is asked for again.
void ccWin32UIScope::callRedraw_()
{
  if (redrawing_) {
    redrawDue_ = true;  // what it has drawn so far is gone again
    return;
  }
  redrawing_ = true;
  redrawDue_ = false;
  ++redraws_;
  // The redraw comes in the midst of a drawing whose vertices these may be.
  std::vector<plat::Point> chain;
  chain.swap(chain_);
  try {
    if (redraw_)
      redraw_(redrawArgument_);
  } catch (...) {
    redrawDue_ = true;
  }
  chain.swap(chain_);
  redrawing_ = false;
}

bool ccWin32UIScope::restoreLostSurfaces_()
{
  if (restoring_)
    return false;
  if (deviceGone_) {
    if (restoreAll(nullptr) != ceDDOk)
      return false;
  } else if (!ddraw_.created()) {
    return false;
  } else if (!surfacesLost_()) {
    return true;
  }
  if (ddraw_.testCooperativeLevel() == ceDDExclusiveMode)
    return false;
  return rebuildSurfaces_();
}

bool ccWin32UIScope::rebuildSurfaces_()
{
  struct cs_Restoring {
    bool& flag;
    explicit cs_Restoring(bool& f) : flag(f) { flag = true; }
    ~cs_Restoring() { flag = false; }
  };
  {
    cs_Restoring const restoring(restoring_);
    abandonPhase_();
    if (!attachScreen_())
      return false;
    if (ddPalette_.created())
      static_cast<void>(ddPalette_.release());
    attachPalette_();
    static_cast<void>(resize(rect_.sz(), wantedDepth_));
    incomplete_ = attachClipper_() != ceDDOk;
    if (!chromaKeyingEnabled() && overlayPlane_)
      static_cast<void>(drawing_.bltColorFill(drawing_.bounds() & rect_, colorKey_.low(), ceBltWait));
    if (dragActive_)
      static_cast<void>(backup_.recreate());
    cachedRoot_ = 0;
    cachedHandle_ = nullptr;
    if (cache_.created())
      static_cast<void>(cache_.release());
    if (surfacesLost_())
      return false;
    readFormat_();
  }
  callRedraw_();
  if (dragActive_ && backup_.created()) {
    stopDrawPhase();
    // A redraw outside of an animation went to the backup surface.
    if (!(backupDirty_.isNull() || mergeBackup_(backupDirty_)) || !copyToBackup_())
      static_cast<void>(backup_.release());
  }
  return !surfacesLost_();
}
