#include "host/json.h"

#include <fmt/format.h>

#include "host/failure.h"

namespace kvdm {
namespace {

[[noreturn]] void Unreadable(const std::string& sentence) {
  throw Failure(ExitCode::kUnreadable, sentence);
}

bool WithinDepth(int depth, Json::parse_event_t event, const Json& /*parsed*/) {
  const bool starts =
      event == Json::parse_event_t::array_start || event == Json::parse_event_t::object_start;
  if (starts && depth >= kMaxJsonDepth) {
    Unreadable(
        fmt::format("It has more than {} arrays and objects within each other.", kMaxJsonDepth));
  }
  return true;
}

}  // namespace

Json ParseJson(std::string_view text) {
  try {
    return Json::parse(text, WithinDepth);
  } catch (const Json::parse_error& error) {
    Unreadable(fmt::format("It is not well-formed JSON (byte {}).", error.byte));
  } catch (const Json::exception&) {
    Unreadable("It holds a number that is too large.");
  }
}

}  // namespace kvdm
