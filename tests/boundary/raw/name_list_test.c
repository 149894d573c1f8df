// The lists that operations answer.
#include "calls.h"
#include "check.h"
#include "component.h"
#include "tests.h"
#include "world.h"

static const HRESULT kOutOfRange = (HRESULT)0x800A0009;

static void AddText(INameList* list, const wchar_t* text) {
  VARIANT value;
  V_VT(&value) = VT_BSTR;
  V_BSTR(&value) = SysAllocString(text);
  CHECK_DONE(INameList, Add, list, &value);
  CHECK(wcscmp(V_BSTR(&value), text) == 0);
  VariantClear(&value);
}

static INameList* NewList(void) {
  World world;
  IKVAnalysisCollection* analyses = NULL;
  INameList* list = NULL;
  InitWorld(&world);
  GET(analyses, IKVDataManager, AnalysisCollection, world.manager);
  GET(list, IKVAnalysisCollection, AnalysesList, analyses);
  Release(analyses);
  CHECK(Release(world.manager) == 0);
  FreeHost(&world.host);
  return list;
}

static void TestPositions(INameList* list) {
  const long kOutside[] = {0, 4, -1, LONG_MAX, LONG_MIN};
  unsigned i;
  CHECK_NUMBER(3, INameList, get_Count, list);
  CHECK_VALUE(L"One", INameList, get_Item, list, 1);
  CHECK_VALUE(L"Three", INameList, get_Item, list, 3);
  for (i = 0; i < sizeof kOutside / sizeof *kOutside; ++i) {
    VARIANT value = PoisonedVariant();
    CHECK_CODE(kOutOfRange, CALL(INameList, get_Item, list, kOutside[i], &value));
    CHECK(V_VT(&value) == VT_EMPTY);
    CHECK_ERROR_OBJECT(&IID_INameList, L"KVDM.NameList", L"Subscript out of range");
  }
}

static IEnumVARIANT* EnumeratorOf(INameList* list) {
  IUnknown* unknown = NULL;
  IEnumVARIANT* enumerator;
  GET(unknown, INameList, get__NewEnum, list);
  enumerator = As(unknown, &IID_IEnumVARIANT);
  Release(unknown);
  return enumerator;
}

// Checks the code and the texts that Next gives, joined.
static void CheckNext(IEnumVARIANT* enumerator, ULONG count, HRESULT code,
                      const wchar_t* expected) {
  VARIANT values[8];
  wchar_t joined[64] = L"";
  ULONG fetched = 99;
  ULONG i;
  for (i = 0; i < 8; ++i) values[i] = PoisonedVariant();
  CHECK_CODE(code, enumerator->lpVtbl->Next(enumerator, count, values, &fetched));
  CHECK(fetched <= count);
  for (i = 0; i < fetched; ++i) {
    CHECK(V_VT(&values[i]) == VT_BSTR);
    wcscat(joined, V_BSTR(&values[i]));
    VariantClear(&values[i]);
  }
  CHECK(wcscmp(joined, expected) == 0);
}

static void TestNext(INameList* list) {
  IEnumVARIANT* enumerator = EnumeratorOf(list);
  CheckNext(enumerator, 0, S_OK, L"");
  CheckNext(enumerator, 2, S_OK, L"OneTwo");
  CheckNext(enumerator, 2, S_FALSE, L"Three");
  CheckNext(enumerator, 1, S_FALSE, L"");
  CHECK_CODE(S_OK, enumerator->lpVtbl->Reset(enumerator));
  CheckNext(enumerator, 3, S_OK, L"OneTwoThree");
  CHECK(Release(enumerator) == 0);
}

