#include "safety/pack.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <system_error>

#include "safety/items.h"
#include "safety/json.h"
#include "safety/os.h"
#include "safety/path_prefix.h"
#include "safety/zip.h"

namespace kvdm {
namespace {

namespace fs = std::filesystem;

constexpr char kPackFormat[] = "kvdm pack";
constexpr int kPackVersion = 1;
constexpr char kManifest[] = "kvdm-pack.json";
constexpr char kTemporaryFolder[] = "KelvaroTemp";

// The study areas of a catalogue whose folder is in the working directory.
Json AreasIn(const Platform& platform, const PackContent& content) {
  Json areas = Json::array();
  const auto tree = ReadDocumentTree(*platform.xml_parser, content.catalogue);
  if (!tree || tree->Root() == nullptr) return areas;
  const PathPrefix inside(content.stored_directory, "");
  for (const StoredItem& area : ItemsIn(*tree->Root())) {
    if (!inside.Replaced(area.element->Attribute("DIRNAME"))) continue;
    areas.push_back(ElementText(*platform.xml_parser, *area.element));
  }
  return areas;
}

std::string ManifestText(const Platform& platform, const PackContent& content) {
  const Json manifest = {{"format", kPackFormat},
                         {"version", kPackVersion},
                         {"project", os::ToText(content.document.filename())},
                         {"folder", os::ToText(content.working_directory.filename())},
                         {"working_directory", content.stored_directory},
                         {"study_areas", AreasIn(platform, content)}};
  return manifest.dump(2) + "\n";
}

// Whether an entry of the working directory stays behind: what only counts at its place.
bool StaysBehind(const fs::path& entry, bool is_top) {
  const std::string name = os::ToText(entry.filename());
  return is_top && (name == kTemporaryFolder || name.starts_with(".kvdm-trash") ||
                    name.starts_with(".kvdm-deleted-"));
}

// Of what hosts keep in the working directory only the side-cars go along.
bool IsHostsOwn(const std::string& name) {
  const std::string inside = "/" + std::string(kHostFolder) + "/";
  const auto found = name.find(inside);
  return found != name.npos && !name.substr(found + inside.size()).starts_with(kItemsPrefix);
}

void PackFolder(ZipWriter& zip, const fs::path& folder, const std::string& name, bool is_top,
                PackResult& result) {
  zip.AddFolder(name);
  std::vector<fs::path> entries;
  for (const auto& entry : fs::directory_iterator(folder)) entries.push_back(entry.path());
  std::ranges::sort(entries);
  for (const fs::path& entry : entries) {
    const std::string inside = name + "/" + os::ToText(entry.filename());
    const auto status = fs::symlink_status(entry);
    if (StaysBehind(entry, is_top) || IsHostsOwn(inside)) continue;
    if (fs::is_directory(status)) {
      PackFolder(zip, entry, inside, false, result);
    } else if (fs::is_regular_file(status)) {
      zip.AddFile(inside, entry);
      ++result.files;
      result.bytes += static_cast<std::int64_t>(fs::file_size(entry));
    } else {
      ++result.left_out;
    }
  }
}

PackManifest ParseManifest(const Platform& platform, const fs::path& file) {
  try {
    const Json manifest = ParseJson(os::ReadBytes(file));
    if (manifest.at("format") != kPackFormat) Unreadable("It is no packed project.");
    if (manifest.at("version") != kPackVersion) {
      Unreadable("It was packed by a newer kvdm. Unpack it with that one, or update this one.");
    }
    PackManifest parsed{manifest.at("project").get<std::string>(),
                        manifest.at("folder").get<std::string>(),
                        manifest.at("working_directory").get<std::string>(),
                        {}};
    for (const Json& text : manifest.at("study_areas")) {
      const auto tree = ReadDocumentTree(*platform.xml_parser, text.get<std::string>());
      if (!tree || tree->Root() == nullptr) Unreadable("A study area in it is damaged.");
      parsed.areas.push_back({"STUDYAREACOLLECTION", *tree->Root()});
    }
    return parsed;
  } catch (const Json::exception&) {
    Unreadable("It is no packed project: parts of its description are missing.");
  } catch (const std::system_error&) {
    Unreadable(fmt::format("It is no packed project: there is no {} in it.", kManifest));
  }
}

// Names of the archive that lead to a file and a folder right in it.
void RequireParts(const PackManifest& manifest, const fs::path& folder) {
  const auto is_name = [](const std::string& name) {
    return !name.empty() && name.find_first_of("/\\:") == name.npos && name != "." && name != "..";
  };
  std::error_code unknown;
  if (is_name(manifest.project) && is_name(manifest.folder) &&
      manifest.project.ends_with(".kvdm") &&
      fs::is_regular_file(folder / os::ToPath(manifest.project), unknown) &&
      fs::is_directory(folder / os::ToPath(manifest.folder), unknown)) {
    return;
  }
  Unreadable("It is no packed project: its document or its working directory is missing.");
}

}  // namespace

PackResult Pack(const Platform& platform, const PackContent& content, const fs::path& archive) {
  PackResult result;
  fs::path unfinished = archive;
  unfinished += ".part";
  try {
    ZipWriter zip(unfinished);
    zip.AddText(kManifest, ManifestText(platform, content));
    zip.AddFile(os::ToText(content.document.filename()), content.document);
    PackFolder(zip, content.working_directory, os::ToText(content.working_directory.filename()),
               true, result);
    zip.Finish();
    static_cast<void>(ReadZip(unfinished));
    fs::rename(unfinished, archive);
  } catch (...) {
    std::error_code ignored;  // The first failure is the one to tell.
    fs::remove(unfinished, ignored);
    throw;
  }
  return result;
}

// Whether something in an archive would count as the history, the owner or the trash of a working
// directory, which are of one place: `kvdm undo` would trust what others wrote there.
bool IsOfOnePlace(std::string name) {
  std::ranges::transform(name, name.begin(),
                         [](unsigned char letter) { return std::tolower(letter); });
  const bool is_aside = name.find("/.kvdm-") != name.npos && !name.ends_with(kRecoveryFile);
  return is_aside || IsHostsOwn(name);
}

PackManifest Unpack(const Platform& platform, const fs::path& archive, const fs::path& folder) {
  auto entries = ReadZip(archive);
  std::erase_if(entries, [](const ZipEntry& entry) { return IsOfOnePlace(entry.name); });
  os::CreateFolders(folder);
  try {
    Unzip(archive, entries, folder);
    PackManifest manifest = ParseManifest(platform, folder / kManifest);
    RequireParts(manifest, folder);
    fs::remove(folder / kManifest);
    os::CreateFolders(folder / os::ToPath(manifest.folder) / kTemporaryFolder);
    return manifest;
  } catch (...) {
    std::error_code ignored;  // The first failure is the one to tell.
    fs::remove_all(folder, ignored);
    throw;
  }
}

Adoption Settle(const Platform& platform, const Holdings& holdings, const PackManifest& manifest,
                const std::string& new_directory) {
  const PathPrefix moved(manifest.stored_directory, new_directory, SamePlaceIn(platform));
  Holdings project = holdings;
  project.catalogue.clear();
  Holdings settled = PlanRebase(platform, project, moved, RebaseStage::kCopied).result;
  settled.catalogue = holdings.catalogue;
  std::vector<FoundItem> areas;
  for (KeptItem area : manifest.areas) {
    RebaseElements(area.element, moved, "");
    areas.push_back({std::move(area), "pack"});
  }
  return AdoptCopies(platform, settled, areas);
}

}  // namespace kvdm
