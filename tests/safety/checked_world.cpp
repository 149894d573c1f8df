#include "checked_world.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace kvdm {
namespace {

const char kMetadata[] =
    R"(<KVDATACOLLECTION><CUSTLAYERCOLLECTION>)"
    R"(<CUSTLAYER NAME="_Members_" GUID="{00000000-0000-4000-8000-00000000000A}" )"
    R"(LAYERFILE="D:\Work\CustLayers\Members.lyr" CREATIONTIME="11/1/2026 9:00:00 AM" )"
    R"(STUDYAREANAME="North"/></CUSTLAYERCOLLECTION><STORELAYERCOLLECTION>)"
    R"(<STORELAYER NAME="_Stores_" GUID="{00000000-0000-4000-8000-00000000000B}" )"
    R"(LAYERFILE="D:\Work\StoreLayers\Stores.lyr" CREATIONTIME="11/1/2026 9:00:00 AM"/>)"
    R"(</STORELAYERCOLLECTION><ANALYSISCOLLECTION>)"
    R"(<ANALYSIS NAME="_Sales_" GUID="{00000000-0000-4000-8000-00000000000C}" )"
    R"(DIRNAME="D:\Work\StudyAreas\North\Analyses\Sales\" )"
    R"(LAYERFILE="D:\Work\StudyAreas\North\Analyses\Sales\Analysis.lyr" )"
    R"(CREATIONTIME="11/1/2026 9:00:00 AM"/>)"
    R"(<ANALYSIS NAME="_Rent_" GUID="{00000000-0000-4000-8000-00000000000D}" )"
    R"(DIRNAME="D:\Work\Analyses\Rent\" LAYERFILE="D:\Work\Analyses\Rent\Analysis.lyr" )"
    R"(CREATIONTIME="11/2/2026 9:00:00 PM"/></ANALYSISCOLLECTION><DATACOLLECTION>)"
    R"(<SADATACOLLECTION><DATAITEM NAME="Streets" GUID="{00000000-0000-4000-8000-00000000000E}" FILE="Streets" )"
    R"(PATHTYPE="RELATIVE"/></SADATACOLLECTION></DATACOLLECTION></KVDATACOLLECTION>)";
const char kCatalogue[] =
    R"(<STUDYAREACOLLECTION>)"
    R"(<STUDYAREA NAME="_North_" GUID="{00000000-0000-4000-8000-00000000000F}" )"
    R"(DIRNAME="D:\Work\StudyAreas\North\" LAYERFILE="D:\Work\StudyAreas\North\StudyArea.lyr" )"
    R"(CREATIONTIME="11/1/2026 9:00:00 AM"/>)"
    R"(</STUDYAREACOLLECTION>)";

std::string Described(const char* type, const char* name, const char* last_digit) {
  return fmt::format(
      R"(<LAYERMETADATA><ENTRY PATH="Velk/Kelvaro8/LayerType" TYPE="Text" VALUE="{}"/>)"
      R"(<ENTRY PATH="Velk/Kelvaro8/Name" TYPE="Text" VALUE="{}"/>)"
      R"(<ENTRY PATH="Velk/Kelvaro8/GUID" TYPE="Text" )"
      R"(VALUE="{{00000000-0000-4000-8000-00000000000{}}}"/></LAYERMETADATA>)",
      type, name, last_digit);
}

void Replace(std::string& text, std::string_view before, std::string_view after) {
  const std::size_t place = text.find(before);
  ASSERT_NE(place, text.npos) << before;
  text.replace(place, before.size(), after);
}

}  // namespace

CheckedWorld::CheckedWorld() {
  const auto layer = [&](const std::string& file, const std::string& described) {
    memory.files->AddFile(file, "layer");
    memory.files->AddFile(file + ".xml", described);
  };
  layer(R"(D:\Work\CustLayers\Members.lyr)", Described("Customer Layer", "Members", "A"));
  layer(R"(D:\Work\StoreLayers\Stores.lyr)", Described("Store Layer", "Stores", "B"));
  layer(R"(D:\Work\StudyAreas\North\Analyses\Sales\Analysis.lyr)",
        Described("Analysis Layer", "Sales", "C"));
  layer(R"(D:\Work\Analyses\Rent\Analysis.lyr)", Described("Analysis Layer", "Rent", "D"));
  layer(R"(D:\Work\StudyAreas\North\StudyArea.lyr)", Described("Study Area", "North", "F"));
  memory.files->AddFile(R"(D:\Work\Data\Streets.shp)");
  memory.files->AddFolder(R"(D:\Work\KelvaroTemp)");
  memory.files->HideFolder(R"(D:\Work\KelvaroTemp)");
  subject.platform = memory.Bundle();
  subject.place = R"(D:\Projects)";
  subject.registry = "the registry";
  subject.stored = {kMetadata, {{kDirectorySetting, R"(D:\Work)"}}, {}, kCatalogue};
}

void CheckedWorld::InMetadata(std::string_view before, std::string_view after) {
  Replace(subject.stored.metadata, before, after);
}

void CheckedWorld::InCatalogue(std::string_view before, std::string_view after) {
  Replace(subject.stored.catalogue, before, after);
}

std::vector<std::string> CheckedWorld::Found(const std::vector<std::string>& names) const {
  std::vector<std::string> lines;
  for (const Finding& finding : Check(subject, RulesNamed(names))) {
    lines.push_back(fmt::format("{} {}{}{}", NameOf(finding.severity), finding.rule->name,
                                finding.item.empty() ? "" : " ", finding.item));
  }
  return lines;
}

std::vector<Finding> CheckedWorld::Findings(const std::string& name) const {
  return Check(subject, RulesNamed({name}));
}

std::vector<std::string> CheckedWorld::Mend(const std::string& rule, bool only_safe) {
  const Repair repair = PlanRepair(subject, *RulesNamed({rule}).front(), only_safe);
  MakeFolders(subject.platform, repair);
  ChangeIdentities(subject.platform, repair);
  subject.stored = repair.wanted;
  if (!repair.steps.empty()) subject.problem.clear();
  return repair.steps;
}

}  // namespace kvdm
