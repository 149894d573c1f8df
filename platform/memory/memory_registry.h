// A registry that lives in memory.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "platform/code_page.h"
#include "platform/registry.h"

namespace kvdm {

class MemoryRegistry : public Registry {
 public:
  // A value that was preserved; key and name as the caller wrote them.
  struct PreservedValue {
    RegistryRoot root;
    std::string key;
    std::string name;
    RegistryValue value;
  };

  explicit MemoryRegistry(CodePage code_page = CodePage::kUtf8) : code_page_(code_page) {}

  std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                    std::string_view name) override;
  bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                 std::string_view text) override;
  void Preserve(RegistryRoot root, std::string_view key, std::string_view name) override;
  [[nodiscard]] bool Holds(char32_t character) const override;

  // Stores `bytes`, in the code page for a text, whether the registry is writable or not.
  void Put(RegistryRoot root, std::string_view key, std::string_view name, RegistryType type,
           std::string_view bytes);

  // Whether WriteText is let through; it is at first.
  void SetWritable(bool writable) { writable_ = writable; }

  // What was preserved, the oldest first.
  [[nodiscard]] const std::vector<PreservedValue>& Preserved() const { return preserved_; }

 private:
  using Address = std::tuple<RegistryRoot, std::string, std::string>;

  static Address AddressOf(RegistryRoot root, std::string_view key, std::string_view name);

  CodePage code_page_;
  bool writable_ = true;
  std::map<Address, RegistryValue> values_;  // Their bytes as stored, in the code page.
  std::vector<PreservedValue> preserved_;
};

}  // namespace kvdm
