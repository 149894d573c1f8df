// The world in which the component is observed from outside, and all that its tests may know of it.
//
// The part that differs with the build of the component is in memory_world.cpp; the tests of
// another build have another file in its place.
#pragma once

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/datamanager/data_manager.h>
#include <kvdm/datamanager/unknown.h>
#include <kvdm/platform/host.h>
#include <kvdm/platform/value.h>

namespace kvdm::conformance {

// The world's clock stands still here.
inline constexpr char kNow[] = "11/15/2026 7:35:30 AM";

// The `number`th identifier that is generated in a world, counted from 1 to 9.
std::string Guid(int number);

struct Message {
  std::string text;
  std::string caption;
  int style = 0;  // 48: with the exclamation icon; 0: plain
  bool operator==(const Message&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Message& message);

// The services around one data manager. Drives C: and D: are empty; the system is on C:. The
// registry is empty, the host has two property sets without properties.
class World {
 public:
  World();
  virtual ~World();
  World(const World&) = delete;
  World& operator=(const World&) = delete;

  // The component.

  // A new object of the class "KVDM." + `class_name`, bound to nothing.
  std::shared_ptr<Unknown> New(std::string_view class_name);
  template <class Interface>
  std::shared_ptr<Interface> New(std::string_view class_name) {
    return Query<Interface>(New(class_name));
  }
  // The data manager; created by the first call.
  std::shared_ptr<IKVDataManager> Manager();
  // Initialises the data manager by its host.
  void Initialize();

  // The host.
  std::shared_ptr<Host> GetHost();
  void SetSetting(std::string_view name, const Value& value);
  void SetState(std::string_view name, const Value& value);
  Value State(std::string_view name);
  // How often the component has read a property of the current state.
  int StateReads();
  // The host loses its current-state property set.
  void LoseState();

  // The documents, inside their root elements and without line ends after the root.

  // Restores `content` as that of KVDATACOLLECTION, after a declaration.
  void Load(std::string_view content);
  void LoadText(const Value& value);
  // What Save writes.
  std::string SavedText();
  // The content of KVDATACOLLECTION in what Save writes.
  std::string Metadata();
  // The catalogue in the registry, as one more Flush writes it.
  std::string StudyAreas();
  // Stores `content` as that of STUDYAREACOLLECTION, for a data manager that is created later.
  void PutStudyAreas(std::string_view content);

  // The registry: values of the component's key.
  std::optional<std::string> RegistryText(std::string_view name);
  void PutRegistryText(std::string_view name, std::string_view text);
  void PutRegistryNumber(std::string_view name, int number);
  // Writes are ignored.
  void LockRegistry();
  // Writes fail with this run-time error.
  void BreakRegistry(int number);

  // Files and folders.
  void AddFolder(std::string_view path);
  void AddFile(std::string_view path, std::string_view content = {});
  void SetReadOnly(std::string_view path);
  void SetHidden(std::string_view path);
  void Remove(std::string_view path);
  // Nothing can be created or removed directly in the folder any more (run-time error 70).
  void LockFolder(std::string_view path);
  bool FolderExists(std::string_view path);
  // From now on there seems to be a folder of every name in the folder `path`, which ends in "\".
  void Fill(std::string_view path);
  // Whether the folder is there, and hidden.
  bool IsHidden(std::string_view path);
  // All that is in a folder, sorted, folders ending in "\".
  std::vector<std::string> Tree(std::string_view path);
  // From now on the system gives `full` as the full path of the folder `path`.
  void SetFullPath(std::string_view path, std::string_view full);

  // The sibling libraries. Their text with the number n is "Text n".
  void LoseDatasetManager();
  int DatasetManagersInitialized();

  // What was shown.
  std::vector<Message> Messages();
  std::vector<std::string> Texts();

 private:
  struct Services;
  class TestHost;
  static std::shared_ptr<Services> MakeServices();

  std::shared_ptr<Services> services_;
  std::shared_ptr<TestHost> host_;
  std::shared_ptr<IKVDataManager> manager_;
};

// A world with the working directory "D:\Data\" and no study area open.
class OpenWorld : public World {
 public:
  explicit OpenWorld(std::string_view study_areas = {});
};

// A text that is too long for a document: storing it fails with run-time error 7.
std::string TooLong();

// Whether `act` writes the study area catalogue.
template <class Act>
bool Saves(World& world, Act act) {
  world.PutRegistryText("StudyAreaCollection", "not saved");
  act();
  return world.RegistryText("StudyAreaCollection") != "not saved";
}

}  // namespace kvdm::conformance
