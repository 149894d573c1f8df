// XML parser of MSXML.
#include <msxml2.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <string>

#include "platform/windows/automation.h"
#include "platform/xml/namespaces.h"
#include "platform/xml/pieces.h"
#include "platform/xml/xml_input.h"
#include "platform/xml_parser.h"

namespace kvdm {
namespace {

using Microsoft::WRL::ComPtr;

constexpr CLSID kDocument6 = {
    0x88D96A05, 0xF192, 0x11D4, {0xA6, 0x5F, 0x00, 0x40, 0x96, 0x32, 0x51, 0xE5}};
constexpr CLSID kDocument3 = {
    0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};
// The interface of documents that have properties by name.
constexpr IID kDocumentInterface = {
    0x2933BF95, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

using Document = ComPtr<IXMLDOMDocument2>;

HRESULT Create(const CLSID& version, Document& document) {
  return ::CoCreateInstance(version, nullptr, CLSCTX_INPROC_SERVER, kDocumentInterface, &document);
}

// Not every version has every property.
void SetIfKnown(const Document& document, std::string_view property, const Value& value) {
  static_cast<void>(document->setProperty(Bstr(property).get(), Variant(value).get()));
}

// A document that opens nothing but the text that it is given.
Document CreateDocument() {
  constexpr std::int32_t kNoLimit = 0;
  Document document;
  if (FAILED(Create(kDocument6, document))) Check(Create(kDocument3, document));
  Check(document->put_async(VARIANT_FALSE));
  Check(document->put_validateOnParse(VARIANT_FALSE));
  Check(document->put_resolveExternals(VARIANT_FALSE));
  Check(document->put_preserveWhiteSpace(VARIANT_TRUE));
  SetIfKnown(document, "ProhibitDTD", true);
  SetIfKnown(document, "MaxElementDepth", kNoLimit);  // Texts keep to their own before.
  return document;
}

Variant BytesOf(std::string_view text) {
  SAFEARRAY* array = ::SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(text.size()));
  if (array == nullptr) throw std::bad_alloc();
  Variant bytes;
  V_VT(bytes.address()) = VT_ARRAY | VT_UI1;
  V_ARRAY(bytes.address()) = array;
  std::ranges::copy(text, static_cast<char*>(array->pvData));
  return bytes;
}

bool IsWellFormed(std::string_view text) {
  VARIANT_BOOL loaded = VARIANT_FALSE;
  Check(CreateDocument()->load(BytesOf(text).get(), &loaded));
  return loaded != VARIANT_FALSE;
}

// The text is UTF-8 now, whatever encoding it declares, and not every version of XML 1 that may be
// declared is known to MSXML.
std::string Redeclared(std::string_view text) {
  const auto declaration = DeclarationOf(text);
  if (!declaration) return std::string(text);
  return std::string(R"(<?xml version="1.0"?>)").append(text.substr(declaration->length));
}

// Texts that could harm MSXML, or that not every version of it refuses, are refused before.
bool ParseUtf8(std::string_view utf8, XmlHandler& handler) {
  const std::string text = Redeclared(WithLineFeeds(utf8));
  NamespaceCheck namespaces;
  return ReportPieces(text, namespaces) && IsWellFormed(text) && ReportPieces(text, handler);
}

// MSXML says whether a text is well-formed. What it holds is read from the text itself: MSXML's
// document gives names, declarations and white space back differently from version to version.
//
// Refuses documents over the limits of size, depth and attributes (limits.h) without reading on.
// The thread must have initialised COM. Run-time error 429 where MSXML isn't installed.
class MsxmlParser final : public XmlParser {
 public:
  bool Parse(std::string_view text, XmlEncoding encoding, XmlHandler& handler) override {
    return ParseDecoded(text, encoding,
                        [&handler](std::string_view utf8) { return ParseUtf8(utf8, handler); });
  }
};

}  // namespace

std::shared_ptr<XmlParser> MakeXmlParser() { return std::make_shared<MsxmlParser>(); }

}  // namespace kvdm
