// The localisable texts, in English.
#pragma once

#include "platform/siblings.h"

namespace kvdm {

class TextResources : public ResourceFinder {
 public:
  // "" for a number without a text.
  std::string FindString(std::string_view id) override;
};

}  // namespace kvdm
