// A text in a bordered box at a point, never scaled. Its box is measured when it is needed, since the size of text depends on
// the tablet.
#pragma once

#include "canvas/format.h"
#include "ui/shapes/point_shape.h"

#include <string>

class ccUILabel : public ccUIPointShapeBase {
public:
  explicit ccUILabel(ccUIObject* parent = nullptr);
  ~ccUILabel() override;

  std::string const& label() const { return label_; }
  void label(std::string const&);
  ccUIFormat const& format() const { return format_; }
  void format(ccUIFormat const&);
  ccColor const& foreColor() const { return foreColor_; }
  void foreColor(ccColor const&);
  ccColor const& backColor() const { return backColor_; }
  void backColor(ccColor const&);
  ccColor const& borderColor() const { return borderColor_; }
  void borderColor(ccColor const&);
  long borderWidth() const { return borderWidth_; }
  void borderWidth(long pels);
  bool isClipped() const;  // whether there is a box to show: false for an empty text, and without a scope

  bool isTouched(ccVector<2> const&, double scale) override;  // in the box
  void show(bool nested) override;

protected:
  using ccUIPointShapeBase::pos_;
  void pos_(ccVector<2> const&) override;
  void draw_(ccUITablet&, ccColor const&, DrawMode) override;

private:
  void changed_();
  void updateTouchRect_() const;
  ccPoint textPoint_(ccUITablet const&) const;
  ccVector<2> place_() const;

  std::string label_;
  ccUIFormat format_;
  long borderWidth_ = 0;
  ccColor borderColor_ = ccColor::dkRedColor();
  ccColor backColor_ = ccColor::whiteColor();
  ccColor foreColor_ = ccColor::blackColor();
  ccUIRect mutable touchRect_;  // the box, in pels from pos()
  bool mutable touchRectValid_ = false;
  bool mutable clipped_ = false;
};
