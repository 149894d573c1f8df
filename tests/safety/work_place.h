// A working directory in a folder of the test's own.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "safety/working_directory.h"
#include "tests/temp_folder.h"

namespace kvdm {

struct WorkPlace {
  WorkPlace() { std::filesystem::create_directories(top / "KVData"); }

  // A file below the place, whose folders are made.
  std::filesystem::path Write(const std::string& name, const std::string& text) const {
    const std::filesystem::path path = top / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }

  // The component's path of something below the place. "/" stands for the separator.
  [[nodiscard]] std::string Path(const std::string& name) const {
    return os::ComponentPath(top / name);
  }

  // That of a folder, as items have it.
  [[nodiscard]] std::string Folder(const std::string& name) const { return Path(name) + "\\"; }

  [[nodiscard]] WorkingDirectory Directory() const { return {{}, Folder("KVData")}; }

  TempFolder folder;
  std::filesystem::path top = os::Canonical(folder.Path());
};

}  // namespace kvdm
