// A line segment that the operator edits by its two ends.
#pragma once

#include "geometry/lines.h"
#include "ui/shapes/handle.h"
#include "ui/shapes/handle_set.h"

class ccUILineSeg : public cc_HandledShape {
public:
  static float touchDist();  // pick distance in pels, for all segments
  static void touchDist(float pels);

  explicit ccUILineSeg(ccUIObject* parent = nullptr);
  ~ccUILineSeg() override;

  ccLineSeg const& lineSeg() const { return seg_; }
  void lineSeg(ccLineSeg const&);

  bool isTouched(ccVector<2> const&, double scale) override;

protected:
  ccVector<2> pos_() override;  // the middle
  void pos_(ccVector<2> const&) override;
  void draw_(ccUITablet&, ccColor const&, DrawMode) override;
  void dragStop_(ccPair<long> const& from, ccPair<long> const& to) override;
  long numHandles_() const override { return 2; }
  ccUIHandle* makeHandle_(long index) override;

private:
  ccLineSeg seg_{ccPoint(10, 10), ccPoint(50, 50)};
};

class ccUILineSegSizeHandle : public cc_HandleOf<ccUILineSeg> {
public:
  ccUILineSegSizeHandle(ccUILineSeg* owner, int id);
  using ccUIHandle::update;
  void update() override;

protected:
  void dragAnimate_(ccPair<long> const& start, ccPair<long> const& current) override;
  void dragStop_(ccPair<long> const& start, ccPair<long> const& current) override;

private:
  ccLineSeg dragParams(ccPair<long> const& delta);

  int const id_;  // 1 first end, 2 second end
};
