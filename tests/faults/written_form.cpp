// The strict reader beside the conforming parser, on random texts in the component's own written
// form with and without a few changed bytes: it takes a text exactly when that is what the tree of
// the conforming parser is written as, and then for the same tree.
#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "platform/xml/document.h"
#include "platform/xml/records.h"
#include "platform/xml/xml_text.h"
#include "platform/xml_parser.h"
#include "tests/faults/loop.h"
#include "tests/xml_notes.h"

namespace kvdm {
namespace {

using std::string_view_literals::operator""sv;

constexpr std::array kNames = {"A"sv,  "STUDYAREA"sv, "NAME"sv, "a"sv,     "_-.1"sv, "xml-x"sv,
                               "1a"sv, "a:b"sv,       "-"sv,    "xmlns"sv, "\xFF"sv, "\xC3\xA9"sv};
// What texts and values are made of: as it is written, and as it is not.
constexpr std::array kBits = {"a"sv,
                              " "sv,
                              "Drive times of 7"sv,
                              "\xC3\xA9"sv,
                              "\xF0\x9F\x97\xBA"sv,
                              "&lt;"sv,
                              "&gt;"sv,
                              "&amp;"sv,
                              "&quot;"sv,
                              "\r\n"sv,
                              "&#9;"sv,
                              "&#10;"sv,
                              "&#13;"sv,
                              "-"sv,
                              "\""sv,
                              "'"sv,
                              "\t"sv,
                              "<"sv,
                              ">"sv,
                              "&"sv,
                              "\n"sv,
                              "\r"sv,
                              "&apos;"sv,
                              "&#233;"sv,
                              "]]>"sv,
                              "\0"sv,
                              "\x7F"sv,
                              "\xEF\xBF\xBE"sv,
                              "\xED\xA0\x80"sv,
                              "\xC3"sv,
                              "<![CDATA[x]]>"sv,
                              "<?x y?>"sv};
constexpr std::size_t kGoodNames = 5;
constexpr std::size_t kGoodBits = 13;

// Random texts, mostly as the component writes.
class RandomText {
 public:
  explicit RandomText(std::uint64_t seed) : random_(seed) {
    if (Below(2) == 0) text_ += "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n";
    if (Below(8) == 0) AddComment();
    AddElement(0);
    text_ += Rarely(64) ? "\n" : "\r\n";
    if (Rarely(64)) {
      AddElement(0);
      text_ += "\r\n";
    }
    for (auto changes = Below(8) < 5 ? 0 : 1 + Below(2); changes != 0; --changes) Mutate();
  }
  [[nodiscard]] const std::string& Text() const { return text_; }

 private:
  std::size_t Below(std::size_t end) { return static_cast<std::size_t>(random_() % end); }
  bool Rarely(std::size_t times) { return Below(times) == 0; }

  std::string_view Name() { return kNames[Below(Rarely(200) ? kNames.size() : kGoodNames)]; }

  void AddText(std::size_t bits) {
    while (bits-- != 0) text_ += kBits[Below(Rarely(100) ? kBits.size() : kGoodBits)];
  }
  void AddComment() {
    text_ += "<!--";
    AddText(Below(3));
    text_ += "-->";
  }
  void AddElement(std::size_t depth) {
    const std::string name(Name());
    (text_ += '<') += name;
    const std::size_t first = Below(kGoodNames);
    for (std::size_t i = 0; i < Below(4); ++i) {
      const auto attribute = Rarely(30) ? Name() : kNames[(first + i) % kGoodNames];
      (text_ += ' ').append(attribute) += "=\"";
      AddText(Below(4));
      text_ += '"';
    }
    if (Below(3) == 0 || depth == 4) {
      text_ += "/>";
      return;
    }
    text_ += '>';
    for (auto content = Rarely(100) ? 0 : 1 + Below(4); content != 0; --content) AddChild(depth);
    (text_ += "</").append(Rarely(200) ? Name() : name) += '>';
  }
  void AddChild(std::size_t depth) {
    switch (Below(6)) {
      case 0:
        return AddText(1 + Below(3));
      case 1:
        return AddComment();
      default:
        return AddElement(depth + 1);
    }
  }

  // A byte out, twice, or exchanged for one that XML gives a meaning.
  void Mutate() {
    constexpr std::string_view kMeaningful = "<>&'\"/=:!?-[];x# \t\r\n\xC3\xFF";
    const std::size_t at = Below(text_.size());
    switch (Below(4)) {
      case 0:
        text_.erase(at, 1 + Below(3));
        break;
      case 1:
        text_.insert(at, text_.substr(Below(text_.size()), 1 + Below(8)));
        break;
      case 2:
        text_[at] = kMeaningful[Below(kMeaningful.size())];
        break;
      default:
        text_.insert(at, 1, kMeaningful[Below(kMeaningful.size())]);
    }
    if (text_.empty()) text_ = " ";
  }

