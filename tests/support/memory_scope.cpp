#include "tests/support/memory_scope.h"

#include "canvas/format.h"
#include "canvas/rle_buffer.h"
#include "geometry/lines.h"

#include <algorithm>
#include <cstddef>

struct MemoryScope::Root {
  ccPair<long> size;
  int depth = 32;
  Plane plane = imagePlane;
  std::vector<std::uint32_t> surface, backup, screen;
  std::vector<ccRGB> colors, imageColors;
  ccUIRect invalid, dragDirty, backupDirty;
  bool dragging = false;
  bool animating = false;
  bool optimize = false;
  ccFlagStack locks;
  long presentations = 0;
  std::vector<ccUIRect> presented;
  std::vector<Call> log;
  bool logging = true;

  ccUIRect rect() const { return ccUIRect(ccPair<long>(), size); }
  bool toBackup() const { return dragging && !animating; }
  std::size_t at(long x, long y) const { return static_cast<std::size_t>(y * size.x() + x); }

  void allocate(ccPair<long> const& s)
  {
    size = ccPair<long>(std::max(s.x(), 0L), std::max(s.y(), 0L));
    std::size_t const count = static_cast<std::size_t>(size.x() * size.y());
    surface.assign(count, 0);
    backup.assign(count, 0);
    screen.assign(count, 0);
    invalid = dragDirty = backupDirty = ccUIRect();
  }

  void copy(std::vector<std::uint32_t> const& from, std::vector<std::uint32_t>& to, ccUIRect const& r) const
  {
    ccUIRect const cut = r & rect();
    for (long y = cut.top(); y < cut.bottom(); ++y)
      for (long x = cut.left(); x < cut.right(); ++x)
        to[at(x, y)] = from[at(x, y)];
  }

  void present()
  {
    if (invalid.isNull())
      return;
    if (dragging && !backupDirty.isNull()) {
      copy(backup, surface, backupDirty);
      backupDirty = ccUIRect();
    }
    if (locks.top())
      return;
    copy(surface, screen, invalid);
    if (logging) {
      presented.push_back(invalid);
      ++presentations;
    }
    invalid = ccUIRect();
  }
};

namespace {

constexpr std::size_t kMapEntries = 256;

// Unmapped pels stay out of the twenty system entries and the reserved ones of a palette.
unsigned char defaultIndex(unsigned char v)
{
  return std::clamp<unsigned char>(v, 10, 240);
}

std::vector<ccRGB> startColors()
{
  std::vector<ccRGB> map;
  for (unsigned i = 0; i < kMapEntries; ++i)
    map.push_back(ccColor(static_cast<unsigned char>(i)).toRGB());
  return map;
}

std::vector<ccRGB> startImageColors()
{
  std::vector<ccRGB> map;
  for (unsigned i = 0; i < kMapEntries; ++i) {
    unsigned char const grey = static_cast<unsigned char>(i);
    map.push_back(ccRGB(grey, grey, grey));
  }
  return map;
}

std::vector<std::string> textLines(std::string const& text)
{
  std::vector<std::string> lines(1);
  for (char c : text)
    if (c == '\n')
      lines.emplace_back();
    else
      lines.back() += c;
  return lines;
}

ccRGB packedRGB(ccPackedRGB16Pel p)
{
  return ccRGB(p.red(), p.green(), p.blue());
}

ccRGB packedRGB(ccPackedRGB32Pel p)
{
  return ccRGB(p.red(), p.green(), p.blue());
}

// Floor of the quotient for a positive divisor.
std::int64_t floorDiv(std::int64_t a, std::int64_t b)
{
  return a >= 0 ? a / b : -((-a + b - 1) / b);
}

std::vector<ccRGB> compose(MemoryScope const& image, MemoryScope const& overlay,
                           std::vector<std::uint32_t> const& below, std::vector<std::uint32_t> const& above)
{
  std::vector<ccRGB> seen(std::min(below.size(), above.size()));
  for (std::size_t i = 0; i < seen.size(); ++i)
    seen[i] = above[i] == overlay.keyValue() ? image.toRGB(below[i]) : overlay.toRGB(above[i]);
  return seen;
}

}  // namespace

