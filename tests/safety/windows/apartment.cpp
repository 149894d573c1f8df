// The tests of safety read documents, which is MSXML's work on Windows.
#include "tests/platform/windows/com_environment.h"
