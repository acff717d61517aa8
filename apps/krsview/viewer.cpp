#include "apps/krsview/viewer.h"

#include "apps/common/error_line.h"
#include "apps/common/json.h"
#include "apps/common/picture_file.h"
#include "apps/krsview/show_image.h"
#include "platform/app.h"
#include "platform/messages.h"
#include "platform/objects.h"
#include "platform/testing.h"
#include "platform/window.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <ostream>

namespace fs = std::filesystem;

namespace {

constexpr plat::uptr kQuitTimer = 40;

// The whole factors that zooming steps through; their inverses are the reductions.
constexpr long kFactors[] = {1, 2, 3, 4, 6, 8, 12, 16, 24, 32, 48, 64, 96, 128, 192, 256, 384, 512, 1024};

double cf_nextMag(double from, int direction)
{
  double best = from;
  auto const consider = [&](double m) {
    bool const beyond = direction > 0 ? m > from * 1.000001 : m < from * 0.999999;
    if (beyond && (best == from || std::abs(m - from) < std::abs(best - from)))
      best = m;
  };
  for (long f : kFactors) {
    consider(static_cast<double>(f));
    consider(1.0 / static_cast<double>(f));
  }
  return best;
}

// Windows and their viewers.
std::map<HWND, ccViewer*>& cf_viewers()
{
  static std::map<HWND, ccViewer*> map;
  return map;
}

char const* cf_typeName(ceImageFormat format)
{
  return format == ceImageFormatGrey8 ? "grey8" : format == ceImageFormatGrey16 ? "grey16" : "rgb";
}

char const* cf_overlayName(ccDisplay::overlayState state)
{
  return state == ccDisplay::overlayOn ? "plane" : state == ccDisplay::chromaOn ? "chroma" : "none";
}

}  // namespace

ccViewer::ccViewer(ccViewOptions const& options, std::ostream& errors) : options_(options), errors_(errors)
{
  plat::WindowSystem& windows = plat::platform().windows;
  plat::WindowDesc desc;
  desc.title = "krsview";
  desc.style = plat::style::top;
  desc.rect = {0, 0, static_cast<plat::i32>(options.width()), static_cast<plat::i32>(options.height())};
  desc.proc = &ccViewer::proc_;
  top_ = windows.create(desc);
  view_ = top_;
  if (options.scrollBars) {
    desc.parent = top_;
    desc.style = plat::style::child;
    view_ = windows.create(desc);
    windows.place(view_, nullptr, plat::show::noActivate);
  }
  cf_viewers()[top_] = this;
  cf_viewers()[view_] = this;
  plat::dropHandler([this](HWND, std::vector<std::string> const& names) { drop_(names); });
  windows.place(top_, nullptr, plat::show::activate);
  windows.setFocus(view_);
  display_ = std::make_unique<ccWin32Display>(view_);
  if (options.scrollBars)
    display_->showScrollBar(true, true);
  display_->mouseMode(static_cast<ccDisplay::MouseMode>(options.mode));
  auto const overlay = options.overlay.value_or(options.gallery ? ccViewOptions::plane : ccViewOptions::noOverlay);
  if (overlay == ccViewOptions::plane)
    display_->enableOverlay(ccDisplay::overlayOn);
  else if (overlay == ccViewOptions::chroma)
    display_->enableOverlay(ccDisplay::chromaOn);
  if (options.quitAfter)
    windows.setTimer(top_, kQuitTimer, static_cast<unsigned>(*options.quitAfter * 1000));
  if (options.gallery) {
    gallery_ = std::make_unique<ccGallery>(*display_);
    applyView_();
  }
}

ccViewer::~ccViewer()
{
  plat::dropHandler({});
  gallery_.reset();
  display_.reset();
  for (HFONT font : fonts_)
    plat::platform().objects.deleteFont(font);
  plat::platform().windows.destroy(top_);
  cf_viewers().erase(top_);
  cf_viewers().erase(view_);
}

// ---- Messages that the display passes on ----

plat::LResult ccViewer::proc_(HWND window, unsigned message, plat::WParam wParam, plat::LParam lParam)
{
  auto const found = cf_viewers().find(window);
  return found == cf_viewers().end() ? plat::platform().windows.callProc(nullptr, window, message, wParam, lParam)
                                     : found->second->message_(window, message, wParam, lParam);
}

