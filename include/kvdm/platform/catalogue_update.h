/// @file
/// Catalogue update: a change of the study area catalogue as a difference, for those who change it
/// without a data manager.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/export.h>
#include <kvdm/platform/platform.h>

namespace kvdm {

/// The change that leads from the catalogue `base`, as it was read, to `wanted`, for
/// Registry::Update. Study areas that others changed, added or deleted since stay as they left
/// them; of one that was changed here and there `wanted` stands, and what was stored is kept. An
/// empty `wanted` changes nothing. It keeps what it needs of `platform`.
[[nodiscard]] KVDM_EXPORT std::shared_ptr<TextUpdate> MakeCatalogueUpdate(const Platform& platform,
                                                                          std::string_view base,
                                                                          std::string wanted);

}  // namespace kvdm
