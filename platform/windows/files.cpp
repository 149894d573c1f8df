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

extern "C" NTSTATUS NTAPI NtQueryDirectoryFile(HANDLE file, HANDLE event, PIO_APC_ROUTINE routine,
                                               void* context, IO_STATUS_BLOCK* result, void* part,
                                               ULONG size, FILE_INFORMATION_CLASS kind,
                                               BOOLEAN single, UNICODE_STRING* name,
                                               BOOLEAN restart);

namespace kvdm {
namespace {

// Whether an error says that a file system does not answer a question that others do. Shares of
// other makers do it in many ways.
bool MeansNotAnswered(DWORD error) {
  constexpr std::array<DWORD, 6> kErrors = {ERROR_INVALID_FUNCTION, ERROR_GEN_FAILURE,
                                            ERROR_NOT_SUPPORTED,    ERROR_INVALID_PARAMETER,
                                            ERROR_INVALID_LEVEL,    ERROR_INTERNAL_ERROR};
  return std::ranges::find(kErrors, error) != kErrors.end();
}

// Other programs that look at each file, such as virus scanners, hold some for a moment, so that is
// waited for: `attempt` is made again when it fails for that.
template <class Attempt>
void Insist(const Attempt& attempt) {
  constexpr int kTries = 30;
  constexpr DWORD kPause = 10;
  for (int tries = 1;; ++tries) {
    try {
      return attempt();
    } catch (const std::system_error& error) {
      const int code = error.code().value();
      const bool is_held = code == ERROR_SHARING_VIOLATION || code == ERROR_ACCESS_DENIED;
      if (!is_held || tries == kTries) throw;
    }
    ::Sleep(kPause);
  }
}

// Other reparse points, such as compressed files, are what they seem to be. A system that does not
// tell the tag has links only.
bool IsLink(DWORD attributes, DWORD tag) {
  return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
         (tag == 0 || IsReparseTagNameSurrogate(tag));
}

LONGLONG IdOf(const FILE_ID_BOTH_DIR_INFO& info) { return info.FileId.QuadPart; }
LONGLONG IdOf(const FILE_BOTH_DIR_INFORMATION&) { return 0; }

// For a reparse point the system puts its tag where the size of extended attributes is otherwise.
template <class Info>
FolderEntry EntryOf(const Info& info) {
  return {std::wstring(info.FileName, info.FileNameLength / sizeof(wchar_t)), info.FileAttributes,
          IsLink(info.FileAttributes, info.EaSize), IdOf(info)};
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

template <class Info>
void AppendEntries(const ListingPart& part, std::vector<FolderEntry>& entries) {
  const char* next = part.bytes.data();
  while (true) {
    const auto& info = *reinterpret_cast<const Info*>(next);
    FolderEntry entry = EntryOf(info);
    if (entry.name != L"." && entry.name != L"..") entries.push_back(std::move(entry));
    if (info.NextEntryOffset == 0) return;
    next += info.NextEntryOffset;
  }
}

// Lists a folder until the system answers an error, which is the result.
DWORD List(const FileHandle& folder, ListingPart& part, std::vector<FolderEntry>& entries) {
  auto step = FileIdBothDirectoryRestartInfo;
  while (::GetFileInformationByHandleEx(folder.get(), step, &part, sizeof part) != FALSE) {
    AppendEntries<FILE_ID_BOTH_DIR_INFO>(part, entries);
    step = FileIdBothDirectoryInfo;
  }
  return ::GetLastError();
}

// Opens an entry of a folder. The result is the system's error code; 0 for none.
DWORD OpenIn(const FileHandle& folder, std::wstring name, DWORD access, FileHandle& file) {
  constexpr ULONG kOptions =
      FILE_OPEN_REPARSE_POINT | FILE_OPEN_FOR_BACKUP_INTENT | FILE_SYNCHRONOUS_IO_NONALERT;
  const auto size = static_cast<USHORT>(name.size() * sizeof(wchar_t));
  UNICODE_STRING relative_name{size, size, name.data()};
  OBJECT_ATTRIBUTES attributes;
  InitializeObjectAttributes(&attributes, &relative_name, 0, folder.get(), nullptr);
  IO_STATUS_BLOCK result;
  HANDLE opened = nullptr;
  const NTSTATUS status =
      ::NtCreateFile(&opened, access | FILE_READ_ATTRIBUTES | SYNCHRONIZE, &attributes, &result,
                     nullptr, 0, kShareAll, FILE_OPEN, kOptions, nullptr, 0);
  if (status != 0) return ::RtlNtStatusToDosError(status);
  file = FileHandle(opened);
  return 0;
}

// The identifier of a folder's entry, for which it has to be opened; 0 where there is none.
LONGLONG IdIn(const FileHandle& folder, const std::wstring& name) {
  FileHandle file(INVALID_HANDLE_VALUE);
  BY_HANDLE_FILE_INFORMATION info{};
  if (OpenIn(folder, name, 0, file) == 0) ::GetFileInformationByHandle(file.get(), &info);
  return static_cast<LONGLONG>(info.nFileIndexHigh) << 32 | info.nFileIndexLow;
}

// The same in the way that every file system knows, which tells no identifiers. Folders need one.
DWORD ListPlainly(const FileHandle& folder, ListingPart& part, std::vector<FolderEntry>& entries) {
  for (BOOLEAN restart = TRUE;; restart = FALSE) {
    IO_STATUS_BLOCK result;
    const NTSTATUS status =
        ::NtQueryDirectoryFile(folder.get(), nullptr, nullptr, nullptr, &result, &part, sizeof part,
                               FileBothDirectoryInformation, FALSE, nullptr, restart);
    if (status != 0) {
      for (FolderEntry& entry : entries) {
        if (entry.IsFolder()) entry.id = IdIn(folder, entry.name);
      }
      return ::RtlNtStatusToDosError(status);
    }
    AppendEntries<FILE_BOTH_DIR_INFORMATION>(part, entries);
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

// File systems without reparse points need not know of tags.
FILE_ATTRIBUTE_TAG_INFO KindOf(const FileHandle& file) {
  FILE_ATTRIBUTE_TAG_INFO info{};
  if (::GetFileInformationByHandleEx(file.get(), FileAttributeTagInfo, &info, sizeof info) !=
      FALSE) {
    return info;
  }
  FILE_BASIC_INFO basic{};
  if (!MeansNotAnswered(::GetLastError()) ||
      ::GetFileInformationByHandleEx(file.get(), FileBasicInfo, &basic, sizeof basic) == FALSE) {
    ThrowLastError();
  }
  return {basic.FileAttributes, 0};
}

bool IsStill(const FileHandle& file, const FolderEntry& entry) {
  const FILE_ATTRIBUTE_TAG_INFO info = KindOf(file);
  const FolderEntry now{entry.name, info.FileAttributes,
                        IsLink(info.FileAttributes, info.ReparseTag), entry.id};
  return now.is_link == entry.is_link && now.IsFolder() == entry.IsFolder();
}

// Old network shares tell what a file is only to those who may also read it. Where reading is
// refused, as by a cloud store that is not running, it is opened without.
FileHandle OpenRelative(const FileHandle& folder, const std::wstring& name, DWORD access) {
  FileHandle file(INVALID_HANDLE_VALUE);
  DWORD error = OpenIn(folder, name, access | FILE_READ_DATA, file);
  if (error != 0 && !MeansMissing(static_cast<int>(error))) {
    error = OpenIn(folder, name, access, file);
  }
  if (error != 0) ThrowSystemError(static_cast<int>(error));
  return file;
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

// Moves a file to a place in one step: a file that is there is so until the new one is.
void Move(const std::wstring& from, const std::wstring& to) {
  constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  Insist([&] {
    if (::MoveFileExW(from.c_str(), to.c_str(), kFlags) == FALSE) ThrowLastError();
  });
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
  DWORD error = List(folder, *part, entries);
  if (entries.empty() && MeansNotAnswered(error)) error = ListPlainly(folder, *part, entries);
  const bool complete = error == ERROR_NO_MORE_FILES || error == ERROR_FILE_NOT_FOUND;
  if (!complete && !WasDeleted(folder)) ThrowSystemError(static_cast<int>(error));
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
  Insist([&] {
    const FileHandle file = OpenEntry(folder, entry, DELETE);
    if (!DeleteOpened(file)) ThrowLastError();
  });
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
