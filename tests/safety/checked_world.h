// A project on the platform in memory in which all is well, for tests that put trouble into it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/memory/memory_platform.h"
#include "safety/check.h"

namespace kvdm {

struct CheckedWorld {
  CheckedWorld();

  // Puts one text in place of another, which must be there, in the metadata document.
  void InMetadata(std::string_view before, std::string_view after);
  // The same in the catalogue.
  void InCatalogue(std::string_view before, std::string_view after);

  // "error guid.duplicate analysis Rent" for each finding of the rules of these names; all rules
  // without a name.
  [[nodiscard]] std::vector<std::string> Found(const std::vector<std::string>& names = {}) const;
  [[nodiscard]] std::vector<Finding> Findings(const std::string& name) const;

  // Carries out the repair of a rule, as a host does, and answers its steps.
  std::vector<std::string> Mend(const std::string& rule, bool only_safe = false);

  MemoryPlatform memory;
  Subject subject;
};

}  // namespace kvdm
