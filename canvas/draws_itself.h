// Mixed into graphics that paint themselves on the machine's painter of a drawing phase.
#pragma once

class ccDrawsItself {
public:
  virtual ~ccDrawsItself() = default;
  virtual void drawOn(void* painter) const = 0;
};
