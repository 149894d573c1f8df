// The data items, over a DATACOLLECTION element.
#pragma once

#include <kvdm/datamanager/data_items.h>

#include "collections/collection_view.h"

namespace kvdm {

// Reports only with a data manager; without one the failure results come back.
class KVDataCollection final : public Collection<IKVDataCollection> {
 public:
  explicit KVDataCollection(std::shared_ptr<GisCore> gis_core);

  NameListRef DataItemsList() override;
  std::shared_ptr<IKVDataItem> GetDataItem(std::string_view name) override;
  bool CreateDataItem(std::string_view name) override;
  bool DeleteDataItem(std::string_view name) override;
  bool DataItemExists(std::string_view name) override;
  NameListRef DataItemsGUIDsList() override;
  std::shared_ptr<IKVDataItem> GetDataItemByGUID(std::string_view guid) override;
  bool DeleteDataItemByGUID(std::string_view guid) override;
  bool DataItemExistsByGUID(std::string_view guid) override;
  std::string DataItemsDir() override;

 private:
  // The group in which items are listed and deleted; a missing one is reported as `message`.
  xml::Element Group(const char* message) const;
  NameListRef List(const char* attribute);
  bool Delete(const char* attribute, std::string_view key);
  std::shared_ptr<IKVDataItem> View(const xml::Element& element);
};

}  // namespace kvdm
