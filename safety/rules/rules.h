// The groups of rules, one file a group, and what their repairs have in common.
#pragma once

#include <span>
#include <string>

#include "safety/check.h"

namespace kvdm {

[[nodiscard]] std::span<const Rule> DocumentRules();  // the registry and the documents
[[nodiscard]] std::span<const Rule> IdentityRules();  // identifiers and names
[[nodiscard]] std::span<const Rule> DiskRules();      // the disk against the documents
[[nodiscard]] std::span<const Rule> PathRules();      // stored paths that mislead
[[nodiscard]] std::span<const Rule> NameRules();      // names in paths
[[nodiscard]] std::span<const Rule> PathFormRules();  // how paths are stored
[[nodiscard]] std::span<const Rule> ValueRules();     // parameters, comments, times
[[nodiscard]] std::span<const Rule> FolderRules();    // what belongs to no item
[[nodiscard]] std::span<const Rule> ProjectRules();   // what a project keeps of its own
[[nodiscard]] std::span<const Rule> MetadataRules();  // layers' metadata

// Whether the first of two items is the one that came later: by time of creation, else by place.
[[nodiscard]] bool IsYounger(const Survey& survey, std::size_t a, std::size_t b);

// A new identifier.
[[nodiscard]] std::string NewIdentifier(const Platform& platform);

// Where something that is stored elsewhere is in the present working directory; nothing when it is
// where it is stored, or in neither place.
[[nodiscard]] std::optional<std::string> MovedPath(const Survey& survey, const std::string& path);

// Notes a step, and sets an attribute of an item.
void SetAttributeOf(const SurveyItem& item, std::string_view attribute, const std::string& value,
                    Repair& repair);

// The first of NAME, NAME1, NAME2 ... for which `is_taken` answers False.
template <class IsTaken>
[[nodiscard]] std::string FreeName(const std::string& name, IsTaken is_taken) {
  std::string free = name;
  for (int number = 1; is_taken(free); ++number) free = name + std::to_string(number);
  return free;
}

}  // namespace kvdm
