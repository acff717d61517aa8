// Images onto the surface: unscaled, magnified, reduced, and the image cache.
#include "backend/scope/win32_scope_pel.h"

#include "backend/scope/row_kernels.h"
#include "foundation/pel_ops.h"
#include "foundation/rounding.h"
#include "foundation/thread.h"

#include <algorithm>
#include <limits>
#include <type_traits>

namespace {

template <class T> constexpr bool isPacked = !std::is_integral_v<T>;

// The depth at which an image of this type is blitted from the image cache; -1 for never.
template <class T> constexpr long blitDepth = -1;
template <> constexpr long blitDepth<unsigned char> = 8;
template <> constexpr long blitDepth<ccPackedRGB16Pel> = 16;
template <> constexpr long blitDepth<ccPackedRGB32Pel> = 32;

template <class T> std::uint32_t wordOf(T v)
{
  if constexpr (isPacked<T>)
    return v.word();
  else
    return v;
}

bool isFactor(double s) { return s > 0 && s <= std::numeric_limits<double>::max(); }

// Whether a scaled image is written straight into the surface: where that gives the pels of scaling it first.
bool canFuse(ccUIScope::InterpolationModes mode, double scale)
{
  return !(mode == cc_TabletEnums::interpolateLinear && scale > 1);
}
template <class T> T* rowAt(unsigned char* locked, std::int64_t y, long pitch, std::int64_t byteColumn)
{
  return static_cast<T*>(static_cast<void*>(locked + y * pitch + byteColumn));
}

}  // namespace

// --- Clip

template <class T>
ccWin32UIScope::cs_Clip ccWin32UIScope::clip_(ccPair<long> size, ccPair<long> pos, ccUIRect const& bounds) const
{
  cs_Clip c;
  std::int64_t const x = pos.x(), y = pos.y();
  c.dx = std::max<std::int64_t>(x, bounds.left());
  c.dy = std::max<std::int64_t>(y, bounds.top());
  c.sx = c.dx - x;
  c.sy = c.dy - y;
  c.w = std::min<std::int64_t>(size.x() - c.sx, bounds.right() - c.dx);
  c.h = std::min<std::int64_t>(size.y() - c.sy, bounds.bottom() - c.dy);
  if (c.w <= 0 || c.h <= 0)
    return c;
  ccUIRect const clip = displayClipRect();
  // Of the pel types only 8-bit ones obey the display clip.
  if (std::is_same_v<T, unsigned char> && !clip.isNull()) {
    ccUIRect const cut = clip & (ccUIRect(static_cast<long>(c.dx), static_cast<long>(c.dy), static_cast<long>(c.w),
                                          static_cast<long>(c.h)) +
                                 rect_.ul());
    if (cut.isNull())
      return c;
    std::int64_t const nx = cut.left() - rect_.left(), ny = cut.top() - rect_.top();
    c.sx += nx - c.dx;
    c.sy += ny - c.dy;
    c.dx = nx;
    c.dy = ny;
    c.w = cut.width();
    c.h = cut.height();
  }
  c.r = ccUIRect(static_cast<long>(c.dx), static_cast<long>(c.dy), static_cast<long>(c.w), static_cast<long>(c.h));
  return c;
}

// --- Writing into the locked surface

// A direct phase around write(target, clip), which may return false to leave without a trace. place(bounds) is what of the image
// lies inside bounds. False: write() has declined, and nothing is drawn or reported.
template <class T, class Place, class Write> bool ccWin32UIScope::writePhase_(Place&& place, Write&& write)
{
  cs_Clip c = place(ownRect_());
  if (!c.r.isNull()) {
    cc_Phase phase(*this, kDirect);
    if (phase) {
      c = place(phase.target().bounds);
      // 16-bit pels have no meaning on a palette surface. The phase stays as it is.
      if (std::is_same_v<T, unsigned short> && phase.target().depth == 8) {
        phase.leaveOpen();
        return true;
      }
      if (!c.r.isNull()) {
        if (!write(phase.target(), c))
          return false;
        win32Changed(c.r);
      }
    }
  }
  report_(c.r, true);
  return true;
}

