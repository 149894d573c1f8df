// What holds for every operation of every class, called as the type library describes it: results
// are cleared, whatever was in their place; pointers that are missing are refused; what the client
// passes is not modified.
#include <string.h>

#include "calls.h"
#include "check.h"
#include "component.h"
#include "tests.h"
#include "world.h"

enum { kMaxParameters = 8, kNoneMissing = -1 };

typedef union {
  unsigned char bytes[sizeof(VARIANT)];
  BSTR text;
  VARIANT value;
  VARIANT_BOOL flag;
  LONG number;
  IUnknown* object;
} Place;

// One parameter. A pointer points to `place`.
typedef struct {
  VARTYPE type;     // of what is passed by value; VT_PTR for a pointer
  VARTYPE pointee;  // VT_PTR for a pointer to an interface
  int is_result;
  Place place;
  BSTR passed;  // the text in `place`
} Argument;

typedef struct {
  IUnknown* object;
  ULONG_PTR offset;
  unsigned count;
  Argument arguments[kMaxParameters];
} Operation;

static const wchar_t kText[] = L"D:\\KVDM raw\\A name";

static void Describe(Operation* operation, IUnknown* object, const FUNCDESC* described) {
  SHORT i;
  operation->object = object;
  operation->offset = (ULONG_PTR)described->oVft;
  operation->count = (unsigned)described->cParams;
  for (i = 0; i < described->cParams; ++i) {
    const TYPEDESC* type = &described->lprgelemdescParam[i].tdesc;
    const USHORT flags = described->lprgelemdescParam[i].paramdesc.wParamFlags;
    Argument* argument = &operation->arguments[i];
    argument->type = type->vt;
    argument->pointee = type->vt == VT_PTR ? type->lptdesc->vt : (VARTYPE)VT_EMPTY;
    argument->is_result = (flags & (PARAMFLAG_FIN | PARAMFLAG_FOUT)) == PARAMFLAG_FOUT;
  }
}

// Texts in the places of arguments, null ones for a null `text`; rubbish in those of results.
static void Fill(Operation* operation, const wchar_t* text) {
  unsigned i;
  for (i = 0; i < operation->count; ++i) {
    Argument* argument = &operation->arguments[i];
    memset(&argument->place, argument->is_result ? 0xDE : 0, sizeof argument->place);
    argument->passed = NULL;
    if (argument->is_result) continue;
    if (argument->pointee == VT_BSTR || argument->pointee == VT_VARIANT) {
      argument->passed = SysAllocString(text);
    }
    if (argument->pointee == VT_BSTR) argument->place.text = argument->passed;
    if (argument->pointee == VT_VARIANT) {
      V_VT(&argument->place.value) = VT_BSTR;
      V_BSTR(&argument->place.value) = argument->passed;
    }
  }
}

// With a null pointer for the parameter `missing`.
static HRESULT Call(Operation* operation, int missing) {
  VARTYPE types[kMaxParameters];
  VARIANT values[kMaxParameters];
  VARIANT* pointers[kMaxParameters];
  VARIANT code;
  unsigned i;
  for (i = 0; i < operation->count; ++i) {
    Argument* argument = &operation->arguments[i];
    types[i] = argument->type == VT_PTR ? (VARTYPE)(VT_BYREF | VT_UI1) : argument->type;
    VariantInit(&values[i]);
    V_VT(&values[i]) = types[i];
    V_BYREF(&values[i]) = NULL;
    if (argument->type == VT_PTR && (int)i != missing) V_BYREF(&values[i]) = &argument->place;
    pointers[i] = &values[i];
  }
  CHECK_CODE(S_OK, DispCallFunc(operation->object, operation->offset, CC_STDCALL, VT_I4,
                                operation->count, types, pointers, &code));
  return V_I4(&code);
}

static int IsRubbish(const Place* place, size_t size) {
  static const unsigned char kRubbish[] = {0xDE, 0xDE, 0xDE, 0xDE, 0xDE, 0xDE, 0xDE, 0xDE};
  return memcmp(place, kRubbish, size) == 0;
}

// A failed operation leaves nothing there. Frees what is there.
static void CheckResultPlace(Place* place, VARTYPE pointee, int failed) {
  switch (pointee) {
    case VT_BOOL:
      CHECK(place->flag == VARIANT_FALSE || (!failed && place->flag == VARIANT_TRUE));
      break;
    case VT_I4:
      CHECK(failed ? place->number == 0 : !IsRubbish(place, sizeof place->number));
      break;
    case VT_VARIANT:
      CHECK(!failed || V_VT(&place->value) == VT_EMPTY);
      CHECK_CODE(S_OK, VariantClear(&place->value));
      break;
    default:
      CHECK(failed ? place->object == NULL : !IsRubbish(place, sizeof place->object));
      if (place->object == NULL || IsRubbish(place, sizeof place->object)) break;
      if (pointee == VT_BSTR) {
        SysFreeString(place->text);
      } else {
        Release(place->object);
      }
  }
}

