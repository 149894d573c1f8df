// Check: a table of rules, each of which finds one kind of trouble in what is stored and on the
// disk, and many of which can mend it.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "safety/result.h"
#include "safety/survey.h"

namespace kvdm {

enum class Severity { kInformation, kWarning, kError };

// "note", "warning", "error"
[[nodiscard]] std::string_view NameOf(Severity severity);

struct Rule;

inline constexpr std::size_t kNoItem = std::numeric_limits<std::size_t>::max();

// One trouble.
struct Finding {
  const Rule* rule = nullptr;
  Severity severity = Severity::kError;
  std::string sentence = {};    // what is wrong, for people
  std::string item = {};        // which item it is about: "analysis Sales"; "" for none
  std::string guid = {};        // of that item
  std::string path = {};        // which folder or file; "" for none
  std::string command = {};     // what mends it, as words after `kvdm`; "" when nothing does
  bool is_safe = false;         // whether doctor mends it unasked
  std::size_t index = kNoItem;  // of the item in the survey

  // For rules: sets one of the above.
  Finding& At(std::string_view where) { return path = where, *this; }
  Finding& By(std::string_view words) { return command = words, *this; }
  Finding& As(Severity other) { return severity = other, *this; }
  Finding& Safely() { return is_safe = true, *this; }
};

// What mends a trouble: steps for people, and what they come to.
struct Repair {
  std::vector<std::string> steps = {};
  Holdings wanted = {};
  std::vector<std::string> folders = {};  // to be made, by full paths
  std::vector<std::string> hidden = {};   // folders to be hidden
  std::vector<std::string> trashed = {};  // folders that go to the trash
  // Layer files whose metadata get another GUID.
  std::vector<std::pair<std::string, std::string>> identities = {};
};

// What a rule says of one survey.
class Findings {
 public:
  Findings(const Rule& rule, std::vector<Finding>& found) : rule_(rule), found_(found) {}

  Finding& Add(std::string sentence);
  // About an item of the survey, which it names.
  Finding& Add(const Survey& survey, std::size_t index, std::string_view rest_of_sentence);

 private:
  const Rule& rule_;
  std::vector<Finding>& found_;
};

struct Rule {
  std::string_view name;
  Severity severity;
  std::string_view detects;  // for people
  std::string_view why;      // what comes of it, and what else to do, as sentences
  std::string_view repair;   // what doctor does; "" when it does nothing
  bool is_safe;              // whether doctor does it unasked
  void (*find)(const Survey& survey, Findings& findings);
  // Changes the elements of the survey and `repair`.
  void (*mend)(Survey& survey, const Finding& finding, Repair& repair) = nullptr;
};

// All rules, by groups.
[[nodiscard]] const std::vector<const Rule*>& Rules();

// The rules of these names, or of the groups of these names; all when there are none. Failure
// kUsage for an unknown name.
//
//   RulesNamed({"registry", "guid.duplicate"})
[[nodiscard]] std::vector<const Rule*> RulesNamed(const std::vector<std::string>& names);

// What the rules find, errors first. Writes nothing.
[[nodiscard]] std::vector<Finding> Check(const Subject& subject,
                                         const std::vector<const Rule*>& rules);

// What the rule would do about all that it finds; with `only_safe`, about what is safe. Writes
// nothing.
[[nodiscard]] Repair PlanRepair(const Subject& subject, const Rule& rule, bool only_safe);

// Makes and hides the folders of a repair, and changes the metadata of layers. What holds the
// documents is stored, and the trash filled, by whoever has them.
void MakeFolders(const Platform& platform, const Repair& repair);
void ChangeIdentities(const Platform& platform, const Repair& repair);

[[nodiscard]] Record ToRecord(const Finding& finding);

}  // namespace kvdm