// Calls body with the look-up from source pels to the pels of the locked surface. Raw pels are 8-bit ones that go through
// the index map first.
template <class T, class Body> void ccWin32UIScope::withLookup_(long depth, bool raw, bool mapped, Body&& body)
{
  if constexpr (isPacked<T>) {
    body(cs_CopyLookup<T>());
  } else {
    ccWin32UIScope& root = root_();
    cc_CacheMap& map = depth == 8 || platformCompatibility_() ? root.colorCacheMap_ : root.imageCacheMap_;
    unsigned char const* const indexes = root.colorCacheMap_.get().data();
    auto const byTable = [&](auto const* table) {
      using To = std::remove_const_t<std::remove_pointer_t<decltype(table)>>;
      if constexpr (std::is_same_v<T, unsigned short>) {
        if (map.colorCount() < 65536)
          body(cs_BoundedLookup<T, To>{table, static_cast<unsigned short>(map.colorCount() - 1)});
        else
          body(cs_TableLookup<T, To>{table});
      } else if (raw) {
        To composed[256];
        for (int i = 0; i < 256; ++i)
          composed[i] = table[indexes[i]];
        body(cs_IndexedLookup<To>{composed, indexes});
      } else {
        body(cs_TableLookup<T, To>{table});
      }
    };
    switch (depth) {
    case 8:
      if constexpr (std::is_same_v<T, unsigned char>) {
        if (raw)
          body(cs_IndexedLookup<unsigned char>{indexes, indexes});
        else
          body(cs_CopyLookup<T>());
      }
      break;
    case 15: byTable(map.to15(mapped)); break;
    case 16: byTable(map.to16(mapped)); break;
    case 24: byTable(map.to24(mapped)); break;
    case 32: byTable(map.to32(mapped)); break;
    default: break;
    }
  }
}

// Nothing is done, and the answer false, on a surface of the depth `unless`, to which another road leads.
template <class T>
bool ccWin32UIScope::writePels_(ccPelBuffer_const<T> const& image, ccPair<long> pos, bool transparent, T key, bool mapped,
                                long unless)
{
  auto const place = [&](ccUIRect const& bounds) { return clip_<T>(image.size(), pos, bounds); };
  return writePhase_<T>(place, [&](cs_Target const& target, cs_Clip const& c) {
    if (target.depth == unless)
      return false;
    if (target.pitch == 0)
      return true;
    bool const keyed = transparent && !isPacked<T>;
    withLookup_<T>(target.depth, false, mapped, [&](auto const& look) {
      using To = typename std::remove_reference_t<decltype(look)>::To;
      // Packed pels go as they are, whatever the surface; no row runs out of the surface.
      ccUIRect const all = root_().phase_.bounds;
      std::int64_t const room = (all.right() - rect_.left() - c.dx) * target.bytesPerPel;
      long const count = static_cast<long>(std::min<std::int64_t>(c.w, room / static_cast<long>(sizeof(To))));
      if (count <= 0)
        return;
      long const stride = image.rowStride();
      T const* from = image.pointToOffset() + c.sy * stride + c.sx;
      for (std::int64_t y = c.dy; y < c.dy + c.h; ++y, from += stride) {
        To* const to = rowAt<To>(target.pels, y, target.pitch, c.dx * target.bytesPerPel);
        if (keyed)
          drawRow<true>(to, from, count, look, key);
        else
          drawPlainRow(to, from, count, look);
      }
    });
    return true;
  });
}

void ccWin32UIScope::drawNC(ccPelBuffer_const<unsigned char> const& image, ccPoint const& p, bool transparent,
                            unsigned char key, bool mapped)
{
  quietly_([&] { writePels_(image, ccPair<long>(xCoord(p), yCoord(p)), transparent, key, mapped); });
}

// --- Unscaled

