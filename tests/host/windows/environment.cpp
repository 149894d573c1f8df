// XML is parsed through COM here.
#include <gtest/gtest.h>

#include "tests/platform/windows/com_environment.h"
