// A three-way merge of one element: what changed in it, carried over to another state of it.
#pragma once

#include <string>

#include "platform/xml/node.h"

namespace kvdm {

// The attribute's text; "" when it is missing.
[[nodiscard]] std::string TextOf(const xml::Element& element, const char* attribute);

// Canonical text of an element: the same for any order of attributes and elements and any way of
// writing; without the attribute `ignored`. The marks between the parts can't be in an XML
// text.
[[nodiscard]] std::string Canonical(const xml::Element& element, const char* ignored = "");

// Carries what changed from `base` to `wanted` over to `target`: attribute by attribute and child
// by child, children told apart by tag, name, and a number where these repeat. Whether `target` had
// changed in the same places to something else, which is lost then.
bool ApplyChange(const xml::Element& base, const xml::Element& wanted, const xml::Element& target);

}  // namespace kvdm
