#include "platform/posix/xml_decoding.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <memory>

namespace kvdm {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

struct CloseConverter {
  void operator()(iconv_t converter) const { iconv_close(converter); }
};
using Converter = std::unique_ptr<void, CloseConverter>;

// Null for an unknown encoding.
Converter OpenConverter(std::string_view encoding) {
  if (encoding.empty()) return nullptr;
  const iconv_t converter = iconv_open("UTF-8", std::string(encoding).c_str());
  // The failure value is -1, which no pointer type can express.
  if (reinterpret_cast<std::intptr_t>(converter) == -1) return nullptr;
  return Converter(converter);
}

bool IsEncodingCharacter(char character) {
  constexpr std::string_view kOthers = "._-";
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || kOthers.find(character) != kOthers.npos;
}

std::optional<std::string> Converted(std::string_view encoding, std::string_view bytes) {
  const Converter converter = OpenConverter(encoding);
  if (!converter) return std::nullopt;
  std::string text;
  std::array<char, 65536> buffer;
  auto* input = const_cast<char*>(bytes.data());  // iconv doesn't write through it
  std::size_t input_left = bytes.size();
  while (input_left > 0) {
    char* output = buffer.data();
    std::size_t output_left = buffer.size();
    const std::size_t result = iconv(converter.get(), &input, &input_left, &output, &output_left);
    const bool failed = result == static_cast<std::size_t>(-1);
    if (failed && errno != E2BIG) return std::nullopt;
    text.append(buffer.data(), output);
  }
  return text;
}

// The encoding that the declaration names; UTF-8 when there is none, "" when it is no name.
std::string_view DeclaredEncoding(std::string_view bytes) {
  constexpr std::string_view kStart = "<?xml";
  constexpr std::string_view kEncoding = "encoding";
  constexpr std::string_view kDefault = "UTF-8";
  if (!bytes.starts_with(kStart)) return kDefault;
  const std::string_view declaration =
      bytes.substr(kStart.size(), bytes.find("?>") - kStart.size());
  const auto found = declaration.find(kEncoding);
  const bool is_declaration = declaration.find_first_of(" \t\r\n") == 0;
  if (!is_declaration || found == std::string_view::npos) return kDefault;

  std::string_view name = declaration.substr(found + kEncoding.size());
  name.remove_prefix(std::min(name.size(), name.find_first_of("\"'")));
  if (name.empty()) return name;
  name = name.substr(1, name.find(name.front(), 1) - 1);
  return std::ranges::all_of(name, IsEncodingCharacter) ? name : std::string_view();
}

}  // namespace

std::string_view WithoutByteOrderMark(std::string_view text) {
  if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
  return text;
}

std::optional<std::string> DecodedXml(std::string_view bytes) {
  using std::string_view_literals::operator""sv;
  if (bytes.starts_with(kUtf8Mark)) return std::string(WithoutByteOrderMark(bytes));
  if (bytes.starts_with("\xFF\xFE"sv)) return Converted("UTF-16LE", bytes.substr(2));
  if (bytes.starts_with("\xFE\xFF"sv)) return Converted("UTF-16BE", bytes.substr(2));
  if (bytes.starts_with("<\0?\0"sv)) return Converted("UTF-16LE", bytes);
  if (bytes.starts_with("\0<\0?"sv)) return Converted("UTF-16BE", bytes);
  return Converted(DeclaredEncoding(bytes), bytes);
}

}  // namespace kvdm
