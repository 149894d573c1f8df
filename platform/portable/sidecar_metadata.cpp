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

// Whether a text's first element is a layer's metadata, as far as that was written.
bool IsOurs(std::string_view text) {
  for (auto tag = text.find('<'); tag != text.npos; tag = text.find('<', tag + 1)) {
    const std::string_view rest = text.substr(tag + 1);
    if (!rest.starts_with('?') && !rest.starts_with('!')) return rest.starts_with(kRoot);
  }
  return false;
}

class SidecarMetadata : public LayerMetadata {
 public:
  SidecarMetadata(const Platform& platform, std::string_view layer_file)
      : files_(platform.files), parser_(platform.xml_parser), layer_file_(layer_file) {}

  std::shared_ptr<NamedValueSet> ReadDocument() override {
    unread_ = true;
    const Place place = FindPlace();
    unread_ = false;
    if (!place.bytes) throw RuntimeError(kFileNotFound, {}, "File not found: " + place.path);
    return Parsed(place);
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
    if (unread_) throw RuntimeError(kPermissionDenied, {}, layer_file_ + ".xml can't be read");
    const std::string text = DocumentText(root);
    const Place place = FindPlace();
    KeepDamagedFile(place);
    files_->WriteFile(place.path, text);
  }

 private:
  // The file of the metadata, and what is in it.
  struct Place {
    std::string path;
    std::optional<std::string> bytes;
  };

  // Where another program keeps its metadata, ours are beside them.
  [[nodiscard]] Place FindPlace() const {
    const std::string usual = layer_file_ + ".xml";
    auto bytes = files_->ReadFile(usual);
    if (bytes && IsOurs(*bytes)) return {usual, std::move(bytes)};
    const std::string beside = layer_file_ + ".kvdm.xml";
    auto ours = files_->ReadFile(beside);
    return ours || bytes ? Place{beside, std::move(ours)} : Place{usual, std::nullopt};
  }

  [[nodiscard]] std::shared_ptr<ValueSet> Parsed(const Place& place) const {
    try {
      auto document = std::make_shared<ValueSet>();
      for (const auto& entry : LoadRoot(*parser_, *place.bytes, kRoot).Children(kEntry)) {
        document->AddValue(TextAttribute(entry, kPath), ValueIn(entry));
      }
      return document;
    } catch (const RuntimeError& error) {
      throw RuntimeError(kAutomationFailure, {}, place.path + " can't be read: " + error.what());
    }
  }

  [[nodiscard]] bool Exists(const std::string& path) const {
    return files_->ReadFile(path).has_value() || IsFound(path);
  }
  // A search does not see hidden files; one that can't be read can still be found.
  [[nodiscard]] bool IsFound(const std::string& path) const {
    return !files_->FindFiles(path).empty();
  }
  // Keeps what is in the file and can't be read under another name.
  void KeepDamagedFile(const Place& place) const {
    if (!place.bytes && !IsFound(place.path)) return;
    if (!place.bytes) throw RuntimeError(kPermissionDenied, {}, "Permission denied: " + place.path);
    // Only its beginning was read, which is no copy.
    if (place.bytes->size() > xml::kMaxInputBytes) {
      throw RuntimeError(kOutOfMemory, {}, place.path + " is too long to be kept");
    }
    try {
      static_cast<void>(Parsed(place));
    } catch (const RuntimeError&) {
      KeepCopy(place);
    }
  }

  void KeepCopy(const Place& place) const {
    std::string copy = place.path + ".bak";
    for (int number = 1; Exists(copy); ++number) {
      copy = place.path + ".bak" + std::to_string(number);
    }
    files_->WriteFile(copy, *place.bytes);
  }

  std::shared_ptr<FileSystem> files_;
  std::shared_ptr<XmlParser> parser_;
  std::string layer_file_;
  bool unread_ = false;  // the last attempt to read the file failed
};

}  // namespace

std::shared_ptr<LayerMetadata> MakeSidecarMetadata(const Platform& platform,
                                                   std::string_view layer_file) {
  return std::make_shared<SidecarMetadata>(platform, layer_file);
}

}  // namespace kvdm
