// An endless line that the operator turns by a handle on its point.
#pragma once

#include "geometry/lines.h"
#include "ui/shapes/handle.h"
#include "ui/shapes/handle_set.h"

class ccUILine : public cc_HandledShape {
public:
  static float touchDist();  // pick distance in pels, for all lines
  static void touchDist(float pels);

  explicit ccUILine(ccUIObject* parent = nullptr);
  ~ccUILine() override;

  ccLine const& line() const { return line_; }
  void line(ccLine const&);

  bool isTouched(ccVector<2> const&, double scale) override;

protected:
  ccVector<2> pos_() override;
  void pos_(ccVector<2> const&) override;
  void draw_(ccUITablet&, ccColor const&, DrawMode) override;
  void dragStop_(ccPair<long> const& from, ccPair<long> const& to) override;
  long numHandles_() const override { return 1; }
  ccUIHandle* makeHandle_(long index) override;

private:
  ccLine line_{ccVector<2>(1, 0), ccPoint(256, 240)};
};

// Stands on the point of its line. The drag alone sets the direction, not the place of the pointer.
class ccUILineRotHandle : public cc_HandleOf<ccUILine> {
public:
  explicit ccUILineRotHandle(ccUILine* owner);
  ccUILine* uiLine() const { return owner(); }
  using ccUIHandle::update;
  void update() override {}

protected:
  void dragAnimate_(ccPair<long> const& start, ccPair<long> const& current) override;
  void dragStop_(ccPair<long> const& start, ccPair<long> const& current) override;

private:
  ccLine dragParams(ccPair<long> const& delta);
};