MemoryScope::MemoryScope(ccPair<long> const& size, int depth, Plane plane)
    : ccUIScope(size), root_(std::make_shared<Root>())
{
  root_->depth = depth;
  root_->plane = plane;
  root_->colors = startColors();
  root_->imageColors = startImageColors();
  root_->allocate(size);
}

MemoryScope::MemoryScope(std::shared_ptr<Root> const& root) : ccUIScope(ccPair<long>()), root_(root) {}

MemoryScope::~MemoryScope() = default;

int MemoryScope::depth() const
{
  return root_->depth;
}

std::uint32_t MemoryScope::pel(long x, long y) const
{
  return root_->rect().within(ccPair<long>(x, y)) ? root_->surface[root_->at(x, y)] : 0;
}

std::uint32_t MemoryScope::screenPel(long x, long y) const
{
  return root_->rect().within(ccPair<long>(x, y)) ? root_->screen[root_->at(x, y)] : 0;
}

std::vector<std::uint32_t> const& MemoryScope::surface() const
{
  return root_->surface;
}

std::vector<std::uint32_t> const& MemoryScope::screen() const
{
  return root_->screen;
}

std::vector<std::string> MemoryScope::picture(ccUIRect const& r, std::map<std::uint32_t, char> const& legend) const
{
  std::vector<std::string> rows;
  for (long y = r.top(); y < r.bottom(); ++y) {
    std::string row;
    for (long x = r.left(); x < r.right(); ++x) {
      auto const found = legend.find(pel(x, y));
      row += found == legend.end() ? '?' : found->second;
    }
    rows.push_back(row);
  }
  return rows;
}

std::uint32_t MemoryScope::value(ccColor const& c) const
{
  if (root_->depth == 8)
    return c.flags() & ccColor::kIndex ? c.index() : nearestColor(c, root_->colors).index();
  return fromRGB_(c.flags() & ccColor::kRGB ? c.toRGB() : root_->colors[c.index()]);
}

std::uint32_t MemoryScope::keyValue() const
{
  return value(ccColor::passColor());
}

ccRGB MemoryScope::toRGB(std::uint32_t v) const
{
  auto const byte = [](std::uint32_t bits) { return static_cast<unsigned char>(bits & 0xFF); };
  switch (root_->depth) {
  case 8: return root_->colors[v & 0xFF];
  case 15: return ccRGB(byte(v >> 7 & 0xF8), byte(v >> 2 & 0xF8), byte(v << 3 & 0xF8));
  case 16: return ccRGB(byte(v >> 8 & 0xF8), byte(v >> 3 & 0xFC), byte(v << 3 & 0xF8));
  default: return ccRGB(byte(v >> 16), byte(v >> 8), byte(v));
  }
}

ccUIRect MemoryScope::invalidRect() const
{
  return root_->invalid;
}

long MemoryScope::presentations() const
{
  return root_->presentations;
}

std::vector<ccUIRect> const& MemoryScope::presented() const
{
  return root_->presented;
}

std::vector<MemoryScope::Call> const& MemoryScope::log() const
{
  return root_->log;
}

long MemoryScope::calls(std::string const& kind) const
{
  return std::count_if(root_->log.begin(), root_->log.end(), [&](Call const& c) { return c.kind == kind; });
}

void MemoryScope::clearLog()
{
  root_->log.clear();
  root_->presented.clear();
  root_->presentations = 0;
}

void MemoryScope::keepLog(bool on)
{
  root_->logging = on;
}

void MemoryScope::poison(std::uint32_t v)
{
  std::fill(root_->surface.begin(), root_->surface.end(), v);
  std::fill(root_->backup.begin(), root_->backup.end(), v);
  std::fill(root_->screen.begin(), root_->screen.end(), v);
}

void MemoryScope::resize(ccPair<long> const& size)
{
  root_->allocate(size);
  setSize_(root_->size);
}

ccUIRect MemoryScope::rootRect() const
{
  return ccUIRect(origin_, size());
}

bool MemoryScope::isDragging() const
{
  return root_->dragging;
}

void MemoryScope::window(ccUIScope const& parent, ccUIRect const& localRect)
{
  MemoryScope const& above = dynamic_cast<MemoryScope const&>(parent);
  root_ = above.root_;
  origin_ = above.origin_ + localRect.ul();
}

