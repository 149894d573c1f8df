// The documents of the data manager, as they start.
#pragma once

#include <memory>
#include <string_view>

#include <kvdm/platform/file_system.h>

#include "platform/xml/document.h"

namespace kvdm {

using DocumentRef = std::shared_ptr<xml::Document>;

// A metadata document as it starts: the declaration, the root, a banner comment, and four empty
// collections.
[[nodiscard]] DocumentRef NewMetadataDocument();

// A study area catalogue as it starts: an empty collection without a declaration.
[[nodiscard]] DocumentRef NewCatalogue();

// The document that `text` holds; an empty document when it can't be parsed.
[[nodiscard]] DocumentRef ParseDocument(XmlParser& parser, std::string_view text);

// The preset catalogue in `folder`, the file "PresetData.xml"; an empty document when it can't be
// read.
[[nodiscard]] DocumentRef LoadPresets(FileSystem& files, XmlParser& parser,
                                      std::string_view folder);

}  // namespace kvdm
