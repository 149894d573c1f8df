#include "host/additions.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <system_error>

#include "host/checks.h"
#include "host/os.h"
#include "platform/utf8.h"
#include "safety/result.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

// The main files of layers and tables; others that belong to them, such as "x.dbf" of "x.shp", are
// no layers of their own.
constexpr std::array kLayerExtensions = {".shp", ".gpkg", ".geojson", ".fgb", ".tab",
                                         ".mif", ".kml",  ".kmz",     ".gml", ".lyr",
                                         ".csv", ".xlsx", ".ods",     ".tif", ".tiff"};

bool IsLayerFile(const fs::path& file) {
  std::string extension = os::ToText(file.extension());
  std::ranges::transform(extension, extension.begin(),
                         [](unsigned char letter) { return std::tolower(letter); });
  return std::ranges::find(kLayerExtensions, extension) != kLayerExtensions.end();
}

Addition AdditionOf(const fs::path& file) {
  const std::string path = os::ToText(os::Absolute(file));
  if (!IsValidUtf8(path)) {
    throw Failure(ExitCode::kUsage, fmt::format("The path {} is not UTF-8 text.", path));
  }
  return {os::ToText(file.stem()), os::ComponentPath(os::Absolute(file))};
}

[[noreturn]] void NotThere(const fs::path& file) {
  throw Failure(ExitCode::kNotFound,
                fmt::format("There is no file {}. Nothing was added.", os::ToText(file)));
}

void AddFolder(const fs::path& folder, std::vector<Addition>& additions) {
  auto files = os::FilesIn(folder);
  std::ranges::sort(files);
  for (const fs::path& file : files) {
    if (IsLayerFile(file)) additions.push_back(AdditionOf(file));
  }
}

std::size_t ColumnOf(const std::vector<std::string>& titles, std::string_view title) {
  return static_cast<std::size_t>(std::ranges::find(titles, title) - titles.begin());
}

// One field of a row; moves `place` behind what ends it.
std::string FieldAt(std::string_view text, std::size_t& place, char separator) {
  std::string field;
  bool quoted = false;
  for (; place < text.size(); ++place) {
    const char character = text[place];
    if (character == '"' && quoted && text.substr(place + 1).starts_with('"')) {
      field += text[++place];
    } else if (character == '"') {
      quoted = !quoted;
    } else if (!quoted && (character == separator || character == '\n')) {
      break;
    } else {
      field += character;
    }
  }
  if (!quoted && field.ends_with('\r')) field.pop_back();
  return field;
}

}  // namespace

std::vector<Addition> AdditionsOf(const std::vector<std::string>& named) {
  std::vector<Addition> additions;
  for (const std::string& text : named) {
    const fs::path path = os::ToPath(text);
    std::error_code unknown;
    const auto status = fs::status(path, unknown);
    if (fs::is_directory(status)) {
      AddFolder(path, additions);
    } else if (fs::is_regular_file(status)) {
      additions.push_back(AdditionOf(path));
    } else {
      NotThere(path);
    }
  }
  return additions;
}

std::vector<std::vector<std::string>> CsvRows(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  const auto first = text.substr(0, text.find('\n'));
  const char separator = first.find(',') == first.npos && first.find(';') != first.npos ? ';' : ',';
  std::vector<std::vector<std::string>> rows;
  for (std::size_t place = 0; place < text.size(); ++place) {
    std::vector<std::string> row = {FieldAt(text, place, separator)};
    while (place < text.size() && text[place] == separator) {
      row.push_back(FieldAt(text, ++place, separator));
    }
    if (row.size() > 1 || !row.front().empty()) rows.push_back(std::move(row));
  }
  return rows;
}

std::vector<Addition> AdditionsInList(const fs::path& list) {
  std::string text;
  try {
    text = os::ReadBytes(list);
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kUnreadable, fmt::format("The list {} can't be read: {}.",
                                                     os::ToText(list), error.code().message()));
  }
  const auto rows = CsvRows(text);
  const std::size_t file = rows.empty() ? 0 : ColumnOf(rows.front(), "file");
  if (rows.empty() || file == rows.front().size() || !IsValidUtf8(text)) {
    throw Failure(ExitCode::kUnreadable,
                  fmt::format("The list {} is no CSV text in UTF-8 whose first line names a column "
                              "\"file\" and perhaps one \"name\".",
                              os::ToText(list)));
  }
  const std::size_t name = ColumnOf(rows.front(), "name");
  std::vector<Addition> additions;
  for (auto row = rows.begin() + 1; row != rows.end(); ++row) {
    const fs::path path =
        os::Absolute(list).parent_path() / os::ToPath(row->size() > file ? row->at(file) : "");
    std::error_code unknown;
    if (!fs::is_regular_file(path, unknown)) NotThere(path);
    additions.push_back(AdditionOf(path));
    if (row->size() > name && !row->at(name).empty()) additions.back().name = row->at(name);
  }
  return additions;
}

void Judge(std::vector<Addition>& additions, const std::vector<std::string>& files,
           TakenNames names, bool numbers) {
  std::vector<std::string> present = files;
  const auto has = [](const std::vector<std::string>& texts, const std::string& text) {
    return std::ranges::find(texts, text) != texts.end();
  };
  for (Addition& addition : additions) {
    RequireNewName("The name of " + addition.file, addition.name);
    RequireKey("The name of " + addition.file, addition.name);
    const std::string wanted = addition.name;
    for (int i = 1; numbers && has(names, addition.name); ++i) {
      addition.name = fmt::format("{}{}", wanted, i);
    }
    addition.state = has(present, addition.file) ? "present"
                     : has(names, addition.name) ? "taken"
                                                 : "new";
    if (addition.state == "present") addition.name = wanted;
    if (addition.state != "new") continue;
    present.push_back(addition.file);
    names.push_back(addition.name);
  }
}

}  // namespace kvdm
