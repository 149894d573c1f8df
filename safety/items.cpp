#include "safety/items.h"

#include <algorithm>

namespace kvdm {
namespace {

constexpr std::string_view kItemTags[] = {"STUDYAREA", "ANALYSIS", "CUSTLAYER", "STORELAYER",
                                          "DATAITEM"};

void AddItems(const DocumentNode& parent, std::vector<StoredItem>& items) {
  for (const DocumentNode& child : parent.children) {
    if (std::ranges::find(kItemTags, child.name) != std::end(kItemTags)) {
      items.push_back({parent.name, &child});
    } else {
      AddItems(child, items);
    }
  }
}

}  // namespace

std::string ItemName(const DocumentNode& element) {
  std::string name = element.Attribute("NAME");
  const bool is_wrapped = name.size() > 1 && name.front() == '_' && name.back() == '_';
  const bool is_data = element.name == "DATAITEM";
  return is_wrapped && !is_data ? name.substr(1, name.size() - 2) : name;
}

std::vector<StoredItem> ItemsIn(const DocumentNode& root) {
  std::vector<StoredItem> items;
  AddItems(root, items);
  return items;
}

}  // namespace kvdm
