// A drawing target behind one layer of a tablet: abstract. Positions are client coordinates in pels; the client offset is the
// client coordinate of the scope's upper left pel. No locks inside: the caller holds the root's mutex. Drawing never throws.
#pragma once

#include "canvas/color.h"
#include "canvas/flag_stack.h"
#include "canvas/fwd.h"
#include "canvas/layers.h"
#include "canvas/rect.h"
#include "foundation/pel_buffer.h"
#include "foundation/rounding.h"
#include "foundation/vector.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

// The one rule from doubles to pels. The small addition lets a half that arithmetic has made slightly too small go up like a
// true half.
inline double cfPelFloor(double v) { return std::floor(v + 0.5 + 1e-6); }
inline long cfPelOf(double v) { return cfFloorToLong(v + 0.5 + 1e-6); }  // of 32 bits; not a number gives 0

class ccUIScope {
public:
  using InterpolationModes = cc_TabletEnums::InterpolationModes;
  // State bits: all changed 1, modified 2, opaque 4, recording 8. (bits & 9) == 1 means that all is marked and nobody
  // records: change reports may be skipped.
  enum StateBits : unsigned { kAllChanged = 1, kModified = 2, kOpaque = 4, kRecording = 8 };

  explicit ccUIScope(ccPair<long> const& size);
  ccUIScope(ccUIScope const&);
  ccUIScope& operator=(ccUIScope const&) = delete;
  virtual ~ccUIScope();

  virtual void window(ccUIScope const& parent, ccUIRect const& localRect);
  virtual ccUIScope* createChildScope(ccUIRect const&, bool subset) = 0;  // the caller owns it
  virtual void dragStart();
  virtual void dragStop();
  virtual void dragErase();
  virtual void dragAnimate(bool);
  virtual void lockScreenUpdatesPush(bool);
  virtual bool lockScreenUpdatesPop();  // whether it was locked before
  virtual bool screenUpdatesLocked() const;
  virtual void invalidateScreen(ccUIRect const&) = 0;
  virtual void updateScreen() = 0;
  virtual void optimizeDrawing(bool);

  virtual void draw(ccGenShape const&, ccColor const&);  // here and for ccGraphic: only reports the change
  virtual void draw(ccEllipseArc const&, ccGraphicProps const&) = 0;
  virtual void draw(ccEllipse const&, ccGraphicProps const&) = 0;
  virtual void draw(ccPolygon const&, ccGraphicProps const&) = 0;
  virtual void draw(ccRLEBuffer const&, ccPoint const&, std::vector<ccColor> const& map, bool transparent,
                    unsigned char key) = 0;
  virtual void draw(ccRLEBuffer const&, ccPoint const&, std::vector<unsigned char> const& map, bool transparent,
                    unsigned char key) = 0;
  virtual void draw(ccPelBuffer_const<ccPackedRGB32Pel> const&, ccPoint const&, bool transparent, std::uint32_t key) = 0;
  virtual void draw(ccPelBuffer_const<ccPackedRGB16Pel> const&, ccPoint const&, bool transparent, std::uint16_t key) = 0;
  virtual void draw(ccPelBuffer_const<unsigned short> const&, ccPoint const&, bool transparent, unsigned short key) = 0;
  virtual void draw(ccPelBuffer_const<unsigned char> const&, ccPoint const&, bool transparent, unsigned char key,
                    bool mapped) = 0;
  virtual void draw(std::string const&, ccPoint const&, ccColor const& text, ccColor const& back, ccUIFormat const&) = 0;
  virtual void draw(ccGraphic const&, ccGraphicProps const&);
  virtual void draw(ccPolyline const&, ccGraphicProps const&) = 0;
  virtual void draw(ccGenRect const&, ccGraphicProps const&) = 0;
  virtual void draw(ccEllipseArc2 const&, ccGraphicProps const&) = 0;
  virtual void draw(ccEllipse2 const&, ccGraphicProps const&) = 0;
  virtual void draw(ccLineSeg const&, ccGraphicProps const&) = 0;
  virtual void draw(ccPoint const&, ccGraphicProps const&) = 0;
  // The uncut rectangle; clipped gets the part inside the scope.
  virtual ccUIRect textRect(std::string const&, ccPoint const&, ccUIFormat const&, ccUIRect& clipped) = 0;

