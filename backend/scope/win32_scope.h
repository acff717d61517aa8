// The drawing target behind every tablet of a Win32 display. A root scope owns a device and its surfaces; child scopes own
// none and draw through their root with an origin and a clip. Drawing goes to an off-screen surface, what changed is
// remembered, and updateScreen() composes and presents it. Pels only reach memory inside a draw phase, which every drawing
// call opens, and closes unless drawing is optimised. Calls come under the display's root mutex; nothing throws but the
// colour maps' cc_CacheMap::InvalidColorMap. A child's root should outlive it; a child without root draws nothing.
#pragma once

#include "backend/scope/cache_map.h"
#include "backend/scope/ddraw.h"
#include "canvas/flag_stack.h"
#include "canvas/scope.h"
#include "platform/handles.h"
#include "platform/types.h"

#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <vector>

class ccAcqFifo;
class ccDirectDrawSurfacePool;
class ccImageConverter;
class ccLiveDisplayProps;
class ccWin32Display;

namespace plat {
class Painter;
}

// What getDisplayedImage needs of the display to read a palette surface and its overlay.
struct cs_GetDisplayedImageInfo {
  bool overlayRequested = false;
  ccDirectDrawSurface* drawingSurface = nullptr;  // output
  ccDirectDrawSurface* partnerSurface = nullptr;  // output, if the overlay is requested
  std::vector<ccRGB> imageTable;
  bool imageTableValid = false;
  std::vector<ccRGB> overlayTable;
  bool overlayTableValid = false;
  unsigned char keyIndex = 0;
  ccPackedRGB32Pel background;
  std::int32_t overlayMode = 0;  // a layer: 1 paints the background at key pels, 2 keeps the image
};

// What live display keeps with a root scope.
class cc_ScopeLive {
public:
  virtual ~cc_ScopeLive() = default;
};

class ccWin32UIScope : public ccUIScope {
public:
  enum DrawMethod : std::int32_t {
    kNoPhase = 0,
    kBlit = 1,    // blits to the target surface
    kPaint = 2,   // a device context of the target
    kDirect = 3,  // the target is locked
  };

  // A null window: create() comes later. The display arbitrates which scope of it holds a surface; it may be null.
  ccWin32UIScope(HWND, ccPair<long> const& size, bool overlayPlane, ccWin32Display*);
  // A child with its own clip, of the same client origin as the rectangle's corner.
  ccWin32UIScope(ccWin32UIScope const& parent, ccUIRect const&);
  ccWin32UIScope(ccWin32UIScope const&) = delete;
  ccWin32UIScope& operator=(ccWin32UIScope const&) = delete;
  ~ccWin32UIScope() override;
  // Deletes a root scope, at once or, where its redraw has led here, once that has ended.
  static void retire(ccWin32UIScope*) noexcept;

  // Surfaces. Depth -1 is the screen's; sizes are clamped to the screen. Results are those of ddraw.h.
  long create(HWND, ccPair<long> size, long depth);
  long destroy();
  long resize(ccPair<long> size, long depth);
  void resizeDrawingSurface(ccPair<long> const&);
  long resizeCombinedSurface(ccPair<long> const&);
  long releaseDrawingSurface();
  long releaseCombinedSurface();
  long restoreAll(std::string* report);  // appends dumpInfo before and after
  void dumpInfo(std::ostringstream&) const;
  HWND window() const { return root_().window_; }
  ccDirectDraw& directDraw() { return root_().ddraw_; }

  // Chroma keying: the application's own graphics (getDC) over the image. The key is a COLORREF.
  long enableChromaKeying(bool enable, bool yuv);
  bool chromaKeyingEnabled() const { return (root_().chromaFlags_ & kChroma) != 0; }
  long chromaKey(unsigned long);
  unsigned long chromaKey() const { return root_().chromaKey_; }
  std::uint32_t chromaFlags() const { return root_().chromaFlags_; }
  HDC getDC();  // null without chroma keying; one at a time
  long releaseDC(HDC);