template <class T>
void ccWin32UIScope::drawFamily_(ccPelBuffer_const<T> const& image, ccPoint const& p, bool transparent, T key, bool mapped)
{
  if (!isPlace(p))
    return;
  if (!image.isBound())
    return drawCache(p, transparent, wordOf(key));
  ccPair<long> const pos(xCoord(p), yCoord(p));
  if (depth() != blitDepth<T> && writePels_(image, pos, transparent, key, mapped, /*unless=*/blitDepth<T>))
    return;
  cs_Clip c = clip_<T>(image.size(), pos, ownRect_());
  bool byHand = false;
  if (!c.r.isNull()) {
    cc_Phase const phase(*this, kBlit);
    if (phase && phase.target().depth != blitDepth<T>) {
      byHand = true;  // the depth has changed with the start
    } else if (phase) {
      c = clip_<T>(image.size(), pos, phase.target().bounds);
      ccPelBuffer_const<T> view(image);
      ccDirectDrawSurface* const cached = c.r.isNull() ? nullptr : cacheImage_(view, mapped);
      if (cached && !blitCache_(*phase.target().surface, *cached, c, transparent, wordOf(key)) && !isLiveEnabled())
        byHand = true;
      else if (cached)
        win32Changed(c.r);
    }
  }
  if (byHand) {
    writePels_(image, pos, transparent, key, mapped);
    return;
  }
  // The writer of packed pels reports what is out of sight in the same way: nothing.
  report_(c.r, !transparent);
}

bool ccWin32UIScope::blitCache_(ccDirectDrawSurface& to, ccDirectDrawSurface& cached, cs_Clip const& c, bool transparent,
                                std::uint32_t key)
{
  ccUIRect const source(static_cast<long>(c.sx), static_cast<long>(c.sy), static_cast<long>(c.w), static_cast<long>(c.h));
  ccUIRect const dest = ccUIRect(static_cast<long>(c.dx), static_cast<long>(c.dy), static_cast<long>(c.w),
                                 static_cast<long>(c.h)) +
                        rect_.ul();
  std::uint32_t flags = ceBltWait;
  if (transparent) {
    flags |= ceBltKeySource;
    static_cast<void>(cached.colorKey(ccDirectDrawColorKey(key), ceKeySourceBlt));
  }
  return to.blt(&cached, source, dest, flags) == ceDDOk;
}

void ccWin32UIScope::drawCache(ccPoint const& p, bool transparent, unsigned long key)
{
  if (parent_)
    return parent_->drawCache(p, transparent, key);
  if (!isPlace(p) || !getCacheSurface() || !getCacheSurface()->created())
    return;
  ccPair<long> const pos(xCoord(p), yCoord(p));
  cs_Clip c = clip_<unsigned char>(getCacheSize(), pos, ownRect_());
  if (!c.r.isNull()) {
    cc_Phase const phase(*this, kBlit);
    ccDirectDrawSurface* const cached = getCacheSurface();  // with the start it may have gone
    if (phase && cached && cached->created()) {
      c = clip_<unsigned char>(getCacheSize(), pos, phase.target().bounds);
      constexpr std::uint32_t canBlit = 1;
      long const status = phase.target().surface->bltStatus(canBlit);
      if (status != ceDDOk && status != ceDDNoBltHW)
        cfSleep(0.001);
      if (!c.r.isNull()) {
        static_cast<void>(
            blitCache_(*phase.target().surface, *cached, c, transparent, static_cast<std::uint32_t>(key)));
        win32Changed(c.r);
      }
    }
  }
  report_(c.r, !transparent);
}

void ccWin32UIScope::draw(ccPelBuffer_const<ccPackedRGB32Pel> const& image, ccPoint const& p, bool transparent,
                          std::uint32_t key)
{
  quietly_([&] { drawFamily_(image, p, transparent, ccPackedRGB32Pel(key), true); });
}

void ccWin32UIScope::draw(ccPelBuffer_const<ccPackedRGB16Pel> const& image, ccPoint const& p, bool transparent,
                          std::uint16_t key)
{
  quietly_([&] { drawFamily_(image, p, transparent, ccPackedRGB16Pel(key), true); });
}

