// Names of every kind through the component's interfaces, on the system's own files and registry:
// create, find, set, save and load, rename, delete. Each answer is what the interface promises,
// what was loaded is what was saved, no two items get one folder or file, and nothing is made
// outside.
//
// The items of ten names live together, and each has one beside it whose name differs little.
#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <kvdm/platform/error.h>

#include "platform/file_names.h"
#include "platform/xml/xml_text.h"
#include "tests/faults/item_kinds.h"
#include "tests/faults/loop.h"
#include "tests/model/posix_system.h"

namespace kvdm::faults {
namespace {

using Names = std::vector<std::string>;

constexpr char kWorkingDirectory[] = "D:\\Data";
constexpr std::size_t kTogether = 10;

bool HasQuote(std::string_view name) { return name.find('"') != std::string_view::npos; }

std::string Sanitized(std::string_view text) {
  return std::string(std::string_view(xml::Sanitized(text)));
}

// Whether a folder or file can have the name, and is found by it again.
bool IsOrdinary(const std::string& name) {
  constexpr std::size_t kLongestEntry = 240;  // bytes, with room for a number and an extension
  return IsCreatableName(name) && name.size() <= kLongestEntry && !TrimmedName(name).empty() &&
         Sanitized(name) == name;
}

// Whether the folder of a file may be deleted: every name on its way holds more than dots, and only
// one separator ends it.
bool IsDeletable(const std::string& file) {
  const std::string folder = file.substr(0, file.find_last_of("\\/"));
  if (folder.ends_with('\\') || folder.ends_with('/')) return false;
  const auto parts = SplitPath(folder + "\\");
  return std::ranges::none_of(parts.names, [](const std::string& name) {
    return name.find_first_not_of('.') == std::string::npos;
  });
}

std::string Shown(std::string_view name) {
  std::string shown;
  for (const char c : name.substr(0, 60)) {
    const auto byte = static_cast<unsigned char>(c);
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), byte < 0x20 || byte > 0x7E ? "\\x%02x" : "%c", byte);
    shown += text.data();
  }
  return shown;
}

// What `call` answers, or its error.
template <class Call>
std::string Outcome(Call&& call) {
  try {
    return call() ? "True" : "False";
  } catch (const RuntimeError& error) {
    return "error " + std::to_string(error.number());
  }
}

std::string Error(std::int32_t number) { return "error " + std::to_string(number); }

// A few names on one kind of items, from the first to the last day.
class Life {
 public:
  Life(const ItemKind& kind, Names names, Names new_names, Counts& counts)
      : kind_(kind), names_(std::move(names)), new_names_(std::move(new_names)), counts_(counts) {
    system_.Start(kWorkingDirectory);
  }

  void Live() {
    for (const std::string& name : names_) Create(name);
    Restart();
    for (std::size_t i = 0; i < names_.size(); ++i)
      Rename(names_[i], new_names_[i % new_names_.size()]);
    Restart();
    // No data item is ever deleted by name or identifier as they are made.
    while (!IsData() && !stored_.empty()) Delete(std::string(stored_.back()));
    Restart();
    LookOutside();
  }

 private:
  IKVDataManager& Manager() { return system_.Manager(); }
  [[nodiscard]] bool IsData() const { return kind_.word == std::string_view("data item"); }
  [[nodiscard]] bool IsArea() const { return kind_.word == std::string_view("study area"); }
  [[nodiscard]] bool IsStore() const { return kind_.word == std::string_view("store layer"); }
  [[nodiscard]] bool IsAnalysis() const { return kind_.word == std::string_view("analysis"); }

  void Tell(std::uint64_t& count, std::string_view name, const std::string& what) {
    ++count;
    std::printf("%s '%s': %s\n", kind_.word, Shown(name).c_str(), what.c_str());
  }

  void Compare(std::string_view name, const char* what, const std::string& expected,
               const std::string& observed) {
    if (expected == observed) return;
    Tell(counts_.wrong, name,
         std::string(what) + " answers " + Shown(observed) + " instead of " + Shown(expected));
  }

  [[nodiscard]] bool Has(const std::string& stored) const {
    return std::ranges::find(stored_, stored) != stored_.end();
  }

  // Whether the component's own test finds the name, which of data items looks for another one.
  [[nodiscard]] std::string Exists(const std::string& name) const {
    if (HasQuote(name)) return Error(kAutomationFailure);
    const std::string stored = Sanitized(name);
    return Has(IsData() ? "_" + stored + "_" : stored) ? "True" : "False";
  }

  // The answers that a creation may give. A test for an analysis of the name looks for another one.
  [[nodiscard]] Names Creates(const std::string& name) const {
    if (HasQuote(name)) return {Error(kMemberNotSupported)};
    const std::string stored = Sanitized(name);
    if (Has(IsAnalysis() ? "_" + stored + "_" : stored)) return {"False"};
    if (kind_.has_folder && !IsOrdinary(name)) return {"True", "False"};
    return {"True"};
  }