ccUIScope* MemoryScope::createChildScope(ccUIRect const& r, bool asSubset)
{
  std::unique_ptr<MemoryScope> child(new MemoryScope(root_));
  if (asSubset)
    child->subset(*this, r);
  else
    child->move(*this, r);
  call_("createChildScope");
  return child.release();
}

void MemoryScope::dragStart()
{
  call_("dragStart");
  root_->backup = root_->surface;
  root_->dragging = true;
  root_->animating = false;
  root_->dragDirty = root_->backupDirty = ccUIRect();
}

void MemoryScope::dragStop()
{
  call_("dragStop");
  root_->dragging = false;
  root_->invalid |= root_->dragDirty;
  root_->dragDirty = ccUIRect();
  root_->present();
}

void MemoryScope::dragErase()
{
  call_("dragErase");
  if (!root_->dragging)
    return;
  ccUIRect const r = root_->dragDirty | root_->invalid;
  root_->copy(root_->backup, root_->surface, r);
  root_->invalid |= r;
  root_->dragDirty = ccUIRect();
}

void MemoryScope::dragAnimate(bool on)
{
  call_(on ? "dragAnimateOn" : "dragAnimateOff");
  root_->animating = on;
}

void MemoryScope::lockScreenUpdatesPush(bool on)
{
  call_("lockPush");
  bool const before = root_->locks.top();
  root_->locks.push(on);
  if (before && !on)
    updateScreen();
}

bool MemoryScope::lockScreenUpdatesPop()
{
  call_("lockPop");
  if (root_->locks.depth() == 0)
    return false;
  bool const before = root_->locks.pop();
  if (before && !root_->locks.top())
    updateScreen();
  return before;
}

bool MemoryScope::screenUpdatesLocked() const
{
  return root_->locks.top();
}

void MemoryScope::invalidateScreen(ccUIRect const& r)
{
  root_->invalid |= (r + origin_) & root_->rect();
}

void MemoryScope::updateScreen()
{
  call_("updateScreen");
  root_->present();
}

void MemoryScope::optimizeDrawing(bool on)
{
  call_(on ? "optimizeOn" : "optimizeOff");
  (origin_ == ccPair<long>() && size() == root_->size ? root_->optimize : optimize_) = on;
  if (!on)
    finish_();
}

void MemoryScope::draw(ccGenShape const&, ccColor const& c)
{
  call_("genShape", ccUIRect(), ccGraphicProps(c, 1, ceSolidPen, false));
}

void MemoryScope::draw(ccEllipseArc const&, ccGraphicProps const& props)
{
  call_("ellipseArc", ccUIRect(), props);
}

void MemoryScope::draw(ccEllipse const&, ccGraphicProps const& props)
{
  call_("ellipse", ccUIRect(), props);
}

void MemoryScope::draw(ccPolygon const&, ccGraphicProps const& props)
{
  call_("polygon", ccUIRect(), props);
}

void MemoryScope::draw(ccGraphic const&, ccGraphicProps const& props)
{
  call_("graphic", ccUIRect(), props);
}

void MemoryScope::draw(ccPolyline const&, ccGraphicProps const& props)
{
  call_("polyline", ccUIRect(), props);
}

void MemoryScope::draw(ccGenRect const&, ccGraphicProps const& props)
{
  call_("genRect", ccUIRect(), props);
}

void MemoryScope::draw(ccEllipseArc2 const&, ccGraphicProps const& props)
{
  call_("ellipseArc2", ccUIRect(), props);
}

void MemoryScope::draw(ccEllipse2 const&, ccGraphicProps const& props)
{
  call_("ellipse2", ccUIRect(), props);
}

void MemoryScope::draw(ccLineSeg const& line, ccGraphicProps const& props)
{
  line_(ccPair<long>(xCoord(line.p1()), yCoord(line.p1())), ccPair<long>(xCoord(line.p2()), yCoord(line.p2())), props);
}

void MemoryScope::draw(ccPoint const& p, ccGraphicProps const& props)
{
  ccPair<long> const at(xCoord(p), yCoord(p));
  line_(at, at, props);
}

