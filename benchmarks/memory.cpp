// How many bytes does an item take, of those that are requested from malloc?
#include <libxml/xmlmemory.h>

#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

#include "benchmarks/ours.h"
#include "benchmarks/peers.h"

namespace {

std::size_t g_bytes = 0;
constexpr std::size_t kHeader = 16;

// Each block has its size in front of it.
void* Take(std::size_t size) {
  auto* block = static_cast<char*>(std::malloc(size + kHeader));
  if (block == nullptr) return nullptr;
  std::memcpy(block, &size, sizeof size);
  g_bytes += size;
  return block + kHeader;
}

std::size_t SizeOf(const void* memory) {
  std::size_t size = 0;
  std::memcpy(&size, static_cast<const char*>(memory) - kHeader, sizeof size);
  return size;
}

void Give(void* memory) {
  if (memory == nullptr) return;
  g_bytes -= SizeOf(memory);
  std::free(static_cast<char*>(memory) - kHeader);
}

void* Retake(void* memory, std::size_t size) {
  void* taken = Take(size);
  if (memory != nullptr && taken != nullptr) {
    std::memcpy(taken, memory, std::min(size, SizeOf(memory)));
    Give(memory);
  }
  return taken;
}

char* Copied(const char* text) {
  const std::size_t size = std::strlen(text) + 1;
  return static_cast<char*>(std::memcpy(Take(size), text, size));
}

}  // namespace

// Compilers that see the bytes in front of a block take them for somebody else's.
[[gnu::noinline]] void* operator new(std::size_t size) {
  void* memory = Take(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { Give(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { operator delete(memory); }

namespace kvdm::bench {
namespace {

template <class Make>
void Print(const char* peer, std::size_t count, const Make& make) {
  const std::size_t before = g_bytes;
  const auto made = make();
  std::printf("%s %zu %.1f\n", peer, count,
              static_cast<double>(g_bytes - before) / static_cast<double>(count));
}

template <class Source>
std::unique_ptr<Ours> Indexed(const Source& source, const std::vector<Item>& items) {
  auto ours = std::make_unique<Ours>(source);
  static_cast<void>(ours->FindGuid(items.back().guid));
  static_cast<void>(ours->FindName(items.back().name));
  return ours;
}

void PrintAll(std::size_t count) {
  const auto items = Items(count);
  const std::string text = TextOf(items, Form::kOwn);
  Print("memory_loaded/ours", count, [&] { return Indexed(text, items); });
  Print("memory_built/ours", count, [&] { return Indexed(items, items); });
  Print("memory_bare/ours", count, [&] { return std::make_unique<Ours>(text); });
  Print("memory/libxml2", count, [&] { return std::make_unique<Libxml>(text); });
  Print("memory/map", count, [&] { return std::make_unique<Map>(items); });
}

}  // namespace
}  // namespace kvdm::bench

// Prints a line for each number of items given: WHAT ITEMS BYTES.
int main(int argc, char** argv) {
  xmlMemSetup(Give, Take, Retake, Copied);
  for (int i = 1; i < argc; ++i) kvdm::bench::PrintAll(std::strtoul(argv[i], nullptr, 10));
}
