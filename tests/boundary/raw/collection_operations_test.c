// The operations of the collections of analyses, layers and data items.
#include "calls.h"
#include "check.h"
#include "component.h"
#include "tests.h"
#include "world.h"

// What the collections of analyses and of both kinds of layers have in common: `Kind` names the
// items, `Plural` many of them, `Guid` the property with an item's identifier.
#define TEST_COLLECTION(Kind, Plural, Guid, collection)                             \
  do {                                                                              \
    IKV##Kind* item_ = NULL;                                                        \
    IKV##Kind* same_ = NULL;                                                        \
    BSTR guid_ = NULL;                                                              \
    CHECK_LIST(L"", IKV##Kind##Collection, Plural##List, collection);               \
    CHECK_TRUE(IKV##Kind##Collection, Create##Kind, collection, In(L"One"));        \
    CHECK_TRUE(IKV##Kind##Collection, Create##Kind, collection, In(L"Two"));        \
    CHECK_LIST(L"One|Two", IKV##Kind##Collection, Plural##List, collection);        \
    CHECK_TRUE(IKV##Kind##Collection, Kind##Exists, collection, In(L"One"));        \
    CHECK_FALSE(IKV##Kind##Collection, Kind##Exists, collection, In(L"one"));       \
    CHECK_NOTHING(IKV##Kind##Collection, Get##Kind, collection, In(L"Three"));      \
    GET(item_, IKV##Kind##Collection, Get##Kind, collection, In(L"One"));           \
    CHECK_CODE(S_OK, CALL(IKV##Kind, Guid, item_, &guid_));                         \
    CHECK_TRUE(IKV##Kind##Collection, Kind##ExistsByGUID, collection, In(guid_));   \
    CHECK_NOTHING(IKV##Kind##Collection, Get##Kind##ByGUID, collection, In(L"{}")); \
    GET(same_, IKV##Kind##Collection, Get##Kind##ByGUID, collection, In(guid_));    \
    CHECK_TEXT(L"One", IKV##Kind, get_Name, same_);                                 \
    CHECK_TRUE(IKV##Kind##Collection, Delete##Kind, collection, In(L"Two"));        \
    CHECK_FALSE(IKV##Kind##Collection, Delete##Kind, collection, In(L"Two"));       \
    CHECK_LIST(guid_, IKV##Kind##Collection, Plural##GUIDsList, collection);        \
    CHECK_TRUE(IKV##Kind##Collection, Delete##Kind##ByGUID, collection, In(guid_)); \
    CHECK_FALSE(IKV##Kind##Collection, Kind##ExistsByGUID, collection, In(guid_));  \
    SysFreeString(guid_);                                                           \
    Release(same_);                                                                 \
    Release(item_);                                                                 \
  } while (0)

static void TestAnalyses(IKVDataManager* manager) {
  IKVAnalysisCollection* analyses = NULL;
  GET(analyses, IKVDataManager, AnalysisCollection, manager);
  TEST_COLLECTION(Analysis, Analyses, get_AnalysisGUID, analyses);
  Release(analyses);
}

static void TestStoreLayers(IKVDataManager* manager) {
  IKVStoreLayerCollection* stores = NULL;
  GET(stores, IKVDataManager, StoreLayerCollection, manager);
  CHECK_TEXT(WORKING_DIRECTORY L"StoreLayers", IKVStoreLayerCollection, StoreLayersDir, stores);
  TEST_COLLECTION(StoreLayer, StoreLayers, get_GUID, stores);
  Release(stores);
}

static void TestCustLayers(IKVDataManager* manager) {
  IKVCustLayerCollection* customers = NULL;
  GET(customers, IKVDataManager, CustLayerCollection, manager);
  CHECK_TEXT(WORKING_DIRECTORY L"CustLayers", IKVCustLayerCollection, CustLayersDir, customers);
  TEST_COLLECTION(CustLayer, CustLayers, get_GUID, customers);
  Release(customers);
}

// Lists, and what goes by identifier, look at the group of a restored document; the rest does not.
static void TestDataItems(IKVDataManager* manager) {
  Stream stream;
  IPersistVariant* persist = As(manager, &IID_IPersistVariant);
  IKVDataCollection* items = NULL;
  IKVDataItem* item = NULL;
  InitStream(&stream);
  V_VT(&stream.value) = VT_BSTR;
  V_BSTR(&stream.value) = SysAllocString(
      L"<KVDATACOLLECTION><DATACOLLECTION><SADATACOLLECTION>"
      L"<DATAITEM NAME=\"Inner\" GUID=\"{1}\"/><DATAITEM NAME=\"Other\" GUID=\"{2}\"/>"
      L"</SADATACOLLECTION><DATAITEM NAME=\"_Wrapped_\" GUID=\"{3}\"/></DATACOLLECTION>"
      L"</KVDATACOLLECTION>");
  CHECK_DONE(IPersistVariant, Load, persist, (IUnknown*)&stream);
  GET(items, IKVDataManager, DataCollection, manager);
  CHECK_TEXT(WORKING_DIRECTORY L"Data\\", IKVDataCollection, DataItemsDir, items);
  CHECK_LIST(L"Inner|Other", IKVDataCollection, DataItemsList, items);
  CHECK_LIST(L"{1}|{2}", IKVDataCollection, DataItemsGUIDsList, items);
  GET(item, IKVDataCollection, GetDataItemByGUID, items, In(L"{2}"));
  CHECK_TEXT(L"Other", IKVDataItem, get_Name, item);
  Release(item);
  CHECK_TRUE(IKVDataCollection, DeleteDataItemByGUID, items, In(L"{2}"));
  CHECK_TRUE(IKVDataCollection, DeleteDataItem, items, In(L"Inner"));
  CHECK_LIST(L"", IKVDataCollection, DataItemsList, items);
  CHECK_TRUE(IKVDataCollection, DataItemExists, items, In(L"Wrapped"));
  CHECK_TRUE(IKVDataCollection, DataItemExistsByGUID, items, In(L"{3}"));
  CHECK_TRUE(IKVDataCollection, CreateDataItem, items, In(L"Roads"));
  CHECK_FALSE(IKVDataCollection, CreateDataItem, items, In(L"Roads"));
  CHECK_NOTHING(IKVDataCollection, GetDataItem, items, In(L"Rivers"));
  GET(item, IKVDataCollection, GetDataItem, items, In(L"Roads"));
  CHECK_TEXT(L"Roads", IKVDataItem, get_Name, item);
  Release(item);
  Release(items);
  Release(persist);
  FreeStream(&stream);
}

void TestCollectionOperations(void) {
  World world;
  InitWorld(&world);
  TestAnalyses(world.manager);
  TestStoreLayers(world.manager);
  TestCustLayers(world.manager);
  TestDataItems(world.manager);
  FreeWorld(&world);
}
