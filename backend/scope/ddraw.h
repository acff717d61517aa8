// Surfaces of the machine as objects: each knows its owner, so that one release of the device releases all, and each surface
// keeps the description it was made from, to be made again. All operations answer a result code, 0 for success; nothing
// throws. Callers serialise.
#pragma once

#include "canvas/rect.h"
#include "foundation/handle.h"
#include "platform/handles.h"
#include "platform/surface.h"

#include <cstdint>
#include <list>
#include <string>
#include <vector>

class ccDirectDraw;

// Result codes that are used by name.
constexpr long ceDDOk = 0;
constexpr long ceDDOutOfMemory = plat::result(0x8007000E);
constexpr long ceDDInvalidParam = plat::result(0x80070057);
constexpr long ceDDNotInitialized = plat::result(0x800401F0);
constexpr long ceDDInvalidObject = plat::result(0x88760082);
constexpr long ceDDInvalidPixelFormat = plat::result(0x88760091);
constexpr long ceDDNoOverlayHW = plat::result(0x88760104);
constexpr long ceDDOutOfCaps = plat::result(0x88760168);
constexpr long ceDDSurfaceBusy = plat::result(0x887601AE);
constexpr long ceDDSurfaceLost = plat::result(0x887601C2);
constexpr long ceDDAlreadyCreated = plat::result(0x88760232);
constexpr long ceDDNoBltHW = plat::result(0x8876023F);
constexpr long ceDDExclusiveMode = plat::result(0x88760245);
constexpr long ceDDNotLocked = plat::result(0x88760248);

// Flags of blits, and types of colour keys.
constexpr std::uint32_t ceBltWait = 0x1000000;
constexpr std::uint32_t ceBltKeySource = 0x8000;
constexpr std::uint32_t ceBltColorFill = 0x400;
constexpr std::uint32_t ceKeyDestOverlay = 4;
constexpr std::uint32_t ceKeySourceBlt = 8;

// A range of pel values; one argument sets both bounds, which belong to the key.
class ccDirectDrawColorKey {
public:
  explicit ccDirectDrawColorKey(std::uint32_t both = 0) : ccDirectDrawColorKey(both, both) {}
  ccDirectDrawColorKey(std::uint32_t low, std::uint32_t high) { key_.low = low, key_.high = high; }
  std::uint32_t low() const { return key_.low; }
  std::uint32_t high() const { return key_.high; }
  void low(std::uint32_t v) { key_.low = v; }
  void high(std::uint32_t v) { key_.high = v; }
  plat::ColorKey const& record() const { return key_; }

private:
  plat::ColorKey key_;
};

class ccDirectDrawPixelFormat {
public:
  ccDirectDrawPixelFormat() = default;  // 2048 bits, masks 3, 3, 2
  explicit ccDirectDrawPixelFormat(plat::PixelFormat const& f) : format_(f) {}
  static constexpr std::uint32_t size() { return 32; }
  std::uint32_t flags() const { return format_.flags; }  // 4 by fourCC, 32 palette index, 64 colour masks, 512 YUV
  void flags(std::uint32_t v) { format_.flags = v; }
  std::uint32_t fourCC() const { return format_.fourCC; }
  void fourCC(std::uint32_t v) { format_.fourCC = v; }
  std::uint32_t bitCount() const { return format_.bitCount; }
  void bitCount(std::uint32_t v) { format_.bitCount = v; }
  std::uint32_t rBitMask() const { return format_.rMask; }
  void rBitMask(std::uint32_t v) { format_.rMask = v; }
  std::uint32_t gBitMask() const { return format_.gMask; }
  void gBitMask(std::uint32_t v) { format_.gMask = v; }
  std::uint32_t bBitMask() const { return format_.bMask; }
  void bBitMask(std::uint32_t v) { format_.bMask = v; }
  std::uint32_t alphaBitMask() const { return format_.aMask; }
  void alphaBitMask(std::uint32_t v) { format_.aMask = v; }
  plat::PixelFormat const& record() const { return format_; }

private:
  plat::PixelFormat format_;
};

