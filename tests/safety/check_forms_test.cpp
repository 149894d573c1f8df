// Rules about names, the forms of paths, values, and what belongs to no item.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "checked_world.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

struct CheckFormsTest : testing::Test, CheckedWorld {
  void ExpectMended(const std::string& rule, const std::string& found) {
    EXPECT_THAT(Found({rule}), ElementsAre(found));
    EXPECT_THAT(Mend(rule), Not(IsEmpty()));
    EXPECT_THAT(Found({rule}), IsEmpty());
  }

  // Puts text into the layer metadata of an analysis, in front of the end.
  void Describe(const std::string& file, const std::string& entry) {
    std::string text = *memory.files->ReadFile(file);
    text.insert(text.rfind("</"), entry);
    memory.files->AddFile(file, text);
  }
};

constexpr char kRentFolder[] = R"(DIRNAME="D:\Work\Analyses\Rent\")";
constexpr char kStores[] = R"(D:\Work\StoreLayers\Stores.lyr)";

TEST_F(CheckFormsTest, NamesThatWindowsDoesNotTake) {
  for (const char* name : {"a:b", "con", "LPT1.lyr", "who?.lyr", "&lt;x&gt;"}) {
    const Holdings before = subject.stored;
    InMetadata(kStores, std::string(R"(D:\Work\StoreLayers\)") + name);
    EXPECT_THAT(Found({"name"}), ElementsAre("warning name.not-portable store layer Stores"))
        << name;
    subject.stored = before;
  }
}

TEST_F(CheckFormsTest, NamesThatAreLikeThoseOfDevices) {
  for (const char* name : {"console.lyr", "com0", "com10.lyr"}) {
    const Holdings before = subject.stored;
    InMetadata(kStores, std::string(R"(D:\Work\StoreLayers\)") + name);
    EXPECT_THAT(Found({"name"}), IsEmpty()) << name;
    subject.stored = before;
  }
}

TEST_F(CheckFormsTest, NameThatIsTooLong) {
  InMetadata(kStores, R"(D:\Work\StoreLayers\)" + std::string(252, 'x') + ".lyr");
  EXPECT_THAT(Found({"name"}), ElementsAre("warning name.too-long store layer Stores"));
}

