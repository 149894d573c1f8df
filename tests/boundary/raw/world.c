#include "world.h"

#include <shellapi.h>
#include <stdio.h>

#include "calls.h"
#include "check.h"
#include "component.h"

static const wchar_t kRegistryKey[] = L"Software\\Velk\\Kelvaro";
static const char kPresetData[] =
    "<PRESETDATA><DATAITEM NAME=\"Roads\" GUID=\"{1}\">roads.shp</DATAITEM></PRESETDATA>";

IKVDataManager* NewManager(void) { return Create(&CLSID_KVDataManager, &IID_IKVDataManager); }

void Initialize(IKVDataManager* manager, IUnknown* host) {
  IKVDMInitialize* initialize = As(manager, &IID_IKVDMInitialize);
  CHECK_DONE(IKVDMInitialize, DMInitialize, initialize, host);
  Release(initialize);
}

void InitWorld(World* world) {
  IKVStudyAreaCollection* areas = NULL;
  PreparePlace();
  InitHost(&world->host);
  SetText(&world->host.settings, L"VELKKVDirectory", WORKING_DIRECTORY);
  world->manager = NewManager();
  Initialize(world->manager, (IUnknown*)&world->host);
  GET(areas, IKVDataManager, StudyAreaCollection, world->manager);
  CHECK_TRUE(IKVStudyAreaCollection, CreateStudyArea, areas, In(L"North"));
  SetText(&world->host.state, L"Study Area Name", L"North");
  Release(areas);
}

void FreeWorld(World* world) {
  CHECK(Release(world->manager) == 0);
  CHECK_CODE(S_OK, CanUnloadNow());
  FreeHost(&world->host);
  TakeBack();
}

void ClearPlace(void) {
  // Of two NULs at the end: one ends the last path, one the list.
  SHFILEOPSTRUCTW remove = {.wFunc = FO_DELETE,
                            .pFrom = L"D:\\KVDM raw\0",
                            .fFlags = FOF_NOCONFIRMATION | FOF_SILENT | FOF_NOERRORUI};
  SHFileOperationW(&remove);
  // Of a data manager whose working directory was set to "".
  RemoveDirectoryW(L"D:\\KelvaroTemp");
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, kRegistryKey);
}

static void WritePresetData(void) {
  FILE* file = _wfopen(PRESET_DIRECTORY L"\\PresetData.xml", L"wb");
  CHECK(file != NULL);
  if (file == NULL) return;
  fputs(kPresetData, file);
  fclose(file);
}

void PreparePlace(void) {
  ClearPlace();
  CreateDirectoryW(L"D:\\KVDM raw", NULL);
  CreateDirectoryW(PRESET_DIRECTORY, NULL);
  WritePresetData();
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, kRegistryKey, L"Preset Data Directory", REG_SZ,
                  PRESET_DIRECTORY, sizeof PRESET_DIRECTORY);
}
