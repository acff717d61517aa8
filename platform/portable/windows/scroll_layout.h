// Where the parts of a scroll bar lie and which position a place of the thumb stands for. Pels along the bar count from
// its upper or left end.
#pragma once

#include "platform/portable/windows/window_tree.h"

namespace plat::portable {

enum class BarPart { none, lineLess, pageLess, thumb, pageMore, lineMore };

class ScrollLayout {
public:
  ScrollLayout(ScrollBar const&, i32 length);

  i32 length() const { return length_; }
  i32 arrow() const { return arrow_; }  // length of an arrow; less than its width on a very short bar
  bool hasThumb() const { return thumb_ > 0; }
  i32 thumbStart() const { return start_; }
  i32 thumbLength() const { return thumb_; }
  BarPart part(i32 along) const;
  i32 posAt(i32 thumbStart) const;  // clamped

private:
  ScrollBar const bar_;
  i32 length_, arrow_, thumb_ = 0, start_ = 0;
};

}  // namespace plat::portable
