// Fault injection: wrappers that forward to a real service, count the calls in a shared counter and
// make one of them fail. Operations that never fail by contract answer their neutral result at that
// call. What a service hands out is wrapped too. The counter may choose other trouble than a
// failure.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kvdm/platform/error.h>
#include <kvdm/platform/host.h>
#include <kvdm/platform/platform.h>

#include "platform/xml_parser.h"

namespace kvdm {

// Counts the calls made through failing wrappers and chooses the one that fails. Several wrappers
// may share a counter, so that a sweep over `fail_at` visits every call of a whole operation.
struct FailureCounter {
  int calls = 0;
  int fail_at = 0;  // The number of the call that fails, counted from 1; 0: none.
  // What the chosen call does instead of failing, before it goes on: throw, or call back.
  std::function<void()> instead = {};
  // The chosen call fails no other way than by giving Nothing for an object, none of several
  // values, and lists of uneven length.
  bool gives_nothing = false;
  // Where the names of the calls go, with the path or name they are about; Nothing for nowhere.
  std::vector<std::string>* record = nullptr;

  // Counts one call; whether it fails. Runs `instead` at the chosen one.
  [[nodiscard]] bool Fails(std::string_view call, std::string_view about = {}) {
    if (record != nullptr) record->push_back(Named(call, about));
    if (++calls != fail_at || gives_nothing) return false;
    if (!instead) return true;
    instead();
    return false;
  }

  // Counts one call. Run-time error 70 when it is the chosen one.
  void Count(std::string_view call, std::string_view about = {}) {
    if (Fails(call, about)) throw RuntimeError(kPermissionDenied, "", "Injected failure");
  }

  // Whether the call counted last is to give Nothing.
  [[nodiscard]] bool GivesNothing() const { return gives_nothing && calls == fail_at; }

 private:
  static std::string Named(std::string_view call, std::string_view about) {
    return std::string(call) + (about.empty() ? "" : " ") + std::string(about);
  }
};

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

  [[nodiscard]] const std::shared_ptr<FailureCounter>& Counter() const { return counter_; }

  // `object`, the answer to the call counted last, in its own wrapper; Nothing stays Nothing.
  template <class Wrapper, class Object>
  std::shared_ptr<Object> Wrap(std::shared_ptr<Object> object) const {
    const bool given = object && !counter_->GivesNothing();
    return given ? std::make_shared<Wrapper>(std::move(object), counter_) : nullptr;
  }

 private:
  std::shared_ptr<Service> inner_;
  std::shared_ptr<FailureCounter> counter_;
};

class FailingDirectory : public FailingService<Directory> {
 public:
  using FailingService::FailingService;
  std::vector<std::string> Files() override { return Counted("folder.Files").Files(); }
  std::vector<std::string> Entries() override { return Counted("folder.Entries").Entries(); }
  void DeleteFiles() override { Counted("folder.DeleteFiles").DeleteFiles(); }
  void Enter(std::string_view name) override { Counted("folder.Enter", name).Enter(name); }
  void Leave() override { Counted("folder.Leave").Leave(); }
  void RemoveFolder(std::string_view name) override {
    Counted("folder.RemoveFolder", name).RemoveFolder(name);
  }
};

