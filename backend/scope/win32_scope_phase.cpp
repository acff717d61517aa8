// The draw phase around every operation, what changed, the way to the screen, and the drag's backup surface.
#include "backend/scope/win32_scope_phase.h"

#include "canvas/image_converter.h"
#include "foundation/rounding.h"
#include "foundation/thread.h"
#include "platform/paint.h"
#include "platform/window.h"

#include <algorithm>

namespace {

plat::Rect toRect(ccUIRect const& r)
{
  return plat::Rect{static_cast<plat::i32>(r.left()), static_cast<plat::i32>(r.top()), static_cast<plat::i32>(r.right()),
                    static_cast<plat::i32>(r.bottom())};
}

}  // namespace

// --- Draw phase

ccWin32UIScope::cs_Standing ccWin32UIScope::standing_() { return cs_Standing{parent_, rect_, place_()}; }

void ccWin32UIScope::stand_(cs_Standing const& s)
{
  place_(s.place);
  if (parent_)
    setRect_(s.rect);
}

// A call that a redraw makes on a scope in the midst of another is one of its own.
ccWin32UIScope::cc_Call::cc_Call(ccWin32UIScope& scope)
    : scope_(scope), outer_(scope.call_),
      whole_(outer_ && outer_->whole_->redraws_ == scope.root_().redraws_ ? outer_->whole_ : this)
{
  if (whole_ != this)
    return;
  called_ = scope.standing_();
  redraws_ = scope.root_().redraws_;
  scope.call_ = this;
}

ccWin32UIScope::cc_Call::~cc_Call()
{
  if (whole_ != this)
    return;
  scope_.call_ = outer_;
  if (moved_)
    scope_.stand_(after_);
}

bool ccWin32UIScope::cc_Call::settle()
{
  if (whole_ != this)
    return whole_->settle();
  if (scope_.parent_ != called_.parent || scope_.root_().redraws_ == redraws_)
    return false;
  redraws_ = scope_.root_().redraws_;
  after_ = scope_.standing_();
  moved_ = true;
  scope_.stand_(called_);
  return true;
}

ccWin32UIScope::cc_Phase::cc_Phase(ccWin32UIScope& scope, DrawMethod method) : call_(scope), scope_(scope)
{
  static_cast<void>(restart(method));
}

ccWin32UIScope::cc_Phase::~cc_Phase()
{
  if (leftOpen_)
    return;
  scope_.win32DrawStop();
  call_.settle();
}

bool ccWin32UIScope::cc_Phase::restart(DrawMethod method)
{
  ccWin32UIScope const* const parent = scope_.parent_;
  started_ = scope_.win32DrawStart(method) && scope_.parent_ == parent;
  if (call_.settle() && started_)
    scope_.setUpPainter_();
  if (started_)
    target_ = scope_.target_();
  return started_;
}

bool ccWin32UIScope::win32DrawStart(DrawMethod method) { return parent_ ? startChild_(method) : startRoot_(method); }

bool ccWin32UIScope::startRoot_(DrawMethod method)
{
  ccWin32UIScope* const active = display_ ? displayActiveLockedScope_(display_) : nullptr;
  if (active && active != this)
    active->win32DrawStop_();
  if (method != kNoPhase && method_ == method && (!display_ || displayActiveLockedScope_(display_) == this)) {
    if (phaseUser_ != this)
      setUpPainter_();
    return true;
  }
  if (method_ != kNoPhase)
    win32DrawStop_();
  return win32DrawStart_(method);
}

// Children of one root share its lock or device context. Only for the one that set it up last does a phase count as running.
bool ccWin32UIScope::startChild_(DrawMethod method)
{
  bool const running = method_ == method && parent_->method_ == method && parent_->phaseUser_ == this;
  if (running && method != kNoPhase &&
      (!parent_->display_ || displayActiveLockedScope_(parent_->display_) == parent_))
    return true;
  if (method_ != kNoPhase)
    win32DrawStop_();
  return win32DrawStart_(method);
}

