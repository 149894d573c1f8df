#include "platform/system_error.h"

#include <gtest/gtest.h>
#include <windows.h>

namespace kvdm {
namespace {

TEST(SystemErrorTest, ErrorsHaveTheNumbersThatClientsKnow) {
  const struct {
    int error;
    int number;
  } rows[] = {
      {ERROR_FILE_NOT_FOUND, kPathNotFound},
      {ERROR_PATH_NOT_FOUND, kPathNotFound},
      {ERROR_INVALID_DRIVE, kPathNotFound},
      {ERROR_BAD_NETPATH, kPathNotFound},
      {ERROR_INVALID_NAME, kBadFileName},
      {ERROR_FILENAME_EXCED_RANGE, kBadFileName},
      {ERROR_ALREADY_EXISTS, kFileExists},
      {ERROR_FILE_EXISTS, kFileExists},
      {ERROR_ACCESS_DENIED, kPermissionDenied},
      {ERROR_SHARING_VIOLATION, kPermissionDenied},
      {ERROR_WRITE_PROTECT, kPermissionDenied},
      {ERROR_DIR_NOT_EMPTY, kPathFileAccess},
      {ERROR_DIRECTORY, kPathFileAccess},
      {ERROR_DISK_FULL, kPathFileAccess},
      {ERROR_REPARSE_TAG_MISMATCH, kPathFileAccess},
      {ERROR_NOT_READY, kDeviceUnavailable},
      {ERROR_NETNAME_DELETED, kDeviceUnavailable},
      {ERROR_SEM_TIMEOUT, kDeviceUnavailable},
      {362, kDeviceUnavailable},  // A cloud store that is not running.
      {395, kPermissionDenied},
      {ERROR_NOT_ENOUGH_MEMORY, kOutOfMemory},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(SystemErrorAt("D:\\x", row.error).number(), row.number) << row.error;
  }
}

TEST(SystemErrorTest, ErrorsNameThePath) {
  EXPECT_STREQ(SystemErrorAt(R"(D:\x)", ERROR_FILE_NOT_FOUND).what(), R"(Path not found: D:\x)");
}

TEST(SystemErrorTest, AnErrorWithoutAClassicNumberTellsItsCode) {
  const RuntimeError error = SystemErrorAt(R"(D:\x)", ERROR_CRC);
  EXPECT_EQ(error.number(), kAutomationFailure);
  EXPECT_STREQ(error.what(), R"(D:\x: system error 23)");
}

TEST(SystemErrorTest, SystemErrorsInABodyAreTranslated) {
  try {
    TranslatingErrors("D:\\x", [] { ThrowSystemError(ERROR_DIR_NOT_EMPTY); });
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number(), kPathFileAccess);
  }
}

}  // namespace
}  // namespace kvdm
