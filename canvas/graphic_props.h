// How lines are drawn: colour, width in pels, style, fill, joins and caps. Widths 0 and 1 draw alike.
#pragma once

#include "canvas/color.h"
#include "foundation/persistent.h"

enum cePenStyle : std::int32_t { ceSolidPen, ceDashPen, ceDotPen, ceDashDotPen, ceDashDotDotPen };

class ccGraphicProps : public ccPersistent {
public:
  ccGraphicProps() = default;
  ccGraphicProps(ccColor const& color, long width, cePenStyle style, bool fill)
      : penColor_(color), penWidth_(width), penStyle_(style), fill_(fill)
  {
  }

  ccColor const& penColor() const { return penColor_; }
  void penColor(ccColor const& v) { mutating_(), penColor_ = v; }
  long penWidth() const { return penWidth_; }
  void penWidth(long v) { mutating_(), penWidth_ = v; }
  cePenStyle penStyle() const { return penStyle_; }
  void penStyle(cePenStyle v) { mutating_(), penStyle_ = v; }
  bool fill() const { return fill_; }
  void fill(bool v) { mutating_(), fill_ = v; }
  long joinStyle() const { return joinStyle_; }  // 0 round, 1 bevel
  void joinStyle(long v) { mutating_(), joinStyle_ = v; }
  long capStyle() const { return capStyle_; }  // 0 round, 1 flat, 2 square
  void capStyle(long v) { mutating_(), capStyle_ = v; }
  bool showDirection() const { return showDirection_; }  // honoured for cc2Wireframe, as is the next
  void showDirection(bool v) { mutating_(), showDirection_ = v; }
  bool showVertices() const { return showVertices_; }
  void showVertices(bool v) { mutating_(), showVertices_ = v; }

  char const* className() const override { return "ccGraphicProps"; }
  void dispatchSerialize(ccArchive&) override;
  friend bool operator==(ccGraphicProps const&, ccGraphicProps const&);

private:
  void serialize_(ccArchive&, unsigned char version);

  ccColor penColor_;
  long penWidth_ = 1;
  cePenStyle penStyle_ = ceSolidPen;
  bool fill_ = false;
  long joinStyle_ = 0;
  long capStyle_ = 0;
  bool showDirection_ = false;
  bool showVertices_ = false;
};
