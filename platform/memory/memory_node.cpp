#include "platform/memory/memory_node.h"

#include "platform/file_names.h"

namespace kvdm {

std::vector<std::string> MemoryNode::Names() const {
  std::vector<std::string> names;
  names.reserve(children.size());
  for (const auto& [name, node] : children) names.push_back(name);
  SortNames(names);
  return names;
}

std::vector<std::string> MemoryNode::SeenNames(bool with_dots) const {
  std::vector<std::string> names = Names();
  std::erase_if(names, [&](const std::string& name) {
    const bool has_attribute =
        (children.at(name)->attributes & (kHiddenAttribute | kSystemAttribute)) != 0;
    return has_attribute || (name.starts_with('.') && !with_dots);
  });
  return names;
}

std::optional<std::string> MemoryNode::Find(std::string_view name, NameFinder find) const {
  if (children.contains(name)) return std::string(name);
  return find(Names(), name);
}

}  // namespace kvdm
