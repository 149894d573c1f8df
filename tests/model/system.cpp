#include "tests/model/system.h"

#include <algorithm>

#include <kvdm/datamanager/component.h>
#include <kvdm/platform/portable/variant_list.h>

namespace kvdm::model {
namespace {

constexpr char kKey[] = "Software\\Velk\\Kelvaro";
constexpr char kCatalogue[] = "StudyAreaCollection";

// Remembers what is written, then fails, which ends a save before it flushes.
class FailingStream : public VariantList {
 public:
  void Write(const Value& value) override {
    VariantList::Write(value);
    throw RuntimeError(kPermissionDenied);
  }
};

}  // namespace

void System::Start(const std::string& directory) {
  kept_.clear();
  host_->Settings()->SetProperty("VELKKVDirectory", directory);
  manager_ = Query<IKVDataManager>(CreateObject(kDataManagerClass, platform_));
  Query<IKVDMInitialize>(manager_)->DMInitialize(host_);
}

void System::Restart(const std::string& directory) {
  const auto stream = std::make_shared<VariantList>();
  Query<IPersistVariant>(manager_)->Save(stream);
  Start(directory);
  Query<IPersistVariant>(manager_)->Load(stream);
}

void System::Load(const std::string& text) {
  const auto stream = std::make_shared<VariantList>();
  stream->Write(text);
  Query<IPersistVariant>(manager_)->Load(stream);
}

void System::PutCatalogue(const std::string& text) {
  platform_.registry->WriteText(RegistryRoot::kLocalMachine, kKey, kCatalogue, text);
}

bool System::WriteFile(const std::string& path) {
  const auto folder = path.substr(0, path.rfind('\\') + 1);
  if (!Disk().FolderExists(folder) || Disk().FolderExists(path)) return false;
  Disk().WriteFile(path, "");
  return true;
}

std::string System::MetadataText() {
  const auto stream = std::make_shared<FailingStream>();
  Query<IPersistVariant>(manager_)->Save(stream);
  return ToText(stream->Read());
}

std::string System::RegistryText() {
  const auto value = platform_.registry->Read(RegistryRoot::kLocalMachine, kKey, kCatalogue);
  return value ? value->data : "";
}

std::string System::CurrentStudyArea() {
  return ToText(host_->CurrentState()->GetProperty("Study Area Name"));
}

void System::SetCurrentStudyArea(const std::string& name) {
  host_->CurrentState()->SetProperty("Study Area Name", name);
}

std::vector<std::string> System::TakeMessages() {
  std::vector<std::string> texts;
  for (const auto& message : memory_.box->Messages()) texts.push_back(message.text);
  memory_.box->Clear();
  return texts;
}

std::vector<std::string> MemorySystem::Tree() {
  std::vector<std::string> tree;
  for (const std::string drive : {"C:\\", "D:\\"}) {
    for (const auto& path : Memory().files->Tree(drive)) tree.push_back(drive + path);
  }
  std::ranges::sort(tree);
  return tree;
}

}  // namespace kvdm::model
