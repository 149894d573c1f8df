// What an XML parser reports, as notes that tests compare.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/xml_parser.h"

namespace kvdm {

// One entry a piece; adjacent character data is one piece.
class XmlNotes final : public XmlHandler {
 public:
  bool StartElement(std::string_view tag, Attributes attributes) override {
    std::string note = std::string("<").append(tag);
    for (const auto& [name, value] : attributes)
      note.append(" ").append(name).append("=").append(value);
    return Note(note);
  }
  bool EndElement() override { return Note(">"); }
  bool Characters(std::string_view text) override {
    if (text.empty()) return true;
    if (notes.empty() || !notes.back().starts_with('"')) notes.emplace_back("\"");
    notes.back() += text;
    return true;
  }
  bool Comment(std::string_view text) override { return Note(std::string("!").append(text)); }
  bool Instruction(std::string_view target, std::string_view data) override {
    return Note(std::string("?").append(target).append("|").append(data));
  }

  std::vector<std::string> notes;

 private:
  bool Note(std::string note) {
    notes.push_back(std::move(note));
    return true;
  }
};

}  // namespace kvdm
