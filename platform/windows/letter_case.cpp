#include <windows.h>

#include "platform/file_names.h"

namespace kvdm {

char16_t UpperCase(char16_t unit) {
  // A pointer of which only the lower half is set stands for one character.
  return static_cast<char16_t>(
      reinterpret_cast<ULONG_PTR>(::CharUpperW(reinterpret_cast<LPWSTR>(ULONG_PTR{unit}))));
}

}  // namespace kvdm
