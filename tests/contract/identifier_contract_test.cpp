// What every source of identifiers does.
#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "platform/memory/memory_platform.h"
#include "tests/contract/implementations.h"

namespace kvdm {
namespace {

class IdentifierContractTest : public testing::TestWithParam<Implementation<GisCore>> {
 protected:
  std::shared_ptr<GisCore> gis_core_ = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(
    All, IdentifierContractTest,
    testing::Values(Implementation<GisCore>{"Memory", [] { return MemoryPlatform().gis_core; }},
                    Implementation<GisCore>{SystemName(),
                                            [] { return SystemPlatform().gis_core; }}),
    kByName);

TEST_P(IdentifierContractTest, GeneratesRegistryFormOfVersion4) {
  const std::regex form(
      R"(\{[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}\})");
  const auto identifier = gis_core_->CreateIdentifier();
  for (int i = 0; i < 100; ++i) {
    identifier->Generate();
    const std::string text = identifier->GetValue();
    EXPECT_TRUE(std::regex_match(text, form)) << text;
  }
}

TEST_P(IdentifierContractTest, NeverGeneratesTheSameTwice) {
  std::set<std::string> seen;
  for (int i = 0; i < 1000; ++i) {
    const auto identifier = gis_core_->CreateIdentifier();
    identifier->Generate();
    EXPECT_TRUE(seen.insert(identifier->GetValue()).second);
  }
}

TEST_P(IdentifierContractTest, HoldsAnyTextThatWasPut) {
  const auto identifier = gis_core_->CreateIdentifier();
  identifier->PutValue("KVDM.KVDataManager");
  EXPECT_EQ(identifier->GetValue(), "KVDM.KVDataManager");
}

TEST_P(IdentifierContractTest, ObjectsAreApart) {
  const auto one = gis_core_->CreateIdentifier();
  const auto other = gis_core_->CreateIdentifier();
  one->PutValue("one");
  other->PutValue("other");
  EXPECT_EQ(one->GetValue(), "one");
}

}  // namespace
}  // namespace kvdm
