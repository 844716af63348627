// PlatformTimer gives the SDK core timed callbacks. The slot order of the
// virtual operations is part of the contract.
#ifndef TESSEL_GEN_PLATFORM_TIMER_H_
#define TESSEL_GEN_PLATFORM_TIMER_H_

#include <functional>

#include "common/tessel_export.h"

namespace tessel_gen {

class TESSEL_API PlatformTimer {
 public:
  virtual ~PlatformTimer() = default;

  // Returns a timer identifier.
  virtual int CreateTimer(double interval, bool repeats,
                          std::function<void()> callback) = 0;
  virtual void InvalidateTimer(int timer_id) = 0;
};

}  // namespace tessel_gen

#endif  // TESSEL_GEN_PLATFORM_TIMER_H_
