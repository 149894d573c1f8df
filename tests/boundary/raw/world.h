// A data manager in a folder of its own, with its host; and the place where the tests work.
#pragma once

#include "host_objects.h"

// The working directory, and a folder of preset data that holds "Roads", roads.shp.
#define WORKING_DIRECTORY L"D:\\KVDM raw\\Work\\"
#define PRESET_DIRECTORY L"D:\\KVDM raw\\Presets"

typedef struct {
  Host host;
  IKVDataManager* manager;
} World;

// Ready to use: in a prepared place, with its working directory, and with a study area "North" that
// is the current one.
void InitWorld(World* world);
// Checks that no object is left.
void FreeWorld(World* world);

// A data manager without a host.
IKVDataManager* NewManager(void);
void Initialize(IKVDataManager* manager, IUnknown* host);

// Empties the tests' folder and the component's registry key.
void ClearPlace(void);
// The same, and stores the preset data.
void PreparePlace(void);