void MemoryScope::draw(ccRLEBuffer const& image, ccPoint const& at, std::vector<ccColor> const& map, bool transparent,
                       unsigned char key)
{
  std::vector<unsigned char> indices;
  for (ccColor const& c : map)
    indices.push_back(c.flags() & ccColor::kIndex ? c.index() : nearestColor(c, root_->colors).index());
  draw(image, at, indices, transparent, key);
}

void MemoryScope::draw(ccRLEBuffer const& image, ccPoint const& at, std::vector<unsigned char> const& map,
                       bool transparent, unsigned char key)
{
  long const left = xCoord(at);
  long const top = yCoord(at);
  ccUIRect const r = ccUIRect(left, top, image.width(), image.height()) & ccUIRect(ccPair<long>(), size());
  for (long y = r.top(); y < r.bottom(); ++y) {
    long x = left;
    for (unsigned char const* run = image.row(y - top); run[1] != 0; run += 2)
      for (int i = 0; i < run[1]; ++i, ++x) {
        if (transparent && run[0] == key)
          continue;
        unsigned char const index = run[0] < map.size() ? map[run[0]] : run[0];
        put_(x, y, root_->depth == 8 ? index : fromRGB_(root_->colors[index]), true);
      }
  }
  call_("rle", r);
  touched_(r, !transparent);
  finish_();
}

void MemoryScope::draw(ccPelBuffer_const<ccPackedRGB32Pel> const& image, ccPoint const& at, bool transparent,
                       std::uint32_t key)
{
  pels_("drawRGB32", image, ccPair<long>(xCoord(at), yCoord(at)), transparent, ccPackedRGB32Pel(key), false,
        [this](ccPackedRGB32Pel p) { return fromRGB_(packedRGB(p)); });
}

void MemoryScope::draw(ccPelBuffer_const<ccPackedRGB16Pel> const& image, ccPoint const& at, bool transparent,
                       std::uint16_t key)
{
  pels_("drawRGB16", image, ccPair<long>(xCoord(at), yCoord(at)), transparent, ccPackedRGB16Pel(key), false,
        [this](ccPackedRGB16Pel p) { return fromRGB_(packedRGB(p)); });
}

void MemoryScope::draw(ccPelBuffer_const<unsigned short> const& image, ccPoint const& at, bool transparent,
                       unsigned short key)
{
  pels_("draw16", image, ccPair<long>(xCoord(at), yCoord(at)), transparent, key, false,
        [this](unsigned short v) { return from16_(v); });
}

void MemoryScope::draw(ccPelBuffer_const<unsigned char> const& image, ccPoint const& at, bool transparent,
                       unsigned char key, bool mapped)
{
  pels_("draw8", image, ccPair<long>(xCoord(at), yCoord(at)), transparent, key, true,
        [this, mapped](unsigned char v) { return from8_(v, mapped); });
}

void MemoryScope::draw(std::string const& text, ccPoint const& at, ccColor const& fore, ccColor const& back,
                       ccUIFormat const& format)
{
  ccUIRect const block = textBlock_(text, at, format);
  if (!back.isPass())
    box_(block, value(back));
  std::uint32_t const ink = value(fore);
  std::vector<std::string> const lines = textLines(text);
  for (std::size_t row = 0; row < lines.size(); ++row)
    for (std::size_t column = 0; column < lines[row].size(); ++column)
      if (lines[row][column] != ' ')
        box_(ccUIRect(block.left() + static_cast<long>(column) * kCellWidth,
                      block.top() + static_cast<long>(row) * kCellHeight + 1, kCellWidth - 1, kCellHeight - 2),
             ink);
  ccUIRect const seen = block & ccUIRect(ccPair<long>(), size());
  call_("text", seen, ccGraphicProps(fore, 1, ceSolidPen, false), text);
  touched_(seen, true);
  finish_();
}

ccUIRect MemoryScope::textRect(std::string const& text, ccPoint const& at, ccUIFormat const& format, ccUIRect& clipped)
{
  ccUIRect const block = textBlock_(text, at, format);
  clipped = (block & ccUIRect(ccPair<long>(), size())) + clientOffset();
  if (block.isNull())
    clipped = ccUIRect();
  return block.isNull() ? ccUIRect() : block + clientOffset();
}

