// GenericTImer satisfies the timer contract without scheduling anything: no
// timer is ever created and no callback is ever called. A host that injects
// it gives the SDK core no working timer service. No state; any thread may
// call either operation at any time.
#ifndef TESSEL_COMMON_IMP_WIN_GENERIC_TIMER_H_
#define TESSEL_COMMON_IMP_WIN_GENERIC_TIMER_H_

#include <functional>

#include "common/tessel_export.h"
#include "gen/platform_timer.h"

namespace tessel {

class TESSEL_API GenericTImer : public tessel_gen::PlatformTimer {
 public:
  GenericTImer();
  GenericTImer(const GenericTImer& other);
  GenericTImer& operator=(const GenericTImer& other);
  ~GenericTImer() override;

  // Releases `callback` (and what it captured) unrun before returning, and
  // returns 0. `interval` and `repeats` are not looked at.
  int CreateTimer(double interval, bool repeats, std::function<void()> callback) override;
  // Does nothing, for every identifier.
  void InvalidateTimer(int timer_id) override;
};

}  // namespace tessel

#endif  // TESSEL_COMMON_IMP_WIN_GENERIC_TIMER_H_
