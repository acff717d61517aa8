// What must hold after each step of a storm.
#include "tests/storm/noisy.h"
#include "ui/shapes/frame_sizer.h"

#include <algorithm>

using Layers = ccUITablet::Layers;

namespace {

constexpr plat::u32 kMinimized = 0x20000000;

// Pels of another format than the screen's aren't drawn, so what stands in their place is anything.
bool cfImageFits(NoisyDisplay const& d, int depth)
{
  return (!d.image16().isBound() || depth != 8) && (!d.imageRGB16().isBound() || depth == 16) &&
         (!d.imageRGB32().isBound() || depth == 32);
}

std::string cfText(plat::Size s) { return std::to_string(s.w) + "x" + std::to_string(s.h); }

bool standsInDisplay(ccUIObject const& node)
{
  for (ccUIObject const* up = node.parent(); up; up = up->parent())
    if (dynamic_cast<ccDisplay const*>(up))
      return true;
  return false;
}

}  // namespace

void StormStage::check_()
{
  bool const former = std::exchange(quiet_, true);
  checkLocks_();
  if (failure_.empty())
    checkTrees_();
  if (failure_.empty() && stepNumber_ % lookEvery_ == 0)
    checkPictures_();
  quiet_ = former;
}

void StormStage::checkLocks_()
{
  if (ccUIObject::uiMutex().lockedByMe())
    fail_("lock", "uiMutex is held");
  if (ccUIObject::orphanMutex().lockedByMe())
    fail_("lock", "orphanMutex is held");
  if (ccWin32Display::listMutex().lockedByMe())
    fail_("lock", "listMutex is held");
  for (std::size_t i = 0; i < kDisplays; ++i) {
    NoisyDisplay* const d = displays_[i];
    if (!d)
      continue;
    std::string const name = "display " + std::to_string(i);
    if (d->rootMutex().lockedByMe())
      fail_("lock", "the root's mutex is held by " + name);
    if (d->imageScope().screenUpdatesLocked() || (d->overlayScope() && d->overlayScope()->screenUpdatesLocked()))
      fail_("lock", "the screen of " + name + " is locked");
    if (d->drawingDisabled())
      fail_("lock", "drawing is disabled in " + name);
    // An image of 16-bit pels on a surface of 8 leaves its phase running.
    if (d->activeLockedScope() && !d->image16().isBound())
      fail_("lock", "a surface of " + name + " is locked or lends its context");
    if (d->window() && !plat::platform().windows.isWindow(d->window()))
      fail_("lists", name + " stands on a window that is gone");
  }
}

void StormStage::checkTrees_()
{
  std::size_t const count = static_cast<std::size_t>(
      std::count_if(displays_.begin(), displays_.end(), [](NoisyDisplay const* d) { return d != nullptr; }));
  if (ccUIRootObject::roots().size() != count)
    fail_("lists", std::to_string(ccUIRootObject::roots().size()) + " roots for " + std::to_string(count) + " displays");
  for (NoisyDisplay* const d : displays_) {
    if (!d)
      continue;
    ccUIRootObject* const root = d->root();
    if (!root || !d->parent())
      return fail_("lists", "a display without root");
    checkNode_(*root, root, 0);
    if (root->eventProcessor()->gesture() != ccUIEventProcessor::Gesture::dragging)
      checkTablet_(*root);
    ccUIObject* const owner = root->eventProcessor()->owner();
    if (owner && owner != root && (std::find(nodes_.begin(), nodes_.end(), owner) != nodes_.end()) && owner->root() != root)
      fail_("lists", "the owner of a gesture belongs to another tree");
    if (root->eventProcessor()->gesture() == ccUIEventProcessor::Gesture::dragging)
      ++stats_.drags;
  }
  for (ccUIObject* const node : nodes_)
    if (!node->parent() && node->root())
      fail_("lists", "a node without parent has a root");
}

void StormStage::checkTablet_(ccUITablet& t)
{
  // A drag of the image holds the sizer. One that an exception of a hook has ended is cleared up by the next motion.
  bool const held = dynamic_cast<ccUIFrameSizer*>(&t) != nullptr;
  if (!held && t.drawEnabled_.depth() != 0 && t.drawEnabled_.bits() != 1)
    fail_("flags", "drawing is not enabled, depth " + std::to_string(t.drawEnabled_.depth()));
  if (t.overlayRepaint_.depth() != 0)
    fail_("flags", "overlayRepaint_ is " + std::to_string(t.overlayRepaint_.depth()) + " deep");
  if (t.layerRepaint_.depth() > 1)
    fail_("flags", "layerRepaint_ is " + std::to_string(t.layerRepaint_.depth()) + " deep");
  if (t.redrawLayer_ != ccUITablet::bothLayers)
    fail_("flags", "redrawLayer_ is " + std::to_string(static_cast<int>(t.redrawLayer_)));
  if (t.inAreaUpdate_)
    fail_("flags", "inAreaUpdate_");
  ccUITablet* before = nullptr;
  for (ccUITablet* kid = t.firstKid(); kid && failure_.empty(); kid = kid->nextSib()) {
    if (kid->parentTablet() != &t || kid->prevSib() != before)
      return fail_("lists", "links of tablets");
    checkTablet_(*kid);
    before = kid;
  }
}

