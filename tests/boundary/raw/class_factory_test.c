// Class objects, and what keeps the DLL loaded.
#include "calls.h"
#include "check.h"
#include "component.h"
#include "tests.h"

static IClassFactory* FactoryOf(const Class* of) {
  IClassFactory* factory = NULL;
  CHECK_CODE(S_OK, GetClassObject(&of->clsid, &IID_IClassFactory, (void**)&factory));
  return factory;
}

static void TestFactoryOf(const Class* of) {
  IClassFactory* factory = FactoryOf(of);
  IUnknown* object = Create(&of->clsid, &IID_IUnknown);
  void* out = Poison();
  CHECK_CODE(CLASS_E_NOAGGREGATION,
             factory->lpVtbl->CreateInstance(factory, object, &IID_IUnknown, &out));
  CHECK(out == NULL);
  out = Poison();
  CHECK_CODE(E_NOINTERFACE, factory->lpVtbl->CreateInstance(factory, NULL, &IID_IHost, &out));
  CHECK(out == NULL);
  CHECK_CODE(E_POINTER, factory->lpVtbl->CreateInstance(factory, NULL, &IID_IUnknown, NULL));
  Release(object);
  CHECK(Release(factory) == 0);
}

static void TestEachCreatedObjectIsNew(const Class* of) {
  IUnknown* first = Create(&of->clsid, &IID_IUnknown);
  IUnknown* second = Create(&of->clsid, &IID_IUnknown);
  CHECK(first != second);
  Release(first);
  Release(second);
}

static void TestUnknownClass(void) {
  void* out = Poison();
  CHECK_CODE(CLASS_E_CLASSNOTAVAILABLE,
             GetClassObject(&IID_IKVDataManager, &IID_IClassFactory, &out));
  CHECK(out == NULL);
  CHECK_CODE(E_POINTER, GetClassObject(&CLSID_KVFileInfo, &IID_IClassFactory, NULL));
}

static void TestFactoryInterfaces(void) {
  IClassFactory* factory = FactoryOf(ClassAt(0));
  void* out = Poison();
  CHECK_CODE(E_NOINTERFACE, GetClassObject(&CLSID_KVFileInfo, &IID_IDispatch, &out));
  CHECK(out == NULL);
  out = As(factory, &IID_IUnknown);
  CHECK(out == factory);
  Release(out);
  CHECK_CODE(E_POINTER, factory->lpVtbl->QueryInterface(factory, &IID_IUnknown, NULL));
  Release(factory);
}

static void TestLocks(void) {
  IClassFactory* factory = FactoryOf(ClassAt(0));
  CHECK_CODE(S_FALSE, CanUnloadNow());
  CHECK_CODE(S_OK, factory->lpVtbl->LockServer(factory, TRUE));
  CHECK_CODE(S_OK, factory->lpVtbl->LockServer(factory, TRUE));
  CHECK_CODE(S_OK, factory->lpVtbl->LockServer(factory, FALSE));
  Release(factory);
  CHECK_CODE(S_FALSE, CanUnloadNow());
  factory = FactoryOf(ClassAt(0));
  CHECK_CODE(S_OK, factory->lpVtbl->LockServer(factory, FALSE));
  Release(factory);
  CHECK_CODE(S_OK, CanUnloadNow());
}

void TestClassFactories(void) {
  unsigned i;
  for (i = 0; i < ClassCount(); ++i) {
    Concerning(ClassAt(i)->name, NULL);
    TestFactoryOf(ClassAt(i));
    TestEachCreatedObjectIsNew(ClassAt(i));
  }
  Concerning(NULL, NULL);
  TestUnknownClass();
  TestFactoryInterfaces();
  TestLocks();
}
