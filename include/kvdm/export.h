/// @file
/// Export marker for public classes and functions.
#pragma once

/// Stands on what programs may use of the library, and so on all that the shared library exports.
#ifdef _WIN32
#define KVDM_EXPORT
#else
#define KVDM_EXPORT __attribute__((visibility("default")))
#endif
