#include "check.h"

#include <stdio.h>

static int failures = 0;
static const wchar_t* concern = NULL;
static const wchar_t* concern_detail = NULL;

static void Fail(const char* what, const char* file, int line) {
  ++failures;
  printf("%s:%d: ", file, line);
  if (concern) printf("[%ls %ls] ", concern, concern_detail ? concern_detail : L"");
  printf("FAILED: %s\n", what);
}

void CheckHolds(int holds, const char* what, const char* file, int line) {
  if (!holds) Fail(what, file, line);
}

void CheckCode(HRESULT expected, HRESULT actual, const char* what, const char* file, int line) {
  if (actual == expected) return;
  Fail(what, file, line);
  printf("  expected %08lX, was %08lX\n", (unsigned long)expected, (unsigned long)actual);
}

void Concerning(const wchar_t* what, const wchar_t* detail) {
  concern = what;
  concern_detail = detail;
}

int FailureCount(void) { return failures; }
