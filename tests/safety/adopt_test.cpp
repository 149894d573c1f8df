#include "safety/adopt.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/platform/portable/sidecar_metadata.h>

#include "platform/memory/memory_platform.h"
#include "safety/items.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const char kNorth[] = R"(D:\W\StudyAreas\North\)";
const char kSales[] = R"(D:\W\StudyAreas\North\Analyses\Sales\)";
const char kEmptyMetadata[] = "<KVDATACOLLECTION><ANALYSISCOLLECTION/></KVDATACOLLECTION>\r\n";

std::string AreasText(const std::string& areas) {
  return "<STUDYAREACOLLECTION>" + areas + "</STUDYAREACOLLECTION>\r\n";
}

class AdoptTest : public testing::Test {
 protected:
  AdoptTest() {
    world_.files->AddFolder(kSales);
    world_.files->AddFolder(R"(D:\W\StoreLayers)");
    holdings_.metadata =
        "<KVDATACOLLECTION><STORELAYERCOLLECTION>"
        R"(<STORELAYER NAME="_Shops_" GUID="{3}" LAYERFILE="D:\W\StoreLayers\Shops.lyr"/>)"
        "</STORELAYERCOLLECTION><ANALYSISCOLLECTION>"
        R"(<ANALYSIS NAME="_Sales_" GUID="{2}" DIRNAME="D:\W\StudyAreas\North\Analyses\Sales\" )"
        R"(LAYERFILE="D:\W\StudyAreas\North\Analyses\Sales\Analysis.lyr">)"
        R"(<PARAM NAME="Radius" VALUE="500"/><COMMENTS>two words</COMMENTS></ANALYSIS>)"
        "</ANALYSISCOLLECTION><DATACOLLECTION><SADATACOLLECTION>"
        R"(<DATAITEM NAME="Streets" GUID="{4}" FILE="Streets"/>)"
        "</SADATACOLLECTION></DATACOLLECTION></KVDATACOLLECTION>\r\n";
    holdings_.catalogue =
        AreasText(R"(<STUDYAREA NAME="_North_" GUID="{1}" DIRNAME="D:\W\StudyAreas\North\"/>)"
                  R"(<STUDYAREA NAME="_Other_" GUID="{9}" DIRNAME="D:\Other\"/>)");
    holdings_.state["Study Area Name"] = "North";
  }

  void Follow(const std::string& before = "") const {
    ItemFiles(world_.Bundle(), R"(D:\W)", "Retail")
        .Follow(before, holdings_.metadata, holdings_.catalogue);
  }

  [[nodiscard]] Adoption Adopt(const Holdings& holdings, const std::string& folder = R"(D:\W)") {
    return PlanAdoption(world_.Bundle(), holdings, folder);
  }

  static std::vector<std::string> Lines(const Adoption& adoption) {
    std::vector<std::string> lines;
    for (const Found& found : adoption.found) {
      lines.push_back(ItemName(found.item.element) + " " + found.item.element.Attribute("GUID") +
                      " " + found.source + " " + found.state);
    }
    return lines;
  }

  MemoryPlatform world_;
  Holdings holdings_;
};

TEST_F(AdoptTest, SidecarsBringBackWhatWasLost) {
  Follow();
  const Holdings lost{kEmptyMetadata, {}, {}, ""};
  const Adoption adoption = Adopt(lost);
  EXPECT_THAT(Lines(adoption), ElementsAre("Shops {3} side-car new", "Streets {4} side-car new",
                                           "North {1} side-car new", "Sales {2} side-car new"));
  EXPECT_EQ(adoption.Count(), 4U);
  EXPECT_EQ(
      adoption.result.catalogue,
      AreasText(R"(<STUDYAREA NAME="_North_" GUID="{1}" DIRNAME="D:\W\StudyAreas\North\"/>)"));
  EXPECT_THAT(adoption.result.metadata, HasSubstr(R"(<PARAM NAME="Radius" VALUE="500"/>)"));
  EXPECT_THAT(adoption.result.metadata, HasSubstr("<COMMENTS>two words</COMMENTS>"));
  EXPECT_THAT(adoption.result.metadata, HasSubstr("<SADATACOLLECTION><DATAITEM"));
}

