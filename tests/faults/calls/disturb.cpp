// Runs a program and disturbs its system calls.
//
//   disturb [OPTION...] -- PROGRAM [ARGUMENT...]
//
//   --count KIND    the calls that count: all (the default), changing, transfers
//   --at N          the N-th of them is disturbed; without it none is
//   --fail ERRNO    by failing with this error number
//   --halve         by reading or writing half the bytes
//   --kill          by killing the program before it makes the call
//   --for N         N calls are disturbed, not one; 0 for all that follow
//   --no-pause      pauses of the program take no time
//   --record FILE   writes down what is done to files (recorder.h)
//   --report FILE   ends with a line there: calls that counted, calls disturbed, name of the first
//
// Calls that the loader makes before the program runs do not count. The status is the program's;
// after a signal, 128 and its number.
#include <elf.h>
#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/faults/calls/recorder.h"

namespace kvdm::faults {
namespace {

struct Options {
  enum class Way { kNone, kFail, kHalve, kKill };
  std::string count = "all";
  long at = 0;
  Way way = Way::kNone;
  int error = 0;
  long times = 1;
  bool no_pause = false;
  std::string record;
  std::string report;
  std::vector<char*> command;
};

[[noreturn]] void Fail(const std::string& what) {
  std::cerr << "disturb: " << what << ": " << std::strerror(errno) << '\n';
  std::exit(EXIT_FAILURE);
}

Options Parse(int argc, char** argv) {
  Options options;
  int i = 1;
  const auto value = [&] { return std::string(++i < argc ? argv[i] : ""); };
  for (; i < argc && std::string(argv[i]) != "--"; ++i) {
    const std::string word = argv[i];
    if (word == "--count") options.count = value();
    if (word == "--at") options.at = std::atol(value().c_str());
    if (word == "--fail") options.way = Options::Way::kFail, options.error = std::stoi(value());
    if (word == "--halve") options.way = Options::Way::kHalve;
    if (word == "--kill") options.way = Options::Way::kKill;
    if (word == "--for") options.times = std::atol(value().c_str());
    if (word == "--no-pause") options.no_pause = true;
    if (word == "--record") options.record = value();
    if (word == "--report") options.report = value();
  }
  for (++i; i < argc; ++i) options.command.push_back(argv[i]);
  if (options.command.empty()) {
    std::cerr << "usage: disturb [OPTION...] -- PROGRAM [ARGUMENT...]\n";
    std::exit(2);
  }
  options.command.push_back(nullptr);
  return options;
}

bool IsPause(long number) { return number == SYS_nanosleep || number == SYS_clock_nanosleep; }

// Lets the kernel stop the program at the calls that are looked at, and at no others.
void StopAtCalls() {
  std::vector<sock_filter> filter = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
  const auto stop_at = [&](long number) {
    filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<__u32>(number), 0, 1));
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
  };
  for (const SystemCall& call : SystemCalls()) stop_at(call.number);
  stop_at(SYS_nanosleep);
  stop_at(SYS_clock_nanosleep);
  filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
  const sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) Fail("prctl");
  if (::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0) Fail("seccomp");
}

[[noreturn]] void RunProgram(const Options& options) {
  if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) Fail("ptrace");
  ::raise(SIGSTOP);
  StopAtCalls();
  ::execvp(options.command[0], options.command.data());
  Fail(options.command[0]);
}

class Disturbance {
 public:
  explicit Disturbance(const Options& options) : options_(options) {
    if (!options.record.empty()) recorder_.emplace(options.record);
    for (const SystemCall& call : SystemCalls()) calls_[call.number] = &call;
  }

  // Follows the program to its end and returns its status.
  int Follow(pid_t program);
  void Report() const;

 private:
  using AtExit = std::function<void(Tracee&)>;

  void Stopped(pid_t process, int status);
  // Answers what is to be done when the call has been made; nothing when that is not of interest.
  AtExit Entering(Tracee& tracee);
  AtExit Disturb(Tracee& tracee, const SystemCall& call);
  [[nodiscard]] bool Counts(const Tracee& tracee, const SystemCall& call) const;
  [[nodiscard]] bool FromLoader(const Tracee& tracee) const;
  void FindLoader(pid_t process);

  const Options& options_;
  std::optional<Recorder> recorder_;
  std::map<long, const SystemCall*> calls_;
  std::map<pid_t, AtExit> pending_;
  unsigned long long loader_ = 0;
  unsigned long long loader_end_ = 0;
  long counted_ = 0;
  long disturbed_ = 0;
  std::string first_;
};

user_regs_struct Registers(pid_t process) {
  user_regs_struct registers{};
  ::ptrace(PTRACE_GETREGS, process, nullptr, &registers);
  return registers;
}

// In place of the call, which is not made, the program finds `result`.
void Answer(Tracee& tracee, long result) {
  tracee.registers.orig_rax = static_cast<unsigned long long>(-1);
  tracee.registers.rax = static_cast<unsigned long long>(result);
  ::ptrace(PTRACE_SETREGS, tracee.process, nullptr, &tracee.registers);
}

void Disturbance::FindLoader(pid_t process) {
  const std::string facts = "/proc/" + std::to_string(process);
  std::ifstream vector(facts + "/auxv", std::ios::binary);
  Elf64_auxv_t entry{};
  while (vector.read(reinterpret_cast<char*>(&entry), sizeof entry)) {
    if (entry.a_type == AT_BASE) loader_ = entry.a_un.a_val;
  }
  std::ifstream maps(facts + "/maps");
  std::string loader_name;
  for (std::string line; std::getline(maps, line);) {
    const std::string name = line.substr(line.rfind(' ') + 1);
    const unsigned long long begin = std::stoull(line, nullptr, 16);
    if (begin == loader_) loader_name = name;
    if (name == loader_name)
      loader_end_ = std::stoull(line.substr(line.find('-') + 1), nullptr, 16);
  }
}

