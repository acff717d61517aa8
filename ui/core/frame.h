// A node with a rectangle of the canvas: a tree node and a tablet in one. The tree links are the tablet's.
#pragma once

#include "canvas/tablet.h"
#include "ui/core/object.h"

class ccLock;

class ccUIFrame : public ccUIObject, public ccUITablet {
public:
  ~ccUIFrame() override;

  ccUIFrame* frame(bool) override { return this; }
  ccUIObject* parent() const override;
  ccUIObject* closerSib() const override;
  ccUIObject* fartherSib() const override;
  ccUITablet* tablet() const override { return const_cast<ccUIFrame*>(this); }
  ccUIObject* whoIsTouched(ccPair<long> const&) override;
  void show(bool nested) override;
  void hide(bool nested) override;

  virtual bool isTouched(ccPair<long> const& local);  // by default: is the frame painted on its topmost layer
  virtual void parentResized();
  virtual void parentClipped();

  void redraw_() override = 0;

  using ccUITablet::visible;
  bool visible() const { return ccUIObject::visible(); }
  bool resizable() const { return (frameFlags_ & 1) != 0; }
  void resizable(bool);
  void front() { ccUIObject::front(); }
  void back() { ccUIObject::back(); }
  // The node's drag of positions and the tablet's drag drawing of layers.
  using ccUIObject::dragAnimate;
  using ccUIObject::dragStart;
  using ccUIObject::dragStop;
  using ccUITablet::dragAnimate;
  using ccUITablet::dragStart;
  using ccUITablet::dragStop;
  using ccUIObject::operator new;
  using ccUIObject::operator delete;

protected:
  ccUIFrame(ccUIScope* image, ccUIScope* overlay);
  ccUIFrame(ccUIFrame* parent, ccUIRect const&);

  // First in the destructor of a frame whose own members redraw_ uses: from here on nothing paints it any more.
  void beginDestruction();

  // Is there something to be hit at a position in the parent's coordinates?
  bool isHitAt_(ccPair<long> const&) const;
  // While one lives, kids of the frame need not ask their ancestors whether these can be seen.
  class cc_HitScope {
  public:
    explicit cc_HitScope(ccUIFrame const&);
    ~cc_HitScope();
    cc_HitScope(cc_HitScope const&) = delete;
    cc_HitScope& operator=(cc_HitScope const&) = delete;

  private:
    ccUIFrame const* former_;
    std::uint64_t formerVisibility_;
  };

  void front_(ccUIObject* kid) override;
  void back_(ccUIObject* kid) override;
  void resize_() override;
  void clipped_() override;
  void newParentTablet(ccUITablet*) override;

private:
  ccUIFrame(ccUIFrame* parent, ccUIRect const&, ccLock const& parentHeld);

  std::uint32_t frameFlags_ = 0;
};

// The frame around a tablet; null for a null or a plain tablet.
ccUIFrame* cfFrameOf(ccUITablet const*);
