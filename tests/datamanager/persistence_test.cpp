// The metadata document in the host's saved document.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/failing_services.h"
#include "tests/test_world.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kNoAnalyses[] = "Cannot get analysis collection from metadata";

// Fills the metadata with one of each kind, with all that is hard to write.
void Fill(const TestWorld& world) {
  auto& manager = *world.manager;
  ASSERT_TRUE(manager.AnalysisCollection()->CreateAnalysis("_Жар_ &'"));
  const auto analysis = manager.AnalysisCollection()->GetAnalysis("_Жар_ &'");
  ASSERT_TRUE(analysis);
  ASSERT_TRUE(analysis->SetParameter("tab\tline\nreturn\r'<&>", " \t\r\n "));
  analysis->SetComments("  a\r\nb\nc\rd  ");
  ASSERT_TRUE(manager.CustLayerCollection()->CreateCustLayer("\U0001F600"));
  ASSERT_TRUE(manager.StoreLayerCollection()->CreateStoreLayer(std::string(5000, 'x')));
  ASSERT_TRUE(manager.DataCollection()->CreateDataItem("item"));
}

TEST(PersistenceTest, IsNamedByTheClassIdentity) {
  TestWorld world;
  EXPECT_EQ(world.manager->ID()->GetValue(), "KVDM.KVDataManager");
}

TEST(PersistenceTest, EveryIdentifierIsAnother) {
  TestWorld world;
  world.manager->ID()->PutValue("changed");
  EXPECT_EQ(world.manager->ID()->GetValue(), "KVDM.KVDataManager");
}

TEST(PersistenceTest, AnIdentifierThatCanNotBeMadeIsNothing) {
  const MemoryPlatform platform;
  const auto counter = std::make_shared<FailureCounter>();
  KVDataManager manager(Failing(platform.Bundle(), counter));
  for (int call = 1; call <= 2; ++call) {  // create, put the value
    *counter = {0, call};
    EXPECT_EQ(manager.ID(), nullptr);
  }
  EXPECT_THAT(platform.box->Messages(), IsEmpty());
}

TEST(PersistenceTest, SavesTheWholeDocumentAsOneText) {
  TestWorld world;
  const auto stream = std::make_shared<VariantList>();
  world.manager->Save(stream);
  EXPECT_THAT(stream->Values(), ElementsAre(Value(NewMetadataDocument()->Xml())));
}

TEST(PersistenceTest, SavingFlushes) {
  TestWorld world;
  EXPECT_EQ(world.StoredCatalogue(), "");
  world.manager->Save(std::make_shared<VariantList>());
  EXPECT_EQ(world.StoredCatalogue(), "<STUDYAREACOLLECTION/>\r\n");
}

TEST(PersistenceTest, LoadingRestoresTheDocumentByteForByte) {
  TestWorld world;
  Fill(world);
  const auto saved = world.Metadata();
  TestWorld other;
  other.LoadMetadata(saved);
  EXPECT_EQ(other.Metadata(), saved);
  EXPECT_THAT(Texts(other.manager->AnalysisCollection()->AnalysesList()), ElementsAre("_Жар_ &'"));
  EXPECT_THAT(other.Messages(), IsEmpty());
}

