// Measures the heap a piece of work holds at its peak, through the allocation
// hooks of AddressSanitizer or ThreadSanitizer, which see the library's
// allocations too. Without either, PeakHeapBytes returns 0. Not for use by
// several threads at once.
#ifndef TESSEL_TESTS_I18N_HEAP_PEAK_H_
#define TESSEL_TESTS_I18N_HEAP_PEAK_H_

#include <atomic>
#include <cstddef>
#include <cstdint>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TESSEL_HEAP_PEAK_HOOKS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TESSEL_HEAP_PEAK_HOOKS 1
#endif
#endif

#if defined(TESSEL_HEAP_PEAK_HOOKS)
extern "C" int __sanitizer_install_malloc_and_free_hooks(
    void (*malloc_hook)(const volatile void*, size_t), void (*free_hook)(const volatile void*));
extern "C" size_t __sanitizer_get_allocated_size(const volatile void* pointer);
#endif

namespace heap_peak {

inline std::atomic<bool> counting{false};
// Bytes allocated minus bytes freed since counting began; frees of older
// blocks may take it below 0.
inline std::atomic<int64_t> live{0};
inline std::atomic<int64_t> peak{0};

inline void Count(int64_t bytes) {
  if (!counting.load(std::memory_order_relaxed)) return;
  const int64_t now = live.fetch_add(bytes) + bytes;
  for (int64_t seen = peak.load(); now > seen && !peak.compare_exchange_weak(seen, now);) {
  }
}

// Heap bytes held at the peak of `work`, beyond those held when it started.
template <typename Work>
size_t PeakHeapBytes(Work&& work) {
#if defined(TESSEL_HEAP_PEAK_HOOKS)
  static const int installed = __sanitizer_install_malloc_and_free_hooks(
      [](const volatile void*, size_t size) { Count(static_cast<int64_t>(size)); },
      [](const volatile void* block) {
        Count(-static_cast<int64_t>(__sanitizer_get_allocated_size(block)));
      });
  (void)installed;
#endif
  live = 0;
  peak = 0;
  counting = true;
  work();
  counting = false;
  return static_cast<size_t>(peak.load());
}

}  // namespace heap_peak

#endif  // TESSEL_TESTS_I18N_HEAP_PEAK_H_
