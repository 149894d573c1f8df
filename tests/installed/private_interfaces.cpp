// What the library keeps to itself can't be asked for: even a program that has the private headers
// gets Nothing for a private class from any object. private_classes.h includes those headers and
// has PRIVATE(name) for each class.
#include <iostream>
#include <type_traits>

#include <kvdm/kvdm.h>
#include <kvdm/platform/posix/posix_platform.h>

#include "private_classes.h"

namespace {

template <class Private>
bool HandsOut(const std::shared_ptr<kvdm::Unknown>& object) {
  if constexpr (std::is_polymorphic_v<Private>) return kvdm::Query<Private>(object) != nullptr;
  return false;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return std::cerr << "usage: private_interfaces REGISTRY-FILE\n", 2;
  const auto platform = kvdm::MakePosixPlatform({.registry_path = argv[1]});
  int result = 0;
  for (const std::string_view identity : kvdm::ClassIdentities()) {
    const auto object = kvdm::CreateObject(identity, platform);
#define PRIVATE(name)                                            \
  if (HandsOut<kvdm::name>(object)) {                            \
    std::cerr << identity << " hands out its " << #name << '\n'; \
    result = 1;                                                  \
  }
    KVDM_PRIVATE_CLASSES
  }
  return result;
}
