// All services in memory, for tests: a message box and a log that remember what they were given, a
// clock that stands still, layer metadata. The XML parser is a real one.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/platform.h>

#include "platform/memory/memory_file_system.h"
#include "platform/memory/memory_registry.h"
#include "platform/portable/value_set.h"
#include "platform/xml_parser.h"

namespace kvdm {

struct ShownMessage {
  std::string text;
  std::string caption;
  MessageStyle style = MessageStyle::kPlain;
  bool operator==(const ShownMessage&) const = default;
};

class RecordingMessageBox : public MessageBox {
 public:
  void Show(std::string_view text, std::string_view caption, MessageStyle style) override {
    messages_.push_back({std::string(text), std::string(caption), style});
  }

  // What was shown, the oldest first.
  [[nodiscard]] const std::vector<ShownMessage>& Messages() const { return messages_; }
  void Clear() { messages_.clear(); }

 private:
  std::vector<ShownMessage> messages_;
};

class RecordingLog : public Log {
 public:
  void Note(std::string_view line) override { lines_.emplace_back(line); }

  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_; }
  void Clear() { lines_.clear(); }

 private:
  std::vector<std::string> lines_;
};

class FixedClock : public Clock {
 public:
  DateTime Now() override { return now_; }
  void Set(const DateTime& now) { now_ = now; }

 private:
  DateTime now_ = {2026, 11, 15, 7, 35, 30};
};

// Layer metadata that is kept in memory.
class MemoryLayerMetadata : public LayerMetadata {
 public:
  // A layer without a document.
  MemoryLayerMetadata() = default;
  explicit MemoryLayerMetadata(const ValueSet& document) : document_(document) {}

  // A copy: changes become the layer's only with WriteDocument. Nothing when there is no document.
  std::shared_ptr<NamedValueSet> ReadDocument() override;
  // Run-time error 91 for Nothing.
  void WriteDocument(const std::shared_ptr<NamedValueSet>& document) override;

 private:
  std::optional<ValueSet> document_;
};

// Identifiers are "{00000000-0000-4000-8000-000000000001}", ...2 and so on, in hexadecimal.
//
//   MemoryPlatform world;
//   Use(world.Bundle());
//   EXPECT_TRUE(world.box->Messages().empty());
struct MemoryPlatform {
  explicit MemoryPlatform(CodePage code_page = CodePage::kUtf8);

  // The services as the component takes them.
  [[nodiscard]] Platform Bundle() const;

  std::shared_ptr<MemoryFileSystem> files;
  std::shared_ptr<MemoryRegistry> registry;
  std::shared_ptr<RecordingMessageBox> box;
  std::shared_ptr<XmlParser> xml_parser;
  std::shared_ptr<FixedClock> clock;
  std::shared_ptr<GisCore> gis_core;
  std::shared_ptr<Siblings> siblings;
  std::shared_ptr<RecordingLog> log;
};

}  // namespace kvdm
