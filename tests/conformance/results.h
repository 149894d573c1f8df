// Results of the component's operations in a form that tests compare.
#pragma once

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <kvdm/kvdm.h>
#include <kvdm/platform/error.h>

namespace kvdm::conformance {

using Texts = std::vector<std::string>;

// A list's texts; "(null)" for a missing one, and {"(nothing)"} for Nothing.
inline Texts TextsOf(const NameListRef& list) {
  if (!list) return {"(nothing)"};
  Texts texts;
  for (int position = 1; position <= list->Count(); ++position) {
    const Value& value = list->Item(position);
    texts.push_back(value.IsNull() ? "(null)" : ToText(value));
  }
  return texts;
}

// How a call ended. `message` is that of a report that was not delivered.
struct Outcome {
  int error = 0;
  std::string message;
  bool operator==(const Outcome&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  return out << "error " << outcome.error << ", message \"" << outcome.message << '"';
}

inline Outcome Succeeds() { return {}; }
inline Outcome Fails(int error) { return {error, {}}; }

// Whether an error brings the report that was not delivered, from this build of the component.
extern const bool kTellsUnsentReports;

// A report by a name that the data manager does not publish.
inline Outcome FailsToReport(std::string message) {
  if (!kTellsUnsentReports) message.clear();
  return {kMemberNotSupported, std::move(message)};
}

template <class Act>
Outcome OutcomeOf(Act act) {
  try {
    act();
    return {};
  } catch (const RuntimeError& error) {
    return {error.number(), error.unsent_message()};
  }
}

}  // namespace kvdm::conformance
