// XML parser of libxml2, as a stream of events.
#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <deque>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "platform/xml/limits.h"
#include "platform/xml/xml_input.h"
#include "platform/xml_parser.h"

namespace kvdm {
namespace {

struct FreeContext {
  void operator()(xmlParserCtxtPtr context) const { xmlFreeParserCtxt(context); }
};
using Context = std::unique_ptr<xmlParserCtxt, FreeContext>;

std::string_view View(const xmlChar* text) {
  return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

std::string_view View(const xmlChar* text, int length) {
  return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(length)};
}

// As `operator new` does.
[[noreturn]] void FailForMemory() {
  if (const auto handler = std::get_new_handler()) handler();
  throw std::bad_alloc();
}

// One parse: passes the library's callbacks on to the handler. The first failure ends it.
class Run {
 public:
  Run(xmlParserCtxtPtr context, XmlHandler& handler) : context_(context), handler_(handler) {
    *context->sax = Callbacks();
    context->userData = this;
  }

  bool Parse(std::string_view text) {
    xmlCtxtReadMemory(context_, text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                      XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_IGNORE_ENC);
    if (thrown_) std::rethrow_exception(thrown_);
    // Without memory the text was not judged. A well-formed one has an element.
    const bool is_judged = IsCalledMalformed() || refused_ || has_element_;
    if (!is_judged || context_->errNo == XML_ERR_NO_MEMORY) FailForMemory();
    return !IsCalledMalformed() && !refused_;
  }

  // Whether it was the library that ended the parse, not the handler or a limit.
  [[nodiscard]] bool IsCalledMalformed() const {
    return malformed_ || (context_->wellFormed == 0 && !refused_);
  }

 private:
  static xmlSAXHandler Callbacks() {
    xmlSAXHandler callbacks{};
    callbacks.initialized = XML_SAX2_MAGIC;
    callbacks.startElementNs = OnStartElement;
    callbacks.endElementNs = OnEndElement;
    callbacks.characters = OnCharacters;
    callbacks.ignorableWhitespace = OnCharacters;
    callbacks.cdataBlock = OnCharacters;
    callbacks.comment = OnComment;
    callbacks.processingInstruction = OnInstruction;
    callbacks.internalSubset = OnDocumentType;
    callbacks.serror = OnError;
    return callbacks;
  }

  static Run& Of(void* user_data) { return *static_cast<Run*>(user_data); }

  // No exception may cross the library's frames.
  template <class Body>
  void Pass(const Body& body) {
    if (refused_ || malformed_) return;
    try {
      refused_ = !body();
    } catch (...) {
      refused_ = true;
      thrown_ = std::current_exception();
    }
    if (refused_) xmlStopParser(context_);
  }

  static void OnStartElement(void* user_data, const xmlChar* local, const xmlChar* prefix,
                             const xmlChar* /*uri*/, int namespace_count,
                             const xmlChar** namespaces, int attribute_count,
                             int /*defaulted_count*/, const xmlChar** attributes) {
    Run& run = Of(user_data);
    run.Pass([&] {
      run.has_element_ = true;
      if (++run.depth_ > xml::kMaxDepth) return false;
      run.attributes_.clear();
      run.made_.clear();
      for (int i = 0; i < namespace_count; ++i, namespaces += 2) {
        const std::string_view name =
            namespaces[0] == nullptr ? "xmlns" : run.QualifiedName("xmlns", View(namespaces[0]));
        run.attributes_.push_back({name, run.AttributeText(View(namespaces[1]))});
      }
      // Each attribute is its local name, prefix, namespace, and the start and end of its value.
      for (int i = 0; i < attribute_count; ++i, attributes += 5) {
        const auto length = static_cast<int>(attributes[4] - attributes[3]);
        run.attributes_.push_back({run.QualifiedName(View(attributes[1]), View(attributes[0])),
                                   run.AttributeText(View(attributes[3], length))});
      }
      return run.handler_.StartElement(run.QualifiedName(View(prefix), View(local)),
                                       run.attributes_);
    });
  }

