// Reading of zip archives.
#include <fmt/format.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <optional>
#include <set>
#include <system_error>

#include "safety/json.h"
#include "safety/os.h"
#include "safety/zip.h"
#include "safety/zip_format.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kReadPiece = 1U << 16U;
constexpr std::uint64_t kMostEntries = 10'000'000;
// Deflate can't make more than this of a byte.
constexpr std::uint64_t kMostPerByte = 1032;
// What is much larger than its archive, and large, is made to fill disks.
constexpr std::uint64_t kMostGrowth = 200;
constexpr std::uint64_t kSmall = std::uint64_t{1} << 28U;

[[noreturn]] void Damaged() { Unreadable("It is no zip archive, or it is damaged."); }

// Reads numbers from bytes, and fails where there are no more.
class NumberReader {
 public:
  explicit NumberReader(std::string_view bytes) : bytes_(bytes) {}

  std::uint16_t Take16() { return static_cast<std::uint16_t>(Take(2)); }
  std::uint32_t Take32() { return static_cast<std::uint32_t>(Take(4)); }
  std::uint64_t Take64() { return Take(8); }
  std::string_view TakeBytes(std::size_t count) {
    if (bytes_.size() < count) Damaged();
    const auto taken = bytes_.substr(0, count);
    bytes_.remove_prefix(count);
    return taken;
  }
  [[nodiscard]] bool AtEnd() const { return bytes_.empty(); }

 private:
  std::uint64_t Take(std::size_t count) {
    std::uint64_t number = 0;
    const auto bytes = TakeBytes(count);
    for (std::size_t i = 0; i < count; ++i) {
      number |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (8U * i);
    }
    return number;
  }

  std::string_view bytes_;
};

// An archive's file, read at any place.
class ArchiveFile {
 public:
  explicit ArchiveFile(const fs::path& archive)
      : path_(archive), in_(archive, std::ios::binary), size_(in_ ? fs::file_size(archive) : 0) {
    if (!in_) throw std::system_error(errno, std::generic_category(), os::ToText(archive));
  }

  [[nodiscard]] std::uint64_t Size() const { return size_; }

  // Fails where the file is shorter.
  std::string Read(std::uint64_t place, std::uint64_t count) {
    if (place > size_ || count > size_ - place) Damaged();
    std::string bytes(count, '\0');
    in_.seekg(static_cast<std::streamoff>(place));
    in_.read(bytes.data(), static_cast<std::streamsize>(count));
    if (!in_) throw std::system_error(EIO, std::generic_category(), os::ToText(path_));
    return bytes;
  }

 private:
  fs::path path_;
  std::ifstream in_;
  std::uint64_t size_;
};

// Where the list of entries is.
struct EntryList {
  std::uint64_t entries = 0;
  std::uint64_t bytes = 0;
  std::uint64_t place = 0;
};

EntryList FindEntries64(ArchiveFile& source, std::uint64_t end) {
  if (end < zip::kEnd64LocatorBytes) Damaged();
  const std::string locator_bytes =
      source.Read(end - zip::kEnd64LocatorBytes, zip::kEnd64LocatorBytes);
  NumberReader locator(locator_bytes);
  if (locator.Take32() != zip::kEnd64Locator || locator.Take32() != 0) Damaged();
  const std::string record = source.Read(locator.Take64(), zip::kEnd64Bytes);
  NumberReader end64(record);
  if (end64.Take32() != zip::kEnd64) Damaged();
  end64.TakeBytes(20);
  EntryList directory;
  directory.entries = end64.Take64();
  if (end64.Take64() != directory.entries) Damaged();
  directory.bytes = end64.Take64();
  directory.place = end64.Take64();
  return directory;
}

EntryList FindEntries(ArchiveFile& source) {
  constexpr std::uint64_t kLongestComment = 0xffff;
  const std::uint64_t tail = std::min(source.Size(), kLongestComment + zip::kEndBytes);
  const std::string bytes = source.Read(source.Size() - tail, tail);
  const std::string_view mark("PK\5\6", 4);
  const auto found = bytes.rfind(mark);
  if (found == bytes.npos) Damaged();
  NumberReader end(std::string_view(bytes).substr(found));
  end.TakeBytes(8);
  EntryList directory;
  const auto here = end.Take16();
  directory.entries = end.Take16();
  if (here != directory.entries) Damaged();
  directory.bytes = end.Take32();
  directory.place = end.Take32();
  end.TakeBytes(end.Take16());  // a comment
  const bool is_elsewhere = directory.entries == zip::kElsewhere16 ||
                            directory.bytes == zip::kElsewhere32 ||
                            directory.place == zip::kElsewhere32;
  return is_elsewhere ? FindEntries64(source, source.Size() - tail + found) : directory;
}

