// Deletion plan: what goes when an item is deleted, counted before anything happens, and what
// speaks against it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "safety/changes.h"
#include "safety/result.h"
#include "safety/working_directory.h"

namespace kvdm {

class XmlParser;

// An item that is to be deleted.
struct DeletionTarget {
  std::string kind;  // "study area"
  std::string name;
  std::string guid;
  std::string folder;  // which goes with it, by the component's path; nothing when no folder goes
};

// An item of the documents whose folder or file lies in a folder.
struct ItemInFolder {
  std::string kind;
  std::string name;
  std::string guid;
  std::string path;

  bool operator==(const ItemInFolder&) const = default;
};

struct DeletionPlan {
  DeletionTarget target;
  std::optional<std::filesystem::path> place;  // the folder that goes, as the system has it
  bool folder_is_there = false;
  bool is_counted = true;              // False for a folder that holds more than a project
  os::TreeSize size;                   // of that folder
  std::vector<ItemInFolder> dangling;  // items that stay listed, and lose what is theirs
  std::string objection;               // why it is refused, as a sentence; "" when it is not
};

// A folder may go that is strictly below "StudyAreas" or "Analyses" of the working directory, is
// reached through no link there, holds neither the working directory nor a home folder, and belongs
// to one item alone. What is not there is not objected to, as nothing goes then. Items are
// looked for in the project's metadata and the catalogue of `documents`.
[[nodiscard]] DeletionPlan PlanDeletion(XmlParser& parser, const Documents& documents,
                                        const WorkingDirectory& working_directory,
                                        DeletionTarget target);

// "Delete study area North with 4 analyses, 37 files, 12.4 MB?"
[[nodiscard]] std::string QuestionOf(const DeletionPlan& plan);

// The counts, and a row for what goes and for each item that dangles.
[[nodiscard]] Record CountsOf(const DeletionPlan& plan);
[[nodiscard]] std::vector<Record> RowsOf(const DeletionPlan& plan);

// A number of bytes for people: "12.4 MB", "1 byte".
[[nodiscard]] std::string SizeText(std::int64_t bytes);

}  // namespace kvdm