  void Create(const std::string& name) {
    ++counts_.tried;
    Compare(name, "Exists before", Exists(name),
            Outcome([&] { return kind_.exists(Manager(), name); }));
    const Names expected = Creates(name);
    const bool is_added = expected.front() == "True";
    const std::string created = Outcome([&] { return kind_.create(Manager(), name); });
    if (std::ranges::find(expected, created) == expected.end()) {
      Tell(counts_.wrong, name, "Create answers " + created + " instead of " + expected.front());
    }
    if (is_added) stored_.push_back(Sanitized(name));
    Compare(name, "Exists", Exists(name), Outcome([&] { return kind_.exists(Manager(), name); }));
    if (is_added && Finds(name)) {
      Own(name, *kind_.find(Manager(), name), created == "True");
      SetAndGet(name);
    }
  }

  bool Finds(const std::string& name) {
    const auto item = kind_.find(Manager(), name);
    if (!item) {
      Tell(counts_.lost, name, "is not found");
      return false;
    }
    Compare(name, "Name", Sanitized(name), item->name());
    const std::string guid = item->guid();
    if (!IsData()) Compare(name, "GUID", guid, kind_.find_by_guid(Manager(), guid)->guid());
    return true;
  }

  // Puts a file of its own into the item's folder, or in its layer's place. Nobody else's is there.
  void Own(const std::string& name, const Item& item, bool is_complete) {
    const std::string guid = item.guid();
    const std::string file = item.file();
    if (files_.contains(guid)) return;
    const std::string folder = file.substr(0, file.rfind('\\') + 1);
    if (kind_.has_folder && !system_.Disk().FolderExists(folder)) {
      if (is_complete && IsOrdinary(name)) Tell(counts_.lost, name, "has no folder");
      return;
    }
    if (!IsOrdinary(name) && !kind_.has_folder) return;
    if (system_.Disk().ReadFile(file)) return Tell(counts_.lost, name, "shares " + Shown(file));
    system_.Disk().WriteFile(file, guid);
    files_[guid] = file;
  }

  void LookAtFiles(std::string_view name) {
    for (const auto& [guid, file] : files_) {
      if (system_.Disk().ReadFile(file) == guid) continue;
      Tell(counts_.lost, name, "and the file of another one is gone, " + Shown(file));
    }
  }

  // The name as a parameter's name, and as its value.
  void SetAndGet(const std::string& name) {
    const auto item = kind_.find(Manager(), name);
    parameters_[item->guid()] = Sanitized(name);
    const std::string set = Outcome([&] { return item->set(name, "value"); });
    const char* refused = IsArea() ? "False" : "error 438";
    Compare(name, "Set by it", HasQuote(name) ? refused : "True", set);
    Compare(name, "Set to it", "True", Outcome([&] { return item->set("key", name); }));
  }

  // What every item has been given is there.
  void LookAtItems() {
    for (const std::string& name : stored_) {
      if (HasQuote(name) || !Finds(name)) continue;
      const auto item = kind_.find(Manager(), name);
      const auto parameter = parameters_.find(item->guid());
      if (parameter == parameters_.end()) continue;  // the second one of that name
      const std::string& key = parameter->second;
      Compare(name, "Get of the parameter named so", "value", item->get(key));
      Compare(name, "Get of the parameter", key, item->get("key"));
    }
    if (IsData()) return;
    Names expected = stored_;
    if (IsArea()) std::erase(expected, "Default");
    if (kind_.names(Manager()) != expected) Tell(counts_.lost, "", "the list is another one");
  }

  // Saves, starts anew and loads.
  void Restart() {
    LookAtItems();
    const std::string metadata = system_.MetadataText();
    const std::string catalogue = system_.RegistryText();
    system_.Restart(kWorkingDirectory);
    LookAtItems();
    if (system_.MetadataText() != metadata || system_.RegistryText() != catalogue) {
      Tell(counts_.lost, names_.front(), "and the next names are saved otherwise once loaded");
    }
    LookAtFiles("all");
  }

  void Rename(const std::string& name, const std::string& new_name) {
    const std::string stored = Sanitized(name);
    if (!Has(stored) || HasQuote(name)) return;
    ++counts_.tried;
    const std::string new_stored = Sanitized(new_name);
    const bool changes = IsData() || (!HasQuote(new_name) && !Has(new_stored));
    const auto item = kind_.find(Manager(), name);
    const std::string outcome = Outcome([&] { return item->rename(new_name), true; });
    // A study area shows a message instead.
    const std::string refused = IsAnalysis() ? Error(kMemberNotSupported)
                                : IsArea()   ? "True"
                                             : Error(kAutomationFailure);
    Compare(new_name, "Rename", HasQuote(new_name) && !IsData() ? refused : "True", outcome);
    Compare(new_name, "Name", changes ? new_stored : stored, item->name());
    if (!changes) return;
    *std::ranges::find(stored_, stored) = new_stored;
  }

