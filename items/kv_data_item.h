// One data item, over its DATAITEM element.
#pragma once

#include <kvdm/datamanager/data_items.h>

#include "items/element_view.h"

namespace kvdm {

class KVDataItem final : public ParameterizedItem<IKVDataItem> {
 public:
  KVDataItem();

  std::string Name() override;
  void SetName(std::string_view name) override;
  std::string LayerFile() override;
  void SetLayerFile(std::string_view path) override;
  std::string AdditionalInfo() override;
  void SetAdditionalInfo(std::string_view info) override;
  std::string GUID() override;

  // Bound by the collection after the data manager and before the element; its folder completes
  // relative paths.
  void AttachOwner(std::shared_ptr<IKVDataCollection> owner) { owner_ = std::move(owner); }

 private:
  std::shared_ptr<IKVDataCollection> owner_;
};

}  // namespace kvdm
