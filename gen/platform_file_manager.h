// PlatformFileManager gives the SDK core the file operations it needs. Paths
// are UTF-8; times are whole seconds since 1970-01-01 00:00:00 UTC; sizes are
// bytes. The slot order of the virtual operations is part of the contract.
#ifndef TESSEL_GEN_PLATFORM_FILE_MANAGER_H_
#define TESSEL_GEN_PLATFORM_FILE_MANAGER_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/tessel_export.h"
#include "gen/platform_file_info.h"

namespace tessel_gen {

class TESSEL_API PlatformFileManager {
 public:
  virtual ~PlatformFileManager() = default;

  virtual bool MakeDir(const std::string& path) = 0;
  virtual bool IsPathDir(const std::string& path) = 0;
  virtual bool IsFileExist(const std::string& path) = 0;
  virtual int64_t GetFileSize(const std::string& path) = 0;
  virtual int64_t GetFileCreateTime(const std::string& path) = 0;
  virtual int64_t GetFileModifyTime(const std::string& path) = 0;
  virtual bool DeleteTheFile(const std::string& path) = 0;
  virtual bool DeleteDirectory(const std::string& path) = 0;
  virtual bool MoveTheFile(const std::string& from, const std::string& to) = 0;
  virtual bool CopyTheFile(const std::string& from, const std::string& to) = 0;
  virtual std::vector<std::shared_ptr<PlatformFileInfo>> ListContensAtPath(
      const std::string& path) = 0;
  virtual std::string HomeDir() = 0;
  virtual std::string LogDir() = 0;
  virtual std::string TempDir() = 0;
};

}  // namespace tessel_gen

#endif  // TESSEL_GEN_PLATFORM_FILE_MANAGER_H_
