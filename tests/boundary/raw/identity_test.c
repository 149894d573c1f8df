// Every class answers its interfaces, and no other of the library's; all of them are one object.
#include "calls.h"
#include "check.h"
#include "component.h"
#include "tests.h"

enum { kMaxAnswered = kMaxInterfacesOfClass + 4 };

// The interfaces that all objects have.
static const IID* const kCommon[] = {&IID_IUnknown, &IID_IDispatch, &IID_ISupportErrorInfo,
                                     &IID_IProvideClassInfo};
enum { kCommonCount = sizeof kCommon / sizeof *kCommon };

static unsigned AnsweredBy(const Class* of, const IID** iids) {
  unsigned count = 0;
  unsigned i;
  for (i = 0; i < kCommonCount; ++i) iids[count++] = kCommon[i];
  for (i = 0; i < of->iid_count; ++i) iids[count++] = &of->iids[i];
  return count;
}

// All pairs: from each interface to each.
static void CheckOneObject(const Class* of) {
  IUnknown* object = Create(&of->clsid, &IID_IUnknown);
  const IID* iids[kMaxAnswered];
  const unsigned count = AnsweredBy(of, iids);
  unsigned i;
  unsigned j;
  for (i = 0; i < count; ++i) {
    IUnknown* from = As(object, iids[i]);
    for (j = 0; j < count; ++j) {
      IUnknown* to = As(from, iids[j]);
      IUnknown* identity = As(to, &IID_IUnknown);
      CHECK(identity == object);
      CHECK(i != j || to == from);
      Release(identity);
      Release(to);
    }
    Release(from);
  }
  CHECK(Release(object) == 0);
}

static void CheckRefused(IUnknown* object, REFIID iid) {
  void* out = Poison();
  CHECK_CODE(E_NOINTERFACE, object->lpVtbl->QueryInterface(object, iid, &out));
  CHECK(out == NULL);
}

static void CheckNoOtherInterface(const Class* of) {
  IUnknown* object = Create(&of->clsid, &IID_IUnknown);
  unsigned i;
  for (i = 0; i < InterfaceCount(); ++i) {
    if (!ImplementsInterface(of, &InterfaceAt(i)->iid)) CheckRefused(object, &InterfaceAt(i)->iid);
  }
  CheckRefused(object, &IID_IClassFactory);
  CheckRefused(object, &IID_IMarshal);
  CheckRefused(object, &IID_NULL);
  CHECK_CODE(E_POINTER, object->lpVtbl->QueryInterface(object, &IID_IUnknown, NULL));
  Release(object);
}

static void CheckErrorSupport(const Class* of) {
  ISupportErrorInfo* support = Create(&of->clsid, &IID_ISupportErrorInfo);
  unsigned i;
  for (i = 0; i < InterfaceCount(); ++i) {
    const IID* iid = &InterfaceAt(i)->iid;
    CHECK_CODE(ImplementsInterface(of, iid) ? S_OK : S_FALSE,
               support->lpVtbl->InterfaceSupportsErrorInfo(support, iid));
  }
  Release(support);
}

void TestIdentity(void) {
  unsigned i;
  CHECK(ClassCount() == 13);
  CHECK(InterfaceCount() == 28);
  for (i = 0; i < ClassCount(); ++i) {
    Concerning(ClassAt(i)->name, NULL);
    CheckOneObject(ClassAt(i));
    CheckNoOtherInterface(ClassAt(i));
    CheckErrorSupport(ClassAt(i));
  }
  Concerning(NULL, NULL);
  CHECK_CODE(S_OK, CanUnloadNow());
}
