// All services that the component stands on, as one bundle that is handed down at creation.
#pragma once

#include <memory>

#include <kvdm/platform/clock.h>
#include <kvdm/platform/file_system.h>
#include <kvdm/platform/gis_core.h>
#include <kvdm/platform/log.h>
#include <kvdm/platform/message_box.h>
#include <kvdm/platform/registry.h>
#include <kvdm/platform/siblings.h>

namespace kvdm {

class XmlParser;

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
