// All services in memory, for tests. The XML parser is a real one.
#pragma once

#include <memory>

#include <kvdm/platform/platform.h>

#include "platform/code_page.h"
#include "platform/memory/failure_counter.h"
#include "platform/memory/memory_file_system.h"
#include "platform/memory/memory_registry.h"
#include "platform/memory/recording_sinks.h"

namespace kvdm {

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

// `platform` with every service in its failing wrapper, all of them sharing `counter`. The log is
// left as it is: it never fails.
Platform Failing(const Platform& platform, const std::shared_ptr<FailureCounter>& counter);

}  // namespace kvdm
