// What the component does with the application's objects, also when they fail.
#include "calls.h"
#include "check.h"
#include "component.h"
#include "tests.h"
#include "world.h"

static const HRESULT kPermissionDenied = (HRESULT)0x800A0046;
static const HRESULT kNotSupported = (HRESULT)0x800A01B6;

static const Failure kNone = {S_OK, NULL};

#define NORTH_ANALYSES WORKING_DIRECTORY L"StudyAreas\\North\\Analyses\\"

static void CheckVariant(const wchar_t* expected, const VARIANT* value) {
  CHECK(value != NULL && V_VT(value) == VT_BSTR);
  if (value == NULL || V_VT(value) != VT_BSTR) return;
  CHECK(wcscmp(expected, V_BSTR(value)) == 0);
}

// Deleting the current study area takes its name from the state.
static void TestStateIsWritten(void) {
  World world;
  IKVStudyAreaCollection* areas = NULL;
  InitWorld(&world);
  GET(areas, IKVDataManager, StudyAreaCollection, world.manager);
  CHECK_TRUE(IKVStudyAreaCollection, DeleteStudyArea, areas, In(L"North"));
  CheckVariant(L"", PropertyOf(&world.host.state, L"Study Area Name"));
  Release(areas);
  FreeWorld(&world);
}

// An operation without a trap passes on what the host failed with, and its words.
static void TestHostErrorPasses(const Failure* failure, HRESULT code, const wchar_t* source,
                                const wchar_t* description) {
  World world;
  IKVTablesManager* tables = NULL;
  BSTR folder = Poison();
  InitWorld(&world);
  GET(tables, IKVDataManager, TablesManager, world.manager);
  world.host.state.object.failure = *failure;
  CHECK_CODE(code, CALL(IKVTablesManager, get_TablesDir, tables, &folder));
  CHECK(folder == NULL);
  CHECK_ERROR_OBJECT(&IID_IKVTablesManager, source, description);
  Release(tables);
  FreeWorld(&world);
}

// An operation that reports answers the report's own failure.
static void TestHostErrorIsReported(void) {
  World world;
  IKVAnalysisCollection* analyses = NULL;
  VARIANT_BOOL created = 0x55;
  InitWorld(&world);
  GET(analyses, IKVDataManager, AnalysisCollection, world.manager);
  world.host.object.failure = (Failure){E_FAIL, L"No state"};
  CHECK_CODE(kNotSupported,
             CALL(IKVAnalysisCollection, CreateAnalysis, analyses, In(L"Sales"), &created));
  CHECK(created == VARIANT_FALSE);
  CHECK_ERROR_OBJECT(&IID_IKVAnalysisCollection, L"KVDM",
                     L"Object doesn't support this property or method");
  world.host.object.failure = kNone;
  CHECK_TRUE(IKVAnalysisCollection, CreateAnalysis, analyses, In(L"Sales"));
  Release(analyses);
  FreeWorld(&world);
}

// The data manager shows a message and goes on.
static void TestFailingSettings(void) {
  Host host;
  IKVDataManager* manager = NewManager();
  InitHost(&host);
  host.settings.object.failure = (Failure){E_ACCESSDENIED, NULL};
  Initialize(manager, (IUnknown*)&host);
  CHECK_TEXT(L"", IKVDataManager, get_WorkingDirectory, manager);
  Initialize(manager, NULL);
  CHECK(host.object.references == 1);
  CHECK(Release(manager) == 0);
  FreeHost(&host);
}

// Quiet, both ways.
static void TestFailingStream(void) {
  World world;
  Stream stream;
  IPersistVariant* persist;
  InitWorld(&world);
  InitStream(&stream);
  persist = As(world.manager, &IID_IPersistVariant);
  stream.object.failure = (Failure){STG_E_MEDIUMFULL, L"Full"};
  CHECK_DONE(IPersistVariant, Save, persist, (IUnknown*)&stream);
  CHECK_DONE(IPersistVariant, Load, persist, (IUnknown*)&stream);
  CHECK(stream.written == 0);
  Release(persist);
  FreeStream(&stream);
  FreeWorld(&world);
}

