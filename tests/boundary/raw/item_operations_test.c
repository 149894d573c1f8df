// The operations of analyses, layers and data items.
#include "calls.h"
#include "check.h"
#include "component.h"
#include "tests.h"
#include "world.h"

// A text property of an item: what is set is read.
#define TEST_PROPERTY(Item, Property, item, text)     \
  do {                                                \
    CHECK_DONE(Item, put_##Property, item, In(text)); \
    CHECK_TEXT(text, Item, get_##Property, item);     \
  } while (0)

#define TEST_PARAMETERS(Item, item)                                \
  do {                                                             \
    CHECK_LIST(L"", Item, ParametersList, item);                   \
    CHECK_TRUE(Item, SetParameter, item, In(L"Radius"), In(L"5")); \
    CHECK_TRUE(Item, SetParameter, item, In(L"Unit"), In(L"km"));  \
    CHECK_TRUE(Item, SetParameter, item, In(L"Radius"), In(L"7")); \
    CHECK_LIST(L"Radius|Unit", Item, ParametersList, item);        \
    CHECK_TEXT(L"7", Item, GetParameter, item, In(L"Radius"));     \
    CHECK_TEXT(L"", Item, GetParameter, item, In(L"radius"));      \
    CHECK_TRUE(Item, ClearParametersList, item);                   \
    CHECK_LIST(L"", Item, ParametersList, item);                   \
  } while (0)

#define TEST_FLAG(Item, Property, item)                    \
  do {                                                     \
    CHECK_DONE(Item, put_##Property, item, VARIANT_TRUE);  \
    CHECK_TRUE(Item, get_##Property, item);                \
    CHECK_DONE(Item, put_##Property, item, VARIANT_FALSE); \
    CHECK_FALSE(Item, get_##Property, item);               \
  } while (0)

// What both kinds of layers have.
#define TEST_LAYER(Item, item)                                         \
  do {                                                                 \
    TEST_PROPERTY(Item, LayerFile, item, L"D:\\Layers\\Layer.lyr");    \
    TEST_PROPERTY(Item, NameField, item, L"NAME");                     \
    TEST_PROPERTY(Item, IDField, item, L"ID");                         \
    TEST_PROPERTY(Item, CreationTime, item, L"11/15/2026 7:35:30 AM"); \
    TEST_PROPERTY(Item, StudyAreaName, item, L"North");                \
    TEST_PROPERTY(Item, Comments, item, L"First");                     \
    TEST_PROPERTY(Item, Name, item, L"Renamed");                       \
    TEST_FLAG(Item, IsInternalData, item);                             \
    TEST_PARAMETERS(Item, item);                                       \
  } while (0)

static void TestEdit(void* item) {
  IKVLayerEdit* edit = As(item, &IID_IKVLayerEdit);
  CHECK_DONE(IKVLayerEdit, put_GUID, edit, In(L"{Edited}"));
  CHECK_DONE(IKVLayerEdit, put_LayerFile, edit, In(L"D:\\Edited.lyr"));
  Release(edit);
}

static void TestAnalysis(IKVDataManager* manager) {
  IKVAnalysisCollection* analyses = NULL;
  IKVAnalysis* analysis = NULL;
  GET(analyses, IKVDataManager, AnalysisCollection, manager);
  CHECK_TRUE(IKVAnalysisCollection, CreateAnalysis, analyses, In(L"Sales"));
  GET(analysis, IKVAnalysisCollection, GetAnalysis, analyses, In(L"Sales"));
  CHECK_TEXT(WORKING_DIRECTORY L"StudyAreas\\North\\Analyses\\Sales\\", IKVAnalysis,
             get_AnalysisDir, analysis);
  TEST_PROPERTY(IKVAnalysis, LayerFile, analysis, L"D:\\Layers\\Layer.lyr");
  TEST_PROPERTY(IKVAnalysis, Comments, analysis, L"");
  TEST_PROPERTY(IKVAnalysis, CreationTime, analysis, L"11/15/2026 7:35:30 AM");
  TEST_PROPERTY(IKVAnalysis, Name, analysis, L"Turnover");
  TEST_PARAMETERS(IKVAnalysis, analysis);
  TestEdit(analysis);
  CHECK_TEXT(L"{Edited}", IKVAnalysis, get_AnalysisGUID, analysis);
  CHECK_TEXT(L"D:\\Edited.lyr", IKVAnalysis, get_LayerFile, analysis);
  Release(analysis);
  Release(analyses);
}

static void TestCustLayer(IKVDataManager* manager) {
  IKVCustLayerCollection* layers = NULL;
  IKVCustLayer* layer = NULL;
  GET(layers, IKVDataManager, CustLayerCollection, manager);
  CHECK_TRUE(IKVCustLayerCollection, CreateCustLayer, layers, In(L"Customers"));
  GET(layer, IKVCustLayerCollection, GetCustLayer, layers, In(L"Customers"));
  TEST_LAYER(IKVCustLayer, layer);
  TEST_PROPERTY(IKVCustLayer, LinkField, layer, L"STORE");
  TestEdit(layer);
  CHECK_TEXT(L"{Edited}", IKVCustLayer, get_GUID, layer);
  Release(layer);
  Release(layers);
}

static void TestStoreLayer(IKVDataManager* manager) {
  IKVStoreLayerCollection* layers = NULL;
  IKVStoreLayer* layer = NULL;
  GET(layers, IKVDataManager, StoreLayerCollection, manager);
  CHECK_TRUE(IKVStoreLayerCollection, CreateStoreLayer, layers, In(L"Stores"));
  GET(layer, IKVStoreLayerCollection, GetStoreLayer, layers, In(L"Stores"));
  TEST_LAYER(IKVStoreLayer, layer);
  TestEdit(layer);
  CHECK_TEXT(L"{Edited}", IKVStoreLayer, get_GUID, layer);
  Release(layer);
  Release(layers);
}

static void TestDataItem(IKVDataManager* manager) {
  IKVDataCollection* items = NULL;
  IKVDataItem* item = NULL;
  BSTR guid = NULL;
  GET(items, IKVDataManager, DataCollection, manager);
  CHECK_TRUE(IKVDataCollection, CreateDataItem, items, In(L"Roads"));
  GET(item, IKVDataCollection, GetDataItem, items, In(L"Roads"));
  TEST_PROPERTY(IKVDataItem, LayerFile, item, L"D:\\Roads.shp");
  TEST_PROPERTY(IKVDataItem, AdditionalInfo, item, L"More");
  TEST_PROPERTY(IKVDataItem, Name, item, L"Streets");
  TEST_PARAMETERS(IKVDataItem, item);
  CHECK_CODE(S_OK, CALL(IKVDataItem, get_GUID, item, &guid));
  CHECK(SysStringLen(guid) == 38);
  SysFreeString(guid);
  Release(item);
  Release(items);
}

void TestItemOperations(void) {
  World world;
  InitWorld(&world);
  TestAnalysis(world.manager);
  TestCustLayer(world.manager);
  TestStoreLayer(world.manager);
  TestDataItem(world.manager);
  FreeWorld(&world);
}
