#include "platform/memory/memory_layer_metadata.h"

#include <kvdm/platform/error.h>

namespace kvdm {

std::shared_ptr<NamedValueSet> MemoryLayerMetadata::ReadDocument() {
  return document_ ? std::make_shared<ValueSet>(*document_) : nullptr;
}

void MemoryLayerMetadata::WriteDocument(const std::shared_ptr<NamedValueSet>& document) {
  const NamedValueSet::Listing listing = Required(document).ListAll();
  document_.emplace();
  for (std::size_t i = 0; i < listing.names.size(); ++i) {
    document_->AddValue(listing.names[i], listing.values.at(i));
  }
}

}  // namespace kvdm