static IKVAnalysis* NewAnalysis(World* world) {
  IKVAnalysisCollection* analyses = NULL;
  IKVAnalysis* analysis = NULL;
  GET(analyses, IKVDataManager, AnalysisCollection, world->manager);
  CHECK_TRUE(IKVAnalysisCollection, CreateAnalysis, analyses, In(L"Sales"));
  GET(analysis, IKVAnalysisCollection, GetAnalysis, analyses, In(L"Sales"));
  CHECK_TRUE(IKVAnalysis, SetParameter, analysis, In(L"Radius"), In(L"5"));
  Release(analyses);
  return analysis;
}

// The document that the metadata has is the one that is written back, filled.
static void TestMetadata(IKVAnalysis* analysis) {
  IKVMetadata* exchange = As(analysis, &IID_IKVMetadata);
  Metadata metadata;
  ValueSet document;
  InitMetadata(&metadata);
  InitValueSet(&document);
  metadata.document = (IUnknown*)&document;
  ++document.object.references;
  CHECK_DONE(IKVMetadata, ExportMetadata, exchange, (IUnknown*)&metadata);
  CHECK(metadata.written == 1);
  CHECK(metadata.document == (IUnknown*)&document);
  CHECK(document.prepared == 1);
  CheckVariant(L"Sales", ValueOf(&document, L"Velk/Kelvaro8/Name"));
  CheckVariant(L"5", ValueOf(&document, L"Velk/Kelvaro8/AnalysisParams/Radius"));
  PutText(&document, L"Velk/Kelvaro8/GUID", L"{Imported}");
  CHECK_DONE(IKVMetadata, ImportMetadata, exchange, (IUnknown*)&metadata);
  CHECK_TEXT(L"{Imported}", IKVAnalysis, get_AnalysisGUID, analysis);
  FreeMetadata(&metadata);
  FreeValueSet(&document);
  Release(exchange);
}

// The component makes a document when there is none.
static void TestNewDocument(IKVAnalysis* analysis) {
  IKVMetadata* exchange = As(analysis, &IID_IKVMetadata);
  Metadata metadata;
  INamedValueSet* document;
  InitMetadata(&metadata);
  CHECK_DONE(IKVMetadata, ExportMetadata, exchange, (IUnknown*)&metadata);
  CHECK(metadata.document != NULL);
  document = As(metadata.document, &IID_INamedValueSet);
  Release(document);
  FreeMetadata(&metadata);
  Release(exchange);
}

static void TestFailingMetadata(IKVAnalysis* analysis) {
  IKVMetadata* exchange = As(analysis, &IID_IKVMetadata);
  Metadata metadata;
  InitMetadata(&metadata);
  metadata.object.failure = (Failure){E_FAIL, L"No metadata"};
  CHECK_DONE(IKVMetadata, ExportMetadata, exchange, (IUnknown*)&metadata);
  CHECK_DONE(IKVMetadata, ImportMetadata, exchange, (IUnknown*)&metadata);
  CHECK(metadata.written == 0);
  CHECK_DONE(IKVMetadata, ExportMetadata, exchange, NULL);
  CHECK_DONE(IKVMetadata, ImportMetadata, exchange, NULL);
  FreeMetadata(&metadata);
  Release(exchange);
}

