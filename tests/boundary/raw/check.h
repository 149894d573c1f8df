// Checks that say what does not hold and go on.
#pragma once

#include <windows.h>

#define CHECK(condition) CheckHolds((condition) != 0, #condition, __FILE__, __LINE__)

// The result code of a call.
#define CHECK_CODE(expected, call) CheckCode((expected), (call), #call, __FILE__, __LINE__)

void CheckHolds(int holds, const char* what, const char* file, int line);
void CheckCode(HRESULT expected, HRESULT actual, const char* what, const char* file, int line);

// What is named in the failures that follow, such as an operation out of a table; at most two texts
// next to each other. Null for nothing.
void Concerning(const wchar_t* what, const wchar_t* detail);

int FailureCount(void);
