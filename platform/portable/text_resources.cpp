#include "platform/portable/text_resources.h"

namespace kvdm {

std::string TextResources::FindString(std::string_view id) {
  if (id == "101") {
    return "The working directory could not be opened as chosen in the settings. "
           "Please choose another folder in the settings and try again.";
  }
  if (id == "102") {
    return "The record of this study area holds no list of properties, so the property was not "
           "stored. Please create the study area anew and store the property again.";
  }
  return {};
}

}  // namespace kvdm
