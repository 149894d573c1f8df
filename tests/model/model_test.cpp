// Random scripts of public operations: the component does what the model expects, step by step.
#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstdlib>
#include <iostream>
#include <random>
#include <sstream>

#include "tests/model/commands.h"
#include "tests/model/describe.h"
#include "tests/model/posix_system.h"

namespace kvdm::model {
namespace {

// All that clients, the user, the registry and the disk can tell of a script's last step.
struct Observation {
  std::string outcome;
  std::vector<std::string> messages;
  std::string metadata;
  std::string catalogue;
  std::string current_study_area;
  std::vector<std::string> tree;
  std::optional<ValueList> layer;
  std::optional<ValueList> properties;
};

std::optional<ValueList> Listed(const std::shared_ptr<NamedValueSet>& set) {
  if (!set) return std::nullopt;
  const auto [names, values] = set->ListAll();
  ValueList list;
  for (std::size_t i = 0; i < names.size(); ++i) list.emplace_back(names[i], values[i]);
  return list;
}

Observation Observed(System& system, const std::string& outcome) {
  return {outcome,
          system.TakeMessages(),
          system.MetadataText(),
          system.RegistryText(),
          system.CurrentStudyArea(),
          system.Tree(),
          Listed(system.metadata->ReadDocument()),
          Listed(system.properties)};
}

Observation Expected(Model& model, const std::string& outcome) {
  return {outcome,
          model.TakeMessages(),
          model.MetadataText(),
          model.RegistryText(),
          model.CurrentStudyArea(),
          model.Disk().Tree(),
          model.Exchanged().metadata,
          model.Exchanged().properties};
}

// Names what differs; "" when nothing does.
std::string Difference(const Observation& expected, const Observation& observed) {
  std::string difference;
  const auto compare = [&](const char* what, const auto& model, const auto& component) {
    if (model == component) return;
    difference += std::string(what) + "\n  expected: " + Describe(model) +
                  "\n  observed: " + Describe(component) + "\n";
  };
  if (expected.outcome != observed.outcome) {
    difference +=
        "result\n  expected: " + expected.outcome + "\n  observed: " + observed.outcome + "\n";
  }
  compare("messages", expected.messages, observed.messages);
  compare("metadata document", expected.metadata, observed.metadata);
  compare("registry", expected.catalogue, observed.catalogue);
  compare("current study area", expected.current_study_area, observed.current_study_area);
  compare("disk", expected.tree, observed.tree);
  compare("layer metadata", expected.layer, observed.layer);
  compare("property set", expected.properties, observed.properties);
  return difference;
}

// What differs after the first step that is not as expected; "" when all are.
template <class SystemType>
std::string FirstDifference(const Script& script) {
  constexpr char kDirectory[] = "D:\\Data";
  SystemType system;
  Model model;
  system.Start(kDirectory);
  model.Start(kDirectory);
  for (const Command& command : script.commands) {
    const Arguments with = command.With();
    const Observation expected = Expected(model, command.Does().expect(model, with));
    const Observation observed = Observed(system, command.Does().act(system, with));
    const std::string difference = Difference(expected, observed);
    if (!difference.empty()) return command.Does().text + ": " + difference;
  }
  return {};
}

// Operations on items of the kind `focus` are more likely, so that they build on each other.
rc::Gen<std::size_t> AnyOperation(Kind focus) {
  constexpr int kFocusWeight = 6;
  std::vector<std::size_t> places;
  for (std::size_t place = 0; place < AllOperations().size(); ++place) {
    const Operation& operation = AllOperations()[place];
    const int weight = operation.weight * (operation.kind == focus ? kFocusWeight : 1);
    places.insert(places.end(), static_cast<std::size_t>(weight), place);
  }
  return rc::gen::noShrink(rc::gen::elementOf(places));
}

// Places near the front are more likely, so that names meet again.
rc::Gen<std::size_t> AnyPlace(std::size_t count) {
  return rc::gen::oneOf(rc::gen::inRange<std::size_t>(0, 3),
                        rc::gen::inRange<std::size_t>(0, count));
}

rc::Gen<Script> AnyScript(Kind focus) {
  constexpr double kLength = 2.0;
  const auto command = rc::gen::build<Command>(
      rc::gen::set(&Command::operation, AnyOperation(focus)),
      rc::gen::set(&Command::name, AnyPlace(kNameCount)),
      rc::gen::set(&Command::value, AnyPlace(kValueCount)), rc::gen::set(&Command::is_kept));
  const auto commands = rc::gen::container<std::vector<Command>>(command);
  return rc::gen::build<Script>(rc::gen::set(&Script::commands, rc::gen::scale(kLength, commands)));
}

// The number of scripts: KVDM_MODEL_SEQUENCES when it is set.
int SequenceCount(int by_default) {
  const char* const wanted = std::getenv("KVDM_MODEL_SEQUENCES");
  return wanted == nullptr ? by_default : std::atoi(wanted);
}

// KVDM_MODEL_SEED when it is set, to repeat a run.
std::uint64_t Seed() {
  const char* const wanted = std::getenv("KVDM_MODEL_SEED");
  return wanted == nullptr ? std::random_device()() : std::strtoull(wanted, nullptr, 10);
}

template <class SystemType>
void CheckScripts(int count) {
  ASSERT_GT(count, 0);
  rc::detail::TestParams parameters;
  parameters.seed = Seed();
  parameters.maxSuccess = count;
  std::cout << count << " sequences, seed " << parameters.seed << std::endl;
  const auto result = rc::detail::checkTestable(
      [] {
        const Kind focus = *rc::gen::noShrink(rc::gen::elementOf(kAllKinds));
        const std::string difference = FirstDifference<SystemType>(*AnyScript(focus));
        if (!difference.empty()) RC_FAIL(difference);
      },
      rc::detail::TestMetadata(), parameters);
  std::ostringstream report;
  rc::detail::printResultMessage(result, report);
  ASSERT_TRUE(result.template is<rc::detail::SuccessResult>()) << report.str();
}

TEST(ModelTest, ComponentFollowsTheModelInMemory) {
  CheckScripts<MemorySystem>(SequenceCount(1000));
}

TEST(ModelTest, ComponentFollowsTheModelOnPosix) { CheckScripts<PosixSystem>(SequenceCount(100)); }

}  // namespace
}  // namespace kvdm::model
