#include "platform/memory/failing_services.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include <kvdm/platform/portable/variant_list.h>

#include "platform/memory/memory_platform.h"
#include "tests/replacing_update.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using testing::IsEmpty;

class FailingServicesTest : public testing::Test {
 protected:
  // The next call is the one that fails.
  void FailNext() { counter_->fail_at = counter_->calls + 1; }

  MemoryPlatform world_;
  std::shared_ptr<FailureCounter> counter_ = std::make_shared<FailureCounter>();
  Platform failing_ = Failing(world_.Bundle(), counter_);
};

TEST_F(FailingServicesTest, ForwardsWithoutAChosenCall) {
  EXPECT_EQ(failing_.clock->Now(), world_.clock->Now());
  EXPECT_TRUE(failing_.registry->WriteText(kMachine, "Key", "Name", "text"));
  EXPECT_EQ(world_.registry->Read(kMachine, "Key", "Name")->data, "text");
  EXPECT_EQ(counter_->calls, 2);
}

TEST_F(FailingServicesTest, OnlyTheChosenCallFails) {
  counter_->fail_at = 2;
  EXPECT_NO_THROW(failing_.message_box->Show("1", "", MessageStyle::kPlain));
  EXPECT_RUNTIME_ERROR(failing_.message_box->Show("2", "", MessageStyle::kPlain),
                       kPermissionDenied);
  EXPECT_NO_THROW(failing_.message_box->Show("3", "", MessageStyle::kPlain));
  EXPECT_EQ(world_.box->Messages().size(), 2U);
}

TEST_F(FailingServicesTest, AllServicesShareTheCounter) {
  counter_->fail_at = 3;
  failing_.files->FolderExists("D:\\");
  failing_.clock->Now();
  EXPECT_RUNTIME_ERROR(failing_.gis_core->CreateIdentifier(), kPermissionDenied);
}

TEST_F(FailingServicesTest, TheRegistryCantBeReadAndRefusesWrites) {
  ASSERT_TRUE(failing_.registry->WriteText(kMachine, "Key", "Name", "old"));
  FailNext();
  EXPECT_RUNTIME_ERROR(static_cast<void>(failing_.registry->Read(kMachine, "Key", "Name")),
                       kPermissionDenied);
  FailNext();
  EXPECT_FALSE(failing_.registry->WriteText(kMachine, "Key", "Name", "new"));
  FailNext();
  EXPECT_FALSE(failing_.registry->Update(kMachine, "Key", "Name", Replacing("new")));
  EXPECT_EQ(world_.registry->Read(kMachine, "Key", "Name")->data, "old");
}

TEST_F(FailingServicesTest, EveryOtherCallFailsWithAnError) {
  const auto core = failing_.gis_core;
  const auto identifier = core->CreateIdentifier();
  const auto set = core->CreateNamedValueSet();
  const auto manager = failing_.siblings->CreateDatasetManager();
  const auto texts = failing_.siblings->CreateResourceFinder();
  FailingVariantStream stream(std::make_shared<VariantList>(), counter_);
  const std::function<void()> calls[] = {
      [&] { failing_.clock->Now(); },
      [&] { core->CreateIdentifier(); },
      [&] { core->CreateNamedValueSet(); },
      [&] { identifier->Generate(); },
      [&] { static_cast<void>(identifier->GetValue()); },
      [&] { identifier->PutValue("x"); },
      [&] { set->GetValues("x"); },
      [&] { set->PutValue("x", 1); },
      [&] { set->ListAll(); },
      [&] { set->EntryCount(); },
      [&] { set->PrepareForUpdate(); },
      [&] { failing_.siblings->CreateDatasetManager(); },
      [&] { failing_.siblings->CreateResourceFinder(); },
      [&] { manager->Initialize(); },
      [&] { texts->FindString("101"); },
      [&] { stream.Write(1); },
      [&] { stream.Read(); },
  };
  for (const auto& call : calls) {
    FailNext();
    EXPECT_RUNTIME_ERROR(call(), kPermissionDenied);
  }
}

class NoHandler : public XmlHandler {
 public:
  bool StartElement(std::string_view /*tag*/, Attributes /*attributes*/) override { return true; }
  bool EndElement() override { return true; }
  bool Characters(std::string_view /*text*/) override { return true; }
  bool Comment(std::string_view /*text*/) override { return true; }
  bool Instruction(std::string_view /*target*/, std::string_view /*data*/) override { return true; }
};

TEST_F(FailingServicesTest, AFailingParseAnswersFalse) {
  NoHandler handler;
  FailNext();
  EXPECT_FALSE(failing_.xml_parser->Parse("<A/>", XmlEncoding::kUtf8, handler));
  EXPECT_TRUE(failing_.xml_parser->Parse("<A/>", XmlEncoding::kUtf8, handler));
}

TEST_F(FailingServicesTest, ALayersDocumentIsWrappedOnlyOnce) {
  FailingLayerMetadata metadata(std::make_shared<MemoryLayerMetadata>(), counter_);
  EXPECT_EQ(metadata.ReadDocument(), nullptr);
  metadata.WriteDocument(failing_.gis_core->CreateNamedValueSet());
  metadata.WriteDocument(metadata.ReadDocument());
  const auto document = metadata.ReadDocument();
  const int before = counter_->calls;
  document->PutValue("x", 1);
  EXPECT_EQ(counter_->calls, before + 1);
}

}  // namespace
}  // namespace kvdm
