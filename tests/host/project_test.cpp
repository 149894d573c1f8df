#include "host/project.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <cmath>
#include <limits>

#include "safety/json.h"
#include "safety/result.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

Project SomeProject() {
  Project project;
  project.settings["VELKKVDirectory"] = "Z:\\Data";
  project.state["Study Area Name"] = "Nörd";
  project.drives['D'] = "/srv/data";
  project.values = {"<A>\r\n<B C=\"d\"/></A>"};
  return project;
}

std::string WithReplaced(std::string text, std::string_view from, std::string_view to) {
  return text.replace(text.find(from), from.size(), to);
}

std::string ProblemOf(const std::string& text) {
  try {
    static_cast<void>(ParseProject(text));
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.code(), ExitCode::kUnreadable);
    return failure.what();
  }
  return "none";
}

TEST(ProjectTest, ComesBackAsItWasWritten) {
  const Project project = SomeProject();

  const Project read = ParseProject(ProjectText(project));

  EXPECT_EQ(read.settings, project.settings);
  EXPECT_EQ(read.state, project.state);
  EXPECT_EQ(read.drives, project.drives);
  EXPECT_EQ(read.values, project.values);
}

// A change of the text with the checksum that belongs to it.
std::string WithChecksum(std::string text, std::string_view from, std::string_view to) {
  Project changed;
  text = WithReplaced(std::move(text), from, to);
  const std::string problem = ProblemOf(text);
  EXPECT_THAT(problem, HasSubstr("checksum"));
  changed.source = text;
  changed.values = {"<other/>"};
  return ProjectText(changed);
}

TEST(ProjectTest, KeepsFurtherObjectsAsTheyAre) {
  const std::string further = R"({"id": "KVDM.KVDataManager", "values": [{"type": "?"}], "x": 1})";
  const std::string text =
      WithChecksum(ProjectText(SomeProject()), "]\n    }\n  ]", "]\n    }, " + further + "]");

  Project project = ParseProject(text);
  EXPECT_THAT(project.values, ElementsAre(Value("<other/>")));
  project.values = {"<new/>", "second"};
  const std::string saved = ProjectText(project);

  EXPECT_THAT(saved, HasSubstr(R"("type": "?")"));
  EXPECT_THAT(saved, HasSubstr(R"("x": 1)"));
  EXPECT_THAT(ParseProject(saved).values, ElementsAre(Value("<new/>"), Value("second")));
}

TEST(ProjectTest, RefusesWhatIsNestedTooDeeply) {
  const auto nested = [](std::size_t depth) {
    return R"({"x": )" + std::string(depth - 1, '[') + std::string(depth - 1, ']') + "}";
  };
  EXPECT_THAT(ProblemOf(nested(63)), HasSubstr("not a kvdm project"));
  EXPECT_THAT(ProblemOf(nested(64)), HasSubstr("not a kvdm project"));
  EXPECT_THAT(ProblemOf(nested(65)), HasSubstr("more than 64 arrays and objects"));
  EXPECT_THAT(ProblemOf(nested(200'000)), HasSubstr("more than 64 arrays and objects"));
}

TEST(ProjectTest, RefusesNumbersThatNoProgramHolds) {
  EXPECT_THAT(ProblemOf("{\"x\": " + std::string(5000, '9') + "}"), HasSubstr("too large"));
}

TEST(ProjectTest, KeepsEveryValueExactly) {
  const Value values[] = {
      Value(),
      Null(),
      true,
      false,
      std::numeric_limits<std::int32_t>::min(),
      0.1,
      -0.0,
      1e300,
      std::numeric_limits<double>::infinity(),
      DateTime{2026, 11, 15, 7, 35, 30},
      "",
      "plain\r\ntext\t\"quoted\"",
      "<A>\r\r\n\n> </A>\n",
      "<",
      std::string("<nul\0>", 6),
  };
  for (const Value& value : values) {
    Project project;
    project.values = {value};
    project.settings["key"] = value;

    const Project read = ParseProject(ProjectText(project));

    EXPECT_THAT(read.values, ElementsAre(value));
    EXPECT_EQ(read.settings.at("key"), value);
  }
}

TEST(ProjectTest, KeepsTheSignOfZeroAndNumbersThatAreNone) {
  Project project;
  project.values = {-0.0, std::nan("")};

  const auto values = ParseProject(ProjectText(project)).values;

  EXPECT_TRUE(std::signbit(std::get<double>(values[0].storage())));
  EXPECT_TRUE(std::isnan(std::get<double>(values[1].storage())));
}

TEST(ProjectTest, HasOneTextForEqualProjects) {
  const std::string text = ProjectText(SomeProject());

  EXPECT_EQ(ProjectText(ParseProject(text)), text);
}

TEST(ProjectTest, KeepsWhatItDoesNotKnow) {
  Project project;
  project.source = R"({"colour": {"deep": [1, 2.50]}, "drives": {}})";

  const std::string text = ProjectText(ParseProject(ProjectText(project)));

  EXPECT_THAT(text, HasSubstr("\"colour\": {\n    \"deep\": [\n      1,\n      2.5\n"));
}

TEST(ProjectTest, PutsEachXmlElementOnALine) {
  EXPECT_THAT(XmlLines("<?xml?>\r\n<A><B/>text</A>\r\n"),
              ElementsAre("<?xml?>\r\n", "<A>", "<B/>", "text</A>\r\n"));
}

TEST(ProjectTest, NoticesAnyChangeOfContent) {
  const std::string text = ProjectText(SomeProject());

  EXPECT_THAT(ProblemOf(WithReplaced(text, "Nörd", "Nord")), HasSubstr("checksum"));
  EXPECT_THAT(ProblemOf(WithReplaced(text, "<B C", "<B D")), HasSubstr("checksum"));
}

TEST(ProjectTest, DoesNotMindOtherLineEnds) {
  const std::string text = ProjectText(SomeProject());

  EXPECT_EQ(ProblemOf(WithReplaced(text, "{\n", "{\r\n\t")), "none");
}

TEST(ProjectTest, SaysWhatIsWrongWithATextThatIsNoProject) {
  const std::string text = ProjectText(SomeProject());

  EXPECT_THAT(ProblemOf(""), HasSubstr("well-formed"));
  EXPECT_THAT(ProblemOf(text.substr(0, 100)), HasSubstr("well-formed"));
  EXPECT_THAT(ProblemOf("\xff"), HasSubstr("well-formed"));
  EXPECT_THAT(ProblemOf("[]"), HasSubstr("not a kvdm project"));
  EXPECT_THAT(ProblemOf("{}"), HasSubstr("not a kvdm project"));
  EXPECT_THAT(ProblemOf(R"({"format": "other"})"), HasSubstr("not a kvdm project"));
  EXPECT_THAT(ProblemOf(WithReplaced(text, "\"version\": 1", "\"version\": 2")),
              HasSubstr("newer"));
}

TEST(ProjectTest, RefusesPartsOfTheWrongKind) {
  for (const char* part : {"settings", "state", "drives"}) {
    for (const Json& wrong : {Json(1), Json("text"), Json::array({1})}) {
      Json document = ParseJson(ProjectText(SomeProject()));
      document[part] = wrong;
      document["checksum"] = "";
      const std::string text = document.dump(2);
      const auto* bytes = reinterpret_cast<const Bytef*>(text.data());
      document["checksum"] = fmt::format("crc32:{:08x}", crc32_z(0, bytes, text.size()));

      EXPECT_THAT(ProblemOf(document.dump()), HasSubstr("wrong kind")) << part << wrong;
    }
  }
}

}  // namespace
}  // namespace kvdm
