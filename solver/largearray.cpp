#include "largearray.h"

#include <sys/mman.h>

#include <cstddef>

namespace tessiva::solver {
namespace {

constexpr size_t kHugePage = size_t{2} << 20;

class LargeMemoryResource : public std::pmr::memory_resource {
  // An alignment beyond what operator new gives (which no picture array asks
  // for) is left to the standard resource.
  static bool Plain(size_t alignment) { return alignment <= alignof(std::max_align_t); }

  void* do_allocate(size_t bytes, size_t alignment) override {
    return Plain(alignment) ? AllocateLarge(bytes) : std::pmr::new_delete_resource()->allocate(bytes, alignment);
  }
  void do_deallocate(void* p, size_t bytes, size_t alignment) override {
    if (Plain(alignment)) {
      FreeLarge(p, bytes);
    } else {
      std::pmr::new_delete_resource()->deallocate(p, bytes, alignment);
    }
  }
  bool do_is_equal(const std::pmr::memory_resource& other) const noexcept override { return this == &other; }
};

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

std::pmr::memory_resource* LargeMemory() {
  static LargeMemoryResource memory;
  return &memory;
}

}  // namespace tessiva::solver
