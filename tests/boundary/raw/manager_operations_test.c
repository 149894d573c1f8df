// The operations of the data manager.
#include "calls.h"
#include "check.h"
#include "component.h"
#include "tests.h"
#include "world.h"

static const wchar_t kTempFile[] = WORKING_DIRECTORY L"KelvaroTemp\\tmp";

static void TestWorkingDirectory(IKVDataManager* manager) {
  CHECK_TEXT(WORKING_DIRECTORY, IKVDataManager, get_WorkingDirectory, manager);
  CHECK_DONE(IKVDataManager, put_WorkingDirectory, manager, In(L"D:\\KVDM raw\\Other"));
  CHECK_TEXT(L"D:\\KVDM raw\\Other\\", IKVDataManager, get_WorkingDirectory, manager);
  CHECK_DONE(IKVDataManager, put_WorkingDirectory, manager, In(WORKING_DIRECTORY));
}

static void TestFiles(IKVDataManager* manager) {
  CHECK_TEXT(kTempFile, IKVDataManager, TmpFilePath, manager);
  CHECK(GetFileAttributesW(kTempFile) == INVALID_FILE_ATTRIBUTES);
  CHECK_DONE(IKVDataManager, CleanTemp, manager);
  CHECK_FALSE(IKVDataManager, Flush, manager);
}

static void TestPresetData(IKVDataManager* manager) {
  CHECK_LIST(L"Roads", IKVDataManager, PDataList, manager);
  CHECK_TEXT(PRESET_DIRECTORY L"\\roads.shp", IKVDataManager, GetPDataFile, manager, In(L"Roads"));
  CHECK_TEXT(L"", IKVDataManager, GetPDataFile, manager, In(L"roads"));
}

static void TestAccessors(IKVDataManager* manager) {
  IKVAnalysisCollection* analyses = NULL;
  IKVDataCollection* items = NULL;
  IKVStudyAreaCollection* areas = NULL;
  IKVTablesManager* tables = NULL;
  IKVCustLayerCollection* customers = NULL;
  IKVStoreLayerCollection* stores = NULL;
  GET(analyses, IKVDataManager, AnalysisCollection, manager);
  GET(items, IKVDataManager, DataCollection, manager);
  GET(areas, IKVDataManager, StudyAreaCollection, manager);
  GET(tables, IKVDataManager, TablesManager, manager);
  GET(customers, IKVDataManager, CustLayerCollection, manager);
  GET(stores, IKVDataManager, StoreLayerCollection, manager);
  CHECK(Release(analyses) == 0);
  CHECK(Release(items) == 0);
  CHECK(Release(areas) == 0);
  CHECK(Release(tables) == 0);
  CHECK(Release(customers) == 0);
  CHECK(Release(stores) == 0);
}

// It is the sibling library's object itself.
static void TestDatasetManager(IKVDataManager* manager) {
  IUnknown* first = NULL;
  IUnknown* second = NULL;
  IDispatch* names = NULL;
  GET(first, IKVDataManager, get_DatasetManager, manager);
  GET(second, IKVDataManager, get_DatasetManager, manager);
  CHECK(first == second);
  names = As(first, &IID_IDispatch);
  Release(names);
  Release(second);
  Release(first);
}

static void TestIdentifier(IPersistVariant* persist) {
  IIdentifier* identifier = NULL;
  BSTR text = NULL;
  GET(identifier, IPersistVariant, ID, persist);
  CHECK_TEXT(L"KVDM.KVDataManager", IIdentifier, GetValue, identifier);
  CHECK_DONE(IIdentifier, PutValue, identifier, In(L"Any text"));
  CHECK_TEXT(L"Any text", IIdentifier, GetValue, identifier);
  CHECK_DONE(IIdentifier, Generate, identifier);
  CHECK_CODE(S_OK, CALL(IIdentifier, GetValue, identifier, &text));
  CHECK(SysStringLen(text) == 38);
  SysFreeString(text);
  CHECK(Release(identifier) == 0);
}

// Saves into a stream, loads it into a second data manager, which finds the analysis there.
static void TestPersistence(IKVDataManager* manager) {
  Stream stream;
  IKVDataManager* other = NewManager();
  IPersistVariant* persist = As(manager, &IID_IPersistVariant);
  IPersistVariant* persist_other = As(other, &IID_IPersistVariant);
  IKVAnalysisCollection* analyses = NULL;
  InitStream(&stream);
  TestIdentifier(persist);
  GET(analyses, IKVDataManager, AnalysisCollection, manager);
  CHECK_TRUE(IKVAnalysisCollection, CreateAnalysis, analyses, In(L"Sales"));
  Release(analyses);
  CHECK_DONE(IPersistVariant, Save, persist, (IUnknown*)&stream);
  CHECK(stream.written == 1);
  CHECK(V_VT(&stream.value) == VT_BSTR);
  CHECK_DONE(IPersistVariant, Load, persist_other, (IUnknown*)&stream);
  GET(analyses, IKVDataManager, AnalysisCollection, other);
  CHECK_LIST(L"Sales", IKVAnalysisCollection, AnalysesList, analyses);
  Release(analyses);
  Release(persist_other);
  Release(other);
  Release(persist);
  FreeStream(&stream);
}

static void Comment(IKVDataManager* manager, const wchar_t* comments) {
  IKVStudyAreaCollection* areas = NULL;
  IKVStudyArea* north = NULL;
  GET(areas, IKVDataManager, StudyAreaCollection, manager);
  GET(north, IKVStudyAreaCollection, GetStudyArea, areas, In(L"North"));
  CHECK_DONE(IKVStudyArea, put_Comments, north, In(comments));
  CHECK(Release(north) == 0);
  CHECK(Release(areas) == 0);
}

// A view of the first data manager sees what the second one did once that was read again, and a
// listener hears of it, also one that fails.
static void TestCatalogue(IKVDataManager* manager) {
  Listener listener;
  IKVDataManager* other = NewManager();
  IKVCatalogue* catalogue = As(manager, &IID_IKVCatalogue);
  IKVStudyAreaCollection* areas = NULL;
  IKVStudyArea* north = NULL;
  InitListener(&listener);
  GET(areas, IKVDataManager, StudyAreaCollection, manager);
  GET(north, IKVStudyAreaCollection, GetStudyArea, areas, In(L"North"));
  CHECK_DONE(IKVCatalogue, Notify, catalogue, (IUnknown*)&listener);
  CHECK_FALSE(IKVCatalogue, ChangedByOthers, catalogue);
  Comment(other, L"theirs");
  listener.object.failure.code = E_FAIL;
  CHECK_TRUE(IKVCatalogue, ChangedByOthers, catalogue);
  CHECK(listener.told == 1);
  CHECK_TEXT(L"", IKVStudyArea, get_Comments, north);
  CHECK_TRUE(IKVCatalogue, Reload, catalogue);
  CHECK_TEXT(L"theirs", IKVStudyArea, get_Comments, north);
  CHECK_FALSE(IKVCatalogue, ChangedByOthers, catalogue);
  CHECK_DONE(IKVCatalogue, Notify, catalogue, NULL);
  FreeListener(&listener);
  CHECK(Release(north) == 0);
  CHECK(Release(areas) == 0);
  Release(catalogue);
  CHECK(Release(other) == 0);
}

void TestManagerOperations(void) {
  World world;
  InitWorld(&world);
  TestWorkingDirectory(world.manager);
  TestFiles(world.manager);
  TestPresetData(world.manager);
  TestAccessors(world.manager);
  TestDatasetManager(world.manager);
  TestPersistence(world.manager);
  TestCatalogue(world.manager);
  FreeWorld(&world);
}