TEST_F(AdoptTest, WhatIsThereIsNotTakenTwice) {
  Follow();
  const Adoption adoption = Adopt(holdings_);
  EXPECT_EQ(adoption.Count(), 0U);
  EXPECT_EQ(adoption.result, holdings_);
}

TEST_F(AdoptTest, PathsAreThoseOfThePlaceWhereTheyAreFound) {
  Follow();
  world_.files->AddFolder(R"(Z:\srv)");
  world_.files->MoveFolder(R"(D:\W)", R"(Z:\srv\W)");
  const Adoption adoption = Adopt({kEmptyMetadata, {}, {}, ""}, R"(Z:\srv\W)");
  EXPECT_THAT(adoption.result.catalogue, HasSubstr(R"(DIRNAME="Z:\srv\W\StudyAreas\North\")"));
  EXPECT_THAT(adoption.result.metadata,
              HasSubstr(R"(LAYERFILE="Z:\srv\W\StudyAreas\North\Analyses\Sales\Analysis.lyr")"));
  EXPECT_THAT(adoption.result.metadata, HasSubstr(R"(LAYERFILE="Z:\srv\W\StoreLayers\Shops.lyr")"));
}

TEST_F(AdoptTest, WithoutSidecarsThereAreMetadataAndFolders) {
  const auto values = world_.gis_core->CreateNamedValueSet();
  values->PutValue("Velk/Kelvaro8/LayerType", "Analysis Layer");
  values->PutValue("Velk/Kelvaro8/Name", "Turnover");
  values->PutValue("Velk/Kelvaro8/GUID", "{77}");
  values->PutValue("Velk/Kelvaro8/AnalysisParams/Radius", "9");
  MakeSidecarMetadata(world_.Bundle(), std::string(kSales) + "Analysis.lyr")->WriteDocument(values);
  const Adoption adoption = Adopt({kEmptyMetadata, {}, {}, ""});
  EXPECT_THAT(Lines(adoption),
              ElementsAre("North {00000000-0000-4000-8000-000000000001} folder new",
                          "Turnover {77} metadata new"));
  EXPECT_THAT(adoption.result.metadata, HasSubstr(R"(<PARAM NAME="Radius" VALUE="9"/>)"));
}

TEST_F(AdoptTest, ACopyGetsAnIdentifierAndAStudyAreaNameOfItsOwn) {
  Follow();
  world_.files->AddFolder(R"(D:\Copy\StudyAreas\North)");
  const auto kept = world_.files->ReadFile(std::string(kNorth) + kRecoveryFile);
  ASSERT_TRUE(kept);
  world_.files->AddFile(std::string(R"(D:\Copy\StudyAreas\North\)") + kRecoveryFile, *kept);
  const Adoption adoption = Adopt(holdings_, R"(D:\Copy)");
  EXPECT_THAT(Lines(adoption),
              ElementsAre("North1 {00000000-0000-4000-8000-000000000001} side-car copy"));
  EXPECT_EQ(adoption.result.state, holdings_.state);
  EXPECT_EQ(adoption.result.metadata, holdings_.metadata);
}

class CopyTest : public AdoptTest {
 protected:
  // What becomes of the study areas of a project that was copied to D:\Copy.
  [[nodiscard]] Adoption Copied() const {
    const PathPrefix prefix(R"(D:\W)", R"(D:\Copy)");
    const Rebase rebase = PlanRebase(world_.Bundle(), holdings_, prefix, RebaseStage::kMoved);
    EXPECT_EQ(rebase.staying.size(), 1U);
    return AdoptStaying(world_.Bundle(), rebase, prefix);
  }
};

