// Umbrella header of TesselSDK-Depends: includes every public header.
#ifndef TESSEL_DEPENDS_H_
#define TESSEL_DEPENDS_H_

#include "tessel_depends_version.h"

// Platform binding
#include "gen/platform_file_info.h"
#include "gen/platform_file_manager.h"
#include "gen/platform_thread.h"
#include "gen/platform_thread_factory.h"
#include "gen/platform_timer.h"
#include "gen/thread_type.h"
#include "gen/util_entrance.h"
#include "common/global_native_imp_holder.h"
#include "common/semaphore.h"
#include "common/singleton.h"
#include "common/util_entrance.h"

// Logging
#include "common/logger.h"

// JSON values
#include "json11/json11.h"

#endif  // TESSEL_DEPENDS_H_
