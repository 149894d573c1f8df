// A COM server that refuses to be registered.
#include <objbase.h>
#include <windows.h>

extern "C" __declspec(dllexport) HRESULT STDAPICALLTYPE DllRegisterServer() {
  return E_ACCESSDENIED;
}

extern "C" __declspec(dllexport) HRESULT STDAPICALLTYPE DllInstall(BOOL, const wchar_t*) {
  return E_FAIL;
}
