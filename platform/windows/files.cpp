#include "platform/windows/files.h"

#include <winternl.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <tuple>

#include "platform/file_names.h"
#include "platform/system_error.h"
#include "platform/windows/text.h"

namespace kvdm {
namespace {

// Other reparse points, such as compressed files, are what they seem to be. A system that does not
// tell the tag has links only.
bool IsLink(DWORD attributes, DWORD tag) {
  return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
         (tag == 0 || IsReparseTagNameSurrogate(tag));
}

// For a reparse point the system puts its tag where the size of extended attributes is otherwise.
FolderEntry EntryOf(const FILE_ID_BOTH_DIR_INFO& info) {
  return {std::wstring(info.FileName, info.FileNameLength / sizeof(wchar_t)), info.FileAttributes,
          IsLink(info.FileAttributes, info.EaSize), info.FileId.QuadPart};
}

bool WasDeleted(const FileHandle& folder) {
  FILE_STANDARD_INFO info{};
  return ::GetFileInformationByHandleEx(folder.get(), FileStandardInfo, &info, sizeof info) !=
             FALSE &&
         (info.DeletePending != FALSE || info.NumberOfLinks == 0);
}

// A part of a listing. The numbers in it need their alignment.
struct alignas(LARGE_INTEGER) ListingPart {
  std::array<char, 65536> bytes;
};

void AppendEntries(const ListingPart& part, std::vector<FolderEntry>& entries) {
  const char* next = part.bytes.data();
  while (true) {
    const auto& info = *reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(next);
    FolderEntry entry = EntryOf(info);
    if (entry.name != L"." && entry.name != L"..") entries.push_back(std::move(entry));
    if (info.NextEntryOffset == 0) return;
    next += info.NextEntryOffset;
  }
}

// The path of an open file or folder on its volume, without a separator at the end; nothing when
// the system has lost it.
std::optional<std::string> PathOnVolume(const FileHandle& file) {
  constexpr std::size_t kLongestPath = 32768;
  std::vector<FILE_NAME_INFO> info(kLongestPath * sizeof(wchar_t) / sizeof(FILE_NAME_INFO));
  const auto size = static_cast<DWORD>(info.size() * sizeof(FILE_NAME_INFO));
  if (::GetFileInformationByHandleEx(file.get(), FileNameInfo, info.data(), size) == FALSE) {
    return std::nullopt;
  }
  const FILE_NAME_INFO& path = info.front();
  std::wstring_view name(path.FileName, path.FileNameLength / sizeof(wchar_t));
  if (name.ends_with(L'\\')) name.remove_suffix(1);
  return ToUtf8(name);
}

// A path in the form in which some systems tell it: without blanks and dots at the ends of names.
std::string WithoutEnds(std::string_view path) {
  std::string short_path;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('\\'), path.size());
    const std::string_view name = TrimmedName(path.substr(0, end));
    if (!name.empty()) short_path.append("\\").append(name);
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return short_path;
}

// Some systems follow a link whatever they are asked.
bool IsIn(const FileHandle& folder, const FileHandle& file, const std::wstring& name) {
  const auto parent = PathOnVolume(folder);
  const auto path = PathOnVolume(file);
  return parent && path && SameName(WithoutEnds(*path), WithoutEnds(*parent + "\\" + ToUtf8(name)));
}

bool IsStill(const FileHandle& file, const FolderEntry& entry) {
  FILE_ATTRIBUTE_TAG_INFO info{};
  if (::GetFileInformationByHandleEx(file.get(), FileAttributeTagInfo, &info, sizeof info) ==
      FALSE) {
    ThrowLastError();
  }
  const FolderEntry now{entry.name, info.FileAttributes,
                        IsLink(info.FileAttributes, info.ReparseTag), entry.id};
  return now.is_link == entry.is_link && now.IsFolder() == entry.IsFolder();
}

FileHandle OpenRelative(const FileHandle& folder, std::wstring name, DWORD access) {
  constexpr ULONG kOptions =
      FILE_OPEN_REPARSE_POINT | FILE_OPEN_FOR_BACKUP_INTENT | FILE_SYNCHRONOUS_IO_NONALERT;
  const auto size = static_cast<USHORT>(name.size() * sizeof(wchar_t));
  UNICODE_STRING relative_name{size, size, name.data()};
  OBJECT_ATTRIBUTES attributes;
  InitializeObjectAttributes(&attributes, &relative_name, 0, folder.get(), nullptr);
  IO_STATUS_BLOCK result;
  HANDLE file = nullptr;
  const NTSTATUS status =
      ::NtCreateFile(&file, access | FILE_READ_ATTRIBUTES | SYNCHRONIZE, &attributes, &result,
                     nullptr, 0, kShareAll, FILE_OPEN, kOptions, nullptr, 0);
  if (status != 0) ThrowSystemError(::RtlNtStatusToDosError(status));
  return FileHandle(file);
}

// A new name in the folder of `path`.
std::wstring TemporaryPath(const std::wstring& path) {
  return path.substr(0, path.rfind(L'\\') + 1) + ToUtf16(TemporaryFileName());
}

// The access rights of what is there, as far as the system tells them; else empty, for those that
// the folder gives to new files.
std::vector<std::byte> AccessRights(const std::wstring& path) {
  DWORD size = 0;
  ::GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<std::byte> rights(size);
  const BOOL found =
      ::GetFileSecurityW(path.c_str(), DACL_SECURITY_INFORMATION, rights.data(), size, &size);
  return found != FALSE ? rights : std::vector<std::byte>();
}

// Moves a file to a place in one step: a file that is there is so until the new one is. Programs
// that look at each file hold some for a moment, so that is waited for.
void Move(const std::wstring& from, const std::wstring& to) {
  constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  constexpr int kTries = 30;
  constexpr DWORD kPause = 10;
  for (int tries = 1; ::MoveFileExW(from.c_str(), to.c_str(), kFlags) == FALSE; ++tries) {
    const DWORD error = ::GetLastError();
    const bool passes = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
    if (!passes || tries == kTries) ThrowSystemError(error);
    ::Sleep(kPause);
  }
}

// A new file, which is deleted at the end unless it was moved to its place. It stays open all the
// time, so that nothing else is deleted in its stead.
class TemporaryFile {
 public:
  TemporaryFile(const std::wstring& place, DWORD attributes, std::vector<std::byte> rights)
      : file_(INVALID_HANDLE_VALUE) {
    SECURITY_ATTRIBUTES security{sizeof security, rights.empty() ? nullptr : rights.data(), FALSE};
    do {
      path_ = TemporaryPath(place);
      file_ = FileHandle(::CreateFileW(path_.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
                                       kShareAll, &security, CREATE_NEW, attributes, nullptr));
    } while (!file_.is_open() && ::GetLastError() == ERROR_FILE_EXISTS);
    if (!file_.is_open()) ThrowLastError();
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (!moved_) std::ignore = DeleteOpened(file_);
  }

