// A hosted data manager whose calls of services are written down.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <kvdm/platform/portable/properties_host.h>

#include "datamanager/kv_data_manager.h"
#include "platform/memory/failing_services.h"
#include "platform/memory/memory_platform.h"

namespace kvdm {

// The working directory is "D:\Data\", without a current study area; one study area is stored.
// Nothing is recorded yet.
class OrderWorld {
 private:
  // Before the services, which count with it.
  std::shared_ptr<FailureCounter> counter_ = std::make_shared<FailureCounter>();
  std::shared_ptr<PropertiesHost> properties_ = std::make_shared<PropertiesHost>();

 public:
  OrderWorld();

  // What the host answers from here on.
  void SetSetting(std::string_view working_directory);
  void SetCurrent(std::string_view study_area);

  // At the nth call from here on: does something before it goes on, or fails with a run-time error.
  void DoAt(int n, std::function<void()> act);
  void ThrowAt(int n, std::int32_t number);
  // Calls back each time a message is shown.
  void OnMessage(std::function<void()> act);
  // Nothing that `act` calls is recorded or counted.
  void Unrecorded(const std::function<void()>& act);

  void LoadMetadata(std::string_view text);
  // Objects whose calls are recorded: a stream that holds `values`, an analysis with the parameter
  // "a", a store layer, and the metadata of a layer of the type given; "" for one without.
  [[nodiscard]] std::shared_ptr<VariantStream> Stream(std::vector<Value> values);
  [[nodiscard]] std::shared_ptr<IKVAnalysis> Analysis();
  [[nodiscard]] std::shared_ptr<IKVStoreLayer> StoreLayer();
  [[nodiscard]] std::shared_ptr<LayerMetadata> Metadata(std::string_view layer_type);

  std::vector<std::string> record;
  MemoryPlatform memory;
  Platform platform;
  std::shared_ptr<Host> host;
  std::shared_ptr<KVDataManager> manager;
  std::shared_ptr<IKVStudyAreaCollection> areas;
};

}  // namespace kvdm
