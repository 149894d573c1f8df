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
#include "safety/times.h"

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

void RequireConsent(std::string_view question) {
  if (!os::InputIsTerminal()) {
    throw Failure(ExitCode::kUnsafe,
                  fmt::format("{} Nobody can be asked here: add --yes to do it.", question));
  }
  Output::Tell(fmt::format("{} [y/N]", question));
  std::string answer;
  std::getline(std::cin, answer);
  if (answer != "y" && answer != "Y" && answer != "yes") {
    throw Failure(ExitCode::kRefused, "Nothing was changed.");
  }
}

std::string WithSeparator(std::string folder) {
  if (!folder.empty() && !folder.ends_with('\\')) folder += '\\';
  return folder;
}

std::string FullPath(const std::string& path) {
  const bool names_drive = path.size() > 1 && path[1] == ':';
  if (path.empty() || names_drive || path.front() == '\\') return path;
  return os::ComponentPath(os::Absolute(os::ToPath(path)));
}

std::string TimeArgument(const std::string& text) {
  if (text.empty() || IsoTime(text)) return text;
  if (auto stored = StoredTime(text)) return *std::move(stored);
  throw Failure(
      ExitCode::kUsage,
      fmt::format("{} is no time. Give one as 2026-01-31, 2026-01-31T09:00:00 or \"1/31/2026 "
                  "9:00:00 AM\".",
                  text));
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
