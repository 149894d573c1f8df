#include <kvdm/platform/portable/portable_services.h>
#include <kvdm/platform/posix/posix_platform.h>

#include "platform/posix/libxml_parser.h"
#include "platform/posix/posix_clock.h"
#include "platform/posix/posix_file_system.h"
#include "platform/posix/random_guid.h"
#include "platform/posix/sqlite_registry.h"

namespace kvdm {

Platform MakePosixPlatform(const PosixOptions& options) {
  const auto log = std::make_shared<CallbackLog>(options.log);
  Platform platform;
  platform.files = std::make_shared<PosixFileSystem>(PosixFileOptions{options.drives});
  platform.registry = std::make_shared<SqliteRegistry>(
      SqliteRegistryOptions{options.registry_path, options.code_page}, log);
  platform.message_box =
      std::make_shared<CallbackMessageBox>(options.message_box, options.code_page);
  platform.xml_parser = std::make_shared<LibxmlParser>();
  platform.clock = std::make_shared<PosixClock>();
  platform.gis_core = MakePortableGisCore(RandomGuid);
  platform.siblings = MakePortableSiblings();
  platform.log = log;
  return platform;
}

}  // namespace kvdm
