// Measures the heap a piece of work holds at its peak, by replacing the
// global operator new and delete of the program that includes this header
// (include it in one source file per program only). Allocations made inside
// the library are counted wherever the platform binds the library's operator
// new to the program's; PeakHeapBytes returns 0 where they are not (or where
// a tool such as valgrind replaces them). Not for use by several threads at
// once.
#ifndef TESSEL_TESTS_I18N_HEAP_PEAK_H_
#define TESSEL_TESTS_I18N_HEAP_PEAK_H_

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace heap_peak {

inline std::atomic<bool> counting{false};
inline std::atomic<size_t> live{0};
inline std::atomic<size_t> peak{0};
// Each block starts with the number of bytes it added to `live` (0 when it
// was allocated while not counting).
constexpr size_t kPrefix = alignof(std::max_align_t);

// Heap bytes held at the peak of `work`, beyond those held when it started.
template <typename Work>
size_t PeakHeapBytes(Work&& work) {
  live = 0;
  peak = 0;
  counting = true;
  work();
  counting = false;
  return peak;
}

}  // namespace heap_peak

// Kept out of line so that a tool which replaces the allocation functions
// (valgrind) replaces new and delete alike; counting then reads 0.
[[gnu::noinline]] void* operator new(size_t size) {
  void* block = std::malloc(size + heap_peak::kPrefix);
  if (block == nullptr) throw std::bad_alloc();
  size_t counted = 0;
  if (heap_peak::counting.load(std::memory_order_relaxed)) {
    counted = size;
    const size_t now = heap_peak::live.fetch_add(size) + size;
    size_t seen = heap_peak::peak.load();
    while (now > seen && !heap_peak::peak.compare_exchange_weak(seen, now)) {
    }
  }
  *static_cast<size_t*>(block) = counted;
  return static_cast<char*>(block) + heap_peak::kPrefix;
}

[[gnu::noinline]] void operator delete(void* pointer) noexcept {
  if (pointer == nullptr) return;
  char* block = static_cast<char*>(pointer) - heap_peak::kPrefix;
  heap_peak::live.fetch_sub(*reinterpret_cast<size_t*>(block));
  std::free(block);
}

[[gnu::noinline]] void operator delete(void* pointer, size_t) noexcept {
  operator delete(pointer);
}

#endif  // TESSEL_TESTS_I18N_HEAP_PEAK_H_
