// What every host and its property sets do.
#include <gtest/gtest.h>

#include <kvdm/platform/portable/properties_host.h>

#include "platform/memory/failing_services.h"
#include "tests/contract/implementations.h"

namespace kvdm {
namespace {

std::shared_ptr<Host> MakeProperties() { return std::make_shared<PropertiesHost>(); }

std::shared_ptr<Host> MakeWrapped() {
  return std::make_shared<FailingHost>(MakeProperties(), std::make_shared<FailureCounter>());
}

class HostContractTest : public testing::TestWithParam<Implementation<Host>> {
 protected:
  std::shared_ptr<Host> host_ = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(All, HostContractTest,
                         testing::Values(Implementation<Host>{"Properties", MakeProperties},
                                         Implementation<Host>{"Wrapped", MakeWrapped}),
                         kByName);

TEST_P(HostContractTest, APropertyThatIsNotSetIsEmpty) {
  EXPECT_TRUE(host_->Settings()->GetProperty("VELKKVDirectory").IsEmpty());
}

TEST_P(HostContractTest, APropertyKeepsItsValue) {
  host_->Settings()->SetProperty("VELKKVDirectory", "D:\\Work");
  EXPECT_EQ(host_->Settings()->GetProperty("VELKKVDirectory"), Value("D:\\Work"));
}

TEST_P(HostContractTest, SettingAgainReplaces) {
  host_->Settings()->SetProperty("Count", 1);
  host_->Settings()->SetProperty("Count", "two");
  EXPECT_EQ(host_->Settings()->GetProperty("Count"), Value("two"));
}

TEST_P(HostContractTest, NamesAreMatchedExactly) {
  host_->Settings()->SetProperty("Name", 1);
  EXPECT_TRUE(host_->Settings()->GetProperty("NAME").IsEmpty());
}

TEST_P(HostContractTest, TheTwoSetsAreApart) {
  host_->CurrentState()->SetProperty("Study Area Name", "North");
  EXPECT_TRUE(host_->Settings()->GetProperty("Study Area Name").IsEmpty());
  EXPECT_EQ(host_->CurrentState()->GetProperty("Study Area Name"), Value("North"));
}

}  // namespace
}  // namespace kvdm
