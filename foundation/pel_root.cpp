#include "foundation/pel_root.h"

#include "foundation/pel_error.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr long long maxBytes = (1LL << 31) - 1;

// The row in bytes, rounded up to whole steps of the alignment and whole pels.
long long cf_alignedRow(long long rowBytes, long long step) { return (rowBytes + step - 1) / step * step; }

}  // namespace

cc_PelRoot::cc_PelRoot(void* memory, long width, long height, long rowStride, long pelBytes, long alignment)
    : memory_(memory), width_(width), height_(height), rowStride_(rowStride), pelBytes_(pelBytes)
{
  if (width < 1 || height < 1 || width > maxBytes / height || width > maxBytes / pelBytes)
    throw ccPelError::BadSize("pel root");
  bool const foreign = alignment == 0;
  long long const step = foreign ? 1 : std::lcm(std::min<long long>(std::max(alignment, 1L), maxBytes), pelBytes);
  long long const stride = std::clamp<long long>(rowStride, -maxBytes - 1, maxBytes + 1);  // farther is refused as well
  long long const magnitude = stride < 0 ? -stride : stride;
  if (foreign && (magnitude < width || magnitude > maxBytes / pelBytes))
    throw ccPelError::BadSize("row stride of a pel root");
  long long const rowBytes = foreign ? magnitude * pelBytes : cf_alignedRow(static_cast<long long>(width) * pelBytes, step);
  if (rowBytes > maxBytes / height)
    throw ccPelError::BadSize("pel root");
  if (foreign)
    return;
  rowStride_ = static_cast<long>(rowBytes / pelBytes);
  own_ = std::make_unique<unsigned char[]>(static_cast<std::size_t>(rowBytes * height + step));
  auto const address = reinterpret_cast<std::uintptr_t>(own_.get());
  auto const past = static_cast<std::size_t>(address % static_cast<std::uintptr_t>(step));
  memory_ = own_.get() + (past ? static_cast<std::size_t>(step) - past : 0);
}

cc_PelRoot::~cc_PelRoot() = default;

bool ccPelRootPool::size(unsigned long long) { return true; }
void ccPelRootPool::release(cc_PelRoot*) {}
bool ccPelRootPool::videoPelRoots() const { return false; }
