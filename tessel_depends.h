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
#include "common/imp_win/generic_file_manager.h"
#include "common/imp_win/generic_timer.h"
#include "common/imp_win/message_loop_timer.h"

// Worker threads and thread factory
#include "common/imp_win/generic_thread.h"
#include "common/imp_win/generic_thread_factory.h"

// Logging
#include "common/logger.h"

// HTML entities and pinyin
#include "common/html_entities.h"
#include "common/pinyin.h"

// Dates and times
#include "common/date_time.h"

// Text core: strings, URLs and paths, identifiers
#include "common/identifiers.h"
#include "common/string_utils.h"

// Translation catalogs
#include "i18n/entry.h"
#include "i18n/mo.h"
#include "i18n/i18n_utils.h"

// Encodings
#include "common/base64.h"
#include "common/string_utils_win.h"

// Files
#include "common/file.h"
#include "common/file_utils.h"

// JSON values
#include "json11/json11.h"

#endif  // TESSEL_DEPENDS_H_