static void TestSkip(INameList* list) {
  IEnumVARIANT* enumerator = EnumeratorOf(list);
  CHECK_CODE(S_OK, enumerator->lpVtbl->Skip(enumerator, 2));
  CheckNext(enumerator, 1, S_OK, L"Three");
  CHECK_CODE(S_OK, enumerator->lpVtbl->Skip(enumerator, 0));
  CHECK_CODE(S_FALSE, enumerator->lpVtbl->Skip(enumerator, 1));
  CHECK_CODE(S_OK, enumerator->lpVtbl->Reset(enumerator));
  CHECK_CODE(S_FALSE, enumerator->lpVtbl->Skip(enumerator, ULONG_MAX));
  CheckNext(enumerator, 1, S_FALSE, L"");
  Release(enumerator);
}

// A clone starts at the same place and goes on by itself.
static void TestClone(INameList* list) {
  IEnumVARIANT* enumerator = EnumeratorOf(list);
  IEnumVARIANT* clone = Poison();
  CheckNext(enumerator, 1, S_OK, L"One");
  CHECK_CODE(S_OK, enumerator->lpVtbl->Clone(enumerator, &clone));
  CheckNext(enumerator, 2, S_OK, L"TwoThree");
  CheckNext(clone, 2, S_OK, L"TwoThree");
  CHECK(Release(clone) == 0);
  CHECK(Release(enumerator) == 0);
}

static void TestEnumeratorPointers(INameList* list) {
  IEnumVARIANT* enumerator = EnumeratorOf(list);
  IUnknown* identity = As(enumerator, &IID_IUnknown);
  VARIANT value = PoisonedVariant();
  ULONG fetched = 99;
  void* out = Poison();
  CHECK(identity == (IUnknown*)enumerator);
  Release(identity);
  CHECK_CODE(E_NOINTERFACE, enumerator->lpVtbl->QueryInterface(enumerator, &IID_INameList, &out));
  CHECK(out == NULL);
  CHECK_CODE(E_POINTER, enumerator->lpVtbl->QueryInterface(enumerator, &IID_IUnknown, NULL));
  CHECK_CODE(E_POINTER, enumerator->lpVtbl->Clone(enumerator, NULL));
  CHECK_CODE(E_POINTER, enumerator->lpVtbl->Next(enumerator, 1, NULL, &fetched));
  CHECK(fetched == 0);
  CHECK_CODE(E_POINTER, enumerator->lpVtbl->Next(enumerator, 2, &value, NULL));
  CHECK_CODE(S_OK, enumerator->lpVtbl->Next(enumerator, 1, &value, NULL));
  VariantClear(&value);
  Release(enumerator);
}

static void TestListGrowsWhileEnumerated(INameList* list) {
  IEnumVARIANT* enumerator = EnumeratorOf(list);
  CheckNext(enumerator, 3, S_OK, L"OneTwoThree");
  AddText(list, L"Four");
  CheckNext(enumerator, 1, S_OK, L"Four");
  Release(enumerator);
}

static void TestAnyValueIsAdded(INameList* list) {
  VARIANT value;
  VARIANT item = PoisonedVariant();
  V_VT(&value) = VT_I4;
  V_I4(&value) = 5;
  CHECK_DONE(INameList, Add, list, &value);
  CHECK_DONE(INameList, get_Item, list, 5, &item);
  CHECK(V_VT(&item) == VT_I4 && V_I4(&item) == 5);
  V_VT(&value) = VT_UNKNOWN;
  V_UNKNOWN(&value) = (IUnknown*)list;
  CHECK_CODE((HRESULT)0x800A000D, CALL(INameList, Add, list, &value));
  CHECK_NUMBER(5, INameList, get_Count, list);
}

void TestNameLists(void) {
  INameList* list = NewList();
  AddText(list, L"One");
  AddText(list, L"Two");
  AddText(list, L"Three");
  TestPositions(list);
  TestNext(list);
  TestSkip(list);
  TestClone(list);
  TestEnumeratorPointers(list);
  TestListGrowsWhileEnumerated(list);
  TestAnyValueIsAdded(list);
  CHECK(Release(list) == 0);
  CHECK_CODE(S_OK, CanUnloadNow());
  TakeBack();
}
