// Uses the registered component again and again, with an error each time, and lets COM unload it
// after each use: nothing is lost by that, however often it happens.
#include <stdio.h>
#include <stdlib.h>

#include "com/kvdm.h"

// More than a program has indexes of thread-local storage.
enum { kRounds = 1300, kWarmUp = 20, kMostHeaps = 64 };

// A path that is empty has no parts.
static HRESULT UseOnce(void) {
  IKVFileInfo* info = NULL;
  BSTR name = NULL;
  HRESULT result = CoCreateInstance(&CLSID_KVFileInfo, NULL, CLSCTX_INPROC_SERVER,
                                    &IID_IKVFileInfo, (void**)&info);
  if (FAILED(result)) return E_UNEXPECTED;
  result = info->lpVtbl->get_FileName(info, &name);
  info->lpVtbl->Release(info);
  SetErrorInfo(0, NULL);
  CoFreeUnusedLibrariesEx(0, 0);
  return result;
}

static unsigned UseOften(unsigned rounds) {
  const HRESULT kInvalidCall = (HRESULT)0x800A0005;
  unsigned wrong = 0;
  unsigned i;
  for (i = 0; i < rounds; ++i) {
    const HRESULT result = UseOnce();
    if (result == kInvalidCall) continue;
    if (++wrong == 1) printf("round %u: %08lX\n", i, (unsigned long)result);
  }
  return wrong;
}

// The smallest index of thread-local storage that is free.
static DWORD FreeIndex(void) {
  const DWORD index = TlsAlloc();
  TlsFree(index);
  return index;
}

// What all heaps of the program hold.
static size_t HeapsInUse(void) {
  HANDLE heaps[kMostHeaps];
  const DWORD count = GetProcessHeaps(kMostHeaps, heaps);
  size_t size = 0;
  DWORD i;
  for (i = 0; i < count && i < kMostHeaps; ++i) {
    PROCESS_HEAP_ENTRY entry = {0};
    while (HeapWalk(heaps[i], &entry)) {
      if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) size += entry.cbData;
    }
  }
  return size;
}

int main(void) {
  const size_t kNoise = 65536;
  unsigned wrong;
  DWORD index;
  size_t before;
  size_t after;
  setvbuf(stdout, NULL, _IONBF, 0);
  CoInitialize(NULL);
  wrong = UseOften(kWarmUp);
  index = FreeIndex();
  before = HeapsInUse();
  wrong += UseOften(kRounds);
  after = HeapsInUse();
  printf("%u of %u rounds failed; free index %lu, then %lu; heap %lu KB, then %lu KB\n", wrong,
         (unsigned)(kWarmUp + kRounds), index, FreeIndex(), (unsigned long)(before / 1024),
         (unsigned long)(after / 1024));
  CoUninitialize();
  return wrong == 0 && index == FreeIndex() && after < before + kNoise ? EXIT_SUCCESS
                                                                         : EXIT_FAILURE;
}
