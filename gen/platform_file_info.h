// PlatformFileInfo is the SDK core's record of one directory entry, returned by
// PlatformFileManager::ListContensAtPath. Its fields belong to the core's
// contract; this library never builds or reads one.
#ifndef TESSEL_GEN_PLATFORM_FILE_INFO_H_
#define TESSEL_GEN_PLATFORM_FILE_INFO_H_

#include "common/tessel_export.h"

namespace tessel_gen {

class TESSEL_API PlatformFileInfo {
 public:
  virtual ~PlatformFileInfo() = default;
};

}  // namespace tessel_gen

#endif  // TESSEL_GEN_PLATFORM_FILE_INFO_H_
