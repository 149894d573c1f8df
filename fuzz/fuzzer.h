// What a fuzzer is made of: one operation on bytes from anywhere, which aborts when something that
// must hold does not. fuzzer.cpp gives it a main program, or libFuzzer's entry.
#pragma once

#include <string_view>

namespace kvdm::fuzz {

// Each fuzzer has its own.
void Check(std::string_view bytes);

}  // namespace kvdm::fuzz
