// Zip archives: written as every unzip reads them, and read with the mistrust that files of others
// deserve. Names are UTF-8 with "/" between folders.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace kvdm {

// Writes an archive from its beginning to its end. Failures are std::system_error.
class ZipWriter {
 public:
  explicit ZipWriter(const std::filesystem::path& archive);

  void AddFolder(std::string_view name);
  void AddText(std::string_view name, std::string_view text);
  void AddFile(std::string_view name, const std::filesystem::path& file);
  // Ends the archive; nothing can be added then.
  void Finish();

 private:
  struct Entry {
    std::string name;
    std::uint32_t checksum = 0;
    std::uint64_t packed = 0;
    std::uint64_t size = 0;
    std::uint64_t place = 0;
    bool is_folder = false;
  };

  void Add(std::string_view name, std::istream& source);
  void Write(std::string_view bytes);
  [[nodiscard]] std::uint64_t Place();

  std::filesystem::path archive_;
  std::ofstream out_;
  std::vector<Entry> entries_;
};

// What an archive holds.
struct ZipEntry {
  std::string name;  // of a folder with "/" at the end
  std::uint16_t method = 0;
  std::uint32_t checksum = 0;
  std::uint64_t packed = 0;
  std::uint64_t size = 0;
  std::uint64_t place = 0;

  [[nodiscard]] bool IsFolder() const { return name.ends_with('/'); }
};

// The entries of an archive. Failure kUnreadable, with a sentence about it that says what is wrong,
// for one that is none or is damaged, and for one that could do harm: names that lead elsewhere,
// names that are the same on some system, links, entries that share bytes, sizes that can't be.
[[nodiscard]] std::vector<ZipEntry> ReadZip(const std::filesystem::path& archive);

// Unpacks the entries into a folder that is empty. Failure kUnreadable when the bytes are not those
// that were packed; std::system_error of the folder. What was unpacked by then stays.
void Unzip(const std::filesystem::path& archive, const std::vector<ZipEntry>& entries,
           const std::filesystem::path& folder);

}  // namespace kvdm
