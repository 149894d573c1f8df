#include "host/cli.h"

int main(int argc, char** argv) {
  return kvdm::RunCommandLine([&] { return std::vector<std::string>(argv + 1, argv + argc); });
}
