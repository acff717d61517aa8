// A drawing scope over a caller's pel buffer in place of a window. rsync() takes the buffer's pels over, sync() gives what
// was drawn back.
#pragma once

#include "backend/scope/win32_scope.h"

class ccWin32PelBufUIScope : public ccWin32UIScope {
public:
  explicit ccWin32PelBufUIScope(ccPelBuffer<unsigned char>&);
  explicit ccWin32PelBufUIScope(ccPelBuffer<unsigned short>&);
  ~ccWin32PelBufUIScope() override;

  long buffer(ccPelBuffer<unsigned char>&);  // the result of creating the surfaces
  long buffer(ccPelBuffer<unsigned short>&);
  void sync();
  void rsync();

private:
  void makeWindow_();

  HWND hidden_ = nullptr;
  ccPelBuffer<unsigned char> pels8_;
  ccPelBuffer<unsigned short> pels16_;
};