void ccWin32UIScope::draw(ccPelBuffer_const<unsigned short> const& image, ccPoint const& p, bool transparent,
                          unsigned short key)
{
  quietly_([&] { drawFamily_(image, p, transparent, key, true); });
}

void ccWin32UIScope::draw(ccPelBuffer_const<unsigned char> const& image, ccPoint const& p, bool transparent,
                          unsigned char key, bool mapped)
{
  quietly_([&] { drawFamily_(image, p, transparent, key, mapped); });
}

// --- Image cache

// The surface that holds the image: by the place of its pels, not by what they are. During live display on a pool the view
// becomes unbound and the pool's surface is what there is to show. Null: nothing could be cached.
template <class T> ccDirectDrawSurface* ccWin32UIScope::cacheImage_(ccPelBuffer_const<T>& view, bool mapped)
{
  if (parent_)
    return parent_->cacheImage_(view, mapped);
  if (liveEnabled_ && cachePool_) {
    view.setUnbound();
    return getCacheSurface();
  }
  constexpr std::uint32_t localRoot = 0;
  void const* const handle = view.pointToOffset();
  ccPair<long> const size = view.size();
  if (cache_.created() && cachedRoot_ == localRoot && cachedHandle_ == handle && size.x() <= cachedSize_.x() &&
      size.y() <= cachedSize_.y())
    return &cache_;
  cachedHandle_ = nullptr;
  constexpr std::uint32_t bits = sizeof(T) * 8;
  ccDirectDrawSurfaceDesc const& have = cache_.description();
  if (!cache_.created() || static_cast<long>(have.width()) < size.x() || static_cast<long>(have.height()) < size.y() ||
      have.pixelFormat().bitCount() != bits) {
    long const result = createSurface_(cache_, size, bits, false);
    if (result != ceDDOk) {
      redrawDue_ |= result == ceDDOutOfMemory;
      return nullptr;
    }
  }
  if (cache_.lock() != ceDDOk || !cache_.description().surface())
    return nullptr;
  unsigned char* const pels = cache_.description().surface();
  long const pitch = cache_.description().pitch();
  if (std::is_same_v<T, unsigned char> && !mapped) {
    unsigned char const* const indexes = colorCacheMap_.get().data();
    unsigned char const* from = static_cast<unsigned char const*>(handle);
    for (long y = 0; y < size.y(); ++y, from += view.rowStride())
      mapRow(pels + y * pitch, from, size.x(), indexes);
  } else {
    cf_PelCopyVid(pels, pitch, handle, view.rowStride() * static_cast<long>(sizeof(T)),
                  size.x() * static_cast<long>(sizeof(T)), size.y());
  }
  static_cast<void>(cache_.unlock());
  cachedRoot_ = localRoot;
  cachedHandle_ = handle;
  cachedSize_ = size;
  return &cache_;
}

void ccWin32UIScope::flushImageCache() { root_().cachedRoot_ = 0; }

void ccWin32UIScope::releaseImageCache()
{
  ccWin32UIScope& root = root_();
  root.cachedRoot_ = 0;
  if (root.cache_.created())
    static_cast<void>(root.cache_.release());
}

ccPair<long> ccWin32UIScope::sizeImageCache() const { return getCacheSize(); }

// --- Scaled

// Source columns of target columns, counted from the scaled image's left edge. Kept from call to call.
std::int32_t const* ccWin32UIScope::columns_(double scale, std::int64_t first, long count, long sourceWidth)
{
  cs_ColumnIndex& index = root_().columnIndex_;
  if (index.scale != scale || index.first != first || index.count != count || index.sourceWidth != sourceWidth) {
    index.columns.resize(static_cast<std::size_t>(count));
    for (long i = 0; i < count; ++i) {
      double const at = floorT(static_cast<double>(first + i) / scale);
      index.columns[static_cast<std::size_t>(i)] =
          static_cast<std::int32_t>(at < static_cast<double>(sourceWidth) ? static_cast<long>(at) : sourceWidth - 1);
    }
    index.scale = scale;
    index.first = first;
    index.count = count;
    index.sourceWidth = sourceWidth;
  }
  return index.columns.data();
}