// The node, its kids and the links between them; effective state worked out from above.
void StormStage::checkNode_(ccUIObject& node, ccUIRootObject* root, int state)
{
  bool const isRoot = &node == static_cast<ccUIObject*>(root);
  bool const up[3] = {isRoot || (state & 1), isRoot || (state & 2), isRoot || (state & 4)};
  bool const visible = up[0] && node.condVisible();
  bool const enabled = up[1] && node.condVisible() && node.condEnabled();
  bool const selected = up[2] && node.condVisible() && node.condEnabled() && node.condSelected();
  if (node.visible() != visible || node.enabled() != enabled || node.selected() != selected)
    return fail_("state", "effective state of a node");
  if (node.root() != (isRoot ? nullptr : root) || &node.rootMutex() != &root->mutex())
    return fail_("lists", "root of a node");
  // Opaque kids of a display are out of sight while the image is dragged, until the next motion if an exception ended that.
  if (ccUIFrame* const frame = node.frame(true))
    if (!isRoot && frame->ccUITablet::isShown() != visible && !(visible && standsInDisplay(node)))
      return fail_("state", "a frame's tablet is " + std::string(visible ? "hidden" : "shown"));
  long kids = 0;
  ccUIObject* before = nullptr;
  for (ccUIObject* kid = node.backKid(); kid && failure_.empty(); kid = kid->closerSib()) {
    if (kid->parent() != &node || kid->fartherSib() != before || kid->dying())
      return fail_("lists", "links of nodes");
    checkNode_(*kid, root, (visible ? 1 : 0) | (enabled ? 2 : 0) | (selected ? 4 : 0));
    before = kid;
    ++kids;
  }
  if (failure_.empty() && (node.frontKid() != before || node.numKids() != kids))
    fail_("lists", "first and last of the kids, or their number");
}

// ---- Pictures

bool StormStage::comparable_(NoisyDisplay& d) const
{
  plat::WindowSystem& windows = plat::platform().windows;
  HWND const w = d.window();
  if (!w || !cfImageFits(d, screenDepth_) || !windows.visible(w) || (windows.style(w) & kMinimized) || shared(w))
    return false;
  plat::Rect const client = windows.clientRect(w);
  return client.width() > 0 && client.height() > 0 &&
         d.root()->eventProcessor()->gesture() != ccUIEventProcessor::Gesture::dragging;
}

void StormStage::checkPictures_()
{
  long const before = stats_.pictures;
  for (NoisyDisplay* const d : displays_)
    if (d && failure_.empty() && comparable_(*d))
      checkPicture_(*d);
  if (stats_.pictures > before)
    ++stats_.compared;
}

void StormStage::checkPicture_(NoisyDisplay& d)
{
  HWND const window = d.window();
  d.root()->globalUpdate();
  plat::testing::drain();
  plat::Size size, sizeAfter;
  std::vector<std::uint32_t> const shown = plat::testing::shot(window, size);
  if (!d.chromaKeyingEnabled())
    checkThatItMoves_(d, size);
  d.root()->fullDraw(ccUITablet::bothLayers);
  d.root()->globalUpdate();
  plat::platform().windows.invalidate(window, nullptr, false);
  plat::testing::drain();
  std::vector<std::uint32_t> const whole = plat::testing::shot(window, sizeAfter);
  ++stats_.pictures;
  if (!(size == sizeAfter))
    return fail_("picture", "the window changed its size from " + cfText(size) + " to " + cfText(sizeAfter));
  auto const [a, b] = std::mismatch(shown.begin(), shown.end(), whole.begin());
  if (a == shown.end())
    return;
  auto const at = a - shown.begin();
  std::size_t different = 0;
  for (std::size_t i = 0; i < shown.size(); ++i)
    different += shown[i] != whole[i];
  char text[160];
  std::snprintf(text, sizeof text, "shows %06x at (%ld, %ld), a full repaint %06x; %zu pels of %s differ, depth %d", *a,
                static_cast<long>(at) % size.w, static_cast<long>(at) / size.w, *b, different, cfText(size).c_str(), screenDepth_);
  fail_("picture", text);
}

// Two equal pictures prove nothing if the screen is frozen: one colour over both layers must reach the glass.
void StormStage::checkThatItMoves_(NoisyDisplay& d, plat::Size size)
{
  ccColor const colors[] = {ccColor::redColor(), ccColor::blueColor()};
  std::uint32_t before = 0;
  for (int round = 0; round < 2; ++round) {
    {
      ccLock lock(d.rootMutex());
      d.imageScope().set(colors[round]);
      if (ccWin32UIScope* const overlay = d.overlayScope())
        overlay->set(colors[round]);
      d.imageScope().updateScreen();
    }
    plat::Size now;
    std::vector<std::uint32_t> const pels = plat::testing::shot(d.window(), now);
    ccPair<long> const covered = d.imageScope().size() - d.imageScope().scroll();
    long const w = std::min<long>(covered.x(), size.w), h = std::min<long>(covered.y(), size.h);
    if (!(now == size) || w <= 0 || h <= 0)
      return fail_("frozen", "nothing is covered");
    std::uint32_t const first = pels[0];
    bool const kidInFront = windows_[kWindows - 1] && plat::platform().windows.isWindow(windows_[kWindows - 1]);
    for (long y = 0; y < h && !kidInFront; ++y)
      for (long x = 0; x < w; ++x)
        if (pels[static_cast<std::size_t>(y * size.w + x)] != first)
          return fail_("frozen", "one colour doesn't fill the window: (" + std::to_string(x) + ", " + std::to_string(y) + ")");
    if (round == 1 && first == before && !kidInFront)
      return fail_("frozen", "two colours show the same");
    before = first;
  }
}
