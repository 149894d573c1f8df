// Calls KVDM.dll through the slots of its interfaces, as a client in C does.
//
//   boundary_raw_test KVDM.dll siblings.dll
#include <stdio.h>
#include <stdlib.h>

#include "calls.h"
#include "check.h"
#include "component.h"
#include "tests.h"
#include "world.h"

typedef HRESULT(STDAPICALLTYPE* RegisterFunction)(void);

static HMODULE siblings = NULL;

static void CallSiblings(const char* function) {
  const FARPROC found = GetProcAddress(siblings, function);
  CHECK(found != NULL);
  if (found) CHECK_CODE(S_OK, ((RegisterFunction)(void (*)(void))found)());
}

// Without the sibling libraries a data manager has no dataset manager, and no other loss.
static void TestWithoutSiblings(void) {
  IKVDataManager* manager = NewManager();
  CHECK_NOTHING(IKVDataManager, get_DatasetManager, manager);
  CHECK_NOTHING(IKVDataManager, PDataList, manager);
  CHECK(Release(manager) == 0);
}

static void RunTests(void) {
  // The host's second operation is the host's own.
  const Slot kNever = {&IID_IHost, offsetof(IHostVtbl, Reserved) / sizeof(void*)};
  PreparePlace();
  CallSiblings("DllUnregisterServer");
  TestWithoutSiblings();
  CallSiblings("DllRegisterServer");
  TestIdentity();
  TestClassFactories();
  TestLifetime();
  TestPointers();
  TestManagerOperations();
  TestStudyAreaOperations();
  TestCollectionOperations();
  TestItemOperations();
  TestNameLists();
  TestValues();
  TestErrors();
  TestHost();
  CheckEverySlotWasCalled(&kNever);
  CallSiblings("DllUnregisterServer");
  ClearPlace();
}

int main(int argument_count, char** arguments) {
  if (argument_count != 3) return EXIT_FAILURE;
  CoInitialize(NULL);
  siblings = LoadLibraryA(arguments[2]);
  LoadComponent(arguments[1]);
  // Relative paths, if there are any, end here.
  SetCurrentDirectoryW(L"D:\\");
  RunTests();
  CHECK_CODE(S_OK, CanUnloadNow());
  UnloadComponent();
  CoUninitialize();
  printf("%d checks failed.\n", FailureCount());
  return FailureCount() == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
