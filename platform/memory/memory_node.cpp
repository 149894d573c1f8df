#include "platform/memory/memory_node.h"

#include "platform/file_attributes.h"
#include "platform/file_names.h"

namespace kvdm {

bool MemoryNode::IsSeen() const {
  return (attributes & (kHiddenAttribute | kSystemAttribute)) == 0;
}

std::vector<std::string> MemoryNode::Names() const {
  std::vector<std::string> names;
  names.reserve(children.size());
  for (const auto& [name, node] : children) names.push_back(name);
  SortNames(names);
  return names;
}

std::optional<std::string> MemoryNode::Find(std::string_view name) const {
  if (children.contains(name)) return std::string(name);
  return FindName(Names(), name);
}

}  // namespace kvdm
