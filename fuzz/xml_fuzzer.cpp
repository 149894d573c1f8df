// Whatever is loaded can be saved, loaded and saved again with identical bytes; and the pieces of a
// text are those that a parser reports.
//
// Without KVDM_FUZZ_REPLAY a libFuzzer target; with it a program that runs the files named as its
// arguments.
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "platform/posix/libxml_parser.h"
#include "platform/xml/document.h"
#include "platform/xml/namespace_check.h"
#include "platform/xml/pieces.h"
#include "tests/xml_notes.h"

namespace kvdm::xml {
namespace {

void CheckSavedForm(const Document& document) {
  LibxmlParser parser;
  Document again;
  const std::string saved = document.Xml();
  if (!again.LoadXml(parser, saved) || again.Xml() != saved) std::abort();
}

void CheckPieces(std::string_view text) {
  XmlNotes parsed;
  if (!LibxmlParser().Parse(text, XmlEncoding::kUtf8, parsed)) return;
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  const std::string lines = WithLineFeeds(text.substr(text.starts_with(kMark) ? kMark.size() : 0));
  XmlNotes read;
  NamespaceCheck namespaces;
  if (!ReportPieces(lines, namespaces) || !ReportPieces(lines, read)) std::abort();
  if (read.notes != parsed.notes) std::abort();
}

void Check(std::string_view bytes) {
  CheckPieces(bytes);
  LibxmlParser parser;
  Document document;
  if (document.LoadXml(parser, bytes)) CheckSavedForm(document);
  if (document.Load(parser, bytes)) CheckSavedForm(document);
}

}  // namespace
}  // namespace kvdm::xml

#ifdef KVDM_FUZZ_REPLAY

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    std::ifstream file(argv[i], std::ios::binary);
    if (!file) return EXIT_FAILURE;
    kvdm::xml::Check(std::string(std::istreambuf_iterator<char>(file), {}));
  }
  return EXIT_SUCCESS;
}

#else

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kvdm::xml::Check({reinterpret_cast<const char*>(data), size});
  return 0;
}

#endif
