// COM for a test program: the thread that runs the tests is a single-threaded apartment.
#pragma once

#include <gtest/gtest.h>

#include "platform/windows/com_headers.h"

namespace kvdm {

class ComEnvironment final : public testing::Environment {
 public:
  void SetUp() override { ASSERT_EQ(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK); }
  void TearDown() override { ::CoUninitialize(); }
};

inline testing::Environment* const com_environment =
    testing::AddGlobalTestEnvironment(new ComEnvironment);

}  // namespace kvdm