static int SamePlace(const Argument* argument, const wchar_t* text) {
  const Place* place = &argument->place;
  const UINT length = text ? (UINT)wcslen(text) : 0;
  if (argument->pointee == VT_BSTR && place->text != argument->passed) return 0;
  if (argument->pointee == VT_VARIANT &&
      (V_VT(&place->value) != VT_BSTR || V_BSTR(&place->value) != argument->passed)) {
    return 0;
  }
  return SysStringLen(argument->passed) == length &&
         memcmp(argument->passed, text, length * sizeof *text) == 0;
}

// `missing` was not there to be cleared.
static void CheckPlaces(Operation* operation, const wchar_t* text, int missing, HRESULT code) {
  unsigned i;
  for (i = 0; i < operation->count; ++i) {
    Argument* argument = &operation->arguments[i];
    if (argument->is_result) {
      if ((int)i != missing) CheckResultPlace(&argument->place, argument->pointee, FAILED(code));
    } else if (argument->passed != NULL) {
      CHECK(SamePlace(argument, text));
      SysFreeString(argument->passed);
    } else if (argument->pointee == VT_UNKNOWN && argument->place.object != NULL) {
      // The operation made an object where there was none.
      Release(argument->place.object);
    }
  }
}

static HRESULT CallWith(Operation* operation, const wchar_t* text, int missing) {
  HRESULT code;
  Fill(operation, text);
  code = Call(operation, missing);
  CheckPlaces(operation, text, missing, code);
  return code;
}

static void TestOperation(Operation* operation) {
  unsigned i;
  for (i = 0; i < operation->count; ++i) {
    if (operation->arguments[i].type != VT_PTR) continue;
    CHECK_CODE(E_POINTER, CallWith(operation, kText, (int)i));
  }
  CallWith(operation, kText, kNoneMissing);
  CHECK_CODE(CallWith(operation, L"", kNoneMissing), CallWith(operation, NULL, kNoneMissing));
}

static void TestOperationAt(ITypeInfo* type, UINT position, IUnknown* object) {
  Operation operation;
  FUNCDESC* described = NULL;
  BSTR name = NULL;
  UINT found = 0;
  CHECK_CODE(S_OK, type->lpVtbl->GetFuncDesc(type, position, &described));
  CHECK_CODE(S_OK, type->lpVtbl->GetNames(type, described->memid, &name, 1, &found));
  Concerning(L"operation", name);
  Describe(&operation, object, described);
  TestOperation(&operation);
  Concerning(NULL, NULL);
  SysFreeString(name);
  type->lpVtbl->ReleaseFuncDesc(type, described);
}

// All operations of all interfaces that the object has.
static void TestObject(IUnknown* object) {
  unsigned i;
  UINT position;
  for (i = 0; i < InterfaceCount(); ++i) {
    const Interface* of = InterfaceAt(i);
    IUnknown* face = NULL;
    if (FAILED(object->lpVtbl->QueryInterface(object, &of->iid, (void**)&face))) continue;
    for (position = 0; position < of->operation_count; ++position) {
      TestOperationAt(of->type, position, face);
    }
    Release(face);
  }
  Release(object);
}

// The objects of no class: lists, identifiers and value sets.
static void TestStandIns(void) {
  World world;
  IKVStudyAreaCollection* areas = NULL;
  IPersistVariant* persist = NULL;
  IKVAnalysis* analysis = Create(&CLSID_KVAnalysis, &IID_IKVAnalysis);
  INameList* list = NULL;
  IIdentifier* identifier = NULL;
  IUnknown* set = NULL;
  InitWorld(&world);
  GET(areas, IKVDataManager, StudyAreaCollection, world.manager);
  GET(list, IKVStudyAreaCollection, StudyAreasList, areas);
  persist = As(world.manager, &IID_IPersistVariant);
  GET(identifier, IPersistVariant, ID, persist);
  CHECK_TRUE(IKVAnalysis, WriteToPropertySet, analysis, &set);
  TestObject((IUnknown*)list);
  TestObject((IUnknown*)identifier);
  TestObject(set);
  Release(analysis);
  Release(persist);
  Release(areas);
  FreeWorld(&world);
}

void TestPointers(void) {
  unsigned i;
  for (i = 0; i < ClassCount(); ++i) {
    TestObject(Create(&ClassAt(i)->clsid, &IID_IUnknown));
    CHECK_CODE(S_OK, CanUnloadNow());
  }
  TestStandIns();
}
