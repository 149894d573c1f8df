// Loaded before a program's own libraries, it makes the n-th allocation of the program fail, or
// that and all after it, whoever asks: malloc, calloc and realloc, and with them `operator new`.
//
//   KVDM_MEMORY         "N" or "N on"; 0 for none
//   KVDM_MEMORY_REPORT  the file that gets the number of allocations and of those that failed
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" {

// The C library's own, under the names that nobody puts anything before.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
}

namespace {

struct Order {
  unsigned long nth = 0;
  bool all_after = false;
};

unsigned long g_counted = 0;
unsigned long g_failed = 0;

Order ReadOrder() {
  const char* const text = std::getenv("KVDM_MEMORY");
  if (text == nullptr) return {};
  char* end = nullptr;
  const unsigned long nth = std::strtoul(text, &end, 10);
  return {nth, std::strcmp(end, " on") == 0};
}

bool FailsNow() {
  static const Order order = ReadOrder();
  ++g_counted;
  const bool fails =
      order.nth != 0 && (order.all_after ? g_counted >= order.nth : g_counted == order.nth);
  if (!fails) return false;
  ++g_failed;
  errno = ENOMEM;
  return true;
}

__attribute__((destructor)) void Report() {
  const char* const path = std::getenv("KVDM_MEMORY_REPORT");
  if (path == nullptr) return;
  char line[64];
  const int length = std::snprintf(line, sizeof line, "%lu %lu allocation\n", g_counted, g_failed);
  const int file = open(path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (file < 0 || write(file, line, static_cast<std::size_t>(length)) != length) _exit(127);
  close(file);
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) { return FailsNow() ? nullptr : __libc_malloc(size); }

void* calloc(std::size_t count, std::size_t size) {
  return FailsNow() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
  return FailsNow() ? nullptr : __libc_realloc(memory, size);
}
}
