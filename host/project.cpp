#include "host/project.h"

#include <fmt/format.h>
#include <zlib.h>

#include <kvdm/datamanager/component.h>

#include "platform/portable/value_text.h"
#include "safety/json.h"
#include "safety/result.h"
#include "util/names.h"

namespace kvdm {
namespace {

constexpr char kFormat[] = "kvdm project";

std::string Checksum(Json document) {
  document["checksum"] = "";
  const std::string text = document.dump(2);
  const auto* bytes = reinterpret_cast<const Bytef*>(text.data());
  return fmt::format("crc32:{:08x}", crc32_z(0, bytes, text.size()));
}

// The type names and JSON forms of values.
struct ValueWriter {
  static Json Typed(const char* type, Json value) {
    return {{"type", type}, {"value", std::move(value)}};
  }

  Json operator()(const Empty&) const { return {{"type", "empty"}}; }
  Json operator()(const Null&) const { return {{"type", "null"}}; }
  Json operator()(bool boolean) const { return Typed("boolean", boolean); }
  Json operator()(std::int32_t number) const { return Typed("long", number); }
  // As text, which has a form for every number, infinite ones and "nan" included.
  Json operator()(double number) const { return Typed("double", fmt::format("{}", number)); }
  Json operator()(const DateTime& time) const { return Typed("date", DateText(time, ' ')); }
  Json operator()(const std::string& text) const {
    return text.starts_with('<') ? Typed("text", XmlLines(text)) : Typed("text", text);
  }
};

double ParseDouble(const std::string& text) {
  if (const auto number = NumberIn<double>(text)) return *number;
  Unreadable(fmt::format("\"{}\" is not a number.", text));
}

DateTime ParseDate(const std::string& text) {
  if (const auto time = DateIn(text, ' ')) return *time;
  Unreadable(fmt::format("\"{}\" is not a date.", text));
}

std::string ParseText(const Json& json) {
  if (!json.is_array()) return json.get<std::string>();
  std::string text;
  for (const Json& line : json) text += line.get_ref<const std::string&>();
  return text;
}

Value ParseValue(const Json& json) {
  const std::string type = json.at("type");
  if (type == "empty") return {};
  if (type == "null") return Null();
  const Json& value = json.at("value");
  if (type == "boolean") return value.get<bool>();
  if (type == "long") return value.get<std::int32_t>();
  if (type == "double") return ParseDouble(value);
  if (type == "date") return ParseDate(value);
  if (type == "text") return ParseText(value);
  Unreadable(fmt::format("It holds a value of the unknown type \"{}\".", type));
}

// A text property stands as itself, any other with its type.
Json PropertiesJson(const PropertySetMap::Properties& properties) {
  Json object = Json::object();
  for (const auto& [name, value] : properties) {
    const auto* text = std::get_if<std::string>(&value.storage());
    object[name] = text != nullptr ? Json(*text) : std::visit(ValueWriter(), value.storage());
  }
  return object;
}

PropertySetMap::Properties ParseProperties(const Json& object) {
  PropertySetMap::Properties properties;
  for (const auto& [name, value] : object.get_ref<const Json::object_t&>()) {
    properties[name] = value.is_string() ? Value(value.get<std::string>()) : ParseValue(value);
  }
  return properties;
}

Json DrivesJson(const std::map<char, std::string>& drives) {
  Json object = Json::object();
  for (const auto& [letter, folder] : drives) object[std::string(1, letter)] = folder;
  return object;
}

std::map<char, std::string> ParseDrives(const Json& object) {
  std::map<char, std::string> drives;
  for (const auto& [letter, folder] : object.get_ref<const Json::object_t&>()) {
    if (letter.size() != 1 || letter[0] < 'A' || letter[0] > 'Z') {
      Unreadable(fmt::format("\"{}\" is no drive letter; drives are A to Z.", letter));
    }
    drives[letter[0]] = folder.get<std::string>();
  }
  return drives;
}

// The first object is the data manager. Further ones stay in `objects` as they are.
void WriteValues(const std::vector<Value>& values, Json& objects) {
  Json written = Json::array();
  for (const Value& value : values) written.push_back(std::visit(ValueWriter(), value.storage()));
  if (objects.empty()) objects = Json::array({{{"id", kDataManagerClass}}});
  objects.front()["values"] = std::move(written);
}

std::vector<Value> ParseObjects(const Json& objects) {
  for (const Json& object : objects.get_ref<const Json::array_t&>()) {
    const std::string id = object.at("id");
    if (id != kDataManagerClass) {
      Unreadable(
          fmt::format("It holds an object \"{}\", which this kvdm does not have. Open it "
                      "with the program that wrote it.",
                      id));
    }
  }
  std::vector<Value> values;
  if (objects.empty()) return values;
  const auto& written = objects.front().at("values").get_ref<const Json::array_t&>();
  for (const Json& value : written) values.push_back(ParseValue(value));
  return values;
}

void CheckVersion(const Json& document) {
  if (document.at("format") != kFormat) Unreadable("It is not a kvdm project.");
  const auto version = document.at("version").get<std::int64_t>();
  if (version > kProjectVersion) {
    Unreadable(
        fmt::format("It was written by a newer kvdm (format version {}; this one reads "
                    "version {}). Open it with that kvdm, or update this one.",
                    version, kProjectVersion));
  }
}

void CheckChecksum(const Json& document) {
  if (document.at("checksum") != Checksum(document)) {
    Unreadable("Its checksum does not match: it was damaged, or edited by hand.");
  }
}

}  // namespace

std::string ProjectText(const Project& project) {
  Json document = project.source.empty() ? Json::object() : ParseJson(project.source);
  document["format"] = kFormat;
  document["version"] = kProjectVersion;
  document["settings"] = PropertiesJson(project.settings);
  document["state"] = PropertiesJson(project.state);
  document["drives"] = DrivesJson(project.drives);
  WriteValues(project.values, document["objects"]);
  document["checksum"] = Checksum(document);
  return document.dump(2) + "\n";
}

Project ParseProject(std::string_view text) {
  try {
    const Json document = ParseJson(text);
    CheckVersion(document);
    CheckChecksum(document);
    return {ParseProperties(document.at("settings")),
            ParseProperties(document.at("state")),
            ParseDrives(document.at("drives")),
            ParseObjects(document.at("objects")),
            std::string(text),
            document.at("checksum")};
  } catch (const Json::exception&) {
    Unreadable("It is not a kvdm project: parts of it are missing or of the wrong kind.");
  }
}

std::string PropertiesText(const PropertySetMap::Properties& properties) {
  return PropertiesJson(properties).dump();
}

PropertySetMap::Properties PropertiesIn(std::string_view text) {
  return ParseProperties(ParseJson(text));
}

std::string DrivesText(const std::map<char, std::string>& drives) {
  return DrivesJson(drives).dump();
}

std::map<char, std::string> DrivesIn(std::string_view text) { return ParseDrives(ParseJson(text)); }

std::vector<std::string> XmlLines(std::string_view text) {
  std::vector<std::string> lines;
  std::string line;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char next = i + 1 < text.size() ? text[i + 1] : '\0';
    line += text[i];
    const bool ends_tag = text[i] == '>' && next != '\r' && next != '\n';
    const bool ends_line = text[i] == '\n' || (text[i] == '\r' && next != '\n');
    if (ends_tag || ends_line) lines.push_back(std::exchange(line, {}));
  }
  if (!line.empty()) lines.push_back(std::move(line));
  return lines;
}

std::string WorkingDirectoryIn(const PropertySetMap::Properties& settings) {
  const auto found = settings.find(kWorkingDirectorySetting);
  const bool is_set = found != settings.end() && found->second.IsText();
  return is_set ? ToText(found->second) : "";
}

}  // namespace kvdm
