#include "platform/posix/files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdint>

#include "platform/system_error.h"

namespace kvdm {
namespace {

constexpr const char* kAttributeName = "user.DOSATTRIB";

// The record, little endian: an empty text and padding (2 bytes), the version (2), the version
// again (4), which fields are valid (4), the attributes (4), then times by version.
constexpr std::size_t kVersion = 2;
constexpr std::size_t kVersionAgain = 4;
constexpr std::size_t kValidFields = 8;
constexpr std::size_t kAttributes = 12;
constexpr std::size_t kTime = 16;
constexpr std::size_t kTimeSize = 8;
constexpr std::uint32_t kAttributesValid = 1;
constexpr std::uint32_t kOldestVersion = 3;
constexpr std::uint32_t kNewestVersion = 5;

std::uint32_t NumberAt(std::string_view record, std::size_t offset, std::size_t size) {
  std::uint32_t number = 0;
  for (std::size_t i = size; i-- > 0;) {
    number = number << 8U | static_cast<unsigned char>(record[offset + i]);
  }
  return number;
}

void AppendNumber(std::uint32_t number, std::size_t size, std::string& record) {
  for (std::size_t i = 0; i < size; ++i) {
    record += static_cast<char>(number & 0xFFU);
    number >>= 8U;
  }
}

unsigned ParseText(std::string_view text) {
  text = text.substr(0, text.find('\0'));
  unsigned attributes = 0;
  const auto [end, error] = std::from_chars(text.begin(), text.end(), attributes, 16);
  return error == std::errc() && end == text.end() ? attributes : 0;
}

unsigned ParseRecord(std::string_view record) {
  const std::uint32_t version = NumberAt(record, kVersion, 2);
  const bool known = version >= kOldestVersion && version <= kNewestVersion &&
                     version == NumberAt(record, kVersionAgain, 4);
  const bool valid = (NumberAt(record, kValidFields, 4) & kAttributesValid) != 0;
  return known && valid ? NumberAt(record, kAttributes, 4) : 0;
}

std::optional<struct stat> Stat(int folder, const std::string& name) {
  struct stat status {};
  if (::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) return status;
  if (errno == ENOENT) return std::nullopt;
  ThrowLastError();
}

// The attributes in one call, which newer systems have; nothing where that does not tell.
std::optional<unsigned> AttributesByName(int folder, const std::string& name) {
  constexpr long kCall = 464;  // getxattrat, the same number for all processors
  struct Arguments {
    alignas(8) std::uint64_t value;
    std::uint32_t size;
    std::uint32_t flags;
  };
  static std::atomic<bool> is_missing = false;
  if (is_missing) return std::nullopt;
  std::array<char, 256> buffer{};
  Arguments arguments{reinterpret_cast<std::uintptr_t>(buffer.data()), buffer.size(), 0};
  const long size = ::syscall(kCall, folder, name.c_str(), AT_SYMLINK_NOFOLLOW, kAttributeName,
                              &arguments, sizeof arguments);
  if (size >= 0) return ParseDosAttributes({buffer.data(), static_cast<std::size_t>(size)});
  if (errno == ENODATA || errno == ENOTSUP) return 0;
  is_missing = errno == ENOSYS;
  return std::nullopt;
}

// Attributes that the system does not let us read, or of an entry that has just changed its kind,
// count as none. When they can't be read for want of resources, a hidden file must not pass for an
// ordinary one.
unsigned StoredAttributes(int folder, const std::string& name) {
  if (const auto attributes = AttributesByName(folder, name)) return *attributes;
  const int flags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
  const FileDescriptor file(::openat(folder, name.c_str(), flags));
  if (file.get() >= 0) return ReadDosAttributes(file.get());
  if (errno == ENOENT || errno == EACCES || errno == ELOOP) return 0;
  ThrowLastError();
}

}  // namespace

unsigned ParseDosAttributes(std::string_view value) {
  if (value.starts_with("0x")) return ParseText(value.substr(2));
  const bool is_record = value.size() >= kTime && value[0] == '\0' && value[1] == '\0';
  return is_record ? ParseRecord(value) : 0;
}

std::string FormatDosAttributes(unsigned attributes) {
  std::string record(2, '\0');
  AppendNumber(kNewestVersion, 2, record);
  AppendNumber(kNewestVersion, 4, record);
  AppendNumber(kAttributesValid, 4, record);
  AppendNumber(attributes, 4, record);
  record.append(kTimeSize, '\0');
  return record;
}

unsigned ReadDosAttributes(int file) {
  std::array<char, 256> buffer{};
  const ssize_t size = ::fgetxattr(file, kAttributeName, buffer.data(), buffer.size());
  if (size <= 0) return 0;
  return ParseDosAttributes({buffer.data(), static_cast<std::size_t>(size)});
}

void WriteDosAttributes(int file, unsigned attributes) {
  const std::string record = FormatDosAttributes(attributes);
  const int result = ::fsetxattr(file, kAttributeName, record.data(), record.size(), 0);
  if (result != 0 && errno != ENOTSUP) ThrowLastError();
}

FileDescriptor OpenAt(int folder, const std::string& name, int flags) {
  int file = -1;
  do {
    file = ::openat(folder, name.c_str(), flags | O_CLOEXEC);
  } while (file < 0 && errno == EINTR);
  if (file < 0) ThrowLastError();
  return FileDescriptor(file);
}

bool IsEntryName(std::string_view name) {
  constexpr std::string_view kNeverInNames("/\0", 2);
  return !name.empty() && name != "." && name != ".." &&
         name.find_first_of(kNeverInNames) == std::string_view::npos;
}

void ListOpenFolder(int folder, const EntryVisitor& visit) {
  alignas(dirent64) std::array<char, 65536> buffer;
  while (true) {
    const ssize_t size = ::getdents64(folder, buffer.data(), buffer.size());
    if (size == 0 || (size < 0 && errno == ENOENT)) return;
    if (size < 0) ThrowLastError();
    for (ssize_t at = 0; at < size;) {
      const auto* entry = reinterpret_cast<const dirent64*>(buffer.data() + at);
      if (IsEntryName(entry->d_name)) visit(entry->d_name, entry->d_type);
      at += entry->d_reclen;
    }
  }
}

void ListEntries(int folder, const EntryVisitor& visit) {
  const FileDescriptor own(::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (own.get() < 0 && errno == ENOENT) return;
  if (own.get() < 0) ThrowLastError();
  ListOpenFolder(own.get(), visit);
}

std::vector<std::string> EntryNames(int folder) {
  std::vector<std::string> names;
  ListEntries(folder, [&](const char* name, unsigned char) { names.emplace_back(name); });
  SortNames(names);
  return names;
}

bool HasEntry(int folder, const std::string& name) { return Stat(folder, name).has_value(); }

std::optional<std::string> FindEntry(int folder, std::string_view name, NameFinder find) {
  if (!IsEntryName(name)) return std::nullopt;
  if (HasEntry(folder, std::string(name))) return std::string(name);
  return FindListed(name, find, [&](const EntryVisitor& visit) { ListEntries(folder, visit); });
}

std::optional<std::string> FindListed(std::string_view name, NameFinder find,
                                      const std::function<void(const EntryVisitor&)>& list) {
  std::vector<std::string> alike;
  try {
    list([&](const char* entry, unsigned char) {
      if (MayMean(name, entry)) alike.emplace_back(entry);
    });
  } catch (const std::system_error& error) {
    if (error.code().value() != EACCES) throw;
    alike.clear();
  }
  SortNames(alike);
  return find(alike, name);
}

FileIdentity IdentityOf(int file) {
  struct stat status {};
  if (::fstat(file, &status) != 0) ThrowLastError();
  return {status.st_dev, status.st_ino};
}

std::optional<FileIdentity> IdentityIn(int folder, const std::string& name) {
  const auto found = Stat(folder, name);
  return found ? std::optional(FileIdentity{found->st_dev, found->st_ino}) : std::nullopt;
}

FolderIdentity FolderIdentityOf(int folder) {
  struct statx status {};
  constexpr unsigned kWanted = STATX_INO | STATX_MNT_ID;
  const bool told = ::statx(folder, "", AT_EMPTY_PATH, kWanted, &status) == 0 &&
                    (status.stx_mask & kWanted) == kWanted;
  if (!told) return {IdentityOf(folder)};
  return {{makedev(status.stx_dev_major, status.stx_dev_minor), status.stx_ino}, status.stx_mnt_id};
}

FileDescriptor OpenFolderIn(int folder, const std::string& name) {
  return OpenAt(folder, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
}

std::optional<FileStatus> StatusOf(int folder, const std::string& name) {
  const auto found = Stat(folder, name);
  if (!found) return std::nullopt;
  FileStatus status;
  status.is_folder = S_ISDIR(found->st_mode);
  status.is_regular_file = S_ISREG(found->st_mode);
  status.is_link = S_ISLNK(found->st_mode);
  status.permissions = found->st_mode & 0777U;
  status.owner = found->st_uid;
  status.group = found->st_gid;
  status.is_read_only = (status.permissions & 0222U) == 0;
  if (status.is_folder || status.is_regular_file)
    status.attributes = StoredAttributes(folder, name);
  const bool is_hidden = (status.attributes & (kHiddenAttribute | kSystemAttribute)) != 0;
  status.has_dot = name.starts_with('.') && !is_hidden;
  status.is_seen = !name.starts_with('.') && !is_hidden;
  status.identity = {found->st_dev, found->st_ino};
  return status;
}

}  // namespace kvdm
