#include "platform/xml/serializer.h"

#include <algorithm>

#include <kvdm/platform/error.h>

#include "platform/utf8.h"

namespace kvdm::xml {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

// What stands for a character; "" when it stands for itself.
std::string_view ReferenceTo(char character) {
  switch (character) {
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '&':
      return "&amp;";
    default:
      return {};
  }
}

std::string_view AttributeReferenceTo(char character) {
  switch (character) {
    case '"':
      return "&quot;";
    case '\t':
      return "&#9;";
    case '\n':
      return "&#10;";
    case '\r':
      return "&#13;";
    default:
      return ReferenceTo(character);
  }
}

template <class Reference>
void AppendEscaped(std::string_view text, const Reference& reference, std::string& output) {
  const auto is_escaped = [&](char character) { return !reference(character).empty(); };
  while (true) {
    const auto special = std::ranges::find_if(text, is_escaped);
    output.append(text.begin(), special);
    if (special == text.end()) return;
    output += reference(*special);
    text.remove_prefix(special - text.begin() + 1);
  }
}

// Every CR LF, lone CR and lone LF as CR LF; all else as `reference` says.
template <class Reference>
std::string WithLineEnds(std::string_view text, const Reference& reference) {
  std::string output;
  output.reserve(text.size());
  while (true) {
    const auto end = text.find_first_of(kLineEnd);
    AppendEscaped(text.substr(0, end), reference, output);
    if (end == std::string_view::npos) return output;
    output += kLineEnd;
    text.remove_prefix(end);
    text.remove_prefix(text.starts_with(kLineEnd) ? 2 : 1);
  }
}

std::string AttributeForm(std::string_view value) {
  std::string output;
  output.reserve(value.size());
  AppendEscaped(value, AttributeReferenceTo, output);
  return output;
}

std::string TextForm(std::string_view text) { return WithLineEnds(text, ReferenceTo); }

std::string RemarkForm(std::string_view text) {
  return WithLineEnds(text, [](char) { return std::string_view(); });
}

std::string NumericReference(char32_t character, std::string_view /*rest*/) {
  return "&#" + std::to_string(static_cast<unsigned long>(character)) + ";";
}

}  // namespace

bool Serializer::CanHold(char32_t character) const {
  return character < 0x80 || (*holds_)(character);
}

void Serializer::Name(std::string_view name) {
  output_ += name;
  if (holds_ == nullptr) return;
  while (!name.empty()) {
    if (!CanHold(TakeCodePoint(name).value)) throw RuntimeError(kInvalidCall);
  }
}

void Serializer::AttributeValue(std::string_view value) {
  Append(AttributeForm(value), NumericReference);
}

void Serializer::Text(std::string_view text) { Append(TextForm(text), NumericReference); }

void Serializer::Remark(std::string_view text) {
  // "?>" would end an instruction.
  Append(RemarkForm(text), [](char32_t, std::string_view rest) {
    return std::string(rest.starts_with('>') ? "_" : "?");
  });
}

template <class Replacement>
void Serializer::Append(std::string_view text, const Replacement& replacement) {
  if (holds_ == nullptr) {
    output_ += text;
    return;
  }
  while (!text.empty()) {
    const char32_t character = TakeCodePoint(text).value;
    if (CanHold(character)) {
      AppendUtf8(character, output_);
    } else {
      output_ += replacement(character, text);
    }
  }
}

std::size_t AttributeBytes(std::string_view name, std::string_view value) {
  return std::string_view(R"( ="")").size() + name.size() + AttributeForm(value).size();
}

std::size_t TextBytes(std::string_view text) { return TextForm(text).size(); }
std::size_t RemarkBytes(std::string_view text) { return RemarkForm(text).size(); }

}  // namespace kvdm::xml
