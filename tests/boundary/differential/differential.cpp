// Plays random sequences of public operations and prints all that can be told of the component
// after each step, in a form that every build of the program has to print alike.
//
//   differential SEED COUNT LENGTH
//
// COUNT sequences of LENGTH steps; the first is the one of SEED, the next that of SEED + 1.
#include <cstdlib>
#include <iostream>
#include <map>
#include <random>

#include "tests/boundary/differential/system_under_test.h"
#include "tests/model/commands.h"
#include "tests/model/describe.h"

namespace kvdm::differential {
namespace {

using model::Describe;

constexpr const char* kNames[] = {"North",      "north",      "",
                                  "_",          "_x_",        "x",
                                  "a\"b",       "a.b",        "S\u00E3o Jos\u00E9 \u20AC",
                                  "x\\y",       " trailing ", "Default",
                                  "two\nlines", "a\001b",     "it's & <co>",
                                  "\u540D"};

constexpr const char* kValues[] = {"North",
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
                                   "\U0001F600 \u00E9",
                                   "../x"};

// Answers the same everywhere.
class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}

  std::size_t Below(std::size_t count) { return engine_() % count; }

  // Places near the front are more likely, so that names meet again.
  std::size_t Place(std::size_t count) {
    constexpr std::size_t kFront = 3;
    return Below(Below(2) == 0 ? kFront : count);
  }

 private:
  std::mt19937 engine_;
};

std::string AnyGuid(Dice& dice) {
  constexpr std::size_t kGenerated = 9;
  const std::size_t place = dice.Place(kGenerated + std::size(kNames));
  if (place >= kGenerated) return kNames[place - kGenerated];
  return "{00000000-0000-4000-8000-00000000000" + std::to_string(place + 1) + "}";
}

model::Arguments AnyArguments(Dice& dice) {
  model::Arguments with;
  with.name_place = dice.Place(std::size(kNames));
  with.value_place = dice.Place(std::size(kValues));
  with.name = kNames[with.name_place];
  with.inner_name = kNames[dice.Place(std::size(kNames))];
  with.guid = AnyGuid(dice);
  with.value = kValues[with.value_place];
  with.is_kept = dice.Below(2) == 0;
  return with;
}

// Operations on items of one kind are more likely, so that they build on each other.
std::vector<const model::Operation*> LikelyOperations(model::Kind focus) {
  constexpr int kFocusWeight = 6;
  std::vector<const model::Operation*> likely;
  for (const model::Operation& operation : model::AllOperations()) {
    const int weight = operation.weight * (operation.kind == focus ? kFocusWeight : 1);
    likely.insert(likely.end(), static_cast<std::size_t>(weight), &operation);
  }
  return likely;
}

// An error is its number: not every build tells more.
std::string WithoutText(const std::string& result) {
  constexpr char kError[] = "error ";
  if (!result.starts_with(kError)) return result;
  return result.substr(0, result.find(' ', std::size(kError) - 1));
}

std::string Listed(const std::shared_ptr<NamedValueSet>& set) {
  if (!set) return "Nothing";
  const auto [names, values] = set->ListAll();
  std::string listed;
  for (std::size_t i = 0; i < names.size(); ++i) {
    listed += "\n    " + Describe(names[i]) + " = " + Describe(ToText(values[i]));
  }
  return listed;
}

// Prints what has changed since the last step.
class Observer {
 public:
  void Print(model::System& system) {
    Print("messages", Describe(system.TakeMessages()));
    Print("metadata", Describe(system.MetadataText()));
    Print("catalogue", Describe(system.RegistryText()));
    Print("current study area", Describe(system.CurrentStudyArea()));
    Print("drives", Describe(system.Tree()));
    Print("layer", Listed(system.metadata->ReadDocument()));
    Print("property set", Listed(system.properties));
  }

 private:
  void Print(const std::string& what, const std::string& state) {
    if (std::exchange(last_[what], state) != state)
      std::cout << "  " << what << ": " << state << "\n";
  }

  std::map<std::string, std::string> last_;
};

void Play(unsigned seed, int length) {
  std::cout << "sequence of seed " << seed << "\n";
  Dice dice(seed);
  const auto operations =
      LikelyOperations(model::kAllKinds.at(dice.Below(model::kAllKinds.size())));
  const auto system = MakeSystem();
  Observer observer;
  system->Start("D:\\Data");
  observer.Print(*system);
  for (int step = 1; step <= length; ++step) {
    const model::Operation& operation = *operations[dice.Below(operations.size())];
    const model::Arguments with = AnyArguments(dice);
    std::cout << step << ". " << operation.text << (with.is_kept ? " (kept)" : "") << ", name "
              << Describe(with.name) << ", inner name " << Describe(with.inner_name) << ", GUID "
              << Describe(with.guid) << ", value " << Describe(with.value) << "\n  "
              << WithoutText(operation.act(*system, with)) << "\n";
    observer.Print(*system);
  }
}

}  // namespace
}  // namespace kvdm::differential

int main(int count, char** arguments) {
  if (count != 4) return EXIT_FAILURE;
  const auto seed = static_cast<unsigned>(std::atoi(arguments[1]));
  for (int i = 0; i < std::atoi(arguments[2]); ++i) {
    kvdm::differential::Play(seed + static_cast<unsigned>(i), std::atoi(arguments[3]));
  }
  std::cout << "end" << std::endl;
  return EXIT_SUCCESS;
}
