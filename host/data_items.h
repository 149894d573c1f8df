// The data items, which stand in two places of the project.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <kvdm/datamanager/data_items.h>

#include "host/record.h"
#include "host/session.h"

namespace kvdm {

// "collection" is where new items stand: the component finds them by name. "group" is the
// collection's group of listed items: the component lists them, finds them by identifier and
// deletes them there.
enum class DataPlace { kCollection, kGroup };

struct DataEntry {
  std::string name;
  std::string guid;
  DataPlace place;
  std::shared_ptr<IKVDataItem> item;  // Nothing for one that the component can't reach
};

// Failure kRefused when the component has none.
[[nodiscard]] std::shared_ptr<IKVDataCollection> DataCollection(Session& session);

// The items of the collection, as the project was opened, then those of the group.
[[nodiscard]] std::vector<DataEntry> DataEntries(Session& session);
[[nodiscard]] std::vector<DataEntry> DataEntries(Session& session, DataPlace place);

// The fields of one item in lists.
[[nodiscard]] Record Description(const DataEntry& entry);
[[nodiscard]] std::vector<Record> Descriptions(const std::vector<DataEntry>& entries);

// The one item of a place that `selector` means, by name or "{GUID}". Nothing when there is none;
// Failure kConflict with the candidates when it means several.
[[nodiscard]] std::optional<DataEntry> FindDataEntry(Session& session, DataPlace place,
                                                     const std::string& selector);

// The one item that `selector` means: a "{GUID}" is looked for in the group first, a name in the
// collection first. Failure kNotFound when there is none, kConflict as above.
[[nodiscard]] DataEntry FindDataEntry(Session& session, const std::string& selector);

}  // namespace kvdm