// At the chosen call FolderExists answers False and ReadFile nothing.
class FailingFileSystem : public FailingService<FileSystem> {
 public:
  using FailingService::FailingService;
  bool FolderExists(std::string_view path) override {
    return !Counter()->Fails("files.FolderExists", path) && Inner()->FolderExists(path);
  }
  void CreateFolder(std::string_view path) override {
    Counted("files.CreateFolder", path).CreateFolder(path);
  }
  std::string FullPath(std::string_view path) override {
    return Counted("files.FullPath", path).FullPath(path);
  }
  void HideFolder(std::string_view path) override {
    Counted("files.HideFolder", path).HideFolder(path);
  }
  std::string SystemDrive() override { return Counted("files.SystemDrive").SystemDrive(); }
  std::vector<std::string> FindFiles(std::string_view pattern) override {
    return Counted("files.FindFiles", pattern).FindFiles(pattern);
  }
  std::unique_ptr<Directory> OpenFolder(std::string_view path) override {
    auto folder = Counted("files.OpenFolder", path).OpenFolder(path);
    return Counter()->GivesNothing()
               ? nullptr
               : std::make_unique<FailingDirectory>(std::move(folder), Counter());
  }
  std::optional<std::string> ReadFile(std::string_view path) override {
    FileSystem& files = Counted("files.ReadFile", path);
    return Counter()->GivesNothing() ? std::nullopt : files.ReadFile(path);
  }
  void WriteFile(std::string_view path, std::string_view bytes) override {
    Counted("files.WriteFile", path).WriteFile(path, bytes);
  }
};

class FailingRegistry : public FailingService<Registry> {
 public:
  using FailingService::FailingService;
  std::optional<RegistryValue> Read(RegistryRoot root, std::string_view key,
                                    std::string_view name) override {
    return Counted("registry.Read", name).Read(root, key, name);
  }
  bool WriteText(RegistryRoot root, std::string_view key, std::string_view name,
                 std::string_view text) override {
    return !Counter()->Fails("registry.WriteText", name) &&
           Inner()->WriteText(root, key, name, text);
  }
  bool Update(RegistryRoot root, std::string_view key, std::string_view name,
              const TextUpdate& update) override {
    return !Counter()->Fails("registry.Update", name) && Inner()->Update(root, key, name, update);
  }
  std::vector<KeptValue> Kept(RegistryRoot root, std::string_view key,
                              std::string_view name) override {
    return Counted("registry.Kept", name).Kept(root, key, name);
  }
  // Not counted: these ask nothing of the system.
  [[nodiscard]] RegistryCondition Condition() const override { return Inner()->Condition(); }
  [[nodiscard]] bool Holds(char32_t character) const override { return Inner()->Holds(character); }
};

class FailingMessageBox : public FailingService<MessageBox> {
 public:
  using FailingService::FailingService;
  void Show(std::string_view text, std::string_view caption, MessageStyle style) override {
    Counted("message_box.Show", text).Show(text, caption, style);
  }
};

class FailingXmlParser : public FailingService<XmlParser> {
 public:
  using FailingService::FailingService;
  bool Parse(std::string_view text, XmlEncoding encoding, XmlHandler& handler) override {
    return !Counter()->Fails("xml_parser.Parse") && Inner()->Parse(text, encoding, handler);
  }
};

class FailingClock : public FailingService<Clock> {
 public:
  using FailingService::FailingService;
  DateTime Now() override { return Counted("clock.Now").Now(); }
};

class FailingIdentifier : public FailingService<Identifier> {
 public:
  using FailingService::FailingService;
  void Generate() override { Counted("identifier.Generate").Generate(); }
  [[nodiscard]] std::string GetValue() const override {
    return Counted("identifier.GetValue").GetValue();
  }
  void PutValue(std::string_view text) override { Counted("identifier.PutValue").PutValue(text); }
};

class FailingNamedValueSet : public FailingService<NamedValueSet> {
 public:
  using FailingService::FailingService;
  std::vector<Value> GetValues(std::string_view path) override {
    auto values = Counted("value_set.GetValues", path).GetValues(path);
    if (Counter()->GivesNothing()) values.clear();
    return values;
  }
  void PutValue(std::string_view path, const Value& value) override {
    Counted("value_set.PutValue", path).PutValue(path, value);
  }
  Listing ListAll() override {
    auto listing = Counted("value_set.ListAll").ListAll();
    if (Counter()->GivesNothing()) listing.values.clear();
    return listing;
  }
  int EntryCount() override { return Counted("value_set.EntryCount").EntryCount(); }
  void PrepareForUpdate() override { Counted("value_set.PrepareForUpdate").PrepareForUpdate(); }
};

