#include <utility>

#include <kvdm/platform/error.h>
#include <kvdm/platform/portable/sidecar_metadata.h>

#include "platform/portable/value_element.h"
#include "platform/portable/value_set.h"
#include "platform/xml/limits.h"

namespace kvdm {
namespace {

constexpr std::string_view kRoot = "LAYERMETADATA";
constexpr std::string_view kEntry = "ENTRY";
constexpr std::string_view kPath = "PATH";

class SidecarMetadata : public LayerMetadata {
 public:
  SidecarMetadata(const Platform& platform, std::string_view layer_file)
      : files_(platform.files),
        parser_(platform.xml_parser),
        path_(std::string(layer_file) + ".xml") {}

  std::shared_ptr<NamedValueSet> ReadDocument() override {
    unread_ = true;
    const auto bytes = files_->ReadFile(path_);
    unread_ = false;
    if (!bytes) throw RuntimeError(kFileNotFound, {}, "File not found: " + path_);
    return Parsed(*bytes);
  }

  void WriteDocument(const std::shared_ptr<NamedValueSet>& document) override {
    const NamedValueSet::Listing listing = Required(document).ListAll();
    const auto root = xml::Element::Create(kRoot);
    for (std::size_t i = 0; i < listing.names.size(); ++i) {
      const auto entry = root.CreateNear(kEntry);
      entry.SetAttribute(kPath, listing.names[i]);
      PutValue(entry, listing.values.at(i));
      AppendLine(root, entry);
    }
    // What could not be read would be lost.
    if (unread_) throw RuntimeError(kPermissionDenied, {}, path_ + " can't be read");
    const std::string text = DocumentText(root);
    KeepForeignFile();
    files_->WriteFile(path_, text);
  }

 private:
  [[nodiscard]] std::shared_ptr<ValueSet> Parsed(std::string_view bytes) const {
    try {
      auto document = std::make_shared<ValueSet>();
      for (const auto& entry : LoadRoot(*parser_, bytes, kRoot).Children(kEntry)) {
        document->AddValue(TextAttribute(entry, kPath), ValueIn(entry));
      }
      return document;
    } catch (const RuntimeError& error) {
      throw RuntimeError(kAutomationFailure, {}, path_ + " can't be read: " + error.what());
    }
  }

  [[nodiscard]] bool Exists(const std::string& path) const {
    return files_->ReadFile(path).has_value() || IsFound(path);
  }
  // A search does not see hidden files; one that can't be read can still be found.
  [[nodiscard]] bool IsFound(const std::string& path) const {
    return !files_->FindFiles(path).empty();
  }
  // Keeps the present file under another name, unless WriteDocument may replace it.
  void KeepForeignFile() const {
    const auto bytes = files_->ReadFile(path_);
    if (!bytes && !IsFound(path_)) return;
    if (!bytes) throw RuntimeError(kPermissionDenied, {}, "Permission denied: " + path_);
    // Only its beginning was read, which is no copy.
    if (bytes->size() > xml::kMaxInputBytes) {
      throw RuntimeError(kOutOfMemory, {}, path_ + " is too long to be kept");
    }
    try {
      static_cast<void>(Parsed(*bytes));
    } catch (const RuntimeError&) {
      KeepCopy(*bytes);
    }
  }

  void KeepCopy(std::string_view bytes) const {
    std::string copy = path_ + ".bak";
    for (int number = 1; Exists(copy); ++number) copy = path_ + ".bak" + std::to_string(number);
    files_->WriteFile(copy, bytes);
  }

  std::shared_ptr<FileSystem> files_;
  std::shared_ptr<XmlParser> parser_;
  std::string path_;
  bool unread_ = false;  // the last attempt to read the file failed
};

}  // namespace

std::shared_ptr<LayerMetadata> MakeSidecarMetadata(const Platform& platform,
                                                   std::string_view layer_file) {
  return std::make_shared<SidecarMetadata>(platform, layer_file);
}

}  // namespace kvdm
