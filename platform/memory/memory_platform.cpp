#include "platform/memory/memory_platform.h"

#include <kvdm/platform/portable/portable_services.h>

#include "platform/memory/failing_file_system.h"
#include "platform/memory/failing_services.h"

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

Platform Failing(const Platform& platform, const std::shared_ptr<FailureCounter>& counter) {
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