plat::LResult ccViewer::message_(HWND window, unsigned message, plat::WParam wParam, plat::LParam lParam)
{
  plat::WindowSystem& windows = plat::platform().windows;
  switch (message) {
  case plat::msg::size:
    if (window == top_ && view_ != top_ && windows.isWindow(view_)) {
      plat::Rect const client = windows.clientRect(top_);
      windows.place(view_, &client, plat::show::keep);
    }
    break;
  case plat::msg::close:
    plat::quit(0);
    return 0;
  case plat::msg::timer:
    if (wParam == kQuitTimer) {
      plat::quit(0);
      return 0;
    }
    break;
  case plat::msg::keyDown:
    if (key_(static_cast<unsigned>(wParam)))
      return 0;
    break;
  case plat::msg::character:
    if (character_(static_cast<unsigned>(wParam)))
      return 0;
    break;
  case plat::msg::wheel: {
    int const turn = static_cast<std::int16_t>(static_cast<std::uint16_t>(wParam >> 16));
    plat::Point const origin = windows.clientToScreen(view_, {0, 0});
    ccPair<long> const at(static_cast<std::int16_t>(lParam & 0xFFFF) - origin.x,
                          static_cast<std::int16_t>((lParam >> 16) & 0xFFFF) - origin.y);
    int const notches = turn / plat::msg::wheelNotch;
    zoom(notches != 0 ? notches : (turn > 0) - (turn < 0), at);
    return 0;
  }
  default:
    break;
  }
  return windows.callProc(nullptr, window, message, wParam, lParam);
}

bool ccViewer::showPage(std::string const& name)
{
  if (!gallery_ || !gallery_->show(name))
    return false;
  applyView_();
  return true;
}

// In the gallery, space bar and arrows turn pages as the page keys do.
bool ccViewer::turnPage_(long by)
{
  if (!gallery_)
    return false;
  if (gallery_->show(gallery_->page() + by))
    applyView_();
  return true;
}

bool ccViewer::key_(unsigned virtualKey)
{
  switch (virtualKey) {
  case ccKeyboardEvent::vkPageDown:
    if (!turnPage_(1))
      step(1);
    return true;
  case ccKeyboardEvent::vkPageUp:
    if (!turnPage_(-1))
      step(-1);
    return true;
  case plat::key::space:
    return turnPage_(1);
  case ccKeyboardEvent::vkLeft:
    if (!turnPage_(-1))
      panBy(-1, 0);
    return true;
  case ccKeyboardEvent::vkRight:
    if (!turnPage_(1))
      panBy(1, 0);
    return true;
  case ccKeyboardEvent::vkUp:
    panBy(0, -1);
    return true;
  case ccKeyboardEvent::vkDown:
    panBy(0, 1);
    return true;
  default:
    return false;
  }
}

bool ccViewer::character_(unsigned c)
{
  ccPair<long> const area = display_->clientArea();
  ccPair<long> const middle(area.x() / 2, area.y() / 2);
  switch (c) {
  case '+':
    zoom(1, middle);
    return true;
  case '-':
    zoom(-1, middle);
    return true;
  case '0':
    display_->fit();
    break;
  case '1':
    display_->mag(1);
    break;

  case 'p':
  case 'P':
    display_->mouseMode(ccDisplay::pointerMode);
    return true;
  case 'a':
  case 'A':
    display_->mouseMode(ccDisplay::panMode);
    return true;
  case 'i':
  case 'I':
    display_->mouseMode(ccDisplay::zoomInMode);
    return true;
  case 'o':
  case 'O':
    display_->mouseMode(ccDisplay::zoomOutMode);
    return true;
  case 'q':
  case 'Q':
    plat::quit(0);
    return true;
  default:
    return false;
  }
  return true;
}

void ccViewer::zoom(int steps, ccPair<long> const& at)
{
  // The hand may be at work on it.
  if (display_->dragging())
    return;
  double m = display_->magExact();
  for (int i = 0; i < std::abs(steps); ++i)
    m = cf_nextMag(m, steps);
  // The middle of the pel that is pointed at.
  ccPoint const pointed(static_cast<double>(at.x()) + 0.5, static_cast<double>(at.y()) + 0.5);
  display_->lockScreenUpdatesPush(true, ccUITablet::bothLayers);
  ccPoint const before = display_->displayToImage(pointed);
  display_->magExact(m);
  ccPoint const after = display_->displayToImage(pointed);
  display_->pan(display_->pan() + (after - before));
  display_->lockScreenUpdatesPop(ccUITablet::bothLayers);
}

void ccViewer::panBy(int columns, int rows)
{
  ccPair<long> const area = display_->clientArea();
  display_->panDelta(ccPair<long>(-columns * std::max(area.x() / 10, 1L), -rows * std::max(area.y() / 10, 1L)));
}

void ccViewer::resize(long width, long height)
{
  plat::WindowSystem& windows = plat::platform().windows;
  plat::Rect r = windows.windowRect(top_);
  r.right = r.left + static_cast<plat::i32>(width);
  r.bottom = r.top + static_cast<plat::i32>(height);
  windows.place(top_, &r, plat::show::keep);
}

void ccViewer::fail_(std::string const& line)
{
  anyFailed_ = true;
  errors_ << "krsview: " << line << "\n";
}

