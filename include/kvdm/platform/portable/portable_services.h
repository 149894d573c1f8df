/// @file
/// GIS core library and sibling libraries for hosts that do not bring their own.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>

#include <kvdm/export.h>
#include <kvdm/platform/gis_core.h>
#include <kvdm/platform/siblings.h>

namespace kvdm {

/// The registry form of a version-4 identifier made of 16 bytes, of which version and variant are
/// overwritten.
[[nodiscard]] KVDM_EXPORT std::string GuidText(std::array<unsigned char, 16> bytes);

/// A GIS core library whose objects live in memory. `new_guid` answers a new identifier, in
/// registry form, at each call.
[[nodiscard]] KVDM_EXPORT std::shared_ptr<GisCore> MakePortableGisCore(
    std::function<std::string()> new_guid);

/// Stand-ins for the sibling libraries: a dataset manager that only answers Empty, and the finder
/// of the component's texts in English, "" for a number without a text.
[[nodiscard]] KVDM_EXPORT std::shared_ptr<Siblings> MakePortableSiblings();

}  // namespace kvdm
