// A user's project, and the text that it is kept as.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/portable/properties_host.h>
#include <kvdm/platform/value.h>

namespace kvdm {

inline constexpr int kProjectVersion = 1;

// The largest project file that is read, or written.
inline constexpr std::size_t kMaxProjectBytes = std::size_t{256} << 20U;

struct Project {
  PropertySetMap::Properties settings;
  PropertySetMap::Properties state;
  std::map<char, std::string> drives;  // drive letter -> folder of this computer
  std::vector<Value> values;           // what the data manager wrote into the project
  // The text that the project was read from; what this version does not know is kept from it.
  std::string source;
  std::string checksum;  // of `source`
};

// The working directory of settings, as it stands there; "" for none.
[[nodiscard]] std::string WorkingDirectoryIn(const PropertySetMap::Properties& settings);

// The project's text: JSON with a checksum over all its content. A text value that is XML has one
// element a line, so that a change shows as the lines it touched. Equal projects have equal texts.
[[nodiscard]] std::string ProjectText(const Project& project);

// The project of a text. Failure kUnreadable, saying what is wrong, for one that is no project, was
// damaged or is of a newer version.
[[nodiscard]] Project ParseProject(std::string_view text);

// Properties and drives as texts: JSON objects; and back. Equal ones have equal texts.
[[nodiscard]] std::string PropertiesText(const PropertySetMap::Properties& properties);
[[nodiscard]] PropertySetMap::Properties PropertiesIn(std::string_view text);
[[nodiscard]] std::string DrivesText(const std::map<char, std::string>& drives);
[[nodiscard]] std::map<char, std::string> DrivesIn(std::string_view text);

// A text cut after each ">" and each line end. Joined they are the text again.
[[nodiscard]] std::vector<std::string> XmlLines(std::string_view text);

}  // namespace kvdm
