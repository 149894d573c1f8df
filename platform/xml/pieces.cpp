#include "platform/xml/pieces.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <deque>
#include <optional>
#include <utility>
#include <vector>

#include "platform/utf8.h"
#include "platform/xml/limits.h"
#include "platform/xml/xml_text.h"

namespace kvdm {
namespace {

using xml::Skip;
using xml::SkipWhiteSpace;

constexpr auto kNowhere = std::string_view::npos;

// Takes what comes before `end`, and `end`, off `rest`.
std::optional<std::string_view> TakeUntil(std::string_view end, std::string_view& rest) {
  const auto found = rest.find(end);
  if (found == kNowhere) return std::nullopt;
  const std::string_view taken = rest.substr(0, found);
  rest.remove_prefix(found + end.size());
  return taken;
}

// Takes what comes before the first of `ends`, or everything, off `rest`.
std::string_view TakeBefore(std::string_view ends, std::string_view& rest) {
  const std::string_view taken = rest.substr(0, rest.find_first_of(ends));
  rest.remove_prefix(taken.size());
  return taken;
}

// The character with this number, as digits of `base`.
std::optional<char32_t> Numbered(std::string_view digits, int base) {
  constexpr std::uint32_t kLast = 0x10FFFF;
  std::uint32_t number = 0;
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, number, base);
  if (error != std::errc() || stop != end || number > kLast) return std::nullopt;
  return number;
}

// What the reference &`name`; stands for. There are no entities but the five of XML itself.
std::optional<char32_t> Referenced(std::string_view name) {
  constexpr int kDecimal = 10;
  constexpr int kHexadecimal = 16;
  constexpr std::array<std::pair<std::string_view, char32_t>, 5> kEntities = {
      {{"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"quot", '"'}, {"apos", '\''}}};
  if (Skip("#x", name)) return Numbered(name, kHexadecimal);
  if (Skip("#", name)) return Numbered(name, kDecimal);
  const auto* found = std::ranges::find(kEntities, name, [](const auto& row) { return row.first; });
  if (found == kEntities.end()) return std::nullopt;
  return found->second;
}

std::optional<std::string> WithoutReferences(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  while (true) {
    plain += TakeBefore("&", text);
    if (text.empty()) return plain;
    text.remove_prefix(1);
    const auto name = TakeUntil(";", text);
    const auto character = name ? Referenced(*name) : std::nullopt;
    if (!character) return std::nullopt;
    AppendUtf8(*character, plain);
  }
}

// White space as such, not as references, becomes blanks.
std::optional<std::string> AttributeValue(std::string_view written) {
  std::string value(written);
  std::ranges::replace_if(
      value, [](char unit) { return unit == '\t' || unit == '\n'; }, ' ');
  return WithoutReferences(value);
}

// The prefix "xml" is declared everywhere; not every parser reports where a text declares it again.
bool SaysNothing(const XmlAttribute& attribute) {
  return attribute.name == "xmlns:xml" && attribute.value == xml::kXmlNamespace;
}

// Reads a text from its start to its end.
class PieceReader {
 public:
  PieceReader(std::string_view text, XmlHandler& handler) : rest_(text), handler_(handler) {}

  bool ReadAll() {
    while (!rest_.empty()) {
      if (!ReadPiece()) return false;
    }
    return true;
  }

 private:
  bool ReadPiece() {
    if (!rest_.starts_with('<')) return ReadText();
    if (Skip("<!--", rest_)) return ReadComment();
    if (Skip("<![CDATA[", rest_)) return ReadSection();
    if (Skip("<?", rest_)) return ReadInstruction();
    if (Skip("</", rest_)) return ReadEndTag();
    if (rest_.starts_with("<!")) return false;
    rest_.remove_prefix(1);
    return ReadStartTag();
  }

  bool ReadText() {
    const std::string_view written = TakeBefore("<", rest_);
    if (depth_ == 0) return true;  // White space around the root.
    const auto text = WithoutReferences(written);
    return text && handler_.Characters(*text);
  }

  bool ReadSection() {
    const auto text = TakeUntil("]]>", rest_);
    return text && handler_.Characters(*text);
  }

  bool ReadComment() {
    const auto text = TakeUntil("-->", rest_);
    return text && handler_.Comment(*text);
  }

  bool ReadInstruction() {
    auto data = TakeUntil("?>", rest_);
    if (!data) return false;
    const std::string_view target = TakeBefore(xml::kWhiteSpace, *data);
    SkipWhiteSpace(*data);
    return target == "xml" || handler_.Instruction(target, *data);
  }

  bool ReadEndTag() {
    if (depth_ == 0 || !TakeUntil(">", rest_)) return false;
    --depth_;
    return handler_.EndElement();
  }

  bool ReadStartTag() {
    const std::string_view tag = TakeBefore(" \t\n/>", rest_);
    attributes_.clear();
    values_.clear();
    while (true) {
      SkipWhiteSpace(rest_);
      if (rest_.empty()) return false;
      const bool ends_element = Skip("/>", rest_);
      if (ends_element || Skip(">", rest_)) {
        return StartElement(tag) && (!ends_element || EndElement());
      }
      if (!ReadAttribute()) return false;
    }
  }

  // `name = "value"`
  bool ReadAttribute() {
    const std::string_view name = TakeBefore(" \t\n=", rest_);
    SkipWhiteSpace(rest_);
    if (!Skip("=", rest_)) return false;
    SkipWhiteSpace(rest_);
    if (!rest_.starts_with('"') && !rest_.starts_with('\'')) return false;
    const std::string_view quote = rest_.substr(0, 1);
    rest_.remove_prefix(1);
    const auto written = TakeUntil(quote, rest_);
    auto value = written ? AttributeValue(*written) : std::nullopt;
    if (!value) return false;
    attributes_.push_back({name, values_.emplace_back(std::move(*value))});
    return true;
  }

  bool StartElement(std::string_view tag) {
    if (++depth_ > xml::kMaxDepth) return false;
    std::erase_if(attributes_, SaysNothing);
    std::stable_partition(
        attributes_.begin(), attributes_.end(),
        [](const XmlAttribute& attribute) { return xml::IsNamespaceDeclaration(attribute.name); });
    return handler_.StartElement(tag, attributes_);
  }

  bool EndElement() {
    --depth_;
    return handler_.EndElement();
  }

  std::string_view rest_;
  XmlHandler& handler_;
  std::size_t depth_ = 0;
  std::vector<XmlAttribute> attributes_;
  std::deque<std::string> values_;  // of the attributes
};

}  // namespace

std::string WithLineFeeds(std::string_view text) {
  std::string lines;
  lines.reserve(text.size());
  while (true) {
    lines += TakeBefore("\r", text);
    if (text.empty()) return lines;
    lines += '\n';
    text.remove_prefix(text.starts_with("\r\n") ? 2 : 1);
  }
}

bool ReportPieces(std::string_view text, XmlHandler& handler) {
  return PieceReader(text, handler).ReadAll();
}

}  // namespace kvdm
