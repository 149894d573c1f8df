#include "host/waiting_folders.h"

#include <fmt/format.h>
#include <zlib.h>

#include <algorithm>
#include <set>
#include <system_error>
#include <vector>

#include <kvdm/platform/document_tree.h>

#include "host/kinds.h"
#include "host/os.h"
#include "platform/file_names.h"
#include "util/guard.h"
#include "util/names.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

constexpr std::string_view kPrefix = ".kvdm-deleted-";

struct WaitingFolder {
  std::string place;   // full paths
  std::string folder;  // where it was
  std::string inside;  // where it is
  bool is_ours = false;
};

// A place has 8 digits for the project, 32 of the item's identifier and 8 random ones in its name,
// and "-files" when only the files of the folder were to go.
bool IsPlaceName(std::string_view name) {
  constexpr std::size_t kDigits = 48;
  name.remove_prefix(kPrefix.size());
  const auto digits = name.find_first_not_of("0123456789ABCDEFabcdef");
  return std::min(digits, name.size()) == kDigits &&
         (name.size() == kDigits || name.substr(kDigits) == "-files");
}

std::string DigitsOf(const std::filesystem::path& project) {
  const std::string path = os::ToText(project);
  const auto* bytes = reinterpret_cast<const Bytef*>(path.data());
  return fmt::format("{:08X}", crc32_z(0, bytes, path.size()));
}

std::string ParentOf(std::string_view folder) {
  if (folder.ends_with('\\')) folder.remove_suffix(1);
  return std::string(folder.substr(0, folder.rfind('\\') + 1));
}

// The folders in which folders of items are.
class ParentFolders {
 public:
  explicit ParentFolders(Session& session) {
    const std::string top = session.Manager().WorkingDirectory();
    Add(top);
    for (const char* name : {sDefaultDirNames::kStudyAreas, sDefaultDirNames::kAnalyses,
                             sDefaultDirNames::kCustLayers}) {
      Add(top + name + "\\");
    }
    AddTree(session.GetProject().drives, top + sDefaultDirNames::kStoreLayers + "\\");
    AddAreas(session);
    for (const auto& analysis : AnalysisKind::All(session)) Add(ParentOf(analysis->AnalysisDir()));
  }

  [[nodiscard]] const std::vector<std::string>& Folders() const { return folders_; }

 private:
  // From the text, as the component looks for each of many study areas among all.
  void AddAreas(Session& session) {
    const Platform& platform = session.Component().GetServices().platform;
    const std::string text = ToText(ReadRegistryString(
        *platform.registry, RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue));
    const auto tree = ReadDocumentTree(*platform.xml_parser, text);
    if (!tree || tree->Root() == nullptr) return;
    for (const DocumentNode& area : tree->Root()->children) {
      const std::string folder = area.Attribute(attributes::kDirName);
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

std::vector<WaitingFolder> WaitingFolders(Session& session) {
  const os::Drives& drives = session.GetProject().drives;
  const std::string digits = DigitsOf(session.File());
  const ParentFolders around(session);
  std::vector<WaitingFolder> waiting;
  for (const std::string& parent : around.Folders()) {
    for (const std::string& name : os::FoldersIn(drives, parent, kPrefix)) {
      if (!IsPlaceName(name)) continue;
      const std::string place = parent + name;
      const auto inside = os::FoldersIn(drives, place, "");
      if (inside.size() != 1) continue;
      waiting.push_back({place, parent + inside.front(), place + "\\" + inside.front(),
                         name.substr(kPrefix.size(), digits.size()) == digits});
    }
  }
  return waiting;
}

}  // namespace

void TellOfWaitingFolders(Session& session) try {
  for (const WaitingFolder& waiting : WaitingFolders(session)) {
    Output::Tell(fmt::format(
        "kvdm: the folder {} waits in {}, where a deletion that was ended had moved it. {}",
        waiting.folder, waiting.place,
        waiting.is_ours
            ? "The next change moves it back to its place; 'kvdm project save' does that."
            : "Another project's next change looks after it. If there is none, move it "
              "back, or delete it."));
  }
} catch (const std::exception& error) {
  Output::Tell(
      fmt::format("kvdm: whether folders wait to be deleted can't be told: {}", error.what()));
}

void BringBackWaitingFolders(Session& session) {
  const os::Drives& drives = session.GetProject().drives;
  std::vector<WaitingFolder> all;
  guard::Skipping(nullptr, [&] { all = WaitingFolders(session); });
  for (const WaitingFolder& waiting : all) {
    if (!waiting.is_ours) continue;
    guard::Skipping(nullptr, [&] {
      os::MoveFolder(drives, waiting.inside, waiting.folder);
      if (const auto place = os::NativePlace(drives, waiting.place)) os::RemoveFolder(*place);
      Output::Tell(
          fmt::format("kvdm: The folder {} is back in its place: a deletion that was "
                      "ended had moved it.",
                      waiting.folder));
    });
  }
}

}  // namespace kvdm
