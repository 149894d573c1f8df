// The component on one platform, as its host and its clients have it.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <kvdm/datamanager/data_manager.h>
#include <kvdm/platform/portable/properties_host.h>

#include "platform/memory/memory_platform.h"
#include "platform/portable/value_set.h"
#include "tests/model/kinds.h"

namespace kvdm::model {

// Identifiers count up, and the clock stands still.
class System {
 public:
  System() = default;
  virtual ~System() = default;
  System(const System&) = delete;
  System& operator=(const System&) = delete;

  // Starts a new data manager with the host's setting `directory`.
  void Start(const std::string& directory);
  void Restart(const std::string& directory);
  void Load(const std::string& text);
  void PutCatalogue(const std::string& text);
  // False when its folder is missing or a folder has the name. A leading dot hides it.
  bool WriteFile(const std::string& path);

  // The document's text, without saving anything.
  [[nodiscard]] std::string MetadataText();
  [[nodiscard]] std::string RegistryText();
  [[nodiscard]] std::string CurrentStudyArea();
  void SetCurrentStudyArea(const std::string& name);
  [[nodiscard]] std::vector<std::string> TakeMessages();
  // All entries of the drives C: and D: as sorted paths; folders end in a backslash.
  [[nodiscard]] virtual std::vector<std::string> Tree() = 0;

  [[nodiscard]] IKVDataManager& Manager() { return *manager_; }
  [[nodiscard]] FileSystem& Disk() { return *platform_.files; }
  [[nodiscard]] std::map<Kind, std::shared_ptr<Unknown>>& Kept() { return kept_; }

  std::shared_ptr<MemoryLayerMetadata> metadata = std::make_shared<MemoryLayerMetadata>();
  std::shared_ptr<NamedValueSet> properties;

 protected:
  void SetPlatform(const Platform& platform) { platform_ = platform; }
  [[nodiscard]] const MemoryPlatform& Memory() const { return memory_; }

 private:
  MemoryPlatform memory_;
  Platform platform_ = memory_.Bundle();
  std::shared_ptr<PropertiesHost> host_ = std::make_shared<PropertiesHost>();
  std::shared_ptr<IKVDataManager> manager_;
  std::map<Kind, std::shared_ptr<Unknown>> kept_;
};

class MemorySystem : public System {
 public:
  std::vector<std::string> Tree() override;
};

}  // namespace kvdm::model
