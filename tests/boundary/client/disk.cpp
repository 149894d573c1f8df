#include "tests/boundary/client/disk.h"

#include <algorithm>
#include <stdexcept>

#include "platform/file_names.h"
#include "platform/windows/windows_file_system.h"

namespace kvdm::client {
namespace {

constexpr char kSystemDrive[] = R"(C:\)";
// What tests make on C:.
constexpr const char* kOnSystemDrive[] = {R"(C:\My Output Data)", R"(C:\Preset)"};

// Relative paths start on drive D:.
const DrivePath kCurrentFolder = {'D', {}};

DrivePath Resolved(std::string_view path) { return *ResolvePath(SplitPath(path), kCurrentFolder); }

std::wstring At(std::string_view path) { return SystemPath(Resolved(path)); }

DWORD AttributesOf(std::string_view path) {
  const DWORD attributes = ::GetFileAttributesW(At(path).c_str());
  return attributes == INVALID_FILE_ATTRIBUTES ? 0 : attributes;
}

void Require(bool done, std::string_view path) {
  if (!done) throw std::runtime_error("can't prepare " + std::string(path));
}

std::vector<WIN32_FIND_DATAW> EntriesOf(const std::wstring& folder) {
  std::vector<WIN32_FIND_DATAW> entries;
  WIN32_FIND_DATAW found;
  const HANDLE search = ::FindFirstFileW((folder + L"\\*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return entries;
  do {
    const std::wstring_view name = found.cFileName;
    if (name != L"." && name != L"..") entries.push_back(found);
  } while (::FindNextFileW(search, &found) != FALSE);
  ::FindClose(search);
  return entries;
}

// Adds all that is in a folder but `hidden` to the tree. `shown` is the folder's own path there.
void AddTree(const std::wstring& folder, const std::string& shown,
             const std::set<std::wstring>& hidden, std::vector<std::string>& tree) {
  for (const WIN32_FIND_DATAW& entry : EntriesOf(folder)) {
    if (hidden.contains(entry.cFileName)) continue;
    const bool is_folder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    const std::string path = shown + ToUtf8(entry.cFileName) + (is_folder ? "\\" : "");
    tree.push_back(path);
    if (is_folder) AddTree(folder + L"\\" + entry.cFileName, path, {}, tree);
  }
}

void RemoveAll(const ScratchDrive& drive) {
  for (const char* folder : kOnSystemDrive) {
    if (drive.Has(folder)) drive.RemoveTree(folder);
  }
}

}  // namespace

Disk::Disk() {
  if (IsWine()) RemoveAll(drive_);  // Of an interrupted test; elsewhere it may be a user's.
  for (const char* folder : kOnSystemDrive) Require(!drive_.Has(folder), folder);
  for (const auto& entry : EntriesOf(At(kSystemDrive))) system_.insert(entry.cFileName);
  start_.resize(::GetCurrentDirectoryW(static_cast<DWORD>(start_.size()), start_.data()));
  ::SetCurrentDirectoryW(ToUtf16(kCurrentFolder.Text()).c_str());
}

Disk::~Disk() {
  ::SetCurrentDirectoryW(start_.c_str());
  RemoveAll(drive_);
}

void Disk::AddFolder(std::string_view path) {
  DrivePath folder = Resolved(path);
  const std::vector<std::string> names = std::exchange(folder.names, {});
  for (const std::string& name : names) {
    folder.names.push_back(name);
    ::CreateDirectoryW(SystemPath(folder).c_str(), nullptr);
  }
  Require(FolderExists(path), path);
}

void Disk::AddFile(std::string_view path, std::string_view content) {
  AddFolder(path.substr(0, path.rfind('\\') + 1));
  const FileHandle file(::CreateFileW(At(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
  DWORD written = 0;
  Require(::WriteFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &written,
                      nullptr) != FALSE,
          path);
}

void Disk::SetAttributes(std::string_view path, DWORD attributes) {
  Require(::SetFileAttributesW(At(path).c_str(), attributes) != FALSE, path);
}

void Disk::Remove(std::string_view folder) { drive_.RemoveTree(std::string(folder)); }

bool Disk::FolderExists(std::string_view path) const {
  return (AttributesOf(path) & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool Disk::IsHidden(std::string_view path) const {
  return (AttributesOf(path) & FILE_ATTRIBUTE_HIDDEN) != 0;
}

std::vector<std::string> Disk::Tree(std::string_view path) const {
  std::vector<std::string> tree;
  const bool on_system_drive = path == kSystemDrive;
  AddTree(At(path), {}, on_system_drive ? system_ : std::set<std::wstring>(), tree);
  std::ranges::sort(tree);
  return tree;
}

}  // namespace kvdm::client