  // On return the bytes are on the disk, and can be read again.
  void Write(std::string_view bytes) {
    for (std::string_view rest = bytes; !rest.empty();) {
      constexpr std::size_t kMost = std::numeric_limits<DWORD>::max() / 2;
      const auto size = static_cast<DWORD>(std::min(rest.size(), kMost));
      DWORD written = 0;
      if (::WriteFile(file_.get(), rest.data(), size, &written, nullptr) == FALSE) {
        ThrowLastError();
      }
      rest.remove_prefix(written);
    }
    if (::FlushFileBuffers(file_.get()) == FALSE) ThrowLastError();
    if (::SetFilePointerEx(file_.get(), {}, nullptr, FILE_BEGIN) == FALSE) ThrowLastError();
    if (ReadAll(file_, bytes.size() + 1) != bytes) ThrowSystemError(ERROR_CRC);
  }

  void MoveTo(const std::wstring& path) {
    Move(path_, path);
    moved_ = true;
  }

 private:
  std::wstring path_;
  FileHandle file_;
  bool moved_ = false;
};

// Gives a file a second name; where files can't have two, a copy does.
void LinkOrCopy(const std::wstring& path, const std::wstring& second) {
  const std::wstring temporary = TemporaryPath(second);
  if (::CreateHardLinkW(temporary.c_str(), path.c_str(), nullptr) == FALSE &&
      ::CopyFileW(path.c_str(), temporary.c_str(), TRUE) == FALSE) {
    ThrowLastError();
  }
  const auto removed = [&] { ::DeleteFileW(temporary.c_str()); };
  try {
    Move(temporary, second);
  } catch (const std::system_error&) {
    removed();
    throw;
  }
  // Two names of one file may stay two when one is moved to the other.
  removed();
}

}  // namespace