class ccDirectDrawSurfaceCaps {
public:
  explicit ccDirectDrawSurfaceCaps(std::uint32_t bits = 0) : bits_(bits) {}
  std::uint32_t bits() const { return bits_; }
  bool offscreenPlain() const { return has_(0x40); }
  void offscreenPlain(bool on) { put_(0x40, on); }
  bool overlay() const { return has_(0x80); }
  void overlay(bool on) { put_(0x80, on); }
  bool paletteOK() const { return has_(0x100); }
  void paletteOK(bool on) { put_(0x100, on); }
  bool primarySurface() const { return has_(0x200); }
  void primarySurface(bool on) { put_(0x200, on); }
  bool systemMemory() const { return has_(0x800); }
  void systemMemory(bool on) { put_(0x800, on); }
  bool videoMemory() const { return has_(0x4000); }
  void videoMemory(bool on) { put_(0x4000, on); }
  bool visible() const { return has_(0x8000); }
  void visible(bool on) { put_(0x8000, on); }

private:
  bool has_(std::uint32_t bit) const { return (bits_ & bit) != 0; }
  void put_(std::uint32_t bit, bool on) { bits_ = on ? bits_ | bit : bits_ & ~bit; }

  std::uint32_t bits_;
};

// Setting a part marks it valid.
class ccDirectDrawSurfaceDesc {
public:
  static constexpr std::uint32_t size() { return 136; }
  void reset() { desc_ = plat::SurfaceDesc(); }

  std::uint32_t width() const { return desc_.width; }
  void width(std::uint32_t v) { desc_.width = v, desc_.valid |= kWidth; }
  std::uint32_t height() const { return desc_.height; }
  void height(std::uint32_t v) { desc_.height = v, desc_.valid |= kHeight; }
  std::int32_t pitch() const { return desc_.pitch; }  // bytes from row to row
  ccDirectDrawPixelFormat pixelFormat() const { return ccDirectDrawPixelFormat(desc_.format); }
  void pixelFormat(ccDirectDrawPixelFormat const& f) { desc_.format = f.record(), desc_.valid |= kFormat; }
  ccDirectDrawSurfaceCaps surfaceCaps() const { return ccDirectDrawSurfaceCaps(desc_.caps); }
  void surfaceCaps(ccDirectDrawSurfaceCaps const& c) { desc_.caps = c.bits(), desc_.valid |= kCaps; }
  unsigned char* surface() const { return static_cast<unsigned char*>(desc_.pels); }  // null unless locked
  void surface(void* pels) { desc_.pels = pels; }

  bool widthValid() const { return (desc_.valid & kWidth) != 0; }
  bool heightValid() const { return (desc_.valid & kHeight) != 0; }
  bool pitchValid() const { return (desc_.valid & kPitch) != 0; }
  bool pixelFormatValid() const { return (desc_.valid & kFormat) != 0; }
  bool surfaceValid() const { return (desc_.valid & kCaps) != 0; }

  plat::SurfaceDesc const& record() const { return desc_; }
  plat::SurfaceDesc& record() { return desc_; }

private:
  enum Valid : std::uint32_t { kCaps = 1, kHeight = 2, kWidth = 4, kPitch = 8, kFormat = 0x1000 };

  plat::SurfaceDesc desc_;
};

// What a device can do.
class ccDirectDrawCaps {
public:
  ccDirectDrawCaps() = default;
  explicit ccDirectDrawCaps(plat::DeviceCaps const& caps) : caps_(caps) {}
  bool blt() const { return (caps_.caps & 0x40) != 0; }
  bool bltFourCC() const { return (caps_.caps & 0x100) != 0; }
  bool bltShrink() const { return (caps_.fxCaps & 0x3C00) != 0; }
  bool bltStretch() const { return (caps_.caps & 0x200) != 0; }
  bool colorFill() const { return (caps_.caps & 0x4000000) != 0; }
  bool srcColorKey() const { return (caps_.colorKeyCaps & 0x200) != 0; }
  bool dstColorKey() const { return (caps_.colorKeyCaps & 0x1) != 0; }
  bool dstOverlayColorKey() const { return (caps_.colorKeyCaps & 0x10) != 0; }
  bool overlay() const { return (caps_.caps & 0x800) != 0; }
  bool overlayFourCC() const { return (caps_.caps & 0x2000) != 0; }
  bool overlayShrink() const { return (caps_.fxCaps & 0x780000) != 0; }
  bool overlayStretch() const { return (caps_.caps & 0x4000) != 0; }
  bool palette8Bit() const { return (caps_.palCaps & 0x4) != 0; }
  bool bankSwitched() const { return (caps_.caps & 0x8000000) != 0; }
  std::uint32_t curVisibleOverlays() const { return caps_.curOverlays; }
  std::uint32_t maxVisibleOverlays() const { return caps_.maxOverlays; }
  std::uint32_t videoMemory() const { return caps_.memTotal; }  // bytes
  std::uint32_t videoMemoryFree() const { return caps_.memFree; }

private:
  plat::DeviceCaps caps_;
};

