#include <kvdm/datamanager/analyses.h>
#include <kvdm/datamanager/data_items.h>
#include <kvdm/datamanager/layers.h>
#include <kvdm/datamanager/study_areas.h>

#include "tests/model/commands.h"
#include "tests/model/describe.h"

namespace kvdm::model {
namespace {

// An operation through `Interface` of an item that was kept, or that has a name.
template <class Interface, class Act, class Expect>
Operation OnItem(const std::string& text, Kind kind, Act act, Expect expect) {
  return {kind, text + " of " + KindName(kind), 2,
          [=](System& system, const Arguments& with) {
            return TextOrError([&]() -> std::string {
              const auto item =
                  with.is_kept ? system.Kept()[kind] : ItemNamed(system, kind, with.name);
              if (!item) return "no item";
              return OutcomeOf([&] { return act(Required(Query<Interface>(item)), with, system); });
            });
          },
          [=](Model& model, const Arguments& with) {
            return TextOrError([&]() -> std::string {
              const NodeRef item =
                  with.is_kept ? model.Kept()[kind] : model.Get(kind, "NAME", with.name);
              return item ? OutcomeOf([&] { return expect(model, item, with); }) : "no item";
            });
          }};
}

template <class Interface>
Operation Getter(Kind kind, const std::string& property, std::string (Interface::*get)()) {
  return OnItem<Interface>(
      property, kind, [=](Interface& item, auto&, auto&) { return (item.*get)(); },
      [=](Model& model, const NodeRef& item, auto&) { return model.Read(kind, item, property); });
}

template <class Interface>
Operation Setter(Kind kind, const std::string& property, void (Interface::*set)(std::string_view)) {
  return OnItem<Interface>(
      "Set " + property, kind,
      [=](Interface& item, const Arguments& with, auto&) { (item.*set)(with.value); },
      [=](Model& model, const NodeRef& item, const Arguments& with) {
        model.Write(kind, item, property, with.value);
      });
}

template <class Interface>
void AddInternalData(Kind kind, std::vector<Operation>& operations) {
  operations.push_back(OnItem<Interface>(
      "IsInternalData", kind,
      [](Interface& item, auto&, auto&) {
        return std::string(item.IsInternalData() ? "True" : "False");
      },
      [=](Model& model, const NodeRef& item, auto&) {
        return model.Read(kind, item, "IsInternalData");
      }));
  operations.push_back(OnItem<Interface>(
      "Set IsInternalData", kind,
      [](Interface& item, const Arguments& with, auto&) {
        item.SetIsInternalData(with.value.empty());
      },
      [=](Model& model, const NodeRef& item, const Arguments& with) {
        model.Write(kind, item, "IsInternalData", with.value.empty() ? "True" : "False");
      }));
}

template <class Interface>
void AddParameters(Kind kind, std::vector<Operation>& operations) {
  operations.push_back(OnItem<Interface>(
      "SetParameter", kind,
      [](Interface& item, const Arguments& with, auto&) {
        return item.SetParameter(with.inner_name, with.value);
      },
      [=](Model& model, const NodeRef& item, const Arguments& with) {
        return model.SetParameter(kind, item, with.inner_name, with.value);
      }));
  operations.push_back(OnItem<Interface>(
      "GetParameter", kind,
      [](Interface& item, const Arguments& with, auto&) {
        return item.GetParameter(with.inner_name);
      },
      [](Model&, const NodeRef& item, const Arguments& with) {
        return Model::GetParameter(item, with.inner_name);
      }));
  operations.push_back(OnItem<Interface>(
      "ParametersList", kind, [](Interface& item, auto&, auto&) { return item.ParametersList(); },
      [](Model&, const NodeRef& item, auto&) { return std::optional(Model::Parameters(item)); }));
  operations.push_back(OnItem<Interface>(
      "ClearParametersList", kind,
      [](Interface& item, auto&, auto&) { return item.ClearParametersList(); },
      [](Model& model, const NodeRef& item, auto&) { return model.ClearParameters(item); }));
}

void AddMetadata(Kind kind, std::vector<Operation>& operations) {
  operations.push_back(OnItem<IKVMetadata>(
      "ExportMetadata", kind,
      [](IKVMetadata& item, auto&, System& system) { item.ExportMetadata(system.metadata); },
      [=](Model& model, const NodeRef& item, auto&) { model.Export(kind, item); }));
  operations.push_back(OnItem<IKVMetadata>(
      "ImportMetadata", kind,
      [](IKVMetadata& item, auto&, System& system) { item.ImportMetadata(system.metadata); },
      [=](Model& model, const NodeRef& item, auto&) { model.Import(kind, item); }));
}

// What an item without metadata lacks.
void AddLayer(Kind kind, std::vector<Operation>& operations) {
  operations.push_back(Setter(kind, "Edit LayerFile", &IKVLayerEdit::SetLayerFile));
  operations.push_back(Setter(kind, "GUID", &IKVLayerEdit::SetGUID));
  AddMetadata(kind, operations);
}

template <class Interface>
void AddCommon(Kind kind, std::vector<Operation>& operations) {
  operations.push_back(Getter(kind, "Name", &Interface::Name));
  operations.push_back(Setter(kind, "Name", &Interface::SetName));
  operations.push_back(Getter(kind, "LayerFile", &Interface::LayerFile));
}

template <class Interface>
void AddComments(Kind kind, std::vector<Operation>& operations) {
  operations.push_back(Getter(kind, "Comments", &Interface::Comments));
  operations.push_back(Setter(kind, "Comments", &Interface::SetComments));
}

template <class Interface>
void AddProperty(Kind kind, const std::string& name, std::string (Interface::*get)(),
                 void (Interface::*set)(std::string_view), std::vector<Operation>& operations) {
  operations.push_back(Getter(kind, name, get));
  operations.push_back(Setter(kind, name, set));
}

// A study area's properties are also named as those that go into metadata.
std::string PropertyName(const Arguments& with) {
  constexpr const char* kExchanged[] = {"TYPE", "MAINLAYER", "FEATURESLIST"};
  const std::size_t place = with.name_place % (2 * std::size(kExchanged));
  return place < std::size(kExchanged) ? kExchanged[place] : with.inner_name;
}

void AddStudyArea(std::vector<Operation>& operations) {
  constexpr Kind kKind = Kind::kStudyArea;
  AddCommon<IKVStudyArea>(kKind, operations);
  AddComments<IKVStudyArea>(kKind, operations);
  AddProperty(kKind, "Dataset", &IKVStudyArea::Dataset, &IKVStudyArea::SetDataset, operations);
  operations.push_back(Getter(kKind, "StudyAreaDir", &IKVStudyArea::StudyAreaDir));
  operations.push_back(Setter(kKind, "StudyAreaDir", &IKVStudyArea2::SetStudyAreaDir));
  operations.push_back(Getter(kKind, "GUID", &IKVStudyArea::GUID));
  operations.push_back(OnItem<IKVPropertySet>(
      "SetProperty", kKind,
      [](IKVPropertySet& item, const Arguments& with, auto&) {
        return item.SetProperty(PropertyName(with), with.value);
      },
      [](Model& model, const NodeRef& item, const Arguments& with) {
        return model.SetProperty(item, PropertyName(with), with.value);
      }));
  operations.push_back(OnItem<IKVPropertySet>(
      "GetProperty", kKind,
      [](IKVPropertySet& item, const Arguments& with, auto&) {
        return ToText(item.GetProperty(PropertyName(with)));
      },
      [](Model& model, const NodeRef& item, const Arguments& with) {
        return model.GetProperty(item, PropertyName(with));
      }));
  AddLayer(kKind, operations);
}

void AddAnalysis(std::vector<Operation>& operations) {
  constexpr Kind kKind = Kind::kAnalysis;
  AddCommon<IKVAnalysis>(kKind, operations);
  operations.push_back(Setter(kKind, "LayerFile", &IKVAnalysis::SetLayerFile));
  AddComments<IKVAnalysis>(kKind, operations);
  AddProperty(kKind, "CreationTime", &IKVAnalysis::CreationTime, &IKVAnalysis::SetCreationTime,
              operations);
  operations.push_back(Getter(kKind, "AnalysisDir", &IKVAnalysis::AnalysisDir));
  operations.push_back(Getter(kKind, "GUID", &IKVAnalysis::AnalysisGUID));
  AddParameters<IKVAnalysis>(kKind, operations);
  AddLayer(kKind, operations);
  operations.push_back(OnItem<IKVAnalysis>(
      "WriteToPropertySet", kKind,
      [](IKVAnalysis& item, auto&, System& system) {
        return item.WriteToPropertySet(system.properties);
      },
      [](Model& model, const NodeRef& item, auto&) { return model.WriteToPropertySet(item); }));
  operations.push_back(OnItem<IKVAnalysis>(
      "ReadFromPropertySet", kKind,
      [](IKVAnalysis& item, auto&, System& system) {
        return item.ReadFromPropertySet(system.properties);
      },
      [](Model& model, const NodeRef& item, auto&) { return model.ReadFromPropertySet(item); }));
}

template <class Interface>
void AddMapLayer(Kind kind, std::vector<Operation>& operations) {
  AddCommon<Interface>(kind, operations);
  operations.push_back(Setter(kind, "LayerFile", &Interface::SetLayerFile));
  AddComments<Interface>(kind, operations);
  AddProperty(kind, "NameField", &Interface::NameField, &Interface::SetNameField, operations);
  AddProperty(kind, "IDField", &Interface::IDField, &Interface::SetIDField, operations);
  AddProperty(kind, "CreationTime", &Interface::CreationTime, &Interface::SetCreationTime,
              operations);
  AddProperty(kind, "StudyAreaName", &Interface::StudyAreaName, &Interface::SetStudyAreaName,
              operations);
  operations.push_back(Getter(kind, "GUID", &Interface::GUID));
  AddInternalData<Interface>(kind, operations);
  AddParameters<Interface>(kind, operations);
  AddLayer(kind, operations);
}

void AddDataItem(std::vector<Operation>& operations) {
  constexpr Kind kKind = Kind::kDataItem;
  AddCommon<IKVDataItem>(kKind, operations);
  operations.push_back(Setter(kKind, "LayerFile", &IKVDataItem::SetLayerFile));
  AddProperty(kKind, "AdditionalInfo", &IKVDataItem::AdditionalInfo,
              &IKVDataItem::SetAdditionalInfo, operations);
  operations.push_back(Getter(kKind, "GUID", &IKVDataItem::GUID));
  AddParameters<IKVDataItem>(kKind, operations);
}

}  // namespace

void AddItemOperations(std::vector<Operation>& operations) {
  AddStudyArea(operations);
  AddAnalysis(operations);
  AddMapLayer<IKVCustLayer>(Kind::kCustLayer, operations);
  AddProperty(Kind::kCustLayer, "LinkField", &IKVCustLayer::LinkField, &IKVCustLayer::SetLinkField,
              operations);
  AddMapLayer<IKVStoreLayer>(Kind::kStoreLayer, operations);
  AddDataItem(operations);
}

}  // namespace kvdm::model
