// All commands, one file a group. A new group is a file in this folder and two lines here.
#pragma once

#include "host/arguments.h"

namespace kvdm {

void AddInitCommand(const CommandGroup& root);
void AddStatusCommand(const CommandGroup& root);
void AddAreaCommands(const CommandGroup& root);
void AddAnalysisCommands(const CommandGroup& root);
void AddMetadataCommands(const CommandGroup& root);
void AddPresetCommands(const CommandGroup& root);
void AddTempCommands(const CommandGroup& root);
void AddProjectCommands(const CommandGroup& root);
void AddVersionCommand(const CommandGroup& root);

// In the order of the help text.
inline constexpr auto kCommandGroups = {
    &AddInitCommand,      &AddStatusCommand,    &AddAreaCommands,
    &AddAnalysisCommands, &AddMetadataCommands, &AddPresetCommands,
    &AddTempCommands,     &AddProjectCommands,  &AddVersionCommand};

}  // namespace kvdm
