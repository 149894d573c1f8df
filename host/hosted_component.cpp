#include "host/hosted_component.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include <kvdm/platform/document_tree.h>
#include <kvdm/platform/portable/variant_list.h>

#include "datamanager/kv_data_manager.h"
#include "host/os.h"
#include "platform/xml/document.h"
#include "platform/xml/limits.h"
#include "platform/xml/pieces.h"
#include "platform/xml/xml_input.h"
#include "safety/rebase.h"
#include "util/names.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

Platform OnFiles(Platform platform, std::shared_ptr<FileSystem> files) {
  platform.files = std::move(files);
  return platform;
}

std::string Over(std::size_t limit, std::string_view of) {
  return fmt::format("has more than {} {}", limit, of);
}

// Remembers the first limit that a document is over.
class LimitFinder : public XmlHandler {
 public:
  bool StartElement(std::string_view tag, Attributes attributes) override {
    deepest_ = std::max(deepest_, ++depth_);
    Require(tag.size(), xml::kMaxNameBytes, "bytes in one tag");
    for (const auto& [name, value] : attributes) {
      Require(name.size(), xml::kMaxNameBytes, "bytes in the name of one attribute");
      Require(value.size(), xml::kMaxValueBytes, "bytes in one attribute");
    }
    text_ = 0;
    return problem_.empty();
  }
  bool EndElement() override {
    --depth_;
    text_ = 0;
    return true;
  }
  // Texts come in pieces.
  bool Characters(std::string_view text) override {
    Require(text_ += text.size(), xml::kMaxValueBytes, "bytes in one text");
    return problem_.empty();
  }
  bool Comment(std::string_view) override { return EndsText(); }
  bool Instruction(std::string_view, std::string_view) override { return EndsText(); }

  [[nodiscard]] const std::string& Problem() const { return problem_; }
  // Parsers keep the limit of depth themselves, and go no further.
  [[nodiscard]] bool WasAsDeepAsMayBe() const { return deepest_ >= xml::kMaxDepth; }

 private:
  bool EndsText() {
    text_ = 0;
    return true;
  }

  void Require(std::size_t count, std::size_t limit, std::string_view what) {
    if (count <= limit || !problem_.empty()) return;
    problem_ = Over(limit, what);
  }

  std::size_t depth_ = 0;
  std::size_t deepest_ = 0;
  std::size_t text_ = 0;
  std::string problem_;
};

std::string Problem(XmlParser& parser, std::string_view text) {
  if (text.size() > xml::kMaxInputBytes) return Over(xml::kMaxInputBytes, "bytes");
  if (!HasAttributesWithin(text, xml::kMaxAttributes)) {
    return Over(xml::kMaxAttributes, "attributes at one element");
  }
  // Not from the parser: some judge a text before they report any of it.
  LimitFinder finder;
  ReportPieces(WithLineFeeds(text), finder);
  if (!finder.Problem().empty()) return finder.Problem();
  if (xml::IsWellFormed(parser, text)) return Over(xml::kMaxDocumentBytes, "bytes");
  if (finder.WasAsDeepAsMayBe()) return Over(xml::kMaxDepth, "elements within each other");
  return "is not well-formed XML";
}

// Nothing when that can't be told.
std::optional<bool> HasFolder(const os::Drives& drives, std::string_view path) {
  try {
    return !path.empty() && os::FindFolder(drives, path).has_value();
  } catch (const std::system_error&) {
    return std::nullopt;
  }
}

}  // namespace

std::string DocumentProblem(XmlParser& parser, std::string_view what, std::string_view text) {
  if (xml::Document().LoadXml(parser, text)) return "";
  return fmt::format("{} {}.", what, Problem(parser, text));
}

HostedComponent::HostedComponent(const Project& project, Access access, Output& out)
    : services_(MakeServices(project.drives, access, out)),
      guarded_files_(std::make_shared<ReadOnlyFiles>(services_.platform.files)),
      files_(std::make_shared<WatchedFiles>(guarded_files_)),
      state_(std::make_shared<PropertySetMap>(project.state)),
      settings_(std::make_shared<PropertySetMap>(project.settings)),
      host_(std::make_shared<PropertiesHost>(state_, settings_)),
      manager_(std::make_shared<KVDataManager>(OnFiles(services_.platform, files_))) {
  services_.platform.files = guarded_files_;
  working_directory_was_there_ =
      HasFolder(project.drives, ToText(settings_->GetProperty(kWorkingDirectorySetting)));
  if (access == Access::kMake) guarded_files_->AllowChanges();
  manager_->DMInitialize(host_);
  if (access != Access::kRead) guarded_files_->AllowChanges();
  // Only now: a working directory that was missing starts with fresh metadata.
  if (!project.values.empty()) Load(project.values, out);
}

