#include "platform/portable/portable_gis_core.h"

#include <utility>

#include "platform/portable/value_set.h"

namespace kvdm {
namespace {

class PortableIdentifier : public Identifier {
 public:
  explicit PortableIdentifier(PortableGisCore::GuidSource new_guid)
      : new_guid_(std::move(new_guid)) {}

  void Generate() override { text_ = new_guid_(); }
  [[nodiscard]] std::string GetValue() const override { return text_; }
  void PutValue(std::string_view text) override { text_ = text; }

 private:
  PortableGisCore::GuidSource new_guid_;
  std::string text_;
};

bool HyphenBefore(std::size_t byte) { return byte == 4 || byte == 6 || byte == 8 || byte == 10; }

}  // namespace

std::string GuidText(std::array<unsigned char, 16> bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  constexpr std::size_t kVersionByte = 6;
  constexpr std::size_t kVariantByte = 8;
  bytes[kVersionByte] = (bytes[kVersionByte] & 0x0FU) | 0x40U;
  bytes[kVariantByte] = (bytes[kVariantByte] & 0x3FU) | 0x80U;
  std::string text = "{";
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (HyphenBefore(i)) text += '-';
    text += kDigits[bytes[i] >> 4U];
    text += kDigits[bytes[i] & 0x0FU];
  }
  return text + "}";
}

PortableGisCore::PortableGisCore(GuidSource new_guid) : new_guid_(std::move(new_guid)) {}

std::shared_ptr<Identifier> PortableGisCore::CreateIdentifier() {
  return std::make_shared<PortableIdentifier>(new_guid_);
}

std::shared_ptr<NamedValueSet> PortableGisCore::CreateNamedValueSet() {
  return std::make_shared<ValueSet>();
}

}  // namespace kvdm
