#include "platform/system_error.h"

#include <cerrno>
#include <string>

#include "platform/file_names.h"

namespace kvdm {
namespace {

std::int32_t NumberOf(int error) {
  switch (error) {
    case ENOENT:
    case ELOOP:
      return kPathNotFound;
    case ENAMETOOLONG:
      return kBadFileName;
    case EEXIST:
      return kFileExists;
    case EACCES:
    case EPERM:
    case EROFS:
    case ETXTBSY:
    case EAGAIN:
      return kPermissionDenied;
    case ENOTDIR:
    case EISDIR:
    case ENOTEMPTY:
    case EBUSY:
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
    case EMFILE:
    case ENFILE:
      return kPathFileAccess;
    case ENXIO:
    case ENODEV:
      return kDeviceUnavailable;
    case ENOMEM:
      return kOutOfMemory;
    default:
      return kAutomationFailure;
  }
}

}  // namespace

void ThrowSystemError(int error) { throw std::system_error(error, std::generic_category()); }
void ThrowLastError() { ThrowSystemError(errno); }

bool MeansMissing(int error) {
  return error == ENOENT || error == ENOTDIR || error == ELOOP || error == ENAMETOOLONG;
}

RuntimeError SystemErrorAt(std::string_view path, int error) {
  const std::int32_t number = NumberOf(error);
  if (number != kAutomationFailure) return PathError(number, path);
  return {number, {}, std::string(path) + ": " + std::generic_category().message(error)};
}

}  // namespace kvdm
