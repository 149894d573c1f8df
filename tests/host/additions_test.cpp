#include "host/additions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "safety/result.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(CsvRowsTest, CutsFieldsAndLines) {
  EXPECT_THAT(
      CsvRows("file,name\r\na.shp,A\r\n\r\nb.shp\n"),
      ElementsAre(ElementsAre("file", "name"), ElementsAre("a.shp", "A"), ElementsAre("b.shp")));
  EXPECT_THAT(CsvRows("\xEF\xBB\xBF"
                      "file;name\n\"a;b\nc\";\"say \"\"hi\"\"\""),
              ElementsAre(ElementsAre("file", "name"), ElementsAre("a;b\nc", "say \"hi\"")));
  EXPECT_THAT(CsvRows("a,,c\n,"), ElementsAre(ElementsAre("a", "", "c"), ElementsAre("", "")));
  EXPECT_THAT(CsvRows(""), IsEmpty());
}

TEST(AdditionsTest, JudgesEachByItsFileAndName) {
  std::vector<Addition> additions = {{"Shops", R"(Z:\a\Shops.shp)"},
                                     {"Roads", R"(Z:\a\Roads.shp)"},
                                     {"Roads", R"(Z:\b\Roads.shp)"},
                                     {"Town", R"(Z:\a\Town.shp)"}};
  auto numbered = additions;
  Judge(additions, {R"(Z:\a\Shops.shp)"}, {"Shops", "Town"}, false);
  const auto states = [](const std::vector<Addition>& all) {
    std::vector<std::string> texts;
    for (const Addition& one : all) texts.push_back(one.name + " " + one.state);
    return texts;
  };
  EXPECT_THAT(states(additions),
              ElementsAre("Shops present", "Roads new", "Roads taken", "Town taken"));
  Judge(numbered, {R"(Z:\a\Shops.shp)"}, {"Shops", "Town"}, true);
  EXPECT_THAT(states(numbered),
              ElementsAre("Shops present", "Roads new", "Roads1 new", "Town1 new"));
}

TEST(AdditionsTest, ANameThatCannotBeFoundAgainIsRefused) {
  std::vector<Addition> additions = {{"a\"b", R"(Z:\a\b.shp)"}};
  EXPECT_THROW(Judge(additions, {}, {}, true), Failure);
}

}  // namespace
}  // namespace kvdm
