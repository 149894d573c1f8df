#include "calls.h"

#include <stdio.h>
#include <string.h>

#include "component.h"

enum { kMaxSlots = 64, kMaxInterfaces = 64, kMaxTexts = 256, kMaxListText = 512 };

typedef struct {
  IID iid;
  unsigned calls[kMaxSlots];
} Count;

typedef struct {
  BSTR passed;
  BSTR copy;
  BSTR original;
} Passed;

static Count counts[kMaxInterfaces];
static unsigned count_count = 0;
static Passed texts[kMaxTexts];
static unsigned text_count = 0;

static Count* CountOf(REFIID iid) {
  unsigned i;
  for (i = 0; i < count_count; ++i) {
    if (IsEqualIID(&counts[i].iid, iid)) return &counts[i];
  }
  counts[count_count].iid = *iid;
  return &counts[count_count++];
}

void CountCall(REFIID iid, size_t slot) { ++CountOf(iid)->calls[slot]; }

static int IsNever(const Slot* never, REFIID iid, size_t slot) {
  return IsEqualIID(never->iid, iid) && never->slot == slot;
}

static void CheckOperation(const Interface* of, UINT position, const Slot* never) {
  FUNCDESC* operation = NULL;
  BSTR name = NULL;
  UINT found = 0;
  size_t slot;
  CHECK_CODE(S_OK, of->type->lpVtbl->GetFuncDesc(of->type, position, &operation));
  CHECK_CODE(S_OK, of->type->lpVtbl->GetNames(of->type, operation->memid, &name, 1, &found));
  Concerning(of->name, name);
  slot = (size_t)operation->oVft / sizeof(void*);
  if (IsNever(never, &of->iid, slot)) {
    CHECK(CountOf(&of->iid)->calls[slot] == 0);
  } else {
    CHECK(CountOf(&of->iid)->calls[slot] > 0);
  }
  Concerning(NULL, NULL);
  SysFreeString(name);
  of->type->lpVtbl->ReleaseFuncDesc(of->type, operation);
}

void CheckEverySlotWasCalled(const Slot* never) {
  unsigned i;
  unsigned position;
  for (i = 0; i < InterfaceCount(); ++i) {
    const Interface* of = InterfaceAt(i);
    for (position = 0; position < of->operation_count; ++position) {
      CheckOperation(of, position, never);
    }
  }
}

BSTR* In(const wchar_t* text) {
  Passed* added = &texts[text_count++];
  added->original = SysAllocString(text);
  added->copy = SysAllocString(text);
  added->passed = added->original;
  return &added->passed;
}

static int SameBytes(BSTR a, BSTR b) {
  const UINT size = SysStringByteLen(a);
  return size == SysStringByteLen(b) && memcmp(a, b, size) == 0;
}

void TakeBack(void) {
  while (text_count > 0) {
    Passed* taken = &texts[--text_count];
    CHECK(taken->passed == taken->original);
    CHECK(SameBytes(taken->original, taken->copy));
    SysFreeString(taken->original);
    SysFreeString(taken->copy);
  }
}

void* Poison(void) { return (void*)(ULONG_PTR)0xDEADDEAD; }

VARIANT PoisonedVariant(void) {
  VARIANT value;
  memset(&value, 0xDE, sizeof value);
  return value;
}

static void CheckSame(const wchar_t* expected, const wchar_t* actual, const char* what,
                      const char* file, int line) {
  const int same = wcscmp(expected, actual) == 0;
  CheckHolds(same, what, file, line);
  if (!same) printf("  expected \"%ls\", was \"%ls\"\n", expected, actual);
}

void CheckText(const wchar_t* expected, BSTR actual, const char* what, const char* file, int line) {
  CheckSame(expected, actual ? actual : L"", what, file, line);
  SysFreeString(actual);
}

static void Join(wchar_t* joined, INameList* list) {
  long count = 0;
  long i;
  CHECK_CODE(S_OK, CALL(INameList, get_Count, list, &count));
  for (i = 1; i <= count; ++i) {
    VARIANT item = PoisonedVariant();
    CHECK_CODE(S_OK, CALL(INameList, get_Item, list, i, &item));
    if (i > 1) wcscat(joined, L"|");
    if (V_VT(&item) == VT_BSTR) wcscat(joined, V_BSTR(&item));
    CHECK_CODE(S_OK, VariantClear(&item));
  }
}

void CheckList(const wchar_t* expected, INameList* actual, const char* what, const char* file,
               int line) {
  wchar_t joined[kMaxListText] = L"";
  CheckHolds((expected == NULL) == (actual == NULL), what, file, line);
  if (actual == NULL) return;
  Join(joined, actual);
  if (expected != NULL) CheckSame(expected, joined, what, file, line);
  Release(actual);
}

void CheckErrorObject(REFIID iid, const wchar_t* source, const wchar_t* description,
                      const char* file, int line) {
  IErrorInfo* info = NULL;
  GUID guid = {0, 0, 0, {0}};
  BSTR text = NULL;
  CheckHolds(GetErrorInfo(0, &info) == S_OK, "there is an error object", file, line);
  if (info == NULL) return;
  CHECK_CODE(S_OK, info->lpVtbl->GetGUID(info, &guid));
  CheckHolds(IsEqualIID(&guid, iid), "interface of the error", file, line);
  CHECK_CODE(S_OK, info->lpVtbl->GetSource(info, &text));
  CheckText(source, text, "source of the error", file, line);
  CHECK_CODE(S_OK, info->lpVtbl->GetDescription(info, &text));
  CheckText(description, text, "description of the error", file, line);
  Release(info);
}
