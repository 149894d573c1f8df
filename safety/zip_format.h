// The numbers of the zip format, as APPNOTE.TXT names them.
#pragma once

#include <cstdint>
#include <string>

namespace kvdm::zip {

inline constexpr std::uint32_t kLocalHeader = 0x04034b50;
inline constexpr std::uint32_t kCentralHeader = 0x02014b50;
inline constexpr std::uint32_t kEnd = 0x06054b50;
inline constexpr std::uint32_t kEnd64 = 0x06064b50;
inline constexpr std::uint32_t kEnd64Locator = 0x07064b50;

inline constexpr std::size_t kLocalHeaderBytes = 30;
inline constexpr std::size_t kCentralHeaderBytes = 46;
inline constexpr std::size_t kEndBytes = 22;
inline constexpr std::size_t kEnd64Bytes = 56;
inline constexpr std::size_t kEnd64LocatorBytes = 20;

inline constexpr std::uint16_t kStored = 0;
inline constexpr std::uint16_t kDeflated = 8;
inline constexpr std::uint16_t kEncryptedFlag = 1;
inline constexpr std::uint16_t kUtf8Flag = 1U << 11U;
inline constexpr std::uint16_t kVersion = 45;  // of zip64
inline constexpr std::uint16_t kZip64Extra = 1;

// What stands in a 16 or 32 bit field whose value is in the extra field.
inline constexpr std::uint16_t kElsewhere16 = 0xffff;
inline constexpr std::uint32_t kElsewhere32 = 0xffffffff;

// 1 January 1980: archives of equal files are equal.
inline constexpr std::uint16_t kDate = 0x0021;

// Little-endian numbers one after the other.
class Numbers {
 public:
  Numbers& Put16(std::uint64_t number) { return Put(number, 2); }
  Numbers& Put32(std::uint64_t number) { return Put(number, 4); }
  Numbers& Put64(std::uint64_t number) { return Put(number, 8); }
  [[nodiscard]] const std::string& Bytes() const { return bytes_; }

 private:
  Numbers& Put(std::uint64_t number, int count) {
    for (int i = 0; i < count; ++i) bytes_ += static_cast<char>((number >> (8U * i)) & 0xffU);
    return *this;
  }

  std::string bytes_;
};

}  // namespace kvdm::zip
