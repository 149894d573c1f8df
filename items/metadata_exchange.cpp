#include "items/metadata_exchange.h"

#include "util/guard.h"

namespace kvdm {

void ExportDocument(const std::shared_ptr<LayerMetadata>& metadata, GisCore& gis_core, Log* log,
                    const std::function<void(NamedValueSet&)>& put) {
  guard::Quiet(log, [&] {
    std::shared_ptr<NamedValueSet> document;
    guard::Skipping(log, [&] { document = Required(metadata).ReadDocument(); });
    if (!document) document = gis_core.CreateNamedValueSet();
    Required(document).PrepareForUpdate();
    put(*document);
    Required(metadata).WriteDocument(document);
  });
}

std::shared_ptr<NamedValueSet> ReadDocumentOf(const std::shared_ptr<LayerMetadata>& metadata,
                                              std::string_view layer_type) {
  auto document = Required(metadata).ReadDocument();
  const bool same = FirstText(Required(document), metadata_paths::kLayerType) == layer_type;
  return same ? document : nullptr;
}

Value FirstValue(NamedValueSet& document, std::string_view path) {
  auto values = document.GetValues(path);
  if (values.empty()) throw RuntimeError(kSubscriptOutOfRange);
  return std::move(values.front());
}

std::string FirstText(NamedValueSet& document, std::string_view path) {
  return ToText(FirstValue(document, path));
}

}  // namespace kvdm
