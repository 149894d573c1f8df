// XML texts read by the component and by expat: the same verdict on each, the same pieces, and the
// same pieces again after a save. Texts with a document type declaration are refused; without it
// they are compared as any other.
//
// The texts are samples.h's and mutations of them; with --long, more mutations and all files of the
// folder that KVDM_XMLCONF names, such as the test suite of the W3C.
#include <expat.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <regex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/xml/document.h"
#include "platform/xml/limits.h"
#include "platform/xml/xml_input.h"
#include "platform/xml/xml_text.h"
#include "tests/faults/loop.h"
#include "tests/faults/xml_samples.h"
#include "tests/xml_notes.h"

namespace kvdm {
namespace {

using Notes = std::vector<std::string>;

// What expat makes of a text, in the form of XmlNotes.
class Expat {
 public:
  explicit Expat(std::string_view text) {
    accepted_ = Parse(XML_ParserCreate(nullptr), text, true) &&
                Parse(XML_ParserCreateNS(nullptr, '\n'), text, false);
  }

  [[nodiscard]] bool Accepted() const { return accepted_; }
  [[nodiscard]] XML_Error Error() const { return error_; }
  [[nodiscard]] const Notes& Pieces() const { return notes_.notes; }
  [[nodiscard]] bool HasDocumentType() const { return has_document_type_; }
  // Where the document type declaration ends; 0 when expat did not come so far.
  [[nodiscard]] std::size_t DocumentTypeEnd() const { return document_type_end_; }

 private:
  static Expat& Of(void* self) { return *static_cast<Expat*>(self); }

  bool Parse(XML_Parser parser, std::string_view text, bool takes_notes) {
    parser_ = parser;
    XML_SetUserData(parser, this);
    XML_SetDoctypeDeclHandler(parser, OnDocumentType, OnDocumentTypeEnd);
    if (takes_notes) {
      XML_SetElementHandler(parser, OnStart, OnEnd);
      XML_SetCharacterDataHandler(parser, OnText);
      XML_SetCommentHandler(parser, OnComment);
      XML_SetProcessingInstructionHandler(parser, OnInstruction);
    }
    const bool good =
        XML_Parse(parser, text.data(), static_cast<int>(text.size()), XML_TRUE) == XML_STATUS_OK;
    if (!good) error_ = XML_GetErrorCode(parser);
    XML_ParserFree(parser);
    return good;
  }

  static void OnStart(void* self, const char* tag, const char** attributes) {
    std::vector<XmlAttribute> list;
    for (; *attributes != nullptr; attributes += 2) {
      const std::string_view name = attributes[0];
      if (name != "xmlns:xml") list.push_back({name, attributes[1]});
    }
    std::stable_partition(list.begin(), list.end(), [](const XmlAttribute& attribute) {
      return xml::IsNamespaceDeclaration(attribute.name);
    });
    Of(self).notes_.StartElement(tag, list);
  }
  static void OnEnd(void* self, const char* /*tag*/) { Of(self).notes_.EndElement(); }
  static void OnText(void* self, const char* text, int length) {
    Of(self).notes_.Characters({text, static_cast<std::size_t>(length)});
  }
  static void OnComment(void* self, const char* text) { Of(self).notes_.Comment(text); }
  static void OnInstruction(void* self, const char* target, const char* data) {
    Of(self).notes_.Instruction(target, data);
  }
  static void OnDocumentType(void* self, const char* /*name*/, const char* /*system*/,
                             const char* /*public_id*/, int /*has_subset*/) {
    Of(self).has_document_type_ = true;
  }
  static void OnDocumentTypeEnd(void* self) {
    Of(self).document_type_end_ =
        static_cast<std::size_t>(XML_GetCurrentByteIndex(Of(self).parser_)) + 1;
  }

