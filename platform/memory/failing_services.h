// Wrappers that forward to a real service, count the calls in a shared counter and make one of them
// fail. Operations that never fail by contract answer their neutral result at that call. What a
// service hands out is wrapped too. The counter may choose other trouble than a failure.
#pragma once

#include <memory>
#include <utility>

#include <kvdm/platform/clock.h>
#include <kvdm/platform/gis_core.h>
#include <kvdm/platform/host.h>
#include <kvdm/platform/message_box.h>
#include <kvdm/platform/registry.h>
#include <kvdm/platform/siblings.h>

#include "platform/memory/failure_counter.h"
#include "platform/xml_parser.h"

namespace kvdm {

template <class Service>
class FailingService : public Service {
 public:
  FailingService(std::shared_ptr<Service> inner, std::shared_ptr<FailureCounter> counter)
      : inner_(std::move(inner)), counter_(std::move(counter)) {}

  [[nodiscard]] const std::shared_ptr<Service>& Inner() const { return inner_; }

 protected:
  // The wrapped service, for one call that may fail.
  [[nodiscard]] Service& Counted(std::string_view call, std::string_view about = {}) const {
    counter_->Count(call, about);
    return *inner_;
  }

  // Counts a call that answers its neutral result when it fails: whether it is to fail.
  [[nodiscard]] bool FailsNow(std::string_view call, std::string_view about = {}) const {
    return counter_->Fails(call, about);
  }

  // Whether the call counted last is to give Nothing.
  [[nodiscard]] bool GivesNothing() const { return counter_->GivesNothing(); }

  // `object`, the answer to the call counted last, in its own wrapper; Nothing stays Nothing.
  template <class Wrapper, class Object>
  std::shared_ptr<Object> Wrap(std::shared_ptr<Object> object) const {
    const bool given = object && !GivesNothing();
    return given ? std::make_shared<Wrapper>(std::move(object), counter_) : nullptr;
  }

 private:
  std::shared_ptr<Service> inner_;
  std::shared_ptr<FailureCounter> counter_;
};

class FailingRegistry : public FailingService<Registry> {
 public:
  using FailingService::FailingService;
  std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                    std::string_view name) override;
  bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                 std::string_view text) override;
  bool Update(RegistryRoot root, std::string_view key, std::string_view name,
              const TextUpdate& update) override;
  std::vector<KeptValue> Kept(RegistryRoot root, std::string_view key,
                              std::string_view name) override;
  // Not counted: these ask nothing of the system.
  [[nodiscard]] RegistryCondition Condition() const override;
  [[nodiscard]] bool Holds(char32_t character) const override;
};

class FailingMessageBox : public FailingService<MessageBox> {
 public:
  using FailingService::FailingService;
  void Show(std::string_view text, std::string_view caption, MessageStyle style) override;
};

class FailingXmlParser : public FailingService<XmlParser> {
 public:
  using FailingService::FailingService;
  bool Parse(std::string_view text, XmlEncoding encoding, XmlHandler& handler) override;
};

class FailingClock : public FailingService<Clock> {
 public:
  using FailingService::FailingService;
  DateTime Now() override;
};

class FailingIdentifier : public FailingService<Identifier> {
 public:
  using FailingService::FailingService;
  void Generate() override;
  [[nodiscard]] std::string GetValue() const override;
  void PutValue(std::string_view text) override;
};

class FailingNamedValueSet : public FailingService<NamedValueSet> {
 public:
  using FailingService::FailingService;
  std::vector<Value> GetValues(std::string_view path) override;
  void PutValue(std::string_view path, const Value& value) override;
  Listing ListAll() override;
  int EntryCount() override;
  void PrepareForUpdate() override;
};

class FailingGisCore : public FailingService<GisCore> {
 public:
  using FailingService::FailingService;
  std::shared_ptr<Identifier> CreateIdentifier() override;
  std::shared_ptr<NamedValueSet> CreateNamedValueSet() override;
};

class FailingVariantStream : public FailingService<VariantStream> {
 public:
  using FailingService::FailingService;
  void Write(const Value& value) override;
  Value Read() override;
};

class FailingLayerMetadata : public FailingService<LayerMetadata> {
 public:
  using FailingService::FailingService;
  std::shared_ptr<NamedValueSet> ReadDocument() override;
  // A document in a failing wrapper is stored without it.
  void WriteDocument(const std::shared_ptr<NamedValueSet>& document) override;
};

class FailingDatasetManager : public FailingService<DatasetManager> {
 public:
  using FailingService::FailingService;
  Value Initialize() override;
};

class FailingResourceFinder : public FailingService<ResourceFinder> {
 public:
  using FailingService::FailingService;
  std::string FindString(std::string_view id) override;
};

class FailingSiblings : public FailingService<Siblings> {
 public:
  using FailingService::FailingService;
  std::shared_ptr<DatasetManager> CreateDatasetManager() override;
  std::shared_ptr<ResourceFinder> CreateResourceFinder() override;
};

class FailingPropertySet : public FailingService<HostPropertySet> {
 public:
  using FailingService::FailingService;
  Value GetProperty(std::string_view name) override;
  void SetProperty(std::string_view name, const Value& value) override;
};

class FailingHost : public FailingService<Host> {
 public:
  using FailingService::FailingService;
  std::shared_ptr<HostPropertySet> CurrentState() override;
  std::shared_ptr<HostPropertySet> Settings() override;
};

}  // namespace kvdm