  // An overlay plane lies above the image layer and lets it through where it has ccColor::passColor().
  long enableOverlayPlane(bool, ccPair<long> size);
  bool overlayPlaneEnabled() const { return overlayPlane_; }
  long drawSurface(ccWin32UIScope* partner);  // the scope of the other layer; null parts them

  long palette(std::vector<ccRGB> const& entries);  // exactly 256, else nothing
  void scroll(ccPair<long> const&);
  ccPair<long> scroll() const { return root_().scroll_; }
  void waitForVerticalBlank(bool on) { root_().waitForVerticalBlank_ = on; }
  bool waitForVerticalBlank() const { return root_().waitForVerticalBlank_; }
  void redrawCallBack(void (*redraw)(void*), void* argument);
  long desktopDepth() const;  // a depth code: 8, 15, 16, 24, 32
  long depth() const { return root_().depth_; }
  std::vector<HFONT> const& fontTable() const { return fonts_; }
  void fontTable(std::vector<HFONT> const& fonts) { fonts_ = fonts; }
  ccUIRect scopeRect() const { return rect_; }  // in the root's surface

  // Reads back what is displayed: layer 0 this scope's surface, 1 the partner's, else what goes to the screen. info may be
  // null. The rest of a larger out is zero.
  void getDisplayedImage(ccPelBuffer<unsigned char>& out, cs_GetDisplayedImageInfo*, cc_TabletEnums::Layers);
  void getDisplayedImage(ccPelBuffer<ccPackedRGB16Pel>& out, cs_GetDisplayedImageInfo*, cc_TabletEnums::Layers);
  void getDisplayedImage(ccPelBuffer<ccPackedRGB32Pel>& out, cs_GetDisplayedImageInfo*, cc_TabletEnums::Layers);

  // Colour maps of the root. Setting throws cc_CacheMap::InvalidColorMap for a wrong size.
  void cacheMap(std::vector<ccRGB> const&);
  void cacheMap(std::vector<unsigned char> const& indexes);
  std::vector<unsigned char> cacheMap() const;
  std::vector<ccRGB> cacheColorMap() const;
  void imageCacheMap(std::vector<ccRGB> const&);
  void flushImageCache();    // forgets the identity; a local image at the same place stays a hit
  void releaseImageCache();  // forgets the surface too

  // Live display.
  bool startLiveDisplay(ccAcqFifo*, ccWin32Display*, ccLiveDisplayProps const*);
  void stopLiveDisplay();
  bool isLiveEnabled() const { return root_().liveEnabled_; }
  double liveFrameRate() const;
  unsigned char liveStatus() const;
  void magChange(double mag);
  void installCachePool(ccDirectDrawSurfacePool* pool) { root_().cachePool_ = pool; }
  void releaseCachePool() { root_().cachePool_ = nullptr; }
  ccDirectDrawSurface* getCacheSurface();
  ccPair<long> getCacheSize() const;

  // Stops the running phase, whatever optimizeDrawing says.
  void stopDrawPhase();

  // ccUIScope.
  void window(ccUIScope const& parent, ccUIRect const&) override;
  ccUIScope* createChildScope(ccUIRect const&, bool subset) override;
  void dragStart() override;
  void dragStop() override;
  void dragErase() override;
  void dragAnimate(bool) override;
  void lockScreenUpdatesPush(bool) override;
  bool lockScreenUpdatesPop() override;
  bool screenUpdatesLocked() const override;
  void invalidateScreen(ccUIRect const&) override;
  void updateScreen() override;
  void optimizeDrawing(bool) override;

