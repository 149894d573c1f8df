// A world whose platform fails at a chosen call, and whose documents hold
// a whole item of each kind and two damaged ones.
#pragma once

#include <memory>
#include <string>

#include "datamanager/kv_data_manager.h"
#include "platform/memory/failing_services.h"
#include "platform/memory/memory_platform.h"

namespace kvdm {

// Longer than any value may be.
const std::string& TooLong();

struct PolicyWorld {
  // With `box_too` the message box fails with the platform.
  explicit PolicyWorld(bool box_too = false);

  // From here on the nth call of the platform fails; none for 0.
  void FailAt(int n);
  // Whether that call was reached.
  [[nodiscard]] bool Failed() const { return counter->calls >= counter->fail_at; }
  // Whether both documents can be saved and read again.
  [[nodiscard]] bool DocumentsAreSound();
  // Sets the working directory of another data manager, whose file system raises errors.
  void SetDirectoryOnBrokenDisk();
  // Flushes another data manager whose registry raises an error.
  bool FlushIntoBrokenRegistry();
  // Leaves the data manager without a metadata document.
  void LoseMetadata();

  // A value set and a layer's metadata that fail with the platform.
  [[nodiscard]] std::shared_ptr<NamedValueSet> Entries() const;
  [[nodiscard]] std::shared_ptr<LayerMetadata> Metadata(const char* layer_type) const;

  MemoryPlatform memory;
  std::shared_ptr<FailureCounter> counter = std::make_shared<FailureCounter>();
  Platform platform;
  std::shared_ptr<Host> host;
  std::shared_ptr<VariantStream> stream;
  std::shared_ptr<KVDataManager> manager;

  std::shared_ptr<IKVStudyAreaCollection> study_areas;
  std::shared_ptr<IKVAnalysisCollection> analyses;
  std::shared_ptr<IKVStoreLayerCollection> store_layers;
  std::shared_ptr<IKVCustLayerCollection> cust_layers;
  std::shared_ptr<IKVDataCollection> data_items;
  std::shared_ptr<IKVTablesManager> tables;

  // "Whole" has everything, "bare" nothing but a name, "nameless" nothing but an identifier.
  std::shared_ptr<IKVStudyArea> whole_area, bare_area, nameless_area;
  std::shared_ptr<IKVAnalysis> whole_analysis, bare_analysis, nameless_analysis;
  std::shared_ptr<IKVStoreLayer> whole_store, bare_store, nameless_store;
  std::shared_ptr<IKVCustLayer> whole_cust, bare_cust, nameless_cust;
  std::shared_ptr<IKVDataItem> whole_item, bare_item, nameless_item;
};

[[nodiscard]] std::string ResultText(bool result);
[[nodiscard]] std::string ResultText(int result);
[[nodiscard]] std::string ResultText(const std::string& result);
[[nodiscard]] std::string ResultText(const Value& result);
[[nodiscard]] std::string ResultText(const NameListRef& result);
template <class Object>
[[nodiscard]] std::string ResultText(const std::shared_ptr<Object>& result) {
  return result ? "object" : "Nothing";
}

}  // namespace kvdm
