// Text encodings and letter case, by the libraries of the system.
#include <iconv.h>
#include <utf8proc.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <memory>

#include "platform/file_names.h"
#include "platform/utf8.h"

namespace kvdm {
namespace {

struct CloseConverter {
  void operator()(iconv_t converter) const { iconv_close(converter); }
};
using Converter = std::unique_ptr<void, CloseConverter>;

// Null for an unknown encoding. (To the library, no name is the locale's encoding.)
Converter OpenConverter(std::string_view encoding) {
  if (encoding.empty()) return nullptr;
  const iconv_t converter = iconv_open("UTF-8", std::string(encoding).c_str());
  // The failure value is -1, which no pointer type can express.
  if (reinterpret_cast<std::intptr_t>(converter) == -1) return nullptr;
  return Converter(converter);
}

}  // namespace

std::optional<std::string> Utf8From(std::string_view encoding, std::string_view bytes) {
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

char16_t UpperCase(char16_t unit) {
  const auto upper = utf8proc_toupper(static_cast<utf8proc_int32_t>(unit));
  return upper > 0xFFFF ? unit : static_cast<char16_t>(upper);
}

}  // namespace kvdm
