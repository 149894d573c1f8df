// The implementations of this system that the contracts are checked on, besides the memory's.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <kvdm/platform/platform.h>
#include <kvdm/platform/portable/callback_sinks.h>

#include "platform/code_page.h"

namespace kvdm {

// "Posix" or "Windows".
std::string SystemName();

// The system's services, with a message box that shows through `show`.
Platform SystemPlatform(const CallbackMessageBox::Callback& show = {});

// An implementation of what a contract is about, as `make` makes it.
template <class Service>
struct Implementation {
  std::string name;
  std::shared_ptr<Service> (*make)();
};

// Names the tests of a contract by the implementation.
inline constexpr auto kByName = [](const auto& tested) { return tested.param.name; };

// A registry without content, for as long as the world lives.
class RegistryWorld {
 public:
  virtual ~RegistryWorld() = default;
  virtual std::unique_ptr<Registry> Open(CodePage page) = 0;
};

// A way to make a registry's world.
struct RegistryMaker {
  std::string name;
  // The code pages that it can have, the one that tests use by themselves first.
  std::vector<CodePage> pages;
  // Whether names are found whatever the case of any letter, and not only of ASCII's.
  bool folds_every_letter = false;
  std::function<std::unique_ptr<RegistryWorld>()> make;
};

RegistryMaker SystemRegistry();

}  // namespace kvdm
