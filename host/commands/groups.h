// All commands, one file a group. A new group is a file in this folder and two lines here.
#pragma once

#include "host/arguments.h"

namespace kvdm {

void AddInitCommand(const CommandGroup& root);
void AddStatusCommand(const CommandGroup& root);
void AddAreaCommands(const CommandGroup& root);
void AddAnalysisCommands(const CommandGroup& root);
// Those below 'kvdm analysis'.
void AddAnalysisProperties(const CommandGroup& analysis);
void AddStoreCommands(const CommandGroup& root);
void AddCustomerCommands(const CommandGroup& root);
void AddDataCommands(const CommandGroup& root);
void AddTableCommands(const CommandGroup& root);
void AddMetadataCommands(const CommandGroup& root);
void AddPresetCommands(const CommandGroup& root);
void AddTempCommands(const CommandGroup& root);
void AddRegistryCommands(const CommandGroup& root);
void AddCatalogueCommands(const CommandGroup& root);
void AddAliasCommands(const CommandGroup& root);
void AddPathCommands(const CommandGroup& root);
void AddProjectCommands(const CommandGroup& root);
// 'kvdm undo', 'kvdm log' and 'kvdm trash'.
void AddHistoryCommands(const CommandGroup& root);
// One of those below 'kvdm project'.
void AddProjectShare(const CommandGroup& project);
void AddCheckCommand(const CommandGroup& root);
void AddDoctorCommand(const CommandGroup& root);
void AddRunCommand(const CommandGroup& root);
void AddExplainCommand(const CommandGroup& root);
// Those below 'kvdm project' of the folders it stands in.
void AddProjectPlaces(const CommandGroup& project);
void AddProjectDrives(const CommandGroup& project);
void AddProjectArchives(const CommandGroup& project);
void AddAdoptCommand(const CommandGroup& root);
void AddGenerateCommands(const CommandGroup& root);
void AddVersionCommand(const CommandGroup& root);

// Those that only this operating system has.
void AddSystemCommands(const CommandGroup& root);

// In the order of the help text.
inline constexpr auto kCommandGroups = {
    &AddInitCommand,       &AddStatusCommand,    &AddAreaCommands,     &AddAnalysisCommands,
    &AddStoreCommands,     &AddCustomerCommands, &AddDataCommands,     &AddTableCommands,
    &AddMetadataCommands,  &AddPresetCommands,   &AddTempCommands,     &AddRegistryCommands,
    &AddCatalogueCommands, &AddAliasCommands,    &AddPathCommands,     &AddProjectCommands,
    &AddAdoptCommand,      &AddCheckCommand,     &AddDoctorCommand,    &AddHistoryCommands,
    &AddRunCommand,        &AddExplainCommand,   &AddGenerateCommands, &AddVersionCommand,
    &AddSystemCommands};

}  // namespace kvdm
