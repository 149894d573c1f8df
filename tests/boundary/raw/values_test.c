// Values of every type of automation, passed each way.
#include "calls.h"
#include "check.h"
#include "component.h"
#include "tests.h"
#include "world.h"

static const HRESULT kTypeMismatch = (HRESULT)0x800A000D;

// What the property `name` holds after it was set to the value.
static void CheckStored(IKVPropertySet* set, VARIANT* value, const wchar_t* expected) {
  CHECK_TRUE(IKVPropertySet, SetProperty, set, In(L"P"), value);
  CHECK_VALUE(expected, IKVPropertySet, GetProperty, set, In(L"P"));
}

// As it is; as a variable; as a place of its type.
static void CheckStoredEachWay(IKVPropertySet* set, VARIANT value, const wchar_t* expected) {
  const VARIANT before = value;
  const int is_decimal = V_VT(&value) == VT_DECIMAL;
  VARIANT reference;
  CheckStored(set, &value, expected);
  V_VT(&reference) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&reference) = &value;
  CheckStored(set, &reference, expected);
  CHECK(memcmp(&value, &before, sizeof value) == 0);
  if (V_VT(&value) == VT_EMPTY) return;
  V_VT(&reference) = V_VT(&value) | VT_BYREF;
  V_BYREF(&reference) = is_decimal ? (void*)&V_DECIMAL(&value) : (void*)&V_NONE(&value);
  CheckStored(set, &reference, expected);
}

#define CHECK_STORED(expected, type, member, number) \
  do {                                               \
    VARIANT value_;                                  \
    memset(&value_, 0, sizeof value_);               \
    V_VT(&value_) = (type);                          \
    member(&value_) = (number);                      \
    CheckStoredEachWay(set, value_, expected);       \
  } while (0)

static void TestNumbers(IKVPropertySet* set) {
  CHECK_STORED(L"-128", VT_I1, V_I1, -128);
  CHECK_STORED(L"255", VT_UI1, V_UI1, 255);
  CHECK_STORED(L"-32768", VT_I2, V_I2, -32768);
  CHECK_STORED(L"65535", VT_UI2, V_UI2, 65535);
  CHECK_STORED(L"-2147483648", VT_I4, V_I4, LONG_MIN);
  CHECK_STORED(L"2147483647", VT_INT, V_INT, INT_MAX);
  CHECK_STORED(L"4294967295", VT_UI4, V_UI4, ULONG_MAX);
  CHECK_STORED(L"4294967295", VT_UINT, V_UINT, UINT_MAX);
  CHECK_STORED(L"-5000000000", VT_I8, V_I8, -5000000000);
  CHECK_STORED(L"5000000000", VT_UI8, V_UI8, 5000000000);
  CHECK_STORED(L"1.5", VT_R4, V_R4, 1.5f);
  CHECK_STORED(L"-0.25", VT_R8, V_R8, -0.25);
}

static void TestOtherValues(IKVPropertySet* set) {
  VARIANT value;
  memset(&value, 0, sizeof value);
  CheckStoredEachWay(set, value, L"");
  CHECK_STORED(L"-1", VT_BOOL, V_BOOL, VARIANT_TRUE);
  CHECK_STORED(L"0", VT_BOOL, V_BOOL, VARIANT_FALSE);
  CHECK_STORED(L"12/30/1899 6:00:00 AM", VT_DATE, V_DATE, 0.25);
  CHECK_STORED(L"12/29/1899 6:00:00 PM", VT_DATE, V_DATE, -1.75);
  CHECK_STORED(L"1/2/2000 12:00:00 AM", VT_DATE, V_DATE, 36527);
  V_VT(&value) = VT_CY;
  V_CY(&value).int64 = 123400;
  CheckStoredEachWay(set, value, L"12.34");
  CHECK_CODE(S_OK, VarDecFromR8(-2.5, &V_DECIMAL(&value)));
  V_VT(&value) = VT_DECIMAL;
  CheckStoredEachWay(set, value, L"-2.5");
  // An argument that is left out.
  memset(&value, 0, sizeof value);
  V_VT(&value) = VT_ERROR;
  V_ERROR(&value) = DISP_E_PARAMNOTFOUND;
  CheckStoredEachWay(set, value, L"");
}

static void TestTexts(IKVPropertySet* set) {
  static const wchar_t* const kTexts[] = {
      L"", L"A text", L"_", L"\"<>&'", L"\x4E2D\x6587", L"\xD83D\xDE00", L" blanks ", L"a\r\n\tb"};
  unsigned i;
  for (i = 0; i < sizeof kTexts / sizeof *kTexts; ++i) {
    CHECK_STORED(kTexts[i], VT_BSTR, V_BSTR, *In(kTexts[i]));
  }
  CHECK_STORED(L"", VT_BSTR, V_BSTR, NULL);
}

// Not converted, so that the operation is not even begun.
static void CheckRefused(IKVPropertySet* set, VARIANT* value) {
  VARIANT_BOOL result = 0x55;
  CHECK_CODE(kTypeMismatch, CALL(IKVPropertySet, SetProperty, set, In(L"P"), value, &result));
  CHECK(result == VARIANT_FALSE);
  CHECK_ERROR_OBJECT(&IID_IKVPropertySet, L"KVDM.KVStudyArea", L"Type mismatch");
  CHECK_VALUE(L"kept", IKVPropertySet, GetProperty, set, In(L"P"));
}

static void TestRefusedValues(IKVPropertySet* set) {
  VARIANT value;
  VARIANT reference;
  CHECK_STORED(L"kept", VT_BSTR, V_BSTR, *In(L"kept"));
  V_VT(&value) = VT_ARRAY | VT_VARIANT;
  V_ARRAY(&value) = SafeArrayCreateVector(VT_VARIANT, 0, 1);
  CheckRefused(set, &value);
  V_VT(&reference) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&reference) = &value;
  CheckRefused(set, &reference);
  VariantClear(&value);
  V_VT(&value) = VT_UNKNOWN;
  V_UNKNOWN(&value) = (IUnknown*)set;
  CheckRefused(set, &value);
  V_VT(&value) = VT_DISPATCH;
  V_DISPATCH(&value) = NULL;
  CheckRefused(set, &value);
  V_VT(&value) = VT_ERROR;
  V_ERROR(&value) = E_FAIL;
  CheckRefused(set, &value);
  V_VT(&value) = VT_DATE;
  V_DATE(&value) = 1e9;
  CheckRefused(set, &value);
}

// Null has no text: the operation traps the error.
static void TestNull(IKVPropertySet* set) {
  VARIANT value;
  V_VT(&value) = VT_NULL;
  CHECK_FALSE(IKVPropertySet, SetProperty, set, In(L"P"), &value);
  CHECK_VALUE(L"kept", IKVPropertySet, GetProperty, set, In(L"P"));
}

void TestValues(void) {
  World world;
  IKVStudyAreaCollection* areas = NULL;
  IKVStudyArea* area = NULL;
  IKVPropertySet* set;
  InitWorld(&world);
  GET(areas, IKVDataManager, StudyAreaCollection, world.manager);
  GET(area, IKVStudyAreaCollection, GetStudyArea, areas, In(L"North"));
  set = As(area, &IID_IKVPropertySet);
  TestNumbers(set);
  TestOtherValues(set);
  TestTexts(set);
  TestRefusedValues(set);
  TestNull(set);
  Release(set);
  Release(area);
  Release(areas);
  FreeWorld(&world);
}