bool Disturbance::FromLoader(const Tracee& tracee) const {
  return tracee.registers.rip >= loader_ && tracee.registers.rip < loader_end_;
}

bool ChangesByOpening(const Tracee& tracee, const SystemCall& call) {
  constexpr unsigned long long kChanges = O_CREAT | O_TRUNC;
  if (call.number == SYS_open) return (tracee.Argument(1) & kChanges) != 0;
  return call.number == SYS_openat && (tracee.Argument(2) & kChanges) != 0;
}

bool Disturbance::Counts(const Tracee& tracee, const SystemCall& call) const {
  if (FromLoader(tracee)) return false;
  if (options_.count == "changing") return call.changes || ChangesByOpening(tracee, call);
  return options_.count == "all" || call.kind == SystemCall::kTransfer;
}

Disturbance::AtExit Disturbance::Disturb(Tracee& tracee, const SystemCall& call) {
  if (disturbed_++ == 0) first_ = call.name;
  switch (options_.way) {
    case Options::Way::kKill:
      ::kill(tracee.process, SIGKILL);
      return {};
    case Options::Way::kHalve:
      if (tracee.registers.rdx > 1) tracee.registers.rdx /= 2;
      ::ptrace(PTRACE_SETREGS, tracee.process, nullptr, &tracee.registers);
      return {};
    case Options::Way::kFail:
      if (call.number != SYS_close) {
        Answer(tracee, -options_.error);
        return {};
      }
      // Closing closes, whatever it answers.
      return [error = options_.error](Tracee& closed) {
        closed.registers.rax = static_cast<unsigned long long>(-error);
        ::ptrace(PTRACE_SETREGS, closed.process, nullptr, &closed.registers);
      };
    case Options::Way::kNone:
      break;
  }
  return {};
}

Disturbance::AtExit Disturbance::Entering(Tracee& tracee) {
  const long number = static_cast<long>(tracee.registers.orig_rax);
  if (IsPause(number)) {
    if (options_.no_pause) Answer(tracee, 0);
    return {};
  }
  const SystemCall& call = *calls_.at(number);
  if (Counts(tracee, call)) {
    ++counted_;
    const bool reached = options_.at != 0 && counted_ >= options_.at;
    if (reached && (options_.times == 0 || disturbed_ < options_.times)) {
      return Disturb(tracee, call);
    }
  }
  if (!recorder_) return {};
  auto made = recorder_->Before(tracee, number);
  if (!made) return {};
  return [made = std::move(made)](const Tracee& left) { made(left.Result()); };
}

void Disturbance::Stopped(pid_t process, int status) {
  const int event = status >> 16;
  Tracee tracee{process, Registers(process)};
  if (event == PTRACE_EVENT_EXEC) FindLoader(process);
  if (event == PTRACE_EVENT_SECCOMP) {
    AtExit at_exit = Entering(tracee);
    const bool waits = static_cast<bool>(at_exit);
    if (waits) pending_[process] = std::move(at_exit);
    ::ptrace(waits ? PTRACE_SYSCALL : PTRACE_CONT, process, nullptr, nullptr);
    return;
  }
  if (WSTOPSIG(status) == (SIGTRAP | 0x80)) {
    if (const auto found = pending_.find(process); found != pending_.end()) {
      found->second(tracee);
      pending_.erase(found);
    }
    ::ptrace(PTRACE_CONT, process, nullptr, nullptr);
    return;
  }
  const bool own = event != 0 || WSTOPSIG(status) == SIGSTOP;
  ::ptrace(PTRACE_CONT, process, nullptr, own ? 0 : WSTOPSIG(status));
}

int Disturbance::Follow(pid_t program) {
  int status = 0;
  if (::waitpid(program, &status, 0) != program) Fail("waitpid");
  constexpr long kOptions = PTRACE_O_TRACESECCOMP | PTRACE_O_TRACEEXEC | PTRACE_O_TRACESYSGOOD |
                            PTRACE_O_TRACECLONE | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK |
                            PTRACE_O_EXITKILL;
  if (::ptrace(PTRACE_SETOPTIONS, program, nullptr, kOptions) != 0) Fail("ptrace");
  ::ptrace(PTRACE_CONT, program, nullptr, nullptr);
  int result = EXIT_FAILURE;
  for (;;) {
    const pid_t process = ::waitpid(-1, &status, __WALL);
    if (process < 0) return result;
    if (WIFSTOPPED(status)) {
      Stopped(process, status);
    } else if (process == program) {
      result = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
  }
}

void Disturbance::Report() const {
  if (options_.report.empty()) return;
  std::ofstream(options_.report) << counted_ << ' ' << disturbed_ << ' '
                                 << (first_.empty() ? "none" : first_) << '\n';
}

}  // namespace
}  // namespace kvdm::faults

int main(int argc, char** argv) {
  using namespace kvdm::faults;
  const Options options = Parse(argc, argv);
  const pid_t program = ::fork();
  if (program < 0) Fail("fork");
  if (program == 0) RunProgram(options);
  Disturbance disturbance(options);
  const int status = disturbance.Follow(program);
  disturbance.Report();
  return status;
}