bool ccWin32UIScope::win32DrawStart_(DrawMethod method)
{
  method_ = kNoPhase;
  if (parent_) {
    if (rect_.isNull() || !parent_->win32DrawStart(method))
      return false;
    method_ = method;
    setUpPainter_();
    return true;
  }
  if (rect_.isNull() || (surfacesLost_() && !restoreLostSurfaces_()) || !ddraw_.created())
    return false;
  abandonPhase_();  // what a redraw after a restoration has left open
  // Without a backup surface nobody could take an animated picture away again.
  if (dragActive_ && dragAnimate_ && !backup_.created())
    return false;
  if (!takeTarget_(method, drawsToBackup_() ? backup_ : drawing_))
    return false;
  method_ = method;
  setUpPainter_();
  if (method != kBlit && display_)
    displayActiveLockedScope_(display_, this);
  return true;
}

// Everything that a drawing goes by is read from the surface here, and nowhere else.
bool ccWin32UIScope::takeTarget_(DrawMethod method, ccDirectDrawSurface& surface)
{
  cs_Target t;
  t.surface = &surface;
  if (method == kBlit) {
    if (!surface.created())
      return false;
  } else if (method == kPaint) {
    long const result = surface.getDC(&t.dc);
    redrawDue_ |= result == ceDDOutOfMemory;
    if (result != ceDDOk || !t.dc)
      return false;
    t.painter = plat::painter(t.dc);
  } else if (method != kDirect || surface.lock() != ceDDOk || !surface.description().surface()) {
    return false;
  }
  ccDirectDrawSurfaceDesc const& desc = surface.description();
  t.pels = method == kDirect ? desc.surface() : nullptr;
  t.pitch = desc.pitch();
  t.depth = depthCode_(desc.pixelFormat());
  t.bytesPerPel = static_cast<long>(desc.pixelFormat().bitCount() / 8);
  t.bounds = rect_ & ccUIRect(0, 0, static_cast<long>(desc.width()), static_cast<long>(desc.height()));
  phase_ = t;
  depth_ = t.depth;
  return true;
}

// Of the root's running phase, what this scope draws on.
ccWin32UIScope::cs_Target ccWin32UIScope::target_() const
{
  cs_Target t = root_().phase_;
  t.bounds &= rect_;
  if (t.pels && !t.bounds.isNull())
    t.pels += rect_.top() * t.pitch + rect_.left() * t.bytesPerPel;
  t.bounds = t.bounds.isNull() ? ccUIRect() : t.bounds - rect_.ul();
  return t;
}

void ccWin32UIScope::setUpPainter_()
{
  ccWin32UIScope& root = root_();
  root.phaseUser_ = this;
  plat::Painter* const painter = root.phase_.painter;
  if (!painter)
    return;
  painter->viewportOrigin(plat::Point{static_cast<plat::i32>(rect_.left()), static_cast<plat::i32>(rect_.top())});
  plat::Rect const clip = toRect(clipToDisplay_(rect_));
  painter->clip(parent_ ? &clip : nullptr);
}

// What of the scope lies on its root's surface as that is now.
ccUIRect ccWin32UIScope::ownRect_() const
{
  ccUIRect const cut = rect_ & root_().rect_;
  return cut.isNull() ? ccUIRect() : cut - rect_.ul();
}

ccUIRect ccWin32UIScope::clipToDisplay_(ccUIRect const& rootRect) const
{
  ccUIRect const clip = displayClipRect();
  return clip.isNull() ? rootRect : rootRect & clip;
}

void ccWin32UIScope::win32DrawStop()
{
  if (!root_().optimize_)
    win32DrawStop_();
}

void ccWin32UIScope::stopDrawPhase()
{
  if (root_().method_ != kNoPhase)
    root_().win32DrawStop_();
}

void ccWin32UIScope::win32DrawStop_()
{
  if (parent_) {
    method_ = kNoPhase;
    if (!parent_->optimize_)
      parent_->win32DrawStop_();
    return;
  }
  abandonPhase_();
  updateScreen();
}

// Ends a phase without bringing anything to the screen.
void ccWin32UIScope::abandonPhase_()
{
  if (parent_ || method_ == kNoPhase)
    return;
  long result = ceDDOk;
  if (method_ == kPaint)
    result = phase_.surface->releaseDC(phase_.dc);
  if (method_ == kDirect)
    result = phase_.surface->unlock();
  if (result != ceDDOk)
    incomplete_ = true;  // a surface that stays locked is as good as lost
  if (method_ != kBlit && display_ && displayActiveLockedScope_(display_) == this)
    displayActiveLockedScope_(display_, nullptr);
  phase_ = cs_Target();
  phaseUser_ = nullptr;
  method_ = kNoPhase;
}