class FailingGisCore : public FailingService<GisCore> {
 public:
  using FailingService::FailingService;
  std::shared_ptr<Identifier> CreateIdentifier() override {
    return Wrap<FailingIdentifier>(Counted("gis_core.CreateIdentifier").CreateIdentifier());
  }
  std::shared_ptr<NamedValueSet> CreateNamedValueSet() override {
    return Wrap<FailingNamedValueSet>(
        Counted("gis_core.CreateNamedValueSet").CreateNamedValueSet());
  }
};

class FailingVariantStream : public FailingService<VariantStream> {
 public:
  using FailingService::FailingService;
  void Write(const Value& value) override { Counted("stream.Write").Write(value); }
  Value Read() override { return Counted("stream.Read").Read(); }
};

class FailingLayerMetadata : public FailingService<LayerMetadata> {
 public:
  using FailingService::FailingService;
  std::shared_ptr<NamedValueSet> ReadDocument() override {
    return Wrap<FailingNamedValueSet>(Counted("metadata.ReadDocument").ReadDocument());
  }
  // A document in a failing wrapper is stored without it.
  void WriteDocument(const std::shared_ptr<NamedValueSet>& document) override {
    const auto wrapped = std::dynamic_pointer_cast<FailingNamedValueSet>(document);
    Counted("metadata.WriteDocument").WriteDocument(wrapped ? wrapped->Inner() : document);
  }
};

class FailingDatasetManager : public FailingService<DatasetManager> {
 public:
  using FailingService::FailingService;
  Value Initialize() override { return Counted("dataset_manager.Initialize").Initialize(); }
};

class FailingResourceFinder : public FailingService<ResourceFinder> {
 public:
  using FailingService::FailingService;
  std::string FindString(std::string_view id) override {
    return Counted("resources.FindString", id).FindString(id);
  }
};

class FailingSiblings : public FailingService<Siblings> {
 public:
  using FailingService::FailingService;
  std::shared_ptr<DatasetManager> CreateDatasetManager() override {
    return Wrap<FailingDatasetManager>(
        Counted("siblings.CreateDatasetManager").CreateDatasetManager());
  }
  std::shared_ptr<ResourceFinder> CreateResourceFinder() override {
    return Wrap<FailingResourceFinder>(
        Counted("siblings.CreateResourceFinder").CreateResourceFinder());
  }
};

class FailingPropertySet : public FailingService<HostPropertySet> {
 public:
  using FailingService::FailingService;
  Value GetProperty(std::string_view name) override {
    return Counted("properties.GetProperty", name).GetProperty(name);
  }
  void SetProperty(std::string_view name, const Value& value) override {
    Counted("properties.SetProperty", name).SetProperty(name, value);
  }
};

class FailingHost : public FailingService<Host> {
 public:
  using FailingService::FailingService;
  std::shared_ptr<HostPropertySet> CurrentState() override {
    return Wrap<FailingPropertySet>(Counted("host.CurrentState").CurrentState());
  }
  std::shared_ptr<HostPropertySet> Settings() override {
    return Wrap<FailingPropertySet>(Counted("host.Settings").Settings());
  }
};

// `platform` with every service in its failing wrapper, all of them sharing `counter`. The log is
// left as it is: it never fails.
inline Platform Failing(const Platform& platform, const std::shared_ptr<FailureCounter>& counter) {
  return {std::make_shared<FailingFileSystem>(platform.files, counter),
          std::make_shared<FailingRegistry>(platform.registry, counter),
          std::make_shared<FailingMessageBox>(platform.message_box, counter),
          std::make_shared<FailingXmlParser>(platform.xml_parser, counter),
          std::make_shared<FailingClock>(platform.clock, counter),
          std::make_shared<FailingGisCore>(platform.gis_core, counter),
          std::make_shared<FailingSiblings>(platform.siblings, counter),
          platform.log};
}

}  // namespace kvdm
