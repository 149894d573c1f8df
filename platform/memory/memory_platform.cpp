#include "platform/memory/memory_platform.h"

#include <array>
#include <functional>

#include <kvdm/platform/error.h>
#include <kvdm/platform/portable/portable_services.h>

namespace kvdm {
namespace {

// Identifiers that count up.
std::function<std::string()> SequentialGuids() {
  return [last = std::make_shared<std::uint64_t>(0)] {
    std::array<unsigned char, 16> bytes{};
    std::uint64_t number = ++*last;
    for (auto byte = bytes.rbegin(); number != 0; ++byte, number >>= 8U) {
      *byte = static_cast<unsigned char>(number & 0xFFU);
    }
    return GuidText(bytes);
  };
}

}  // namespace

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

MemoryPlatform::MemoryPlatform(CodePage code_page)
    : files(std::make_shared<MemoryFileSystem>()),
      registry(std::make_shared<MemoryRegistry>(code_page)),
      box(std::make_shared<RecordingMessageBox>()),
      xml_parser(MakeXmlParser()),
      clock(std::make_shared<FixedClock>()),
      gis_core(MakePortableGisCore(SequentialGuids())),
      siblings(MakePortableSiblings()),
      log(std::make_shared<RecordingLog>()) {}

Platform MemoryPlatform::Bundle() const {
  return {files, registry, box, xml_parser, clock, gis_core, siblings, log};
}

}  // namespace kvdm