  void draw(ccGenShape const&, ccColor const&) override;
  void draw(ccEllipseArc const&, ccGraphicProps const&) override;
  void draw(ccEllipse const&, ccGraphicProps const&) override;
  void draw(ccPolygon const&, ccGraphicProps const&) override;
  void draw(ccRLEBuffer const&, ccPoint const&, std::vector<ccColor> const& map, bool transparent,
            unsigned char key) override;
  void draw(ccRLEBuffer const&, ccPoint const&, std::vector<unsigned char> const& map, bool transparent,
            unsigned char key) override;
  void draw(ccPelBuffer_const<ccPackedRGB32Pel> const&, ccPoint const&, bool transparent, std::uint32_t key) override;
  void draw(ccPelBuffer_const<ccPackedRGB16Pel> const&, ccPoint const&, bool transparent, std::uint16_t key) override;
  void draw(ccPelBuffer_const<unsigned short> const&, ccPoint const&, bool transparent, unsigned short key) override;
  void draw(ccPelBuffer_const<unsigned char> const&, ccPoint const&, bool transparent, unsigned char key,
            bool mapped) override;
  void draw(std::string const&, ccPoint const&, ccColor const& text, ccColor const& back, ccUIFormat const&) override;
  void draw(ccGraphic const&, ccGraphicProps const&) override;
  void draw(ccPolyline const&, ccGraphicProps const&) override;
  void draw(ccGenRect const&, ccGraphicProps const&) override;
  void draw(ccEllipseArc2 const&, ccGraphicProps const&) override;
  void draw(ccEllipse2 const&, ccGraphicProps const&) override;
  void draw(ccLineSeg const&, ccGraphicProps const&) override;
  void draw(ccPoint const&, ccGraphicProps const&) override;
  ccUIRect textRect(std::string const&, ccPoint const&, ccUIFormat const&, ccUIRect& clipped) override;

  using ccUIScope::sample;
  void sample(ccRLEBuffer const&, ccPoint const&, ccPair<double> const& scale, std::vector<unsigned char> const& map,
              bool transparent, unsigned char key) override;
  void sample(ccPelBuffer_const<ccPackedRGB32Pel> const&, ccPoint const&, ccPair<double> const& scale, bool transparent,
              std::uint32_t key) override;
  void sample(ccPelBuffer_const<ccPackedRGB16Pel> const&, ccPoint const&, ccPair<double> const& scale, bool transparent,
              std::uint16_t key) override;
  void sample(ccPelBuffer_const<unsigned short> const&, ccPoint const&, ccPair<double> const& scale, bool transparent,
              unsigned short key) override;
  void sample(ccPelBuffer_const<unsigned char> const&, ccPoint const&, ccPair<double> const& scale, bool transparent,
              unsigned char key, bool mapped) override;
  using ccUIScope::expand;
  void expand(ccRLEBuffer const&, ccPoint const&, ccPair<double> const& scale, std::vector<unsigned char> const& map,
              bool transparent, unsigned char key) override;
  void expand(ccPelBuffer_const<ccPackedRGB32Pel> const&, ccPoint const&, ccPair<double> const& scale, bool transparent,
              std::uint32_t key, InterpolationModes) override;
  void expand(ccPelBuffer_const<ccPackedRGB16Pel> const&, ccPoint const&, ccPair<double> const& scale, bool transparent,
              std::uint16_t key, InterpolationModes) override;
  void expand(ccPelBuffer_const<unsigned short> const&, ccPoint const&, ccPair<double> const& scale, bool transparent,
              unsigned short key, InterpolationModes) override;
  void expand(ccPelBuffer_const<unsigned char> const&, ccPoint const&, ccPair<double> const& scale, bool transparent,
              unsigned char key, bool mapped, InterpolationModes) override;

  void set(ccUIRect const&, ccColor const&) override;
  void set(ccColor const&) override;
  void fill(ccPoint const&, ccColor const& fill, ccColor const& border, bool toBorder) override;
  void drawTo(ccPoint const&, ccGraphicProps const&) override;
  void drawToRel(long dx, long dy, ccGraphicProps const&) override;
  bool isNull() const override;
  ccPair<long> size() const override;
  void colorMap(std::vector<ccRGB> const&) override;
  void colorMapEx(std::vector<ccRGB> const&) override;

  // New virtual operations.
  virtual ccPair<long> sizeImageCache() const;

  // Draws without the image cache.
  void drawNC(ccPelBuffer_const<unsigned char> const&, ccPoint const&, bool transparent, unsigned char key, bool mapped);

protected:
  virtual bool win32DrawStart_(DrawMethod);
  virtual void win32DrawStop_();

