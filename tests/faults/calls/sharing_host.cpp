// A program that shares the list of study areas with others: makes, changes and deletes study areas
// drawn from all, and says what it did once the registry has it.
//
//   sharing_host WORKING-DIRECTORY NAME SEED COUNT
//
// Prints a line for each change that is done, its parts parted by TAB:
//
//   create GUID NAME
//   set GUID FIELD OLD NEW      FIELD is name, comments or a property; each NEW is another one
//   delete GUID FIELD=VALUE...  what was deleted, as it was known here
//   note LINE                   of the log
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/datamanager/component.h>
#include <kvdm/datamanager/data_manager.h>
#include <kvdm/datamanager/study_areas.h>
#include <kvdm/platform/portable/properties_host.h>
#include <kvdm/platform/posix/posix_platform.h>

namespace {

using kvdm::ToText;

constexpr int kSharedEvery = 5;       // so often all programs make one of the same name
constexpr char kShared[] = "shared";  // how such names begin; these are not renamed or deleted
constexpr const char* kProperties[] = {"P0", "P1", "P2"};

class SharingHost {
 public:
  SharingHost(std::string folder, std::string name, unsigned seed)
      : folder_(std::move(folder)), name_(std::move(name)), random_(seed) {
    kvdm::PosixOptions options;
    options.log = [](std::string_view line) { std::cout << "note\t" << line << '\n'; };
    options.message_box = [](std::string_view text, auto...) { std::cerr << text << '\n'; };
    platform_ = kvdm::MakePosixPlatform(options);
  }

  void Step(int number) {
    if (!manager_ || Draw(4) == 0) Start();
    if (number % kSharedEvery == 0) return Create(kShared + std::to_string(number));
    switch (Draw(6)) {
      case 0:
      case 1:
        return Create(NewText());
      case 2:
        return Delete();
      default:
        return Change();
    }
  }

 private:
  std::size_t Draw(std::size_t count) { return random_() % count; }
  std::string NewText() { return name_ + "-" + std::to_string(++texts_); }
  std::shared_ptr<kvdm::IKVStudyAreaCollection> Areas() { return manager_->StudyAreaCollection(); }

  void Start() {
    const auto host = std::make_shared<kvdm::PropertiesHost>();
    host->Settings()->SetProperty("VELKKVDirectory", folder_);
    const auto component = kvdm::CreateObject(kvdm::kDataManagerClass, platform_);
    kvdm::Query<kvdm::IKVDMInitialize>(component)->DMInitialize(host);
    manager_ = kvdm::Query<kvdm::IKVDataManager>(component);
  }

  // Flushes until the registry has it; each write holds all that those before it could not write.
  void Say(const std::string& line) {
    do {
      manager_->Flush();
    } while (platform_.registry->Condition().state != kvdm::RegistryState::kReady);
    std::cout << line << '\n';
  }

  std::shared_ptr<kvdm::IKVStudyArea> Any(bool with_shared) {
    std::vector<std::shared_ptr<kvdm::IKVStudyArea>> areas;
    const auto guids = Areas()->StudyAreasGUIDsList();
    for (const kvdm::Value& guid : *guids) {
      const auto area = Areas()->GetStudyAreaByGUID(ToText(guid));
      if (with_shared || !area->Name().starts_with(kShared)) areas.push_back(area);
    }
    return areas.empty() ? nullptr : areas[Draw(areas.size())];
  }

  void Create(const std::string& name) {
    if (Areas()->StudyAreaExists(name)) return;
    Areas()->CreateStudyArea(name);
    Say("create\t" + Areas()->GetStudyArea(name)->GUID() + '\t' + name);
  }

  static std::string Property(const std::shared_ptr<kvdm::IKVStudyArea>& area, const char* key) {
    const kvdm::Value value = kvdm::Query<kvdm::IKVPropertySet>(area)->GetProperty(key);
    return value.IsNull() ? std::string() : ToText(value);
  }

  void Change() {
    const std::size_t field = Draw(5);
    const auto area = Any(field != 0);
    if (!area) return;
    const std::string text = NewText();
    const std::string begin = "set\t" + area->GUID() + '\t';
    if (field == 0) {
      const std::string old = area->Name();
      area->SetName(text);
      return Say(begin + "name\t" + old + '\t' + text);
    }
    if (field == 1) {
      const std::string old = area->Comments();
      area->SetComments(text);
      return Say(begin + "comments\t" + old + '\t' + text);
    }
    const char* key = kProperties[field - 2];
    const std::string old = Property(area, key);
    kvdm::Query<kvdm::IKVPropertySet>(area)->SetProperty(key, text);
    Say(begin + key + '\t' + old + '\t' + text);
  }

  void Delete() {
    const auto area = Any(false);
    if (!area) return;
    std::string line =
        "delete\t" + area->GUID() + "\tname=" + area->Name() + "\tcomments=" + area->Comments();
    for (const char* key : kProperties) line += '\t' + (key + ('=' + Property(area, key)));
    Areas()->DeleteStudyArea(area->Name());
    Say(line);
  }

  std::string folder_;
  std::string name_;
  std::mt19937 random_;
  int texts_ = 0;
  kvdm::Platform platform_;
  std::shared_ptr<kvdm::IKVDataManager> manager_;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) return std::cerr << "usage: sharing_host FOLDER NAME SEED COUNT\n", 2;
  SharingHost host(argv[1], argv[2], static_cast<unsigned>(std::stoul(argv[3])));
  const int count = std::stoi(argv[4]);
  for (int number = 1; number <= count; ++number) host.Step(number);
  return std::cout.flush() ? 0 : 1;
}