void ccWin32UIScope::optimizeDrawing(bool on)
{
  if (parent_)
    return parent_->optimizeDrawing(on);
  optimize_ = on;
  if (!on && method_ != kNoPhase)
    win32DrawStop_();
}

// --- What changed

void ccWin32UIScope::win32Changed(ccUIRect rect)
{
  ccWin32UIScope& root = root_();
  if (parent_)
    rect += rect_.ul();
  (root.dragActive_ && !root.dragAnimate_ ? root.backupDirty_ : root.dragDirty_) |= rect;
  root.invalidateScreen(rect);
  modified(true);
}

void ccWin32UIScope::report_(ccUIRect const& rect, bool isOpaque)
{
  if ((stateBits() & (kAllChanged | kRecording)) != kAllChanged)
    change(rect, isOpaque);
}

void ccWin32UIScope::invalidateScreen(ccUIRect const& rect)
{
  root_().invalid_ |= (parent_ ? rect + rect_.ul() : rect) & rect_;
}

void ccWin32UIScope::lockScreenUpdatesPush(bool on)
{
  if (parent_)
    return parent_->lockScreenUpdatesPush(on);
  bool const before = screenLock_.top();
  screenLock_.push(on);
  if (before && !on)
    updateScreen();
}

bool ccWin32UIScope::lockScreenUpdatesPop()
{
  if (parent_)
    return parent_->lockScreenUpdatesPop();
  bool const before = screenLock_.top();
  screenLock_.pop();
  if (before && !screenLock_.top())
    updateScreen();
  return before;
}

bool ccWin32UIScope::screenUpdatesLocked() const { return root_().screenLock_.top(); }

// --- The way to the screen

void ccWin32UIScope::updateScreen()
{
  if (parent_)
    return parent_->updateScreen();
  if (surfacesLost_() && !restoreLostSurfaces_())
    return;
  if (redrawDue_ && !screenLock_.top())
    callRedraw_();
  if (invalid_.isNull() || !ddraw_.created())
    return;
  if (dragActive_ && !backupDirty_.isNull() && !mergeBackup_(backupDirty_))
    return;
  if (screenLock_.top())
    return;
  plat::WindowSystem& windows = plat::platform().windows;
  plat::Rect const area = windows.clientRect(window_);
  if (area.empty())
    return;
  plat::Point const ul = windows.clientToScreen(window_, plat::Point{area.left, area.top});
  plat::Point const lr = windows.clientToScreen(window_, plat::Point{area.right, area.bottom});
  ccUIRect const client = ccUIRect::fromEdges(ul.x, ul.y, lr.x, lr.y);
  ccUIRect const visible = invalid_ & ccUIRect(scroll_, ccPair<long>(area.width(), area.height()));
  if (visible.isNull())
    return;
  // The components of the scroll stand crossed against the axes, and that is meant.
  ccUIRect const dest = visible + client.ul() + ccPair<long>(scroll_.y(), scroll_.x());
  if (updateByMode_(client, visible, dest))
    invalid_ = ccUIRect();
}

// True once nothing is left to present.
bool ccWin32UIScope::updateByMode_(ccUIRect const& client, ccUIRect const& source, ccUIRect const& dest)
{
  if (chromaKeyingEnabled()) {
    if ((chromaFlags_ & kOverlay) == 0)
      return combine_(drawing_, graphics_, combined_, source, dest);
    if ((chromaFlags_ & (kOverlayUYVY | kOverlayYUY2)) != 0)
      convertToYuv_();
    // Before the overlay's update: when that falls back to other surfaces, what is drawn anew is invalid again.
    invalid_ = ccUIRect();
    updateHardwareOverlay_(client);
    return false;
  }
  if (!partnerScope_)
    return present_(drawing_, source, dest);
  // While the picture is keyed, the keyed colour's layer is the one in front and the window shows that composition only.
  if (partnerScope_->chromaKeyingEnabled())
    return true;
  if (!partnerReady_())
    return false;
  ccDirectDrawSurface* const target = combineTarget_();
  if (!target)
    return present_(drawing_, source, dest);
  return overlayPlane_ ? combine_(partnerScope_->drawing_, drawing_, *target, source, dest)
                       : combine_(drawing_, partnerScope_->drawing_, *target, source, dest);
}