TEST_F(CopyTest, WorksInAStudyAreaOfItsOwn) {
  world_.files->AddFolder(R"(D:\Copy\StudyAreas\North)");
  holdings_.state[kOpenAreaGuid] = "{1}";
  const Adoption adoption = Copied();
  EXPECT_THAT(Lines(adoption),
              ElementsAre("North1 {00000000-0000-4000-8000-000000000001} list copy"));
  EXPECT_EQ(adoption.result.state.at(kOpenArea), Value("North1"));
  EXPECT_EQ(adoption.result.state.at(kOpenAreaGuid),
            Value("{00000000-0000-4000-8000-000000000001}"));
  EXPECT_THAT(adoption.result.catalogue, HasSubstr(R"(DIRNAME="D:\W\StudyAreas\North\")"));
  EXPECT_THAT(adoption.result.catalogue, HasSubstr(R"(DIRNAME="D:\Copy\StudyAreas\North\")"));
}

TEST_F(CopyTest, WorksInNoStudyAreaWhoseFolderWasNotCopied) {
  holdings_.state[kOpenAreaGuid] = "{1}";
  const Adoption adoption = Copied();
  EXPECT_THAT(adoption.found, IsEmpty());
  EXPECT_EQ(adoption.result.state.at(kOpenArea), Value(""));
  EXPECT_FALSE(adoption.result.state.contains(kOpenAreaGuid));
}

TEST_F(CopyTest, StaysInTheStudyAreaOfAnotherIdentifier) {
  world_.files->AddFolder(R"(D:\Copy\StudyAreas\North)");
  holdings_.state[kOpenAreaGuid] = "{7}";
  EXPECT_EQ(Copied().result.state, holdings_.state);
}

TEST_F(AdoptTest, AnItemWhoseFolderWasMovedIsForARebase) {
  Follow();
  world_.files->AddFolder(R"(Z:\srv)");
  world_.files->MoveFolder(R"(D:\W)", R"(Z:\srv\W)");
  EXPECT_EQ(Adopt(holdings_, R"(Z:\srv\W)").Count(), 0U);
}

TEST_F(AdoptTest, SidecarsFollowChangesAndOnlyThese) {
  Follow();
  const auto before = holdings_.metadata;
  const auto place = [&](const char* folder) { return std::string(folder) + kRecoveryFile; };
  world_.files->AddFile(place(kSales), "untouched");
  Follow(before);
  EXPECT_EQ(world_.files->ReadFile(place(kSales)), "untouched");
  holdings_.metadata.replace(holdings_.metadata.find("500"), 3, "900");
  Follow(before);
  EXPECT_THAT(world_.files->ReadFile(place(kSales)).value_or(""), HasSubstr("900"));
  EXPECT_THAT(world_.files->Tree(R"(D:\)"), testing::Contains(R"(W\.kvdm\items-Retail.json)"));
}

TEST_F(AdoptTest, DamagedAndNewerSidecarsAreLeftOut) {
  for (const char* text : {"", "{", "[]", R"({"format": "kvdm items", "version": 2})",
                           R"({"format": "kvdm items", "version": 1, "working_directory": "D:\\",)"
                           R"( "items": [{"collection": "X", "element": "<A>"}]})"}) {
    EXPECT_FALSE(ParseItemFile(world_.Bundle(), text)) << text;
  }
}

TEST_F(AdoptTest, UnlistedFoldersOfStudyAreasAreNamed) {
  world_.files->AddFolder(R"(D:\W\StudyAreas\South)");
  EXPECT_THAT(UnlistedAreaFolders(world_.Bundle(), R"(D:\W\)", holdings_.catalogue),
              ElementsAre(R"(D:\W\StudyAreas\South)"));
  EXPECT_THAT(UnlistedAreaFolders(world_.Bundle(), R"(D:\Nowhere\)", holdings_.catalogue),
              IsEmpty());
  EXPECT_TRUE(LooksLikeStudyArea(world_.Bundle(), R"(D:\W\StudyAreas\North)"));
  EXPECT_FALSE(LooksLikeStudyArea(world_.Bundle(), R"(D:\W\StudyAreas\South)"));
}

}  // namespace
}  // namespace kvdm
