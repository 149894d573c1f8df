// Drive D: for a test of its own, and what a test does to it past the component.
#pragma once

#include <windows.h>

#include <array>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/windows/files.h"
#include "platform/windows/text.h"
#include "tests/platform/windows/wine.h"

namespace kvdm {

// Needs an empty drive D:, and empties it at the end. The drive that scripts/run-wine makes is also
// emptied at the start, of what an interrupted test left.
class ScratchDrive {
 public:
  ScratchDrive() {
    if (IsOfRunWine()) Empty(R"(D:\)");
    if (!Has(R"(D:\)") || !NamesIn(R"(D:\)").empty()) {
      throw std::runtime_error("drive D: is missing or not empty");
    }
  }
  ScratchDrive(const ScratchDrive&) = delete;
  ScratchDrive& operator=(const ScratchDrive&) = delete;
  ~ScratchDrive() {
    for (const std::string& link : links_) RemoveFile(link);
    Empty(R"(D:\)");
  }

  void AddFolder(const std::string& path) const {
    Require(::CreateDirectoryW(At(path).c_str(), nullptr));
  }

  // Opens a new or existing file, which others then can't open.
  [[nodiscard]] FileHandle Hold(const std::string& path) const {
    FileHandle file(::CreateFileW(At(path).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
    Require(file.is_open());
    return file;
  }

  void Put(const std::string& path) const { Require(Hold(path).is_open()); }

  [[nodiscard]] bool Has(const std::string& path) const { return AttributesOf(path) != 0; }

  // 0 for what is missing.
  [[nodiscard]] DWORD AttributesOf(const std::string& path) const {
    const DWORD attributes = ::GetFileAttributesW(At(path).c_str());
    return attributes == INVALID_FILE_ATTRIBUTES ? 0 : attributes;
  }

  void SetAttributes(const std::string& path, DWORD attributes) const {
    Require(::SetFileAttributesW(At(path).c_str(), attributes));
  }

  void MoveFolder(const std::string& from, const std::string& to) const {
    Require(::MoveFileExW(At(from).c_str(), At(to).c_str(), 0));
  }

  // Removes a file or a link.
  void RemoveFile(const std::string& path) const {
    if (IsWine()) {
      RemoveUnixFile(UnixPath(path));
    } else if ((AttributesOf(path) & FILE_ATTRIBUTE_DIRECTORY) != 0) {
      ::RemoveDirectoryW(At(path).c_str());
    } else {
      ::SetFileAttributesW(At(path).c_str(), FILE_ATTRIBUTE_NORMAL);
      ::DeleteFileW(At(path).c_str());
    }
  }

  void RemoveTree(const std::string& path) const {
    Empty(path);
    Require(::RemoveDirectoryW(At(path).c_str()));
  }

  // Makes a link to a file or folder; under Wine, where programs can't, one of the system around
  // it.
  void AddLink(const std::string& path, const std::string& target) {
    constexpr DWORD kUnprivileged = 0x2;
    const bool to_folder = (AttributesOf(target) & FILE_ATTRIBUTE_DIRECTORY) != 0;
    const DWORD flags = (to_folder ? SYMBOLIC_LINK_FLAG_DIRECTORY : 0) | kUnprivileged;
    Require(IsWine() ? MakeUnixLink(UnixPath(path), UnixPath(target))
                     : ::CreateSymbolicLinkW(At(path).c_str(), ToUtf16(target).c_str(), flags));
    links_.push_back(path);
  }

 private:
  // The path with which the system takes names as they are.
  static std::wstring At(const std::string& path) { return LR"(\\?\)" + ToUtf16(path); }

  static void Require(bool done) {
    if (!done) throw std::runtime_error("system error " + std::to_string(::GetLastError()));
  }

  static std::vector<std::string> NamesIn(const std::string& folder) {
    std::vector<std::string> names;
    WIN32_FIND_DATAW found;
    const HANDLE search = ::FindFirstFileW(At(folder + R"(\*)").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return names;
    do {
      const std::string name = ToUtf8(found.cFileName);
      if (name != "." && name != "..") names.push_back(name);
    } while (::FindNextFileW(search, &found));
    ::FindClose(search);
    return names;
  }

  void Empty(const std::string& folder) const {
    const std::string start = folder.ends_with('\\') ? folder : folder + '\\';
    for (const std::string& name : NamesIn(folder)) {
      const std::string path = start + name;
      const DWORD attributes = AttributesOf(path);
      const bool is_folder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
                             (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
      if (!is_folder) RemoveFile(path);
      if (is_folder) RemoveTree(path);
    }
  }

  // What tells the folders of the system apart.
  static std::array<DWORD, 3> Identity(const std::wstring& path) {
    const FileHandle folder(::CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ,
                                          nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS,
                                          nullptr));
    BY_HANDLE_FILE_INFORMATION info{};
    ::GetFileInformationByHandle(folder.get(), &info);
    return {info.dwVolumeSerialNumber, info.nFileIndexHigh, info.nFileIndexLow};
  }

  static bool IsOfRunWine() {
    if (!IsWine()) return false;
    const std::string drive = UnixPath(R"(D:\)");
    const std::string prefix = drive.substr(0, drive.rfind("/dosdevices/"));
    return Identity(LR"(\\?\unix)" + ToUtf16(prefix) + L"/drive_d") == Identity(LR"(D:\)");
  }

  std::vector<std::string> links_;
};

}  // namespace kvdm
