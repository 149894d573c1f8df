// Whatever is loaded can be saved, loaded and saved again with identical bytes; and the pieces of a
// text are those that a parser reports.
#include <cstdlib>
#include <string>
#include <string_view>

#include "fuzz/fuzzer.h"
#include "platform/xml/document.h"
#include "platform/xml/namespaces.h"
#include "platform/xml/pieces.h"
#include "platform/xml_parser.h"
#include "tests/xml_notes.h"

namespace kvdm::xml {
namespace {

void CheckSavedForm(const Document& document) {
  const auto parser = MakeXmlParser();
  Document again;
  const std::string saved = document.Xml();
  if (!again.LoadXml(*parser, saved) || again.Xml() != saved) std::abort();
}

void CheckPieces(std::string_view text) {
  XmlNotes parsed;
  if (!MakeXmlParser()->Parse(text, XmlEncoding::kUtf8, parsed)) return;
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  const std::string lines = WithLineFeeds(text.substr(text.starts_with(kMark) ? kMark.size() : 0));
  XmlNotes read;
  NamespaceCheck namespaces;
  if (!ReportPieces(lines, namespaces) || !ReportPieces(lines, read)) std::abort();
  if (read.notes != parsed.notes) std::abort();
}

}  // namespace
}  // namespace kvdm::xml

void kvdm::fuzz::Check(std::string_view bytes) {
  xml::CheckPieces(bytes);
  const auto parser = MakeXmlParser();
  xml::Document document;
  if (document.LoadXml(*parser, bytes)) xml::CheckSavedForm(document);
  if (document.Load(*parser, bytes)) xml::CheckSavedForm(document);
}
