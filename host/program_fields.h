// Fields that programs need beside those for people: paths of the system, times of ISO 8601.
#pragma once

#include "safety/os.h"
#include "safety/result.h"

namespace kvdm {

// `fields` with these after the ones that they tell more of:
//
//   folder_native, layer_file_native, ...   the path of the system; nothing where there is none
//   exists                                  whether the folder or, without one, the file is there
//   created_iso                             nothing for a text that is no time
[[nodiscard]] Record ForPrograms(const Record& fields, const os::Drives& drives);

}  // namespace kvdm