  ccDirectDrawSurface& surface() { return root_().drawing_; }
  ccDirectDrawSurface& combsurface() { return root_().combined_; }
  void drawCache(ccPoint const&, bool transparent, unsigned long key);

private:
  enum ChromaFlags : std::uint32_t {
    kChroma = 1, kYuvWanted = 2, kOverlay = 4, kOverlayUYVY = 8, kOverlayYUY2 = 16, kOverlayUnusable = 32,
  };
  // What a running phase draws on. Taken from the surface after the phase has started, so nothing of it is older than that.
  struct cs_Target {
    ccDirectDrawSurface* surface = nullptr;
    HDC dc = nullptr;
    plat::Painter* painter = nullptr;  // of dc, in a painting phase
    unsigned char* pels = nullptr;     // in a direct phase: the upper left pel
    long pitch = 0;                    // bytes from row to row
    long depth = 0;
    long bytesPerPel = 0;
    ccUIRect bounds;  // what lies on the surface
  };
  class cc_Call;     // around a drawing operation
  class cc_Phase;    // opens a phase, and closes it
  struct cs_Clip;    // what of an image lies inside the scope
  struct cs_Scale;   // where a scaled image goes
  struct cs_Standing;  // what a redraw in mid-drawing may have changed
  struct cs_ColumnIndex {
    double scale = 0;
    std::int64_t first = 0;
    long count = 0;
    long sourceWidth = 0;
    std::vector<std::int32_t> columns;
  };

  // The display's part, defined with it. The scope of a display that holds a surface locked or its device context.
  static ccWin32UIScope* displayActiveLockedScope_(ccWin32Display*);
  static void displayActiveLockedScope_(ccWin32Display*, ccWin32UIScope*);
  static bool platformCompatibility_();

  ccWin32UIScope& root_() { return parent_ ? *parent_ : *this; }
  ccWin32UIScope const& root_() const { return parent_ ? *parent_ : *this; }
  void leaveRoot_();

  // Surfaces.
  long createSurface_(ccDirectDrawSurface&, ccPair<long> size, long depth, bool forceSystem);
  long createOverlay_(ccDirectDrawSurface&, ccPair<long> size, bool yuv);
  long createChromaKeySurfaces_(ccPair<long> size);
  long createYuvDrawing_(ccPair<long> size);
  bool canBlitToOverlay_();
  long colorFillAll_(ccDirectDrawSurface&, std::uint32_t value);
  ccDirectDrawSurfaceDesc offscreenDesc_(ccPair<long> size, long depth, bool forceSystem) const;
  ccPair<long> clampToScreen_(ccPair<long> size) const;
  void attachPalette_();
  void ddColorKey_();
  std::uint32_t pelOfChromaKey_();
  long applyChromaKey_();
  long keySurfaces_();
  void overlayPlaneColorKey_();
  long setDirectDrawPalette_();
  void readFormat_();
  void abandonPhase_();
  ccDirectDrawSurface* displayedSurface_();
  ccUIRect ownRect_() const;
  ccDirectDrawSurfaceDesc screen_() const;
  ccDirectDrawSurface* partnerSurface_() { return partnerScope_ ? &partnerScope_->drawing_ : nullptr; }
  ccDirectDrawSurface* combineTarget_();
  bool isUsed_(ccDirectDrawSurface const&) const;
  bool isMissing_() const;
  void releaseUnused_();
  long attachClipper_();
  void shrinkDirty_();
  void setRect_(ccUIRect const&);
  void setParent_(ccWin32UIScope& root);
  void setPartner_(ccWin32UIScope*);
  void dropClientDC_();
  void releaseDevice_();
  long screenDepth_() const;
  static long depthCode_(ccDirectDrawPixelFormat const&);