void HostedComponent::Load(const std::vector<Value>& values, Output& out) {
  const Value& document = values.front();
  const std::string problem = document.IsText()
                                  ? DocumentProblem(*services_.platform.xml_parser,
                                                    "Its metadata document", ToText(document))
                                  : "Its first value is no metadata document.";
  if (!problem.empty()) throw Failure(ExitCode::kUnreadable, problem);
  // The component says nothing of a failure, and would save what it has instead.
  const std::string cause =
      out.CauseIn([&] { manager_->Load(std::make_shared<VariantList>(values)); });
  if (!cause.empty()) {
    throw Failure(ExitCode::kUnreadable, fmt::format("It could not be loaded{}.", cause));
  }
}

IKVDataManager& HostedComponent::Manager() { return *manager_; }

std::uint64_t HostedComponent::Changes() const { return manager_->Changes(); }

AreaRegistry& HostedComponent::RegisteredItems() { return manager_->Areas(); }

void HostedComponent::OnMadeFolder(std::function<void(std::string_view)> note) {
  files_->SetNote(std::move(note));
}

std::string HostedComponent::WorkingDirectoryProblem() {
  const std::string folder = Manager().WorkingDirectory();
  const bool was_there = working_directory_was_there_.value_or(false);
  if (was_there && !folder.empty() && services_.platform.files->FolderExists(folder)) return "";
  return fmt::format(
             "The working directory {} can't be used: was it moved or deleted, is there a file in "
             "its "
             "place, or is its disk missing?",
             ToText(settings_->GetProperty(kWorkingDirectorySetting))) +
         way_out_;
}

void HostedComponent::RequireWorkingDirectory() {
  const std::string problem = WorkingDirectoryProblem();
  if (!problem.empty()) throw Failure(ExitCode::kRefused, problem);
}

void HostedComponent::RequireRegistry() const {
  if (const auto& unread = services_.registry->Unread()) {
    throw Failure(ExitCode::kUnreadable, RegistrySentence(*unread));
  }
}

std::string HostedComponent::CatalogueProblem() const {
  XmlParser& parser = *services_.platform.xml_parser;
  const std::string text = ToText(ReadRegistryString(
      *services_.registry, RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue));
  if (text.empty()) return "";
  const std::string problem =
      DocumentProblem(parser, fmt::format("The list of study areas in {}", RegistryPlace()), text);
  if (problem.empty()) return "";
  if (xml::IsWellFormed(parser, text)) {
    return problem + " It can be neither shown nor changed. Put a copy from a backup in its place.";
  }
  return problem +
         " 'kvdm doctor --fix catalogue.unparsable' puts the newest good one that was kept in its "
         "place, 'kvdm project save' starts a new one; its text stays in the history of the "
         "registry.";
}

void HostedComponent::RequireRegistryForStudyArea() {
  if (!CurrentStudyArea().empty()) RequireRegistry();
}

std::vector<KeptValue> HostedComponent::KeptStudyAreas() const {
  try {
    return services_.registry->Kept(RegistryRoot::kLocalMachine, kRegistryKey,
                                    kStudyAreaCollectionValue);
  } catch (const RuntimeError&) {
    return {};  // The registry that is watched knows why.
  }
}

std::string HostedComponent::State(std::string_view name) {
  const Value value = state_->GetProperty(name);
  return value.IsText() ? ToText(value) : "";
}

void HostedComponent::SetState(std::string_view name, std::string_view text) {
  state_->SetProperty(name, text);
}

std::string HostedComponent::CurrentStudyArea() {
  return ToText(state_->GetProperty(kStudyAreaNameProperty));
}

std::string HostedComponent::CurrentStudyAreaGuid() { return State(kOpenAreaGuid); }

void HostedComponent::SetCurrentStudyArea(std::string_view name, std::string_view guid) {
  SetState(kStudyAreaNameProperty, name);
  SetState(kOpenAreaGuid, guid);
}

std::vector<Value> HostedComponent::Saved() {
  const auto stream = std::make_shared<VariantList>();
  manager_->Save(stream);
  if (!stream->Values().empty()) return stream->Values();
  throw Failure(ExitCode::kRefused, "The component could not save its metadata.");
}

void HostedComponent::EditMetadata(const std::function<void(DocumentNode& root)>& edit,
                                   Output& out) {
  XmlParser& parser = *services_.platform.xml_parser;
  std::vector<Value> values = Saved();
  auto tree = ReadDocumentTree(parser, ToText(values.front()));
  DocumentNode* root = tree ? tree->Root() : nullptr;
  if (root == nullptr) throw Failure(ExitCode::kRefused, "The component saved no document.");
  edit(*root);
  values.front() = DocumentTreeText(parser, *tree);
  Load(values, out);
}

void HostedComponent::SaveStateTo(Project& project) const { project.state = state_->All(); }

void HostedComponent::SaveTo(Project& project) {
  const auto written = Saved();
  services_.registry->RethrowFromNote();
  if (const auto& refused = services_.registry->Refused()) {
    throw Failure(ExitCode::kRefused,
                  fmt::format("The change was not saved. {}", RegistrySentence(*refused)));
  }
  // Values after those that the component writes are another program's, and stay.
  project.values.resize(std::max(project.values.size(), written.size()));
  std::ranges::copy(written, project.values.begin());
  project.settings = settings_->All();
  SaveStateTo(project);
}

}  // namespace kvdm
