#include <utility>

#include <kvdm/platform/portable/portable_services.h>

#include "platform/portable/value_set.h"

namespace kvdm {
namespace {

using GuidSource = std::function<std::string()>;

class PortableIdentifier : public Identifier {
 public:
  explicit PortableIdentifier(GuidSource new_guid) : new_guid_(std::move(new_guid)) {}

  void Generate() override { text_ = new_guid_(); }
  [[nodiscard]] std::string GetValue() const override { return text_; }
  void PutValue(std::string_view text) override { text_ = text; }

 private:
  GuidSource new_guid_;
  std::string text_;
};

class PortableGisCore : public GisCore {
 public:
  explicit PortableGisCore(GuidSource new_guid) : new_guid_(std::move(new_guid)) {}

  std::shared_ptr<Identifier> CreateIdentifier() override {
    return std::make_shared<PortableIdentifier>(new_guid_);
  }
  std::shared_ptr<NamedValueSet> CreateNamedValueSet() override {
    return std::make_shared<ValueSet>();
  }

 private:
  GuidSource new_guid_;
};

bool HyphenBefore(std::size_t byte) { return byte == 4 || byte == 6 || byte == 8 || byte == 10; }

class PortableDatasetManager : public DatasetManager {
 public:
  Value Initialize() override { return {}; }
};

class EnglishTexts : public ResourceFinder {
 public:
  std::string FindString(std::string_view id) override {
    if (id == "101") {
      return "The working directory could not be opened as chosen in the settings. "
             "Please choose another folder in the settings and try again.";
    }
    if (id == "102") {
      return "The record of this study area holds no list of properties, so the property was not "
             "stored. Please create the study area anew and store the property again.";
    }
    return {};
  }
};

class PortableSiblings : public Siblings {
 public:
  std::shared_ptr<DatasetManager> CreateDatasetManager() override {
    return std::make_shared<PortableDatasetManager>();
  }
  std::shared_ptr<ResourceFinder> CreateResourceFinder() override {
    return std::make_shared<EnglishTexts>();
  }
};

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

std::shared_ptr<GisCore> MakePortableGisCore(GuidSource new_guid) {
  return std::make_shared<PortableGisCore>(std::move(new_guid));
}

std::shared_ptr<Siblings> MakePortableSiblings() { return std::make_shared<PortableSiblings>(); }

}  // namespace kvdm
