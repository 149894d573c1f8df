// What becomes of a fault.
#pragma once

#include <string>

#include "tests/model/tree.h"

namespace kvdm::model {

inline constexpr int kObjectNotSet = 91;
inline constexpr int kMemberNotSupported = 438;

// A report that can't be delivered.
template <class Body>
auto Undelivered(const std::string& message, Body&& body) {
  try {
    return body();
  } catch (const Fault&) {
    throw Fault{kMemberNotSupported, message};
  }
}

// `otherwise` says what to do and to return in its place.
template <class Body, class Otherwise>
auto Trapped(Body&& body, Otherwise&& otherwise) {
  try {
    return body();
  } catch (const Fault&) {
    return otherwise();
  }
}

// Goes on after a fault.
template <class Body>
void Skipped(Body&& body) {
  Trapped([&] { static_cast<void>(body()); }, [] {});
}

}  // namespace kvdm::model
