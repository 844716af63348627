#include "common/imp_win/generic_file_manager.h"

#include "platform/file_system.h"

namespace tessel {

GenericFileManager::GenericFileManager() = default;
GenericFileManager::GenericFileManager(const GenericFileManager&) = default;
GenericFileManager& GenericFileManager::operator=(const GenericFileManager&) = default;
GenericFileManager::~GenericFileManager() = default;

bool GenericFileManager::MakeDir(const std::string& path) {
  return tessel_platform::CreateDirectories(path);
}

bool GenericFileManager::IsPathDir(const std::string& path) {
  return tessel_platform::DirectoryExists(path);
}

bool GenericFileManager::IsFileExist(const std::string& path) {
  return tessel_platform::PathExists(path);
}

int64_t GenericFileManager::GetFileSize(const std::string& path) {
  return tessel_platform::FileSize(path);
}

int64_t GenericFileManager::GetFileCreateTime(const std::string& path) {
  return tessel_platform::FileCreateTime(path);
}

int64_t GenericFileManager::GetFileModifyTime(const std::string& path) {
  return tessel_platform::FileModifyTime(path);
}

bool GenericFileManager::DeleteTheFile(const std::string& path) {
  return tessel_platform::DeleteRecursively(path);
}

bool GenericFileManager::DeleteDirectory(const std::string& path) {
  return tessel_platform::DeleteRecursively(path);
}

bool GenericFileManager::MoveTheFile(const std::string& from, const std::string& to) {
  return tessel_platform::MovePath(from, to);
}

bool GenericFileManager::CopyTheFile(const std::string& from, const std::string& to) {
  return tessel_platform::CopyRegularFile(from, to);
}

std::vector<std::shared_ptr<tessel_gen::PlatformFileInfo>> GenericFileManager::ListContensAtPath(
    const std::string&) {
  return {};
}

std::string GenericFileManager::HomeDir() { return "/Users"; }

std::string GenericFileManager::LogDir() { return HomeDir() + "/Logs/"; }

std::string GenericFileManager::TempDir() { return HomeDir() + "/tmp/"; }

}  // namespace tessel
