#include "tests/model/kinds.h"

#include <ostream>

namespace kvdm::model {

std::string KindName(Kind kind) {
  constexpr std::array kKindNames = {"StudyArea", "Analysis", "CustLayer", "StoreLayer",
                                     "DataItem"};
  return kKindNames.at(static_cast<std::size_t>(kind));
}

std::ostream& operator<<(std::ostream& out, Kind kind) { return out << KindName(kind); }

}  // namespace kvdm::model
