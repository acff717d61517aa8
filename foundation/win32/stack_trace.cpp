#include "foundation/stack_trace.h"

#include <cstdio>

#include <windows.h>

int cf_stackTrace(void** frames, int most)
{
  return CaptureStackBackTrace(0, static_cast<DWORD>(most), frames, nullptr);
}

void cf_stackText(void* const* frames, int count, char* to, int room)
{
  int at = 0;
  for (int i = 0; i < count && at < room - 1; ++i) {
    int const wrote = std::snprintf(to + at, static_cast<std::size_t>(room - at), "    %p\n", frames[i]);
    at += wrote > 0 ? wrote : 0;
  }
}