  // Phases and the way to the screen.
  bool win32DrawStart(DrawMethod);
  void win32DrawStop();
  void win32Changed(ccUIRect rect);
  void report_(ccUIRect const&, bool opaque);
  bool drawsToBackup_() const { return dragActive_ && !dragAnimate_ && backup_.created(); }
  bool copyToBackup_();
  void setUpPainter_();
  cs_Target target_() const;
  bool takeTarget_(DrawMethod, ccDirectDrawSurface&);
  bool startRoot_(DrawMethod);
  bool startChild_(DrawMethod);
  bool surfacesLost_() const;
  bool restoreLostSurfaces_();
  bool rebuildSurfaces_();
  bool partnerReady_();
  void callRedraw_();
  template <class Draw> void quietly_(Draw&&);
  cs_Standing standing_();
  void stand_(cs_Standing const&);
  bool present_(ccDirectDrawSurface& from, ccUIRect const& source, ccUIRect const& dest);
  bool combine_(ccDirectDrawSurface& below, ccDirectDrawSurface& above, ccDirectDrawSurface& target,
                ccUIRect const& source, ccUIRect const& dest);
  bool mergeBackup_(ccUIRect&);
  bool updateByMode_(ccUIRect const& client, ccUIRect const& source, ccUIRect const& dest);
  void convertToYuv_();
  void updateHardwareOverlay_(ccUIRect const& client);
  bool attachScreen_();

  // Pels. T is the source pel; key is a pel of that type.
  template <class T> cs_Clip clip_(ccPair<long> size, ccPair<long> pos, ccUIRect const& bounds) const;
  template <class T>
  void drawFamily_(ccPelBuffer_const<T> const&, ccPoint const&, bool transparent, T key, bool mapped);
  template <class T>
  bool writePels_(ccPelBuffer_const<T> const&, ccPair<long> pos, bool transparent, T key, bool mapped, long unless = 0);
  template <class T, class Place, class Write> bool writePhase_(Place&&, Write&&);
  template <class T, class Body> void withLookup_(long depth, bool raw, bool mapped, Body&&);
  template <class T> ccDirectDrawSurface* cacheImage_(ccPelBuffer_const<T>&, bool mapped);
  bool blitCache_(ccDirectDrawSurface& to, ccDirectDrawSurface& cached, cs_Clip const&, bool transparent, std::uint32_t key);
  template <class T>
  void expandFamily_(ccPelBuffer_const<T> const&, ccPoint const&, ccPair<double> const& scale, bool transparent, T key,
                     bool mapped, InterpolationModes);
  template <class T>
  void sampleFamily_(ccPelBuffer_const<T> const&, ccPoint const&, ccPair<double> const& scale, bool transparent, T key,
                     bool mapped);
  template <class T>
  void drawScaled_(ccPelBuffer_const<T> const&, cs_Scale const&, bool transparent, T key, bool mapped,
                   InterpolationModes);
  template <class T>
  void drawScaledCache_(ccDirectDrawSurface&, cs_Scale const&, bool transparent, T key, bool mapped, InterpolationModes);
  template <class T>
  bool drawFused_(ccPelBuffer_const<T> const&, cs_Scale const&, bool transparent, T key, bool mapped);
  cs_Scale scaled_(ccPair<long> size, ccPoint const&, ccPair<double> const& scale) const;
  ccUIRect painted_(cs_Scale const&, ccPair<long> size) const;
  std::int32_t const* columns_(double scale, std::int64_t first, long count, long sourceWidth);
  template <class T> void displayedImage_(ccPelBuffer<T>&, cs_GetDisplayedImageInfo*, cc_TabletEnums::Layers);
  ccUIRect clipToDisplay_(ccUIRect const& rootRect) const;

  // Lines, figures and text. Rectangles are in pels of the scope.
  template <class Paint> void paintFigure_(ccUIRect const& touched, ccUIRect const& reach, Paint&&);
  ccUIRect figureRect_(ccRect const& box, long before, double more) const;
  ccUIRect chainOf_(std::span<ccVector<2> const>, long reach);
  void paintChain_(ccUIRect const& touched, ccGraphicProps const&, int fillRule);
  void drawFarChain_(std::span<ccVector<2> const>, ccGraphicProps const&, int fillRule, bool closed);
  void drawLine_(ccPair<long> const& from, ccPair<long> const& to, ccGraphicProps const&);
  void paintLine_(plat::Painter&, ccPair<long> const& from, ccPair<long> const& to, ccGraphicProps const&);
  HFONT font_(long id) const;

