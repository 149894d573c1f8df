// Any words as commands of kvdm, in a project that has one of each item: they end with a documented
// status, with --json they print one object, the project can be read afterwards, and what stands
// outside is untouched.
//
// A word ends at each NUL, or at each line end in bytes without a NUL; a word ";" ends a command.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/fuzzer.h"
#include "host/command.h"
#include "safety/json.h"
#include "safety/result.h"
#include "tests/temp_folder.h"

namespace kvdm::fuzz {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

constexpr std::size_t kMostCommands = 4;
constexpr char kProject[] = "P/P.kvdm";

// Gives a stream other characters to read or write for as long as it lives.
class Redirected {
 public:
  Redirected(std::ios& stream, std::ios& other)
      : stream_(stream), old_(stream.rdbuf(other.rdbuf())) {
    stream.clear();
  }
  ~Redirected() { stream_.rdbuf(old_); }
  Redirected(const Redirected&) = delete;
  Redirected& operator=(const Redirected&) = delete;

 private:
  std::ios& stream_;
  std::streambuf* old_;
};

struct Answer {
  int status = 0;
  std::string out;
};

Answer Run(const Words& words) {
  std::istringstream in("some text\n");
  std::ostringstream out;
  std::ostringstream err;
  const Redirected input(std::cin, in);
  const Redirected output(std::cout, out);
  const Redirected errors(std::cerr, err);
  const int status = RunCommandLine(words);
  return {status, out.str()};
}

// The contents of all files below `root`, "" for folders; nothing of what is in `but`.
std::map<std::string, std::string> FilesIn(const fs::path& root, const fs::path& but) {
  std::map<std::string, std::string> files;
  for (fs::recursive_directory_iterator entry(root), none; entry != none; ++entry) {
    std::string& text = files[entry->path()];
    if (entry->path() == but) {
      entry.disable_recursion_pending();
    } else if (entry->is_regular_file()) {
      std::ifstream file(entry->path(), std::ios::binary);
      text.assign(std::istreambuf_iterator<char>(file), {});
    }
  }
  return files;
}

// The folder that commands run in, deep in another one.
class Place {
 public:
  Place() : inside_(fs::path(root_.Path()) / "1/2/3/4/5/6/7/8"), old_(fs::current_path()) {
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    Require(nothing >= 0 && ::dup2(nothing, STDIN_FILENO) == STDIN_FILENO);
    ::close(nothing);
    ::setenv("HOME", (inside_ / "home").c_str(), 1);
    ::setenv("XDG_DATA_HOME", (inside_ / "data").c_str(), 1);
    ::unsetenv("KVDM_REGISTRY");
    MakeOutside();
    fs::create_directories(inside_ / "home");
    fs::current_path(inside_);
    const Words commands[] = {{"init", "P"},
                              {"-p", kProject, "analysis", "create", "Sales"},
                              {"-p", kProject, "data", "create", "Roads"},
                              {"-p", kProject, "area", "create", "North"},
                              {"-p", kProject, "area", "use", "North"},
                              {"-p", kProject, "analysis", "create", "Sales", "--duplicate"},
                              {"-p", kProject, "store", "create", "Shops"},
                              {"-p", kProject, "customer", "create", "Buyers"}};
    for (const Words& words : commands) Require(Run(words).status == 0);
    fs::current_path(old_);
    fs::rename(inside_, Template());
  }

  // Makes the folder as new and goes to the project's.
  void Start() {
    fs::remove_all(root_.Path());
    MakeOutside();
    fs::copy(Template(), inside_, fs::copy_options::recursive);
    outside_ = FilesIn(root_.Path(), inside_);
    fs::current_path(inside_ / "P");
  }

  // Goes back, and answers whether what stands outside is as it was.
  [[nodiscard]] bool End() const {
    fs::current_path(old_);
    return FilesIn(root_.Path(), inside_) == outside_;
  }