std::vector<FolderEntry> EntriesOf(const FileHandle& folder) {
  std::vector<FolderEntry> entries;
  const auto part = std::make_unique<ListingPart>();
  auto step = FileIdBothDirectoryRestartInfo;
  while (::GetFileInformationByHandleEx(folder.get(), step, part.get(), sizeof *part) != FALSE) {
    AppendEntries(*part, entries);
    step = FileIdBothDirectoryInfo;
  }
  const DWORD error = ::GetLastError();
  const bool complete = error == ERROR_NO_MORE_FILES || error == ERROR_FILE_NOT_FOUND;
  if (!complete && !WasDeleted(folder)) ThrowSystemError(error);
  return entries;
}

FileHandle OpenEntry(const FileHandle& folder, const FolderEntry& entry, DWORD access) {
  FileHandle file = OpenRelative(folder, entry.name, access);
  if (!IsStill(file, entry) || !IsIn(folder, file, entry.name)) {
    ThrowSystemError(ERROR_REPARSE_TAG_MISMATCH);
  }
  return file;
}

void DeleteEntry(const FileHandle& folder, const FolderEntry& entry) {
  const FileHandle file = OpenEntry(folder, entry, DELETE);
  if (!DeleteOpened(file)) ThrowLastError();
}

bool DeleteOpened(const FileHandle& file) {
  // FileDispositionInfoEx with the flags "delete" and "at once", which older systems do not know.
  constexpr auto kDispositionEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);
  DWORD flags = 0x1 | 0x2;
  FILE_DISPOSITION_INFO classic{TRUE};
  return ::SetFileInformationByHandle(file.get(), kDispositionEx, &flags, sizeof flags) != FALSE ||
         ::SetFileInformationByHandle(file.get(), FileDispositionInfo, &classic, sizeof classic) !=
             FALSE;
}

std::string ReadAll(const FileHandle& file, std::size_t most) {
  std::string content;
  std::array<char, 65536> buffer;
  while (content.size() < most) {
    const auto wanted = static_cast<DWORD>(std::min(buffer.size(), most - content.size()));
    DWORD size = 0;
    if (::ReadFile(file.get(), buffer.data(), wanted, &size, nullptr) == FALSE) ThrowLastError();
    if (size == 0) break;
    content.append(buffer.data(), size);
  }
  return content;
}

void SaveFile(const std::wstring& path, std::string_view bytes, const std::wstring& previous) {
  constexpr DWORD kKept = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE |
                          FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  const DWORD old = ::GetFileAttributesW(path.c_str());
  const bool replaces = old != INVALID_FILE_ATTRIBUTES;
  const DWORD kept = replaces ? old & kKept : 0;
  TemporaryFile temporary(path, kept != 0 ? kept : FILE_ATTRIBUTE_NORMAL, AccessRights(path));
  temporary.Write(bytes);
  if (replaces && !previous.empty()) LinkOrCopy(path, previous);
  temporary.MoveTo(path);
}

}  // namespace kvdm
