#include "apps/krsview/viewer.h"

#include "apps/common/json.h"
#include "apps/common/picture_file.h"
#include "apps/krsview/show_image.h"
#include "platform/testing.h"
#include "platform/window.h"

#include <algorithm>
#include <ostream>

namespace fs = std::filesystem;

namespace {

constexpr plat::u32 kTopStyle = 0x00CF0000;    // a frame with title, size border and boxes
constexpr plat::u32 kChildStyle = 0x40000000;
constexpr int kShow = 5, kShowChild = 4;

// The top window's client area and the view in it keep the same size.
plat::LResult cf_topProc(HWND window, unsigned message, plat::WParam wParam, plat::LParam lParam)
{
  return plat::platform().windows.callProc(nullptr, window, message, wParam, lParam);
}

char const* cf_typeName(ceImageFormat format)
{
  return format == ceImageFormatGrey8 ? "grey8" : format == ceImageFormatGrey16 ? "grey16" : "rgb";
}

}  // namespace

ccViewer::ccViewer(ccViewOptions const& options, std::ostream& errors) : options_(options), errors_(errors)
{
  plat::WindowSystem& windows = plat::platform().windows;
  plat::WindowDesc desc;
  desc.title = "krsview";
  desc.style = kTopStyle;
  desc.rect = {0, 0, static_cast<plat::i32>(options.width), static_cast<plat::i32>(options.height)};
  desc.proc = &cf_topProc;
  top_ = windows.create(desc);
  view_ = top_;
  if (options.scrollBars) {
    desc.parent = top_;
    desc.style = kChildStyle;
    view_ = windows.create(desc);
    windows.place(view_, nullptr, kShowChild);
  }
  windows.place(top_, nullptr, kShow);
  display_ = std::make_unique<ccWin32Display>(view_);
  if (options.scrollBars)
    display_->showScrollBar(true, true);
}

ccViewer::~ccViewer()
{
  display_.reset();
  plat::platform().windows.destroy(top_);
}

void ccViewer::fail_(std::string const& line)
{
  anyFailed_ = true;
  errors_ << "krsview: " << line << "\n";
}

void ccViewer::open(std::vector<std::string> const& names)
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
      fail_(name + ": no images in this directory");
    for (fs::path const& file : folder.files)
      entries_.push_back({file, cs_Entry::unread});
  }
  for (std::size_t i = 0; i < entries_.size() && !current_; ++i)
    show_(i);
}

bool ccViewer::show_(std::size_t index)
{
  cs_Entry& entry = entries_[index];
  if (entry.state == cs_Entry::bad)
    return false;
  auto file = std::make_unique<ccImageFile>(cfReadImageFile(entry.path));
  if (!*file) {
    entry.state = cs_Entry::bad;
    fail_(file->error);
    return false;
  }
  entry.state = cs_Entry::good;
  bool const first = !current_;
  current_ = std::move(file);
  index_ = index;
  cfShowImage(*display_, *current_);
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
    ccImageFile const file = cfReadImageFile(entry.path);
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
  info.set("overlay", "none");
  info.set("visible", ccJson::array().push(left).push(top).push(right - left).push(bottom - top));
  return info.write();
}

std::string ccViewer::writeShot(std::string const& file) const
{
  plat::Size size;
  std::vector<plat::u32> const pels = plat::testing::shot(top_, size);
  return cfWritePng(file, size.w, size.h, pels.data());
}
