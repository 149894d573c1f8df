// Services and objects of clients that do what they should not: throw anything, give Nothing for an
// object and lists of uneven length, and call back into the component. Each operation is run once
// for each call of a service that it makes, with each kind of trouble at that call.
#include <cstdio>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/error_policy/policy_table.h"
#include "tests/faults/loop.h"

namespace kvdm {
namespace {

struct Trouble {
  const char* name;
  std::function<void()> instead;
  bool gives_nothing = false;
};

const std::vector<Trouble>& Troubles() {
  static const std::vector<Trouble> all = {
      {"throws a run-time error", [] { throw RuntimeError(kDeviceUnavailable); }},
      {"throws bad_alloc", [] { throw std::bad_alloc(); }},
      {"throws logic_error", [] { throw std::logic_error("a client's own"); }},
      {"throws an int", [] { throw 1; }},
      {"gives Nothing", nullptr, true},
  };
  return all;
}

std::vector<PolicyRow> AllRows() {
  std::vector<PolicyRow> all;
  for (const auto& rows : {DataManagerRows(), StudyAreaRows(), CollectionRows(),
                           LayerCollectionRows(), AnalysisRows(), LayerRows()}) {
    all.insert(all.end(), rows.begin(), rows.end());
  }
  return all;
}

// What an operation ended in: nothing, or the number of a run-time error.
struct Ending {
  std::optional<std::int32_t> number;
  const char* foreign = nullptr;  // something else that was thrown
};

Ending Perform(const PolicyRow& row, PolicyWorld& world) {
  try {
    row.act(world);
    return {};
  } catch (const RuntimeError& error) {
    return {error.number()};
  } catch (const std::bad_alloc&) {
    return {kOutOfMemory};
  } catch (const std::exception&) {
    return {kAutomationFailure};
  } catch (...) {
    return {std::nullopt, "what is no exception of the standard library"};
  }
}

// Whether the operation's policy lets its caller see this.
bool IsAllowed(Policy policy, const Ending& ending) {
  if (ending.foreign != nullptr) return false;
  if (!ending.number || policy == Policy::kErrors) return true;
  return policy == Policy::kByName && ending.number == kMemberNotSupported;
}

class Loop {
 public:
  Loop(const faults::Options& options, faults::Counts& counts)
      : options_(options), counts_(counts) {}

  void Run() {
    const auto rows = AllRows();
    for (std::size_t i = 0; i < rows.size(); ++i) {
      if (!options_.IsMine(i)) continue;
      faults::RunApart(rows[i].operation, counts_, [&](faults::Counts& counts) {
        for (const Trouble& trouble : Troubles()) Sweep(rows[i], trouble, counts);
        // Each operation is called back by each other one; in the sample, by some.
        const std::size_t step = options_.all ? 1 : 41;
        for (std::size_t k = i % step; k < rows.size(); k += step) {
          SweepCallingBack(rows[i], rows[k], counts);
        }
      });
    }
  }

 private:
  // Does `prepare` to a world and lets the nth call meet the trouble, for each n.
  static void SweepWith(const PolicyRow& row, const std::string& trouble,
                        const std::function<void(PolicyWorld&)>& prepare, faults::Counts& counts) {
    bool reached = true;
    for (int n = 1; reached; ++n) {
      PolicyWorld world(true);
      prepare(world);
      world.FailAt(n);
      const Ending ending = Perform(row, world);
      reached = world.Failed();
      if (!reached) break;
      ++counts.tried;
      world.counter->instead = nullptr;
      world.counter->gives_nothing = false;
      const char* wrong = nullptr;
      if (!IsAllowed(row.policy, ending)) wrong = "ends in an error that its policy forbids";
      if (!world.DocumentsAreSound()) wrong = "leaves documents that can't be read";
      if (wrong == nullptr) continue;
      ++counts.wrong;
      std::printf("%s, call %d %s: %s (%d %s)\n", row.operation, n, trouble.c_str(), wrong,
                  ending.number.value_or(0), ending.foreign == nullptr ? "" : ending.foreign);
    }
  }

  static void Sweep(const PolicyRow& row, const Trouble& trouble, faults::Counts& counts) {
    SweepWith(
        row, trouble.name,
        [&](PolicyWorld& world) {
          world.counter->instead = trouble.instead;
          world.counter->gives_nothing = trouble.gives_nothing;
        },
        counts);
  }

  static void SweepCallingBack(const PolicyRow& row, const PolicyRow& back,
                               faults::Counts& counts) {
    SweepWith(
        row, std::string("calls ") + back.operation,
        [&](PolicyWorld& world) {
          world.counter->instead = [&] {
            const Ending ending = Perform(back, world);
            if (ending.foreign != nullptr) throw std::logic_error(ending.foreign);
          };
        },
        counts);
  }

  const faults::Options& options_;
  faults::Counts& counts_;
};

}  // namespace
}  // namespace kvdm

int main(int argc, char** argv) {
  const auto options = kvdm::faults::ReadOptions(argc, argv);
  kvdm::faults::Counts counts;
  kvdm::Loop(options, counts).Run();
  return kvdm::faults::Report("clients", counts);
}
