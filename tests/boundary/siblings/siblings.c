// The two classes of sibling libraries that the component creates, for tests: a dataset manager and
// a finder of localised texts, which answers "text " and the number.
#include <initguid.h>
#include <windows.h>
// Needs the types of the former.
#include <oaidl.h>
#include <olectl.h>

enum { kGuidLength = 39 };

typedef struct {
  const CLSID* clsid;
  const wchar_t* program;
  const wchar_t* operation;
} Sibling;

DEFINE_GUID(CLSID_DatasetManager, 0x5B0C7E4A, 0x2D19, 0x4F0B, 0x9C, 0x51, 0x7D, 0x1B, 0x3A, 0x60,
            0x4E, 0x21);
DEFINE_GUID(CLSID_ResourceFinder, 0x5B0C7E4B, 0x2D19, 0x4F0B, 0x9C, 0x51, 0x7D, 0x1B, 0x3A, 0x60,
            0x4E, 0x21);

static const Sibling kSiblings[] = {
    {&CLSID_DatasetManager, L"QSObjectModel.QSManager", L"Initialize"},
    {&CLSID_ResourceFinder, L"KVDMRes.clsFindResource", L"FindString"},
};
enum { kSiblingCount = sizeof kSiblings / sizeof *kSiblings };

static HINSTANCE module = NULL;
static LONG locks = 0;

// Objects.

typedef struct {
  IDispatch slots;
  const Sibling* sibling;
  LONG references;
} Object;

static HRESULT STDMETHODCALLTYPE Query(IDispatch* self, REFIID iid, void** out) {
  const int known = IsEqualIID(iid, &IID_IUnknown) || IsEqualIID(iid, &IID_IDispatch);
  *out = known ? self : NULL;
  if (known) InterlockedIncrement(&((Object*)self)->references);
  return known ? S_OK : E_NOINTERFACE;
}

static ULONG STDMETHODCALLTYPE AddRef(IDispatch* self) {
  return (ULONG)InterlockedIncrement(&((Object*)self)->references);
}

static ULONG STDMETHODCALLTYPE Release(IDispatch* self) {
  const LONG left = InterlockedDecrement(&((Object*)self)->references);
  if (left == 0) {
    CoTaskMemFree(self);
    InterlockedDecrement(&locks);
  }
  return (ULONG)left;
}

static HRESULT STDMETHODCALLTYPE GetTypeInfoCount(IDispatch* self, UINT* count) {
  (void)self;
  *count = 0;
  return S_OK;
}

static HRESULT STDMETHODCALLTYPE GetTypeInfo(IDispatch* self, UINT index, LCID locale,
                                             ITypeInfo** type) {
  (void)self;
  (void)index;
  (void)locale;
  *type = NULL;
  return DISP_E_BADINDEX;
}

static HRESULT STDMETHODCALLTYPE GetIDsOfNames(IDispatch* self, REFIID iid, LPOLESTR* names,
                                               UINT count, LCID locale, DISPID* ids) {
  (void)iid;
  (void)count;
  (void)locale;
  ids[0] = lstrcmpiW(names[0], ((Object*)self)->sibling->operation) == 0 ? 1 : DISPID_UNKNOWN;
  return ids[0] == 1 ? S_OK : DISP_E_UNKNOWNNAME;
}

static HRESULT STDMETHODCALLTYPE Invoke(IDispatch* self, DISPID id, REFIID iid, LCID locale,
                                        WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                        EXCEPINFO* exception, UINT* wrong_argument) {
  wchar_t text[64] = L"text ";
  (void)self;
  (void)iid;
  (void)locale;
  (void)flags;
  (void)exception;
  (void)wrong_argument;
  if (id != 1) return DISP_E_MEMBERNOTFOUND;
  if (parameters->cArgs == 0) return S_OK;
  V_VT(result) = VT_BSTR;
  V_BSTR(result) = SysAllocString(lstrcatW(text, V_BSTR(&parameters->rgvarg[0])));
  return S_OK;
}

static const IDispatchVtbl kObjectSlots = {Query,       AddRef,        Release, GetTypeInfoCount,
                                           GetTypeInfo, GetIDsOfNames, Invoke};

// Factories, one for each class; they live as long as the DLL.

typedef struct {
  IClassFactory slots;
  const Sibling* sibling;
} Factory;

