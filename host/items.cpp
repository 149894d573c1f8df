#include "host/items.h"

#include <algorithm>
#include <cctype>
#include <iostream>

#include "host/checks.h"
#include "host/os.h"
#include "host/output.h"
#include "platform/file_names.h"
#include "platform/utf8.h"
#include "platform/xml/limits.h"

namespace kvdm {

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

void RemoveEmptyFolder(FileSystem& files, std::string_view folder) {
  folder.remove_suffix(1);
  const SearchPattern place = SplitPattern(folder);
  files.OpenFolder(place.folder)->RemoveFolder(place.name);
}

void RequireConsent(std::string_view consequence) {
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
  std::string text(xml::kMaxValueBytes + 1, '\0');
  std::cin.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(std::cin.gcount()));
  if (text.size() > xml::kMaxValueBytes) {
    throw Failure(ExitCode::kUnreadable,
                  fmt::format("Standard input has more than the {} bytes that a text can have.",
                              xml::kMaxValueBytes));
  }
  if (!IsValidUtf8(text)) {
    throw Failure(ExitCode::kUnreadable, "Standard input is not UTF-8 text.");
  }
  RequireStorable("Standard input", text);
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
