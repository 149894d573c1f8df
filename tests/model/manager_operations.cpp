#include <array>

#include <kvdm/datamanager/study_areas.h>

#include "tests/model/commands.h"
#include "tests/model/describe.h"
#include "tests/model/documents.h"

namespace kvdm::model {
namespace {

template <class List>
auto& Pick(const List& list, std::size_t number) {
  return list[number % std::size(list)];
}

// None starts with a separator: on POSIX those lead to the system's own root, out of the test's
// folder.
const std::string& Directory(const Arguments& with) {
  static const std::vector<std::string> directories = {R"(D:\Data)",       R"(D:\Other\)",
                                                       R"(d:\data)",       R"(D:\Data\\Twice)",
                                                       R"(D:\Missing\In)", R"(D:\Bad<Name)"};
  return Pick(directories, with.name_place);
}

// The host's setting may also be missing.
std::string Setting(const Arguments& with) { return with.value.empty() ? "" : Directory(with); }

// A file that a client might write, below the working directory.
std::string FilePath(const std::string& directory, const Arguments& with) {
  constexpr std::array kParents = {R"(StudyAreas\North\)", R"(StoreLayers\)", R"(CustLayers\)",
                                   R"(Analyses\North\)",   R"(KelvaroTemp\)", R"(Data\)",
                                   R"(Tables\)",           R"(StudyAreas\)"};
  constexpr std::array kFiles = {"North.lyr", ".hidden.x", "NORTH.shp", "tmp.dbf",
                                 "TABLE.dbf", "a.b",       "_.lyr",     "\u540D.x"};
  return directory + Pick(kParents, with.name_place) + Pick(kFiles, with.value_place);
}

std::string Entry(const Arguments& with) {
  constexpr std::array kEntries = {"LayerType", "IsInternalData", "GUID",        "Comments",
                                   "IDField",   "Type",           "Name",        "LinkField",
                                   "MainLayer", "NameField",      "FeaturesList"};
  return with.is_kept ? "Velk/Kelvaro8/AnalysisParams/" + with.inner_name
                      : std::string("Velk/Kelvaro8/") + Pick(kEntries, with.name_place);
}

std::string EntryValue(const Arguments& with) {
  constexpr std::array kTypes = {"Analysis Layer", "Customer Layer", "Store Layer", "Study Area"};
  return Entry(with).ends_with("LayerType") ? Pick(kTypes, with.value_place) : with.value;
}

// An operation that answers what `act` and `expect` answer.
template <class Act, class Expect>
Operation Plain(const std::string& text, int weight, Act act, Expect expect) {
  return {std::nullopt, text, weight,
          [=](System& system, const Arguments& with) {
            return OutcomeOf([&] { return act(system, with); });
          },
          [=](Model& model, const Arguments& with) {
            return OutcomeOf([&] { return expect(model, with); });
          }};
}

template <class System>
bool MakeFolder(System& system, const std::string& directory, const Arguments& with) {
  const std::string parent = directory + (with.is_kept ? "StudyAreas" : "Analyses");
  if (!system.Disk().FolderExists(parent) || with.name.find('"') != std::string::npos) return false;
  system.Disk().CreateFolder(parent + "\\" + with.name);
  return true;
}

void AddStarts(std::vector<Operation>& operations) {
  operations.push_back(Plain(
      "Restart", 6, [](System& system, auto& with) { system.Restart(Setting(with)); },
      [](Model& model, auto& with) { model.Restart(Setting(with)); }));
  operations.push_back(Plain(
      "Start without saving", 2, [](System& system, auto& with) { system.Start(Setting(with)); },
      [](Model& model, auto& with) { model.Start(Setting(with)); }));
  operations.push_back(Plain(
      "Load", 6,
      [](System& system, auto& with) { system.Load(Pick(Documents(), with.name_place).text); },
      [](Model& model, auto& with) { model.Load(Pick(Documents(), with.name_place).root); }));
  operations.push_back(Plain(
      "Start with another catalogue", 5,
      [](System& system, auto& with) {
        system.PutCatalogue(Pick(Catalogues(), with.name_place).text);
        system.Start(Directory({}));
      },
      [](Model& model, auto& with) {
        const auto& catalogue = Pick(Catalogues(), with.name_place);
        model.PutCatalogue(catalogue.root, catalogue.text);
        model.Start(Directory({}));
      }));
}

// Shows which of the next operations save.
void AddLoss(std::vector<Operation>& operations) {
  operations.push_back(Plain(
      "The registry loses the catalogue", 14,
      [](System& system, auto&) { system.PutCatalogue(""); },
      [](Model& model, auto&) { model.PutCatalogue(nullptr, ""); }));
}

void AddDirectory(std::vector<Operation>& operations) {
  operations.push_back(Plain(
      "Set WorkingDirectory", 3,
      [](System& system, auto& with) { system.Manager().SetWorkingDirectory(Directory(with)); },
      [](Model& model, auto& with) { model.SetWorkingDirectory(Directory(with)); }));
  operations.push_back(Plain(
      "WorkingDirectory", 1,
      [](System& system, auto&) { return system.Manager().WorkingDirectory(); },
      [](Model& model, auto&) { return model.WorkingDirectory(); }));
  operations.push_back(Plain(
      "Flush", 3, [](System& system, auto&) { return system.Manager().Flush(); },
      [](Model& model, auto&) {
        model.Flush();
        return false;
      }));
  operations.push_back(Plain(
      "Set current study area", 6,
      [](System& system, auto& with) { system.SetCurrentStudyArea(with.name); },
      [](Model& model, auto& with) { model.SetCurrentStudyArea(with.name); }));
}

void AddFiles(std::vector<Operation>& operations) {
  operations.push_back(Plain(
      "TmpFilePath, and write that file", 3,
      [](System& system, auto&) {
        const std::string path = system.Manager().TmpFilePath();
        return path + (!path.empty() && system.WriteFile(path + ".dbf") ? " written" : "");
      },
      [](Model& model, auto&) {
        const std::string path = model.TmpFilePath();
        return path + (!path.empty() && model.Disk().WriteFile(path + ".dbf") ? " written" : "");
      }));
  operations.push_back(Plain(
      "CleanTemp", 2, [](System& system, auto&) { system.Manager().CleanTemp(); },
      [](Model& model, auto&) { model.CleanTemp(); }));
  operations.push_back(Plain(
      "A file appears", 8,
      [](System& system, auto& with) {
        return system.WriteFile(FilePath(system.Manager().WorkingDirectory(), with));
      },
      [](Model& model, auto& with) {
        return model.Disk().WriteFile(FilePath(model.WorkingDirectory(), with));
      }));
  operations.push_back(Plain(
      "A folder appears", 4,
      [](System& system, auto& with) {
        return MakeFolder(system, system.Manager().WorkingDirectory(), with);
      },
      [](Model& model, auto& with) { return MakeFolder(model, model.WorkingDirectory(), with); }));
}

void AddTables(std::vector<Operation>& operations) {
  operations.push_back(Plain(
      "TablesDir", 2,
      [](System& system, auto&) { return Required(system.Manager().TablesManager()).TablesDir(); },
      [](Model& model, auto&) { return model.TablesDir(); }));
  operations.push_back(Plain(
      "FreeTablePath", 2,
      [](System& system, auto&) {
        return Required(system.Manager().TablesManager()).FreeTablePath();
      },
      [](Model& model, auto&) { return model.FreeTablePath(); }));
}

// What other programs do to a layer's metadata and to a set of properties.
void AddExchange(std::vector<Operation>& operations) {
  operations.push_back(Plain(
      "Metadata appears", 8,
      [](System& system, auto& with) {
        auto document = system.metadata->ReadDocument();
        if (!document) document = std::make_shared<ValueSet>();
        document->PutValue(Entry(with), EntryValue(with));
        system.metadata->WriteDocument(document);
      },
      [](Model& model, auto& with) {
        auto& metadata = model.Exchanged().metadata;
        if (!metadata) metadata.emplace();
        Put(*metadata, Entry(with), EntryValue(with));
      }));
  operations.push_back(Plain(
      "Another layer", 1,
      [](System& system, auto&) { system.metadata = std::make_shared<MemoryLayerMetadata>(); },
      [](Model& model, auto&) { model.Exchanged().metadata.reset(); }));
  operations.push_back(Plain(
      "Another property set", 1, [](System& system, auto&) { system.properties.reset(); },
      [](Model& model, auto&) { model.Exchanged().properties.reset(); }));
  operations.push_back(Plain(
      "Put into the property set", 2,
      [](System& system, auto& with) {
        if (!system.properties) system.properties = std::make_shared<ValueSet>();
        system.properties->PutValue(with.is_kept ? "Name" : with.name, with.value);
      },
      [](Model& model, auto& with) {
        auto& properties = model.Exchanged().properties;
        if (!properties) properties.emplace();
        Put(*properties, with.is_kept ? "Name" : with.name, with.value);
      }));
}

}  // namespace

void AddManagerOperations(std::vector<Operation>& operations) {
  AddStarts(operations);
  AddLoss(operations);
  AddDirectory(operations);
  AddFiles(operations);
  AddTables(operations);
  AddExchange(operations);
}

}  // namespace kvdm::model
