// Checks for reports that could not be delivered.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include <kvdm/platform/error.h>

namespace kvdm {

// The message of the report in which `act` ends with run-time error 438.
template <class Act>
std::string UnsentMessage(Act&& act) {
  try {
    static_cast<void>(act());
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number(), kMemberNotSupported) << error.what();
    return error.unsent_message();
  }
  ADD_FAILURE() << "no error";
  return {};
}

}  // namespace kvdm