// Replaces the numbers that stand in the extra field.
void TakeZip64(std::string_view extra, ZipEntry& entry) {
  NumberReader fields(extra);
  while (!fields.AtEnd()) {
    const auto tag = fields.Take16();
    NumberReader field(fields.TakeBytes(fields.Take16()));
    if (tag != zip::kZip64Extra) continue;
    for (std::uint64_t* number : {&entry.size, &entry.packed, &entry.place}) {
      if (*number == zip::kElsewhere32) *number = field.Take64();
    }
    return;
  }
}

void RequireFileOrFolder(std::uint16_t made_by, std::uint32_t attributes) {
  constexpr std::uint32_t kUnix = 3;
  constexpr std::uint32_t kTypes = 0170000;
  constexpr std::uint32_t kFile = 0100000;
  constexpr std::uint32_t kFolder = 0040000;
  const std::uint32_t type = (attributes >> 16U) & kTypes;
  if ((made_by >> 8U) != kUnix || type == 0 || type == kFile || type == kFolder) return;
  Unreadable("It holds a link or a device, which a project has no use for.");
}

ZipEntry TakeEntry(NumberReader& numbers) {
  if (numbers.Take32() != zip::kCentralHeader) Damaged();
  const auto made_by = numbers.Take16();
  numbers.Take16();
  const auto flags = numbers.Take16();
  ZipEntry entry;
  entry.method = numbers.Take16();
  numbers.Take32();  // time and date
  entry.checksum = numbers.Take32();
  entry.packed = numbers.Take32();
  entry.size = numbers.Take32();
  const auto name = numbers.Take16();
  const auto extra = numbers.Take16();
  const auto comment = numbers.Take16();
  numbers.Take32();  // disk and internal attributes
  const auto attributes = numbers.Take32();
  entry.place = numbers.Take32();
  entry.name = numbers.TakeBytes(name);
  TakeZip64(numbers.TakeBytes(extra), entry);
  numbers.TakeBytes(comment);
  if ((flags & zip::kEncryptedFlag) != 0) Unreadable("It is encrypted. Decrypt it first.");
  if (entry.method != zip::kStored && entry.method != zip::kDeflated) {
    Unreadable("It is packed in a way that kvdm does not know. Pack it as a plain zip.");
  }
  RequireFileOrFolder(made_by, attributes);
  return entry;
}

bool IsPlainName(std::string_view name) {
  const bool is_special = std::ranges::any_of(name, [](unsigned char character) {
    return character < 0x20 || std::string_view("\\:*?\"<>|").find(static_cast<char>(character)) !=
                                   std::string_view::npos;
  });
  return !name.empty() && !is_special && name.find_first_not_of(". ") != name.npos;
}

void RequirePlainPath(std::string_view path) {
  std::string_view rest = path.ends_with('/') ? path.substr(0, path.size() - 1) : path;
  for (;;) {
    const auto end = std::min(rest.find('/'), rest.size());
    if (!IsPlainName(rest.substr(0, end))) {
      Unreadable(
          fmt::format("It holds \"{}\", which leads elsewhere or is no name for a file on "
                      "every system.",
                      path));
    }
    if (end == rest.size()) return;
    rest.remove_prefix(end + 1);
  }
}

std::string FoldedEntry(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a')
                                          : static_cast<char>(letter);
  });
  return text.ends_with('/') ? text.substr(0, text.size() - 1) : text;
}

void RequireDistinctNames(const std::vector<ZipEntry>& entries) {
  std::set<std::string> names;
  for (const ZipEntry& entry : entries) {
    RequirePlainPath(entry.name);
    if (!names.insert(FoldedEntry(entry.name)).second) {
      Unreadable(fmt::format("It holds \"{}\" more than once.", entry.name));
    }
  }
}

