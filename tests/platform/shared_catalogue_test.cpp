// What a data manager believes to be stored, and what its writes change.
#include "platform/portable/shared_catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/memory_platform.h"
#include "tests/replacing_update.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kKey[] = "Software";
constexpr char kList[] = "List";

const std::string kA = R"(<STUDYAREA NAME="_A_" GUID="{A}"/>)";
const std::string kARenamed = R"(<STUDYAREA NAME="_Alpha_" GUID="{A}"/>)";
const std::string kARenamedElse = R"(<STUDYAREA NAME="_Ay_" GUID="{A}"/>)";
const std::string kB = R"(<STUDYAREA NAME="_B_" GUID="{B}"/>)";
const std::string kC = R"(<STUDYAREA NAME="_C_" GUID="{C}"/>)";

std::string List(const std::string& areas) { return "<L>" + areas + "</L>\r\n"; }

struct SharedCatalogueTest : testing::Test {
  std::optional<RegistryValue> Read() { return shared.Read(kMachine, kKey, kList); }
  bool Write(const std::string& text) { return shared.WriteText(kMachine, kKey, kList, text); }

  // What others do.
  void Store(const std::string& text) { platform.registry->WriteText(kMachine, kKey, kList, text); }
  std::string Stored() const { return platform.registry->Read(kMachine, kKey, kList)->data; }

  MemoryPlatform platform;
  SharedCatalogue shared{
      platform.registry, platform.xml_parser, platform.log, {kMachine, kKey, kList}};
};

TEST_F(SharedCatalogueTest, StoresTheTextAsItIsWhereNobodyElseWrote) {
  const std::string odd = "<?xml version='1.0'?><L><STUDYAREA  NAME='1'/> </L>\n\n";
  Store(odd);
  EXPECT_EQ(Read()->data, odd);
  for (const std::string text : {"<L  B='1'/>", "<L><!--x--></L>", "<M>\r\n</M>"}) {
    EXPECT_TRUE(Write(text));
    EXPECT_EQ(Stored(), text);
  }
}

TEST_F(SharedCatalogueTest, StoresTheDifferenceWhereOthersWrote) {
  Store(List(kA));
  Read();
  Store(List(kA + kC));
  EXPECT_TRUE(Write(List(kA + kB)));
  EXPECT_EQ(Stored(), List(kA + kC + kB));
}

TEST_F(SharedCatalogueTest, WhatOthersAddedIsNotDeletedByTheNextWrite) {
  Store(List(kA));
  Read();
  Store(List(kA + kC));
  ASSERT_TRUE(Write(List(kA + kB)));
  ASSERT_TRUE(Write(List(kA + kB)));
  EXPECT_EQ(Stored(), List(kA + kC + kB));
  ASSERT_TRUE(Write(List(kA)));
  EXPECT_EQ(Stored(), List(kA + kC));
}

TEST_F(SharedCatalogueTest, WhatOthersDeletedDoesNotComeBack) {
  Store(List(kA + kC));
  Read();
  Store(List(kC));
  ASSERT_TRUE(Write(List(kA + kC + kB)));
  EXPECT_EQ(Stored(), List(kC + kB));
}

TEST_F(SharedCatalogueTest, AFailedWriteIsWrittenWithTheNextOne) {
  Store(List(kA));
  Read();
  platform.registry->SetWritable(false);
  EXPECT_FALSE(Write(List(kA + kB)));
  EXPECT_EQ(shared.Condition().state, RegistryState::kForbidden);
  platform.registry->SetWritable(true);
  Store(List(kA + kC));
  EXPECT_TRUE(Write(List(kA + kB)));
  EXPECT_EQ(Stored(), List(kA + kC + kB));
}

TEST_F(SharedCatalogueTest, OtherReadersDoNotMoveTheBase) {
  Store(List(kA));
  Read();
  SharedCatalogue other(platform.registry, platform.xml_parser, platform.log,
                        {kMachine, kKey, kList});
  other.Read(kMachine, kKey, kList);
  ASSERT_TRUE(other.WriteText(kMachine, kKey, kList, List(kA + kC)));
  other.Read(kMachine, kKey, kList);
  ASSERT_TRUE(Write(List(kA)));
  EXPECT_EQ(Stored(), List(kA + kC));
}