template <class T>
void ccWin32UIScope::drawScaled_(ccPelBuffer_const<T> const& image, cs_Scale const& s, bool transparent, T key,
                                 bool mapped, InterpolationModes mode)
{
  if (canFuse(mode, s.factor) && drawFused_(image, s, transparent, key, mapped))
    return;
  ccPelBuffer<T> out;
  ccUIRect clip = rect_;
  pelScale(image, out, s.factor, clip, s.origin, mode);
  if (!out.isBound())
    return;
  if constexpr (std::is_same_v<T, unsigned char>) {
    if (!mapped)
      cfPelMap(out, root_().colorCacheMap_.get(), out);
  }
  writePels_<T>(out, s.dest, transparent, key, mapped);
}

// Scales straight into the surface. False: the surface is none where that gives the same pels, and nothing is done.
template <class T>
bool ccWin32UIScope::drawFused_(ccPelBuffer_const<T> const& image, cs_Scale const& s, bool transparent, T key, bool mapped)
{
  // The part of the scaled image inside the scope, in root pels; both axes use the horizontal factor.
  std::int64_t const x0 = std::max(s.origin.x(), rect_.left()), y0 = std::max(s.origin.y(), rect_.top());
  auto const size = [](long origin, long extent, double factor, long limit, std::int64_t from) {
    double const end = std::min(static_cast<double>(limit), static_cast<double>(origin) + ceilT(static_cast<double>(extent) * factor));
    return static_cast<long>(std::max(end - static_cast<double>(from), 0.0));
  };
  ccPair<long> const whole(size(s.origin.x(), image.width(), s.factor, rect_.right(), x0),
                           size(s.origin.y(), image.height(), s.factor, rect_.bottom(), y0));
  if (whole.x() < 1 || whole.y() < 1)
    return true;
  auto const place = [&](ccUIRect const& bounds) { return clip_<T>(whole, s.dest, bounds); };
  return writePhase_<T>(place, [&](cs_Target const& target, cs_Clip const& c) {
    if (isPacked<T> && target.bytesPerPel != static_cast<long>(sizeof(T)))
      return false;
    if (target.pitch == 0)
      return true;
    bool const keyed = transparent && !isPacked<T>;
    bool const raw = std::is_same_v<T, unsigned char> && !mapped;
    long const count = static_cast<long>(c.w);
    std::int32_t const* const columns = columns_(s.factor, x0 - s.origin.x() + c.sx, count, image.width());
    std::int64_t const firstRow = y0 - s.origin.y() + c.sy;
    T const* const base = image.pointToOffset();
    withLookup_<T>(target.depth, raw, mapped, [&](auto const& look) {
      using To = typename std::remove_reference_t<decltype(look)>::To;
      std::int64_t held = -1;
      To* before = nullptr;
      for (std::int64_t i = 0; i < c.h; ++i) {
        To* const to = rowAt<To>(target.pels, c.dy + i, target.pitch, c.dx * target.bytesPerPel);
        double const at = floorT(static_cast<double>(firstRow + i) / s.factor);
        std::int64_t const row =
            at < static_cast<double>(image.height()) ? static_cast<std::int64_t>(at) : image.height() - 1;
        T const* const from = base + row * image.rowStride();
        if (keyed)
          drawScaledRow<true>(to, from, columns, count, look, key);
        else if (row == held)
          std::memcpy(static_cast<void*>(to), before, static_cast<std::size_t>(count) * sizeof(To));
        else if (s.factor == 1)
          drawPlainRow(to, from + columns[0], count, look);
        else
          drawScaledRow<false>(to, from, columns, count, look, key);
        held = row;
        before = to;
      }
    });
    return true;
  });
}

