#include "platform/portable/value_element.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include <kvdm/platform/error.h>

#include "platform/portable/value_text.h"
#include "platform/xml/limits.h"
#include "platform/xml/xml_text.h"

namespace kvdm {
namespace {

constexpr std::string_view kType = "TYPE";
constexpr std::string_view kValue = "VALUE";
constexpr std::string_view kMore = "MORE";
// A piece fits the limit of a value also as it is written, with up to six bytes for one: some
// parsers count those.
constexpr std::size_t kPieceBytes = 1'500'000;
static_assert(6 * kPieceBytes < xml::kMaxValueBytes);

struct TypedText {
  std::string_view type;
  std::string text;
};

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

std::string Hex(std::string_view bytes) {
  std::string hex;
  hex.reserve(2 * bytes.size());
  for (const char byte : bytes) {
    hex += kHexDigits[static_cast<unsigned char>(byte) >> 4U];
    hex += kHexDigits[static_cast<unsigned char>(byte) & 0x0FU];
  }
  return hex;
}

struct TypedTextVisitor {
  TypedText operator()(Empty) const { return {"Empty", {}}; }
  TypedText operator()(Null) const { return {"Null", {}}; }
  TypedText operator()(bool boolean) const { return {"Boolean", boolean ? "True" : "False"}; }
  TypedText operator()(std::int32_t number) const { return {"Long", std::to_string(number)}; }
  TypedText operator()(double number) const {
    // The shortest text that reads back as the same number.
    std::array<char, 32> buffer{};
    return {"Double", {buffer.begin(), std::to_chars(buffer.begin(), buffer.end(), number).ptr}};
  }
  TypedText operator()(const DateTime& time) const { return {"Date", DateText(time, 'T')}; }
  TypedText operator()(const std::string& text) const {
    if (std::string_view(xml::Sanitized(text)) != text) return {"Bytes", Hex(text)};
    return {"Text", text};
  }
};

[[noreturn]] void Refuse(const TypedText& value) {
  constexpr std::size_t kShownBytes = 80;
  throw RuntimeError(kTypeMismatch, {},
                     "no value of the type \"" + std::string(value.type) + "\": \"" +
                         value.text.substr(0, kShownBytes) + "\"");
}

// What was read from `value`, if anything.
template <class Result>
Result Accepted(const std::optional<Result>& result, const TypedText& value) {
  if (!result) Refuse(value);
  return *result;
}

bool BooleanIn(const TypedText& value) {
  if (value.text != "True" && value.text != "False") Refuse(value);
  return value.text == "True";
}

std::string BytesIn(const TypedText& value) {
  const std::string& hex = value.text;
  if (hex.size() % 2 != 0 || hex.find_first_not_of(kHexDigits) != std::string::npos) Refuse(value);
  std::string bytes;
  bytes.reserve(hex.size() / 2);
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    bytes += static_cast<char>(kHexDigits.find(hex[i]) << 4U | kHexDigits.find(hex[i + 1]));
  }
  return bytes;
}

Value Parsed(const TypedText& value) {
  if (value.type == "Text") return value.text;
  if (value.type == "Bytes") return BytesIn(value);
  if (value.type == "Boolean") return BooleanIn(value);
  if (value.type == "Long") return Accepted(NumberIn<std::int32_t>(value.text), value);
  if (value.type == "Double") return Accepted(NumberIn<double>(value.text), value);
  if (value.type == "Date") return Accepted(DateIn(value.text, 'T'), value);
  if (value.type == "Null") return Null{};
  if (value.type == "Empty") return {};
  Refuse(value);
}

// Takes off `rest` as much as one attribute holds, never part of a character.
std::string_view TakePiece(std::string_view& rest) {
  std::size_t length = std::min(rest.size(), kPieceBytes);
  while (length < rest.size() && (static_cast<unsigned char>(rest[length]) & 0xC0U) == 0x80U) {
    --length;
  }
  const std::string_view piece = rest.substr(0, length);
  rest.remove_prefix(length);
  return piece;
}

}  // namespace

void PutValue(const xml::Element& element, const Value& value) {
  const TypedText typed = std::visit(TypedTextVisitor{}, value.storage());
  element.SetAttribute(kType, typed.type);
  std::string_view rest = typed.text;
  element.SetAttribute(kValue, TakePiece(rest));
  while (!rest.empty()) {
    const auto more = element.CreateNear(kMore);
    more.SetAttribute(kValue, TakePiece(rest));
    element.Append(more);
  }
}

Value ValueIn(const xml::Element& element) {
  const std::string type = TextAttribute(element, kType);
  std::string text = TextAttribute(element, kValue);
  for (const auto& more : element.Children(kMore)) text += TextAttribute(more, kValue);
  return Parsed({type, std::move(text)});
}

std::string TextAttribute(const xml::Element& element, std::string_view name) {
  const Value value = element.GetAttribute(name);
  if (value.IsNull()) {
    throw RuntimeError(kTypeMismatch, {},
                       element.Tag() + " without the attribute " + std::string(name));
  }
  return ToText(value);
}

void AppendLine(const xml::Element& root, const xml::Element& child) {
  if (!root.FirstChild()) root.Append(xml::CreateText("\n"));
  root.Append(child);
  root.Append(xml::CreateText("\n"));
}

std::string DocumentText(const xml::Element& root) {
  xml::Document document;
  document.AddDeclaration();
  document.SetDocumentElement(root);
  return document.Xml();
}

xml::Element LoadRoot(XmlParser& parser, std::string_view bytes, std::string_view tag) {
  xml::Document document;
  if (!document.Load(parser, bytes)) {
    throw RuntimeError(kAutomationFailure, {}, "not a well-formed XML document");
  }
  auto root = document.DocumentElement();
  if (root.Tag() != tag) {
    throw RuntimeError(
        kAutomationFailure, {},
        "a document of another kind: its root is " + root.Tag() + ", not " + std::string(tag));
  }
  return root;
}

}  // namespace kvdm