void MemoryScope::sample(ccPelBuffer_const<ccPackedRGB32Pel> const& image, ccPoint const& at,
                         ccPair<double> const& scale, bool transparent, std::uint32_t key)
{
  if (scale.x() > 0 && scale.y() > 0)
    scaled_("sampleRGB32", image, at, scale, transparent, ccPackedRGB32Pel(key), false, cc_TabletEnums::interpolateNone,
            [this](ccPackedRGB32Pel p) { return fromRGB_(packedRGB(p)); });
}

void MemoryScope::sample(ccPelBuffer_const<ccPackedRGB16Pel> const& image, ccPoint const& at,
                         ccPair<double> const& scale, bool transparent, std::uint16_t key)
{
  if (scale.x() > 0 && scale.y() > 0)
    scaled_("sampleRGB16", image, at, scale, transparent, ccPackedRGB16Pel(key), false, cc_TabletEnums::interpolateNone,
            [this](ccPackedRGB16Pel p) { return fromRGB_(packedRGB(p)); });
}

void MemoryScope::sample(ccPelBuffer_const<unsigned short> const& image, ccPoint const& at, ccPair<double> const& scale,
                         bool transparent, unsigned short key)
{
  if (scale.x() > 0 && scale.y() > 0)
    scaled_("sample16", image, at, scale, transparent, key, false, cc_TabletEnums::interpolateNone,
            [this](unsigned short v) { return from16_(v); });
}

void MemoryScope::sample(ccPelBuffer_const<unsigned char> const& image, ccPoint const& at, ccPair<double> const& scale,
                         bool transparent, unsigned char key, bool mapped)
{
  if (scale.x() > 0 && scale.y() > 0)
    scaled_("sample8", image, at, scale, transparent, key, true, cc_TabletEnums::interpolateNone,
            [this, mapped](unsigned char v) { return from8_(v, mapped); });
}

void MemoryScope::expand(ccPelBuffer_const<ccPackedRGB32Pel> const& image, ccPoint const& at,
                         ccPair<double> const& scale, bool transparent, std::uint32_t key, InterpolationModes mode)
{
  if (scale.x() >= 1 && scale.y() >= 1)
    scaled_("expandRGB32", image, at, scale, transparent, ccPackedRGB32Pel(key), false, mode,
            [this](ccPackedRGB32Pel p) { return fromRGB_(packedRGB(p)); });
}

void MemoryScope::expand(ccPelBuffer_const<ccPackedRGB16Pel> const& image, ccPoint const& at,
                         ccPair<double> const& scale, bool transparent, std::uint16_t key, InterpolationModes mode)
{
  if (scale.x() >= 1 && scale.y() >= 1)
    scaled_("expandRGB16", image, at, scale, transparent, ccPackedRGB16Pel(key), false, mode,
            [this](ccPackedRGB16Pel p) { return fromRGB_(packedRGB(p)); });
}

void MemoryScope::expand(ccPelBuffer_const<unsigned short> const& image, ccPoint const& at, ccPair<double> const& scale,
                         bool transparent, unsigned short key, InterpolationModes mode)
{
  if (scale.x() >= 1 && scale.y() >= 1)
    scaled_("expand16", image, at, scale, transparent, key, false, mode, [this](unsigned short v) { return from16_(v); });
}

void MemoryScope::expand(ccPelBuffer_const<unsigned char> const& image, ccPoint const& at, ccPair<double> const& scale,
                         bool transparent, unsigned char key, bool mapped, InterpolationModes mode)
{
  if (scale.x() >= 1 && scale.y() >= 1)
    scaled_("expand8", image, at, scale, transparent, key, true, mode,
            [this, mapped](unsigned char v) { return from8_(v, mapped); });
}

void MemoryScope::set(ccUIRect const& r, ccColor const& c)
{
  ccUIRect const local = (r - clientOffset()) & ccUIRect(ccPair<long>(), size());
  if (!c.isPass() || root_->plane == overlayPlane)
    box_(local, value(c));
  call_("set", local, ccGraphicProps(c, 1, ceSolidPen, true));
  touched_(local, true);
  finish_();
}

