// The entry of the shared library, for hosts that load it at run time.
#pragma once

#include <cstdint>
#include <memory>

#include "datamanager/unknown.h"
#include "platform/platform.h"

// Creates an object of the class `class_identity`, such as "KVDM.KVDataManager", into `*object`. A
// null `platform` stands for this operating system's services with default settings. Returns 0, or
// the run-time error's number with `*object` set to Nothing: 429 for an unknown class, 5 for a null
// argument. Never throws.
extern "C" std::int32_t KvdmCreateObject(const char* class_identity, const kvdm::Platform* platform,
                                         std::shared_ptr<kvdm::Unknown>* object) noexcept;
