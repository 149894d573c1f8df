// Memory that runs out: each operation is run once for each allocation of `operator new` that it
// makes, with that allocation failing, alone or with all after it. What the XML parser allocates
// with malloc is not among them; the loop over `kvdm` has that.
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <kvdm/platform/portable/variant_list.h>

#include "platform/memory/memory_platform.h"
#include "tests/error_policy/policy_table.h"
#include "tests/failing_new.h"
#include "tests/faults/loop.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

using Identifiers = std::set<std::string>;

// The values of the attributes that tell items apart.
Identifiers IdentifiersIn(const std::string& text) {
  Identifiers found;
  for (const std::string attribute : {" GUID=\"", " NAME=\""}) {
    for (auto at = text.find(attribute); at != std::string::npos; at = text.find(attribute, at)) {
      at += attribute.size();
      found.insert(attribute + text.substr(at, text.find('"', at) - at));
    }
  }
  return found;
}

// What is stored: the metadata as a host would save it, and the catalogue.
struct State {
  std::string metadata;
  std::string catalogue;
};

State StateOf(PolicyWorld& world) {
  const auto stored = ReadRegistryString(*world.memory.registry, RegistryRoot::kLocalMachine,
                                         kRegistryKey, kStudyAreaCollectionValue);
  State state{{}, ToText(stored)};
  const auto saved = std::make_shared<VariantList>();
  world.manager->Save(saved);
  state.metadata = ToText(saved->Read());
  return state;
}

// Whether `now` has all that is in both `before` and `after`.
bool KeepsWhatStays(const std::string& before, const std::string& after, const std::string& now) {
  const Identifiers had = IdentifiersIn(before);
  const Identifiers has = IdentifiersIn(after);
  const Identifiers kept = IdentifiersIn(now);
  return std::ranges::all_of(had, [&](const std::string& identifier) {
    return !has.contains(identifier) || kept.contains(identifier);
  });
}

// The number of the error in which the operation ends; none when it returns.
std::optional<std::int32_t> Perform(const PolicyRow& row, PolicyWorld& world) {
  try {
    row.act(world);
    return std::nullopt;
  } catch (const std::exception& error) {
    failing_new::Disarm();
    return AsRuntimeError(error).number();
  }
}

class Operation {
 public:
  Operation(const PolicyRow& row, faults::Counts& counts) : row_(row), counts_(counts) {
    // What a first run makes once and for all is no part of the operation.
    PolicyWorld first;
    Perform(row_, first);
    PolicyWorld world;
    before_ = StateOf(*std::make_unique<PolicyWorld>());
    failing_new::Arm(0);
    undisturbed_ = Perform(row_, world);
    allocations_ = failing_new::Disarm();
    after_ = StateOf(world);
  }

  void FailEach(std::uint64_t first, std::uint64_t step) {
    for (std::uint64_t n = first; n <= allocations_; n += step) {
      Fail(n, failing_new::From::kOnce);
      Fail(n, failing_new::From::kThereOn);
    }
  }

 private:
  void Fail(std::uint64_t n, failing_new::From from) {
    PolicyWorld world;
    failing_new::Arm(n, from);
    const auto number = Perform(row_, world);
    failing_new::Disarm();
    ++counts_.tried;
    // An operation that it asks may have reported the failure, and answered with nothing.
    const bool allowed = !number || number == undisturbed_ || number == kOutOfMemory ||
                         number == kObjectNotSet || number == kMemberNotSupported;
    if (!allowed) Tell(n, from, "ends in error " + std::to_string(*number), counts_.wrong);
    const State now = StateOf(world);
    if (!world.DocumentsAreSound()) Tell(n, from, "leaves damaged documents", counts_.lost);
    if (!KeepsWhatStays(before_.catalogue, after_.catalogue, now.catalogue)) {
      Tell(n, from, "loses of the catalogue: " + now.catalogue, counts_.lost);
    }
    if (!KeepsWhatStays(before_.metadata, after_.metadata, now.metadata)) {
      Tell(n, from, "loses of the metadata: " + now.metadata, counts_.lost);
    }
  }

  void Tell(std::uint64_t n, failing_new::From from, const std::string& what,
            std::uint64_t& count) const {
    ++count;
    std::printf("%s, allocation %llu fails%s: %s\n", row_.operation,
                static_cast<unsigned long long>(n),
                from == failing_new::From::kOnce ? "" : " and all after it", what.c_str());
  }

  const PolicyRow& row_;
  faults::Counts& counts_;
  State before_;
  State after_;
  std::optional<std::int32_t> undisturbed_;
  std::uint64_t allocations_ = 0;
};

void Run(const faults::Options& options, faults::Counts& counts) {
  constexpr std::uint64_t kSample = 13;
  std::size_t number = 0;
  for (const auto& rows : {DataManagerRows(), StudyAreaRows(), CollectionRows(),
                           LayerCollectionRows(), AnalysisRows(), LayerRows()}) {
    for (const PolicyRow& row : rows) {
      if (!options.IsMine(number++)) continue;
      faults::RunApart(row.operation, counts, [&](faults::Counts& own) {
        // The sample begins at another allocation in each operation.
        const std::uint64_t first = options.all ? 1 : 1 + number * 7 % kSample;
        Operation(row, own).FailEach(first, options.all ? 1 : kSample);
      });
    }
  }
}

}  // namespace
}  // namespace kvdm

int main(int argc, char** argv) {
  const auto options = kvdm::faults::ReadOptions(argc, argv);
  kvdm::faults::Counts counts;
  kvdm::Run(options, counts);
  return kvdm::faults::Report("allocations", counts);
}
