#include <objbase.h>
#include <windows.h>

#include "host/cli.h"
#include "host/os.h"
#include "host/windows/console.h"

// Arguments are names and texts: "*" in them is no file pattern.
extern "C" {
int _dowildcard = 0;
}

namespace {

// The parser and the sibling libraries are COM objects.
class ComApartment {
 public:
  ComApartment() : result_(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
  ~ComApartment() {
    if (SUCCEEDED(result_)) CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;

 private:
  HRESULT result_;
};

}  // namespace

extern "C" int wmain(int count, wchar_t** words) {
  const kvdm::Console console;
  const ComApartment apartment;
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(kvdm::os::ToText(words[i]));
  return kvdm::RunCommandLine(std::move(arguments));
}
