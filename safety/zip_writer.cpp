// Writing of zip archives.
#include <zlib.h>

#include <array>
#include <cerrno>
#include <limits>
#include <sstream>
#include <system_error>

#include "safety/os.h"
#include "safety/zip.h"
#include "safety/zip_format.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kWritePiece = 1U << 16U;

[[noreturn]] void FailToWrite(const fs::path& path) {
  throw std::system_error(errno == 0 ? EIO : errno, std::generic_category(), os::ToText(path));
}

// Deflates piece by piece.
class Deflater {
 public:
  Deflater() {
    constexpr int kRaw = -MAX_WBITS;
    constexpr int kMemory = 8;
    if (deflateInit2(&stream_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kRaw, kMemory,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
      throw std::bad_alloc();
    }
  }
  ~Deflater() { deflateEnd(&stream_); }
  Deflater(const Deflater&) = delete;
  Deflater& operator=(const Deflater&) = delete;

  // Hands `write` what comes out of `bytes`; of the last ones all that is left.
  template <class Write>
  void Take(std::string_view bytes, bool is_last, const Write& write) {
    stream_.next_in = reinterpret_cast<const Bytef*>(bytes.data());
    stream_.avail_in = static_cast<uInt>(bytes.size());
    do {
      stream_.next_out = reinterpret_cast<Bytef*>(out_.data());
      stream_.avail_out = static_cast<uInt>(out_.size());
      deflate(&stream_, is_last ? Z_FINISH : Z_NO_FLUSH);
      write(std::string_view(out_.data(), out_.size() - stream_.avail_out));
    } while (stream_.avail_out == 0);
  }

 private:
  z_stream stream_{};
  std::array<char, kWritePiece> out_{};
};

// Sizes stand in an extra field of 64 bits each, which any size fits.
zip::Numbers LocalHeaderOf(std::uint16_t method, std::uint32_t checksum, std::size_t name) {
  constexpr std::size_t kExtra = 20;
  return zip::Numbers()
      .Put32(zip::kLocalHeader)
      .Put16(zip::kVersion)
      .Put16(zip::kUtf8Flag)
      .Put16(method)
      .Put16(0)
      .Put16(zip::kDate)
      .Put32(checksum)
      .Put32(zip::kElsewhere32)
      .Put32(zip::kElsewhere32)
      .Put16(name)
      .Put16(kExtra);
}

zip::Numbers Sizes(std::uint64_t size, std::uint64_t packed) {
  return zip::Numbers().Put16(zip::kZip64Extra).Put16(16).Put64(size).Put64(packed);
}

}  // namespace

ZipWriter::ZipWriter(const fs::path& archive)
    : archive_(archive), out_(archive, std::ios::binary | std::ios::trunc) {
  if (!out_) FailToWrite(archive_);
}

void ZipWriter::Write(std::string_view bytes) {
  out_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out_) FailToWrite(archive_);
}

std::uint64_t ZipWriter::Place() { return static_cast<std::uint64_t>(out_.tellp()); }

void ZipWriter::AddFolder(std::string_view name) {
  entries_.push_back({std::string(name) + "/", 0, 0, 0, Place(), true});
  const std::string& stored = entries_.back().name;
  Write(LocalHeaderOf(zip::kStored, 0, stored.size()).Bytes() + stored + Sizes(0, 0).Bytes());
}

void ZipWriter::AddText(std::string_view name, std::string_view text) {
  std::istringstream source{std::string(text)};
  Add(name, source);
}

void ZipWriter::AddFile(std::string_view name, const fs::path& file) {
  std::ifstream source(file, std::ios::binary);
  if (!source) FailToWrite(file);
  Add(name, source);
  if (source.bad()) FailToWrite(file);
}

void ZipWriter::Add(std::string_view name, std::istream& source) {
  Entry entry{std::string(name), 0, 0, 0, Place()};
  // Checksum and sizes are put in place when they are known.
  Write(LocalHeaderOf(zip::kDeflated, 0, name.size()).Bytes() + entry.name + Sizes(0, 0).Bytes());
  Deflater deflater;
  std::array<char, kWritePiece> piece{};
  do {
    source.read(piece.data(), piece.size());
    const std::string_view bytes(piece.data(), static_cast<std::size_t>(source.gcount()));
    entry.size += bytes.size();
    entry.checksum = static_cast<std::uint32_t>(
        crc32_z(entry.checksum, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
    deflater.Take(bytes, !source, [&](std::string_view packed) {
      entry.packed += packed.size();
      Write(packed);
    });
  } while (source);
  const auto end = out_.tellp();
  out_.seekp(static_cast<std::streamoff>(entry.place));
  Write(LocalHeaderOf(zip::kDeflated, entry.checksum, name.size()).Bytes() + entry.name +
        Sizes(entry.size, entry.packed).Bytes());
  out_.seekp(end);
  entries_.push_back(std::move(entry));
}

void ZipWriter::Finish() {
  const std::uint64_t start = Place();
  for (const Entry& entry : entries_) {
    constexpr std::uint32_t kFolderAttribute = 0x10;
    constexpr std::size_t kExtra = 28;
    const std::string extra = zip::Numbers()
                                  .Put16(zip::kZip64Extra)
                                  .Put16(kExtra - 4)
                                  .Put64(entry.size)
                                  .Put64(entry.packed)
                                  .Put64(entry.place)
                                  .Bytes();
    Write(zip::Numbers()
              .Put32(zip::kCentralHeader)
              .Put16(zip::kVersion)
              .Put16(zip::kVersion)
              .Put16(zip::kUtf8Flag)
              .Put16(entry.is_folder ? zip::kStored : zip::kDeflated)
              .Put16(0)
              .Put16(zip::kDate)
              .Put32(entry.checksum)
              .Put32(zip::kElsewhere32)
              .Put32(zip::kElsewhere32)
              .Put16(entry.name.size())
              .Put16(extra.size())
              .Put16(0)
              .Put16(0)
              .Put16(0)
              .Put32(entry.is_folder ? kFolderAttribute : 0)
              .Put32(zip::kElsewhere32)
              .Bytes() +
          entry.name + extra);
  }
  const std::uint64_t end = Place();
  constexpr std::uint64_t kRest = zip::kEnd64Bytes - 12;
  Write(zip::Numbers()
            .Put32(zip::kEnd64)
            .Put64(kRest)
            .Put16(zip::kVersion)
            .Put16(zip::kVersion)
            .Put32(0)
            .Put32(0)
            .Put64(entries_.size())
            .Put64(entries_.size())
            .Put64(end - start)
            .Put64(start)
            .Put32(zip::kEnd64Locator)
            .Put32(0)
            .Put64(end)
            .Put32(1)
            .Put32(zip::kEnd)
            .Put16(0)
            .Put16(0)
            .Put16(zip::kElsewhere16)
            .Put16(zip::kElsewhere16)
            .Put32(zip::kElsewhere32)
            .Put32(zip::kElsewhere32)
            .Put16(0)
            .Bytes());
  out_.close();
  if (!out_) FailToWrite(archive_);
}

}  // namespace kvdm