  // Deletes by name or by identifier.
  void Delete(const std::string& stored) {
    ++counts_.tried;
    const std::string guid = kind_.find(Manager(), stored)->guid();
    // All layers' folder goes with a store layer that is deleted by its identifier.
    const bool by_guid = IsStore() ? stored_.size() == 1 : stored_.size() % 2 == 0;
    const std::string outcome = Outcome([&] {
      return by_guid ? kind_.remove_by_guid(Manager(), guid) : kind_.remove(Manager(), stored);
    });
    Compare(stored, "Delete", "True", outcome);
    LookAtDeleted(stored, guid, by_guid);
    stored_.erase(std::ranges::find(stored_, stored));
  }

  void LookAtDeleted(const std::string& name, const std::string& guid, bool by_guid) {
    const auto owned = files_.find(guid);
    if (owned == files_.end()) return;
    const std::string file = owned->second;
    files_.erase(owned);
    const bool goes = (kind_.has_folder && IsDeletable(file) && (IsAnalysis() || !by_guid)) ||
                      (IsStore() && by_guid);
    if (system_.Disk().ReadFile(file).has_value() == goes) {
      Tell(goes ? counts_.wrong : counts_.lost, name,
           Shown(file) + (goes ? " is still there" : " is gone"));
    }
    LookAtFiles(name);
  }

  // Names that lead upwards make folders there; all others stay in the working directory.
  void LookOutside() {
    const auto upwards = [](const std::string& name) { return name.find("..") != name.npos; };
    if (std::ranges::any_of(names_, upwards)) return;
    for (const std::string& path : system_.Tree()) {
      if (path.starts_with(kWorkingDirectory)) continue;
      Tell(counts_.outside, names_.front(), "or one of the next made " + Shown(path));
    }
  }

  const ItemKind& kind_;
  Names names_;
  Names new_names_;
  Counts& counts_;
  model::PosixSystem system_;
  Names stored_;  // in their order
  // By identifier.
  std::map<std::string, std::string> parameters_;
  std::map<std::string, std::string> files_;
};

Names ReadNames() {
  std::ifstream lines(KVDM_HOSTILE_NAMES);
  Names names;
  for (std::string line; std::getline(lines, line);) {
    std::string name;
    for (std::size_t i = 0; i + 1 < line.size(); i += 2) {
      name += static_cast<char>(std::stoi(line.substr(i, 2), nullptr, 16));
    }
    names.push_back(name);
  }
  return names;
}

// A name that some system, or some rule, takes for the same.
std::string NearlyThe(std::string name, std::size_t number) {
  constexpr std::array kEnds = {" ", ".", "1"};
  if (number % (kEnds.size() + 1) < kEnds.size()) return name + kEnds.at(number % 4);
  std::ranges::transform(name, name.begin(), [](char c) {
    const bool is_small = c >= 'a' && c <= 'z';
    return is_small ? static_cast<char>(c - 'a' + 'A') : c;
  });
  return name;
}

Names WithNearOnes(const Names& names) {
  Names all;
  for (const std::string& name : names) {
    all.push_back(name);
    const std::string near = NearlyThe(name, all.size() / 2);
    if (near != name) all.push_back(near);
  }
  return all;
}

// The names from `first` on, going round.
Names Some(const Names& names, std::size_t first) {
  Names some;
  for (std::size_t i = 0; i < kTogether; ++i) some.push_back(names[(first + i) % names.size()]);
  return some;
}

int Run(const Options& options) {
  Counts counts;
  const Names names = ReadNames();
  for (std::size_t first = 0; first < names.size(); first += kTogether) {
    const std::size_t number = first / kTogether;
    if (!options.IsMine(number)) continue;
    for (std::size_t i = 0; i < ItemKinds().size(); ++i) {
      // The sample tries a name on one kind.
      if (!options.all && i != number % ItemKinds().size()) continue;
      const ItemKind& kind = ItemKinds()[i];
      RunApart(kind.word, counts, [&](Counts& own) {
        Life(kind, WithNearOnes(Some(names, first)), Some(names, first + names.size() / 2), own)
            .Live();
      });
    }
  }
  return Report("component_names", counts);
}

}  // namespace
}  // namespace kvdm::faults

int main(int count, char** arguments) {
  return kvdm::faults::Run(kvdm::faults::ReadOptions(count, arguments));
}
