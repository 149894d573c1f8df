// The data manager in the host's saved project.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/platform/portable/variant_list.h>

#include "tests/conformance/results.h"
#include "tests/conformance/world.h"

namespace kvdm::conformance {
namespace {

using testing::IsEmpty;

class BrokenStream : public VariantStream {
 public:
  void Write(const Value&) override { throw RuntimeError(kPermissionDenied); }
  Value Read() override { throw RuntimeError(kPermissionDenied); }
};

std::shared_ptr<IPersistVariant> Persistence(World& world) {
  return Query<IPersistVariant>(world.Manager());
}

TEST(PersistenceConformance, IdIsTheClassIdentity) {
  World world;
  EXPECT_EQ(Persistence(world)->ID()->GetValue(), "KVDM.KVDataManager");
}

TEST(PersistenceConformance, IdIsANewObjectEachTime) {
  World world;
  EXPECT_NE(Persistence(world)->ID(), Persistence(world)->ID());
}

TEST(PersistenceConformance, SaveWritesOneTextAndFlushes) {
  OpenWorld world;
  const auto stream = std::make_shared<VariantList>();
  EXPECT_TRUE(Saves(world, [&] { Persistence(world)->Save(stream); }));
  ASSERT_EQ(stream->Values().size(), 1U);
  EXPECT_TRUE(stream->Values()[0].IsText());
}

TEST(PersistenceConformance, LoadReadsOneValueAndDoesNotFlush) {
  OpenWorld world;
  const auto stream =
      std::make_shared<VariantList>(std::vector<Value>{"<KVDATACOLLECTION/>", "next"});
  EXPECT_FALSE(Saves(world, [&] { Persistence(world)->Load(stream); }));
  EXPECT_EQ(stream->Read(), Value("next"));
}

TEST(PersistenceConformance, SaveAfterLoadGivesTheSameText) {
  OpenWorld world;
  world.Manager()->AnalysisCollection()->CreateAnalysis("A & <B> '\t\xC3\xA9\xE4\xB8\xAD");
  world.Manager()->AnalysisCollection()->CreateAnalysis("Plain");
  world.Manager()->AnalysisCollection()->GetAnalysis("Plain")->SetComments(" one\r\ntwo \n");
  world.Manager()->CustLayerCollection()->CreateCustLayer("\xF0\x9F\x98\x80");
  world.Manager()->StoreLayerCollection()->CreateStoreLayer(std::string(5000, 'x'));
  world.Manager()->DataCollection()->CreateDataItem("item");
  const std::string saved = world.SavedText();
  OpenWorld other;
  other.LoadText(saved);
  EXPECT_EQ(other.SavedText(), saved);
}

TEST(PersistenceConformance, KeepsForeignContent) {
  OpenWorld world;
  const std::string root =
      "<KVDATACOLLECTION A=\"1\">\r\n  <OTHER>text</OTHER>\r\n  <?target data?></KVDATACOLLECTION>";
  world.LoadText("<!--before-->" + root + "\r\n<!--after-->\r\n");
  const std::string saved = world.SavedText();
  for (const auto& part : {std::string("<!--before-->"), root, std::string("<!--after-->")}) {
    EXPECT_THAT(saved, testing::HasSubstr(part));
  }
  world.LoadText(saved);
  EXPECT_EQ(world.SavedText(), saved);
}

TEST(PersistenceConformance, LoadTouchesNeitherTheWorkingDirectoryNorTheCatalogue) {
  OpenWorld world(R"(<STUDYAREA NAME="_A_"/>)");
  world.Load("");
  EXPECT_EQ(world.Manager()->WorkingDirectory(), R"(D:\Data\)");
  EXPECT_EQ(world.StudyAreas(), R"(<STUDYAREA NAME="_A_"/>)");
}

TEST(PersistenceConformance, CarriesOnlyTheMetadata) {
  const std::string saved = OpenWorld(R"(<STUDYAREA NAME="_North_"/>)").SavedText();
  World other;
  other.LoadText(saved);
  EXPECT_EQ(other.Manager()->WorkingDirectory(), "");
  EXPECT_FALSE(other.Manager()->StudyAreaCollection()->StudyAreaExists("North"));
}

TEST(PersistenceConformance, LoadReplacesTheDocument) {
  OpenWorld world;
  world.Manager()->CustLayerCollection()->CreateCustLayer("Old");
  const auto old = world.Manager()->CustLayerCollection();
  world.Load("<CUSTLAYERCOLLECTION/>");
  EXPECT_THAT(TextsOf(world.Manager()->CustLayerCollection()->CustLayersList()), IsEmpty());
  EXPECT_EQ(TextsOf(old->CustLayersList()), Texts{"Old"});
}

TEST(PersistenceConformance, LoadOfBadTextLeavesNoDocument) {
  for (const char* text :
       {"", "no xml", "<KVDATACOLLECTION>", "<A/><B/>", "<!DOCTYPE A><A/>", "<A b='\x01'/>"}) {
    OpenWorld world;
    world.LoadText(text);
    EXPECT_THAT(world.Messages(), IsEmpty()) << text;
    EXPECT_EQ(world.Manager()->AnalysisCollection(), nullptr) << text;
    EXPECT_THAT(world.Texts(), testing::ElementsAre("Cannot get analysis collection from metadata"))
        << text;
  }
}

TEST(PersistenceConformance, SaveWithoutADocumentWritesAnEmptyTextAndFlushes) {
  OpenWorld world;
  world.LoadText("no xml");
  const auto stream = std::make_shared<VariantList>();
  EXPECT_TRUE(Saves(world, [&] { Persistence(world)->Save(stream); }));
  EXPECT_EQ(stream->Values(), std::vector<Value>{""});
}

TEST(PersistenceConformance, LoadAgainAfterBadTextRestores) {
  OpenWorld world;
  world.LoadText("no xml");
  world.Load("<ANALYSISCOLLECTION/>");
  EXPECT_NE(world.Manager()->AnalysisCollection(), nullptr);
}

TEST(PersistenceConformance, LoadOfAValueThatIsNoTextKeepsTheDocument) {
  OpenWorld world;
  const std::string before = world.SavedText();
  for (const Value& value : {Value(), Value(Null{}), Value(5), Value(true), Value(1.5)}) {
    world.LoadText(value);
    EXPECT_EQ(world.SavedText(), before) << ToText(value.IsNull() ? Value("Null") : value);
  }
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(PersistenceConformance, LoadFromAStreamThatFailsKeepsTheDocument) {
  OpenWorld world;
  const std::string before = world.SavedText();
  Persistence(world)->Load(std::make_shared<BrokenStream>());
  Persistence(world)->Load(std::make_shared<VariantList>());
  Persistence(world)->Load(nullptr);
  EXPECT_EQ(world.SavedText(), before);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(PersistenceConformance, SaveToAStreamThatFailsIsSilentAndDoesNotFlush) {
  OpenWorld world;
  EXPECT_FALSE(Saves(world, [&] { Persistence(world)->Save(std::make_shared<BrokenStream>()); }));
  EXPECT_FALSE(Saves(world, [&] { Persistence(world)->Save(nullptr); }));
  EXPECT_THAT(world.Messages(), IsEmpty());
}

}  // namespace
}  // namespace kvdm::conformance
