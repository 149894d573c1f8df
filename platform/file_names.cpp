#include "platform/file_names.h"

#include <algorithm>
#include <random>
#include <utility>

#include <kvdm/platform/file_system.h>

#include "platform/utf8.h"

namespace kvdm {
namespace {

constexpr std::string_view kSeparators = "\\/";
constexpr std::string_view kRefusedCharacters = "<>:\"/\\|?*";
constexpr std::size_t kLongestName = 255;

bool IsSeparator(char c) { return kSeparators.find(c) != std::string_view::npos; }
bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool StartsWithDrive(std::string_view path) {
  return path.size() >= 2 && IsLetter(path[0]) && path[1] == ':';
}

// Only characters of one UTF-16 unit have another case here, and no letter beyond ASCII becomes an
// ASCII one: a dotless "i" is not an "I".
char32_t Folded(char32_t c) {
  if (c > 0xFFFF) return c;
  const char32_t upper = UpperCase(static_cast<char16_t>(c));
  const bool becomes_ascii = c >= 0x80 && upper < 0x80;
  return becomes_ascii ? c : upper;
}

// Takes the first character off a name and returns it in upper case. A byte that is not UTF-8
// becomes a value that no character has.
char32_t TakeFolded(std::string_view& name) {
  constexpr char32_t kInvalidByte = 0x110000;
  const auto byte = static_cast<unsigned char>(name.front());
  if (byte < 0x80) {
    name.remove_prefix(1);
    return byte >= 'a' && byte <= 'z' ? byte - ('a' - 'A') : byte;
  }
  const CodePoint next = TakeCodePoint(name);
  return next.valid ? Folded(next.value) : kInvalidByte + byte;
}

std::u32string Folded(std::string_view name) {
  std::u32string folded;
  folded.reserve(name.size());
  while (!name.empty()) folded += TakeFolded(name);
  return folded;
}

// Below 0, 0 or above 0, as `a` comes before, with or after `b` without regard to letter case.
int Compared(std::string_view a, std::string_view b) {
  while (!a.empty() && !b.empty()) {
    const char32_t x = TakeFolded(a);
    const char32_t y = TakeFolded(b);
    if (x != y) return x < y ? -1 : 1;
  }
  return static_cast<int>(b.empty()) - static_cast<int>(a.empty());
}

std::vector<std::string> Names(std::string_view text) {
  std::vector<std::string> names;
  std::string_view last;
  while (true) {
    const std::size_t end = std::min(text.find_first_of(kSeparators), text.size());
    last = text.substr(0, end);
    if (!last.empty()) names.emplace_back(last);
    if (end == text.size()) break;
    text.remove_prefix(end + 1);
  }
  if (!last.empty() && last != ".." && TrimmedName(last).empty()) names.pop_back();
  return names;
}

void AppendResolved(const std::vector<std::string>& names, std::vector<std::string>& resolved) {
  for (const std::string& name : names) {
    if (name == ".") continue;
    if (name != "..") {
      resolved.push_back(name);
    } else if (!resolved.empty()) {
      resolved.pop_back();
    }
  }
}

// Only the last `*` ever needs another try: each piece between two of them is matched as early as
// possible, and an earlier match leaves no less for what follows.
bool MatchesFolded(std::u32string_view name, std::u32string_view pattern) {
  std::size_t n = 0;
  std::size_t p = 0;
  std::size_t after_star = std::u32string_view::npos;
  std::size_t retry = 0;
  while (n < name.size() || p < pattern.size()) {
    const bool has_character = n < name.size();
    const char32_t wanted = p < pattern.size() ? pattern[p] : U'\0';
    if (wanted == U'*') {
      after_star = ++p;
      retry = n;
    } else if (wanted == U'?') {
      ++p;
      if (has_character && name[n] != U'.') ++n;
    } else if (p < pattern.size() && has_character && name[n] == wanted) {
      ++p;
      ++n;
    } else if (after_star != std::u32string_view::npos && retry < name.size()) {
      n = ++retry;
      p = after_star;
    } else {
      return false;
    }
  }
  return true;
}

template <class Wanted>
std::optional<std::string> First(const std::vector<std::string>& names, Wanted wanted) {
  const auto found = std::ranges::find_if(names, wanted);
  return found == names.end() ? std::nullopt : std::optional(*found);
}

}  // namespace

PathParts SplitPath(std::string_view path) {
  const bool share = path.starts_with(R"(\\)");
  if (share || path.find_first_not_of(' ') == std::string_view::npos) return {};
  if (StartsWithDrive(path)) {
    const char drive = static_cast<char>(path[0] & ~0x20);
    path.remove_prefix(2);
    const bool rooted = !path.empty() && IsSeparator(path[0]);
    return {rooted ? PathStart::kDrive : PathStart::kDriveFolder, drive, Names(path)};
  }
  const bool rooted = IsSeparator(path[0]);
  return {rooted ? PathStart::kCurrentDrive : PathStart::kCurrentFolder, 0, Names(path)};
}

std::string DrivePath::Text() const {
  std::string text{drive, ':'};
  for (const std::string& name : names) text += '\\' + name;
  if (names.empty()) text += '\\';
  return text;
}

std::optional<DrivePath> ResolvePath(const PathParts& parts, const DrivePath& current) {
  if (parts.start == PathStart::kNowhere) return std::nullopt;
  DrivePath resolved{parts.drive != 0 ? parts.drive : current.drive, {}};
  const bool in_current_folder =
      parts.start == PathStart::kCurrentFolder ||
      (parts.start == PathStart::kDriveFolder && parts.drive == current.drive);
  if (in_current_folder) resolved.names = current.names;
  AppendResolved(parts.names, resolved.names);
  return resolved;
}

SearchPattern SplitPattern(std::string_view pattern) {
  const std::size_t separator = pattern.find_last_of(kSeparators);
  std::size_t name = separator == std::string_view::npos ? 0 : separator + 1;
  if (name == 0 && StartsWithDrive(pattern)) name = 2;
  const std::string_view last = pattern.substr(name);
  return {name == 0 ? "." : pattern.substr(0, name), last.empty() ? "*" : last};
}

bool IsCreatableName(std::string_view name) {
  const bool refused = std::ranges::any_of(name, [](char c) {
    return static_cast<unsigned char>(c) < 0x20 ||
           kRefusedCharacters.find(c) != std::string_view::npos;
  });
  return !refused && !name.empty() && IsValidUtf8(name) && Utf16Length(name) <= kLongestName;
}

std::string_view TrimmedName(std::string_view name) {
  return name.substr(0, name.find_last_not_of(" .") + 1);
}

std::string PathIn(std::string_view folder, std::string_view name) {
  return std::string(folder).append(folder.ends_with('\\') ? "" : "\\").append(name);
}

bool SameName(std::string_view a, std::string_view b) { return Compared(a, b) == 0; }

bool MayMean(std::string_view wanted, std::string_view name) {
  return SameName(TrimmedName(wanted), TrimmedName(name));
}

std::size_t NameHash(std::string_view name) {
  constexpr std::uint64_t kStart = 0xCBF29CE484222325;
  constexpr std::uint64_t kFactor = 0x100000001B3;
  std::uint64_t hash = kStart;
  for (name = TrimmedName(name); !name.empty();) hash = (hash ^ TakeFolded(name)) * kFactor;
  return static_cast<std::size_t>(hash ^ (hash >> 32U));
}

std::optional<std::string_view> AfterStart(std::string_view name, std::string_view start) {
  while (!name.empty() && !start.empty()) {
    if (TakeFolded(name) != TakeFolded(start)) return std::nullopt;
  }
  return start.empty() ? std::optional(name) : std::nullopt;
}

std::u32string FoldedName(std::string_view name) { return Folded(name); }

bool MatchesPattern(std::string_view name, std::string_view pattern) {
  std::string_view literal = pattern.substr(0, pattern.find_first_of("*?"));
  if (literal.ends_with('.') && literal.size() + 1 == pattern.size()) literal.remove_suffix(1);
  if (!AfterStart(name, literal)) return false;
  const std::u32string folded_name = Folded(name);
  std::u32string folded_pattern = Folded(pattern);
  if (MatchesFolded(folded_name, folded_pattern)) return true;
  if (!folded_pattern.ends_with(U".*")) return false;
  folded_pattern.resize(folded_pattern.size() - 2);
  return MatchesFolded(folded_name, folded_pattern);
}

std::optional<std::string> FindSameName(const std::vector<std::string>& names,
                                        std::string_view wanted) {
  if (auto exact = First(names, [&](const std::string& name) { return name == wanted; })) {
    return exact;
  }
  return First(names, [&](const std::string& name) { return SameName(name, wanted); });
}

std::optional<std::string> FindName(const std::vector<std::string>& names,
                                    std::string_view wanted) {
  if (auto same = FindSameName(names, wanted)) return same;
  if (TrimmedName(wanted).empty()) return std::nullopt;  // Blanks and dots mean no other name.
  return First(names, [&](const std::string& name) { return MayMean(wanted, name); });
}

std::string RandomDigits() {
  std::random_device chance;
  constexpr char kHexDigits[] = "0123456789abcdef";
  std::string digits;
  for (int i = 0; i < 16; ++i) digits += kHexDigits[chance() % 16];
  return digits;
}

std::string TemporaryFileName() { return ".kvdm-" + RandomDigits() + ".tmp"; }

void SortNames(std::vector<std::string>& names) {
  std::ranges::sort(names, [](const std::string& a, const std::string& b) {
    const int order = Compared(a, b);
    return order == 0 ? a < b : order < 0;
  });
}

std::string Numbered(std::string_view base, int number) {
  return std::string(base).append(number == 0 ? "" : std::to_string(number));
}

RuntimeError PathError(std::int32_t number, std::string_view path) {
  return {number, {}, std::string(DescriptionOf(number)) + ": " + std::string(path)};
}

// Free names, asked for one by one: what every file system does that has no shorter way.
std::string FileSystem::FreeFolderName(std::string_view parent, std::string_view name) {
  const std::string path = std::string(parent).append(name);
  const int number =
      FirstFreeNumber([&](int tried) { return FolderExists(Numbered(path, tried)); });
  return Numbered(name, number);
}

std::string FileSystem::FreeFileName(std::string_view folder, std::string_view name) {
  const std::string path = std::string(folder).append("\\").append(name);
  const int number = FirstFreeNumber(
      [&](int tried) { return !FindFiles(Numbered(path, tried).append(".*")).empty(); });
  return Numbered(name, number);
}

std::vector<std::string> Directory::ClearFiles() {
  if (!Files().empty()) DeleteFiles();
  return Entries();
}

}  // namespace kvdm
