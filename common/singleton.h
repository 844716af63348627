// Singleton<T> hands out one process-wide, shared T, created on first use and
// detachable once at shutdown. The state of each instantiation lives in this
// library, so every module that calls the exported sharedInstance sees the
// same object. An instance that is never detached is never destroyed either:
// threads still running at process exit may reach it.
#ifndef TESSEL_COMMON_SINGLETON_H_
#define TESSEL_COMMON_SINGLETON_H_

#include <memory>
#include <mutex>

#include "common/global_native_imp_holder.h"
#include "common/tessel_export.h"

namespace tessel {

template <typename T>
class Singleton {
 public:
  // release == false: returns the shared instance, creating it (default
  // constructed) on the first such call in the process; creation is
  // once-only and thread-safe. After a release it returns an empty pointer
  // for ever, because the instance is never created a second time.
  // release == true: detaches the instance and returns it (the caller's copy
  // is the last one the singleton hands out), or an empty pointer when there
  // is none; before any ordinary call it changes nothing. The release takes
  // no lock: no other thread may use the singleton concurrently.
  // Throws std::bad_alloc only if creating the instance runs out of memory.
  static std::shared_ptr<T> sharedInstance(bool release);

 private:
  // The shared pointer, built at compile time and never destroyed: exit
  // runs no destructor for it.
  union Instance {
    constexpr Instance() : pointer() {}
    ~Instance() {}
    std::shared_ptr<T> pointer;
  };

  static std::once_flag once_;
  static Instance instance_;
};

template <typename T>
std::once_flag Singleton<T>::once_;

template <typename T>
typename Singleton<T>::Instance Singleton<T>::instance_;

template <typename T>
std::shared_ptr<T> Singleton<T>::sharedInstance(bool release) {
  if (release) {
    std::shared_ptr<T> detached;
    detached.swap(instance_.pointer);
    return detached;
  }
  std::call_once(once_, [] { instance_.pointer = std::make_shared<T>(); });
  return instance_.pointer;
}

// The holder's instantiation is compiled once, inside the library.
extern template class TESSEL_API Singleton<GlobalNativeImpHolder>;

}  // namespace tessel

#endif  // TESSEL_COMMON_SINGLETON_H_
