/// @file
/// Side-car metadata: a layer's metadata in a file beside its own.
#pragma once

#include <memory>
#include <string_view>

#include <kvdm/export.h>
#include <kvdm/platform/platform.h>

namespace kvdm {

/// The metadata of the layer file at `layer_file`: the document of "D:\Data\Stores.shp" is in
/// "D:\Data\Stores.shp.xml". Where that is another program's, such as a description by ISO or FGDC,
/// it is in "D:\Data\Stores.shp.kvdm.xml", and the other one is never touched. Values come back
/// exactly; in paths, characters that XML can't hold become U+FFFD.
///
/// ReadDocument: run-time error 53 when there is no such file; the file system's error when it
/// can't be read; an automation failure that says what is wrong when it holds damaged metadata.
///
/// WriteDocument replaces the file as a whole. Damaged metadata are first kept beside it, with
/// ".bak" (".bak1", ".bak2" ... when that is taken) after the name. Run-time error 70 when they
/// can't be kept, or when ReadDocument failed to read the file: what it holds would be lost. It
/// then stays. Run-time error 91 for Nothing.
[[nodiscard]] KVDM_EXPORT std::shared_ptr<LayerMetadata> MakeSidecarMetadata(
    const Platform& platform, std::string_view layer_file);

}  // namespace kvdm
