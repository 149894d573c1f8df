#include <gtest/gtest.h>

#include "platform/windows/windows_file_system.h"

namespace kvdm {
namespace {

TEST(DeviceNamesTest, DevicesHaveTheirNamesWithEveryExtension) {
  for (const char* name :
       {"con", "PRN", "Aux", "nul", "conin$", "CONOUT$", "com1", "COM9", "lpt1", "Lpt9",
        "com\u00b2", "nul.txt", "aux.tar.gz", "con.", "nul ", "nul .txt", "lpt3. ", "nul. .x"}) {
    EXPECT_TRUE(IsDeviceName(name)) << name;
  }
}

TEST(DeviceNamesTest, OtherNamesAreNoDevices) {
  for (const char* name : {"", " ", ".", ".nul", "null", "nul1", "con1", "com", "com0", "com10",
                           "comx", "lpt", " con", "a.con", "console", "con$", "tmp.aux"}) {
    EXPECT_FALSE(IsDeviceName(name)) << name;
  }
}

}  // namespace
}  // namespace kvdm
