// Layer metadata that is kept in a file beside the layer's own.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/file_system.h"
#include "platform/gis_core.h"
#include "platform/xml_parser.h"

namespace kvdm {

class ValueSet;

// The document of "D:\Data\Stores.shp" is in "D:\Data\Stores.shp.xml". Values come back exactly;
// in paths, characters that XML can't hold become U+FFFD.
class SidecarMetadata : public LayerMetadata {
 public:
  SidecarMetadata(std::shared_ptr<FileSystem> files, std::shared_ptr<XmlParser> parser,
                  std::string_view layer_file);

  // Run-time error 53 when there is no such file; the file system's error when it can't be read; an
  // automation failure that says what is wrong when it holds anything but a layer's metadata.
  std::shared_ptr<NamedValueSet> ReadDocument() override;

  // Replaces the file as a whole. One that ReadDocument can't read is first kept beside it, with
  // ".bak" (".bak1", ".bak2" ... when that is taken) after its name. Run-time error 70 when it
  // can't be kept, or when ReadDocument failed to read it: what it holds would be lost. It then
  // stays. Run-time error 91 for Nothing.
  void WriteDocument(const std::shared_ptr<NamedValueSet>& document) override;

 private:
  [[nodiscard]] std::shared_ptr<ValueSet> Parsed(std::string_view bytes) const;
  [[nodiscard]] bool Exists(const std::string& path) const;
  // Keeps the present file under another name, unless WriteDocument may replace it.
  void KeepForeignFile() const;
  void KeepCopy(std::string_view bytes) const;

  std::shared_ptr<FileSystem> files_;
  std::shared_ptr<XmlParser> parser_;
  std::string path_;
  bool unread_ = false;  // the last attempt to read the file failed
};

}  // namespace kvdm
