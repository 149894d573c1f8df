#include "platform/system_error.h"

#include <windows.h>

#include <algorithm>
#include <string>

#include "platform/file_names.h"

namespace kvdm {
namespace {

struct Numbered {
  int error;
  std::int32_t number;
};

// Of files that a cloud store keeps; the headers do not know them yet.
constexpr int kCloudProviderNotRunning = 362;
constexpr int kCloudNetworkUnavailable = 388;
constexpr int kCloudFileInUse = 391;
constexpr int kCloudAccessDenied = 395;

constexpr Numbered kNumbers[] = {
    {ERROR_FILE_NOT_FOUND, kPathNotFound},
    {ERROR_PATH_NOT_FOUND, kPathNotFound},
    {ERROR_INVALID_DRIVE, kPathNotFound},
    {ERROR_BAD_NETPATH, kPathNotFound},
    {ERROR_BAD_NET_NAME, kPathNotFound},
    {ERROR_CANT_RESOLVE_FILENAME, kPathNotFound},
    {ERROR_INVALID_NAME, kBadFileName},
    {ERROR_BAD_PATHNAME, kBadFileName},
    {ERROR_FILENAME_EXCED_RANGE, kBadFileName},
    {ERROR_FILE_EXISTS, kFileExists},
    {ERROR_ALREADY_EXISTS, kFileExists},
    {ERROR_ACCESS_DENIED, kPermissionDenied},
    {ERROR_WRITE_PROTECT, kPermissionDenied},
    {ERROR_SHARING_VIOLATION, kPermissionDenied},
    {ERROR_LOCK_VIOLATION, kPermissionDenied},
    {ERROR_NETWORK_ACCESS_DENIED, kPermissionDenied},
    {ERROR_DELETE_PENDING, kPermissionDenied},
    {ERROR_USER_MAPPED_FILE, kPermissionDenied},
    {ERROR_PRIVILEGE_NOT_HELD, kPermissionDenied},
    {ERROR_TOO_MANY_OPEN_FILES, kPathFileAccess},
    {ERROR_CURRENT_DIRECTORY, kPathFileAccess},
    {ERROR_HANDLE_DISK_FULL, kPathFileAccess},
    {ERROR_DISK_FULL, kPathFileAccess},
    {ERROR_DIR_NOT_EMPTY, kPathFileAccess},
    {ERROR_BUSY, kPathFileAccess},
    {ERROR_FILE_TOO_LARGE, kPathFileAccess},
    {ERROR_DIRECTORY, kPathFileAccess},
    {ERROR_REPARSE_TAG_MISMATCH, kPathFileAccess},
    {ERROR_NOT_ENOUGH_QUOTA, kPathFileAccess},
    {ERROR_NO_SYSTEM_RESOURCES, kPathFileAccess},
    {ERROR_BAD_UNIT, kDeviceUnavailable},
    {ERROR_NOT_READY, kDeviceUnavailable},
    {ERROR_DEV_NOT_EXIST, kDeviceUnavailable},
    {ERROR_DEVICE_NOT_CONNECTED, kDeviceUnavailable},
    {ERROR_REM_NOT_LIST, kDeviceUnavailable},
    {ERROR_UNEXP_NET_ERR, kDeviceUnavailable},
    {ERROR_NETNAME_DELETED, kDeviceUnavailable},
    {ERROR_SEM_TIMEOUT, kDeviceUnavailable},
    {ERROR_NETWORK_UNREACHABLE, kDeviceUnavailable},
    {kCloudProviderNotRunning, kDeviceUnavailable},
    {kCloudNetworkUnavailable, kDeviceUnavailable},
    {kCloudFileInUse, kPermissionDenied},
    {kCloudAccessDenied, kPermissionDenied},
    {ERROR_NOT_ENOUGH_MEMORY, kOutOfMemory},
    {ERROR_OUTOFMEMORY, kOutOfMemory},
};

std::int32_t NumberOf(int error) {
  const auto found = std::ranges::find(kNumbers, error, &Numbered::error);
  return found == std::ranges::end(kNumbers) ? kAutomationFailure : found->number;
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