void ccViewer::draw(std::vector<ccDrawing> const& drawings)
{
  bool usesOverlay = false;
  for (ccDrawing const& drawing : drawings)
    usesOverlay = usesOverlay || drawing.usesOverlay();
  if (usesOverlay && !options_.overlay)
    display_->enableOverlay(ccDisplay::overlayOn);
  for (ccDrawing const& drawing : drawings) {
    if (drawing.clientFromImage())
      clientFromImage_ = *drawing.clientFromImage();
    std::vector<HFONT> const made = cfShowDrawing(*display_, drawing);
    fonts_.insert(fonts_.end(), made.begin(), made.end());
  }
}

void ccViewer::open(std::vector<std::string> const& names)
{
  list_(names);
  for (std::size_t i = 0; i < entries_.size() && !current_; ++i)
    show_(i);
}

void ccViewer::list_(std::vector<std::string> const& names)
{
  for (std::string const& name : names) {
    std::error_code error;
    if (!fs::is_directory(name, error)) {
      entries_.push_back({name, cs_Entry::unread});
      continue;
    }
    ccImageFolder const folder = cfListImageFiles(name);
    if (!folder.error.empty())
      fail_(folder.error);
    else if (folder.files.empty())
      fail_(cf_errorLine(name, "no images in this directory"));
    for (fs::path const& file : folder.files)
      entries_.push_back({file, cs_Entry::unread});
  }
}

// Dropped files take the place of the list.
void ccViewer::drop_(std::vector<std::string> const& names)
{
  std::vector<cs_Entry> const former = entries_;
  std::size_t const formerIndex = index_;
  entries_.clear();
  list_(names);
  for (std::size_t i = 0; i < entries_.size(); ++i)
    if (show_(i)) {
      applyView_();
      return;
    }
  entries_ = former;
  index_ = formerIndex;
}

bool ccViewer::show_(std::size_t index)
{
  cs_Entry& entry = entries_[index];
  if (entry.state == cs_Entry::bad)
    return false;
  auto file = std::make_unique<ccImageFile>(cfReadImageFile(entry.path, trust_()));
  if (!*file) {
    entry.state = cs_Entry::bad;
    fail_(file->error);
    return false;
  }
  entry.state = cs_Entry::good;
  bool const first = !current_;
  current_ = std::move(file);
  index_ = index;
  cfShowImage(*display_, *current_, clientFromImage_);
  if (first)
    applyView_();
  return true;
}

void ccViewer::applyView_()
{
  if (options_.fit == ccViewOptions::fitWhole)
    display_->fit();
  else if (options_.fit == ccViewOptions::fitExact)
    display_->fitExact();
  if (options_.mag)
    display_->mag(*options_.mag);
  if (options_.pan)
    display_->pan(ccVector<2>(options_.pan->first, options_.pan->second));
}

bool ccViewer::step(long by)
{
  long const count = static_cast<long>(entries_.size());
  for (long i = static_cast<long>(index_) + by; i >= 0 && i < count; i += by)
    if (show_(static_cast<std::size_t>(i)))
      return true;
  return false;
}

void ccViewer::checkTheRest()
{
  for (cs_Entry& entry : entries_) {
    if (entry.state != cs_Entry::unread)
      continue;
    ccImageFile const file = cfReadImageFile(entry.path, trust_());
    entry.state = file ? cs_Entry::good : cs_Entry::bad;
    if (!file)
      fail_(file.error);
  }
}

std::string ccViewer::info() const
{
  ccWin32Display& display = *display_;
  ccPair<long> const size = display.imageSize();
  ccPoint const ul = display.displayToImage(ccPoint(0, 0));
  ccPoint const lr = display.displayToImage(ccPoint(display.clientArea()));
  long const left = std::clamp(floorTL(ul.x()), 0L, size.x()), right = std::clamp(ceilTL(lr.x()), left, size.x());
  long const top = std::clamp(floorTL(ul.y()), 0L, size.y()), bottom = std::clamp(ceilTL(lr.y()), top, size.y());

  ccJson info = ccJson::object();
  info.set("file", current_ ? ccJson(entries_[index_].path.string()) : ccJson());
  info.set("width", size.x());
  info.set("height", size.y());
  info.set("type", current_ ? ccJson(cf_typeName(current_->format)) : ccJson());
  info.set("bits", current_ ? current_->bits : 0);
  info.set("depth", display.imageScope().depth());
  info.set("mag", display.mag());
  info.set("magExact", display.magExact());
  info.set("pan", ccJson::array().push(display.pan().x()).push(display.pan().y()));
  info.set("overlay", cf_overlayName(display.enableOverlay()));
  info.set("visible", ccJson::array().push(left).push(top).push(right - left).push(bottom - top));
  if (gallery_) {
    info.set("page", gallery_->name());
    info.set("title", gallery_->title());
  }
  return info.write();
}

std::string ccViewer::writeShot(std::string const& file) const
{
  plat::Size size;
  std::vector<plat::u32> const pels = plat::testing::shot(top_, size);
  return cfWritePng(file, size.w, size.h, pels.data());
}
