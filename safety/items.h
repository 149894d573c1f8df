// Items as elements of the documents: names, folders and the elements that hold items.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/document_tree.h>

namespace kvdm {

// The name that people give an item: without the underscores around it that most are stored with.
[[nodiscard]] std::string ItemName(const DocumentNode& element);

// An item's element with the tag of the one that it stands in.
struct StoredItem {
  std::string collection;  // such as "ANALYSISCOLLECTION"
  const DocumentNode* element = nullptr;
};

// The items below the root of a document, in their order.
[[nodiscard]] std::vector<StoredItem> ItemsIn(const DocumentNode& root);

}  // namespace kvdm