static HRESULT STDMETHODCALLTYPE QueryFactory(IClassFactory* self, REFIID iid, void** out) {
  const int known = IsEqualIID(iid, &IID_IUnknown) || IsEqualIID(iid, &IID_IClassFactory);
  *out = known ? self : NULL;
  return known ? S_OK : E_NOINTERFACE;
}

static ULONG STDMETHODCALLTYPE HoldFactory(IClassFactory* self) {
  (void)self;
  return 1;
}

static HRESULT STDMETHODCALLTYPE CreateInstance(IClassFactory* self, IUnknown* outer, REFIID iid,
                                                void** out) {
  Object* made;
  HRESULT result;
  *out = NULL;
  if (outer != NULL) return CLASS_E_NOAGGREGATION;
  made = CoTaskMemAlloc(sizeof *made);
  if (made == NULL) return E_OUTOFMEMORY;
  made->slots.lpVtbl = (IDispatchVtbl*)&kObjectSlots;
  made->sibling = ((Factory*)self)->sibling;
  made->references = 1;
  InterlockedIncrement(&locks);
  result = Query(&made->slots, iid, out);
  Release(&made->slots);
  return result;
}

static HRESULT STDMETHODCALLTYPE LockServer(IClassFactory* self, BOOL lock) {
  (void)self;
  if (lock) {
    InterlockedIncrement(&locks);
  } else {
    InterlockedDecrement(&locks);
  }
  return S_OK;
}

static const IClassFactoryVtbl kFactorySlots = {QueryFactory, HoldFactory, HoldFactory,
                                                CreateInstance, LockServer};
static Factory factories[kSiblingCount];

// Registration.

static LSTATUS SetValue(const wchar_t* key, const wchar_t* rest, const wchar_t* name,
                        const wchar_t* text) {
  wchar_t path[256] = L"Software\\Classes\\";
  const DWORD size = (DWORD)((lstrlenW(text) + 1) * sizeof(wchar_t));
  lstrcatW(lstrcatW(path, key), rest);
  return RegSetKeyValueW(HKEY_LOCAL_MACHINE, path, name, REG_SZ, text, size);
}

static void RemoveKey(const wchar_t* key) {
  wchar_t path[256] = L"Software\\Classes\\";
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, lstrcatW(path, key));
}

static void ClassKey(const Sibling* sibling, wchar_t* key, wchar_t* clsid) {
  StringFromGUID2(sibling->clsid, clsid, kGuidLength);
  lstrcatW(lstrcpyW(key, L"CLSID\\"), clsid);
}

// What the DLL exports.

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved) {
  int i;
  (void)reserved;
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  module = instance;
  for (i = 0; i < kSiblingCount; ++i) {
    factories[i].slots.lpVtbl = (IClassFactoryVtbl*)&kFactorySlots;
    factories[i].sibling = &kSiblings[i];
  }
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, LPVOID* out) {
  int i;
  *out = NULL;
  for (i = 0; i < kSiblingCount; ++i) {
    if (!IsEqualCLSID(clsid, kSiblings[i].clsid)) continue;
    return QueryFactory(&factories[i].slots, iid, out);
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow(void) { return locks == 0 ? S_OK : S_FALSE; }

STDAPI DllRegisterServer(void) {
  wchar_t path[MAX_PATH];
  wchar_t key[64];
  wchar_t clsid[kGuidLength];
  int i;
  LSTATUS failed = 0;
  GetModuleFileNameW(module, path, MAX_PATH);
  for (i = 0; i < kSiblingCount; ++i) {
    ClassKey(&kSiblings[i], key, clsid);
    failed |= SetValue(kSiblings[i].program, L"\\CLSID", NULL, clsid);
    failed |= SetValue(key, L"\\InprocServer32", NULL, path);
    failed |= SetValue(key, L"\\InprocServer32", L"ThreadingModel", L"Both");
  }
  return failed ? SELFREG_E_CLASS : S_OK;
}

STDAPI DllUnregisterServer(void) {
  wchar_t key[64];
  wchar_t clsid[kGuidLength];
  int i;
  for (i = 0; i < kSiblingCount; ++i) {
    ClassKey(&kSiblings[i], key, clsid);
    RemoveKey(kSiblings[i].program);
    RemoveKey(key);
  }
  return S_OK;
}
