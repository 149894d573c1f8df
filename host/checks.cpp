#include "host/checks.h"

#include <fmt/format.h>

#include "platform/file_names.h"
#include "platform/utf8.h"
#include "platform/xml/xml_text.h"
#include "safety/history.h"
#include "safety/result.h"
#include "studyarea/kv_study_area.h"

namespace kvdm {
namespace {

[[noreturn]] void Refuse(const std::string& sentence) { throw Failure(ExitCode::kUsage, sentence); }

// The character as people look it up: "U+FFFE".
std::string NameOf(char32_t character) {
  return fmt::format("U+{:04X}", static_cast<std::uint32_t>(character));
}

bool IsControl(char32_t character) { return character < 0x20 || character == 0x7F; }

// A control character by its name, any other as it is.
std::string Shown(char32_t character) {
  if (IsControl(character)) return NameOf(character);
  std::string text;
  AppendUtf8(character, text);
  return text;
}

void RequireOtherThanUnlisted(std::string_view what, std::string_view name) {
  if (name != kUnlistedStudyArea) return;
  Refuse(
      fmt::format("{} can't be {}: the component keeps that name to itself and lists no study area "
                  "that has it. Choose another name.",
                  what, name));
}

// Whether Windows takes a name, with any extension, for a device.
bool IsDeviceName(std::string_view name) {
  const std::string_view base = TrimmedName(name.substr(0, name.find('.')));
  for (const std::string_view device : {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"}) {
    if (SameName(base, device)) return true;
  }
  const bool is_numbered = base.size() == 4 && base[3] >= '1' && base[3] <= '9';
  return is_numbered && (SameName(base.substr(0, 3), "COM") || SameName(base.substr(0, 3), "LPT"));
}

[[noreturn]] void RefuseUnlessForced(const std::string& sentence) {
  throw Failure(ExitCode::kUnsafe, sentence + " Choose another name, or add --force.");
}

}  // namespace

void RequireStorable(std::string_view what, std::string_view text) {
  while (!text.empty()) {
    const CodePoint point = TakeCodePoint(text);
    if (!point.valid) Refuse(fmt::format("{} is not UTF-8 text.", what));
    if (xml::IsXmlCharacter(point.value)) continue;
    Refuse(
        fmt::format("{} holds the character {}, which can't be stored. Give it without that "
                    "character.",
                    what, NameOf(point.value)));
  }
}

void RequireKey(std::string_view what, std::string_view text) {
  if (text.empty()) Refuse(fmt::format("{} is empty. Give it at least one character.", what));
  RequireStorable(what, text);
  if (text.find('"') == text.npos) return;
  Refuse(
      fmt::format("{} holds a double quote, and what has one can't be found by it again. Give it "
                  "without.",
                  what));
}

void RequireFolderName(std::string_view name) {
  RequireStorable("The name", name);
  constexpr std::string_view kSeparatorsAndWildcards = R"(\/:*?"<>|)";
  for (std::string_view rest = name; !rest.empty();) {
    const char32_t character = TakeCodePoint(rest).value;
    const bool is_special =
        character < 0x80 &&
        kSeparatorsAndWildcards.find(static_cast<char>(character)) != std::string_view::npos;
    if (!is_special && !IsControl(character)) continue;
    Refuse(
        fmt::format("The name {} can't be a folder's: it holds {}, and folder names can't have "
                    "{} and control characters.",
                    name, Shown(character), kSeparatorsAndWildcards));
  }
  if (name.find_first_not_of(". ") == name.npos) {
    Refuse("A name must hold more than dots and blanks.");
  }
}

void RequireNewName(std::string_view what, std::string_view name) {
  RequireFolderName(name);
  if (name.size() <= kLongestFolderName) return;
  Refuse(
      fmt::format("{} has {} bytes, and file systems have no room for more than {} in a name "
                  "that gets a number and an extension. Choose a shorter one.",
                  what, name.size(), kLongestFolderName));
}

void RequireNewAreaName(std::string_view what, std::string_view name) {
  RequireNewName(what, name);
  RequireOtherThanUnlisted(what, name);
}

void RequirePortableName(std::string_view name) {
  if (IsDeviceName(name)) {
    RefuseUnlessForced(fmt::format("Windows keeps the name {} for a device.", name));
  }
  if (TrimmedName(name) == name) return;
  RefuseUnlessForced(fmt::format(
      "The name \"{}\" ends in a blank or dot, which Windows cuts off the name of a folder.",
      name));
}

void RequireOtherThanInCase(std::string_view name, std::string_view other) {
  if (name == other || !SameName(name, other)) return;
  RefuseUnlessForced(fmt::format(
      "The name {} differs from {} in letter case only, and some systems have one folder for both.",
      name, other));
}

void RequireAreaKey(std::string_view what, std::string_view name) {
  RequireKey(what, name);
  RequireOtherThanUnlisted(what, name);
}

int ListNumber(std::string_view text) {
  const int number = NumberIn(text).value_or(0);
  if (number > 0) return number;
  throw Failure(ExitCode::kUsage,
                fmt::format("{} is no number of those that are listed. Those count from 1.", text));
}

}  // namespace kvdm
