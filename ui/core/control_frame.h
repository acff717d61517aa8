// A frame that has kids and can keep its distance to a point of its parent's area.
#pragma once

#include "ui/core/frame.h"

class ccUIControlFrame : public ccUIFrame {
public:
  // The point of the parent's area that the frame keeps its distance to.
  enum AttachedTo : std::int32_t {
    attachedNone, attachedTopCenter, attachedTopRight, attachedLeftCenter, attachedCenter, attachedRightCenter,
    attachedBottomLeft, attachedBottomCenter, attachedBottomRight
  };

  ccUIControlFrame(ccUIFrame* parent, ccUIRect const&);
  ~ccUIControlFrame() override;

  ccUIObject* frontKid() const override;
  ccUIObject* backKid() const override;
  long numKids() const override;
  void parentResized() override;
  void parentClipped() override;

  AttachedTo attachedTo() const { return attachedTo_; }
  void attachedTo(AttachedTo);  // also measures the distance to keep
  bool attachedToDrag() const { return attachedToDrag_; }
  void attachedToDrag(bool on) { attachedToDrag_ = on; }  // a drag leaves the attachment on

  void redraw_() override;

protected:
  ccUIControlFrame(ccUIScope* image, ccUIScope* overlay);

  void dragStart_(ccPair<long> const& at) override;
  void dragStop_(ccPair<long> const& from, ccPair<long> const& to) override;
  void dragAnimate_(ccPair<long> const& from, ccPair<long> const& to) override;
  void move_() override;

private:
  void computeAttachedToOffset();
  void reposition();

  bool attachedToDrag_ = false;
  ccPair<long> attachedOffset_;
  AttachedTo attachedTo_ = attachedNone;
};
