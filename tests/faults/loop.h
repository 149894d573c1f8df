// What the loops written in C++ share: their arguments, their counts, and a way to survive a crash.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace kvdm::faults {

struct Options {
  bool all = false;  // all cases instead of a sample
  std::size_t part = 1;
  std::size_t parts = 1;

  // Whether the case with this number, counted from 0, belongs to this share.
  [[nodiscard]] bool IsMine(std::size_t number) const { return number % parts == part - 1; }
  // Of random cases: how many this share has, and their seed.
  [[nodiscard]] int CasesOf(int sample, int whole) const {
    return all ? whole / static_cast<int>(parts) : sample;
  }
  [[nodiscard]] unsigned Seed() const { return all ? 1000 + static_cast<unsigned>(part) : 1; }
};

// Reads `--long` and `--part K/N`. Ends the program with status 2 at anything else.
Options ReadOptions(int argc, char** argv);

struct Counts {
  std::uint64_t tried = 0;
  std::uint64_t lost = 0;
  std::uint64_t wrong = 0;
  std::uint64_t crashed = 0;
  std::uint64_t outside = 0;
};

// Runs `cases` in a process of its own and adds what it counts. A signal is one crash, and is
// printed with `name`; cases of that process that were not tried then are not counted.
void RunApart(const char* name, Counts& counts, const std::function<void(Counts&)>& cases);

// Prints the last line. Returns the exit status: 0 when nothing went wrong and something was tried.
int Report(const char* loop, const Counts& counts);

}  // namespace kvdm::faults
