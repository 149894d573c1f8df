// kvdm com: the component as other programs of this computer use it.
#include <fmt/format.h>

#include "host/commands/groups.h"
#include "host/os.h"
#include "host/windows/com_server.h"

namespace kvdm {
namespace {

constexpr char kDllHelp[] = "The component's DLL; without it KVDM.dll beside this program";

std::filesystem::path DllOf(const std::optional<std::string>& given) {
  return given ? os::Absolute(os::ToPath(*given)) : OwnComServer();
}

template <class Value>
Field FieldOf(const std::optional<Value>& value) {
  return value ? Field(*value) : Field();
}

class ComInfo : public Command {
 public:
  explicit ComInfo(Arguments arguments) { arguments.Optional("--dll", dll_, kDllHelp); }

  void Execute(const Invocation& invocation) override {
    const auto file = DllOf(dll_);
    const bool found = os::Exists(file);
    const auto word_size = found ? WordSize(file) : std::nullopt;
    invocation.out.Fields(
        {{"dll", os::ToText(file)},
         {"found", found},
         {"version", FieldOf(FileVersion(file))},
         {"word_size", word_size ? Field(std::int64_t{*word_size}) : Field()},
         {"registered_for_machine", FieldOf(RegisteredComServer(ComScope::kMachine))},
         {"registered_for_user", FieldOf(RegisteredComServer(ComScope::kUser))}});
  }

 private:
  std::optional<std::string> dll_;
};

// What registering and unregistering differ in.
struct Registering {
  static constexpr auto kChange = &RegisterComServer;
  static constexpr char kDone[] = "Registered {} for {}.";
};
struct Unregistering {
  static constexpr auto kChange = &UnregisterComServer;
  static constexpr char kDone[] = "Unregistered {} for {}.";
};

template <class Change>
class ComChange : public Command {
 public:
  explicit ComChange(Arguments arguments) {
    arguments.Optional("--dll", dll_, kDllHelp);
    arguments.Flag("--user", user_, "For you alone; needs no administrator");
  }

  void Execute(const Invocation& invocation) override {
    const auto file = DllOf(dll_);
    Change::kChange(file, user_ ? ComScope::kUser : ComScope::kMachine);
    invocation.out.Done(
        {{"dll", os::ToText(file)}, {"scope", user_ ? "user" : "machine"}},
        fmt::format(Change::kDone, os::ToText(file), user_ ? "you" : "all users of this machine"));
  }

 private:
  std::optional<std::string> dll_;
  bool user_ = false;
};

}  // namespace

void AddSystemCommands(const CommandGroup& root) {
  const CommandGroup com = root.Group("com", "The component for other programs, through COM");
  com.Add<ComInfo>("info", "Show the component's DLL and where it is registered",
                   "kvdm com info\nkvdm com info --dll C:\\KVDM\\KVDM.dll");
  com.Add<ComChange<Registering>>("register", "Register the component's DLL",
                                  "kvdm com register\nkvdm com register --user");
  com.Add<ComChange<Unregistering>>("unregister", "Take back what 'kvdm com register' did",
                                    "kvdm com unregister\nkvdm com unregister --user");
}

}  // namespace kvdm
