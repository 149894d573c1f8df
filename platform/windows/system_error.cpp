#include "platform/system_error.h"

#include <windows.h>

#include <string>

#include "platform/file_names.h"

namespace kvdm {
namespace {

std::int32_t NumberOf(int error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_CANT_RESOLVE_FILENAME:
      return kPathNotFound;
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_FILENAME_EXCED_RANGE:
      return kBadFileName;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return kFileExists;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_NETWORK_ACCESS_DENIED:
    case ERROR_DELETE_PENDING:
    case ERROR_USER_MAPPED_FILE:
    case ERROR_PRIVILEGE_NOT_HELD:
      return kPermissionDenied;
    case ERROR_TOO_MANY_OPEN_FILES:
    case ERROR_CURRENT_DIRECTORY:
    case ERROR_HANDLE_DISK_FULL:
    case ERROR_DISK_FULL:
    case ERROR_DIR_NOT_EMPTY:
    case ERROR_BUSY:
    case ERROR_FILE_TOO_LARGE:
    case ERROR_DIRECTORY:
    case ERROR_REPARSE_TAG_MISMATCH:
    case ERROR_NOT_ENOUGH_QUOTA:
    case ERROR_NO_SYSTEM_RESOURCES:
      return kPathFileAccess;
    case ERROR_BAD_UNIT:
    case ERROR_NOT_READY:
    case ERROR_DEV_NOT_EXIST:
    case ERROR_DEVICE_NOT_CONNECTED:
      return kDeviceUnavailable;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
      return kOutOfMemory;
    default:
      return kAutomationFailure;
  }
}

}  // namespace

void ThrowSystemError(int error) { throw std::system_error(error, std::system_category()); }
void ThrowLastError() { ThrowSystemError(static_cast<int>(::GetLastError())); }

bool MeansMissing(int error) {
  const std::int32_t number = NumberOf(error);
  return number == kPathNotFound || number == kBadFileName || error == ERROR_DIRECTORY;
}

RuntimeError SystemErrorAt(std::string_view path, int error) {
  const std::int32_t number = NumberOf(error);
  if (number != kAutomationFailure) return PathError(number, path);
  return {number, {}, std::string(path) + ": system error " + std::to_string(error)};
}

}  // namespace kvdm
