#include "platform/posix/dos_attributes.h"

#include <sys/xattr.h>

#include <array>
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

}  // namespace kvdm