// The picture of a live pool's surface, of which only a copy may be scaled.
template <class T>
void ccWin32UIScope::drawScaledCache_(ccDirectDrawSurface& cached, cs_Scale const& s, bool transparent, T key, bool mapped,
                                      InterpolationModes mode)
{
  ccPair<long> const size = getCacheSize();
  if (size.x() < 1 || size.y() < 1 || cached.lock() != ceDDOk || !cached.description().surface())
    return;
  T* const pels = static_cast<T*>(cached.description().record().pels);
  long const stride = cached.description().pitch() / static_cast<long>(sizeof(T));
  ccPtrHandle<ccPelRoot<T>> const root(new ccPelRoot<T>(pels, size.x(), size.y(), stride));
  ccPelBuffer_const<T> view{ccPtrHandle_const<ccPelRoot<T>>(root)};
  bool const whole = s.spanSize.x() == 0;  // sample
  if (!whole)
    view.window(s.spanStart.x(), s.spanStart.y(), s.spanSize.x(), s.spanSize.y());
  ccPelBuffer<T> const copy = cfPelCopy(view, nullptr);
  root->disconnect();
  static_cast<void>(cached.unlock());
  bool isMapped = mapped;
  if constexpr (std::is_same_v<T, unsigned char>) {
    if (!mapped)
      cfPelMap(copy, root_().colorCacheMap_.get(), copy);
    isMapped = true;
  }
  ccPelBuffer<T> out;
  ccUIRect clip = whole ? rect_ : ownRect_();
  pelScale<T>(copy, out, s.factor, clip, whole ? s.origin : -s.subPel, mode);
  writePels_<T>(out, s.dest, transparent, key, isMapped);
}

// Where a scaled image goes, but for its origin. An extent that truncates to 0 is drawn nowhere, whatever a clip shows of it.
ccWin32UIScope::cs_Scale ccWin32UIScope::scaled_(ccPair<long> size, ccPoint const& p, ccPair<double> const& scale) const
{
  cs_Scale s;
  s.factor = scale.x();
  s.exact = ccVector<2>(static_cast<double>(rect_.left()) + p.x() - static_cast<double>(clientOffset().x()),
                        static_cast<double>(rect_.top()) + p.y() - static_cast<double>(clientOffset().y()));
  s.dest = ccPair<long>(std::max(xCoord(p), 0L), std::max(yCoord(p), 0L));
  s.visible = cfTruncToLong(static_cast<double>(size.x()) * scale.x()) >= 1 &&
              cfTruncToLong(static_cast<double>(size.y()) * scale.y()) >= 1;
  return s;
}

// The part of the scaled image that is painted inside the scope, in root pels: extents are those that the kernel fills.
ccUIRect ccWin32UIScope::painted_(cs_Scale const& s, ccPair<long> size) const
{
  if (!s.visible)
    return ccUIRect();
  return ccUIRect(s.origin, ccPair<long>(ceilTL(static_cast<double>(size.x()) * s.factor),
                                         ceilTL(static_cast<double>(size.y()) * s.factor))) &
         rect_;
}

template <class T>
void ccWin32UIScope::expandFamily_(ccPelBuffer_const<T> const& image, ccPoint const& p, ccPair<double> const& scale,
                                   bool transparent, T key, bool mapped, InterpolationModes mode)
{
  if (!(scale.x() >= 1) || !(scale.y() >= 1) || !isFactor(scale.x()) || !isFactor(scale.y()) || !image.isBound() ||
      !isPlace(p))
    return;
  auto const nearest = [](double v) { return cfTruncToLong(v >= 0 ? v + 0.5 : v - 0.5); };
  cs_Scale s = scaled_(image.size(), p, scale);
  s.origin = ccPair<long>(nearest(s.exact.x()), nearest(s.exact.y()));
  ccUIRect const box = painted_(s, image.size());
  if (box.isNull())
    return;
  if (!isLiveEnabled() || !root_().cachePool_)
    return drawScaled_(image, s, transparent, key, mapped, mode);
  ccPelBuffer_const<T> view(image);
  ccDirectDrawSurface* const cached = cacheImage_(view, mapped);
  if (!cached)
    return;
  // The source pels that can be seen; the surface need not be of the image's size.
  ccPair<long> const size = getCacheSize();
  double const ux = static_cast<double>(box.left() - s.origin.x()) / scale.x();
  double const uy = static_cast<double>(box.top() - s.origin.y()) / scale.y();
  double const lx = static_cast<double>(box.right() - s.origin.x()) / scale.x();
  double const ly = static_cast<double>(box.bottom() - s.origin.y()) / scale.y();
  s.spanStart = ccPair<long>(floorTL(ux), floorTL(uy));
  s.spanSize = ccPair<long>(std::min(ceilTL(lx), size.x()), std::min(ceilTL(ly), size.y())) - s.spanStart;
  if (s.spanSize.x() < 1 || s.spanSize.y() < 1)
    return;
  // Both by the horizontal factor, as the kernel takes only one.
  s.subPel = ccPair<long>(cfTruncToLong((ux - floorT(ux)) * scale.x()), cfTruncToLong((uy - floorT(uy)) * scale.x()));
  drawScaledCache_(*cached, s, transparent, key, mapped, mode);
}

