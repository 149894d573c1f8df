#include "platform/windows/device_names.h"

#include <algorithm>
#include <array>

#include "platform/file_names.h"

namespace kvdm {
namespace {

constexpr std::array<std::string_view, 6> kDevices = {"CON", "PRN",    "AUX",
                                                      "NUL", "CONIN$", "CONOUT$"};
constexpr std::array<std::string_view, 2> kPorts = {"COM", "LPT"};
// The raised digits count as digits here.
constexpr std::array<std::string_view, 12> kPortNumbers = {
    "1", "2", "3", "4", "5", "6", "7", "8", "9", "\u00b9", "\u00b2", "\u00b3"};

bool IsPort(std::string_view name) {
  constexpr std::size_t kLetters = 3;
  return name.size() > kLetters &&
         std::ranges::find(kPortNumbers, name.substr(kLetters)) != kPortNumbers.end() &&
         std::ranges::any_of(kPorts, [&](std::string_view port) {
           return SameName(port, name.substr(0, kLetters));
         });
}

}  // namespace

bool IsDeviceName(std::string_view name) {
  const std::string_view base = TrimmedName(name.substr(0, name.find('.')));
  return IsPort(base) || std::ranges::any_of(kDevices, [&](std::string_view device) {
           return SameName(device, base);
         });
}

}  // namespace kvdm
