// Ready-made services for hosts that do not bring their own.
#include <cstdio>
#include <exception>
#include <utility>

#include <kvdm/platform/error.h>
#include <kvdm/platform/portable/callback_sinks.h>
#include <kvdm/platform/portable/portable_services.h>
#include <kvdm/platform/portable/properties_host.h>
#include <kvdm/platform/portable/variant_list.h>

#include "platform/code_page.h"
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

void PrintError(const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); }

void PrintMessage(std::string_view text, std::string_view caption, MessageStyle /*style*/) {
  PrintError(std::string(caption) + ": " + std::string(text));
}

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

CallbackMessageBox::CallbackMessageBox(Callback show, CodePage code_page)
    : show_(show ? std::move(show) : PrintMessage), code_page_(code_page) {}

void CallbackMessageBox::Show(std::string_view text, std::string_view caption, MessageStyle style) {
  const auto shown = [this](std::string_view utf8) {
    return Decode(Encode(utf8, code_page_), code_page_);
  };
  show_(shown(text), shown(caption), style);
}

CallbackLog::CallbackLog(Callback note) : note_(std::move(note)) {}

void CallbackLog::Note(std::string_view line) {
  if (!note_) return;
  try {
    note_(line);
  } catch (const std::exception& error) {
    PrintError(std::string(line) + " (not logged: " + error.what() + ")");
  }
}

Value PropertySetMap::GetProperty(std::string_view name) {
  const auto found = properties_.find(name);
  return found == properties_.end() ? Value() : found->second;
}

void PropertySetMap::SetProperty(std::string_view name, const Value& value) {
  properties_.insert_or_assign(std::string(name), value);
}

PropertiesHost::PropertiesHost()
    : PropertiesHost(std::make_shared<PropertySetMap>(), std::make_shared<PropertySetMap>()) {}

PropertiesHost::PropertiesHost(std::shared_ptr<HostPropertySet> current_state,
                               std::shared_ptr<HostPropertySet> settings)
    : current_state_(std::move(current_state)), settings_(std::move(settings)) {}

Value VariantList::Read() {
  if (next_ == values_.size()) throw RuntimeError(kInputPastEnd);
  return values_[next_++];
}

}  // namespace kvdm
