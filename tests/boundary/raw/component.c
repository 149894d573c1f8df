#include "component.h"

#include <stdio.h>
#include <stdlib.h>

#include "check.h"

enum { kMaxTypes = 64 };

typedef HRESULT(STDAPICALLTYPE* GetClassObjectFunction)(REFCLSID, REFIID, void**);
typedef HRESULT(STDAPICALLTYPE* CanUnloadNowFunction)(void);

static HMODULE module = NULL;
static GetClassObjectFunction get_class_object = NULL;
static CanUnloadNowFunction can_unload_now = NULL;
static wchar_t path_of_module[MAX_PATH];

static ITypeLib* library = NULL;
static Interface interfaces[kMaxTypes];
static unsigned interface_count = 0;
static Class classes[kMaxTypes];
static unsigned class_count = 0;

static BSTR NameOf(ITypeInfo* type) {
  BSTR name = NULL;
  CHECK_CODE(S_OK, type->lpVtbl->GetDocumentation(type, MEMBERID_NIL, &name, NULL, NULL, NULL));
  return name;
}

// Of an interface that can also be called by name: its slots. Takes the reference to `type`.
static ITypeInfo* SlotsOf(ITypeInfo* type) {
  const UINT kInterfaceOfDual = (UINT)-1;
  HREFTYPE reference = 0;
  ITypeInfo* slots = NULL;
  if (FAILED(type->lpVtbl->GetRefTypeOfImplType(type, kInterfaceOfDual, &reference))) return type;
  CHECK_CODE(S_OK, type->lpVtbl->GetRefTypeInfo(type, reference, &slots));
  type->lpVtbl->Release(type);
  return slots;
}

static void AddInterface(ITypeInfo* type) {
  Interface* added = &interfaces[interface_count++];
  TYPEATTR* attributes = NULL;
  added->type = SlotsOf(type);
  added->name = NameOf(added->type);
  CHECK_CODE(S_OK, added->type->lpVtbl->GetTypeAttr(added->type, &attributes));
  added->iid = attributes->guid;
  added->operation_count = attributes->cFuncs;
  added->type->lpVtbl->ReleaseTypeAttr(added->type, attributes);
}

static IID IidOfImplemented(ITypeInfo* type, UINT position) {
  HREFTYPE reference = 0;
  ITypeInfo* implemented = NULL;
  TYPEATTR* attributes = NULL;
  IID iid;
  CHECK_CODE(S_OK, type->lpVtbl->GetRefTypeOfImplType(type, position, &reference));
  CHECK_CODE(S_OK, type->lpVtbl->GetRefTypeInfo(type, reference, &implemented));
  CHECK_CODE(S_OK, implemented->lpVtbl->GetTypeAttr(implemented, &attributes));
  iid = attributes->guid;
  implemented->lpVtbl->ReleaseTypeAttr(implemented, attributes);
  implemented->lpVtbl->Release(implemented);
  return iid;
}

static void AddClass(ITypeInfo* type) {
  Class* added = &classes[class_count++];
  TYPEATTR* attributes = NULL;
  UINT i;
  CHECK_CODE(S_OK, type->lpVtbl->GetTypeAttr(type, &attributes));
  added->name = NameOf(type);
  added->clsid = attributes->guid;
  added->iid_count = attributes->cImplTypes;
  for (i = 0; i < attributes->cImplTypes; ++i) added->iids[i] = IidOfImplemented(type, i);
  type->lpVtbl->ReleaseTypeAttr(type, attributes);
  type->lpVtbl->Release(type);
}

static int HasSlots(ITypeInfo* type) {
  TYPEATTR* attributes = NULL;
  int has_slots;
  CHECK_CODE(S_OK, type->lpVtbl->GetTypeAttr(type, &attributes));
  has_slots =
      attributes->typekind == TKIND_INTERFACE || (attributes->wTypeFlags & TYPEFLAG_FDUAL) != 0;
  type->lpVtbl->ReleaseTypeAttr(type, attributes);
  return has_slots;
}

static void ReadTypeLibrary(void) {
  UINT i;
  CHECK_CODE(S_OK, LoadTypeLibEx(path_of_module, REGKIND_NONE, &library));
  for (i = 0; i < library->lpVtbl->GetTypeInfoCount(library); ++i) {
    ITypeInfo* type = NULL;
    TYPEKIND kind = TKIND_MAX;
    CHECK_CODE(S_OK, library->lpVtbl->GetTypeInfoType(library, i, &kind));
    CHECK_CODE(S_OK, library->lpVtbl->GetTypeInfo(library, i, &type));
    if (kind == TKIND_COCLASS) {
      AddClass(type);
    } else if (HasSlots(type)) {
      AddInterface(type);
    } else {
      type->lpVtbl->Release(type);
    }
  }
}

// (By way of a plain function, as any function's address is given.)
static FARPROC Exported(const char* name) {
  const FARPROC function = GetProcAddress(module, name);
  CHECK(function != NULL);
  return function;
}

void LoadComponent(const char* path) {
  module = LoadLibraryA(path);
  if (module == NULL) {
    printf("Can't load %s: error %lu\n", path, GetLastError());
    exit(EXIT_FAILURE);
  }
  GetModuleFileNameW(module, path_of_module, MAX_PATH);
  get_class_object = (GetClassObjectFunction)(void (*)(void))Exported("DllGetClassObject");
  can_unload_now = (CanUnloadNowFunction)(void (*)(void))Exported("DllCanUnloadNow");
  ReadTypeLibrary();
}

void UnloadComponent(void) {
  unsigned i;
  for (i = 0; i < interface_count; ++i) {
    SysFreeString(interfaces[i].name);
    Release(interfaces[i].type);
  }
  for (i = 0; i < class_count; ++i) SysFreeString(classes[i].name);
  Release(library);
  CHECK(FreeLibrary(module));
  CHECK(GetModuleHandleW(path_of_module) == module);
}

unsigned InterfaceCount(void) { return interface_count; }
const Interface* InterfaceAt(unsigned position) { return &interfaces[position]; }
unsigned ClassCount(void) { return class_count; }
const Class* ClassAt(unsigned position) { return &classes[position]; }

int ImplementsInterface(const Class* of, REFIID iid) {
  unsigned i;
  for (i = 0; i < of->iid_count; ++i) {
    if (IsEqualIID(&of->iids[i], iid)) return 1;
  }
  return 0;
}

HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** out) {
  return get_class_object(clsid, iid, out);
}

HRESULT CanUnloadNow(void) { return can_unload_now(); }

void* Create(REFCLSID clsid, REFIID iid) {
  IClassFactory* factory = NULL;
  void* object = NULL;
  CHECK_CODE(S_OK, GetClassObject(clsid, &IID_IClassFactory, (void**)&factory));
  CHECK_CODE(S_OK, factory->lpVtbl->CreateInstance(factory, NULL, iid, &object));
  Release(factory);
  return object;
}

void* As(void* object, REFIID iid) {
  IUnknown* unknown = object;
  void* interface_pointer = NULL;
  CHECK_CODE(S_OK, unknown->lpVtbl->QueryInterface(unknown, iid, &interface_pointer));
  return interface_pointer;
}

ULONG Release(void* object) {
  IUnknown* unknown = object;
  return unknown->lpVtbl->Release(unknown);
}
