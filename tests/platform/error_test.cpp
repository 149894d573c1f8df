#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>

#include <kvdm/platform/error.h>

namespace kvdm {
namespace {

using testing::ElementsAre;

std::vector<std::int32_t> ChainOf(const std::function<void()>& fails) {
  std::vector<std::int32_t> numbers;
  try {
    fails();
  } catch (const std::exception& error) {
    for (const auto& link : ErrorChain(error)) numbers.push_back(link.number());
  }
  return numbers;
}

[[noreturn]] void Wrap(const std::function<void()>& inner, std::int32_t number) {
  try {
    inner();
  } catch (...) {
    std::throw_with_nested(RuntimeError(number));
  }
  throw std::logic_error("the inner step did not fail");
}

void MissingPath() { throw RuntimeError(kPathNotFound); }

TEST(ErrorChainTest, OfASingleErrorIsThatError) {
  const auto chain = ErrorChain(RuntimeError(kOverflow, "KVDM", "too many", "unsent"));
  ASSERT_EQ(chain.size(), 1U);
  EXPECT_EQ(chain[0].number(), kOverflow);
  EXPECT_EQ(chain[0].source(), "KVDM");
  EXPECT_STREQ(chain[0].what(), "too many");
  EXPECT_EQ(chain[0].unsent_message(), "unsent");
}

TEST(ErrorChainTest, GoesFromTheOutermostErrorToItsFirstCause) {
  const auto twice = [] { Wrap([] { Wrap(MissingPath, kObjectNotSet); }, kMemberNotSupported); };
  EXPECT_THAT(ChainOf(twice), ElementsAre(kMemberNotSupported, kObjectNotSet, kPathNotFound));
}

TEST(ErrorChainTest, GivesForeignErrorsANumber) {
  EXPECT_THAT(ChainOf([] { throw std::runtime_error("x"); }), ElementsAre(kAutomationFailure));
  EXPECT_THAT(ChainOf([] { Wrap([] { throw std::bad_alloc(); }, kMemberNotSupported); }),
              ElementsAre(kMemberNotSupported, kOutOfMemory));
  EXPECT_THAT(ChainOf([] { Wrap([] { throw 1; }, kMemberNotSupported); }),
              ElementsAre(kMemberNotSupported, kAutomationFailure));
}

TEST(ErrorChainTest, EndsAtAnErrorThatWasNestedInNothing) {
  EXPECT_THAT(ChainOf([] { std::throw_with_nested(RuntimeError(kOverflow)); }),
              ElementsAre(kOverflow));
}

}  // namespace
}  // namespace kvdm
