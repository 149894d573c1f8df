// Clients' objects that are called by name.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include <kvdm/platform/gis_core.h>
#include <kvdm/platform/host.h>

#include "com/client_objects.h"
#include "platform/windows/automation.h"
#include "platform/windows/com_headers.h"

namespace kvdm::com {

class LateClient : public ClientObject {
 public:
  explicit LateClient(const Microsoft::WRL::ComPtr<IDispatch>& object)
      : ClientObject(object), names_(object) {}

 protected:
  [[nodiscard]] const LateObject& Names() const { return names_; }

 private:
  LateObject names_;
};

class LateHost final : public Host, public LateClient {
 public:
  using LateClient::LateClient;
  std::shared_ptr<HostPropertySet> CurrentState() override;
  std::shared_ptr<HostPropertySet> Settings() override;
};

class LateStream final : public VariantStream, public LateClient {
 public:
  using LateClient::LateClient;
  void Write(const Value& value) override;
  Value Read() override;
};

class LateValueSet final : public NamedValueSet, public LateClient {
 public:
  using LateClient::LateClient;
  std::vector<Value> GetValues(std::string_view path) override;
  void PutValue(std::string_view path, const Value& value) override;
  Listing ListAll() override;
  int EntryCount() override;
  void PrepareForUpdate() override;
};

class LateMetadata final : public LayerMetadata, public LateClient {
 public:
  using LateClient::LateClient;
  std::shared_ptr<NamedValueSet> ReadDocument() override;
  void WriteDocument(const std::shared_ptr<NamedValueSet>& document) override;
};

// A listing from the two arrays that ListAll fills.
[[nodiscard]] NamedValueSet::Listing ListingOf(const VARIANT& names, const VARIANT& values);

}  // namespace kvdm::com
