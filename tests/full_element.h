// An element that refuses to be changed.
#pragma once

#include <memory>
#include <string>

#include "platform/xml/limits.h"
#include "platform/xml/node.h"

namespace kvdm {

// An element with as many attributes as one may have: every further one fails with run-time error
// 7.
inline std::shared_ptr<xml::Element> FullElement(const char* tag) {
  auto element = xml::Element::Create(tag);
  for (std::size_t i = 0; i < xml::kMaxAttributes; ++i) {
    element->SetAttribute("A" + std::to_string(i), "");
  }
  return element;
}

}  // namespace kvdm
