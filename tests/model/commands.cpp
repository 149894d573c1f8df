#include "tests/model/commands.h"

#include <array>
#include <ostream>

#include "tests/model/describe.h"

namespace kvdm::model {
namespace {

constexpr std::array<const char*, kNameCount> kNames = {
    "North",
    "north",
    "",
    "_",
    "_x_",
    "x",
    "a\"b",
    "a.b",
    "\u540D",
    "x\\y",
    " trailing ",
    "Default",
    "two\nlines",
    "a\x01"
    "b",
};

constexpr std::array<const char*, kValueCount> kValues = {
    "North",
    "",
    "_x_",
    "a\"b<&>'",
    "true",
    "one\r\ntwo\nthree\rfour\n",
    "D:\\Data\\StudyAreas\\North\\",
    "D:\\Other\\CustLayers\\",
    "D:\\Data\\StudyAreas",
    "\x02\t\u540D",
    " trailing ",
    "{00000000-0000-4000-8000-000000000001}",
    "north",
    "a.b",
};

// The first items' identifiers, then some that are none.
std::string GuidAt(std::size_t place) {
  constexpr std::size_t kGenerated = 7;
  if (place >= kGenerated) return kNames.at(place - kGenerated);
  return "{00000000-0000-4000-8000-00000000000" + std::to_string(place + 1) + "}";
}

}  // namespace

const std::vector<Operation>& AllOperations() {
  static const std::vector<Operation> operations = [] {
    std::vector<Operation> all;
    AddCollectionOperations(all);
    AddItemOperations(all);
    AddManagerOperations(all);
    return all;
  }();
  return operations;
}

Arguments Command::With() const {
  return {kNames.at(name),
          kNames.at((name + value) % kNameCount),
          GuidAt(name),
          kValues.at(value),
          name,
          value,
          is_kept};
}

std::ostream& operator<<(std::ostream& out, const Script& script) {
  for (const Command& command : script.commands) {
    const Arguments with = command.With();
    out << command.Does().text << (with.is_kept ? " (kept)" : "") << ", name "
        << Describe(with.name) << ", inner name " << Describe(with.inner_name) << ", GUID "
        << Describe(with.guid) << ", value " << Describe(with.value) << "\n";
  }
  return out;
}

}  // namespace kvdm::model
