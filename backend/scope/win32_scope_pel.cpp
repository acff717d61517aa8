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

template <class T> T* rowAt(unsigned char* locked, std::int64_t y, long pitch, std::int64_t byteColumn)
{
  return static_cast<T*>(static_cast<void*>(locked + y * pitch + byteColumn));
}

}  // namespace

// --- Clip

template <class T> ccWin32UIScope::cs_Clip ccWin32UIScope::clip_(ccPair<long> size, ccPair<long> pos) const
{
  cs_Clip c;
  std::int64_t const x = pos.x(), y = pos.y();
  c.sx = x < 0 ? -x : 0;
  c.sy = y < 0 ? -y : 0;
  c.dx = x > 0 ? x : 0;
  c.dy = y > 0 ? y : 0;
  c.w = std::min<std::int64_t>(size.x() - c.sx, rect_.width() - c.dx);
  c.h = std::min<std::int64_t>(size.y() - c.sy, rect_.height() - c.dy);
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
  c.r = ccUIRect(static_cast<long>(c.dx), static_cast<long>(c.dy), static_cast<long>(c.w), static_cast<long>(c.h)) &
        ownRect_();
  return c;
}

// --- Writing into the locked surface

cc_CacheMap& ccWin32UIScope::pelTable_()
{
  ccWin32UIScope& root = root_();
  return depth_ == 8 || platformCompatibility_() ? root.colorCacheMap_ : root.imageCacheMap_;
}

// A direct phase around write(), which may return false to leave without a trace.
template <class T, class Write> void ccWin32UIScope::writePhase_(cs_Clip const& c, Write&& write)
{
  if (!c.r.isNull()) {
    if (win32DrawStart(kDirect)) {
      // 16-bit pels have no meaning on a palette surface. The phase stays as it is.
      if (std::is_same_v<T, unsigned short> && depth_ == 8)
        return;
      try {
        write();
      } catch (cc_CacheMap::Errors const&) {
        win32DrawStop();
        throw;
      }
      win32Changed(c.r);
    }
    win32DrawStop();
  }
  report_(c.r, true);
}

