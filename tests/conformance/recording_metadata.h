// Layer metadata that notes the calls that change it, in order, and can fail at any call.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <kvdm/platform/error.h>
#include <kvdm/platform/gis_core.h>

#include "platform/portable/value_set.h"

namespace kvdm::conformance {

using Pairs = std::vector<std::pair<std::string, Value>>;

inline Pairs PairsOf(NamedValueSet& set) {
  const auto listing = set.ListAll();
  Pairs pairs;
  for (std::size_t i = 0; i < listing.names.size(); ++i) {
    pairs.emplace_back(listing.names[i], listing.values[i]);
  }
  return pairs;
}

inline std::shared_ptr<ValueSet> SetOf(const Pairs& pairs) {
  auto set = std::make_shared<ValueSet>();
  for (const auto& [path, value] : pairs) set->PutValue(path, value);
  return set;
}

// A layer's metadata with one document, or with none. The document is the layer's own.
class RecordingMetadata : public LayerMetadata {
 public:
  RecordingMetadata() = default;
  explicit RecordingMetadata(const Pairs& pairs) : RecordingMetadata(*SetOf(pairs)) {}
  explicit RecordingMetadata(const ValueSet& set)
      : document_(std::make_shared<RecordingSet>(set, *this)) {}

  std::shared_ptr<NamedValueSet> ReadDocument() override {
    calls.emplace_back("ReadDocument");
    if (fails_to_read) throw RuntimeError(kFileNotFound);
    return document_;
  }
  void WriteDocument(const std::shared_ptr<NamedValueSet>& document) override {
    Note("WriteDocument");
    written = document;
  }

  std::vector<std::string> calls;
  bool fails_to_read = false;
  std::string failing_call;
  std::shared_ptr<NamedValueSet> written;

 private:
  void FailAt(const std::string& call) const {
    if (call == failing_call) throw RuntimeError(kPermissionDenied);
  }
  void Note(const std::string& call) {
    calls.push_back(call);
    FailAt(call);
  }

  class RecordingSet : public ValueSet {
   public:
    RecordingSet(const ValueSet& set, RecordingMetadata& owner) : ValueSet(set), owner_(owner) {}
    void PutValue(std::string_view path, const Value& value) override {
      owner_.Note("PutValue " + std::string(path));
      ValueSet::PutValue(path, value);
    }
    void PrepareForUpdate() override { owner_.Note("PrepareForUpdate"); }
    std::vector<Value> GetValues(std::string_view path) override {
      owner_.FailAt("GetValues " + std::string(path));
      return ValueSet::GetValues(path);
    }
    Listing ListAll() override {
      owner_.FailAt("ListAll");
      return ValueSet::ListAll();
    }

   private:
    RecordingMetadata& owner_;
  };

  std::shared_ptr<NamedValueSet> document_;
};

}  // namespace kvdm::conformance