template <class T>
void ccWin32UIScope::sampleFamily_(ccPelBuffer_const<T> const& image, ccPoint const& p, ccPair<double> const& scale,
                                   bool transparent, T key, bool mapped)
{
  if (!isFactor(scale.x()) || !isFactor(scale.y()) || !image.isBound() || !isPlace(p))
    return;
  cs_Scale s = scaled_(image.size(), p, scale);
  s.origin = ccPair<long>(cfTruncToLong(s.exact.x()), cfTruncToLong(s.exact.y()));
  if (painted_(s, image.size()).isNull())
    return;
  if (!isLiveEnabled() || !root_().cachePool_)
    return drawScaled_(image, s, transparent, key, mapped, cc_TabletEnums::interpolateNone);
  ccPelBuffer_const<T> view(image);
  if (ccDirectDrawSurface* const cached = cacheImage_(view, mapped))
    drawScaledCache_(*cached, s, transparent, key, mapped, cc_TabletEnums::interpolateNone);
}

void ccWin32UIScope::sample(ccPelBuffer_const<ccPackedRGB32Pel> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, std::uint32_t key)
{
  quietly_([&] { sampleFamily_(image, p, scale, transparent, ccPackedRGB32Pel(key), true); });
}

void ccWin32UIScope::sample(ccPelBuffer_const<ccPackedRGB16Pel> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, std::uint16_t key)
{
  quietly_([&] { sampleFamily_(image, p, scale, transparent, ccPackedRGB16Pel(key), true); });
}

void ccWin32UIScope::sample(ccPelBuffer_const<unsigned short> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, unsigned short key)
{
  quietly_([&] { sampleFamily_(image, p, scale, transparent, key, true); });
}

void ccWin32UIScope::sample(ccPelBuffer_const<unsigned char> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, unsigned char key, bool mapped)
{
  quietly_([&] { sampleFamily_(image, p, scale, transparent, key, mapped); });
}

void ccWin32UIScope::expand(ccPelBuffer_const<ccPackedRGB32Pel> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, std::uint32_t key, InterpolationModes mode)
{
  quietly_([&] { expandFamily_(image, p, scale, transparent, ccPackedRGB32Pel(key), true, mode); });
}

void ccWin32UIScope::expand(ccPelBuffer_const<ccPackedRGB16Pel> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, std::uint16_t key, InterpolationModes mode)
{
  quietly_([&] { expandFamily_(image, p, scale, transparent, ccPackedRGB16Pel(key), true, mode); });
}

void ccWin32UIScope::expand(ccPelBuffer_const<unsigned short> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, unsigned short key, InterpolationModes mode)
{
  quietly_([&] { expandFamily_(image, p, scale, transparent, key, true, mode); });
}

void ccWin32UIScope::expand(ccPelBuffer_const<unsigned char> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, unsigned char key, bool mapped,
                            InterpolationModes mode)
{
  quietly_([&] { expandFamily_(image, p, scale, transparent, key, mapped, mode); });
}
