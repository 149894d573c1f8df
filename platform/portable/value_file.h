// A variant stream that is kept in a file.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/file_system.h"
#include "platform/portable/variant_list.h"
#include "platform/xml_parser.h"

namespace kvdm {

// Values keep their types and come back exactly as written. What is written becomes the content of
// the file with Commit; without it the file stays as it was.
//
//   FileVariantStream saved(files, parser, R"(D:\Projects\North.kvp)");
//   manager.Save(saved);
//   saved.Commit();
class FileVariantStream : public VariantStream {
 public:
  FileVariantStream(std::shared_ptr<FileSystem> files, std::shared_ptr<XmlParser> parser,
                    std::string path);

  void Write(const Value& value) override { written_.Write(value); }

  // The next value of the file as it was at the first Read. Run-time error 62 after the last, 53
  // when the file is missing, an automation failure that says what is wrong when it holds anything
  // else.
  Value Read() override;

  // Replaces the file, as a whole, by everything that was written.
  void Commit();

 private:
  [[nodiscard]] VariantList Load() const;

  std::shared_ptr<FileSystem> files_;
  std::shared_ptr<XmlParser> parser_;
  std::string path_;
  VariantList written_;
  std::optional<VariantList> loaded_;
};

}  // namespace kvdm
