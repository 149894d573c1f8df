// Documents that come from elsewhere: of other programs, of other hands, damaged.
#pragma once

#include <string>
#include <vector>

#include "tests/model/tree.h"

namespace kvdm::model {

// `root` is nothing when `text` is not well-formed.
struct GivenDocument {
  NodeRef root;
  std::string text;
};

[[nodiscard]] const std::vector<GivenDocument>& Documents();
[[nodiscard]] const std::vector<GivenDocument>& Catalogues();

}  // namespace kvdm::model