TEST_F(SharedCatalogueTest, ReadsOfOtherValuesDoNotMoveTheBase) {
  Store(List(kA));
  platform.registry->WriteText(kMachine, kKey, "Alias", List(kB));
  Read();
  EXPECT_EQ(shared.Read(kMachine, kKey, "Alias")->data, List(kB));
  Store(List(kA + kC));
  ASSERT_TRUE(Write(List("")));
  EXPECT_EQ(Stored(), List(kC));
}

TEST_F(SharedCatalogueTest, AfterAFailedReadAWriteOnlyAdds) {
  Store(List(kA + kC));
  platform.registry->SetReadable(false);
  EXPECT_RUNTIME_ERROR(static_cast<void>(Read()), kDeviceUnavailable);
  EXPECT_FALSE(Write(List(kB)));
  platform.registry->SetReadable(true);
  EXPECT_TRUE(Write(List(kB)));
  EXPECT_EQ(Stored(), List(kA + kC + kB));
  EXPECT_TRUE(Write(List("")));
  EXPECT_EQ(Stored(), List(kA + kC));
}

TEST_F(SharedCatalogueTest, AFailedReadLeavesTheBase) {
  Store(List(kA));
  Read();
  platform.registry->SetReadable(false);
  EXPECT_RUNTIME_ERROR(static_cast<void>(Read()), kDeviceUnavailable);
  platform.registry->SetReadable(true);
  Store(List(kA + kC));
  EXPECT_TRUE(Write(List("")));
  EXPECT_EQ(Stored(), List(kC));
}

TEST_F(SharedCatalogueTest, WhoNeverReadAndAddsNothingNeedsNoRegistry) {
  platform.registry->SetReadable(false);
  platform.registry->SetWritable(false);
  EXPECT_RUNTIME_ERROR(static_cast<void>(Read()), kDeviceUnavailable);
  EXPECT_TRUE(Write(List("")));
  platform.registry->SetReadable(true);
  EXPECT_EQ(platform.registry->Read(kMachine, kKey, kList), std::nullopt);
}

TEST_F(SharedCatalogueTest, AValueOfAnotherTypeIsAnEmptyBase) {
  platform.registry->Put(kMachine, kKey, kList, RegistryType::kBinary, List(kA));
  EXPECT_EQ(Read()->type, RegistryType::kBinary);
  Store(List(kA));
  ASSERT_TRUE(Write(List(kB)));
  EXPECT_EQ(Stored(), List(kA + kB));
}

TEST_F(SharedCatalogueTest, TheBaseEndsAtItsNul) {
  Store(List(kA) + '\0' + "rest");
  Read();
  ASSERT_TRUE(Write("<L  />"));
  EXPECT_EQ(Stored(), "<L  />");
}

TEST_F(SharedCatalogueTest, TheLogTellsWhatGaveWayOnceItIsStored) {
  Store(List(kA));
  Read();
  Store(List(kARenamedElse));
  platform.registry->SetWritable(false);
  ASSERT_FALSE(Write(List(kARenamed)));
  EXPECT_THAT(platform.log->Lines(), IsEmpty());
  platform.registry->SetWritable(true);
  ASSERT_TRUE(Write(List(kARenamed)));
  EXPECT_THAT(platform.log->Lines(),
              ElementsAre("The study area Alpha {A} was changed elsewhere too; what was stored is "
                          "kept in the history."));
  const auto kept = shared.Kept(kMachine, kKey, kList);
  ASSERT_EQ(kept.size(), 1U);
  EXPECT_EQ(kept[0].value.data, kARenamedElse + "\r\n");
}

TEST_F(SharedCatalogueTest, EverythingElseGoesStraightOn) {
  EXPECT_TRUE(shared.WriteText(kMachine, kKey, "Alias", "Client"));
  EXPECT_TRUE(shared.WriteText(RegistryRoot::kCurrentUser, kKey, kList, "mine"));
  EXPECT_TRUE(shared.Update(kMachine, kKey, kList, Replacing("replaced")));
  EXPECT_EQ(platform.registry->Read(kMachine, kKey, "Alias")->data, "Client");
  EXPECT_EQ(platform.registry->Read(RegistryRoot::kCurrentUser, kKey, kList)->data, "mine");
  EXPECT_EQ(Stored(), "replaced");
  EXPECT_TRUE(shared.Holds(0x436));
  EXPECT_EQ(shared.Condition().state, RegistryState::kReady);
}

}  // namespace
}  // namespace kvdm