// The surface that both layers are put together on; null when neither of them is an overlay plane.
ccDirectDrawSurface* ccWin32UIScope::combineTarget_()
{
  if (overlayPlane_)
    return &combined_;
  return partnerScope_ && partnerScope_->overlayPlane_ ? &partnerScope_->combined_ : nullptr;
}

// The other layer's surfaces are whole, and of one format with ours.
bool ccWin32UIScope::partnerReady_()
{
  ccWin32UIScope& other = *partnerScope_;
  if (other.surfacesLost_() && !other.restoreLostSurfaces_())
    return false;
  auto const differs = [this, &other] {
    ccDirectDrawSurface const* const target = combineTarget_();
    long const depth = depthCode_(drawing_.description().pixelFormat());
    return depth != depthCode_(other.drawing_.description().pixelFormat()) ||
           (target && target->created() && depth != depthCode_(target->description().pixelFormat()));
  };
  if (!differs())
    return true;
  // The screen has changed under one of them.
  return !restoring_ && rebuildSurfaces_() && other.rebuildSurfaces_() && !differs();
}

// Each blit is cut by what its surfaces hold, as the layers are sized one after the other.
bool ccWin32UIScope::combine_(ccDirectDrawSurface& below, ccDirectDrawSurface& above, ccDirectDrawSurface& target,
                              ccUIRect const& source, ccUIRect const& dest)
{
  if (!target.created() || !below.created() || !above.created())
    return false;
  ccUIRect const all = source & target.bounds();
  ccUIRect const under = all & below.bounds(), over = all & above.bounds();
  if (!under.isNull() && target.blt(&below, under, under, ceBltWait) != ceDDOk)
    return false;
  if (!over.isNull() && target.blt(&above, over, over, ceBltWait | ceBltKeySource) != ceDDOk)
    return false;
  return all.isNull() || present_(target, all, all + (dest.ul() - source.ul()));
}

bool ccWin32UIScope::present_(ccDirectDrawSurface& from, ccUIRect const& source, ccUIRect const& dest)
{
  constexpr std::uint32_t blockBegin = 1;
  if (!waitForVerticalBlank_)
    return ddraw_.primary().blt(&from, source, dest, ceBltWait) == ceDDOk;
  cePriority const former = cfGetThreadPriority();
  cfSetThreadPriority(cePriorityTimeCritical);
  static_cast<void>(ddraw_.WaitForVerticalBlank(blockBegin));
  long const result = ddraw_.primary().blt(&from, source, dest, ceBltWait);
  cfSetThreadPriority(former);
  return result == ceDDOk;
}

void ccWin32UIScope::convertToYuv_()
{
  if (graphics_.lock() != ceDDOk)
    return;
  if (drawing_.lock() == ceDDOk) {
    ccDirectDrawSurfaceDesc const& from = drawing_.description();
    ccDirectDrawSurfaceDesc const& to = graphics_.description();
    unsigned short* const pels = static_cast<unsigned short*>(to.record().pels);
    long const w = static_cast<long>(std::min(from.width(), to.width()));
    long const h = static_cast<long>(std::min(from.height(), to.height()));
    if (from.surface() && pels) {
      if ((chromaFlags_ & kOverlayUYVY) != 0)
        ccImageConverter::convert8ToUYVY(from.surface(), pels, w, h, from.pitch(), to.pitch());
      else
        ccImageConverter::convert8ToYUY2(from.surface(), pels, w, h, from.pitch(), to.pitch());
    }
    static_cast<void>(drawing_.unlock());
  }
  static_cast<void>(graphics_.unlock());
}

// Along one axis: what of the scope the overlay shows, and how much of the screen it takes.
namespace {

struct cs_OverlayAxis {
  long from = 0;    // first visible pel of the scope
  long extent = 0;  // stands as the far edge of the source, without `from` added
  long shown = 0;   // pels on the screen
};

cs_OverlayAxis overlayAxis(long clientEdge, long scroll, long scopeExtent, long destEdge, long destExtent, long screenEnd)
{
  cs_OverlayAxis a;
  a.from = (clientEdge < 0 ? -clientEdge : 0) - (scroll < 0 ? scroll : 0);
  a.extent = std::max(scopeExtent - a.from, 0L);
  if (destExtent < a.extent) {
    a.extent = ceilTL(static_cast<double>(destExtent));
    if (destEdge + a.extent > screenEnd)
      --a.extent;
  }
  a.shown = std::min(a.extent, destExtent);
  return a;
}

}  // namespace

