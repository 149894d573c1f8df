// Layer metadata that notes what is called, in order.
#pragma once

#include <memory>
#include <set>
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
  explicit RecordingMetadata(const Pairs& pairs)
      : document_(std::make_shared<RecordingSet>(*SetOf(pairs), *this)) {}

  std::shared_ptr<NamedValueSet> ReadDocument() override {
    calls.emplace_back("ReadDocument");
    if (fails_to_read) throw RuntimeError(kFileNotFound);
    return document_;
  }
  void WriteDocument(const std::shared_ptr<NamedValueSet>& document) override {
    calls.emplace_back("WriteDocument");
    written = document;
  }

  std::vector<std::string> calls;
  bool fails_to_read = false;
  std::set<std::string> failing_paths;
  std::shared_ptr<NamedValueSet> written;

 private:
  class RecordingSet : public ValueSet {
   public:
    RecordingSet(const ValueSet& set, RecordingMetadata& owner) : ValueSet(set), owner_(owner) {}
    void PutValue(std::string_view path, const Value& value) override {
      const std::string name(path);
      owner_.calls.push_back("PutValue " + name);
      if (owner_.failing_paths.count(name) != 0) throw RuntimeError(kPermissionDenied);
      ValueSet::PutValue(path, value);
    }
    void PrepareForUpdate() override { owner_.calls.emplace_back("PrepareForUpdate"); }

   private:
    RecordingMetadata& owner_;
  };

  std::shared_ptr<NamedValueSet> document_;
};

}  // namespace kvdm::conformance