// Calls body with the look-up from source pels to the pels of the locked surface. Raw pels are 8-bit ones that go through
// the index map first.
template <class T, class Body> void ccWin32UIScope::withLookup_(bool raw, bool mapped, Body&& body)
{
  if constexpr (isPacked<T>) {
    body(cs_CopyLookup<T>());
  } else {
    cc_CacheMap& map = pelTable_();
    unsigned char const* const indexes = root_().colorCacheMap_.get().data();
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
    switch (depth_) {
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

template <class T>
void ccWin32UIScope::writePels_(ccPelBuffer_const<T> const& image, ccPair<long> pos, bool transparent, T key, bool mapped)
{
  cs_Clip const c = clip_<T>(image.size(), pos);
  writePhase_<T>(c, [&] {
    if (pitch_ == 0)
      return;
    bool const keyed = transparent && !isPacked<T>;
    withLookup_<T>(false, mapped, [&](auto const& look) {
      using To = typename std::remove_reference_t<decltype(look)>::To;
      // Packed pels go as they are, whatever the surface; no row runs out of the surface.
      std::int64_t const room = (root_().rect_.width() - rect_.left() - c.dx) * bytesPerPel_;
      long const count = static_cast<long>(std::min<std::int64_t>(c.w, room / static_cast<long>(sizeof(To))));
      long const stride = image.rowStride();
      T const* from = image.pointToOffset() + c.sy * stride + c.sx;
      for (std::int64_t y = c.dy; y < c.dy + c.h; ++y, from += stride) {
        To* const to = rowAt<To>(locked_, y, pitch_, c.dx * bytesPerPel_);
        if (keyed)
          drawRow<true>(to, from, count, look, key);
        else
          drawPlainRow(to, from, count, look);
      }
    });
  });
}

void ccWin32UIScope::drawNC(ccPelBuffer_const<unsigned char> const& image, ccPoint const& p, bool transparent,
                            unsigned char key, bool mapped)
{
  writePels_(image, ccPair<long>(xCoord(p), yCoord(p)), transparent, key, mapped);
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
  if (depth_ != blitDepth<T>)
    return writePels_(image, pos, transparent, key, mapped);
  cs_Clip const c = clip_<T>(image.size(), pos);
  if (c.r.isNull()) {
    // The writer of packed pels reports in the same way: nothing.
    return report_(c.r, !transparent);
  }
  ccPelBuffer_const<T> view(image);
  if (ccDirectDrawSurface* const cached = cacheImage_(view, mapped)) {
    if (win32DrawStart(kBlit)) {
      if (!blitCache_(*cached, c, transparent, wordOf(key)) && !isLiveEnabled())
        writePels_(image, pos, transparent, key, mapped);
      win32Changed(c.r);
    }
    win32DrawStop();
  }
  report_(c.r, !transparent);
}

bool ccWin32UIScope::blitCache_(ccDirectDrawSurface& cached, cs_Clip const& c, bool transparent, std::uint32_t key)
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
  return bltTarget_->blt(&cached, source, dest, flags) == ceDDOk;
}

void ccWin32UIScope::drawCache(ccPoint const& p, bool transparent, unsigned long key)
{
  if (parent_)
    return parent_->drawCache(p, transparent, key);
  ccDirectDrawSurface* const cached = getCacheSurface();
  if (!cached || !cached->created())
    return;
  cs_Clip const c = clip_<unsigned char>(getCacheSize(), ccPair<long>(xCoord(p), yCoord(p)));
  if (!c.r.isNull()) {
    if (win32DrawStart(kBlit)) {
      constexpr std::uint32_t canBlit = 1;
      long const status = bltTarget_->bltStatus(canBlit);
      if (status != ceDDOk && status != ceDDNoBltHW)
        cfSleep(0.001);
      static_cast<void>(blitCache_(*cached, c, transparent, static_cast<std::uint32_t>(key)));
      win32Changed(c.r);
    }
    win32DrawStop();
  }
  report_(c.r, !transparent);
}

void ccWin32UIScope::draw(ccPelBuffer_const<ccPackedRGB32Pel> const& image, ccPoint const& p, bool transparent,
                          std::uint32_t key)
{
  drawFamily_(image, p, transparent, ccPackedRGB32Pel(key), true);
}

void ccWin32UIScope::draw(ccPelBuffer_const<ccPackedRGB16Pel> const& image, ccPoint const& p, bool transparent,
                          std::uint16_t key)
{
  drawFamily_(image, p, transparent, ccPackedRGB16Pel(key), true);
}

void ccWin32UIScope::draw(ccPelBuffer_const<unsigned short> const& image, ccPoint const& p, bool transparent,
                          unsigned short key)
{
  drawFamily_(image, p, transparent, key, true);
}

void ccWin32UIScope::draw(ccPelBuffer_const<unsigned char> const& image, ccPoint const& p, bool transparent,
                          unsigned char key, bool mapped)
{
  drawFamily_(image, p, transparent, key, mapped);
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
    if (createSurface_(cache_, size, bits, false) != ceDDOk)
      return nullptr;
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

// Whether a scaled image is written straight into the surface: where that gives the pels of scaling it first.
template <class T> bool ccWin32UIScope::canFuse_(InterpolationModes mode, double scale) const
{
  if (mode == cc_TabletEnums::interpolateLinear && scale > 1)
    return false;
  if constexpr (isPacked<T>)
    return bytesPerPel_ == static_cast<long>(sizeof(T));
  else
    return depth_ != 8 || std::is_same_v<T, unsigned char>;
}

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
  if (!canFuse_<T>(mode, s.factor)) {
    ccPelBuffer<T> out;
    ccUIRect clip = rect_;
    pelScale(image, out, s.factor, clip, s.origin, mode);
    if constexpr (std::is_same_v<T, unsigned char>) {
      if (!mapped)
        cfPelMap(out, root_().colorCacheMap_.get(), out);
    }
    return writePels_<T>(out, s.dest, transparent, key, mapped);
  }
  // The part of the scaled image inside the scope, in root pels; both axes use the horizontal factor.
  auto const end = [&](long origin, long extent, long limit) {
    return std::min(static_cast<double>(limit), static_cast<double>(origin) + ceilT(static_cast<double>(extent) * s.factor));
  };
  std::int64_t const x0 = std::max(s.origin.x(), rect_.left()), y0 = std::max(s.origin.y(), rect_.top());
  double const width = end(s.origin.x(), image.width(), rect_.right()) - static_cast<double>(x0);
  double const height = end(s.origin.y(), image.height(), rect_.bottom()) - static_cast<double>(y0);
  if (width < 1 || height < 1)
    return;
  cs_Clip const c = clip_<T>(ccPair<long>(static_cast<long>(width), static_cast<long>(height)), s.dest);
  writePhase_<T>(c, [&] {
    if (pitch_ == 0)
      return;
    bool const keyed = transparent && !isPacked<T>;
    bool const raw = std::is_same_v<T, unsigned char> && !mapped;
    long const count = static_cast<long>(c.w);
    std::int32_t const* const columns = columns_(s.factor, x0 - s.origin.x() + c.sx, count, image.width());
    std::int64_t const firstRow = y0 - s.origin.y() + c.sy;
    T const* const base = image.pointToOffset();
    withLookup_<T>(raw, mapped, [&](auto const& look) {
      using To = typename std::remove_reference_t<decltype(look)>::To;
      std::int64_t held = -1;
      for (std::int64_t i = 0; i < c.h; ++i) {
        To* const to = rowAt<To>(locked_, c.dy + i, pitch_, c.dx * bytesPerPel_);
        double const at = floorT(static_cast<double>(firstRow + i) / s.factor);
        std::int64_t const row =
            at < static_cast<double>(image.height()) ? static_cast<std::int64_t>(at) : image.height() - 1;
        T const* const from = base + row * image.rowStride();
        if (keyed)
          drawScaledRow<true>(to, from, columns, count, look, key);
        else if (row == held)
          std::memcpy(static_cast<void*>(to), locked_ + (c.dy + i - 1) * pitch_ + c.dx * bytesPerPel_,
                      static_cast<std::size_t>(count) * sizeof(To));
        else if (s.factor == 1)
          drawPlainRow(to, from + columns[0], count, look);
        else
          drawScaledRow<false>(to, from, columns, count, look, key);
        held = row;
      }
    });
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

template <class T>
void ccWin32UIScope::expandFamily_(ccPelBuffer_const<T> const& image, ccPoint const& p, ccPair<double> const& scale,
                                   bool transparent, T key, bool mapped, InterpolationModes mode)
{
  if (!(scale.x() >= 1) || !(scale.y() >= 1) || !isFactor(scale.x()) || !isFactor(scale.y()) || !image.isBound() ||
      !isPlace(p))
    return;
  cs_Scale s;
  s.factor = scale.x();
  s.dest = ccPair<long>(std::max(xCoord(p), 0L), std::max(yCoord(p), 0L));
  double const fx = static_cast<double>(rect_.left()) + p.x() - static_cast<double>(clientOffset().x());
  double const fy = static_cast<double>(rect_.top()) + p.y() - static_cast<double>(clientOffset().y());
  ccUIRect const box = ccUIRect(cfTruncToLong(fx), cfTruncToLong(fy),
                                cfTruncToLong(static_cast<double>(image.width()) * scale.x()),
                                cfTruncToLong(static_cast<double>(image.height()) * scale.y())) &
                       rect_;
  if (box.isNull())
    return;
  auto const nearest = [](double v) { return cfTruncToLong(v >= 0 ? v + 0.5 : v - 0.5); };
  s.origin = ccPair<long>(nearest(fx), nearest(fy));
  double const ux = static_cast<double>(box.left() - s.origin.x()) / scale.x();
  double const uy = static_cast<double>(box.top() - s.origin.y()) / scale.y();
  double const lx = static_cast<double>(box.right() - s.origin.x()) / scale.x();
  double const ly = static_cast<double>(box.bottom() - s.origin.y()) / scale.y();
  s.spanStart = ccPair<long>(floorTL(ux), floorTL(uy));
  s.spanSize = ccPair<long>(ceilTL(lx), ceilTL(ly)) - s.spanStart;
  if (s.spanSize.x() < 1 || s.spanSize.y() < 1)
    return;
  if (!isLiveEnabled() || !root_().cachePool_)
    return drawScaled_(image, s, transparent, key, mapped, mode);
  ccPelBuffer_const<T> view(image);
  ccDirectDrawSurface* const cached = cacheImage_(view, mapped);
  if (!cached)
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
  cs_Scale s;
  s.factor = scale.x();
  double const fx = static_cast<double>(rect_.left()) + p.x() - static_cast<double>(clientOffset().x());
  double const fy = static_cast<double>(rect_.top()) + p.y() - static_cast<double>(clientOffset().y());
  s.origin = ccPair<long>(cfTruncToLong(fx), cfTruncToLong(fy));
  ccUIRect const box = ccUIRect(s.origin, ccPair<long>(cfTruncToLong(static_cast<double>(image.width()) * scale.x()),
                                                       cfTruncToLong(static_cast<double>(image.height()) * scale.y()))) &
                       rect_;
  if (box.isNull())
    return;
  s.dest = ccPair<long>(std::max(xCoord(p), 0L), std::max(yCoord(p), 0L));
  if (!isLiveEnabled() || !root_().cachePool_)
    return drawScaled_(image, s, transparent, key, mapped, cc_TabletEnums::interpolateNone);
  ccPelBuffer_const<T> view(image);
  if (ccDirectDrawSurface* const cached = cacheImage_(view, mapped))
    drawScaledCache_(*cached, s, transparent, key, mapped, cc_TabletEnums::interpolateNone);
}

void ccWin32UIScope::sample(ccPelBuffer_const<ccPackedRGB32Pel> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, std::uint32_t key)
{
  sampleFamily_(image, p, scale, transparent, ccPackedRGB32Pel(key), true);
}

void ccWin32UIScope::sample(ccPelBuffer_const<ccPackedRGB16Pel> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, std::uint16_t key)
{
  sampleFamily_(image, p, scale, transparent, ccPackedRGB16Pel(key), true);
}

void ccWin32UIScope::sample(ccPelBuffer_const<unsigned short> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, unsigned short key)
{
  sampleFamily_(image, p, scale, transparent, key, true);
}

void ccWin32UIScope::sample(ccPelBuffer_const<unsigned char> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, unsigned char key, bool mapped)
{
  sampleFamily_(image, p, scale, transparent, key, mapped);
}

void ccWin32UIScope::expand(ccPelBuffer_const<ccPackedRGB32Pel> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, std::uint32_t key, InterpolationModes mode)
{
  expandFamily_(image, p, scale, transparent, ccPackedRGB32Pel(key), true, mode);
}

void ccWin32UIScope::expand(ccPelBuffer_const<ccPackedRGB16Pel> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, std::uint16_t key, InterpolationModes mode)
{
  expandFamily_(image, p, scale, transparent, ccPackedRGB16Pel(key), true, mode);
}

void ccWin32UIScope::expand(ccPelBuffer_const<unsigned short> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, unsigned short key, InterpolationModes mode)
{
  expandFamily_(image, p, scale, transparent, key, true, mode);
}

void ccWin32UIScope::expand(ccPelBuffer_const<unsigned char> const& image, ccPoint const& p,
                            ccPair<double> const& scale, bool transparent, unsigned char key, bool mapped,
                            InterpolationModes mode)
{
  expandFamily_(image, p, scale, transparent, key, mapped, mode);
}
