// Measures the heap a piece of work holds at its peak. Include it in one
// source file per program only: without a sanitizer it replaces the global
// operator new and delete of the program, and counts the library's
// allocations wherever the platform binds the library's operator new to the
// program's; under AddressSanitizer or ThreadSanitizer, which own those
// operators, it counts through the sanitizer's allocation hooks. Where
// neither reaches the library (or a tool such as valgrind replaces the
// operators), PeakHeapBytes returns 0. Not for use by several threads at once.
#ifndef TESSEL_TESTS_I18N_HEAP_PEAK_H_
#define TESSEL_TESTS_I18N_HEAP_PEAK_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TESSEL_HEAP_PEAK_HOOKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TESSEL_HEAP_PEAK_HOOKS 1
#endif
#endif

namespace heap_peak {

inline std::atomic<bool> counting{false};
// Bytes allocated minus bytes freed since counting began; frees of older
// blocks may take it below 0.
inline std::atomic<int64_t> live{0};
inline std::atomic<int64_t> peak{0};

inline void Allocated(size_t size) {
  const int64_t now = live.fetch_add(static_cast<int64_t>(size)) + static_cast<int64_t>(size);
  int64_t seen = peak.load();
  while (now > seen && !peak.compare_exchange_weak(seen, now)) {
  }
}

inline void Freed(size_t size) { live.fetch_sub(static_cast<int64_t>(size)); }

#if defined(TESSEL_HEAP_PEAK_HOOKS)
extern "C" int __sanitizer_install_malloc_and_free_hooks(
    void (*malloc_hook)(const volatile void*, size_t), void (*free_hook)(const volatile void*));
extern "C" size_t __sanitizer_get_allocated_size(const volatile void* pointer);

inline void MallocHook(const volatile void*, size_t size) {
  if (counting.load(std::memory_order_relaxed)) Allocated(size);
}

inline void FreeHook(const volatile void* pointer) {
  if (counting.load(std::memory_order_relaxed)) Freed(__sanitizer_get_allocated_size(pointer));
}

inline void Install() {
  static const bool installed = __sanitizer_install_malloc_and_free_hooks(MallocHook, FreeHook);
  (void)installed;
}
#else
inline void Install() {}
#endif

// Heap bytes held at the peak of `work`, beyond those held when it started.
template <typename Work>
size_t PeakHeapBytes(Work&& work) {
  Install();
  live = 0;
  peak = 0;
  counting = true;
  work();
  counting = false;
  return static_cast<size_t>(peak.load());
}

// Each block of the replaced operator new starts with the number of bytes it
// counted (0 when it was allocated while not counting).
constexpr size_t kPrefix = alignof(std::max_align_t);

}  // namespace heap_peak

#if !defined(TESSEL_HEAP_PEAK_HOOKS)
// Kept out of line so that a tool which replaces the allocation functions
// (valgrind) replaces new and delete alike; counting then reads 0.
[[gnu::noinline]] void* operator new(size_t size) {
  void* block = std::malloc(size + heap_peak::kPrefix);
  if (block == nullptr) throw std::bad_alloc();
  const bool counted = heap_peak::counting.load(std::memory_order_relaxed);
  if (counted) heap_peak::Allocated(size);
  *static_cast<size_t*>(block) = counted ? size : 0;
  return static_cast<char*>(block) + heap_peak::kPrefix;
}

[[gnu::noinline]] void operator delete(void* pointer) noexcept {
  if (pointer == nullptr) return;
  char* block = static_cast<char*>(pointer) - heap_peak::kPrefix;
  heap_peak::Freed(*reinterpret_cast<size_t*>(block));
  std::free(block);
}

[[gnu::noinline]] void operator delete(void* pointer, size_t) noexcept {
  operator delete(pointer);
}
#endif

#endif  // TESSEL_TESTS_I18N_HEAP_PEAK_H_
