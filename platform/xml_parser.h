// A conforming XML parser behind a small interface: it reports what it reads, in order.
#pragma once

#include <memory>
#include <span>
#include <string_view>

namespace kvdm {

struct XmlAttribute {
  std::string_view name;
  std::string_view value;
};

// Receives the pieces of a document. Names are as written, prefixes included; line ends are LF;
// references are resolved; a declaration of the prefix "xml", which is always declared, is not
// reported. An operation that returns false, or throws, ends the parse as failed. What it is given
// is gone when it returns.
class XmlHandler {
 public:
  using Attributes = std::span<const XmlAttribute>;

  virtual ~XmlHandler() = default;
  virtual bool StartElement(std::string_view tag, Attributes attributes) = 0;
  virtual bool EndElement() = 0;
  // A run of character data inside an element; adjacent runs belong together.
  virtual bool Characters(std::string_view text) = 0;
  virtual bool Comment(std::string_view text) = 0;
  virtual bool Instruction(std::string_view target, std::string_view data) = 0;
};

// Takes everything and keeps nothing.
class IgnoringHandler : public XmlHandler {
 public:
  bool StartElement(std::string_view, Attributes) override { return true; }
  bool EndElement() override { return true; }
  bool Characters(std::string_view) override { return true; }
  bool Comment(std::string_view) override { return true; }
  bool Instruction(std::string_view, std::string_view) override { return true; }
};

// What the encoding of a text is taken from.
enum class XmlEncoding {
  kUtf8,        // it is UTF-8, whatever its declaration says
  kAsDeclared,  // its byte order mark, else its declaration, else UTF-8
};

class XmlParser {
 public:
  virtual ~XmlParser() = default;

  // Reads one whole document. False when it is not well-formed or has a document type declaration:
  // then the handler may have received part of it. No entity is expanded and nothing else is
  // opened, ever.
  virtual bool Parse(std::string_view text, XmlEncoding encoding, XmlHandler& handler) = 0;
};

// The parser of this system: libxml2's on POSIX, MSXML's on Windows.
[[nodiscard]] std::shared_ptr<XmlParser> MakeXmlParser();

}  // namespace kvdm
