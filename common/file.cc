#include "common/file.h"

#include <memory>

#include "common/file_utils.h"
#include "common/global_native_imp_holder.h"
#include "common/md5.h"
#include "common/singleton.h"

namespace tessel {
namespace {

// The injected file manager, or an empty pointer before injection (or after
// the holder has been released). The holder reference ends with the call.
std::shared_ptr<tessel_gen::PlatformFileManager> FileManager() {
  const std::shared_ptr<GlobalNativeImpHolder> holder =
      Singleton<GlobalNativeImpHolder>::sharedInstance(false);
  return holder ? holder->file_manager : nullptr;
}

}  // namespace

File::File(const std::string& path)
    : full_path_(path), file_name_(FileUtils::fileNameFromfilePath(path)) {}

File::File(const File& other) = default;
File& File::operator=(const File& other) = default;
File::~File() = default;

std::string File::fullPath() const { return full_path_; }

std::string File::fileName() const { return file_name_; }

bool File::exist() {
  const auto manager = FileManager();
  return manager && manager->IsFileExist(full_path_);
}

unsigned long long File::fileSize() {
  const auto manager = FileManager();
  return manager ? static_cast<unsigned long long>(manager->GetFileSize(full_path_)) : 0;
}

long long File::createTime() {
  const auto manager = FileManager();
  return manager ? manager->GetFileCreateTime(full_path_) : 0;
}

long long File::modifyTime() {
  const auto manager = FileManager();
  return manager ? manager->GetFileModifyTime(full_path_) : 0;
}

std::string File::md5() {
  char hex[Md5::kHexSize] = {};
  MD5_File(full_path_.c_str(), hex);
  return hex;
}

long long File::move(const std::string& newPath) {
  if (const auto manager = FileManager()) manager->MoveTheFile(full_path_, newPath);
  if (&newPath != &full_path_) full_path_ = newPath;
  file_name_ = FileUtils::fileNameFromfilePath(full_path_);
  return 0;
}

char* File::read(long long* length) {
  char* buffer = nullptr;
  const long long count = FileUtils::readFile(full_path_, &buffer);
  if (length != nullptr) *length = count;
  return buffer;
}

std::string File::readChunk(long long index, long long* length) {
  std::string chunk;
  const long long count = FileUtils::readChunkFromFile(full_path_, index, chunk, kChunkLength);
  if (length != nullptr) *length = count;
  return chunk;
}

long long File::write(const char* data, long long length) {
  return FileUtils::writeFile(data, length, full_path_);
}

}  // namespace tessel
