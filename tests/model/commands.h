// Scripts of public operations, each with what the component does and what the model expects.
#pragma once

#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/model/model.h"
#include "tests/model/system.h"

namespace kvdm::model {

// What the operations take; each uses what it needs.
struct Arguments {
  std::string name;
  std::string inner_name;  // Of a parameter or a property.
  std::string guid;
  std::string value;
  std::size_t name_place = 0;
  std::size_t value_place = 0;
  bool is_kept = false;  // The item is the one kept, not the one of that name.
};

struct Operation {
  std::optional<Kind> kind;  // Nothing for the data manager's.
  std::string text;
  int weight;
  std::function<std::string(System&, const Arguments&)> act;
  std::function<std::string(Model&, const Arguments&)> expect;
};

// All operations on collections, on items, and of the data manager.
void AddCollectionOperations(std::vector<Operation>& operations);
void AddItemOperations(std::vector<Operation>& operations);
void AddManagerOperations(std::vector<Operation>& operations);
[[nodiscard]] const std::vector<Operation>& AllOperations();

// The item of a name, of the component; Nothing when there is none.
[[nodiscard]] std::shared_ptr<Unknown> ItemNamed(System& system, Kind kind,
                                                 const std::string& name);

// One line of a script, by places in the lists of operations, names and values.
struct Command {
  std::size_t operation = 0;
  std::size_t name = 0;
  std::size_t value = 0;
  bool is_kept = false;

  [[nodiscard]] const Operation& Does() const { return AllOperations().at(operation); }
  [[nodiscard]] Arguments With() const;
};

struct Script {
  std::vector<Command> commands;
};
// One command a line.
std::ostream& operator<<(std::ostream& out, const Script& script);

inline constexpr std::size_t kNameCount = 14;
inline constexpr std::size_t kValueCount = 14;

}  // namespace kvdm::model
