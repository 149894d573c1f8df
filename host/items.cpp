#include "host/items.h"

#include <algorithm>
#include <cctype>
#include <iostream>
#include <iterator>

#include "host/os.h"
#include "host/output.h"
#include "platform/utf8.h"

namespace kvdm {

void RequireFolderName(std::string_view name) {
  constexpr std::string_view kSeparatorsAndWildcards = R"(\/:*?"<>|)";
  for (const char character : name) {
    const bool control = static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
    if (!control && kSeparatorsAndWildcards.find(character) == kSeparatorsAndWildcards.npos) {
      continue;
    }
    throw Failure(ExitCode::kUsage,
                  fmt::format("The name {} can't be a folder's: it holds a character that folder "
                              "names can't have ({} and control characters).",
                              name, kSeparatorsAndWildcards));
  }
  if (name.find_first_not_of(". ") == name.npos) {
    throw Failure(ExitCode::kUsage, "A name must hold more than dots and blanks.");
  }
}

std::string SelectorHelp(std::string_view kind) {
  return fmt::format("The {}, by name or {{GUID}}", kind);
}

void RequireGuid(std::string_view text) {
  constexpr std::string_view kForm = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
  const auto fits = [](char expected, char character) {
    const bool is_digit = std::isdigit(static_cast<unsigned char>(character)) != 0 ||
                          (character >= 'A' && character <= 'F');
    return expected == 'x' ? is_digit : expected == character;
  };
  if (std::ranges::equal(kForm, text, fits)) return;
  throw Failure(ExitCode::kUsage,
                fmt::format("{} is no identifier. One looks like {}, with upper-case hexadecimal "
                            "digits.",
                            text, kForm));
}

void RequireDeleted(bool deleted) {
  if (!deleted) throw Failure(ExitCode::kRefused, "The component did not delete it.");
}

std::string DeletedWithFolder(FileSystem& files, std::string_view item, std::string_view folder) {
  if (!files.FolderExists(folder))
    return fmt::format("Deleted the {} and its folder {}.", item, folder);
  return fmt::format("Deleted the {}. Its folder {} is still there.", item, folder);
}

void RequireConsent(bool yes, std::string_view consequence) {
  if (yes) return;
  if (!os::InputIsTerminal()) {
    throw Failure(ExitCode::kUsage,
                  fmt::format("{} Nobody can be asked here: add --yes to do it.", consequence));
  }
  Output::Tell(fmt::format("{} Go on? [y/N]", consequence));
  std::string answer;
  std::getline(std::cin, answer);
  if (answer != "y" && answer != "Y" && answer != "yes") {
    throw Failure(ExitCode::kRefused, "Nothing was changed.");
  }
}

std::string TextArgument(const std::string& argument) {
  if (argument != "-") return WithPlainLineEnds(argument);
  std::string text(std::istreambuf_iterator<char>(std::cin), {});
  if (!IsValidUtf8(text)) {
    throw Failure(ExitCode::kUnreadable, "Standard input is not UTF-8 text.");
  }
  if (text.ends_with('\n')) text.pop_back();
  return WithPlainLineEnds(text);
}

std::string WithPlainLineEnds(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r') {
      plain += text[i];
      continue;
    }
    const std::size_t end = text.find_first_not_of('\r', i);
    const bool ends_line = end != text.npos && text[end] == '\n';
    if (!ends_line) plain += '\n';
    if (ends_line) i = end - 1;
  }
  return plain;
}

}  // namespace kvdm
