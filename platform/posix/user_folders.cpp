#include "platform/posix/user_folders.h"

#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace kvdm {
namespace {

std::string HomeFolder() {
  const char* home = std::getenv("HOME");
  if (home != nullptr && *home != '\0') return home;
  std::array<char, 4096> buffer{};
  passwd entry{};
  passwd* found = nullptr;
  getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
  return found == nullptr ? "" : found->pw_dir;
}

}  // namespace

std::string UserDataFolder() {
  const char* chosen = std::getenv("XDG_DATA_HOME");
  if (chosen != nullptr && *chosen == '/') return chosen;
  return HomeFolder() + "/.local/share";
}

}  // namespace kvdm
