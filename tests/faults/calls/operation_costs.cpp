// A guard that does not time: what operations ask of the system, among 100 and among 1,000 of a
// kind, against recorded values.
//
//   operation_costs RECORD             compares; the status is 0 when nothing costs more
//   operation_costs RECORD --record    writes the record anew
//
// A line an operation: name, how many there are, calls on files, listings of a folder, bytes
// written. Reading the attributes of an entry counts as one call, however many the system needs.
#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kvdm/datamanager/component.h>
#include <kvdm/kvdm.h>
#include <kvdm/platform/portable/properties_host.h>
#include <kvdm/platform/portable/sidecar_metadata.h>
#include <kvdm/platform/posix/posix_platform.h>

#include "tests/faults/calls/system_calls.h"

namespace kvdm::faults {
namespace {

namespace fs = std::filesystem;

constexpr char kMark[] = "/marked/";

// The operation `name` is what happens from here to the end of `work`.
template <class Work>
void Measured(const std::string& name, Work work) {
  ::access((kMark + name).c_str(), F_OK);
  work();
  ::access(kMark, F_OK);
}

void PutFiles(const fs::path& folder, const std::string& name, const std::string& end, int count) {
  fs::create_directories(folder);
  for (int i = 0; i < count; ++i) {
    std::ofstream(folder / (name + (i == 0 ? "" : std::to_string(i)) + end));
  }
}

// A component with so many of everything.
class World {
 public:
  World(const fs::path& root, int count) : root_(root), count_(count) {
    fs::create_directories(Work());
    PosixOptions options;
    options.drives = {{'D', (root / "d").string()}};
    options.registry_path = (root / "registry.db").string();
    options.message_box = [](std::string_view text, auto&&...) { std::cerr << text << '\n'; };
    platform_ = MakePosixPlatform(options);
    component_ = CreateObject(kDataManagerClass, platform_);
    host_->Settings()->SetProperty("VELKKVDirectory", "D:\\Work");
    Query<IKVDMInitialize>(component_)->DMInitialize(host_);
    manager_ = Query<IKVDataManager>(component_);
  }

  void Fill() {
    for (int i = 0; i < count_; ++i) {
      fs::create_directories(Work() / "Analyses" / ("old" + (i == 0 ? "" : std::to_string(i))));
      manager_->StudyAreaCollection()->CreateStudyArea("area " + std::to_string(i));
    }
    PutFiles(Work() / "StoreLayers", "other", ".lyr", count_);
    PutFiles(Work() / "Tables", "Table", ".dbf", count_);
    PutFiles(Work() / "Layers", "layer", ".shp", count_);
  }

  void MeasureNames() {
    const auto analyses = manager_->AnalysisCollection();
    const auto create = [&](const char* name) { analyses->CreateAnalysis(name); };
    Measure("CreateAnalysis-first", [&] { create("first"); });
    create("second");
    create("third");
    Measure("CreateAnalysis-further", [&] { create("further"); });
    Measure("CreateAnalysis-of-one-name", [&] { create("old"); });
    Measure("CreateStoreLayer", [&] { manager_->StoreLayerCollection()->CreateStoreLayer("new"); });
    Measure("FreeTablePath", [&] { manager_->TablesManager()->FreeTablePath(); });
    PutFiles(Work() / "KelvaroTemp", "tmp", ".shp", count_);
    Measure("TmpFilePath", [&] { manager_->TmpFilePath(); });
    for (int i = 0; i < count_ / 10; ++i) {
      PutFiles(Work() / "KelvaroTemp" / std::to_string(i), "file", ".txt", 10);
    }
    Measure("CleanTemp", [&] { manager_->CleanTemp(); });
  }

  void MeasureCatalogue() {
    const auto area = manager_->StudyAreaCollection()->GetStudyArea("area 7");
    const auto metadata = MakeSidecarMetadata(platform_, R"(D:\Work\Layers\new.shp)");
    Measure("ExportMetadata", [&] { Query<IKVMetadata>(area)->ExportMetadata(metadata); });
    const auto properties = Query<IKVPropertySet>(area);
    properties->SetProperty("TYPE", "rings");
    Measure("SetProperty-Flush", [&] {
      properties->SetProperty("TYPE", "drive time");
      manager_->Flush();
    });
    Measure("Flush-unchanged", [&] { manager_->Flush(); });
    const auto analysis = manager_->AnalysisCollection()->GetAnalysis("first");
    Measure("SetParameter", [&] { analysis->SetParameter("Radius", "500"); });
  }

 private:
  [[nodiscard]] fs::path Work() const { return root_ / "d/Work"; }
  template <class Work>
  void Measure(const std::string& name, Work work) {
    Measured(name + "\t" + std::to_string(count_), work);
  }

