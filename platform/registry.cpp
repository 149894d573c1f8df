#include <array>

#include <kvdm/platform/error.h>
#include <kvdm/platform/registry.h>

namespace kvdm {
namespace {

struct StateText {
  RegistryState state;
  std::string_view name;
  std::string_view sentence;
  std::string_view advice;
};

constexpr std::array<StateText, 10> kStates = {{
    {RegistryState::kReady, "ready", "can be read and written", ""},
    {RegistryState::kBusy, "busy", "is held by another program",
     "Close the program that holds it, such as a backup or a database browser, and try again."},
    {RegistryState::kDamaged, "damaged", "is damaged",
     "Put a copy from a backup in its place, or set it aside to start with a new one."},
    {RegistryState::kNotADatabase, "not a database", "is no database",
     "Put a copy from a backup in its place, or set it aside to start with a new one."},
    {RegistryState::kForeign, "foreign", "belongs to another program",
     "Name another file for the registry."},
    {RegistryState::kNewer, "newer", "was written by a newer version",
     "Update this program, or name another file for the registry."},
    {RegistryState::kForbidden, "forbidden", "may not be used by you",
     "Ask for the right to read and write it, or name another file for the registry."},
    {RegistryState::kReadOnly, "read-only", "can be read but not written",
     "Ask for the right to write it, or name another file for the registry."},
    {RegistryState::kTooLarge, "too large", "holds more study areas than can be kept",
     "Put a copy from a backup in its place."},
    {RegistryState::kFailing, "failing", "can't be used",
     "See to the disk that it is on, and try again."},
}};

const StateText& TextOf(RegistryState state) { return kStates.at(static_cast<std::size_t>(state)); }

}  // namespace

std::string_view RegistryCondition::Name() const { return TextOf(state).name; }
std::string_view RegistryCondition::Sentence() const { return TextOf(state).sentence; }
std::string_view RegistryCondition::Advice() const { return TextOf(state).advice; }

std::vector<std::size_t> TextUpdate::Cuts(std::string_view) const { return {}; }

std::optional<TextUpdate::Unopposed> TextUpdate::IfUnopposed() const { return std::nullopt; }

std::string Registry::Stamp() const { return {}; }

void ThrowUnreadable(const RegistryCondition& condition) {
  throw RuntimeError(kDeviceUnavailable, "Registry",
                     "The registry " + std::string(condition.Sentence()) + ": " + condition.cause);
}

}  // namespace kvdm
