// Random documents: what was set can be saved, loaded and saved again with identical bytes, in
// UTF-8 and for a store that holds ASCII only; and a loaded tree has what was set.
#include <array>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "platform/xml/document.h"
#include "platform/xml_parser.h"
#include "tests/faults/loop.h"

namespace kvdm {
namespace {

using std::string_view_literals::operator""sv;

// What texts are made of: all that has a meaning somewhere on the way to the disk and back.
constexpr std::array kBits = {"a"sv,
                              "B"sv,
                              "_"sv,
                              " "sv,
                              "\t"sv,
                              "\n"sv,
                              "\r"sv,
                              "\r\n"sv,
                              "\0"sv,
                              "\x01"sv,
                              "\x7F"sv,
                              "\xC2\x85"sv,
                              "\xC3\xA9"sv,
                              "\xE2\x80\xA8"sv,
                              "\xE5\x8C\x97"sv,
                              "\xEF\xBB\xBF"sv,
                              "\xEF\xBF\xBE"sv,
                              "\xEF\xBF\xBF"sv,
                              "\xED\xA0\x80"sv,
                              "\xF0\x9F\x97\xBA"sv,
                              "\xF4\x8F\xBF\xBF"sv,
                              "\xFF"sv,
                              "\xC3"sv,
                              "<"sv,
                              ">"sv,
                              "&"sv,
                              "&amp;"sv,
                              "&#13;"sv,
                              "'"sv,
                              "\""sv,
                              "]]>"sv,
                              "<![CDATA["sv,
                              "-->"sv,
                              "<!--"sv,
                              "--"sv,
                              "?>"sv,
                              "<?x"sv,
                              "xmlns"sv,
                              ":"sv,
                              "="sv,
                              "\\"sv,
                              "{1}"sv};
// The last one can't be saved in ASCII.
constexpr std::array kNames = {"STUDYAREA"sv, "NAME"sv,  "PARAM"sv,
                               "VALUE"sv,     "a"sv,     "_-.1"sv,
                               "COMMENTS"sv,  "xml-x"sv, "\xC3\xA9l\xC3\xA9"sv};

class RandomDocument {
 public:
  RandomDocument(std::uint64_t seed, bool in_ascii)
      : random_(seed), names_(kNames.size() - (in_ascii ? 1 : 0)) {
    if (Below(2) == 0) document_.AddDeclaration();
    auto root = NewElement();
    std::vector<xml::Element> open = {root};
    for (auto steps = Below(30); steps != 0; --steps) Grow(open);
    document_.SetDocumentElement(root);
    for (auto steps = Below(6); steps != 0; --steps) Grow(open);
  }

  [[nodiscard]] const xml::Document& document() const { return document_; }

 private:
  std::size_t Below(std::size_t end) { return static_cast<std::size_t>(random_() % end); }

  std::string Text() {
    std::string text;
    for (auto length = Below(12); length != 0; --length) text += kBits[Below(kBits.size())];
    return text;
  }

  xml::Element NewElement() { return xml::Element::Create(kNames[Below(names_)]); }

  // Changes one of the elements in one way.
  void Grow(std::vector<xml::Element>& elements) {
    const auto element = elements[Below(elements.size())];
    switch (Below(6)) {
      case 0:
      case 1:
        elements.push_back(NewElement());
        element.Append(elements.back());
        break;
      case 2:
      case 3:
        element.SetAttribute(kNames[Below(names_)], Text());
        break;
      case 4:
        // Replaces what the element holds: what was in it is no part of the document any more.
        element.SetText(Text());
        break;
      default:
        if (const auto child = element.FirstChild()) element.Remove(child);
    }
  }

  std::mt19937_64 random_;
  std::size_t names_;
  xml::Document document_;
};

class Check {
 public:
  Check(std::uint64_t number, faults::Counts& counts) : number_(number), counts_(counts) {}

  void Run() {
    ++counts_.tried;
    const bool in_ascii = number_ % 2 == 0;
    const RandomDocument random(number_, in_ascii);
    StaysTheSame(random.document().Xml());
    if (in_ascii) StaysTheSameInAscii(random.document());
  }

 private:
  void StaysTheSame(const std::string& saved) {
    xml::Document first;
    xml::Document second;
    if (!first.LoadXml(*parser_, saved)) return Wrong("can't be loaded", saved);
    const std::string again = first.Xml();
    if (again != saved) return Wrong("is saved otherwise", saved + "\n" + again);
    if (!second.Load(*parser_, again) || second.Xml() != again) Wrong("is another file", again);
  }

  void StaysTheSameInAscii(const xml::Document& document) {
    const auto holds = [](char32_t character) { return character < 0x80; };
    const std::string saved = document.Xml(holds);
    xml::Document loaded;
    if (!loaded.LoadXml(*parser_, saved)) return Wrong("can't be loaded from ASCII", saved);
    if (loaded.Xml(holds) != saved) Wrong("is saved otherwise in ASCII", saved);
  }

  void Wrong(const char* what, const std::string& text) {
    ++counts_.wrong;
    std::printf("document %llu %s: %s\n", static_cast<unsigned long long>(number_), what,
                text.c_str());
  }

  std::uint64_t number_;
  faults::Counts& counts_;
  std::shared_ptr<XmlParser> parser_ = MakeXmlParser();
};

}  // namespace
}  // namespace kvdm

int main(int argc, char** argv) {
  constexpr std::uint64_t kSample = 5'000;
  constexpr std::uint64_t kAll = 500'000;
  const auto options = kvdm::faults::ReadOptions(argc, argv);
  kvdm::faults::Counts counts;
  for (std::uint64_t number = 0; number < (options.all ? kAll : kSample); ++number) {
    if (options.IsMine(number)) kvdm::Check(number, counts).Run();
  }
  return kvdm::faults::Report("documents", counts);
}