  // A word with the paths in it that begin at a root beginning in the folder instead.
  [[nodiscard]] std::string Contained(std::string_view word) const {
    const auto first = word.find_first_of("/\\");
    std::string contained;
    for (std::size_t i = 0; i < word.size(); ++i) {
      const bool begins = i == 0 || word[i - 1] == '=' || word[i - 1] == ':' ||
                          (i == first && word.starts_with('-'));
      if (begins && (word[i] == '/' || word[i] == '\\')) {
        std::string inside = inside_.string();
        std::ranges::replace(inside, '/', word[i]);
        contained += inside;
      }
      contained += word[i];
    }
    return contained;
  }

  [[nodiscard]] std::string Project() const { return inside_ / kProject; }
  // As many ".." as words may hold stay in the outermost folder, and so does what is put beside.
  static constexpr std::size_t kStepsUp = 6;

 private:
  [[nodiscard]] fs::path Template() const { return kept_.Path("template"); }
  void MakeOutside() const {
    fs::create_directories(inside_.parent_path());
    for (fs::path folder = inside_.parent_path(); folder != fs::path(root_.Path()).parent_path();
         folder = folder.parent_path()) {
      std::ofstream(folder / "kept.txt") << "untouched";
    }
  }

  TempFolder root_;
  TempFolder kept_;
  fs::path inside_;
  fs::path old_;
  std::map<std::string, std::string> outside_;
};

std::vector<Words> CommandsIn(std::string_view bytes, const Place& place) {
  const char end = bytes.find('\0') == bytes.npos ? '\n' : '\0';
  std::vector<Words> commands(1);
  std::istringstream rest{std::string(bytes)};
  for (std::string word; std::getline(rest, word, end);) {
    if (word != ";") {
      commands.back().push_back(place.Contained(word));
    } else if (commands.size() == kMostCommands) {
      break;
    } else {
      commands.emplace_back();
    }
  }
  return commands;
}

std::size_t StepsUp(std::string_view bytes) {
  std::size_t count = 0;
  for (auto at = bytes.find(".."); at != bytes.npos; at = bytes.find("..", at + 1)) ++count;
  return count;
}

// Whether a word lets a command work where another word says, which may be outside.
bool ChoosesPlace(const std::string& word) {
  constexpr std::array kChoosing = {
      "init", "export", "import", "adopt",  "pack",     "unpack",       "move",      "rebase",
      "add",  "drive",  "-p",     "--list", "--folder", "--layer-file", "--workdir", "--project"};
  return std::ranges::any_of(kChoosing, [&](const char* one) { return word.starts_with(one); });
}

// Whether a command has to print one JSON object.
bool OwesJson(const Words& words) {
  const auto end = std::ranges::find(words, "--");
  const bool helps = std::any_of(words.begin(), end, [](const std::string& word) {
    return word.starts_with("-h") || word.starts_with("--help");
  });
  return !helps && words.front() != "generate" && std::find(words.begin(), end, "--json") != end;
}

void CheckAnswer(const Words& words, const Answer& answer) {
  constexpr std::array kStatuses = {
      ExitCode::kDone,         ExitCode::kRefused,   ExitCode::kUsage,    ExitCode::kNotFound,
      ExitCode::kConflict,     ExitCode::kUnsafe,    ExitCode::kFindings, ExitCode::kBusy,
      ExitCode::kRuntimeError, ExitCode::kUnreadable};
  Require(std::ranges::count(kStatuses, static_cast<ExitCode>(answer.status)) == 1);
  if (!words.empty() && OwesJson(words)) Require(ParseJson(answer.out).is_object());
}

}  // namespace

void Check(std::string_view bytes) {
  static Place place;
  const std::size_t steps_up = StepsUp(bytes);
  if (steps_up > Place::kStepsUp) return;
  place.Start();
  bool may_leave = false;
  for (const Words& words : CommandsIn(bytes, place)) {
    CheckAnswer(words, Run(words));
    may_leave = may_leave || (steps_up > 0 && std::ranges::any_of(words, ChoosesPlace));
  }
  Require(Run({"-p", place.Project(), "status", "--json"}).status == 0);
  Require(place.End() || may_leave);
}

}  // namespace kvdm::fuzz
