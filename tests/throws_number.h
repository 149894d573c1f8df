// Run-time errors by their number.
#pragma once

#include <gtest/gtest.h>

#include <functional>

#include <kvdm/platform/error.h>

namespace kvdm {

// The number of the error that ends `act`; 0 when none does.
inline int ErrorOf(const std::function<void()>& act) {
  try {
    act();
    return 0;
  } catch (const RuntimeError& error) {
    return error.number();
  }
}

}  // namespace kvdm

// Expects `statement` to fail with the run-time error `expected_number`.
#define EXPECT_RUNTIME_ERROR(statement, expected_number)  \
  do {                                                    \
    try {                                                 \
      statement;                                          \
      ADD_FAILURE() << "no error from " #statement;       \
    } catch (const ::kvdm::RuntimeError& runtime_error) { \
      EXPECT_EQ(runtime_error.number(), expected_number)  \
          << #statement << ": " << runtime_error.what();  \
    }                                                     \
  } while (false)
