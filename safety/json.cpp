#include "safety/json.h"

#include <fmt/format.h>

namespace kvdm {
namespace {

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

void Unreadable(const std::string& sentence) { throw Failure(ExitCode::kUnreadable, sentence); }

Json ParseJson(std::string_view text) {
  try {
    return Json::parse(text, WithinDepth);
  } catch (const Json::parse_error& error) {
    Unreadable(fmt::format("It is not well-formed JSON (byte {}).", error.byte));
  } catch (const Json::exception&) {
    Unreadable("It holds a number that is too large.");
  }
}

Json ToJson(const Field& field) {
  if (const auto* text = std::get_if<std::string>(&field)) return *text;
  if (const auto* number = std::get_if<std::int64_t>(&field)) return *number;
  if (const auto* answer = std::get_if<bool>(&field)) return *answer;
  return nullptr;
}

Json ToJson(const Record& record) {
  Json object = Json::object();
  for (const auto& [name, field] : record) object[name] = ToJson(field);
  return object;
}

Json ToJson(const std::vector<Record>& records) {
  Json array = Json::array();
  for (const Record& record : records) array.push_back(ToJson(record));
  return array;
}

}  // namespace kvdm
