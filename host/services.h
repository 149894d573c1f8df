// Platform services of the hosted component.
#pragma once

#include <exception>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kvdm/platform/platform.h>

#include "host/output.h"

namespace kvdm {

// What a command may do to what is stored.
enum class Access {
  kRead,           // nothing
  kMake,           // make a project, its working directory and the registry
  kChange,         // change the project and files
  kChangeRegistry  // change the study areas and words that all projects share, too
};

// Passes everything on, and remembers what was refused: the component does not ask. After a read
// that failed no other one is tried, as each may have to wait. The component writes the study areas
// at each save; with kChange that goes no further when it changes nothing.
class WatchedRegistry : public Registry {
 public:
  WatchedRegistry(std::shared_ptr<Registry> registry, Access access)
      : registry_(std::move(registry)), access_(access) {}

  std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                    std::string_view name) override;
  bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                 std::string_view text) override;
  bool Update(RegistryRoot root, std::string_view key, std::string_view name,
              const TextUpdate& update) override;
  std::vector<KeptValue> Kept(RegistryRoot root, std::string_view key,
                              std::string_view name) override;
  [[nodiscard]] std::string Stamp() const override { return registry_->Stamp(); }
  [[nodiscard]] RegistryCondition Condition() const override;
  [[nodiscard]] bool Holds(char32_t character) const override;

  // Has `note` called before the list of study areas or an alias changes, with the name of the
  // document and what is to become of the text that was read. What that throws is kept, and the
  // write refused.
  using Note = std::function<void(const char* document, const std::string& before,
                                  const std::string& after)>;
  void SetNote(Note note) { note_ = std::move(note); }
  void RethrowFromNote() const {
    if (note_failure_) std::rethrow_exception(note_failure_);
  }

  // What a write found that was refused, if a later one did not make up for it.
  [[nodiscard]] const std::optional<RegistryCondition>& Refused() const {
    return refused_text_ ? refused_text_ : refused_update_;
  }
  // What the read that failed found.
  [[nodiscard]] const std::optional<RegistryCondition>& Unread() const { return unread_; }

 private:
  template <class Operation>
  auto Reading(Operation operation);

  bool Noted(const char* document, std::string_view before, std::string_view after);
  bool NotedAlias(std::string_view name, std::string_view text);

  std::shared_ptr<Registry> registry_;
  Access access_;
  Note note_;
  std::exception_ptr note_failure_;
  std::optional<std::string> catalogue_;  // as it was first read
  std::optional<RegistryCondition> refused_text_;
  std::optional<RegistryCondition> refused_update_;
  std::optional<RegistryCondition> unread_;
};

struct Services {
  Platform platform;
  std::shared_ptr<WatchedRegistry> registry;  // the platform's
};

// `platform` with its registry watched.
[[nodiscard]] Services Watching(Platform platform, Access access);

// This system's services. `drives` are the folders behind drive letters on a system that has no
// drives itself. Messages and log lines go to `out`, which must outlive them.
[[nodiscard]] Services MakeServices(const std::map<char, std::string>& drives, Access access,
                                    Output& out);

// Where the registry is, and what its condition means and asks for, for people.
[[nodiscard]] std::string RegistryPlace();
[[nodiscard]] std::string RegistrySentence(const RegistryCondition& condition);

// Renames a registry that is damaged, so that the next change starts a new one, and answers its new
// path. Nothing for one in any other state, and where the registry is the system's own.
[[nodiscard]] std::optional<std::string> SetRegistryAside(Output& out);

// The file that is locked while a command changes what all projects share; nothing where the
// registry's path is that of no file.
[[nodiscard]] std::optional<std::filesystem::path> RegistryLockFile();

}  // namespace kvdm
