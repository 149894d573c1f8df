#include <algorithm>

#include "tests/model/model.h"
#include "tests/model/policies.h"
#include "tests/model/texts.h"

namespace kvdm::model {
namespace {

constexpr std::string_view kRoot = "Velk/Kelvaro8/";
constexpr std::string_view kParameters = "Velk/Kelvaro8/AnalysisParams/";
constexpr int kSubscript = 9;
constexpr int kTypeMismatch = 13;

std::string LayerType(Kind kind) {
  switch (kind) {
    case Kind::kStudyArea:
      return "Study Area";
    case Kind::kAnalysis:
      return "Analysis Layer";
    case Kind::kCustLayer:
      return "Customer Layer";
    default:
      return "Store Layer";
  }
}

// The properties that are exported after type, name and identifier, and those that are imported.
std::vector<std::string> ExportedBy(Kind kind) {
  if (kind == Kind::kAnalysis) return {"Comments"};
  if (kind == Kind::kCustLayer) {
    return {"IDField", "LinkField", "NameField", "Comments", "IsInternalData"};
  }
  return {"IDField", "NameField", "Comments", "IsInternalData"};
}

std::vector<std::string> ImportedBy(Kind kind) {
  auto properties = ExportedBy(kind);
  properties.insert(properties.end() - 1, "GUID");
  return properties;
}

std::string Path(std::string_view name) { return std::string(kRoot) + std::string(name); }

// A Boolean, or one of the texts that stand for one.
bool AsBoolean(const Value& value) {
  if (!value.IsText()) return value == Value(true);
  std::string text = ToText(value);
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
  if (text != "true" && text != "false") throw Fault{kTypeMismatch};
  return text == "true";
}

}  // namespace

Value Model::Imported(std::string_view path) const {
  for (const auto& [name, value] : exchange_.metadata.value_or(ValueList())) {
    if (name == path) return value;
  }
  throw Fault{kSubscript};
}

void Model::Export(Kind kind, const NodeRef& item) {
  Skipped([&] {
    ValueList document = exchange_.metadata.value_or(ValueList());
    Put(document, Path("LayerType"), LayerType(kind));
    Put(document, Path("Name"), Read(kind, item, "Name"));
    Put(document, Path("GUID"), Read(kind, item, "GUID"));
    if (kind == Kind::kStudyArea) {
      ExportStudyArea(item, document);
    } else {
      for (const auto& property : ExportedBy(kind)) {
        const std::string text = Read(kind, item, property);
        const bool is_boolean = property == "IsInternalData";
        Put(document, Path(property), is_boolean ? Value(text == "True") : Value(text));
      }
    }
    for (const auto& child : item->children) {
      if (kind != Kind::kAnalysis || child->tag != "PARAM") continue;
      Put(document, std::string(kParameters) + child->Required("NAME"), child->Required("VALUE"));
    }
    exchange_.metadata = document;
  });
}

void Model::ExportStudyArea(const NodeRef& item, ValueList& document) {
  Put(document, Path("Type"), GetProperty(item, "TYPE"));
  Put(document, Path("MainLayer"), GetProperty(item, "MAINLAYER"));
  Put(document, Path("FeaturesList"), GetProperty(item, "FEATURESLIST"));
}

void Model::Import(Kind kind, const NodeRef& item) {
  Skipped([&] {
    if (Imported(Path("LayerType")) != Value(LayerType(kind))) return;
    if (kind == Kind::kStudyArea) return ImportStudyArea(item);
    if (kind == Kind::kAnalysis) return ImportAnalysis(item);
    for (const auto& property : ImportedBy(kind)) {
      const Value value = Imported(Path(property));
      const bool is_boolean = property == "IsInternalData";
      const std::string boolean = is_boolean && AsBoolean(value) ? "True" : "False";
      Write(kind, item, property, is_boolean ? boolean : ToText(value));
    }
  });
}

void Model::ImportAnalysis(const NodeRef& item) {
  for (const char* property : {"GUID", "Comments"}) {
    Skipped([&] { Write(Kind::kAnalysis, item, property, ToText(Imported(Path(property)))); });
  }
  for (const auto& entry : *exchange_.metadata) {
    if (!entry.first.starts_with(kParameters)) continue;
    const std::string name = entry.first.substr(kParameters.size());
    Skipped([&] { return SetParameter(Kind::kAnalysis, item, name, ToText(entry.second)); });
  }
}

void Model::ImportStudyArea(const NodeRef& item) {
  SetProperty(item, "TYPE", ToText(Imported(Path("Type"))));
  SetProperty(item, "MAINLAYER", ToText(Imported(Path("MainLayer"))));
  SetProperty(item, "FEATURESLIST", ToText(Imported(Path("FeaturesList"))));
  Write(Kind::kStudyArea, item, "GUID", ToText(Imported(Path("GUID"))));
}

}  // namespace kvdm::model