void RequireSizesThatCanBe(std::vector<ZipEntry> entries, std::uint64_t archive) {
  std::ranges::sort(entries, {}, &ZipEntry::place);
  std::uint64_t end = 0;
  std::uint64_t total = 0;
  for (const ZipEntry& entry : entries) {
    const bool overlaps =
        entry.place < end || entry.packed > archive || entry.place > archive - entry.packed;
    const bool grows = entry.size / kMostPerByte > entry.packed;
    const bool differs = entry.method == zip::kStored && entry.size != entry.packed;
    if (overlaps || grows || differs) {
      Unreadable(fmt::format("It is made to do harm, or damaged: \"{}\" has an impossible size.",
                             entry.name));
    }
    end = entry.place + zip::kLocalHeaderBytes + entry.name.size() + entry.packed;
    total += entry.size;
  }
  if (total > kSmall && total / kMostGrowth > archive) {
    Unreadable(fmt::format("It would become {} bytes, far more than an archive of its size holds.",
                           total));
  }
}

// The place of an entry's packed bytes.
std::uint64_t PlaceOfBytes(ArchiveFile& source, const ZipEntry& entry) {
  const std::string bytes = source.Read(entry.place, zip::kLocalHeaderBytes);
  NumberReader header(bytes);
  if (header.Take32() != zip::kLocalHeader) Damaged();
  header.TakeBytes(22);
  const std::uint64_t name = header.Take16();
  return entry.place + zip::kLocalHeaderBytes + name + header.Take16();
}

// Inflates piece by piece.
class Inflater {
 public:
  Inflater() {
    if (inflateInit2(&stream_, -MAX_WBITS) != Z_OK) throw std::bad_alloc();
  }
  ~Inflater() { inflateEnd(&stream_); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  template <class Write>
  void Take(std::string_view bytes, const Write& write) {
    stream_.next_in = reinterpret_cast<const Bytef*>(bytes.data());
    stream_.avail_in = static_cast<uInt>(bytes.size());
    do {
      stream_.next_out = reinterpret_cast<Bytef*>(out_.data());
      stream_.avail_out = static_cast<uInt>(out_.size());
      const int result = inflate(&stream_, Z_NO_FLUSH);
      if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) Damaged();
      write(std::string_view(out_.data(), out_.size() - stream_.avail_out));
      if (result == Z_STREAM_END) return;
    } while (stream_.avail_out == 0);
  }

 private:
  z_stream stream_{};
  std::array<char, kReadPiece> out_{};
};

void UnzipFile(ArchiveFile& source, const ZipEntry& entry, const fs::path& file) {
  std::ofstream out(file, std::ios::binary);
  std::uint64_t size = 0;
  auto checksum = static_cast<std::uint32_t>(0);
  const auto write = [&](std::string_view bytes) {
    size += bytes.size();
    if (size > entry.size) Damaged();
    checksum = static_cast<std::uint32_t>(
        crc32_z(checksum, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out) throw std::system_error(ENOSPC, std::generic_category(), os::ToText(file));
  };
  Inflater inflater;
  std::uint64_t place = PlaceOfBytes(source, entry);
  for (std::uint64_t left = entry.packed; left > 0;) {
    const std::string piece = source.Read(place, std::min<std::uint64_t>(left, kReadPiece));
    entry.method == zip::kStored ? write(piece) : inflater.Take(piece, write);
    place += piece.size();
    left -= piece.size();
  }
  out.close();
  if (!out) throw std::system_error(ENOSPC, std::generic_category(), os::ToText(file));
  if (size == entry.size && checksum == entry.checksum) return;
  Unreadable(fmt::format("\"{}\" in it is not what was packed: its checksum differs.", entry.name));
}

}  // namespace

std::vector<ZipEntry> ReadZip(const fs::path& archive) {
  ArchiveFile source(archive);
  const EntryList directory = FindEntries(source);
  if (directory.entries > kMostEntries) Damaged();
  const std::string bytes = source.Read(directory.place, directory.bytes);
  NumberReader numbers(bytes);
  std::vector<ZipEntry> entries;
  for (std::uint64_t i = 0; i < directory.entries; ++i) entries.push_back(TakeEntry(numbers));
  RequireDistinctNames(entries);
  RequireSizesThatCanBe(entries, source.Size());
  return entries;
}

void Unzip(const fs::path& archive, const std::vector<ZipEntry>& entries, const fs::path& folder) {
  ArchiveFile source(archive);
  for (const ZipEntry& entry : entries) {
    const fs::path path = folder / os::ToPath(entry.name);
    if (entry.IsFolder()) {
      os::CreateFolders(folder / os::ToPath(entry.name.substr(0, entry.name.size() - 1)));
    } else {
      os::CreateFolders(path.parent_path());
      UnzipFile(source, entry, path);
    }
  }
}

}  // namespace kvdm
