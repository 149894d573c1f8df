#include "tests/model/describe.h"

namespace kvdm::model {

std::string Describe(const std::string& text) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string described = "\"";
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (code >= ' ') {
      described += c;
    } else {
      described += {'\\', 'x', kDigits[code / 16], kDigits[code % 16]};
    }
  }
  return described + "\"";
}

std::string Describe(bool result) { return result ? "True" : "False"; }

std::string Describe(const std::vector<std::string>& texts) {
  std::string described;
  for (const auto& text : texts) described += "\n    " + Describe(text);
  return described;
}

std::string Describe(const std::shared_ptr<NameList>& list) {
  if (!list) return Describe(std::optional<Texts>());
  Texts texts;
  for (const Value& value : *list) {
    texts.push_back(value.IsNull() ? std::optional<std::string>() : ToText(value));
  }
  return Describe(std::optional(texts));
}

std::string Describe(const std::optional<Texts>& list) {
  if (!list) return "Nothing";
  std::string described = "list";
  for (const auto& text : *list) described += " " + (text ? Describe(*text) : "Null");
  return described;
}

std::string Describe(const std::optional<ValueList>& values) {
  if (!values) return "Nothing";
  std::vector<std::string> texts;
  for (const auto& [path, value] : *values) {
    texts.push_back(path + (value.IsText() ? " = " : " is ") + ToText(value));
  }
  return Describe(texts);
}

std::string Describe(int number, const std::string& unsent_message) {
  return "error " + std::to_string(number) + " " + Describe(unsent_message);
}

}  // namespace kvdm::model
