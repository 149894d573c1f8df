// The operations of study areas, their collection, the tables and the parts of paths.
#include "calls.h"
#include "check.h"
#include "component.h"
#include "tests.h"
#include "world.h"

#define NORTH_DIRECTORY WORKING_DIRECTORY L"StudyAreas\\North\\"

static void TestCollection(IKVStudyAreaCollection* areas) {
  IKVStudyArea* area = NULL;
  IKVStudyArea* same = NULL;
  BSTR guid = NULL;
  CHECK_TRUE(IKVStudyAreaCollection, CreateStudyArea, areas, In(L"South"));
  CHECK_FALSE(IKVStudyAreaCollection, CreateStudyArea, areas, In(L"South"));
  CHECK_LIST(L"North|South", IKVStudyAreaCollection, StudyAreasList, areas);
  CHECK_TRUE(IKVStudyAreaCollection, StudyAreaExists, areas, In(L"South"));
  CHECK_FALSE(IKVStudyAreaCollection, StudyAreaExists, areas, In(L""));
  CHECK_NOTHING(IKVStudyAreaCollection, GetStudyArea, areas, In(L"West"));
  GET(area, IKVStudyAreaCollection, GetStudyArea, areas, In(L"South"));
  CHECK_CODE(S_OK, CALL(IKVStudyArea, get_GUID, area, &guid));
  CHECK_TRUE(IKVStudyAreaCollection, StudyAreaExistsByGUID, areas, In(guid));
  CHECK_NOTHING(IKVStudyAreaCollection, GetStudyAreaByGUID, areas, In(L"{}"));
  GET(same, IKVStudyAreaCollection, GetStudyAreaByGUID, areas, In(guid));
  CHECK_TEXT(L"South", IKVStudyArea, get_Name, same);
  CHECK_TRUE(IKVStudyAreaCollection, DeleteStudyAreaByGUID, areas, In(guid));
  CHECK_FALSE(IKVStudyAreaCollection, DeleteStudyAreaByGUID, areas, In(guid));
  SysFreeString(guid);
  Release(same);
  Release(area);
}

static void TestIdentifiersAndDeletion(IKVStudyAreaCollection* areas) {
  IKVStudyArea* area = NULL;
  BSTR guid = NULL;
  GET(area, IKVStudyAreaCollection, GetStudyArea, areas, In(L"North"));
  CHECK_CODE(S_OK, CALL(IKVStudyArea, get_GUID, area, &guid));
  CHECK_LIST(guid, IKVStudyAreaCollection, StudyAreasGUIDsList, areas);
  CHECK_FALSE(IKVStudyAreaCollection, DeleteStudyArea, areas, In(L"West"));
  CHECK_TRUE(IKVStudyAreaCollection, DeleteStudyArea, areas, In(L"North"));
  CHECK_LIST(L"", IKVStudyAreaCollection, StudyAreasList, areas);
  SysFreeString(guid);
  Release(area);
}

static void TestTexts(IKVStudyArea* area) {
  IKVStudyArea2* more = As(area, &IID_IKVStudyArea2);
  CHECK_TEXT(L"North", IKVStudyArea, get_Name, area);
  CHECK_TEXT(NORTH_DIRECTORY L"StudyArea.lyr", IKVStudyArea, get_LayerFile, area);
  CHECK_TEXT(NORTH_DIRECTORY, IKVStudyArea, get_StudyAreaDir, area);
  CHECK_DONE(IKVStudyArea, put_Comments, area, In(L"First \x00E9 \x4E2D"));
  CHECK_TEXT(L"First \x00E9 \x4E2D", IKVStudyArea, get_Comments, area);
  CHECK_DONE(IKVStudyArea, put_Dataset, area, In(L"Census"));
  CHECK_TEXT(L"Census", IKVStudyArea, get_Dataset, area);
  CHECK_DONE(IKVStudyArea2, put_StudyAreaDir, more, In(L"D:\\KVDM raw\\Moved\\"));
  CHECK_TEXT(L"D:\\KVDM raw\\Moved\\", IKVStudyArea, get_StudyAreaDir, area);
  CHECK_DONE(IKVStudyArea2, put_StudyAreaDir, more, In(NORTH_DIRECTORY));
  CHECK_DONE(IKVStudyArea, put_Name, area, In(L"Far North"));
  CHECK_TEXT(L"Far North", IKVStudyArea, get_Name, area);
  CHECK_DONE(IKVStudyArea, put_Name, area, In(L"North"));
  Release(more);
}

static void TestProperties(IKVStudyArea* area) {
  IKVPropertySet* properties = As(area, &IID_IKVPropertySet);
  VARIANT value;
  V_VT(&value) = VT_I4;
  V_I4(&value) = 12;
  CHECK_TRUE(IKVPropertySet, SetProperty, properties, In(L"TYPE"), &value);
  CHECK(V_VT(&value) == VT_I4 && V_I4(&value) == 12);
  CHECK_VALUE(L"12", IKVPropertySet, GetProperty, properties, In(L"TYPE"));
  CHECK_VALUE(L"", IKVPropertySet, GetProperty, properties, In(L"Unknown"));
  CHECK_NUMBER(0, IKVPropertySet, get_Count, properties);
  Release(properties);
}

static void TestEdit(IKVStudyArea* area) {
  IKVLayerEdit* edit = As(area, &IID_IKVLayerEdit);
  CHECK_DONE(IKVLayerEdit, put_LayerFile, edit, In(L"D:\\North.lyr"));
  CHECK_TEXT(L"D:\\North.lyr", IKVStudyArea, get_LayerFile, area);
  CHECK_DONE(IKVLayerEdit, put_GUID, edit, In(L"{North}"));
  CHECK_TEXT(L"{North}", IKVStudyArea, get_GUID, area);
  Release(edit);
}

static void TestTables(IKVDataManager* manager) {
  IKVTablesManager* tables = NULL;
  GET(tables, IKVDataManager, TablesManager, manager);
  CHECK_TEXT(NORTH_DIRECTORY L"Tables", IKVTablesManager, get_TablesDir, tables);
  CHECK_TEXT(NORTH_DIRECTORY L"Tables\\Table", IKVTablesManager, get_FreeTablePath, tables);
  Release(tables);
}

static void TestFileInfo(void) {
  IKVFileInfo* info = Create(&CLSID_KVFileInfo, &IID_IKVFileInfo);
  CHECK_TEXT(L"", IKVFileInfo, get_FullPath, info);
  CHECK_DONE(IKVFileInfo, put_FullPath, info, In(L"D:\\Data\\Roads.shp"));
  CHECK_TEXT(L"D:\\Data\\", IKVFileInfo, get_ParentDirPath, info);
  CHECK_TEXT(L"Roads", IKVFileInfo, get_FileName, info);
  CHECK_TEXT(L"shp", IKVFileInfo, get_FileNameExtension, info);
  CHECK_TEXT(L"D:\\Data\\Roads.shp", IKVFileInfo, get_FullPath, info);
  CHECK(Release(info) == 0);
}

void TestStudyAreaOperations(void) {
  World world;
  IKVStudyAreaCollection* areas = NULL;
  IKVStudyArea* area = NULL;
  InitWorld(&world);
  GET(areas, IKVDataManager, StudyAreaCollection, world.manager);
  TestCollection(areas);
  GET(area, IKVStudyAreaCollection, GetStudyArea, areas, In(L"North"));
  TestTexts(area);
  TestProperties(area);
  TestTables(world.manager);
  TestEdit(area);
  Release(area);
  TestIdentifiersAndDeletion(areas);
  Release(areas);
  TestFileInfo();
  FreeWorld(&world);
}
