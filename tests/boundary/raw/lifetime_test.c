// Reference counts: exact, one for all interfaces of an object, and the DLL's own.
#include "calls.h"
#include "check.h"
#include "component.h"
#include "tests.h"
#include "world.h"

static ULONG AddReference(IUnknown* object) { return object->lpVtbl->AddRef(object); }

static void TestCountsOf(const Class* of) {
  IUnknown* object = Create(&of->clsid, &IID_IUnknown);
  IUnknown* support;
  unsigned i;
  CHECK_CODE(S_FALSE, CanUnloadNow());
  CHECK(AddReference(object) == 2);
  for (i = 0; i < of->iid_count; ++i) {
    IUnknown* face = As(object, &of->iids[i]);
    CHECK(AddReference(face) == 4);
    CHECK(Release(object) == 3);
    CHECK(Release(face) == 2);
  }
  support = As(object, &IID_ISupportErrorInfo);
  CHECK(Release(support) == 2);
  CHECK(Release(object) == 1);
  CHECK_CODE(S_FALSE, CanUnloadNow());
  CHECK(Release(object) == 0);
  CHECK_CODE(S_OK, CanUnloadNow());
}

// The host is released when the data manager goes.
static void TestViewKeepsDataManager(void) {
  World world;
  IKVAnalysisCollection* analyses = NULL;
  IKVAnalysis* analysis = NULL;
  InitWorld(&world);
  GET(analyses, IKVDataManager, AnalysisCollection, world.manager);
  CHECK_TRUE(IKVAnalysisCollection, CreateAnalysis, analyses, In(L"Sales"));
  GET(analysis, IKVAnalysisCollection, GetAnalysis, analyses, In(L"Sales"));
  CHECK(Release(analyses) == 0);
  CHECK(Release(world.manager) == 0);
  CHECK(world.host.object.references > 1);
  CHECK_TRUE(IKVAnalysis, SetParameter, analysis, In(L"Radius"), In(L"5"));
  CHECK_DONE(IKVAnalysis, put_Name, analysis, In(L"Turnover"));
  CHECK_TEXT(L"Turnover", IKVAnalysis, get_Name, analysis);
  CHECK_CODE(S_FALSE, CanUnloadNow());
  CHECK(Release(analysis) == 0);
  CHECK_CODE(S_OK, CanUnloadNow());
  FreeHost(&world.host);
  TakeBack();
}

static void TestViewsAreObjectsOfTheirOwn(void) {
  World world;
  IKVAnalysisCollection* first = NULL;
  IKVAnalysisCollection* second = NULL;
  InitWorld(&world);
  GET(first, IKVDataManager, AnalysisCollection, world.manager);
  GET(second, IKVDataManager, AnalysisCollection, world.manager);
  CHECK(first != second);
  CHECK(Release(first) == 0);
  CHECK(Release(second) == 0);
  FreeWorld(&world);
}

static void TestEnumeratorKeepsList(void) {
  World world;
  IKVStudyAreaCollection* areas = NULL;
  INameList* list = NULL;
  IUnknown* enumerator = NULL;
  IEnumVARIANT* items = NULL;
  VARIANT item = PoisonedVariant();
  InitWorld(&world);
  GET(areas, IKVDataManager, StudyAreaCollection, world.manager);
  GET(list, IKVStudyAreaCollection, StudyAreasList, areas);
  GET(enumerator, INameList, get__NewEnum, list);
  CHECK(Release(list) == 0);
  items = As(enumerator, &IID_IEnumVARIANT);
  CHECK_CODE(S_OK, items->lpVtbl->Next(items, 1, &item, NULL));
  CHECK_CODE(S_OK, VariantClear(&item));
  CHECK(Release(items) == 1);
  CHECK(Release(enumerator) == 0);
  Release(areas);
  FreeWorld(&world);
}

void TestLifetime(void) {
  unsigned i;
  for (i = 0; i < ClassCount(); ++i) {
    Concerning(ClassAt(i)->name, NULL);
    TestCountsOf(ClassAt(i));
  }
  Concerning(NULL, NULL);
  TestViewKeepsDataManager();
  TestViewsAreObjectsOfTheirOwn();
  TestEnumeratorKeepsList();
}
