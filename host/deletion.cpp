#include "host/deletion.h"

#include <fmt/format.h>
#include <zlib.h>

#include <algorithm>
#include <cctype>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>

#include "host/kinds.h"
#include "host/os.h"
#include "platform/file_names.h"
#include "platform/xml/document.h"
#include "util/guard.h"
#include "util/kvdm_utils.h"
#include "util/names.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

constexpr std::string_view kPrefix = ".kvdm-deleted-";
constexpr std::string_view kOnlyFiles = "-files";
constexpr std::size_t kProjectDigits = 8;
constexpr std::size_t kGuidDigits = 32;
constexpr std::size_t kChanceDigits = 8;

bool IsHexDigit(char character) {
  return std::isxdigit(static_cast<unsigned char>(character)) != 0;
}

std::string DigitsOf(const std::filesystem::path& project) {
  const std::string path = os::ToText(project);
  const auto* bytes = reinterpret_cast<const Bytef*>(path.data());
  return fmt::format("{:08X}", crc32_z(0, bytes, path.size()));
}

// The digits of "{GUID}", one after the other; zeros for an identifier of another form.
std::string DigitsOf(std::string_view guid) {
  std::string digits;
  std::ranges::copy_if(guid, std::back_inserter(digits), IsHexDigit);
  return digits.size() == kGuidDigits ? digits : std::string(kGuidDigits, '0');
}

std::string GuidOf(std::string_view digits) {
  return fmt::format("{{{}-{}-{}-{}-{}}}", digits.substr(0, 8), digits.substr(8, 4),
                     digits.substr(12, 4), digits.substr(16, 4), digits.substr(20));
}

// The name of the place, beside a folder, where that waits until its deletion is saved:
//
//   .kvdm-deleted-1C0FFEE85A0B3D6E9F7A4C1288D1E6B7C0A9F3D20123abcd
//
// The first 8 digits stand for the project, the next 32 are the item's identifier, or 0, and the
// last 8 are random. "-files" follows when only the files of the folder go, as for a path without a
// separator at its end.
std::string NameOfPlace(const std::filesystem::path& project, std::string_view guid,
                        std::string_view folder) {
  const bool closed = folder.ends_with('\\') || folder.ends_with('/');
  return fmt::format("{}{}{}{}{}", kPrefix, DigitsOf(project), DigitsOf(guid),
                     RandomDigits().substr(0, kChanceDigits), closed ? "" : kOnlyFiles);
}

struct PlaceName {
  std::string_view project;
  std::string_view guid;
  bool only_files;
};

// Nothing for a name of any other form.
std::optional<PlaceName> ParsePlaceName(std::string_view name) {
  const bool only_files = name.ends_with(kOnlyFiles);
  if (only_files) name.remove_suffix(kOnlyFiles.size());
  if (!name.starts_with(kPrefix)) return std::nullopt;
  name.remove_prefix(kPrefix.size());
  const bool fits = name.size() == kProjectDigits + kGuidDigits + kChanceDigits &&
                    std::ranges::all_of(name, IsHexDigit);
  if (!fits) return std::nullopt;
  return PlaceName{name.substr(0, kProjectDigits), name.substr(kProjectDigits, kGuidDigits),
                   only_files};
}

std::string ParentOf(std::string_view folder) {
  if (folder.ends_with('\\')) folder.remove_suffix(1);
  return std::string(folder.substr(0, folder.rfind('\\') + 1));
}

// The folders in which folders of items are.
class ParentFolders {
 public:
  ParentFolders(Session& session, std::string_view catalogue) {
    const std::string top = session.Manager().WorkingDirectory();
    Add(top);
    for (const char* name : {sDefaultDirNames::kStudyAreas, sDefaultDirNames::kAnalyses,
                             sDefaultDirNames::kCustLayers}) {
      Add(top + name + "\\");
    }
    AddTree(session.GetProject().drives, top + sDefaultDirNames::kStoreLayers + "\\");
    AddAreas(session, catalogue);
    for (const auto& analysis : AnalysisKind::All(session)) Add(ParentOf(analysis->AnalysisDir()));
  }

