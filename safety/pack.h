// Packed projects: a zip archive of a project's document, its working directory and its study
// areas, which unpacks at any place and on any system.
//
//   kvdm-pack.json   what it is, and the study areas as the catalogue had them
//   Retail.kvdm      the project's document
//   KVData/...       the working directory
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <kvdm/platform/platform.h>

#include "safety/adopt.h"
#include "safety/rebase.h"

namespace kvdm {

struct PackContent {
  std::filesystem::path document;           // the project's file
  std::filesystem::path working_directory;  // as the system has it
  std::string stored_directory;             // as the settings have it
  std::string catalogue;
};

struct PackResult {
  std::int64_t files = 0;
  std::int64_t bytes = 0;
  std::int64_t left_out = 0;  // links, and what is no file
};

// Writes an archive in one step: what is at `archive` is replaced only by a whole one that was read
// again. Temporary files, the trash and the history stay behind. std::system_error; Failure
// kUnreadable when the archive does not read back.
PackResult Pack(const Platform& platform, const PackContent& content,
                const std::filesystem::path& archive);

// What an archive says of itself.
struct PackManifest {
  std::string project;           // the file's name
  std::string folder;            // of the working directory in the archive
  std::string stored_directory;  // as the settings have it
  std::vector<KeptItem> areas;
};

// Unpacks into `folder`, which is not there yet. Failure kUnreadable for an archive that is no
// packed project, is damaged or could do harm; then nothing is left of it.
[[nodiscard]] PackManifest Unpack(const Platform& platform, const std::filesystem::path& archive,
                                  const std::filesystem::path& folder);

// The documents of an unpacked project at its new place: rebased, and its study areas taken into
// the catalogue of `holdings`.
[[nodiscard]] Adoption Settle(const Platform& platform, const Holdings& holdings,
                              const PackManifest& manifest, const std::string& new_directory);

}  // namespace kvdm
