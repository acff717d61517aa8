// The standing sizer of a tree: one for each root, attached to the resizable frame that was selected last.
//
// Its eight handles stand at the corners and edge centres of the frame; dx and dy of -1, 0 and 1 name them.
#pragma once

#include "ui/core/shapes_frame.h"

// Where the handle stands: in the coordinates of the rectangle, in pels.
ccPair<long> cfFrameSizeHandlePos(ccUIRect const&, int dx, int dy);

// What a drag of the handle by delta makes of the rectangle. Sizes that sort before (10, 10), by width and then by height,
// become (10, 10), so a height alone may get smaller. The opposite edges stay.
ccUIRect cfFrameSizeHandleDrag(ccUIRect const&, int dx, int dy, ccPair<long> delta);

class ccUIFrameSizer : public ccUIShapesFrame {
public:
  explicit ccUIFrameSizer(ccUIRootObject*);
  ~ccUIFrameSizer() override;

  void attach(ccUIFrame*);  // null detaches
  ccUIFrame* attachedTo() const { return frame_; }
  void refresh();           // shows itself while its frame or itself is selected, else hides
  void hold(bool);          // pushes false on drawEnabled_, or pops

private:
  ccUIFrame* frame_ = nullptr;
};