  XML_Parser parser_ = nullptr;
  XmlNotes notes_;
  bool accepted_ = false;
  XML_Error error_ = XML_ERROR_NONE;
  bool has_document_type_ = false;
  std::size_t document_type_end_ = 0;
};

// Names hold characters that expat, which knows an older edition of XML, takes for none: with
// ASCII ones in their place it accepts the text.
bool HasNewerNames(std::string_view text, const Notes& notes) {
  std::vector<std::string> names;
  for (const std::string& note : notes) {
    if (note.front() != '<' && note.front() != '?') continue;
    std::string word;
    for (const char character : note.substr(1) + " ") {
      if (std::string_view(" =|:").find(character) == std::string_view::npos) {
        word += character;
        continue;
      }
      const bool foreign = std::ranges::any_of(word, [](unsigned char c) { return c >= 0x80; });
      if (foreign && xml::IsName(word)) names.push_back(word);
      word.clear();
    }
  }
  std::ranges::sort(names, std::ranges::greater(), &std::string::size);
  std::string plain;
  ParseDecoded(text, XmlEncoding::kAsDeclared, [&](std::string_view utf8) {
    plain = utf8;
    return true;
  });
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string instead = "n" + std::to_string(i) + "-";
    for (auto at = plain.find(names[i]); at != std::string::npos; at = plain.find(names[i])) {
      plain.replace(at, names[i].size(), instead);
    }
  }
  return !names.empty() && Expat(plain).Accepted();
}

// Whether a text declares something that is no version; expat takes any.
bool HasOddVersion(const std::string& text) {
  static const std::regex version(R"(^[^<]{0,3}<\?xml\s+version\s*=\s*["']([^"']*)["'])");
  static const std::regex good("1\\.[0-9]+");
  std::smatch found;
  return std::regex_search(text, found, version) && !std::regex_match(found.str(1), good);
}

// Whether a text is UTF-16 without its mark, which expat recognises all the same.
bool LacksItsMark(const std::string& text) {
  return text.size() > 1 && (text[0] == '\0') != (text[1] == '\0');
}

// Whether a text starts with the mark of an encoding, which counts here, whatever its declaration
// says.
bool HasItsMark(const std::string& text) {
  return text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF") ||
         text.starts_with("\xEF\xBB\xBF");
}

// A text on which the two parsers don't agree.
struct Disagreement {
  const std::string& text;
  bool accepted;  // by the component
  const Notes& notes;
  const Expat& expat;
};

// Where they need not agree, and why. The verdict on any other text is a wrong one.
struct Deviation {
  const char* reason;
  bool (*explains)(const Disagreement& found);
};

constexpr Deviation kDeviations[] = {
    {"expat has four encodings, the component those of the system",
     [](const Disagreement& found) { return found.expat.Error() == XML_ERROR_UNKNOWN_ENCODING; }},
    {"expat takes any version, the component those of XML 1",
     [](const Disagreement& found) { return !found.accepted && HasOddVersion(found.text); }},
    {"expat recognises UTF-16 that has neither mark nor declaration",
     [](const Disagreement& found) { return !found.accepted && LacksItsMark(found.text); }},
    {"expat has the names of the fourth edition of XML, the component those of the fifth",
     [](const Disagreement& found) {
       return found.accepted && HasNewerNames(found.text, found.notes);
     }},
    {"expat refuses a declared encoding that is not the mark's; in the component the mark counts",
     [](const Disagreement& found) {
       return found.accepted && found.expat.Error() == XML_ERROR_INCORRECT_ENCODING &&
              HasItsMark(found.text);
     }},
};

class Comparison {
 public:
  explicit Comparison(faults::Counts& counts) : counts_(counts) {}

  // Compares one text, called `name`, and what it is without its document type declaration.
  void Compare(const std::string& name, const std::string& text) {
    const Expat expat(text);
    if (!expat.HasDocumentType()) return CompareOne(name, text, expat);
    ++counts_.tried;
    XmlNotes notes;
    if (parser_->Parse(text, XmlEncoding::kAsDeclared, notes)) {
      Wrong(name, "a document type declaration is accepted", text);
    }
    const auto begin = text.find("<!DOCTYPE");
    const std::size_t end = expat.DocumentTypeEnd();
    if (begin >= end || end > text.size()) return;
    const std::string rest = text.substr(0, begin) + text.substr(end);
    const Expat of_rest(rest);
    if (!of_rest.HasDocumentType()) CompareOne(name + " without its DOCTYPE", rest, of_rest);
  }

  // Prints how many texts each deviation explains.
  void PrintDeviations() const {
    for (std::size_t i = 0; i < std::size(kDeviations); ++i) {
      std::printf("%zu texts: %s\n", explained_[i], kDeviations[i].reason);
    }
  }

