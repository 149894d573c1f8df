// Layer metadata that is kept in memory.
#pragma once

#include <memory>
#include <optional>

#include "platform/portable/value_set.h"

namespace kvdm {

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

}  // namespace kvdm
