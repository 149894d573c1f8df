// KVAnalysis: what only analyses have.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/conformance/families.h"
#include "tests/conformance/recording_metadata.h"

namespace kvdm::conformance {
namespace {

using testing::IsEmpty;

using AnalysisWorld = ItemWorld<AnalysisFamily>;

class FailingSet : public ValueSet {
 public:
  Listing ListAll() override { throw RuntimeError(kPermissionDenied); }
  void PutValue(std::string_view path, const Value& value) override {
    if (path == "Name") throw RuntimeError(kPermissionDenied);
    ValueSet::PutValue(path, value);
  }
};

TEST(AnalysisConformance, RenamesWithoutSaving) {
  AnalysisWorld world("");
  EXPECT_FALSE(Saves(world, [&] { world.item->SetName("B"); }));
  EXPECT_EQ(world.Metadata(), AnalysisWorld::Inside(R"(<ANALYSIS NAME="_B_"/>)"));
}

TEST(AnalysisConformance, CannotReportThatANameCannotBeChecked) {
  AnalysisWorld world("");
  EXPECT_EQ(OutcomeOf([&] { world.item->SetName("a\"b"); }),
            FailsToReport("Kelvaro Data Manager: Couldn't rename the Analysis"));
  EXPECT_EQ(world.item->Name(), "A");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(AnalysisConformance, CannotReportARenameWithoutACollection) {
  AnalysisWorld world("");
  world.LoadText("no xml");
  EXPECT_EQ(OutcomeOf([&] { world.item->SetName("B"); }),
            FailsToReport("Kelvaro Data Manager: Couldn't rename the Analysis"));
  EXPECT_EQ(world.Texts(), Texts{"Cannot get analysis collection from metadata"});
}

TEST(AnalysisConformance, FailsWithoutAName) {
  FamilyWorld<AnalysisFamily> world("<ANALYSIS GUID='{1}'/>");
  const auto analysis = world.Manager()->AnalysisCollection()->GetAnalysisByGUID("{1}");
  EXPECT_EQ(OutcomeOf([&] { analysis->Name(); }), Fails(94));
  std::shared_ptr<NamedValueSet> set;
  EXPECT_FALSE(analysis->WriteToPropertySet(set));
  const auto metadata = std::make_shared<RecordingMetadata>();
  Query<IKVMetadata>(analysis)->ExportMetadata(metadata);
  EXPECT_EQ(metadata->written, nullptr);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(AnalysisConformance, SetsItsLayerFileAndSaves) {
  AnalysisWorld world("");
  EXPECT_TRUE(Saves(world, [&] { world.item->SetLayerFile("new.lyr"); }));
  EXPECT_EQ(world.Metadata(), world.With(R"( LAYERFILE="new.lyr")"));
}

TEST(AnalysisConformance, GivesItsFolderAsStored) {
  EXPECT_EQ(AnalysisWorld(R"( DIRNAME="no\path")").item->AnalysisDir(), R"(no\path)");
  EXPECT_EQ(AnalysisWorld("").item->AnalysisDir(), "");
  World world;
  EXPECT_EQ(world.New<IKVAnalysis>("KVAnalysis")->AnalysisDir(), "");
}

TEST(AnalysisPropertySetConformance, PutsParametersThenNameAndComments) {
  AnalysisWorld world("", R"(<PARAM NAME="b" VALUE="2"/><COMMENTS>c</COMMENTS>)"
                          R"(<PARAM NAME="a" VALUE="1"/>)");
  std::shared_ptr<NamedValueSet> set;
  EXPECT_TRUE(world.item->WriteToPropertySet(set));
  ASSERT_NE(set, nullptr);
  EXPECT_EQ(PairsOf(*set), (Pairs{{"b", "2"}, {"a", "1"}, {"Name", "A"}, {"Comments", "c"}}));
}

TEST(AnalysisPropertySetConformance, AddsToAGivenSet) {
  AnalysisWorld world("");
  std::shared_ptr<NamedValueSet> set = SetOf({{"Name", "old"}, {"x", 1}});
  const auto given = set;
  EXPECT_TRUE(world.item->WriteToPropertySet(set));
  EXPECT_EQ(set, given);
  EXPECT_EQ(PairsOf(*set), (Pairs{{"Name", "A"}, {"x", 1}, {"Comments", ""}}));
}

TEST(AnalysisPropertySetConformance, OverwritesParametersOfItsOwnNames) {
  AnalysisWorld world("", R"(<PARAM NAME="Comments" VALUE="x"/><PARAM NAME="Name" VALUE="y"/>)");
  std::shared_ptr<NamedValueSet> set;
  EXPECT_TRUE(world.item->WriteToPropertySet(set));
  EXPECT_EQ(PairsOf(*set), (Pairs{{"Comments", ""}, {"Name", "A"}}));
}

TEST(AnalysisPropertySetConformance, PutsWidenedCommentsAndNullForAMissingValue) {
  AnalysisWorld world("", "<PARAM NAME='a'/><COMMENTS>one\ntwo</COMMENTS>");
  std::shared_ptr<NamedValueSet> set;
  EXPECT_TRUE(world.item->WriteToPropertySet(set));
  EXPECT_EQ(PairsOf(*set), (Pairs{{"a", Null{}}, {"Name", "A"}, {"Comments", "one\r\ntwo"}}));
}

TEST(AnalysisPropertySetConformance, IsFalseAfterAnErrorAndKeepsWhatWasPut) {
  AnalysisWorld world("", "<PARAM NAME='a' VALUE='1'/>");
  std::shared_ptr<NamedValueSet> failing = std::make_shared<FailingSet>();
  EXPECT_FALSE(world.item->WriteToPropertySet(failing));
  EXPECT_EQ(failing->GetValues("a"), std::vector<Value>{"1"});

  AnalysisWorld nameless("", "<PARAM VALUE='1'/>");
  std::shared_ptr<NamedValueSet> set;
  EXPECT_FALSE(nameless.item->WriteToPropertySet(set));
  const auto metadata = std::make_shared<RecordingMetadata>();
  Query<IKVMetadata>(nameless.item)->ExportMetadata(metadata);
  EXPECT_EQ(metadata->written, nullptr);
  EXPECT_THAT(nameless.Messages(), IsEmpty());
}

TEST(AnalysisPropertySetConformance, UnboundPutsEmptyTexts) {
  World world;
  std::shared_ptr<NamedValueSet> set;
  EXPECT_TRUE(world.New<IKVAnalysis>("KVAnalysis")->WriteToPropertySet(set));
  EXPECT_EQ(PairsOf(*set), (Pairs{{"Name", ""}, {"Comments", ""}}));
}

TEST(AnalysisPropertySetConformance, AppliesNameCommentsAndParameters) {
  AnalysisWorld world("", R"(<PARAM NAME="own" VALUE="0"/>)");
  EXPECT_TRUE(Saves(world, [&] {
    EXPECT_TRUE(world.item->ReadFromPropertySet(
        SetOf({{"Name", "B"}, {"Comments", "c"}, {"name", "x"}, {"n", 42}, {"t", true}})));
  }));
  EXPECT_EQ(
      world.Metadata(),
      AnalysisWorld::Inside(
          R"(<ANALYSIS NAME="_B_"><PARAM NAME="own" VALUE="0"/>)"
          R"(<COMMENTS>c</COMMENTS><PARAM NAME="name" VALUE="x"/><PARAM NAME="n" VALUE="42"/>)"
          R"(<PARAM NAME="t" VALUE="-1"/></ANALYSIS>)"));
}

TEST(AnalysisPropertySetConformance, SkipsWhatCannotBeApplied) {
  AnalysisWorld world("");
  EXPECT_TRUE(world.item->ReadFromPropertySet(SetOf(
      {{"Name", "a\"b"}, {"Comments", Null{}}, {"a\"b", "x"}, {"null", Null{}}, {"z", "1"}})));
  EXPECT_EQ(world.Metadata(),
            world.With("", R"(<PARAM NAME="null" VALUE=""/><PARAM NAME="z" VALUE="1"/>)"));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(AnalysisPropertySetConformance, KeepsANameThatIsTaken) {
  AnalysisWorld world("");
  world.Manager()->AnalysisCollection()->CreateAnalysis("B");
  EXPECT_TRUE(world.item->ReadFromPropertySet(SetOf({{"Name", "B"}})));
  EXPECT_EQ(world.item->Name(), "A");
}

TEST(AnalysisPropertySetConformance, CannotBeReadFromNothingOrAFailingSet) {
  AnalysisWorld world("");
  EXPECT_FALSE(world.item->ReadFromPropertySet(nullptr));
  EXPECT_FALSE(world.item->ReadFromPropertySet(std::make_shared<FailingSet>()));
  EXPECT_EQ(world.Metadata(), world.With(""));
}

TEST(AnalysisPropertySetConformance, UnboundAcceptsAnySet) {
  World world;
  const auto analysis = world.New<IKVAnalysis>("KVAnalysis");
  EXPECT_TRUE(analysis->ReadFromPropertySet(SetOf({{"Name", "A"}, {"a", "1"}})));
  EXPECT_FALSE(analysis->ReadFromPropertySet(nullptr));
  EXPECT_EQ(analysis->Name(), "");
}

}  // namespace
}  // namespace kvdm::conformance