void MemoryScope::set(ccColor const& c)
{
  set(ccUIRect(clientOffset(), size()), c);
  allChange();
  opaque(true);
}

void MemoryScope::fill(ccPoint const&, ccColor const& color, ccColor const&, bool)
{
  call_("fill", ccUIRect(), ccGraphicProps(color, 1, ceSolidPen, true));
}

void MemoryScope::drawTo(ccPoint const& p, ccGraphicProps const& props)
{
  line_(currentPoint(), ccPair<long>(xCoord(p), yCoord(p)), props);
  drawStart(p);
}

void MemoryScope::drawToRel(long dx, long dy, ccGraphicProps const& props)
{
  line_(currentPoint(), currentPoint() + ccPair<long>(dx, dy), props);
  moveToRel(dx, dy);
}

void MemoryScope::colorMap(std::vector<ccRGB> const& map)
{
  call_("colorMap");
  std::copy_n(map.begin(), std::min(map.size(), kMapEntries), root_->colors.begin());
}

void MemoryScope::colorMapEx(std::vector<ccRGB> const& map)
{
  call_("colorMapEx");
  root_->imageColors = map;
}

void MemoryScope::call_(char const* kind, ccUIRect const& local, ccGraphicProps const& props, std::string const& text)
{
  if (root_->logging)
    root_->log.push_back(Call{kind, local.isNull() ? ccUIRect() : local + origin_, props, text});
}

void MemoryScope::touched_(ccUIRect const& local, bool isOpaque)
{
  if (local.isNull())
    return;
  ccUIRect const r = local + origin_;
  (root_->toBackup() ? root_->backupDirty : root_->dragDirty) |= r;
  root_->invalid |= r & root_->rect();
  change(local, isOpaque);
}

void MemoryScope::finish_()
{
  if (!optimize_ && !root_->optimize)
    root_->present();
}

void MemoryScope::put_(long x, long y, std::uint32_t v, bool obeysDisplayClip)
{
  if (x < 0 || y < 0 || x >= size().x() || y >= size().y())
    return;
  ccPair<long> const at = ccPair<long>(x, y) + origin_;
  if (obeysDisplayClip && !displayClipRect().isNull() && !displayClipRect().within(at))
    return;
  (root_->toBackup() ? root_->backup : root_->surface)[root_->at(at.x(), at.y())] = v;
}

void MemoryScope::box_(ccUIRect const& local, std::uint32_t v)
{
  ccUIRect const r = local & ccUIRect(ccPair<long>(), size());
  for (long y = r.top(); y < r.bottom(); ++y)
    for (long x = r.left(); x < r.right(); ++x)
      put_(x, y, v, true);
}

// Both ends are painted. Along the longer axis one pel for each step; where the line passes exactly between two pels the one
// of the smaller coordinate is taken. A wider pen stamps a square at each step.
void MemoryScope::line_(ccPair<long> from, ccPair<long> to, ccGraphicProps const& props)
{
  constexpr long kReach = 1L << 29;
  for (ccPair<long>* p : {&from, &to})
    *p = ccPair<long>(std::clamp(p->x(), -kReach, kReach), std::clamp(p->y(), -kReach, kReach));
  std::uint32_t const ink = value(props.penColor());
  long const width = std::max(props.penWidth(), 1L);
  long const before = (width - 1) / 2;
  ccPair<long> const d = to - from;
  bool const steep = std::abs(d.y()) > std::abs(d.x());
  std::int64_t const length = std::max(std::abs(d.x()), std::abs(d.y()));
  std::int64_t const minor = steep ? d.x() : d.y();
  long const way = (steep ? d.y() : d.x()) < 0 ? -1 : 1;
  // Only the steps at which something may lie inside.
  std::int64_t const start = steep ? from.y() : from.x(), extent = steep ? size().y() : size().x();
  std::int64_t const first = way > 0 ? -width - start : start - extent - width;
  for (std::int64_t k = std::max<std::int64_t>(first, 0); k <= std::min(length, first + extent + 2 * width); ++k) {
    // The smallest whole number not below the exact offset less one half.
    std::int64_t const across = length == 0 ? 0 : -floorDiv(length - 2 * k * minor, 2 * length);
    long const along = way * static_cast<long>(k);
    long const x = from.x() + (steep ? static_cast<long>(across) : along);
    long const y = from.y() + (steep ? along : static_cast<long>(across));
    if (x < -width || y < -width || x > size().x() + width || y > size().y() + width)
      continue;
    for (long v = 0; v < width; ++v)
      for (long u = 0; u < width; ++u)
        put_(x - before + u, y - before + v, ink, true);
  }
  ccUIRect const r = ccUIRect::fromEdges(std::min(from.x(), to.x()) - before, std::min(from.y(), to.y()) - before,
                                         std::max(from.x(), to.x()) - before + width,
                                         std::max(from.y(), to.y()) - before + width) &
                     ccUIRect(ccPair<long>(), size());
  call_("line", r, props);
  touched_(r, false);
  finish_();
}

