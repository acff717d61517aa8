// A shapes frame whose map follows its parent's map through a transform of its own: so graphics stay fixed to image pels
// while the image is zoomed and panned. The frame itself is never hit.
#pragma once

#include "ui/core/shapes_frame.h"

class ccUINestedCoordFrame : public ccUIShapesFrame {
public:
  ccUINestedCoordFrame(ccUIControlFrame* parent, ccUIRect const&);

  ccXform<2> const& parentFromChild() const { return parentFromChild_; }
  void parentFromChild(ccXform<2> const&);
  ccXform<2> const& prevParentFromChild() const { return prevParentFromChild_; }
  void updatePrevXform() { prevParentFromChild_ = parentFromChild_; }

  bool isTouched(ccPair<long> const&) override { return false; }
  void parentMapChanged() override;

private:
  ccXform<2> prevParentFromChild_;
  ccXform<2> parentFromChild_;
};