  [[nodiscard]] const std::vector<std::string>& Folders() const { return folders_; }

 private:
  // From the text, as the component looks for each of many study areas among all.
  void AddAreas(Session& session, std::string_view catalogue) {
    xml::Document document;
    document.LoadXml(*session.Component().GetServices().platform.xml_parser, catalogue);
    const auto root = document.DocumentElement();
    if (!root) return;
    for (const auto& area : root.Children(tags::kStudyArea)) {
      const Value value = area.GetAttribute(attributes::kDirName);
      const std::string folder = value.IsNull() ? "" : ToText(value);
      Add(ParentOf(folder));
      Add(folder + sDefaultDirNames::kAnalyses + "\\");
    }
  }

  // A store layer's own folder may be at any depth, and once it is deleted nothing names it.
  void AddTree(const os::Drives& drives, const std::string& top) {
    std::vector<std::string> open = {top};
    while (!open.empty()) {
      const std::string folder = open.back();
      open.pop_back();
      Add(folder);
      for (const std::string& name : os::FoldersIn(drives, folder, "")) {
        if (!name.starts_with(kPrefix)) open.push_back(folder + name + "\\");
      }
    }
  }

  void Add(const std::string& folder) {
    if (!folder.empty() && known_.insert(FoldedName(folder)).second) folders_.push_back(folder);
  }

  std::set<std::u32string> known_;
  std::vector<std::string> folders_;
};

std::string Catalogue(Session& session) {
  const auto stored = session.Component().GetServices().registry->Read(
      RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue);
  return stored ? stored->data : "";
}

// Stored text of all items, in which their identifiers are.
std::string StoredItems(Session& session, std::string text) {
  for (const Value& value : session.GetProject().values) {
    if (value.IsText()) text += ToText(value);
  }
  return text;
}

WaitingFolder::Item ItemOf(const PlaceName& name, Session& session, std::string_view stored) {
  using Item = WaitingFolder::Item;
  if (name.project != DigitsOf(session.File())) return Item::kOfOtherProject;
  const bool unknown = name.guid.find_first_not_of('0') == std::string_view::npos;
  return unknown || stored.find(GuidOf(name.guid)) != stored.npos ? Item::kListed : Item::kGone;
}

void RemovePlace(Session& session, const WaitingFolder& waiting) {
  guard::Skipping(nullptr,
                  [&] { RemoveEmptyFolder(session.Component().Files(), waiting.place + "\\"); });
}

// Answers what was done, for people.
std::string PutBack(Session& session, const std::string& inside, const WaitingFolder& waiting) {
  os::MoveFolder(session.GetProject().drives, inside, waiting.folder);
  RemovePlace(session, waiting);
  return fmt::format("The folder {} is back in its place: a deletion that was ended had moved it.",
                     waiting.folder);
}

std::string Settle(Session& session, const WaitingFolder& waiting) {
  const std::string inside =
      waiting.place + "\\" + waiting.folder.substr(ParentOf(waiting.folder).size());
  if (waiting.item == WaitingFolder::Item::kListed) return PutBack(session, inside, waiting);
  const std::string path = inside + (waiting.only_files ? "" : "\\");
  if (!DeleteFolderTree(session.Component().Files(), path)) {
    return PutBack(session, inside, waiting);
  }
  RemovePlace(session, waiting);
  return fmt::format("Deleted the folder {}, as a deletion that was ended had begun to do.",
                     waiting.folder);
}

std::string Advice(const WaitingFolder& waiting) {
  switch (waiting.item) {
    case WaitingFolder::Item::kListed:
      return "The next change moves it back to its place; 'kvdm project save' does that.";
    case WaitingFolder::Item::kGone:
      return "Its item is deleted. The next change deletes it too; 'kvdm project save' does that.";
    case WaitingFolder::Item::kOfOtherProject:
      break;
  }
  return "Another project's next change looks after it. If there is none, move it back, or delete "
         "it.";
}

