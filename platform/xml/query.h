// The look-up expressions of SelectSingleNode.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvdm::xml {

struct Query {
  std::vector<std::string> tags;  // from the outermost to that of the result
  std::string attribute;          // "" when any element with the last tag will do
  std::string key;
};

// Run-time error -2147467259 when `expression` is no query.
Query ParseQuery(std::string_view expression);

}  // namespace kvdm::xml
