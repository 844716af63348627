// tessel::UtilEntrance is the library's name for the injection entry; it adds
// nothing to tessel_gen::UtilEntrance, whose InjectPlatformImp it inherits.
#ifndef TESSEL_COMMON_UTIL_ENTRANCE_H_
#define TESSEL_COMMON_UTIL_ENTRANCE_H_

#include "common/tessel_export.h"
#include "gen/util_entrance.h"

namespace tessel {

class TESSEL_API UtilEntrance : public tessel_gen::UtilEntrance {};

}  // namespace tessel

#endif  // TESSEL_COMMON_UTIL_ENTRANCE_H_
