#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kvdm/platform/portable/sidecar_metadata.h>

#include "platform/memory/failing_services.h"
#include "platform/memory/memory_platform.h"
#include "platform/portable/value_set.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::string_view kSidecar = "D:\\stores.shp.xml";

class SidecarMetadataTest : public testing::Test {
 protected:
  static std::shared_ptr<ValueSet> SomeDocument() {
    auto document = std::make_shared<ValueSet>();
    document->PutValue("Velk/Kelvaro8/GUID", "{1}");
    document->PutValue("Velk/Kelvaro8/IsInternalData", true);
    return document;
  }

  std::string Text(std::string_view path) {
    return world_.files->ReadFile(path).value_or("(missing)");
  }

  MemoryPlatform world_;
  std::shared_ptr<LayerMetadata> metadata_ = MakeSidecarMetadata(world_.Bundle(), "D:\\stores.shp");
};

TEST_F(SidecarMetadataTest, IsBesideTheLayerWithOneLineForEachEntry) {
  metadata_->WriteDocument(SomeDocument());
  EXPECT_EQ(Text(kSidecar),
            "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n"
            "<LAYERMETADATA>\r\n"
            "<ENTRY PATH=\"Velk/Kelvaro8/GUID\" TYPE=\"Text\" VALUE=\"{1}\"/>\r\n"
            "<ENTRY PATH=\"Velk/Kelvaro8/IsInternalData\" TYPE=\"Boolean\" VALUE=\"True\"/>\r\n"
            "</LAYERMETADATA>\r\n");
}

TEST_F(SidecarMetadataTest, AMissingFileIsNotFound) {
  EXPECT_RUNTIME_ERROR(metadata_->ReadDocument(), kFileNotFound);
}

constexpr std::string_view kBeside = "D:\\stores.shp.kvdm.xml";

// What other programs keep there, and what can't be told.
const char* const kForeign[] = {
    "<?xml version=\"1.0\"?>\n<!--LAYERMETADATA-->\n<gmd:MD_Metadata xmlns:gmd=\"urn:x\"/>",
    "<!DOCTYPE metadata SYSTEM \"fgdc.dtd\">\n<metadata><idinfo/></metadata>",
    "<metadata><idinfo>",
    "no XML",
    "",
};

TEST_F(SidecarMetadataTest, AForeignFileStaysToTheByte) {
  for (const char* foreign : kForeign) {
    world_.files->AddFile(kSidecar, foreign);
    EXPECT_RUNTIME_ERROR(metadata_->ReadDocument(), kFileNotFound);
    metadata_->WriteDocument(SomeDocument());
    EXPECT_EQ(metadata_->ReadDocument()->EntryCount(), 2) << foreign;
    EXPECT_EQ(Text(kSidecar), foreign);
    EXPECT_THAT(world_.files->Tree("D:\\"), ElementsAre("stores.shp.kvdm.xml", "stores.shp.xml"));
    world_.files->RemoveTree(kBeside);
  }
}

TEST_F(SidecarMetadataTest, OursBesideStayInUse) {
  world_.files->AddFile(kSidecar, kForeign[0]);
  metadata_->WriteDocument(SomeDocument());
  world_.files->RemoveTree(kSidecar);
  EXPECT_EQ(metadata_->ReadDocument()->EntryCount(), 2);
  metadata_->WriteDocument(SomeDocument());
  EXPECT_THAT(world_.files->Tree("D:\\"), ElementsAre("stores.shp.kvdm.xml"));
}

TEST_F(SidecarMetadataTest, DamagedMetadataAreNamed) {
  world_.files->AddFile(kSidecar, "<LAYERMETADATA>");
  try {
    metadata_->ReadDocument();
    ADD_FAILURE() << "a damaged file was read";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number(), kAutomationFailure);
    EXPECT_THAT(error.what(), HasSubstr(kSidecar));
  }
}

TEST_F(SidecarMetadataTest, AnEntryWithoutAPathIsRefused) {
  world_.files->AddFile(kSidecar,
                        R"(<LAYERMETADATA><ENTRY TYPE="Null" VALUE=""/></LAYERMETADATA>)");
  EXPECT_RUNTIME_ERROR(metadata_->ReadDocument(), kAutomationFailure);
}

TEST_F(SidecarMetadataTest, AnOwnFileIsReplacedWithoutACopy) {
  metadata_->WriteDocument(SomeDocument());
  metadata_->WriteDocument(SomeDocument());
  EXPECT_THAT(world_.files->Tree("D:\\"), ElementsAre("stores.shp.xml"));
}

TEST_F(SidecarMetadataTest, DamagedMetadataAreKeptBeforeTheyAreReplaced) {
  world_.files->AddFile(kSidecar, "<LAYERMETADATA>");
  metadata_->WriteDocument(SomeDocument());
  EXPECT_EQ(Text("D:\\stores.shp.xml.bak"), "<LAYERMETADATA>");
  EXPECT_EQ(metadata_->ReadDocument()->EntryCount(), 2);
}

TEST_F(SidecarMetadataTest, EarlierCopiesAreNeverReplaced) {
  for (const std::string content : {"one", "two", "three"}) {
    world_.files->AddFile(kSidecar, "<LAYERMETADATA" + content);
    metadata_->WriteDocument(SomeDocument());
  }
  EXPECT_EQ(Text("D:\\stores.shp.xml.bak"), "<LAYERMETADATAone");
  EXPECT_EQ(Text("D:\\stores.shp.xml.bak1"), "<LAYERMETADATAtwo");
  EXPECT_EQ(Text("D:\\stores.shp.xml.bak2"), "<LAYERMETADATAthree");
}

TEST_F(SidecarMetadataTest, AFileThatFailedToBeReadIsNotReplaced) {
  metadata_->WriteDocument(SomeDocument());
  const std::string before = Text(kSidecar);
  const auto counter = std::make_shared<FailureCounter>();
  counter->fail_at = 1;
  auto services = world_.Bundle();
  services.files = std::make_shared<FailingFileSystem>(world_.files, counter);
  const auto metadata = MakeSidecarMetadata(services, "D:\\stores.shp");

  EXPECT_RUNTIME_ERROR(metadata->ReadDocument(), kPermissionDenied);
  EXPECT_RUNTIME_ERROR(metadata->WriteDocument(std::make_shared<ValueSet>()), kPermissionDenied);
  EXPECT_EQ(Text(kSidecar), before);

  // Read at last, it is known what to keep.
  EXPECT_EQ(metadata->ReadDocument()->EntryCount(), 2);
  metadata->WriteDocument(std::make_shared<ValueSet>());
  EXPECT_NE(Text(kSidecar), before);
}

TEST_F(SidecarMetadataTest, AFileThatCannotBeKeptStays) {
  world_.files->AddFile(kSidecar, "<LAYERMETADATA>");
  world_.files->RefuseWrites("D:\\");
  EXPECT_RUNTIME_ERROR(metadata_->WriteDocument(SomeDocument()), kPermissionDenied);
  EXPECT_EQ(Text(kSidecar), "<LAYERMETADATA>");
}

}  // namespace
}  // namespace kvdm