void Expect(Session& session, const Deletion& deletion) {
  const auto& [item, guid, folder, perform] = deletion;
  try {
    session.Component().Files().Expect(folder, NameOfPlace(session.File(), guid, folder));
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::kRefused,
                  fmt::format("The folder {} can't be looked for: {}. Nothing was deleted.", folder,
                              error.code().message()));
  }
}

// Undoes what was done to the folder, and says so where that fails.
void PutBackOrTell(SettingAsideFiles& files, const std::exception& why) {
  files.PutBack();
  if (files.Place().empty()) return;
  throw Failure(ExitCode::kRefused,
                fmt::format("{} The folder is in {} now and could not be put back.", why.what(),
                            files.Place()));
}

}  // namespace

bool DeleteAndSave(Session& session, const Deletion& deletion) {
  SettingAsideFiles& files = session.Component().Files();
  Expect(session, deletion);
  try {
    RequireDeleted(deletion.perform());
    session.Save();
  } catch (const std::exception& why) {
    PutBackOrTell(files, why);
    throw;
  }
  return files.Empty();
}

std::string DeleteWithFolder(Session& session, const Deletion& deletion) {
  SettingAsideFiles& files = session.Component().Files();
  const auto& [item, guid, folder, perform] = deletion;
  if (DeleteAndSave(session, deletion)) {
    return fmt::format("Deleted the {} and its folder {}.", item, folder);
  }
  if (!files.Place().empty()) {
    return fmt::format("Deleted the {}. What is left of its folder {} is in {}.", item, folder,
                       files.Place());
  }
  if (!files.WasThere()) {
    return fmt::format("Deleted the {}. Its folder {} was not found, so no files were deleted.",
                       item, folder);
  }
  return fmt::format("Deleted the {}. Its folder {} is still there.", item, folder);
}

std::vector<WaitingFolder> WaitingFolders(Session& session) {
  const os::Drives& drives = session.GetProject().drives;
  const std::string catalogue = Catalogue(session);
  const ParentFolders around(session, catalogue);
  const std::string stored = StoredItems(session, catalogue);
  std::vector<WaitingFolder> waiting;
  for (const std::string& parent : around.Folders()) {
    for (const std::string& name : os::FoldersIn(drives, parent, kPrefix)) {
      const auto parsed = ParsePlaceName(name);
      if (!parsed) continue;
      const auto inside = os::FoldersIn(drives, parent + name, "");
      if (inside.size() > 1) continue;  // Not made by kvdm.
      waiting.push_back({parent + name, inside.empty() ? "" : parent + inside.front(),
                         ItemOf(*parsed, session, stored), parsed->only_files});
    }
  }
  return waiting;
}

void TellOfWaitingFolders(Session& session) try {
  for (const WaitingFolder& waiting : WaitingFolders(session)) {
    if (waiting.folder.empty()) continue;
    Output::Tell(
        fmt::format("kvdm: the folder {} waits in {}, where a deletion that was ended had "
                    "moved it. {}",
                    waiting.folder, waiting.place, Advice(waiting)));
  }
} catch (const std::exception& error) {
  Output::Tell(
      fmt::format("kvdm: whether folders wait to be deleted can't be told: {}", error.what()));
}

void SettleWaitingFolders(Session& session) {
  std::vector<WaitingFolder> all;
  guard::Skipping(nullptr, [&] { all = WaitingFolders(session); });
  for (const WaitingFolder& waiting : all) {
    if (waiting.item == WaitingFolder::Item::kOfOtherProject) continue;
    if (waiting.folder.empty()) {
      RemovePlace(session, waiting);
    } else {
      guard::Skipping(nullptr, [&] { Output::Tell("kvdm: " + Settle(session, waiting)); });
    }
  }
}

}  // namespace kvdm