TEST_F(CheckFormsTest, NameThatEndsInWhatWindowsDrops) {
  InMetadata(kRentFolder, R"(DIRNAME="D:\Work\Analyses\Rent. \")");
  ExpectMended("name.trailing-blank-or-dot", "warning name.trailing-blank-or-dot analysis Rent");
  EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(CheckFormsTest, NameThatEndsSoOnTheDiskStays) {
  memory.files->MoveFolder(R"(D:\Work\Analyses\Rent)", R"(D:\Work\Analyses\Rent.)");
  InMetadata(kRentFolder, R"(DIRNAME="D:\Work\Analyses\Rent.\")");
  EXPECT_THAT(Mend("name.trailing-blank-or-dot"), IsEmpty());
}

TEST_F(CheckFormsTest, NameThatTheRegistryDoesNotHold) {
  subject.platform.registry = std::make_shared<MemoryRegistry>(CodePage::kWindows1252);
  InCatalogue("_North_", "_N\xC3\xB6rd_");
  EXPECT_THAT(Found({"name"}), IsEmpty());
  InCatalogue("_N\xC3\xB6rd_", "_\xD0\xA1\xD0\xB5\xD0\xB2\xD0\xB5\xD1\x80_");
  EXPECT_THAT(Findings("name").front().sentence, HasSubstr("the character \xD0\xA1"));
}

TEST_F(CheckFormsTest, PathThatIsTooLong) {
  InMetadata(kStores, R"(D:\Work\StoreLayers\)" + std::string(120, 'x') + "\\" +
                          std::string(120, 'y') + ".lyr");
  EXPECT_THAT(Found({"path"}), ElementsAre("warning path.too-long store layer Stores"));
}

TEST_F(CheckFormsTest, PathWithOtherSeparators) {
  InMetadata(kRentFolder, R"(DIRNAME="D:\Work/Analyses/Rent\")");
  ExpectMended("path.mixed-separators", "warning path.mixed-separators analysis Rent");
  EXPECT_THAT(subject.stored.metadata, HasSubstr(kRentFolder));
}

TEST_F(CheckFormsTest, PathInOtherCaseThanTheDisk) {
  InMetadata(kStores, R"(D:\Work\storelayers\STORES.LYR)");
  ExpectMended("path.case-differs", "warning path.case-differs store layer Stores");
  EXPECT_THAT(subject.stored.metadata, HasSubstr(kStores));
}

TEST_F(CheckFormsTest, LayerOutsideOfTheWorkingDirectory) {
  memory.files->AddFile(R"(D:\Gis\Stores.lyr)");
  InMetadata(kStores, R"(D:\Gis\Stores.lyr)");
  EXPECT_THAT(Found({"path"}), ElementsAre("warning path.outside-workdir store layer Stores"));
}

TEST_F(CheckFormsTest, StudyAreasOfOthers) {
  InCatalogue("</STUDYAREACOLLECTION>", R"(<STUDYAREA NAME="_Other_" GUID="{1}" )"
                                        R"(DIRNAME="E:\Theirs\StudyAreas\Other\" )"
                                        R"(LAYERFILE=""/></STUDYAREACOLLECTION>)");
  EXPECT_THAT(Found(), ElementsAre("note area.foreign"));
  EXPECT_THAT(Findings("area").front().sentence, HasSubstr("Other"));
}

TEST_F(CheckFormsTest, KindOfPathInOtherCase) {
  InMetadata("\"RELATIVE\"", "\"Relative\"");
  EXPECT_THAT(Found({"pathtype"}), ElementsAre("warning pathtype.odd data item Streets"));
  EXPECT_THAT(Mend("pathtype.odd", true), SizeIs(1));
  EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(CheckFormsTest, ParametersThatAreNeverRead) {
  InMetadata(R"(9:00:00 PM"/>)", R"(9:00:00 PM"><PARAM NAME="R" VALUE="1"/><PARAM NAME="S" )"
                                 R"(VALUE="2"/><PARAM NAME="R" VALUE="3"/></ANALYSIS>)");
  ExpectMended("param.duplicate", "warning param.duplicate analysis Rent");
  EXPECT_THAT(subject.stored.metadata,
              HasSubstr(R"(<PARAM NAME="R" VALUE="1"/><PARAM NAME="S" VALUE="2"/></ANALYSIS>)"));
}

TEST_F(CheckFormsTest, ParameterWithoutAName) {
  InMetadata(R"(9:00:00 PM"/>)", R"(9:00:00 PM"><PARAM NAME="" VALUE="1"/></ANALYSIS>)");
  ExpectMended("param.empty-name", "warning param.empty-name analysis Rent");
}

TEST_F(CheckFormsTest, CommentsWithReturnsTooMany) {
  InMetadata(
      R"(9:00:00 PM"/>)",
      "9:00:00 PM\"><COMMENTS>one&#13;&#13;\ntwo&#13;&#13;&#13;\nthree</COMMENTS></ANALYSIS>");
  EXPECT_THAT(Found(), ElementsAre("warning comments.cr-doubling analysis Rent"));
  EXPECT_THAT(Mend("comments.cr-doubling", true), SizeIs(1));
  EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(CheckFormsTest, TimeOfAnotherForm) {
  InMetadata("11/2/2026 9:00:00 PM", "2026-11-02");
  EXPECT_THAT(Found(), ElementsAre("note creation-time.unreadable analysis Rent"));
}

TEST_F(CheckFormsTest, FilesOfNoItem) {
  memory.files->AddFile(R"(D:\Work\Data\Streets.dbf)");
  memory.files->AddFile(R"(D:\Work\StoreLayers\Old.shp)");
  memory.files->AddFile(R"(D:\Work\StoreLayers\Old.shp.xml)");
  memory.files->AddFile(R"(D:\Work\StoreLayers\.hidden)");
  EXPECT_THAT(Found(), ElementsAre("warning layerfile.orphan"));
}

TEST_F(CheckFormsTest, FolderOfNoItemGoesToTheTrash) {
  memory.files->AddFolder(R"(D:\Work\Analyses\Old)");
  const Repair repair = PlanRepair(subject, *RulesNamed({"folder.orphan"}).front(), false);
  EXPECT_THAT(repair.trashed, ElementsAre(R"(D:\Work\Analyses\Old)"));
}

TEST_F(CheckFormsTest, TemporaryFolder) {
  memory.files->AddFile(R"(D:\Work\KelvaroTemp\tmp1.shp)");
  memory.files->SetAttributes(R"(D:\Work\KelvaroTemp)", 0);
  EXPECT_THAT(Found(), ElementsAre("note temp.leftover", "note temp.not-hidden"));
  EXPECT_THAT(Mend("temp.not-hidden", true), SizeIs(1));
  EXPECT_THAT(Found(), ElementsAre("note temp.leftover"));
}

TEST_F(CheckFormsTest, WhatNobodyMayWrite) {
  subject.is_read_only = [](const std::string& path) {
    return path == kStores || path.ends_with("Analyses");
  };
  EXPECT_THAT(Found(), ElementsAre("warning permission.file-read-only store layer Stores",
                                   "warning permission.folder-read-only"));
}

TEST_F(CheckFormsTest, PresetData) {
  subject.preset_folder = R"(D:\Presets\)";
  EXPECT_THAT(Found(), ElementsAre("warning preset.unreadable"));
  memory.files->AddFile(R"(D:\Presets\PresetData.xml)", "<PRESETS>");
  EXPECT_THAT(Found(), ElementsAre("warning preset.unreadable"));
  memory.files->AddFile(R"(D:\Presets\PresetData.xml)",
                        R"(<PRESETS><DATAITEM NAME="A"> postal\a.shp
                        </DATAITEM><DATAITEM NAME="A">b.shp</DATAITEM></PRESETS>)");
  memory.files->AddFile(R"(D:\Presets\postal\a.shp)");
  EXPECT_THAT(Found(), ElementsAre("warning preset.file-missing", "warning preset.duplicate"));
  EXPECT_THAT(Findings("preset.file-missing").front().path, R"(D:\Presets\b.shp)");
}

TEST_F(CheckFormsTest, WhatAProgramHasNotStored) {
  subject.held = subject.stored;
  EXPECT_THAT(Found(), IsEmpty());
  InCatalogue("_North_", "_South_");
  InMetadata("_Rent_", "_Rents_");
  EXPECT_THAT(Found({"catalogue", "project"}),
              ElementsAre("warning catalogue.stale", "note project.unsaved"));
}

TEST_F(CheckFormsTest, DataItemsThatAreNotListed) {
  InMetadata("<SADATACOLLECTION>", "");
  InMetadata("</SADATACOLLECTION>", "");
  EXPECT_THAT(Found(), ElementsAre("note data.unlisted"));
}

TEST_F(CheckFormsTest, MetadataOfAnotherProgram) {
  const std::string ours = *memory.files->ReadFile(std::string(kStores) + ".xml");
  memory.files->AddFile(std::string(kStores) + ".xml", "<metadata><idinfo/></metadata>");
  EXPECT_THAT(Found(), ElementsAre("warning metadata.foreign store layer Stores"));
  memory.files->AddFile(std::string(kStores) + ".kvdm.xml", ours);
  EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(CheckFormsTest, MetadataWithParametersThatTheAnalysisHasNot) {
  Describe(R"(D:\Work\Analyses\Rent\Analysis.lyr.xml)",
           R"(<ENTRY PATH="Velk/Kelvaro8/AnalysisParams/R" TYPE="Text" VALUE="1"/>)");
  EXPECT_THAT(Found(), ElementsAre("warning metadata.stale-parameter analysis Rent"));
  InMetadata(R"(9:00:00 PM"/>)", R"(9:00:00 PM"><PARAM NAME="R" VALUE="2"/></ANALYSIS>)");
  EXPECT_THAT(Found(), IsEmpty());
}

}  // namespace
}  // namespace kvdm
