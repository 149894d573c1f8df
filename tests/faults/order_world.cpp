#include "tests/faults/order_world.h"

#include <utility>

#include <kvdm/platform/portable/variant_list.h>

#include "platform/memory/failing_services.h"
#include "platform/memory/memory_platform.h"
#include "platform/portable/value_set.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

class CallbackBox final : public FailingMessageBox {
 public:
  CallbackBox(std::shared_ptr<MessageBox> box, std::shared_ptr<FailureCounter> counter,
              std::function<void()> act)
      : FailingMessageBox(std::move(box), std::move(counter)), act_(std::move(act)) {}
  void Show(std::string_view text, std::string_view caption, MessageStyle style) override {
    FailingMessageBox::Show(text, caption, style);
    act_();
  }

 private:
  std::function<void()> act_;
};

// Shows in another box, which can be exchanged.
class Forwarding final : public MessageBox {
 public:
  void Show(std::string_view text, std::string_view caption, MessageStyle style) override {
    box->Show(text, caption, style);
  }
  std::shared_ptr<MessageBox> box;
};

}  // namespace

OrderWorld::OrderWorld() : platform(Failing(memory.Bundle(), counter_)) {
  const auto box = std::make_shared<Forwarding>();
  box->box = platform.message_box;
  platform.message_box = box;
  memory.registry->Put(RegistryRoot::kLocalMachine, kRegistryKey, kPresetDataDirectoryValue,
                       RegistryType::kText, R"(D:\Presets)");
  memory.registry->Put(RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue,
                       RegistryType::kText, R"(<STUDYAREACOLLECTION/>)");
  memory.files->AddFile(R"(D:\Presets\PresetData.xml)", "<P/>");
  host = std::make_shared<FailingHost>(properties_, counter_);
  SetSetting(R"(D:\Data)");
  SetCurrent("");
  manager = std::make_shared<KVDataManager>(platform);
  manager->DMInitialize(host);
  areas = manager->StudyAreaCollection();
  counter_->record = &record;
}

void OrderWorld::SetSetting(std::string_view working_directory) {
  properties_->Settings()->SetProperty("VELKKVDirectory", working_directory);
}

void OrderWorld::SetCurrent(std::string_view study_area) {
  properties_->CurrentState()->SetProperty("Study Area Name", study_area);
}

void OrderWorld::DoAt(int n, std::function<void()> act) {
  counter_->calls = 0;
  counter_->fail_at = n;
  counter_->instead = std::move(act);
}

void OrderWorld::ThrowAt(int n, std::int32_t number) {
  DoAt(n, [number] { throw RuntimeError(number); });
}

void OrderWorld::OnMessage(std::function<void()> act) {
  dynamic_cast<Forwarding&>(*platform.message_box).box =
      std::make_shared<CallbackBox>(memory.box, counter_, std::move(act));
}

void OrderWorld::Unrecorded(const std::function<void()>& act) {
  const FailureCounter before = *counter_;
  *counter_ = {};
  act();
  *counter_ = before;
}

void OrderWorld::LoadMetadata(std::string_view text) {
  manager->Load(std::make_shared<VariantList>(std::vector<Value>{text}));
  record.clear();
}

std::shared_ptr<VariantStream> OrderWorld::Stream(std::vector<Value> values) {
  return std::make_shared<FailingVariantStream>(std::make_shared<VariantList>(std::move(values)),
                                                counter_);
}

std::shared_ptr<IKVAnalysis> OrderWorld::Analysis() {
  LoadMetadata(R"(<KVDATACOLLECTION><ANALYSISCOLLECTION><ANALYSIS NAME="_Sales_" GUID="{1}">)"
               R"(<PARAM NAME="a" VALUE="1"/></ANALYSIS></ANALYSISCOLLECTION></KVDATACOLLECTION>)");
  return manager->AnalysisCollection()->GetAnalysis("Sales");
}

std::shared_ptr<IKVStoreLayer> OrderWorld::StoreLayer() {
  LoadMetadata(R"(<KVDATACOLLECTION><STORELAYERCOLLECTION><STORELAYER NAME="_Shops_"/>)"
               R"(</STORELAYERCOLLECTION></KVDATACOLLECTION>)");
  return manager->StoreLayerCollection()->GetStoreLayer("Shops");
}

std::shared_ptr<LayerMetadata> OrderWorld::Metadata(std::string_view layer_type) {
  ValueSet document;
  for (const auto* name : {"IDField", "NameField", "Comments", "GUID"}) {
    document.PutValue("Velk/Kelvaro8/" + std::string(name), "x");
  }
  document.PutValue("Velk/Kelvaro8/LayerType", layer_type);
  document.PutValue("Velk/Kelvaro8/IsInternalData", true);
  document.PutValue("Velk/Kelvaro8/AnalysisParams/b", "2");
  return std::make_shared<FailingLayerMetadata>(std::make_shared<MemoryLayerMetadata>(document),
                                                counter_);
}

}  // namespace kvdm
