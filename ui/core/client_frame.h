// A plain background panel of a form.
#pragma once

#include "ui/core/control_frame.h"

class ccUIClientFrame : public ccUIControlFrame {
public:
  explicit ccUIClientFrame(ccUIForm* parent);

  ccColor const& backgroundColor() const { return backgroundColor_; }
  void backgroundColor(ccColor const&);
  void redraw_() override;

private:
  ccColor backgroundColor_ = ccColor::greyColor();
};
