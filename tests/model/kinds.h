// The five kinds of items.
#pragma once

#include <array>
#include <iosfwd>
#include <string>

namespace kvdm::model {

enum class Kind { kStudyArea, kAnalysis, kCustLayer, kStoreLayer, kDataItem };

inline constexpr std::array kAllKinds = {Kind::kStudyArea, Kind::kAnalysis, Kind::kCustLayer,
                                         Kind::kStoreLayer, Kind::kDataItem};

// As in the names of the operations.
[[nodiscard]] std::string KindName(Kind kind);
std::ostream& operator<<(std::ostream& out, Kind kind);

}  // namespace kvdm::model
