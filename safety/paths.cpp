#include "safety/paths.h"

#include <algorithm>
#include <cctype>

namespace kvdm::paths {

std::string Plain(std::string_view path) {
  std::string plain;
  for (const char character : path) {
    const bool separates = character == '\\' || character == '/';
    if (separates && plain.ends_with('\\')) continue;
    plain += separates ? '\\' : character;
  }
  if (plain.ends_with('\\')) plain.pop_back();
  return plain;
}

std::string Key(std::string_view path) {
  std::string key = Plain(path);
  for (char& character : key) {
    if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
  }
  return key;
}

std::string Parent(std::string_view path) {
  const std::string plain = Plain(path);
  const std::size_t end = plain.rfind('\\');
  return end == plain.npos ? "" : plain.substr(0, end);
}

std::string LastName(std::string_view path) {
  const std::string plain = Plain(path);
  return plain.substr(plain.rfind('\\') + 1);
}

std::string_view WithoutExtension(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot == name.npos ? name : name.substr(0, dot);
}

bool IsBelow(std::string_view path, std::string_view folder) {
  return Key(path).starts_with(Key(folder) + "\\");
}

bool IsFull(std::string_view path) {
  const std::string plain = Plain(path);
  return plain.starts_with('\\') || (plain.size() > 2 && plain[1] == ':' && plain[2] == '\\');
}

bool LeadsUpwards(std::string_view path) {
  const std::string framed = "\\" + Plain(path) + "\\";
  return framed.find("\\..\\") != framed.npos;
}

std::string Quoted(std::string_view text) {
  const auto is_plain = [](char character) {
    return std::isalnum(static_cast<unsigned char>(character)) != 0 ||
           std::string_view("_-./,:@%+").find(character) != std::string_view::npos;
  };
  if (!text.empty() && std::ranges::all_of(text, is_plain)) return std::string(text);
  std::string quoted = "'";
  for (const char character : text)
    quoted += character == '\'' ? "'\\''" : std::string(1, character);
  return quoted + "'";
}

}  // namespace kvdm::paths
