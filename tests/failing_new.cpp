#include "tests/failing_new.h"

#include <cstdlib>
#include <new>

namespace kvdm::failing_new {
namespace {

std::uint64_t g_counted = 0;
std::uint64_t g_nth = 0;
From g_from = From::kOnce;

bool FailsNow() {
  ++g_counted;
  return g_nth != 0 && (g_from == From::kOnce ? g_counted == g_nth : g_counted >= g_nth);
}

void* Allocate(std::size_t size) {
  void* memory = FailsNow() ? nullptr : std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

void Arm(std::uint64_t nth, From from) {
  g_counted = 0;
  g_nth = nth;
  g_from = from;
}

std::uint64_t Disarm() {
  g_nth = 0;
  return g_counted;
}

}  // namespace kvdm::failing_new

void* operator new(std::size_t size) { return kvdm::failing_new::Allocate(size); }
void* operator new[](std::size_t size) { return kvdm::failing_new::Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
