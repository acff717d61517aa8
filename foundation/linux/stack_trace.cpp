#include "foundation/stack_trace.h"

#include <cstdio>
#include <cstdlib>

#include <cxxabi.h>
#include <dlfcn.h>
#include <execinfo.h>

int cf_stackTrace(void** frames, int most) { return backtrace(frames, most); }

void cf_stackText(void* const* frames, int count, char* to, int room)
{
  int at = 0;
  for (int i = 0; i < count && at < room - 1; ++i) {
    Dl_info where{};
    bool const known = dladdr(frames[i], &where) != 0;
    char* const plain = known && where.dli_sname ? abi::__cxa_demangle(where.dli_sname, nullptr, nullptr, nullptr) : nullptr;
    char const* const name = plain ? plain : known && where.dli_sname ? where.dli_sname : "?";
    // The offset is what addr2line asks for.
    long const offset = static_cast<char const*>(frames[i]) - static_cast<char const*>(known ? where.dli_fbase : nullptr);
    int const wrote = std::snprintf(to + at, static_cast<std::size_t>(room - at), "    %s (%s+0x%lx)\n", name,
                                    known && where.dli_fname ? where.dli_fname : "", static_cast<unsigned long>(offset));
    std::free(plain);
    at += wrote > 0 ? wrote : 0;
  }
}
