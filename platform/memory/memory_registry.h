// A registry that lives in memory.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include <kvdm/platform/registry.h>

#include "platform/code_page.h"

namespace kvdm {

class MemoryRegistry : public Registry {
 public:
  explicit MemoryRegistry(CodePage code_page = CodePage::kUtf8) : code_page_(code_page) {}

  std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                    std::string_view name) override;
  bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                 std::string_view text) override;
  bool Update(RegistryRoot root, std::string_view key, std::string_view name,
              const TextUpdate& update) override;
  std::vector<KeptValue> Kept(RegistryRoot root, std::string_view key,
                              std::string_view name) override;
  [[nodiscard]] RegistryCondition Condition() const override { return condition_; }
  [[nodiscard]] bool Holds(char32_t character) const override;

  // Stores `bytes`, in the code page for a text, whether the registry is writable or not.
  void Put(RegistryRoot root, std::string_view key, std::string_view name, RegistryType type,
           std::string_view bytes);

  // Whether writes and reads are let through; they are at first.
  void SetWritable(bool writable) { writable_ = writable; }
  void SetReadable(bool readable) { readable_ = readable; }

 private:
  using Address = std::tuple<RegistryRoot, std::string, std::string>;

  static Address AddressOf(RegistryRoot root, std::string_view key, std::string_view name);

  CodePage code_page_;
  bool writable_ = true;
  bool readable_ = true;
  RegistryCondition condition_;
  std::map<Address, RegistryValue> values_;  // Their bytes as stored, in the code page.
  std::map<Address, std::vector<KeptValue>> kept_;
};

}  // namespace kvdm