  static void OnEndElement(void* user_data, const xmlChar* /*local*/, const xmlChar* /*prefix*/,
                           const xmlChar* /*uri*/) {
    Run& run = Of(user_data);
    --run.depth_;
    run.Pass([&] { return run.handler_.EndElement(); });
  }
  static void OnCharacters(void* user_data, const xmlChar* text, int length) {
    Run& run = Of(user_data);
    run.Pass([&] { return run.handler_.Characters(View(text, length)); });
  }
  static void OnComment(void* user_data, const xmlChar* text) {
    Run& run = Of(user_data);
    run.Pass([&] { return run.handler_.Comment(View(text)); });
  }
  static void OnInstruction(void* user_data, const xmlChar* target, const xmlChar* data) {
    Run& run = Of(user_data);
    run.Pass([&] { return run.handler_.Instruction(View(target), View(data)); });
  }
  static void OnDocumentType(void* user_data, const xmlChar* /*name*/,
                             const xmlChar* /*external_id*/, const xmlChar* /*system_id*/) {
    Of(user_data).Pass([] { return false; });
  }
  // Ends the parse without freeing the input, which the library may still be reading here.
  static void OnError(void* user_data, xmlErrorPtr error) {
    if (error->level < XML_ERR_ERROR || error->code == XML_WAR_NS_URI) return;
    Run& run = Of(user_data);
    run.malformed_ = true;
    run.context_->instate = XML_PARSER_EOF;
    run.context_->disableSAX = 1;
  }

  std::string_view QualifiedName(std::string_view prefix, std::string_view local) {
    if (prefix.empty()) return local;
    std::string& name = made_.emplace_back(prefix);
    return (name += ':') += local;
  }

  // Attribute values come with every ampersand as a reference, and with no other references.
  std::string_view AttributeText(std::string_view value) {
    constexpr std::string_view kAmpersand = "&#38;";
    auto found = value.find(kAmpersand);
    if (found == std::string_view::npos) return value;
    std::string& text = made_.emplace_back();
    for (; found != std::string_view::npos; found = value.find(kAmpersand)) {
      text.append(value.substr(0, found)) += '&';
      value.remove_prefix(found + kAmpersand.size());
    }
    return text += value;
  }

  xmlParserCtxtPtr context_;
  XmlHandler& handler_;
  std::vector<XmlAttribute> attributes_;  // of the element that starts
  std::deque<std::string> made_;          // names and values of these that had to be put together
  std::size_t depth_ = 0;
  bool refused_ = false;    // by the handler, or for a limit
  bool malformed_ = false;  // says the library
  bool has_element_ = false;
  std::exception_ptr thrown_;
};

// Refuses documents over the limits of size, depth and attributes (limits.h) without reading on.
// Keeps no state and changes none of the process.
class LibxmlParser final : public XmlParser {
 public:
  bool Parse(std::string_view text, XmlEncoding encoding, XmlHandler& handler) override {
    return ParseDecoded(text, encoding, [&handler](std::string_view utf8) {
      const Verdict verdict = ParseOnce(utf8, handler);
      // Where memory runs out the library may take a name or a value for missing, and call the text
      // malformed. What it takes for well-formed the next time is.
      IgnoringHandler ignoring;
      if (verdict == Verdict::kMalformed && ParseOnce(utf8, ignoring) == Verdict::kAccepted) {
        FailForMemory();
      }
      return verdict == Verdict::kAccepted;
    });
  }

 private:
  enum class Verdict { kAccepted, kRefused, kMalformed };

  static Verdict ParseOnce(std::string_view utf8, XmlHandler& handler) {
    const Context context(xmlNewParserCtxt());
    if (!context) FailForMemory();
    Run run(context.get(), handler);
    if (run.Parse(utf8)) return Verdict::kAccepted;
    return run.IsCalledMalformed() ? Verdict::kMalformed : Verdict::kRefused;
  }
};

}  // namespace

std::shared_ptr<XmlParser> MakeXmlParser() { return std::make_shared<LibxmlParser>(); }

}  // namespace kvdm
