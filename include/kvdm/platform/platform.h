/// @file
/// Platform: all services that the component stands on, as one bundle that is handed down at
/// creation.
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

/// The services of one data manager and its views. Every member is set. MakePosixPlatform makes the
/// whole bundle; a host replaces the members that it brings itself.
///
///     auto platform = MakePosixPlatform({});
///     platform.message_box = std::make_shared<MyMessageBox>();
///     auto component = CreateObject(kDataManagerClass, platform);
///
/// A service is called on the thread of the operation that needs it, and may be shared by several
/// data managers of one thread. It tells of a failure with a RuntimeError whose number its
/// operation names; whatever else it throws counts as a failure too.
struct Platform {
  /// Folders and files. What fails is a failure of the operation that asked.
  std::shared_ptr<FileSystem> files;

  /// Where the catalogue is, and the folder of the preset data. What can't be read counts as not
  /// there; what can't be written goes unseen but in its Condition.
  std::shared_ptr<Registry> registry;

  /// Where operations that show their failures do so.
  std::shared_ptr<MessageBox> message_box;

  /// Reads XML text. Hosts keep the one of the bundle.
  std::shared_ptr<XmlParser> xml_parser;

  /// The times of creation. A failure means that nothing is created.
  std::shared_ptr<Clock> clock;

  /// Makes identifiers and sets of values. A failure means that nothing is created or written.
  std::shared_ptr<GisCore> gis_core;

  /// The libraries that the data manager starts. Without them it has no preset data and shows a
  /// message at its start.
  std::shared_ptr<Siblings> siblings;

  /// Where the causes of trapped failures are noted.
  std::shared_ptr<Log> log;
};

}  // namespace kvdm