  std::mt19937_64 random_;
  std::string text_;
};

// Reports what records hold as a parser reports a text.
void Note(const xml::Records& records, xml::Number number, XmlNotes& notes) {
  const xml::NodeRecord& node = records.nodes[number];
  const std::string_view text = records.texts[node.text];
  if (node.type == xml::NodeType::kText) notes.Characters(text);
  if (node.type == xml::NodeType::kComment) notes.Comment(text);
  const bool is_element = node.type == xml::NodeType::kElement;
  if (is_element) {
    std::vector<XmlAttribute> attributes;
    for (auto own = node.attributes; own != 0; own = records.attributes[own].next) {
      const xml::AttributeRecord& attribute = records.attributes[own];
      attributes.push_back({records.names[attribute.name].text, records.texts[attribute.value]});
    }
    notes.StartElement(records.names[node.name].text, attributes);
  }
  for (auto child = node.first; child != 0; child = records.nodes[child].next) {
    Note(records, child, notes);
  }
  if (is_element) notes.EndElement();
}

// Refuses what the strict reader leaves to a parser: instructions, and names with a prefix.
class PlainOnly final : public IgnoringHandler {
 public:
  bool StartElement(std::string_view tag, Attributes attributes) override {
    return IsPlain(tag) && std::ranges::all_of(attributes, IsPlain, &XmlAttribute::name);
  }
  bool Instruction(std::string_view, std::string_view) override { return false; }

 private:
  static bool IsPlain(std::string_view name) {
    return xml::IsPlainName(name) && !xml::IsNamespaceDeclaration(name);
  }
};

class Comparison {
 public:
  explicit Comparison(faults::Counts& counts) : counts_(counts) {}

  void Compare(const std::string& text) {
    ++counts_.tried;
    xml::Records records;
    const xml::Number top = records.nodes.Take();
    records.nodes[top].type = xml::NodeType::kDocument;
    const bool taken = xml::ReadWrittenForm(text, records, top);
    if (taken != IsWhatItIsWrittenAs(text)) return Wrong(taken ? "taken" : "not taken", text);
    if (!taken) return;
    ++taken_;
    XmlNotes read;
    Note(records, top, read);
    for (const auto encoding : {XmlEncoding::kUtf8, XmlEncoding::kAsDeclared}) {
      XmlNotes parsed;
      if (!parser_->Parse(text, encoding, parsed)) return Wrong("not well-formed", text);
      if (parsed.notes != read.notes) return Wrong("another tree", text);
    }
  }

  [[nodiscard]] std::size_t Taken() const { return taken_; }

 private:
  // The line end after the text is what the strict reader does not take.
  [[nodiscard]] bool IsWhatItIsWrittenAs(const std::string& text) const {
    xml::Document document;
    if (!document.LoadXml(*parser_, text + "\n") || document.Xml() != text) return false;
    PlainOnly plain;
    return parser_->Parse(text, XmlEncoding::kUtf8, plain);
  }

  void Wrong(const char* what, const std::string& text) {
    ++counts_.wrong;
    std::printf("%s: ", what);
    for (const unsigned char byte : text)
      std::printf(byte < ' ' || byte > '~' ? "\\x%02X" : "%c", byte);
    std::puts("");
  }

  faults::Counts& counts_;
  std::shared_ptr<XmlParser> parser_ = MakeXmlParser();
  std::size_t taken_ = 0;
};

}  // namespace
}  // namespace kvdm

int main(int argc, char** argv) {
  constexpr std::uint64_t kSample = 20'000;
  constexpr std::uint64_t kAll = 10'000'000;
  const auto options = kvdm::faults::ReadOptions(argc, argv);
  kvdm::faults::Counts counts;
  kvdm::Comparison comparison(counts);
  for (std::uint64_t number = 0; number < (options.all ? kAll : kSample); ++number) {
    if (options.IsMine(number)) comparison.Compare(kvdm::RandomText(number).Text());
  }
  // Neither nearly all nor nearly none, or nothing was compared.
  std::printf("%zu texts were taken\n", comparison.Taken());
  if (comparison.Taken() * 10 < counts.tried || comparison.Taken() * 10 > counts.tried * 9)
    ++counts.wrong;
  return kvdm::faults::Report("written_form", counts);
}
