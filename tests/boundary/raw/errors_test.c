// How errors reach a client: as a result code, and as the error object of the thread.
#include "calls.h"
#include "check.h"
#include "component.h"
#include "tests.h"
#include "world.h"

static const HRESULT kInvalidCall = (HRESULT)0x800A0005;
static const HRESULT kTypeMismatch = (HRESULT)0x800A000D;
static const HRESULT kObjectNotSet = (HRESULT)0x800A005B;
static const HRESULT kNotSupported = (HRESULT)0x800A01B6;

static const wchar_t kInvalidCallText[] = L"Invalid procedure call or argument";
static const wchar_t kObjectNotSetText[] = L"Object variable or With block variable not set";
static const wchar_t kNotSupportedText[] = L"Object doesn't support this property or method";

// An operation without a trap: its error has no source but the class.
static void TestPlainError(void) {
  IKVFileInfo* info = Create(&CLSID_KVFileInfo, &IID_IKVFileInfo);
  BSTR text = Poison();
  CHECK_CODE(kInvalidCall, CALL(IKVFileInfo, get_ParentDirPath, info, &text));
  CHECK(text == NULL);
  CHECK_ERROR_OBJECT(&IID_IKVFileInfo, L"KVDM.KVFileInfo", kInvalidCallText);
  text = Poison();
  CHECK_CODE(kInvalidCall, CALL(IKVFileInfo, get_FileName, info, &text));
  CHECK(text == NULL);
  CHECK_ERROR_OBJECT(&IID_IKVFileInfo, L"KVDM.KVFileInfo", kInvalidCallText);
  CHECK_CODE(kInvalidCall, CALL(IKVFileInfo, get_FileNameExtension, info, &text));
  CHECK_ERROR_OBJECT(&IID_IKVFileInfo, L"KVDM.KVFileInfo", kInvalidCallText);
  Release(info);
}

// Without a host there is no current study area, and creation reports.
static void TestReport(void) {
  IKVDataManager* manager = NewManager();
  IKVAnalysisCollection* analyses = NULL;
  VARIANT_BOOL created = 0x55;
  GET(analyses, IKVDataManager, AnalysisCollection, manager);
  CHECK_CODE(kNotSupported,
             CALL(IKVAnalysisCollection, CreateAnalysis, analyses, In(L"Sales"), &created));
  CHECK(created == VARIANT_FALSE);
  CHECK_ERROR_OBJECT(&IID_IKVAnalysisCollection, L"KVDM", kNotSupportedText);
  CHECK_LIST(L"", IKVAnalysisCollection, AnalysesList, analyses);
  Release(analyses);
  Release(manager);
}

static void TestReportOfUnboundObject(void) {
  IKVTablesManager* tables = Create(&CLSID_KVTablesManager, &IID_IKVTablesManager);
  BSTR path = Poison();
  CHECK_CODE(kObjectNotSet, CALL(IKVTablesManager, get_FreeTablePath, tables, &path));
  CHECK(path == NULL);
  CHECK_ERROR_OBJECT(&IID_IKVTablesManager, L"KVDM", kObjectNotSetText);
  Release(tables);
}

// The list of a document that has no group of data items.
static void TestFailedList(void) {
  World world;
  IKVDataCollection* items = NULL;
  INameList* list = Poison();
  InitWorld(&world);
  GET(items, IKVDataManager, DataCollection, world.manager);
  CHECK_CODE(kNotSupported, CALL(IKVDataCollection, DataItemsList, items, &list));
  CHECK(list == NULL);
  CHECK_ERROR_OBJECT(&IID_IKVDataCollection, L"KVDM", kNotSupportedText);
  Release(items);
  FreeWorld(&world);
}

// What can't be a host, a stream or layer metadata is refused before the operation begins.
static void TestObjectsOfOtherKinds(void) {
  Stream stream;
  IKVDataManager* manager = NewManager();
  IKVDMInitialize* initialize = As(manager, &IID_IKVDMInitialize);
  InitStream(&stream);
  CHECK_CODE(kTypeMismatch, CALL(IKVDMInitialize, DMInitialize, initialize, (IUnknown*)&stream));
  CHECK_ERROR_OBJECT(&IID_IKVDMInitialize, L"KVDM.KVDataManager", L"Type mismatch");
  CHECK(stream.object.references == 1);
  Release(initialize);
  Release(manager);
  FreeStream(&stream);
}

static void TestNoErrorIsLeft(void) {
  IErrorInfo* info = NULL;
  CHECK_CODE(S_FALSE, GetErrorInfo(0, &info));
  CHECK(info == NULL);
}

void TestErrors(void) {
  SetErrorInfo(0, NULL);
  TestPlainError();
  TestReport();
  TestReportOfUnboundObject();
  TestFailedList();
  TestObjectsOfOtherKinds();
  TestNoErrorIsLeft();
  TakeBack();
}
