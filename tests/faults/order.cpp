// The order in which operations with several effects call the services, compared with the order
// that hosts may rely on. A call made several times in a row counts once; how a folder is walked
// before something in it is deleted is left out.
#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "datamanager/area_registry.h"
#include "tests/faults/loop.h"
#include "tests/faults/order_world.h"

namespace kvdm {
namespace {

using Calls = std::vector<std::string>;

struct Scenario {
  const char* name;
  std::function<void(OrderWorld&)> act;
  Calls expected;
};

const std::string kWriteCatalogue = "registry.Update StudyAreaCollection";

std::vector<Scenario> StartScenarios() {
  return {
      {"a data manager starts",
       [](OrderWorld& w) { KVDataManager another(w.platform); },
       {"registry.Read Preset Data Directory", "registry.Read StudyAreaCollection",
        R"(files.ReadFile D:\Presets\PresetData.xml)", "siblings.CreateDatasetManager",
        "dataset_manager.Initialize"}},
      {"DMInitialize without a host",
       [](OrderWorld& w) { w.manager->DMInitialize(nullptr); },
       {"siblings.CreateResourceFinder"}},
      {"DMInitialize with a new folder",
       [](OrderWorld& w) {
         w.SetSetting(R"(D:\New)");
         w.manager->DMInitialize(w.host);
       },
       {"siblings.CreateResourceFinder", "host.Settings", "properties.GetProperty VELKKVDirectory",
        R"(files.FolderExists D:\New\)", R"(files.CreateFolder D:\New\)",
        R"(files.CreateFolder D:\New\\CustLayers)", R"(files.CreateFolder D:\New\\StoreLayers)",
        R"(files.CreateFolder D:\New\\KelvaroTemp)", R"(files.HideFolder D:\New\\KelvaroTemp)",
        R"(files.FullPath D:\New)", R"(files.FullPath D:\New\)"}},
      {"DMInitialize without a setting",
       [](OrderWorld& w) {
         w.SetSetting("");
         w.manager->DMInitialize(w.host);
       },
       {"siblings.CreateResourceFinder", "host.Settings", "properties.GetProperty VELKKVDirectory",
        "files.SystemDrive", R"(files.FolderExists C:\My Output Data\)",
        R"(files.CreateFolder C:\My Output Data\)",
        R"(files.CreateFolder C:\My Output Data\\CustLayers)",
        R"(files.CreateFolder C:\My Output Data\\StoreLayers)",
        R"(files.CreateFolder C:\My Output Data\\KelvaroTemp)",
        R"(files.HideFolder C:\My Output Data\\KelvaroTemp)", R"(files.FullPath C:\My Output Data)",
        R"(files.FullPath C:\My Output Data\)"}},
      {"a working directory with leftovers",
       [](OrderWorld& w) {
         w.memory.files->AddFile(R"(D:\Data\KelvaroTemp\a.tmp)");
         w.memory.files->AddFile(R"(D:\Data\KelvaroTemp\sub\b.tmp)");
         w.manager->SetWorkingDirectory(R"(D:\Data)");
       },
       {R"(files.FolderExists D:\Data\)", "folder.DeleteFiles", "folder.RemoveFolder sub"}},
      // The message is out before the state changes: what it calls still finds the old state.
      {"a working directory that fails",
       [](OrderWorld& w) {
         w.OnMessage(
             [&w] { w.record.push_back("asked: " + w.manager->GenerateFolderName("", "f")); });
         w.ThrowAt(1, kDeviceUnavailable);
         w.manager->SetWorkingDirectory(R"(D:\Data)");
         w.record.push_back("afterwards: " + w.manager->GenerateFolderName("", "f"));
       },
       {R"(files.FolderExists D:\Data\)", "message_box.Show Invalid Working Directory",
        R"(files.FolderExists D:\Data\\f)", "asked: f", "afterwards: "}},
  };
}

std::vector<Scenario> StudyAreaScenarios() {
  return {
      {"CreateStudyArea",
       [](OrderWorld& w) { w.areas->CreateStudyArea("North"); },
       {R"(files.FolderExists D:\Data\StudyAreas\North)", "gis_core.CreateIdentifier", "clock.Now",
        R"(files.CreateFolder D:\Data\StudyAreas\)",
        R"(files.CreateFolder D:\Data\StudyAreas\North\)", kWriteCatalogue}},
      // The working directory is read at every candidate and at every use after.
      {"CreateStudyArea while the working directory changes",
       [](OrderWorld& w) {
         w.DoAt(1, [&w] {
           w.Unrecorded([&w] { w.manager->SetWorkingDirectory(R"(E:\Other)"); });
           w.memory.files->AddFile(R"(D:\Data\StudyAreas\North\x)");
         });
         w.areas->CreateStudyArea("North");
         w.record.push_back(w.areas->GetStudyArea("North")->StudyAreaDir());
       },
       {R"(files.FolderExists D:\Data\StudyAreas\North)",
        R"(files.FolderExists E:\Other\StudyAreas\North1)", "gis_core.CreateIdentifier",
        "clock.Now", R"(files.CreateFolder E:\Other\StudyAreas\)",
        R"(files.CreateFolder E:\Other\StudyAreas\North1\)", kWriteCatalogue,
        R"(E:\Other\StudyAreas\North1\)"}},
      {"DeleteStudyArea of the current one",
       [](OrderWorld& w) {
         w.Unrecorded([&w] { w.areas->CreateStudyArea("North"); });
         w.memory.files->AddFile(R"(D:\Data\StudyAreas\North\x.shp)");
         w.SetCurrent("North");
         w.areas->DeleteStudyArea("North");
       },
       {"host.CurrentState", "properties.GetProperty Study Area Name",
        "properties.SetProperty Study Area Name", "folder.DeleteFiles", "folder.RemoveFolder North",
        kWriteCatalogue}},
      {"DeleteStudyAreaByGUID",
       [](OrderWorld& w) {
         w.Unrecorded([&w] { w.areas->CreateStudyArea("North"); });
         w.areas->DeleteStudyAreaByGUID(w.areas->GetStudyArea("North")->GUID());
       },
       {kWriteCatalogue}},
      {"a registered study area is created",
       [](OrderWorld& w) {
         w.LoadMetadata("<KVDATACOLLECTION><STUDYAREACOLLECTION/></KVDATACOLLECTION>");
         w.manager->Areas().CreateStudyArea("North");
       },
       {R"(files.FolderExists D:\Data\\Study Area )", R"(files.CreateFolder D:\Data\\Study Area \)",
        R"(files.CreateFolder D:\Data\\Study Area \Analyses)",
        R"(files.CreateFolder D:\Data\\Study Area \Data)",
        R"(files.CreateFolder D:\Data\\Study Area \Tables)",
        R"(files.CreateFolder D:\Data\\Study Area \Layers)", "gis_core.CreateIdentifier",
        kWriteCatalogue}},
      {"a customer layer is registered",
       [](OrderWorld& w) {
         w.LoadMetadata("<KVDATACOLLECTION><CUSTOMERCOLLECTION/></KVDATACOLLECTION>");
         w.manager->Areas().RegisterCustLayer("Points");
       },
       {"gis_core.CreateIdentifier", R"(files.FindFiles D:\Data\Customers\\Cust.*)", "clock.Now",
        kWriteCatalogue}},
  };
}

std::vector<Scenario> CollectionScenarios() {
  return {
      {"CreateAnalysis",
       [](OrderWorld& w) { w.manager->AnalysisCollection()->CreateAnalysis("Sales"); },
       {"host.CurrentState", "properties.GetProperty Study Area Name",
        R"(files.FolderExists D:\Data\Analyses\Sales)", "gis_core.CreateIdentifier", "clock.Now",
        R"(files.FolderExists D:\Data\)", R"(files.FolderExists D:\Data\Analyses\)",
        R"(files.CreateFolder D:\Data\Analyses\)", R"(files.FolderExists D:\Data\Analyses\Sales\)",
        R"(files.CreateFolder D:\Data\Analyses\Sales\)"}},
      {"DeleteAnalysis",
       [](OrderWorld& w) {
         w.Unrecorded([&w] { w.manager->AnalysisCollection()->CreateAnalysis("Sales"); });
         w.memory.files->AddFile(R"(D:\Data\Analyses\Sales\a.lyr)");
         w.manager->AnalysisCollection()->DeleteAnalysis("Sales");
       },
       {"folder.DeleteFiles", "folder.RemoveFolder Sales"}},
      // The folder is asked for a second time once the layer has its name and identifier.
      {"CreateStoreLayer",
       [](OrderWorld& w) { w.manager->StoreLayerCollection()->CreateStoreLayer("Shops"); },
       {R"(files.FolderExists D:\Data\StoreLayers)",
        R"(files.FindFiles D:\Data\StoreLayers\Shops.*)", "gis_core.CreateIdentifier",
        R"(files.FolderExists D:\Data\StoreLayers)", "clock.Now"}},
      {"CreateCustLayer",
       [](OrderWorld& w) { w.manager->CustLayerCollection()->CreateCustLayer("Points"); },
       {R"(files.FolderExists D:\Data\CustLayers)",
        R"(files.FindFiles D:\Data\CustLayers\Points.*)", "gis_core.CreateIdentifier",
        R"(files.FolderExists D:\Data\CustLayers)", "clock.Now"}},
      {"DeleteStoreLayer",
       [](OrderWorld& w) {
         w.Unrecorded([&w] { w.manager->StoreLayerCollection()->CreateStoreLayer("Shops"); });
         w.manager->StoreLayerCollection()->DeleteStoreLayer("Shops");
       },
       {}},
      {"DeleteStoreLayerByGUID",
       [](OrderWorld& w) {
         w.LoadMetadata(R"(<KVDATACOLLECTION><STORELAYERCOLLECTION>)"
                        R"(<STORELAYER GUID="{1}" DIRNAME="sub\"/>)"
                        R"(</STORELAYERCOLLECTION></KVDATACOLLECTION>)");
         w.memory.files->AddFile(R"(D:\Data\StoreLayers\sub\a.lyr)");
         w.manager->StoreLayerCollection()->DeleteStoreLayerByGUID("{1}");
       },
       {"folder.DeleteFiles", "folder.RemoveFolder sub"}},
      {"CreateDataItem",
       [](OrderWorld& w) { w.manager->DataCollection()->CreateDataItem("Roads"); },
       {"gis_core.CreateIdentifier", R"(files.FolderExists D:\Data\Data\)",
        R"(files.CreateFolder D:\Data\Data\)", R"(files.FindFiles D:\Data\Data\\Roads.*)",
        kWriteCatalogue}},
      {"FreeTablePath",
       [](OrderWorld& w) { static_cast<void>(w.manager->TablesManager()->FreeTablePath()); },
       {"host.CurrentState", "properties.GetProperty Study Area Name",
        R"(files.FolderExists D:\Data\)", R"(files.FolderExists D:\Data\Tables)",
        R"(files.CreateFolder D:\Data\Tables)", "host.CurrentState",
        "properties.GetProperty Study Area Name", R"(files.FindFiles D:\Data\Tables\Table.*)",
        "host.CurrentState", "properties.GetProperty Study Area Name"}},
  };
}

std::vector<Scenario> DocumentScenarios() {
  return {
      {"Flush", [](OrderWorld& w) { w.manager->Flush(); }, {kWriteCatalogue}},
      {"Save",
       [](OrderWorld& w) { w.manager->Save(w.Stream({})); },
       {"stream.Write", kWriteCatalogue}},
      {"Load",
       [](OrderWorld& w) { w.manager->Load(w.Stream({"<KVDATACOLLECTION/>"})); },
       {"stream.Read"}},
      {"TmpFilePath without its folder",
       [](OrderWorld& w) {
         w.memory.files->OpenFolder(R"(D:\Data\)")->RemoveFolder("KelvaroTemp");
         static_cast<void>(w.manager->TmpFilePath());
       },
       {R"(files.FolderExists D:\Data\KelvaroTemp\)", R"(files.CreateFolder D:\Data\KelvaroTemp\)",
        R"(files.HideFolder D:\Data\KelvaroTemp\)",
        R"(files.FindFiles D:\Data\KelvaroTemp\\tmp.*)"}},
      {"CleanTemp",
       [](OrderWorld& w) {
         w.memory.files->AddFile(R"(D:\Data\KelvaroTemp\a.tmp)");
         w.memory.files->AddFile(R"(D:\Data\KelvaroTemp\sub\inner\b.tmp)");
         w.manager->CleanTemp();
       },
       {"folder.DeleteFiles", "folder.RemoveFolder inner", "folder.RemoveFolder sub"}},
      {"ExportMetadata of an analysis",
       [](OrderWorld& w) { Query<IKVMetadata>(w.Analysis())->ExportMetadata(w.Metadata("")); },
       {"metadata.ReadDocument", "value_set.PrepareForUpdate",
        "value_set.PutValue Velk/Kelvaro8/LayerType", "value_set.PutValue Velk/Kelvaro8/Name",
        "value_set.PutValue Velk/Kelvaro8/GUID", "value_set.PutValue Velk/Kelvaro8/Comments",
        "value_set.PutValue Velk/Kelvaro8/AnalysisParams/a", "metadata.WriteDocument"}},
      {"ImportMetadata of an analysis",
       [](OrderWorld& w) {
         Query<IKVMetadata>(w.Analysis())->ImportMetadata(w.Metadata("Analysis Layer"));
       },
       {"metadata.ReadDocument", "value_set.GetValues Velk/Kelvaro8/LayerType",
        "value_set.GetValues Velk/Kelvaro8/GUID", kWriteCatalogue,
        "value_set.GetValues Velk/Kelvaro8/Comments", kWriteCatalogue, "value_set.ListAll",
        kWriteCatalogue}},
      {"ImportMetadata of a store layer",
       [](OrderWorld& w) {
         Query<IKVMetadata>(w.StoreLayer())->ImportMetadata(w.Metadata("Store Layer"));
       },
       {"metadata.ReadDocument", "value_set.GetValues Velk/Kelvaro8/LayerType",
        "value_set.GetValues Velk/Kelvaro8/IDField", kWriteCatalogue,
        "value_set.GetValues Velk/Kelvaro8/NameField", kWriteCatalogue,
        "value_set.GetValues Velk/Kelvaro8/Comments", kWriteCatalogue,
        "value_set.GetValues Velk/Kelvaro8/GUID", kWriteCatalogue,
        "value_set.GetValues Velk/Kelvaro8/IsInternalData"}},
  };
}

// What a step consists of: how folders are walked, one identifier is made and a text is read.
bool IsLeftOut(std::string_view call) {
  constexpr std::string_view kInside[] = {"xml_parser.",    "files.OpenFolder", "folder.Open",
                                          "folder.Enter",   "folder.Leave",     "folder.Files",
                                          "folder.Entries", "identifier."};
  return std::ranges::any_of(kInside,
                             [&](std::string_view name) { return call.starts_with(name); });
}

Calls InShort(const Calls& calls) {
  Calls kept;
  std::ranges::copy_if(calls, std::back_inserter(kept),
                       [](const std::string& call) { return !IsLeftOut(call); });
  kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
  return kept;
}

void Run(const Scenario& scenario, faults::Counts& counts) {
  OrderWorld world;
  scenario.act(world);
  ++counts.tried;
  const Calls calls = InShort(world.record);
  if (calls == scenario.expected) return;
  ++counts.wrong;
  std::printf("%s:\n", scenario.name);
  for (const auto& call : scenario.expected) std::printf("  expected %s\n", call.c_str());
  for (const auto& call : calls) std::printf("  got      %s\n", call.c_str());
}

}  // namespace
}  // namespace kvdm

int main(int argc, char** argv) {
  const auto options = kvdm::faults::ReadOptions(argc, argv);
  kvdm::faults::Counts counts;
  std::size_t number = 0;
  for (const auto& scenarios : {kvdm::StartScenarios(), kvdm::StudyAreaScenarios(),
                                kvdm::CollectionScenarios(), kvdm::DocumentScenarios()}) {
    for (const auto& scenario : scenarios) {
      if (options.IsMine(number++)) kvdm::Run(scenario, counts);
    }
  }
  return kvdm::faults::Report("order", counts);
}
