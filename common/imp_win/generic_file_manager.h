// GenericFileManager is the library's implementation of the file-manager
// contract over the system's file layer. It has no state: any thread may call
// any operation at any time; concurrent operations on the same paths are
// ordered only by the file system. Paths are UTF-8 and used as they are.
#ifndef TESSEL_COMMON_IMP_WIN_GENERIC_FILE_MANAGER_H_
#define TESSEL_COMMON_IMP_WIN_GENERIC_FILE_MANAGER_H_

#include <memory>
#include <string>
#include <vector>

#include "common/tessel_export.h"
#include "gen/platform_file_manager.h"

namespace tessel {

class TESSEL_API GenericFileManager : public tessel_gen::PlatformFileManager {
 public:
  GenericFileManager();
  GenericFileManager(const GenericFileManager& other);
  GenericFileManager& operator=(const GenericFileManager& other);
  ~GenericFileManager() override;

  // Creates the directory and any missing parents; true when it exists
  // afterwards (also when it already did). False for an empty path.
  bool MakeDir(const std::string& path) override;
  // True when path names a directory.
  bool IsPathDir(const std::string& path) override;
  // True when something exists at path: a file or a directory.
  bool IsFileExist(const std::string& path) override;
  // Size in bytes of the file; 0 when missing, empty or not a regular file.
  int64_t GetFileSize(const std::string& path) override;
  // Birth time where the file system records one, else the last-modification
  // time; whole seconds since 1970, fraction dropped; 0 when missing.
  int64_t GetFileCreateTime(const std::string& path) override;
  // Last-modification time, whole seconds since 1970, fraction dropped; 0 when
  // missing.
  int64_t GetFileModifyTime(const std::string& path) override;
  // Both delete recursively: a file, or a directory with everything in it.
  // True when nothing is left at path (also when nothing was there).
  bool DeleteTheFile(const std::string& path) override;
  bool DeleteDirectory(const std::string& path) override;
  // Moves (renames) from to to, replacing a file at to; across file systems
  // copies then deletes. False when from is missing or the move fails.
  bool MoveTheFile(const std::string& from, const std::string& to) override;
  // Copies the regular file from to to, replacing a file at to. False when
  // from is not a regular file or the copy fails.
  bool CopyTheFile(const std::string& from, const std::string& to) override;
  // Always an empty sequence, whatever the path.
  std::vector<std::shared_ptr<tessel_gen::PlatformFileInfo>> ListContensAtPath(
      const std::string& path) override;
  // The fixed string "/Users"; nothing is created or tested.
  std::string HomeDir() override;
  // HomeDir() (through the virtual call) followed by "/Logs/".
  std::string LogDir() override;
  // HomeDir() (through the virtual call) followed by "/tmp/".
  std::string TempDir() override;
};

}  // namespace tessel

#endif  // TESSEL_COMMON_IMP_WIN_GENERIC_FILE_MANAGER_H_