  fs::path root_;
  int count_;
  Platform platform_;
  std::shared_ptr<PropertiesHost> host_ = std::make_shared<PropertiesHost>();
  std::shared_ptr<Unknown> component_;
  std::shared_ptr<IKVDataManager> manager_;
};

constexpr int kCounts[] = {100, 1000};

void FillWorlds(const fs::path& root) {
  for (const int count : kCounts) World(root / std::to_string(count), count).Fill();
  ::sleep(4);  // A folder that was changed just now is listed again.
}

void RunOperations(const fs::path& root) {
  for (const int count : kCounts) {
    World world(root / std::to_string(count), count);
    world.MeasureNames();
    world.MeasureCatalogue();
  }
}

struct Cost {
  long calls = 0;
  long listings = 0;
  long written = 0;
};
using Costs = std::map<std::string, Cost>;

// Follows a program, call by call, and counts between its marks.
class Counter {
 public:
  Costs Follow(pid_t program) {
    int status = 0;
    ::waitpid(program, &status, 0);
    ::ptrace(PTRACE_SETOPTIONS, program, nullptr, PTRACE_O_EXITKILL | PTRACE_O_TRACESYSGOOD);
    while (true) {
      ::ptrace(PTRACE_SYSCALL, program, nullptr, nullptr);
      if (::waitpid(program, &status, 0) != program || !WIFSTOPPED(status)) break;
      if (WSTOPSIG(status) != (SIGTRAP | 0x80)) continue;
      Tracee tracee{program, {}};
      ::ptrace(PTRACE_GETREGS, program, nullptr, &tracee.registers);
      is_made_ = !is_made_;
      if (!is_made_) Made(tracee);
    }
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) costs_.clear();
    return costs_;
  }

 private:
  void Made(const Tracee& tracee) {
    const long number = static_cast<long>(tracee.registers.orig_rax);
    if (number == SYS_access) {
      const std::string path = tracee.Text(tracee.Argument(0));
      if (path.starts_with(kMark)) {
        operation_ = path.substr(std::string_view(kMark).size());
        return;
      }
    }
    if (operation_.empty() || !IsCounted(number)) return;
    Cost& cost = costs_[operation_];
    ++cost.calls;
    if (number == SYS_fgetxattr) cost.calls -= 2;  // It came with opening and closing.
    if (number == SYS_getdents64 && tracee.Result() == 0) ++cost.listings;
    const bool writes = number == SYS_write || number == SYS_pwrite64;
    if (writes && tracee.Result() > 0) cost.written += tracee.Result();
  }

  static bool IsCounted(long number) {
    for (const SystemCall& call : SystemCalls()) {
      if (call.number == number) return true;
    }
    return false;
  }

  Costs costs_;
  std::string operation_;
  bool is_made_ = false;
};

Costs CostsNow() {
  std::string pattern = (fs::temp_directory_path() / "kvdm-costs-XXXXXX").string();
  const fs::path root = ::mkdtemp(pattern.data());
  FillWorlds(root);
  const pid_t program = ::fork();
  if (program == 0) {
    ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    ::raise(SIGSTOP);
    RunOperations(root);
    _exit(0);
  }
  Costs costs = Counter().Follow(program);
  fs::remove_all(root);
  return costs;
}

Costs Recorded(const char* file) {
  Costs costs;
  std::ifstream lines(file);
  std::string name;
  std::string count;
  Cost cost;
  while (lines >> name >> count >> cost.calls >> cost.listings >> cost.written) {
    costs[name + "\t" + count] = cost;
  }
  return costs;
}

void Write(const Costs& costs, std::ostream& out) {
  for (const auto& [name, cost] : costs) {
    out << name << '\t' << cost.calls << '\t' << cost.listings << '\t' << cost.written << '\n';
  }
}

// Prints what costs more than is recorded, with a little room for what differs between systems, and
// what is missing. Answers how much that is.
int Excesses(const Costs& now, const Costs& recorded) {
  int excesses = 0;
  const auto exceeds = [](long value, long limit) { return value > limit + limit / 20 + 2; };
  for (const auto& [name, limit] : recorded) {
    const auto found = now.find(name);
    const Cost cost = found == now.end() ? Cost{} : found->second;
    const bool is_more = exceeds(cost.calls, limit.calls) || cost.listings > limit.listings ||
                         exceeds(cost.written, limit.written + limit.written / 4);
    if (!is_more && found != now.end()) continue;
    ++excesses;
    std::cout << "recorded: ";
    Write({{name, limit}}, std::cout);
    std::cout << "now:      ";
    Write({{name, cost}}, std::cout);
  }
  for (const auto& [name, cost] : now) {
    if (recorded.contains(name)) continue;
    ++excesses;
    std::cout << "not recorded: " << name << '\n';
  }
  return excesses;
}

int Main(int argc, char** argv) {
  if (argc < 2) return std::cerr << "usage: operation_costs RECORD [--record]\n", 2;
  const Costs now = CostsNow();
  if (now.empty()) return std::cerr << "The operations did not come to an end.\n", 1;
  if (argc > 2) {
    std::ofstream record(argv[1]);
    Write(now, record);
    return record.good() ? 0 : 1;
  }
  return Excesses(now, Recorded(argv[1])) == 0 ? 0 : 1;
}

}  // namespace
}  // namespace kvdm::faults

int main(int argc, char** argv) { return kvdm::faults::Main(argc, argv); }
