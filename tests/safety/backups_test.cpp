#include "safety/backups.h"

#include <gtest/gtest.h>

#include "safety/os.h"
#include "safety/result.h"
#include "tests/temp_folder.h"

namespace kvdm {
namespace {

TEST(BackupsTest, TheLastStatesAreKept) {
  const TempFolder folder;
  const Backups backups(std::filesystem::path(folder.Path()) / "new" / "P.kvdm");
  EXPECT_TRUE(backups.Numbers().empty());
  for (int state = 1; state <= 12; ++state) {
    backups.Keep(std::to_string(state));
    backups.Keep(std::to_string(state));
  }
  EXPECT_EQ(backups.Numbers(), (std::vector<int>{3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
  EXPECT_EQ(backups.Read(3), "3");
  EXPECT_EQ(os::ToText(backups.FileOf(12).filename()), "P.kvdm.~12~");
  EXPECT_THROW(std::ignore = backups.Read(2), Failure);
}

}  // namespace
}  // namespace kvdm