std::uint32_t MemoryScope::fromRGB_(ccRGB const& c) const
{
  switch (root_->depth) {
  case 8: return nearestColor(c, root_->colors).index();
  case 15: return c.rgb15();
  case 16: return c.rgb16();
  default: return static_cast<std::uint32_t>(c.r << 16 | c.g << 8 | c.b);
  }
}

std::uint32_t MemoryScope::from8_(unsigned char v, bool mapped) const
{
  unsigned char const index = mapped ? v : defaultIndex(v);
  if (root_->depth == 8)
    return index;
  return fromRGB_(index < root_->imageColors.size() ? root_->imageColors[index] : ccRGB());
}

std::uint32_t MemoryScope::from16_(unsigned short v) const
{
  // Pels beyond a short map take its last colour.
  std::vector<ccRGB> const& map = root_->imageColors;
  return fromRGB_(map.empty() ? ccRGB() : map[std::min<std::size_t>(v, map.size() - 1)]);
}

ccUIRect MemoryScope::textBlock_(std::string const& text, ccPoint const& at, ccUIFormat const& format) const
{
  if (text.empty())
    return ccUIRect();
  std::size_t longest = 0;
  std::vector<std::string> const lines = textLines(text);
  for (std::string const& line : lines)
    longest = std::max(longest, line.size());
  return format.alignRect(ccUIRect(xCoord(at), yCoord(at), static_cast<long>(longest) * kCellWidth,
                                   static_cast<long>(lines.size()) * kCellHeight));
}

template <class T, class Value>
void MemoryScope::pels_(char const* kind, ccPelBuffer_const<T> const& image, ccPair<long> const& at, bool transparent,
                        T key, bool displayClip, Value const& toValue)
{
  ccUIRect r = ccUIRect(at, image.size()) & ccUIRect(ccPair<long>(), size());
  // Pels of 16 bits have no place on an indexed surface.
  if (std::is_same_v<T, unsigned short> && root_->depth == 8)
    r = ccUIRect();
  for (long y = r.top(); y < r.bottom(); ++y)
    for (long x = r.left(); x < r.right(); ++x) {
      T const pel = *image.pelAddress(image.offset().x() + x - at.x(), image.offset().y() + y - at.y());
      if (!transparent || !(pel == key))
        put_(x, y, toValue(pel), displayClip);
    }
  call_(kind, r);
  touched_(r, !transparent);
  finish_();
}

template <class T, class Value>
void MemoryScope::scaled_(char const* kind, ccPelBuffer_const<T> const& image, ccPoint const& at,
                          ccPair<double> const& scale, bool transparent, T key, bool displayClip,
                          InterpolationModes mode, Value const& toValue)
{
  ccUIRect clip(ccPair<long>(), size());
  ccPelBuffer<T> out;
  pelScale(image, out, scale.x(), clip, ccPair<long>(xCoord(at), yCoord(at)), mode);
  pels_<T>(kind, out, out.offset(), transparent, key, displayClip, toValue);
}

std::vector<ccRGB> cfComposedScreens(MemoryScope const& image, MemoryScope const& overlay)
{
  return compose(image, overlay, image.screen(), overlay.screen());
}

std::vector<ccRGB> cfComposedSurfaces(MemoryScope const& image, MemoryScope const& overlay)
{
  return compose(image, overlay, image.surface(), overlay.surface());
}
