#include "tests/model/texts.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace kvdm::model {
namespace {

// In the order of the kinds.
const std::vector<KindTexts>& AllTexts() {
  static const std::vector<KindTexts> texts = {
      {"STUDYAREACOLLECTION", "STUDYAREA", "Cannot get Study Area Collection from metadata",
       "Couldn't get StudyAreas list for the study area",
       "Kelvaro Data Manager: Couldn't create StudyArea", "Couldn't delete StudyArea",
       "Kelvaro Data Manager: Couldn't get StudyArea Object", "StudyAreas"},
      {"ANALYSISCOLLECTION", "ANALYSIS", "Cannot get analysis collection from metadata",
       "Couldn't get Analyses list for the study area",
       "Kelvaro Data Manager: Couldn't create Analysis", "Couldn't delete Analysis",
       "Kelvaro Data Manager: Couldn't get Analysis Object", "Analyses"},
      {"CUSTLAYERCOLLECTION", "CUSTLAYER", "Cannot get Cust Layer Collection from metadata",
       "Couldn't get CustLayers list for the study area",
       "Kelvaro Data Manager: Couldn't create CustLayer", "Couldn't delete CustLayer",
       "Kelvaro Data Manager: Couldn't get CustLayer Object", "CustLayers"},
      {"STORELAYERCOLLECTION", "STORELAYER", "Cannot get Store Layer Collection from metadata",
       "Couldn't get StoreLayers list for the study area",
       "Kelvaro Data Manager: Couldn't create StoreLayer", "Couldn't delete StoreLayer",
       "Kelvaro Data Manager: Couldn't get StoreLayer Object", "StoreLayers"},
      {"DATACOLLECTION", "DATAITEM", "Cannot get Data Collection from metadata",
       "Couldn't get Data List for the study area", "Couldn't Create Data", "Couldn't Delete Data",
       "Couldn't get Data item shape file", "Data\\"},
  };
  return texts;
}

const std::vector<PropertyRule>& AllRules() {
  constexpr Kind kArea = Kind::kStudyArea;
  constexpr Kind kAnalysis = Kind::kAnalysis;
  constexpr Kind kCust = Kind::kCustLayer;
  constexpr Kind kStore = Kind::kStoreLayer;
  constexpr Kind kData = Kind::kDataItem;
  static const std::vector<PropertyRule> rules = {
      {kArea, "Name", "NAME", true, true, true},
      {kArea, "LayerFile", "LAYERFILE"},
      {kArea, "StudyAreaDir", "DIRNAME"},
      {kArea, "Dataset", "DATASET", true, true, false, "Can't find the attribute DATASET"},
      {kArea, "GUID", "GUID", false, true, false, "Can't find the attribute GUID"},
      {kAnalysis, "Name", "NAME", true, false, true},
      {kAnalysis, "LayerFile", "LAYERFILE"},
      {kAnalysis, "AnalysisDir", "DIRNAME"},
      {kAnalysis, "CreationTime", "CREATIONTIME", false, false},
      {kAnalysis, "GUID", "GUID"},
      {kCust, "Name", "NAME", true},
      {kCust, "LayerFile", "LAYERFILE"},
      {kCust, "NameField", "NAMEFIELD"},
      {kCust, "IDField", "IDFIELD"},
      {kCust, "LinkField", "LINKFIELD", false, false},
      {kCust, "CreationTime", "CREATIONTIME", false, false},
      {kCust, "StudyAreaName", "STUDYAREANAME", false, false},
      {kCust, "GUID", "GUID"},
      {kStore, "Name", "NAME", true},
      {kStore, "LayerFile", "LAYERFILE"},
      {kStore, "NameField", "NAMEFIELD"},
      {kStore, "IDField", "IDFIELD"},
      {kStore, "CreationTime", "CREATIONTIME", false, false},
      {kStore, "StudyAreaName", "STUDYAREANAME", false, false},
      {kStore, "GUID", "GUID"},
      {kData, "Name", "NAME"},
      {kData, "LayerFile", "FILE"},
      {kData, "AdditionalInfo", "ADDITIONALINFO"},
      {kData, "GUID", "GUID"},
  };
  return rules;
}

}  // namespace

const KindTexts& TextsOf(Kind kind) { return AllTexts().at(static_cast<std::size_t>(kind)); }

const PropertyRule& RuleOf(Kind kind, std::string_view property) {
  const auto found = std::ranges::find_if(AllRules(), [&](const PropertyRule& rule) {
    return rule.kind == kind && rule.property == property;
  });
  if (found == AllRules().end()) throw std::logic_error("no rule for " + std::string(property));
  return *found;
}

std::string Wrapped(std::string_view name) { return "_" + std::string(name) + "_"; }

std::string Unwrapped(const std::string& name) {
  const bool is_wrapped = name.size() >= 2 && name.front() == '_' && name.back() == '_';
  return is_wrapped ? name.substr(1, name.size() - 2) : name;
}

}  // namespace kvdm::model
