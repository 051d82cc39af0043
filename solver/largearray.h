// Storage for the solver's large arrays: the pictures' samples and the
// field's solutions, a few to a few hundred megabytes each, made once a job.
#pragma once

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace tessiva::solver {

// Memory for a large array, laid on the system's huge pages where it offers
// them: a 512th of the page faults when it is first written, and far fewer
// address-translation misses when it is read across.
void* AllocateLarge(size_t bytes);
void FreeLarge(void* p, size_t bytes) noexcept;

// The same memory for the standard library's polymorphic containers. The
// solver makes it their default, so that the grey levels of the pictures it
// reads, which the core keeps in such a container, get it too.
std::pmr::memory_resource* LargeMemory();

// The allocator of those arrays: their memory as above, and new elements
// default-initialised rather than zeroed. An array of numbers is thus left
// unset, to be written whole by the workers that fill it, so its pages are
// first touched, and cleared by the system, on those workers in parallel
// instead of by one thread beforehand.
template <class T>
struct LargeArrayAllocator : std::allocator<T> {
  template <class U>
  struct rebind {
    using other = LargeArrayAllocator<U>;
  };
  LargeArrayAllocator() = default;
  template <class U>
  LargeArrayAllocator(const LargeArrayAllocator<U>&) noexcept {}
  T* allocate(size_t n) { return static_cast<T*>(AllocateLarge(n * sizeof(T))); }
  void deallocate(T* p, size_t n) noexcept { FreeLarge(p, n * sizeof(T)); }
  template <class U>
  void construct(U* p) noexcept(std::is_nothrow_default_constructible_v<U>) {
    ::new (static_cast<void*>(p)) U;
  }
  template <class U, class... Args>
  void construct(U* p, Args&&... args) {
    ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...);
  }
};

template <class T>
using LargeArray = std::vector<T, LargeArrayAllocator<T>>;

}  // namespace tessiva::solver