 private:
  void CompareOne(const std::string& name, const std::string& text, const Expat& expat) {
    ++counts_.tried;
    XmlNotes notes;
    const bool accepted = parser_->Parse(text, XmlEncoding::kAsDeclared, notes);
    if (accepted != expat.Accepted()) {
      const Disagreement found{text, accepted, notes.notes, expat};
      const auto* deviation = std::ranges::find_if(
          kDeviations, [&found](const Deviation& one) { return one.explains(found); });
      if (deviation != std::end(kDeviations)) {
        ++explained_[static_cast<std::size_t>(deviation - kDeviations)];
      } else {
        Wrong(name, accepted ? XML_ErrorString(expat.Error()) : "expat accepts it", text);
      }
      return;
    }
    if (!accepted) return;
    if (notes.notes != expat.Pieces()) Wrong(name, "other pieces than expat's", text);
    CompareSaved(name, text);
  }

  void CompareSaved(const std::string& name, const std::string& text) {
    xml::Document document;
    if (!document.Load(*parser_, text)) return Wrong(name, "is no document", text);
    const std::string saved = document.Xml();
    xml::Document again;
    if (!again.LoadXml(*parser_, saved) || again.Xml() != saved) {
      Wrong(name, "is saved otherwise the second time", saved);
    }
    const Expat of_saved(saved);
    XmlNotes ours;
    static_cast<void>(parser_->Parse(saved, XmlEncoding::kUtf8, ours));
    if (!of_saved.Accepted() || of_saved.Pieces() != ours.notes) {
      Wrong(name, "expat reads what is saved otherwise", saved);
    }
  }

  void Wrong(const std::string& name, const char* what, const std::string& text) {
    constexpr std::size_t kShown = 300;
    ++counts_.wrong;
    std::printf("%s: %s: ", name.c_str(), what);
    for (const unsigned char byte : text.substr(0, kShown)) {
      std::printf(byte < ' ' || byte > '~' ? "\\x%02X" : "%c", byte);
    }
    std::puts("");
  }

  faults::Counts& counts_;
  std::shared_ptr<XmlParser> parser_ = MakeXmlParser();
  std::array<std::size_t, std::size(kDeviations)> explained_{};
};

// A sample with some bytes taken out, put in twice or exchanged for those that XML gives a meaning.
std::string Mutation(std::uint64_t number) {
  constexpr std::string_view kMeaningful = "<>&'\"/=:!?-[];x# \t\r\n";
  std::mt19937_64 random(number);
  std::string text(faults::kSamples[random() % std::size(faults::kSamples)]);
  for (auto changes = 1 + random() % 3; changes != 0 && !text.empty(); --changes) {
    const std::size_t at = random() % text.size();
    const std::size_t length = 1 + random() % 4;
    switch (random() % 4) {
      case 0:
        text.erase(at, length);
        break;
      case 1:
        text.insert(at, text.substr(at, length));
        break;
      case 2:
        text[at] = kMeaningful[random() % kMeaningful.size()];
        break;
      default:
        text.insert(at, 1, kMeaningful[random() % kMeaningful.size()]);
    }
  }
  return text;
}

std::vector<std::filesystem::path> FilesOf(const char* folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file() && entry.path().extension() == ".xml")
      files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

std::string Bytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void CompareSuite(const faults::Options& options, Comparison& comparison) {
  const char* const suite = std::getenv("KVDM_XMLCONF");
  if (suite == nullptr) {
    std::puts("KVDM_XMLCONF names no folder: no files of a test suite were compared.");
    return;
  }
  const auto files = FilesOf(suite);
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (options.IsMine(i)) comparison.Compare(files[i].string(), Bytes(files[i]));
  }
  std::printf("%zu files in %s\n", files.size(), suite);
}

void Run(const faults::Options& options, faults::Counts& counts) {
  constexpr std::size_t kMutations = 20'000;
  constexpr std::size_t kAllMutations = 2'000'000;
  Comparison comparison(counts);
  std::size_t number = 0;
  for (const std::string_view sample : faults::kSamples) {
    if (options.IsMine(number++)) comparison.Compare("a sample", std::string(sample));
  }
  const std::size_t mutations = options.all ? kAllMutations : kMutations;
  for (std::size_t i = 0; i < mutations; ++i) {
    if (options.IsMine(i)) comparison.Compare("mutation " + std::to_string(i), Mutation(i));
  }
  if (options.all) CompareSuite(options, comparison);
  comparison.PrintDeviations();
}

}  // namespace
}  // namespace kvdm

int main(int argc, char** argv) {
  const auto options = kvdm::faults::ReadOptions(argc, argv);
  kvdm::faults::Counts counts;
  kvdm::Run(options, counts);
  return kvdm::faults::Report("xml", counts);
}