void ccWin32UIScope::updateHardwareOverlay_(ccUIRect const& client)
{
  plat::WindowSystem& windows = plat::platform().windows;
  plat::Rect const desktop = windows.clientRect(windows.desktop());
  ccUIRect const screen = ccUIRect::fromEdges(desktop.left, desktop.top, desktop.right, desktop.bottom);
  ccUIRect const shifted =
      ccUIRect::fromEdges(client.left() + std::max(scroll_.x(), 0L), client.top() + std::max(scroll_.y(), 0L),
                          client.right(), client.bottom());
  ccUIRect const on = shifted & screen;
  cs_OverlayAxis const x =
      overlayAxis(client.left(), scroll_.x(), rect_.width(), on.left(), on.width(), screen.right());
  cs_OverlayAxis const y = overlayAxis(client.top(), scroll_.y(), rect_.height(), on.top(), on.height(), screen.bottom());
  ccUIRect const source = ccUIRect::fromEdges(x.from, y.from, x.extent, y.extent);
  ccUIRect const dest(on.left(), on.top(), x.shown, y.shown);
  constexpr std::uint32_t showByDestKey = 0x4400;
  bool const yuv = (chromaFlags_ & (kOverlayUYVY | kOverlayYUY2)) != 0;
  long const result = ddraw_.primary().updateOverlay(yuv ? graphics_ : drawing_, source, dest, showByDestKey);
  if (result != ceDDOutOfCaps && result != ceDDNoOverlayHW)
    return;
  chromaFlags_ |= kOverlayUnusable;
  static_cast<void>(resize(rect_.sz(), -1));
  callRedraw_();
}

// --- Drag

// From the backup to the drawing surface; clears the rectangle.
bool ccWin32UIScope::mergeBackup_(ccUIRect& dirty)
{
  ccUIRect const r = dirty & rect_;
  if (!r.isNull() && drawing_.blt(&backup_, r, r, ceBltWait) != ceDDOk)
    return false;
  dirty = ccUIRect();
  return true;
}

bool ccWin32UIScope::copyToBackup_() { return backup_.blt(&drawing_, rect_, rect_, ceBltWait) == ceDDOk; }

void ccWin32UIScope::dragStart()
{
  if (parent_)
    return parent_->dragStart();
  stopDrawPhase();
  dragActive_ = true;
  if (!drawing_.created())
    return;
  // Without a true copy there is nothing to bring back, so the picture is then not touched by the drag.
  if (createSurface_(backup_, rect_.sz(), depth_, false) != ceDDOk || !copyToBackup_())
    static_cast<void>(backup_.release());
  backupDirty_ = dragDirty_ = eraseFailed_ = ccUIRect();
}

void ccWin32UIScope::dragErase()
{
  if (parent_)
    return parent_->dragErase();
  stopDrawPhase();
  ccUIRect const r = (dragDirty_ | invalid_ | eraseFailed_) & rect_;
  if (r.isNull())
    return;
  if (backup_.created()) {
    eraseFailed_ = r;
    static_cast<void>(mergeBackup_(eraseFailed_));
  }
  invalidateScreen(r);
  dragDirty_ = ccUIRect();
}

void ccWin32UIScope::dragStop()
{
  if (parent_)
    return parent_->dragStop();
  stopDrawPhase();
  dragActive_ = false;
  if (backup_.created()) {
    // What a blit could not do before, before the true picture goes.
    eraseFailed_ |= backupDirty_;
    ccUIRect const late = eraseFailed_;
    static_cast<void>(mergeBackup_(eraseFailed_));
    invalidateScreen(late);
    static_cast<void>(backup_.release());
  }
  backupDirty_ = eraseFailed_ = ccUIRect();
  invalidateScreen(dragDirty_);
  dragDirty_ = ccUIRect();
  updateScreen();
}

void ccWin32UIScope::dragAnimate(bool on)
{
  ccWin32UIScope& root = root_();
  if (root.dragActive_ && root.dragAnimate_ != on)
    root.stopDrawPhase();  // it draws to the other surface
  root.dragAnimate_ = on;
}
