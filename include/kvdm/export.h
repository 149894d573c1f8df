// KVDM_EXPORT: what programs may use of the library, and all that the shared library exports.
#pragma once

#ifdef _WIN32
#define KVDM_EXPORT
#else
#define KVDM_EXPORT __attribute__((visibility("default")))
#endif