// Something that a device made. Created at most once at a time; released with its device.
class ccDirectDrawObject {
public:
  ccDirectDrawObject() = default;
  ccDirectDrawObject(ccDirectDrawObject const&) = delete;
  ccDirectDrawObject& operator=(ccDirectDrawObject const&) = delete;
  virtual ~ccDirectDrawObject();
  [[nodiscard]] virtual long create(ccDirectDraw*);
  virtual long release();
  virtual bool created() const = 0;

protected:
  virtual long create_(ccDirectDraw*) = 0;
  virtual void release_() = 0;
  ccDirectDraw* directDraw() const { return owner_; }        // null while released
  ccDirectDraw* formerDirectDraw() const { return former_; }  // the last owner, while it lives

private:
  friend class ccDirectDraw;
  ccDirectDraw* owner_ = nullptr;
  ccDirectDraw* former_ = nullptr;
};

// Cuts blits to the primary surface to what is visible of a window.
class ccDirectDrawClipper : public ccDirectDrawObject {
public:
  ~ccDirectDrawClipper() override;
  [[nodiscard]] long window(HWND);
  bool created() const override { return clipper_ != nullptr; }
  plat::Clipper* clipper() const { return clipper_.get(); }

protected:
  long create_(ccDirectDraw*) override;
  void release_() override { clipper_.reset(); }

private:
  plat::Ptr<plat::Clipper> clipper_;
};

// The palette of an 8-bit screen; starts with the system's entries.
class ccDirectDrawPalette : public ccDirectDrawObject {
public:
  ~ccDirectDrawPalette() override;
  [[nodiscard]] long getPalette(plat::PaletteEntry* entries, std::uint32_t start, std::uint32_t count);
  [[nodiscard]] long setPalette(plat::PaletteEntry const* entries, std::uint32_t start, std::uint32_t count);
  bool created() const override { return palette_ != nullptr; }
  plat::DevicePalette* palette() const { return palette_.get(); }

protected:
  long create_(ccDirectDraw*) override;
  void release_() override { palette_.reset(); }

private:
  plat::Ptr<plat::DevicePalette> palette_;
};

// A block of pels. description() before create() says what to make; afterwards it tells what was made. Clipper and palette
// that are attached belong to the caller.
class ccDirectDrawSurface : public ccDirectDrawObject, public virtual ccRepBase {
public:
  ccDirectDrawSurface() = default;
  ~ccDirectDrawSurface() override;

  ccDirectDrawSurfaceDesc const& description() const { return desc_; }
  void description(ccDirectDrawSurfaceDesc const& d) { desc_ = d; }
  ccDirectDrawSurfaceDesc const& createDescription() const { return createDesc_; }

  bool created() const override { return surface_ != nullptr; }
  ccUIRect bounds() const;  // null while there is none
  [[nodiscard]] long recreate();  // by the first description, on the former owner
  [[nodiscard]] long restore();
  bool isLost() const;

  // A null rectangle is the whole surface. The pointer stands in description().surface() until unlock.
  [[nodiscard]] long lock(RECT const* = nullptr);
  [[nodiscard]] long lock(ccUIRect const&);
  long unlock(RECT const* = nullptr);
  void* lastLockSurfacePtr() const { return lastLock_; }  // kept after unlock; null after a failed lock

