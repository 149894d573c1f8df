// The work that all benchmarks do, and all peers in them: items of five elements each.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace kvdm::bench {

struct Parameter {
  std::string name;
  std::string value;
};

// An analysis as the component stores one: five attributes, a comment, three parameters.
struct Item {
  std::string name;  // as stored
  std::string guid;
  std::string folder;
  std::string layer_file;
  std::string created;
  std::string comments;
  std::array<Parameter, 3> parameters;
};

[[nodiscard]] Item ItemOf(std::size_t number);
[[nodiscard]] std::vector<Item> Items(std::size_t count);

// The numbers below `count` in a random order, the same in each run.
[[nodiscard]] std::vector<std::size_t> Shuffled(std::size_t count);

enum class Form { kOwn, kOther };

// A metadata document with `items`: as the component writes it, or with the quotes and line ends of
// somebody else.
[[nodiscard]] std::string TextOf(const std::vector<Item>& items, Form form);

// The keys that `items` are found by, in a random order; no more than fit a cache.
[[nodiscard]] std::vector<std::string> Guids(const std::vector<Item>& items);
[[nodiscard]] std::vector<std::string> Names(const std::vector<Item>& items);
// Keys like those, of no item.
[[nodiscard]] std::vector<std::string> MissingGuids(std::size_t count);

}  // namespace kvdm::bench
