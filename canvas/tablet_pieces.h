// Goes through the pieces in which a primitive of one tablet and layer can be seen. The constructor does all that a
// drawing call owes beside the pels: records, modified rectangles and marks. The box is what the primitive may touch,
// in top pels.
//
//   cc_Pieces pieces(tablet, layer, box);
//   while (ccUIScope* scope = pieces.next())
//     scope->draw(...);
#pragma once

#include "canvas/tablet_top.h"
#include "foundation/vector.h"

#include <cstddef>
#include <exception>

// How far a pen of so many pels may reach past its path.
long cf_penMargin(ccGraphicProps const&);
// The pels that a path through these points, in top pels, may touch.
ccUIRect cf_penBox(ccPoint const* points, std::size_t count, long margin);

class cc_Pieces {
public:
  enum class Box { holds, cutsShort }; // the primitive may reach past the box
  cc_Pieces(ccUITablet&, int layer, ccUIRect const& box, Box = Box::holds);
  ~cc_Pieces() noexcept(false);
  cc_Pieces(cc_Pieces const&) = delete;
  cc_Pieces& operator=(cc_Pieces const&) = delete;

  // A scope that cuts at the next piece; null at the end.
  ccUIScope* next()
  {
    while (step_()) {
      // A box inside its piece needs no cut, so the surface's open drawing phase goes on.
      ccUIScope* const scope = holds_ && part_ == box_ ? top_->scope(layer_) : top_->window(layer_, piece_);
      if (scope)
        return scope;
    }
    return nullptr;
  }
  // For drawing that cuts itself at part(): the surface, once for each piece.
  ccUIScope* nextPart() { return step_() ? top_->scope(layer_) : nullptr; }
  ccUIRect const& part() const { return part_; }

private:
  bool step_()
  {
    while (region_ && at_ < region_->rects.size()) {
      piece_ = region_->rects[at_++] & limits_;
      part_ = piece_ & box_;
      if (!part_.isNull()) {
        top_->setDrawn(layer_);
        if (top_->scope(layer_))
          return true;
      }
    }
    return false;
  }

  cc_TabletTop* top_;
  cc_TabletTop::cc_Busy busy_;
  cs_Region const* region_ = nullptr; // null: nothing to draw
  int layer_;
  bool holds_;
  bool ghost_ = false;
  int exceptions_ = std::uncaught_exceptions();
  std::size_t at_ = 0;
  ccUIRect box_;
  ccUIRect limits_;
  ccUIRect piece_;
  ccUIRect part_;
};
