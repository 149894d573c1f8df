// kvdm metadata: what is kept with the layer files.
#include <fmt/format.h>

#include <algorithm>

#include <kvdm/platform/portable/sidecar_metadata.h>

#include "host/commands/groups.h"
#include "host/kinds.h"
#include "items/metadata_exchange.h"
#include "platform/portable/value_set.h"

namespace kvdm {
namespace {

constexpr char kNameHelp[] = "An analysis, or what a flag says, by name or {GUID}";
constexpr std::string_view kRootPath = metadata_paths::kRoot;
constexpr std::string_view kNamePath = metadata_paths::kName;

// An item with its layer's metadata.
struct Layer {
  std::string name;
  std::string guid;
  std::string file;
  std::string type;  // what the metadata of such an item say they describe
  std::shared_ptr<IKVMetadata> exchange;
};

enum class LayerUse { kRead, kChange };

template <class Kind>
Layer LayerOf(Session& session, const std::string& name, const char* type, LayerUse use) {
  const auto item = Kind::Find(session, name);
  if (use == LayerUse::kChange) Kind::RequireChangeable(session, item);
  return {item->Name(), Kind::GuidOf(item), item->LayerFile(), type, Query<IKVMetadata>(item)};
}

// Which kind of item a name means: an analysis, or what a flag says.
class LayerChoice {
 public:
  void Declare(Arguments& arguments) {
    arguments.Flag("--area", area_, "NAME is a study area");
    arguments.Flag("--customer", customer_, "NAME is a customer layer");
    arguments.Flag("--store", store_, "NAME is a store layer");
  }

  [[nodiscard]] bool IsArea() const { return area_; }

  [[nodiscard]] Layer Find(Session& session, const std::string& name,
                           LayerUse use = LayerUse::kRead) const {
    if (int{area_} + int{customer_} + int{store_} > 1) {
      throw Failure(ExitCode::kUsage, "Give at most one of --area, --customer and --store.");
    }
    if (area_) return LayerOf<StudyAreaKind>(session, name, layer_types::kStudyArea, use);
    if (customer_) return LayerOf<CustLayerKind>(session, name, layer_types::kCustLayer, use);
    if (store_) return LayerOf<StoreLayerKind>(session, name, layer_types::kStoreLayer, use);
    return LayerOf<AnalysisKind>(session, name, layer_types::kAnalysis, use);
  }