  [[nodiscard]] long getDC(HDC*);
  long releaseDC(HDC);
  [[nodiscard]] long blt(ccDirectDrawSurface const* source, RECT const* sourceRect, RECT const* destRect, std::uint32_t flags);
  [[nodiscard]] long blt(ccDirectDrawSurface const* source, ccUIRect const& sourceRect, ccUIRect const& destRect, std::uint32_t flags);
  [[nodiscard]] long bltColorFill(RECT const*, std::uint32_t value, std::uint32_t flags);
  [[nodiscard]] long bltColorFill(ccUIRect const&, std::uint32_t value, std::uint32_t flags);
  long bltStatus(std::uint32_t flags);
  [[nodiscard]] long colorKey(ccDirectDrawColorKey const&, std::uint32_t type);
  [[nodiscard]] long attach(ccDirectDrawClipper*);  // null detaches
  [[nodiscard]] long attach(ccDirectDrawPalette*);
  [[nodiscard]] long caps(ccDirectDrawSurfaceCaps&) const;
  [[nodiscard]] long copy(ccDirectDrawSurface& source);
  [[nodiscard]] long updateOverlay(ccDirectDrawSurface& overlay, RECT const* sourceRect, RECT const* destRect, std::uint32_t flags);
  [[nodiscard]] long updateOverlay(ccDirectDrawSurface& overlay, ccUIRect const& sourceRect, ccUIRect const& destRect,
                     std::uint32_t flags);
  plat::Surface* surface() const { return surface_.get(); }

protected:
  long create_(ccDirectDraw*) override;
  void release_() override;

private:
  long lock_(plat::Rect const*);
  void describe_();
  long blt_(ccDirectDrawSurface const*, plat::Rect const*, plat::Rect const*, std::uint32_t flags);
  long fill_(plat::Rect const*, std::uint32_t value, std::uint32_t flags);
  long updateOverlay_(ccDirectDrawSurface&, plat::Rect const*, plat::Rect const*, std::uint32_t flags);

  plat::Ptr<plat::Surface> surface_;
  ccDirectDrawClipper* clipper_ = nullptr;
  ccDirectDrawPalette* palette_ = nullptr;
  ccDirectDrawSurfaceDesc desc_;
  ccDirectDrawSurfaceDesc createDesc_;
  void* lastLock_ = nullptr;
};

// The device of a window, with its primary surface.
class ccDirectDraw {
public:
  ccDirectDraw() = default;
  ccDirectDraw(ccDirectDraw const&) = delete;
  ccDirectDraw& operator=(ccDirectDraw const&) = delete;
  ~ccDirectDraw();

  [[nodiscard]] long create(HWND);
  long release();  // everything it made, then itself
  bool created() const { return device_ != nullptr; }
  [[nodiscard]] long caps(ccDirectDrawCaps& hardware, ccDirectDrawCaps& emulation);
  [[nodiscard]] long displayFormat(std::uint32_t width, std::uint32_t height, std::uint32_t depth);  // full screen
  [[nodiscard]] long displayFormat(ccDirectDrawSurfaceDesc&) const;                                  // the present one
  std::list<std::uint32_t> const& fourCCCodes() const { return fourCCs_; }
  bool supportsFourCC(std::uint32_t code) const;
  long testCooperativeLevel() const;
  long WaitForVerticalBlank(std::uint32_t flags);
  HWND window() const { return window_; }
  ccDirectDrawSurface& primary() { return primary_; }
  ccDirectDrawSurface const& primary() const { return primary_; }
  plat::DisplayDevice* device() const { return device_.get(); }

  static std::string errorCodeToString(long code);

private:
  friend class ccDirectDrawObject;
  long create_(HWND);
  bool makeRoom_() noexcept;  // for one more object
  void remember_(ccDirectDrawObject*);
  void forget_(ccDirectDrawObject*);

  plat::Ptr<plat::DisplayDevice> device_;
  std::list<std::uint32_t> fourCCs_;
  HWND window_ = nullptr;
  std::vector<ccDirectDrawObject*> objects_;  // all that this is the owner or former owner of
  ccDirectDrawSurface primary_;
};
