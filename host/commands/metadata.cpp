// kvdm metadata: what is kept with the layer files.
#include <fmt/format.h>

#include "host/commands/groups.h"
#include "host/sources.h"
#include "platform/portable/sidecar_metadata.h"

namespace kvdm {
namespace {

constexpr char kLayerTypePath[] = "Velk/Kelvaro8/LayerType";
constexpr char kGuidPath[] = "Velk/Kelvaro8/GUID";

// An item with its layer's metadata.
struct Layer {
  std::string name;
  std::string guid;
  std::string file;
  std::string type;  // what the metadata of such an item say they describe
  std::shared_ptr<IKVMetadata> exchange;
};

Layer FindLayer(Session& session, const std::string& name, bool is_area) {
  if (is_area) {
    const auto area = FindItem(StudyAreas(session), name);
    return {area->Name(), area->GUID(), area->LayerFile(), "Study Area", Query<IKVMetadata>(area)};
  }
  const auto analysis = FindItem(Analyses(session), name);
  return {analysis->Name(), analysis->AnalysisGUID(), analysis->LayerFile(), "Analysis Layer",
          Query<IKVMetadata>(analysis)};
}

std::shared_ptr<LayerMetadata> MetadataOf(Session& session, const std::string& layer_file) {
  const Platform& platform = session.Component().GetServices().platform;
  return std::make_shared<SidecarMetadata>(platform.files, platform.xml_parser, layer_file);
}

// Failure kNotFound when the layer has no metadata, kUnreadable when they can't be read.
std::shared_ptr<NamedValueSet> ReadMetadata(LayerMetadata& metadata,
                                            const std::string& layer_file) {
  try {
    return metadata.ReadDocument();
  } catch (const RuntimeError& error) {
    if (error.number() == kFileNotFound) {
      throw Failure(ExitCode::kNotFound, fmt::format("The layer {} has no metadata.", layer_file));
    }
    throw Failure(ExitCode::kUnreadable, fmt::format("The metadata of the layer {} can't be read: "
                                                     "{}",
                                                     layer_file, error.what()));
  }
}

std::string FirstText(NamedValueSet& document, std::string_view path) {
  const auto values = document.GetValues(path);
  return values.empty() || values.front().IsNull() ? "" : ToText(values.front());
}

Record LayerRecord(const Layer& layer) {
  return {{"name", layer.name}, {"guid", layer.guid}, {"layer_file", layer.file}};
}

class MetadataExport : public ReadingCommand {
 public:
  explicit MetadataExport(Arguments arguments) {
    arguments.Required("NAME", name_, "An analysis, by name or {GUID}");
    arguments.Flag("--area", area_, "NAME is a study area");
  }

 private:
  void Run(Session& session, Output& out) override {
    const Layer layer = FindLayer(session, name_, area_);
    const auto metadata = MetadataOf(session, layer.file);
    Required(layer.exchange).ExportMetadata(metadata);
    RequireWritten(*metadata, layer);
    out.Done(LayerRecord(layer), fmt::format("Wrote the metadata of {}.", layer.file));
  }

  // The component writes them quietly, so that only reading tells whether it could.
  static void RequireWritten(LayerMetadata& metadata, const Layer& layer) {
    try {
      const auto document = ReadMetadata(metadata, layer.file);
      if (document && FirstText(*document, kGuidPath) == layer.guid) return;
    } catch (const Failure& failure) {
      if (failure.code() != ExitCode::kNotFound) throw;
    }
    throw Failure(ExitCode::kRefused,
                  fmt::format("The metadata of {} could not be written. Is its folder there, and "
                              "may you write to it?",
                              layer.file));
  }

  std::string name_;
  bool area_ = false;
};

class MetadataImport : public ChangingCommand {
 public:
  explicit MetadataImport(Arguments arguments) {
    arguments.Required("NAME", name_, "An analysis, by name or {GUID}");
    arguments.Flag("--area", area_, "NAME is a study area");
  }

 private:
  void Run(Session& session, Output& out) override {
    const Layer layer = FindLayer(session, name_, area_);
    const auto metadata = MetadataOf(session, layer.file);
    const auto document = ReadMetadata(*metadata, layer.file);
    const std::string type = FirstText(*document, kLayerTypePath);
    if (type != layer.type) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The metadata of {} describe \"{}\", not \"{}\". Nothing was "
                                "taken over.",
                                layer.file, type, layer.type));
    }
    Required(layer.exchange).ImportMetadata(metadata);
    // Importing may have given it another identifier.
    Layer result = layer;
    result.guid = FirstText(*document, kGuidPath);
    out.Done(LayerRecord(result), fmt::format("Took over the metadata of {}.", layer.file));
  }

  std::string name_;
  bool area_ = false;
};

class MetadataShow : public ReadingCommand {
 public:
  explicit MetadataShow(Arguments arguments) {
    arguments.Optional("NAME", name_, "An analysis, by name or {GUID}");
    arguments.Optional("--file", file_, "A layer file, in place of NAME");
    arguments.Flag("--area", area_, "NAME is a study area");
  }

 private:
  void Run(Session& session, Output& out) override {
    if (name_.has_value() == file_.has_value()) {
      throw Failure(ExitCode::kUsage, "Give either a name or --file.");
    }
    const std::string file = file_ ? *file_ : FindLayer(session, *name_, area_).file;
    const auto listing = ReadMetadata(*MetadataOf(session, file), file)->ListAll();
    std::vector<Record> items;
    for (std::size_t i = 0; i < listing.names.size(); ++i) {
      const Value& value = listing.values[i];
      items.push_back(
          {{"path", listing.names[i]}, {"value", value.IsNull() ? Field() : Field(ToText(value))}});
    }
    out.Items(std::move(items), "The metadata are empty.");
  }

  std::optional<std::string> name_;
  std::optional<std::string> file_;
  bool area_ = false;
};

}  // namespace

void AddMetadataCommands(const CommandGroup& root) {
  const CommandGroup metadata = root.Group("metadata", "Descriptions kept with layer files");
  metadata.Add<MetadataExport>("export", "Write an item's description to its layer's metadata",
                               "kvdm metadata export Sales\nkvdm metadata export North --area");
  metadata.Add<MetadataImport>("import", "Take over a description from the layer's metadata",
                               "kvdm metadata import Sales");
  metadata.Add<MetadataShow>("show", "Show a layer's metadata",
                             "kvdm metadata show Sales\nkvdm metadata show --file Roads.shp");
}

}  // namespace kvdm
