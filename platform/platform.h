// All services that the component stands on, as one bundle that is handed down at creation.
#pragma once

#include <memory>

#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/gis_core.h"
#include "platform/log.h"
#include "platform/message_box.h"
#include "platform/registry.h"
#include "platform/siblings.h"
#include "platform/xml_parser.h"

namespace kvdm {

// Every member is set.
struct Platform {
  std::shared_ptr<FileSystem> files;
  std::shared_ptr<Registry> registry;
  std::shared_ptr<MessageBox> message_box;
  std::shared_ptr<XmlParser> xml_parser;
  std::shared_ptr<Clock> clock;
  std::shared_ptr<GisCore> gis_core;
  std::shared_ptr<Siblings> siblings;
  std::shared_ptr<Log> log;
};

}  // namespace kvdm