  virtual void sample(ccRLEBuffer const&, ccPoint const&, ccPair<double> const& scale,
                      std::vector<unsigned char> const& map, bool transparent, unsigned char key);
  virtual void sample(ccRLEBuffer const&, ccPoint const&, ccPair<long> const& scale,
                      std::vector<unsigned char> const& map, bool transparent, unsigned char key);
  virtual void sample(ccPelBuffer_const<ccPackedRGB32Pel> const&, ccPoint const&, ccPair<double> const& scale,
                      bool transparent, std::uint32_t key) = 0;
  virtual void sample(ccPelBuffer_const<ccPackedRGB32Pel> const&, ccPoint const&, ccPair<long> const& scale,
                      bool transparent, std::uint32_t key);
  virtual void sample(ccPelBuffer_const<ccPackedRGB16Pel> const&, ccPoint const&, ccPair<double> const& scale,
                      bool transparent, std::uint16_t key) = 0;
  virtual void sample(ccPelBuffer_const<ccPackedRGB16Pel> const&, ccPoint const&, ccPair<long> const& scale,
                      bool transparent, std::uint16_t key);
  virtual void sample(ccPelBuffer_const<unsigned short> const&, ccPoint const&, ccPair<double> const& scale,
                      bool transparent, unsigned short key) = 0;
  virtual void sample(ccPelBuffer_const<unsigned short> const&, ccPoint const&, ccPair<long> const& scale,
                      bool transparent, unsigned short key);
  virtual void sample(ccPelBuffer_const<unsigned char> const&, ccPoint const&, ccPair<double> const& scale,
                      bool transparent, unsigned char key, bool mapped) = 0;
  virtual void sample(ccPelBuffer_const<unsigned char> const&, ccPoint const&, ccPair<long> const& scale,
                      bool transparent, unsigned char key, bool mapped);

  virtual void expand(ccRLEBuffer const&, ccPoint const&, ccPair<double> const& scale,
                      std::vector<unsigned char> const& map, bool transparent, unsigned char key);
  virtual void expand(ccRLEBuffer const&, ccPoint const&, ccPair<long> const& scale,
                      std::vector<unsigned char> const& map, bool transparent, unsigned char key);
  virtual void expand(ccPelBuffer_const<ccPackedRGB32Pel> const&, ccPoint const&, ccPair<double> const& scale,
                      bool transparent, std::uint32_t key, InterpolationModes) = 0;
  virtual void expand(ccPelBuffer_const<ccPackedRGB32Pel> const&, ccPoint const&, ccPair<long> const& scale,
                      bool transparent, std::uint32_t key, InterpolationModes);
  virtual void expand(ccPelBuffer_const<ccPackedRGB16Pel> const&, ccPoint const&, ccPair<double> const& scale,
                      bool transparent, std::uint16_t key, InterpolationModes) = 0;
  virtual void expand(ccPelBuffer_const<ccPackedRGB16Pel> const&, ccPoint const&, ccPair<long> const& scale,
                      bool transparent, std::uint16_t key, InterpolationModes);
  virtual void expand(ccPelBuffer_const<unsigned short> const&, ccPoint const&, ccPair<double> const& scale,
                      bool transparent, unsigned short key, InterpolationModes) = 0;
  virtual void expand(ccPelBuffer_const<unsigned short> const&, ccPoint const&, ccPair<long> const& scale,
                      bool transparent, unsigned short key, InterpolationModes);
  virtual void expand(ccPelBuffer_const<unsigned char> const&, ccPoint const&, ccPair<double> const& scale,
                      bool transparent, unsigned char key, bool mapped, InterpolationModes) = 0;
  virtual void expand(ccPelBuffer_const<unsigned char> const&, ccPoint const&, ccPair<long> const& scale,
                      bool transparent, unsigned char key, bool mapped, InterpolationModes);

