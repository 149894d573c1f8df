// Any bytes as a project file: what can be read is written, and reading and writing that gives the
// same project and the same bytes. A text whose checksum is wrong is also tried with the right one.
#include <fmt/format.h>
#include <zlib.h>

#include <fstream>
#include <optional>
#include <string>

#include <kvdm/datamanager/component.h>

#include "fuzz/fuzzer.h"
#include "host/project_file.h"
#include "safety/json.h"
#include "tests/temp_folder.h"

namespace kvdm::fuzz {
namespace {

// Runs `read`, which may find something unreadable and fail in no other way.
template <class Read>
auto MayBeUnreadable(Read read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const Failure& failure) {
    Require(failure.code() == ExitCode::kUnreadable && *failure.what() != '\0');
    return std::nullopt;
  }
}

std::string WithChecksum(Json document) {
  document["checksum"] = "";
  const std::string text = document.dump(2);
  const auto* bytes = reinterpret_cast<const Bytef*>(text.data());
  document["checksum"] = fmt::format("crc32:{:08x}", crc32_z(0, bytes, text.size()));
  return document.dump(2);
}

// What the project means, whatever text it was read from.
std::string Meaning(Project project) {
  project.source.clear();
  return ProjectText(project);
}

// What a project file holds, all that this version has no name for included. Values, which have
// several forms, only count.
nlohmann::json Outline(const std::string& text) {
  auto document = nlohmann::json::parse(text);
  for (const auto* own : {"format", "version", "checksum"}) document.erase(own);
  for (const auto* named : {"settings", "state"}) {
    for (auto& value : document[named]) value = nullptr;
  }
  auto& objects = document["objects"];
  if (objects.empty()) objects = {{{"id", kDataManagerClass}, {"values", nlohmann::json::array()}}};
  for (auto& value : objects.front()["values"]) value = nullptr;
  return document;
}

void ReadAndWrite(std::string_view bytes) {
  static const TempFolder folder;
  const std::filesystem::path given = folder.Path("given.kvdm");
  const std::filesystem::path written = folder.Path("written.kvdm");
  std::ofstream(given, std::ios::binary) << bytes;
  const auto project = MayBeUnreadable([&] { return ReadProjectFile(given); });
  if (!project) return;
  WriteProjectFile(written, *project);
  const Project again = ReadProjectFile(written);
  Require(!WriteProjectFile(written, again));
  Require(Meaning(again) == Meaning(*project));
  Require(Outline(again.source) == Outline(project->source));
}

}  // namespace

void Check(std::string_view bytes) {
  ReadAndWrite(bytes);
  const auto document = MayBeUnreadable([&] { return ParseJson(bytes); });
  if (document && document->is_object()) ReadAndWrite(WithChecksum(*document));
}

}  // namespace kvdm::fuzz
