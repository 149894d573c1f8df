#include "fuzz/fuzzer.h"

#include <cstdint>

#ifdef KVDM_FUZZ_REPLAY

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace {

std::string Bytes(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> SeedsIn(const char* folder) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    files.push_back(entry.path());
  }
  std::ranges::sort(files);
  std::vector<std::string> seeds;
  std::ranges::transform(files, std::back_inserter(seeds), Bytes);
  return seeds;
}

// A seed with some bytes exchanged, taken out, doubled, or taken from another seed.
std::string Mutation(const std::vector<std::string>& seeds, std::mt19937_64& random) {
  std::string text = seeds[random() % seeds.size()];
  for (auto changes = 1 + random() % 6; changes != 0 && !text.empty(); --changes) {
    const std::string& other = seeds[random() % seeds.size()];
    const std::size_t at = random() % text.size();
    const std::size_t length = 1 + random() % 16;
    switch (random() % 4) {
      case 0:
        text[at] = static_cast<char>(random());
        break;
      case 1:
        text.erase(at, length);
        break;
      case 2:
        text.insert(at, text.substr(at, length));
        break;
      default:
        text.insert(at, other.empty() ? "" : other.substr(random() % other.size(), length));
    }
  }
  return text;
}

}  // namespace

// Runs all files of the folder that is the first argument, and as many mutations of them as the
// second says, always the same ones. The text that it ends at is left in the file "failing-input".
int main(int argc, char** argv) {
  if (argc != 3) return EXIT_FAILURE;
  const auto seeds = SeedsIn(argv[1]);
  if (seeds.empty()) return EXIT_FAILURE;
  for (const std::string& seed : seeds) kvdm::fuzz::Check(seed);
  std::mt19937_64 random(1);
  for (auto left = std::strtoul(argv[2], nullptr, 10); left != 0; --left) {
    const std::string text = Mutation(seeds, random);
    std::ofstream("failing-input", std::ios::binary) << text;
    kvdm::fuzz::Check(text);
  }
  std::filesystem::remove("failing-input");
  std::cout << seeds.size() << " seeds\n";
  return EXIT_SUCCESS;
}

#else

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  kvdm::fuzz::Check({reinterpret_cast<const char*>(data), size});
  return 0;
}

#endif
