#include "largearray.h"

#include <sys/mman.h>

namespace tessiva::solver {
namespace {

constexpr size_t kHugePage = size_t{2} << 20;

}  // namespace

void* AllocateLarge(size_t bytes) {
  if (bytes < kHugePage) return ::operator new(bytes);
  void* p = ::operator new(bytes, std::align_val_t{kHugePage});
#ifdef MADV_HUGEPAGE
  // Advice only: where huge pages are off or used up, small ones serve.
  ::madvise(p, bytes / kHugePage * kHugePage, MADV_HUGEPAGE);
#endif
  return p;
}

void FreeLarge(void* p, size_t bytes) noexcept {
  if (bytes < kHugePage) {
    ::operator delete(p);
  } else {
    ::operator delete(p, std::align_val_t{kHugePage});
  }
}

}  // namespace tessiva::solver
