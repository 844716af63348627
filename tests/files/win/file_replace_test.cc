// Whole-file writes under Windows' own rules: the hidden attribute is kept; a
// file that another handle keeps from deletion is left as it was, with no new
// file beside it.
#include <windows.h>

#include <gtest/gtest.h>

#include <iterator>

#include "common/file_utils.h"
#include "files/temp_dir.h"

namespace {

using FilesWindows = TempDirTest;

TEST_F(FilesWindows, ReplacementsKeepHiddenAndSpareFilesInUse) {
  const std::filesystem::path hidden = Make("hidden", "old"), in_use = Path("in-use");
  ASSERT_TRUE(SetFileAttributesW(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN));
  tessel::FileUtils::writeFile("new", 3, hidden.string());
  EXPECT_EQ(Slurp(hidden.string()), "new");
  EXPECT_TRUE(GetFileAttributesW(hidden.c_str()) & FILE_ATTRIBUTE_HIDDEN);
  const HANDLE file = CreateFileW(in_use.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(file, INVALID_HANDLE_VALUE);
  tessel::FileUtils::writeFile("new", 3, in_use.string());
  CloseHandle(file);
  EXPECT_EQ(Slurp(in_use.string()), "");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir_), {}), 2);
}

}  // namespace
