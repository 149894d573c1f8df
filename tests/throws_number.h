// Checks for run-time errors by their number.
#pragma once

#include <gtest/gtest.h>

#include <kvdm/platform/error.h>

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
