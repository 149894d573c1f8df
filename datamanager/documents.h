// The documents of the data manager, as they start.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/platform/platform.h>

#include "platform/xml/document.h"

namespace kvdm {

using DocumentRef = std::shared_ptr<xml::Document>;

// What the host's project has open.
struct Workspace {
  // The working directory with a trailing "\"; "" until one is set.
  std::string directory;
  // Nothing after a text that was not well-formed.
  DocumentRef metadata;
  // Whether names may be given out and layers registered: from the first working directory on,
  // until one can't be set or the metadata has no root.
  bool metadata_valid = false;
};

// A metadata document as it starts: the declaration, the root, a banner comment, and four empty
// collections.
[[nodiscard]] DocumentRef NewMetadataDocument();

// A study area catalogue as it starts: an empty collection without a declaration.
[[nodiscard]] DocumentRef NewCatalogue();

// The document that `text` holds; an empty document when it can't be parsed.
[[nodiscard]] DocumentRef ParseDocument(XmlParser& parser, std::string_view text);

// The preset catalogue in `folder`, the file "PresetData.xml"; an empty document when it can't be
// read.
[[nodiscard]] DocumentRef LoadPresets(const Platform& platform, std::string_view folder);

}  // namespace kvdm
