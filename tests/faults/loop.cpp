#include "tests/faults/loop.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string_view>

namespace kvdm::faults {
namespace {

[[noreturn]] void RefuseArguments(const char* program) {
  std::fprintf(stderr, "usage: %s [--long] [--part K/N]\n", program);
  std::exit(2);
}

// Memory that a child process writes and its parent reads.
Counts* SharedCounts() {
  void* memory =
      mmap(nullptr, sizeof(Counts), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  return new (memory) Counts;
}

}  // namespace

Options ReadOptions(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    const std::string_view word = argv[i];
    if (word == "--long") {
      options.all = true;
    } else if (word != "--part" || ++i == argc ||
               std::sscanf(argv[i], "%zu/%zu", &options.part, &options.parts) != 2 ||
               options.part < 1 || options.part > options.parts) {
      RefuseArguments(argv[0]);
    }
  }
  return options;
}

void RunApart(const char* name, Counts& counts, const std::function<void(Counts&)>& cases) {
  Counts* const shared = SharedCounts();
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    cases(*shared);
    std::fflush(nullptr);
    _exit(0);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) std::abort();
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    ++shared->crashed;
    std::printf("%s: ended with wait status %d after %" PRIu64 " cases\n", name, status,
                shared->tried);
  }
  counts.tried += shared->tried;
  counts.lost += shared->lost;
  counts.wrong += shared->wrong;
  counts.crashed += shared->crashed;
  counts.outside += shared->outside;
  munmap(shared, sizeof(Counts));
}

int Report(const char* loop, const Counts& counts) {
  std::printf("loop %s: tried=%" PRIu64 " lost=%" PRIu64 " wrong=%" PRIu64 " crashed=%" PRIu64
              " outside=%" PRIu64 "\n",
              loop, counts.tried, counts.lost, counts.wrong, counts.crashed, counts.outside);
  const bool good = counts.lost + counts.wrong + counts.crashed + counts.outside == 0;
  return good && counts.tried > 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace kvdm::faults