  virtual void set(ccUIRect const&, ccColor const&) = 0;
  virtual void set(ccColor const&) = 0;
  virtual void fill(ccPoint const&, ccColor const& fill, ccColor const& border, bool surface);
  virtual void drawTo(ccPoint const&, ccGraphicProps const&) = 0;
  virtual void drawToRel(long dx, long dy, ccGraphicProps const&) = 0;
  virtual bool isNull() const;
  virtual ccPair<long> size() const;
  virtual void colorMap(std::vector<ccRGB> const&);
  virtual void colorMapEx(std::vector<ccRGB> const&);
  virtual void newDisplayClipRect(ccUIRect const&);  // in the root surface's pels; null means none

  void move(ccUIScope const& parent, ccUIRect const&);    // a part of parent whose client origin is the rectangle's corner
  void subset(ccUIScope const& parent, ccUIRect const&);  // a part of parent in the parent's client coordinates
  void drawStart(ccPoint const&);  // a place that is not finite: nowhere, and no line is drawn from there
  void moveToRel(long dx, long dy);
  ccPair<long> currentPoint() const { return current_; }  // within the far limits of rectangles
  bool isNowhere() const { return nowhere_; }
  void allChange();
  void change(ccUIRect r, bool opaque);  // in pels from the scope's upper left; a null rectangle does nothing
  void modified(bool);
  void opaque(bool);
  unsigned stateBits() const { return bits_; }
  void recording(bool);
  ccUIRect changeRect() const { return changed_; }
  void clearChange();
  ccPair<long> clientOffset() const { return offset_; }
  ccUIRect displayClipRect() const { return displayClip_; }
  // Least squared RGB distance, the lowest index on ties; entry 243 only for a pass colour. Carries index and RGB.
  static ccColor nearestColor(ccColor const&, std::vector<ccRGB> const&);

protected:
  void currentPoint(ccPair<long> const& p) { current_ = p, nowhere_ = false; }
  static bool isPlace(ccPoint const& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); }
  // Within the far limits of rectangles.
  long xCoord(ccPoint const& p) const { return nearPel_(p.x() - static_cast<double>(offset_.x())); }
  long yCoord(ccPoint const& p) const { return nearPel_(p.y() - static_cast<double>(offset_.y())); }
  void setSize_(ccPair<long> const& size) { size_ = size; }
  // Where a scope stands and draws on from. Whoever lets others draw through it in mid-drawing puts it back.
  struct cs_Place {
    ccPair<long> offset, current;
    bool nowhere = false;
  };
  cs_Place place_() const { return cs_Place{offset_, current_, nowhere_}; }
  void place_(cs_Place const& p) { offset_ = p.offset, current_ = p.current, nowhere_ = p.nowhere; }
  // out(x, y) = source(floorT((x - offset.x) / scale), floorT((y - offset.y) / scale)), indices clamped to the source, for
  // the part of the scaled image inside clip, which stays as it is. The image coordinates of out are those of clip. An empty
  // part leaves out unbound. Both axes use the one factor. The pels of out hold until the next call unless a view of them is
  // kept. Interpolation is bilinear between pel centres and works on magnifications only. Instantiated for the four pel types.
  template <class T>
  void pelScale(ccPelBuffer_const<T> const& source, ccPelBuffer<T>& out, double scale, ccUIRect& clip,
                ccPair<long> const& offset, InterpolationModes);

private:
  static long nearPel_(double v) { return std::clamp(cfPelOf(v), -ccUIRect::kFar, ccUIRect::kFar); }

  struct cs_Scratch;  // what pelScale keeps from call to call, so that a settled size allocates nothing

  ccPair<long> offset_;  // client offset
  ccPair<long> size_;
  ccPair<long> current_;
  bool nowhere_ = false;
  unsigned bits_ = 0;
  ccUIRect changed_;
  ccUIRect displayClip_;
  ccFlagStack locks_;
  std::unique_ptr<cs_Scratch> scratch_;  // never shared with a copy
};
