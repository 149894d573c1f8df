#include "platform/portable/value_file.h"

#include <utility>

#include "platform/error.h"
#include "platform/portable/value_element.h"

namespace kvdm {
namespace {

constexpr std::string_view kRoot = "VALUES";
constexpr std::string_view kItem = "ITEM";

}  // namespace

FileVariantStream::FileVariantStream(std::shared_ptr<FileSystem> files,
                                     std::shared_ptr<XmlParser> parser, std::string path)
    : files_(std::move(files)), parser_(std::move(parser)), path_(std::move(path)) {}

Value FileVariantStream::Read() {
  if (!loaded_) loaded_ = Load();
  return loaded_->Read();
}

void FileVariantStream::Commit() {
  const auto root = xml::Element::Create(kRoot);
  for (const Value& value : written_.Values()) {
    const auto item = xml::Element::Create(kItem);
    PutValue(*item, value);
    AppendLine(*root, item);
  }
  files_->WriteFile(path_, DocumentText(root));
}

VariantList FileVariantStream::Load() const {
  const auto bytes = files_->ReadFile(path_);
  if (!bytes) throw RuntimeError(kFileNotFound, {}, "File not found: " + path_);
  try {
    VariantList list;
    for (const auto& item : LoadRoot(*parser_, *bytes, kRoot)->Children(kItem)) {
      list.Write(ValueIn(*item));
    }
    return list;
  } catch (const RuntimeError& error) {
    throw RuntimeError(kAutomationFailure, {}, path_ + " can't be read: " + error.what());
  }
}

}  // namespace kvdm