TEST(PersistenceTest, ParametersComeBackExactly) {
  TestWorld world;
  Fill(world);
  world.LoadMetadata(world.Metadata());
  const auto analysis = world.manager->AnalysisCollection()->GetAnalysis("_Жар_ &'");
  EXPECT_THAT(Texts(analysis->ParametersList()), ElementsAre("tab\tline\nreturn\r'<&>"));
  EXPECT_THAT(world.Metadata(), HasSubstr(R"(VALUE=" &#9;&#13;&#10; ")"));
}

TEST(PersistenceTest, LineEndsOfCommentsAreCrCrLfInTheSameTreeAndCrLfAfterLoading) {
  TestWorld world;
  ASSERT_TRUE(world.manager->AnalysisCollection()->CreateAnalysis("a"));
  const auto analysis = world.manager->AnalysisCollection()->GetAnalysis("a");
  analysis->SetComments("x\r\ny");
  EXPECT_EQ(analysis->Comments(), "x\r\r\ny");
  world.LoadMetadata(world.Metadata());
  EXPECT_EQ(world.manager->AnalysisCollection()->GetAnalysis("a")->Comments(), "x\r\ny");
}

TEST(PersistenceTest, ForeignContentIsKept) {
  TestWorld world;
  const std::string foreign =
      "<!--before--><KVDATACOLLECTION A=\"1\">\r\n  <OTHER>text</OTHER>\r\n"
      "  <?target data?></KVDATACOLLECTION>\r\n<!--after-->\r\n";
  world.LoadMetadata(foreign);
  const auto saved = world.Metadata();
  EXPECT_THAT(saved, HasSubstr("A=\"1\">\r\n  <OTHER>text</OTHER>\r\n  <?target data?></KVDATA"));
  EXPECT_THAT(saved, HasSubstr("<!--after-->"));
  world.LoadMetadata(saved);
  EXPECT_EQ(world.Metadata(), saved);
}

TEST(PersistenceTest, LoadingReadsExactlyOneValue) {
  TestWorld world;
  const auto stream = std::make_shared<VariantList>(std::vector<Value>{"<A/>", "<B/>"});
  world.manager->Load(stream);
  EXPECT_EQ(world.Metadata(), "<A/>\r\n");
  EXPECT_EQ(stream->Read(), Value("<B/>"));
}

TEST(PersistenceTest, LoadingTextThatIsNotWellFormedLeavesNoDocument) {
  for (const std::string text :
       {"", "text", "<A>", "<A/><B/>", "<!DOCTYPE A><A/>", "<A b='\x01'/>"}) {
    TestWorld world;
    world.LoadMetadata(text);
    EXPECT_THAT(world.Messages(), IsEmpty());
    EXPECT_EQ(world.manager->AnalysisCollection(), nullptr) << text;
    EXPECT_THAT(world.Messages(), ElementsAre(kNoAnalyses)) << text;
  }
}

TEST(PersistenceTest, WithoutADocumentOneEmptyTextIsSavedAndTheCatalogueFlushed) {
  TestWorld world;
  world.LoadMetadata("<A>");
  const auto stream = std::make_shared<VariantList>();
  world.manager->Save(stream);
  EXPECT_THAT(stream->Values(), ElementsAre(Value("")));
  EXPECT_EQ(world.StoredCatalogue(), "<STUDYAREACOLLECTION/>\r\n");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(PersistenceTest, AfterAFailedLoadAnotherOneRestoresTheDocument) {
  TestWorld world;
  world.LoadMetadata("<A>");
  world.LoadMetadata("<KVDATACOLLECTION/>");
  EXPECT_TRUE(world.manager->AnalysisCollection());
}

TEST(PersistenceTest, AValueThatIsNoTextKeepsTheDocument) {
  for (const Value& value : {Value(), Value(Null()), Value(5), Value(true), Value(1.5)}) {
    TestWorld world;
    world.LoadMetadata("<OLD/>");
    world.manager->Load(std::make_shared<VariantList>(std::vector<Value>{value}));
    EXPECT_EQ(world.Metadata(), "<OLD/>\r\n");
    EXPECT_THAT(world.Messages(), IsEmpty());
  }
}

TEST(PersistenceTest, AStreamAtItsEndKeepsTheDocument) {
  TestWorld world;
  world.LoadMetadata("<OLD/>");
  world.manager->Load(std::make_shared<VariantList>());
  EXPECT_EQ(world.Metadata(), "<OLD/>\r\n");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(PersistenceTest, WithoutAStreamNothingHappens) {
  TestWorld world;
  world.LoadMetadata("<OLD/>");
  world.manager->Load(nullptr);
  world.manager->Save(nullptr);
  EXPECT_EQ(world.StoredCatalogue(), "");
  EXPECT_EQ(world.Metadata(), "<OLD/>\r\n");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

class FullStream : public VariantStream {
 public:
  void Write(const Value&) override { throw RuntimeError(kPermissionDenied); }
  Value Read() override { throw RuntimeError(kPermissionDenied); }
};

TEST(PersistenceTest, AStreamThatRefusesEndsQuietlyWithoutAFlush) {
  TestWorld world;
  world.LoadMetadata("<OLD/>");
  world.manager->Save(std::make_shared<FullStream>());
  world.manager->Load(std::make_shared<FullStream>());
  EXPECT_EQ(world.StoredCatalogue(), "");
  EXPECT_EQ(world.Metadata(), "<OLD/>\r\n");
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(PersistenceTest, LoadingTouchesNeitherTheWorkingDirectoryNorTheCatalogue) {
  TestWorld world;
  ASSERT_TRUE(world.manager->StudyAreaCollection()->CreateStudyArea("North"));
  const auto stored = world.StoredCatalogue();
  world.LoadMetadata("<KVDATACOLLECTION/>");
  EXPECT_EQ(world.manager->WorkingDirectory(), R"(D:\Data\)");
  EXPECT_THAT(Texts(world.manager->StudyAreaCollection()->StudyAreasList()), ElementsAre("North"));
  EXPECT_EQ(world.StoredCatalogue(), stored);
}

TEST(PersistenceTest, AViewFromBeforeALoadStaysWithTheOldDocument) {
  TestWorld world;
  const auto old = world.manager->AnalysisCollection();
  world.LoadMetadata("<KVDATACOLLECTION/>");
  ASSERT_TRUE(old->CreateAnalysis("Sales"));
  EXPECT_THAT(Texts(old->AnalysesList()), ElementsAre("Sales"));
  EXPECT_EQ(world.Metadata(), "<KVDATACOLLECTION/>\r\n");
}

}  // namespace
}  // namespace kvdm
