// A drawing target over plain memory for tests of canvas/ and ui/: no window, no platform, nothing of the back-end. It
// follows the rules of drawing scopes: drawing goes to a surface, or to the backup while a drag without animation runs;
// what was touched becomes invalid; updateScreen copies the invalid part to the "screen" unless updates are locked.
//
// Pel values are those of the depth: 8 an index, 15 and 16 the packed words, 24 and 32 0x00RRGGBB. Children share the root's
// surface. What is asked about surfaces, screen and log concerns the root, whichever scope is asked.
#pragma once

#include "canvas/graphic_props.h"
#include "canvas/scope.h"

#include <map>
#include <memory>

class MemoryScope : public ccUIScope {
public:
  enum Plane { imagePlane, overlayPlane };  // pass colour paints the colour key on an overlay plane, nothing on the other
  static constexpr long kCellWidth = 6;     // text: each character is a cell of this size; its box covers all of the cell
  static constexpr long kCellHeight = 10;   // but the last column and the first and last row, blanks have no box

  struct Call {
    std::string kind;  // such as "set", "draw8", "expandRGB16", "line", "ellipse", "dragStart"
    ccUIRect rect;     // root pels that the call may have touched; null if none
    ccGraphicProps props;
    std::string text;
  };

  explicit MemoryScope(ccPair<long> const& size, int depth = 32, Plane = imagePlane);
  ~MemoryScope() override;

  // What a test asks. Coordinates are root pels.
  int depth() const;
  std::uint32_t pel(long x, long y) const;        // of the surface
  std::uint32_t screenPel(long x, long y) const;  // of the screen
  ccRGB rgb(long x, long y) const { return toRGB(pel(x, y)); }
  ccRGB screenRGB(long x, long y) const { return toRGB(screenPel(x, y)); }
  std::vector<std::uint32_t> const& surface() const;
  std::vector<std::uint32_t> const& screen() const;
  std::vector<std::string> picture(ccUIRect const&, std::map<std::uint32_t, char> const& legend) const;  // '?' for others
  std::uint32_t value(ccColor const&) const;  // the pel that a colour paints
  std::uint32_t keyValue() const;             // the pel of the pass-through colour
  ccRGB toRGB(std::uint32_t value) const;
  ccUIRect invalidRect() const;
  long presentations() const;                       // how often updateScreen brought something to the screen
  std::vector<ccUIRect> const& presented() const;   // what it brought
  std::vector<Call> const& log() const;
  long calls(std::string const& kind) const;
  void clearLog();                  // the log, the presentations and their rectangles
  void keepLog(bool);               // off: nothing is logged or counted, and no call allocates for it
  void poison(std::uint32_t value); // every pel of surface and screen
  void resize(ccPair<long> const&); // a root only; new black surfaces
  ccUIRect rootRect() const;        // this scope in root pels
  bool isDragging() const;

  void window(ccUIScope const& parent, ccUIRect const& localRect) override;
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

  using ccUIScope::draw;
  using ccUIScope::expand;
  using ccUIScope::sample;
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

  void sample(ccPelBuffer_const<ccPackedRGB32Pel> const&, ccPoint const&, ccPair<double> const& scale, bool transparent,
              std::uint32_t key) override;
  void sample(ccPelBuffer_const<ccPackedRGB16Pel> const&, ccPoint const&, ccPair<double> const& scale, bool transparent,
              std::uint16_t key) override;
  void sample(ccPelBuffer_const<unsigned short> const&, ccPoint const&, ccPair<double> const& scale, bool transparent,
              unsigned short key) override;
  void sample(ccPelBuffer_const<unsigned char> const&, ccPoint const&, ccPair<double> const& scale, bool transparent,
              unsigned char key, bool mapped) override;
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
  void fill(ccPoint const&, ccColor const& fill, ccColor const& border, bool surface) override;
  void drawTo(ccPoint const&, ccGraphicProps const&) override;
  void drawToRel(long dx, long dy, ccGraphicProps const&) override;
  void colorMap(std::vector<ccRGB> const&) override;
  void colorMapEx(std::vector<ccRGB> const&) override;

private:
  struct Root;
  explicit MemoryScope(std::shared_ptr<Root> const&);

  void call_(char const* kind, ccUIRect const& local = ccUIRect(), ccGraphicProps const& = ccGraphicProps(),
             std::string const& text = "");
  void touched_(ccUIRect const& local, bool opaque);
  void finish_();
  void put_(long x, long y, std::uint32_t value, bool displayClip);
  void box_(ccUIRect const& local, std::uint32_t value);
  void line_(ccPair<long> from, ccPair<long> to, ccGraphicProps const&);
  std::uint32_t fromRGB_(ccRGB const&) const;
  std::uint32_t from8_(unsigned char, bool mapped) const;
  std::uint32_t from16_(unsigned short) const;
  ccUIRect textBlock_(std::string const&, ccPoint const&, ccUIFormat const&) const;
  template <class T, class Value>
  void pels_(char const* kind, ccPelBuffer_const<T> const&, ccPair<long> const& at, bool transparent, T key,
             bool displayClip, Value const&);
  template <class T, class Value>
  void scaled_(char const* kind, ccPelBuffer_const<T> const&, ccPoint const&, ccPair<double> const& scale,
               bool transparent, T key, bool displayClip, InterpolationModes, Value const&);

  std::shared_ptr<Root> root_;
  ccPair<long> origin_;  // upper left in root pels
  bool optimize_ = false;
};

// What is seen of both planes: the overlay's pels, and the image's where the overlay holds its colour key. Row by row; the
// screens, or the surfaces behind them.
std::vector<ccRGB> cfComposedScreens(MemoryScope const& image, MemoryScope const& overlay);
std::vector<ccRGB> cfComposedSurfaces(MemoryScope const& image, MemoryScope const& overlay);
