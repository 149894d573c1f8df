// What a fuzzer is made of: one operation on bytes from anywhere, which aborts when something that
// must hold does not. fuzzer.cpp gives it a main program, or libFuzzer's entry.
#pragma once

#include <cstdlib>
#include <string_view>

namespace kvdm::fuzz {

inline void Require(bool holds) {
  if (!holds) std::abort();
}

// Each fuzzer has its own.
void Check(std::string_view bytes);

}  // namespace kvdm::fuzz
