// Exhausted memory on demand: the allocations of `operator new` in the whole program are counted,
// and chosen ones fail. What libraries in C allocate is not theirs.
#pragma once

#include <cstdint>

namespace kvdm::failing_new {

enum class From {
  kOnce,     // the nth allocation alone fails
  kThereOn,  // the nth allocation and each one after it
};

// Counts anew. From here on the allocation number `nth` fails, counted from 1; none for 0.
void Arm(std::uint64_t nth, From from = From::kOnce);

// No allocation fails any more. Returns how many were counted.
std::uint64_t Disarm();

}  // namespace kvdm::failing_new