  // Colours, fills, runs.
  std::uint32_t pelOf_(ccColor const&) const;
  std::uint32_t fillPelOf_(ccColor const&) const;
  COLORREF bgrColor_(ccColor const&) const;
  unsigned char paletteIndex_(ccColor const&) const;
  void colorFill_(cc_Phase&, ccUIRect const& rect, std::uint32_t value);
  void writeRuns_(cs_Target const&, ccRLEBuffer const&, cs_Clip const&, std::vector<unsigned char> const& map, bool transparent,
                  unsigned char key);

  // Fields of every scope.
  bool overlayPlane_;
  ccWin32Display* display_;
  ccWin32UIScope* parent_ = nullptr;  // the root of a child
  std::vector<ccWin32UIScope*> kids_;
  ccUIRect rect_;  // in the root's surface
  std::vector<HFONT> fonts_;
  ccDirectDrawColorKey colorKey_;
  DrawMethod method_ = kNoPhase;
  cc_Call* call_ = nullptr;  // the innermost that runs

  // Fields of a root.
  HWND window_ = nullptr;
  HPALETTE palette_ = nullptr;
  ccDirectDraw ddraw_;
  ccDirectDrawSurface drawing_, backup_, cache_, graphics_, combined_;
  ccDirectDrawClipper clipper_;
  ccDirectDrawPalette ddPalette_;
  long depth_ = 0;                             // of the drawing surface
  bool optimize_ = false;
  cs_Target phase_;                            // of the running phase
  ccWin32UIScope const* phaseUser_ = nullptr;  // who set up origin and clip last
  ccWin32UIScope* partnerScope_ = nullptr;     // of the other layer
  std::vector<ccWin32UIScope*> partnerOf_;     // whose partner this is
  long wantedDepth_ = -1;                           // as create was asked
  bool waitForVerticalBlank_ = false;
  bool dragActive_ = false;
  bool dragAnimate_ = false;
  bool restoring_ = false;
  bool redrawing_ = false;
  ccWin32UIScope* retired_ = nullptr;  // the next of those that wait to be deleted
  bool redrawDue_ = false;   // a redraw has failed, or a drawing for want of memory
  bool incomplete_ = false;  // a surface could not be given back, or lacks its clipper, and must be made anew
  bool deviceGone_ = false;  // the device itself could not be made again
  long redraws_ = 0;
  HDC clientDC_ = nullptr;  // handed out by getDC
  COLORREF chromaKey_ = 0;
  std::uint32_t chromaFlags_ = 0;
  ccPair<long> scroll_;
  ccUIRect invalid_;      // what must still reach the screen
  ccUIRect backupDirty_;  // drawn to the backup surface in a drag without animation
  ccUIRect dragDirty_;    // drawn to the drawing surface in a drag, or since the last erase
  ccUIRect eraseFailed_;  // what an erase of this drag could not bring back
  ccFlagStack screenLock_;
  std::uint32_t cachedRoot_ = 0;    // identity of the image in the cache surface
  void const* cachedHandle_ = nullptr;
  ccPair<long> cachedSize_;
  cc_CacheMap colorCacheMap_;       // overlay graphics, and 8-bit screens
  cc_CacheMap imageCacheMap_;
  cs_ColumnIndex columnIndex_;  // of the last scaled image: the source column of each target column
  void (*redraw_)(void*) = nullptr;
  void* redrawArgument_ = nullptr;
  std::unique_ptr<ccImageConverter> converter_;  // null on an overlay plane
  bool liveEnabled_ = false;
  double lastFrameRate_ = 0;
  unsigned char lastLiveStatus_ = 0;
  ccDirectDrawSurfacePool* cachePool_ = nullptr;  // not owned
  std::unique_ptr<cc_ScopeLive> live_;
  std::vector<plat::Point> chain_;  // of the polygon or polyline that is being drawn

  friend class ccWin32Display;
  friend class ccWin32PelBufUIScope;
  friend class ccWin32LiveMachine;
};