 private:
  bool area_ = false;
  bool customer_ = false;
  bool store_ = false;
};

std::shared_ptr<LayerMetadata> MetadataOf(Session& session, const std::string& layer_file) {
  const Platform& platform = session.Component().GetServices().platform;
  return MakeSidecarMetadata(platform, layer_file);
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

std::string TextAt(NamedValueSet& document, std::string_view path) {
  const auto values = document.GetValues(path);
  return values.empty() || values.front().IsNull() ? "" : ToText(values.front());
}

Record LayerRecord(const Layer& layer) {
  return {{"name", layer.name}, {"guid", layer.guid}, {"layer_file", layer.file}};
}

// Holds what an item reads and writes, in place of its layer's file.
class MetadataInMemory : public LayerMetadata {
 public:
  explicit MetadataInMemory(std::shared_ptr<NamedValueSet> document)
      : document_(std::move(document)) {}

  std::shared_ptr<NamedValueSet> ReadDocument() override { return document_; }
  void WriteDocument(const std::shared_ptr<NamedValueSet>& document) override {
    document_ = document;
  }

 private:
  std::shared_ptr<NamedValueSet> document_;
};

// Passes everything on, and remembers what became of writing: the component does not say.
class WatchedMetadata : public LayerMetadata {
 public:
  explicit WatchedMetadata(std::shared_ptr<LayerMetadata> metadata)
      : metadata_(std::move(metadata)) {}

  std::shared_ptr<NamedValueSet> ReadDocument() override { return metadata_->ReadDocument(); }
  void WriteDocument(const std::shared_ptr<NamedValueSet>& document) override {
    try {
      metadata_->WriteDocument(document);
      problem_.clear();
    } catch (const std::exception& error) {
      problem_ = error.what();
      throw;
    }
  }

  // Why nothing was written; "" when it was.
  [[nodiscard]] const std::string& Problem() const { return problem_; }

 private:
  std::shared_ptr<LayerMetadata> metadata_;
  std::string problem_ = "the component did not try";
};

// What the item would write now.
std::shared_ptr<NamedValueSet> WrittenBy(const Layer& layer) {
  const auto metadata = std::make_shared<MetadataInMemory>(std::make_shared<ValueSet>());
  Required(layer.exchange).ExportMetadata(metadata);
  return metadata->ReadDocument();
}

using PathValues = std::vector<std::pair<std::string, std::string>>;

// The values under the component's own root path; the rest is others'.
PathValues OwnValues(NamedValueSet& document) {
  PathValues values;
  const auto listing = document.ListAll();
  for (std::size_t i = 0; i < listing.names.size(); ++i) {
    const Value& value = listing.values[i];
    if (!listing.names[i].starts_with(kRootPath)) continue;
    values.emplace_back(listing.names[i].substr(kRootPath.size()),
                        value.IsNull() ? "" : WithPlainLineEnds(ToText(value)));
  }
  return values;
}

const std::string* Find(const PathValues& values, const std::string& path) {
  const auto found = std::ranges::find(values, path, &PathValues::value_type::first);
  return found == values.end() ? nullptr : &found->second;
}

// Where an item and its layer's metadata say different things.
struct Difference {
  std::string field;
  const char* state;  // "differs"; "missing" in the layer; "stale", only the layer has it
  Field item;
  Field layer;
};

std::vector<Difference> Differences(NamedValueSet& item_document, NamedValueSet& layer_document) {
  const PathValues item = OwnValues(item_document);
  const PathValues layer = OwnValues(layer_document);
  std::vector<Difference> differences;
  for (const auto& [path, value] : item) {
    const std::string* kept = Find(layer, path);
    if (kept == nullptr) {
      differences.push_back({path, "missing", value, {}});
    } else if (*kept != value) {
      differences.push_back({path, "differs", value, *kept});
    }
  }
  for (const auto& [path, value] : layer) {
    if (Find(item, path) == nullptr) differences.push_back({path, "stale", {}, value});
  }
  return differences;
}

class MetadataExport : public ChangingCommand {
 public:
  explicit MetadataExport(Arguments arguments) {
    arguments.Required("NAME", name_, kNameHelp);
    choice_.Declare(arguments);
  }

 private:
  void Run(Session& session, Output& out) override {
    const Layer layer = choice_.Find(session, name_, LayerUse::kChange);
    const auto metadata = std::make_shared<WatchedMetadata>(MetadataOf(session, layer.file));
    Required(layer.exchange).ExportMetadata(metadata);
    if (!metadata->Problem().empty()) {
      throw Failure(
          ExitCode::kRefused,
          fmt::format("The metadata of {} could not be written ({}). Is its folder there, "
                      "and may you write to it?",
                      layer.file, metadata->Problem()));
    }
    out.Done(LayerRecord(layer), fmt::format("Wrote the metadata of {}.", layer.file));
  }

  std::string name_;
  LayerChoice choice_;
};

class MetadataImport : public ChangingCommand {
 public:
  explicit MetadataImport(Arguments arguments) {
    arguments.Required("NAME", name_, kNameHelp);
    choice_.Declare(arguments);
  }

 private:
  [[nodiscard]] bool ChangesRegistry() const override { return choice_.IsArea(); }
  void Run(Session& session, Output& out) override {
    const Layer layer = choice_.Find(session, name_, LayerUse::kChange);
    const auto document = ReadMetadata(*MetadataOf(session, layer.file), layer.file);
    const std::string type = TextAt(*document, metadata_paths::kLayerType);
    if (type != layer.type) {
      throw Failure(ExitCode::kRefused,
                    fmt::format("The metadata of {} describe \"{}\", not \"{}\". Nothing was "
                                "taken over.",
                                layer.file, type, layer.type));
    }
    // From what was read here: the component would take a second look that fails for no metadata.
    Required(layer.exchange).ImportMetadata(std::make_shared<MetadataInMemory>(document));
    const auto result = WrittenBy(layer);
    out.Done({{"name", layer.name},
              {"guid", TextAt(*result, metadata_paths::kGuid)},
              {"layer_file", layer.file}},
             fmt::format("Took over the metadata of {}{}.", layer.file,
                         Exceptions(Differences(*result, *document))));
  }

  // What the component left out, which it does quietly. It never takes over the name.
  static std::string Exceptions(const std::vector<Difference>& differences) {
    std::vector<std::string> fields;
    for (const Difference& difference : differences) {
      const bool in_layer = difference.layer != Field();
      const bool is_name = difference.field == kNamePath.substr(kRootPath.size());
      if (in_layer && !is_name) fields.push_back(difference.field);
    }
    return fields.empty() ? "" : fmt::format(", but for {}", fmt::join(fields, ", "));
  }

  std::string name_;
  LayerChoice choice_;
};

class MetadataShow : public ReadingCommand {
 public:
  explicit MetadataShow(Arguments arguments) {
    arguments.Optional("NAME", name_, kNameHelp);
    arguments.Optional("--file", file_, "A layer file, in place of NAME");
    choice_.Declare(arguments);
  }

 private:
  void Run(Session& session, Output& out) override {
    if (name_.has_value() == file_.has_value()) {
      throw Failure(ExitCode::kUsage, "Give either a name or --file.");
    }
    const std::string file = file_ ? *file_ : choice_.Find(session, *name_).file;
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
  LayerChoice choice_;
};

class MetadataDiff : public ReadingCommand {
 public:
  explicit MetadataDiff(Arguments arguments) {
    arguments.Required("NAME", name_, kNameHelp);
    choice_.Declare(arguments);
  }

 private:
  void Run(Session& session, Output& out) override {
    const Layer layer = choice_.Find(session, name_);
    const auto document = ReadMetadata(*MetadataOf(session, layer.file), layer.file);
    std::vector<Record> rows;
    for (const auto& [field, state, item, kept] : Differences(*WrittenBy(layer), *document)) {
      rows.push_back({{"field", field}, {"state", state}, {"item", item}, {"layer", kept}});
    }
    out.Items(std::move(rows), "The item and its layer's metadata agree.");
  }

  std::string name_;
  LayerChoice choice_;
};

}  // namespace

void AddMetadataCommands(const CommandGroup& root) {
  const CommandGroup metadata = root.Group("metadata", "Descriptions kept with layer files");
  metadata.Add<MetadataExport>("export", "Write an item's description to its layer's metadata",
                               "kvdm metadata export Sales\nkvdm metadata export North "
                               "--area\nkvdm metadata export Shops --store");
  metadata.Add<MetadataImport>("import", "Take over a description from the layer's metadata",
                               "kvdm metadata import Sales");
  metadata.Add<MetadataDiff>("diff", "Show where an item and its layer's metadata differ",
                             "kvdm metadata diff Sales\nkvdm metadata diff Shops --store");
  metadata.Add<MetadataShow>("show", "Show a layer's metadata",
                             "kvdm metadata show Sales\nkvdm metadata show --file Roads.shp");
}

}  // namespace kvdm