// An application's set is filled and stays its own.
static void TestPropertySetOfHost(IKVAnalysis* analysis) {
  ValueSet set;
  IUnknown* variable = (IUnknown*)&set;
  InitValueSet(&set);
  CHECK_TRUE(IKVAnalysis, WriteToPropertySet, analysis, &variable);
  CHECK(variable == (IUnknown*)&set);
  CheckVariant(L"Sales", ValueOf(&set, L"Name"));
  CheckVariant(L"5", ValueOf(&set, L"Radius"));
  PutText(&set, L"Radius", L"7");
  PutText(&set, L"Comments", L"Read");
  CHECK_TRUE(IKVAnalysis, ReadFromPropertySet, analysis, (IUnknown*)&set);
  CHECK_TEXT(L"7", IKVAnalysis, GetParameter, analysis, In(L"Radius"));
  CHECK_TEXT(L"Read", IKVAnalysis, get_Comments, analysis);
  set.object.failure = (Failure){E_OUTOFMEMORY, NULL};
  CHECK_FALSE(IKVAnalysis, WriteToPropertySet, analysis, &variable);
  CHECK_FALSE(IKVAnalysis, ReadFromPropertySet, analysis, (IUnknown*)&set);
  CHECK_FALSE(IKVAnalysis, ReadFromPropertySet, analysis, NULL);
  FreeValueSet(&set);
}

// An array of one dimension, counted from 0, of what it should hold.
static void CheckArray(VARIANT* array, LONG count) {
  LONG last = 0;
  CHECK(V_VT(array) == (VT_ARRAY | VT_VARIANT));
  if (V_VT(array) != (VT_ARRAY | VT_VARIANT)) return;
  CHECK_CODE(S_OK, SafeArrayGetUBound(V_ARRAY(array), 1, &last));
  CHECK(last == count - 1);
  CHECK_CODE(S_OK, VariantClear(array));
}

// The component makes a set for a variable that has none, and reads it again.
static void TestPropertySetOfComponent(IKVAnalysis* analysis) {
  IUnknown* variable = NULL;
  INamedValueSet* set;
  VARIANT names = PoisonedVariant();
  VARIANT values = PoisonedVariant();
  VARIANT value;
  CHECK_TRUE(IKVAnalysis, WriteToPropertySet, analysis, &variable);
  set = As(variable, &IID_INamedValueSet);
  CHECK_NUMBER(3, INamedValueSet, EntryCount, set);
  CHECK_DONE(INamedValueSet, ListAll, set, &names, &values);
  CheckArray(&names, 3);
  CheckArray(&values, 3);
  V_VT(&value) = VT_BSTR;
  V_BSTR(&value) = *In(L"9");
  CHECK_DONE(INamedValueSet, PrepareForUpdate, set);
  CHECK_DONE(INamedValueSet, PutValue, set, In(L"Radius"), &value);
  CHECK_DONE(INamedValueSet, GetValues, set, In(L"Radius"), &names);
  CheckArray(&names, 1);
  CHECK_DONE(INamedValueSet, GetValues, set, In(L"Unknown"), &names);
  CHECK(V_VT(&names) == VT_EMPTY);
  CHECK_TRUE(IKVAnalysis, ReadFromPropertySet, analysis, variable);
  CHECK_TEXT(L"9", IKVAnalysis, GetParameter, analysis, In(L"Radius"));
  CHECK(Release(set) == 1);
  CHECK(Release(variable) == 0);
}

static void TestExchange(void) {
  World world;
  IKVAnalysis* analysis;
  InitWorld(&world);
  analysis = NewAnalysis(&world);
  TestMetadata(analysis);
  TestNewDocument(analysis);
  TestFailingMetadata(analysis);
  TestPropertySetOfHost(analysis);
  TestPropertySetOfComponent(analysis);
  Release(analysis);
  FreeWorld(&world);
}

void TestHost(void) {
  const Failure kDenied = {kPermissionDenied, L"Not now"};
  const Failure kSilent = {E_ACCESSDENIED, NULL};
  const Failure kOwn = {STG_E_MEDIUMFULL, NULL};
  TestStateIsWritten();
  TestHostErrorPasses(&kDenied, kPermissionDenied, L"Host", L"Not now");
  TestHostErrorPasses(&kSilent, kPermissionDenied, L"KVDM.KVTablesManager", L"Permission denied");
  TestHostErrorPasses(&kOwn, STG_E_MEDIUMFULL, L"KVDM.KVTablesManager", L"Automation error");
  TestHostErrorIsReported();
  TestFailingSettings();
  TestFailingStream();
  TestExchange();
}
