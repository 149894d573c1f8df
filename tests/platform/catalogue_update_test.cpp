// What becomes of a stored catalogue when a data manager writes what it changed.
#include "platform/portable/catalogue_update.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "platform/memory/memory_platform.h"
#include "platform/xml/limits.h"
#include "platform/xml_parser.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Outcome = TextUpdate::Outcome;
using Piece = TextUpdate::Piece;

std::string List(const std::string& areas) {
  return "<STUDYAREACOLLECTION>" + areas + "</STUDYAREACOLLECTION>\r\n";
}

RegistryValue Text(const std::string& text) { return {RegistryType::kText, text}; }

struct CatalogueUpdateTest : testing::Test {
  static bool IsAscii(char32_t character) { return character < 0x80; }

  CatalogueUpdate Update(const std::string& base, const std::string& wanted) {
    return {*parser, base, wanted, &IsAscii};
  }

  std::shared_ptr<XmlParser> parser = MakeXmlParser();
};

// A text that is replaced as a whole, or stays as a whole.
struct WholeText {
  std::string what;
  std::string base;
  std::string wanted;
  std::optional<RegistryValue> stored;
  std::string result;
  bool keeps_stored = false;
};

const std::string kOdd = "<?xml version='1.0'?>\n<L B='1'   A='2'><!--x--> <STUDYAREA/></L>";
const std::string kDamaged = "<L><STUDYAREA NAME=\"_North_\"/>";
const std::string kNew = "<L>\t<STUDYAREA  NAME='_South_' /></L>";

const WholeText kWholeTexts[] = {
    {"the base is stored", kOdd, kNew, Text(kOdd), kNew},
    {"the base is stored, and more after a NUL", kOdd, kNew, Text(kOdd + std::string("\0x", 2)),
     kNew},
    {"nothing is stored", kOdd, kNew, std::nullopt, kNew},
    {"an empty text is stored", kOdd, kNew, Text(""), kNew},
    {"a text that is empty up to its NUL is stored", kOdd, kNew, Text(std::string("\0<L/>", 5)),
     kNew},
    {"a damaged text is stored", kOdd, kNew, Text(kDamaged), kNew, true},
    {"a text without an element is stored", "", kNew, Text("<!--x-->"), kNew, true},
    {"a number is stored", kOdd, kNew, RegistryValue{RegistryType::kNumber, kOdd}, kNew, true},
    {"a text to expand is stored", "", kNew, RegistryValue{RegistryType::kExpandText, kOdd}, kNew,
     true},
    {"an empty text is wanted", kOdd, "", Text(kOdd), kOdd},
    {"an empty text is wanted where others wrote", "", "", Text(kOdd), kOdd},
    {"an empty text is wanted after a damaged one", kDamaged, "", Text(kDamaged), "", true},
};

TEST_F(CatalogueUpdateTest, ATextIsReplacedOrStaysAsAWhole) {
  for (const auto& [what, base, wanted, stored, result, keeps_stored] : kWholeTexts) {
    const CatalogueUpdate update = Update(base, wanted);
    const Outcome outcome = update.On(stored);
    EXPECT_EQ(outcome.text, result) << what;
    EXPECT_EQ(outcome.keeps_stored, keeps_stored) << what;
    EXPECT_THAT(outcome.kept, IsEmpty()) << what;
    EXPECT_THAT(update.Notes(), IsEmpty()) << what;
  }
}

// The study areas of three texts, what becomes of them, and what people are told.
struct Merge {
  std::string what;
  std::string base;
  std::string wanted;
  std::string stored;
  std::string result;
  std::vector<std::string> kept = {};
  std::vector<std::string> notes = {};
};

// Two study areas as they were, and changed.
const std::string kA = R"(<STUDYAREA NAME="_A_" GUID="{A}" DIRNAME="D:\A\"/>)";
const std::string kAOther = R"(<STUDYAREA NAME="_A_" GUID="{A}" DIRNAME="D:\A\" DATASET="x"/>)";
const std::string kARenamed = R"(<STUDYAREA NAME="_Alpha_" GUID="{A}" DIRNAME="D:\A\"/>)";
const std::string kARenamedOther =
    R"(<STUDYAREA NAME="_Alpha_" GUID="{A}" DIRNAME="D:\A\" DATASET="x"/>)";
const std::string kARenamedElse = R"(<STUDYAREA NAME="_Ay_" GUID="{A}" DIRNAME="D:\A\"/>)";
const std::string kB = R"(<STUDYAREA NAME="_B_" GUID="{B}" DIRNAME="D:\B\"/>)";
const std::string kC = R"(<STUDYAREA NAME="_C_" GUID="{C}" DIRNAME="D:\C\"/>)";

const std::string kToldTwice = "was changed elsewhere too; what was stored is kept in the history.";
const std::string kStaysChangedThere = "was changed elsewhere while it was deleted here; it stays.";
const std::string kStaysChangedHere = "was deleted elsewhere while it was changed here; it stays.";
const std::string kLosesFolder =
    "has a folder that belongs to another one now; it is kept in the history.";

const Merge kAreas[] = {
    {"added here, added there", kA, kA + kB, kA + kC, kA + kC + kB},
    {"added here, and nothing was ever read", "", kB, kA, kA + kB},
    {"deleted here, added there", kA + kB, kB, kA + kB + kC, kB + kC},
    {"deleted here and there", kA + kB, kB, kB + kC, kB + kC},
    {"changed here, another there", kA + kB, kARenamed + kB, kA + kB + kC, kARenamed + kB + kC},
    {"nothing was changed here", kA + kB, kA + kB, kAOther, kAOther},
    {"changed here, other attribute there", kA, kARenamed, kAOther, kARenamedOther},
    {"changed here and there to the same", kA, kARenamed, kARenamed + kB, kARenamed + kB},
    {"changed here and there to another",
     kA,
     kARenamed,
     kARenamedElse,
     kARenamed,
     {kARenamedElse},
     {"The study area Alpha {A} " + kToldTwice}},
    {"deleted here, changed there",
     kA + kB,
     kB,
     kAOther + kB,
     kAOther + kB,
     {},
     {"The study area A {A} " + kStaysChangedThere}},
    {"changed here, deleted there",
     kA + kB,
     kARenamed + kB,
     kB,
     kB + kARenamed,
     {},
     {"The study area Alpha {A} " + kStaysChangedHere}},
    {"added with a GUID that stands there", "", kA, kA, kA},
    {"added with a GUID that stands there, otherwise",
     kB,
     kB + kARenamed,
     kB + kAOther,
     kB + kARenamedOther,
     {kAOther},
     {"The study area Alpha {A} " + kToldTwice}},
    {"added with a name that stands there",
     "",
     R"(<STUDYAREA NAME="_A_" GUID="{B}" DIRNAME="D:\B\"/>)",
     kA,
     kA + R"(<STUDYAREA NAME="_A_" GUID="{B}" DIRNAME="D:\B\"/>)",
     {},
     {"The study area A {B} has the name of one that was added elsewhere."}},
};

// How study areas are told apart where the GUID does not do it.
const std::string kN = R"(<STUDYAREA NAME="_N_"/>)";
const std::string kN1 = R"(<STUDYAREA NAME="_N_" DATASET="1"/>)";
const std::string kN2 = R"(<STUDYAREA NAME="_N_" DATASET="2"/>)";
const std::string kN3 = R"(<STUDYAREA NAME="_N_" DATASET="3"/>)";
const std::string kTwin1 = R"(<STUDYAREA NAME="_T_" GUID="{T}" DATASET="1"/>)";
const std::string kTwin2 = R"(<STUDYAREA NAME="_T_" GUID="{T}" DATASET="2"/>)";
const std::string kTwin3 = R"(<STUDYAREA NAME="_T_" GUID="{T}" DATASET="3"/>)";
const std::string kU = R"(<STUDYAREA NAME="_U_" GUID="{T}"/>)";
const std::string kImported = R"(<STUDYAREA NAME="_A_" GUID="{I}" DIRNAME="D:\A\"/>)";
const std::string kImportedOther =
    R"(<STUDYAREA NAME="_A_" GUID="{I}" DIRNAME="D:\A\" DATASET="x"/>)";
const std::string kImportedRenamed = R"(<STUDYAREA NAME="_Alpha_" GUID="{I}" DIRNAME="D:\A\"/>)";
const std::string kImportedBoth =
    R"(<STUDYAREA NAME="_Alpha_" GUID="{I}" DIRNAME="D:\A\" DATASET="x"/>)";

const Merge kIdentities[] = {
    {"no GUID, changed here, another there", kN, kN1, kN + kA, kN1 + kA},
    {"no GUID, the first of a name deleted here", kN1 + kN2, kN2, kN1 + kN2 + kA, kN2 + kA},
    {"no GUID, the second of a name changed", kN1 + kN2, kN1 + kN3, kN1 + kN2 + kA, kN1 + kN3 + kA},
    {"no GUID, the first of a name deleted there", kN1 + kN2, kN1 + kN2 + kA, kN2, kN2 + kA},
    {"a GUID twice, one of them changed", kTwin1 + kTwin2, kTwin1 + kTwin3, kTwin1 + kTwin2 + kA,
     kTwin1 + kTwin3 + kA},
    {"a GUID twice, one of them deleted", kTwin1 + kU, kU, kTwin1 + kU + kA, kU + kA},
    {"a GUID that stands twice there", kTwin1, kTwin3, kTwin1 + kU, kTwin3 + kU},
    {"a GUID that was given here", kN + kB, R"(<STUDYAREA NAME="_N_" GUID="{N}"/>)" + kB, kN + kC,
     R"(<STUDYAREA NAME="_N_" GUID="{N}"/>)" + kC},
    {"a GUID that was given here with a dataset", kN,
     R"(<STUDYAREA NAME="_N_" GUID="{N}" DATASET="1"/>)", kN + kC,
     R"(<STUDYAREA NAME="_N_" GUID="{N}" DATASET="1"/>)" + kC},
    {"another GUID here", kA, kImported, kA + kB, kImported + kB},
    {"another GUID and name here", kA, kImportedRenamed, kA + kB, kImportedRenamed + kB},
    {"another GUID and name here, changed there", kA, kImportedRenamed, kAOther, kImportedBoth},
    {"another GUID there", kA, kARenamed, kImported, kImportedRenamed},
    {"another GUID there, deleted here",
     kA,
     "",
     kImported,
     kImported,
     {},
     {"The study area A {I} " + kStaysChangedThere}},
    {"two that differ in nothing but the GUID get others",
     kTwin1 + R"(<STUDYAREA NAME="_T_" GUID="{S}" DATASET="1"/>)",
     R"(<STUDYAREA NAME="_T_" GUID="{P}" DATASET="1"/><STUDYAREA NAME="_T_" GUID="{Q}" DATASET="1"/>)",
     kTwin1 + R"(<STUDYAREA NAME="_T_" GUID="{S}" DATASET="1"/>)" + kA,
     R"(<STUDYAREA NAME="_T_" GUID="{P}" DATASET="1"/><STUDYAREA NAME="_T_" GUID="{Q}" DATASET="1"/>)" +
         kA},
};

const std::string kAInC = R"(<STUDYAREA NAME="_A_" GUID="{A}" DIRNAME="D:\c"/>)";
const std::string kBInC = R"(<STUDYAREA NAME="_B_" GUID="{B}" DIRNAME="D:\C\"/>)";
const std::string kBInA = R"(<STUDYAREA NAME="_B_" GUID="{B}" DIRNAME="D:\A\"/>)";

const Merge kFolders[] = {
    {"added in a folder where another was added",
     "",
     kC,
     R"(<STUDYAREA NAME="_c_" GUID="{D}" DIRNAME="d:\c"/>)",
     kC,
     {R"(<STUDYAREA NAME="_c_" GUID="{D}" DIRNAME="d:\c"/>)"},
     {"The study area C {C} " + kToldTwice}},
    {"moved to a folder where another was added",
     kA,
     kAInC,
     kA + kC,
     kAInC,
     {kC},
     {"The study area C {C} " + kLosesFolder}},
    {"moved to a folder to which another was moved",
     kA + kB,
     kAInC + kB,
     kA + kBInC,
     kAInC,
     {kBInC},
     {"The study area B {B} " + kLosesFolder}},
    {"added in a folder to which another was moved",
     kB,
     kB + kC,
     kBInC,
     kC,
     {kBInC},
     {"The study area B {B} " + kLosesFolder}},
    {"two that shared a folder before", kA, kA + kBInA, kA + kC, kA + kC + kBInA},
};

// What stands in a study area, in the base, the wanted and the stored one, and what becomes of it.
std::string P(const std::string& name, const std::string& value) {
  return R"(<PROPERTY NAME=")" + name + R"(" VALUE=")" + value + R"("/>)";
}
std::string In(const std::string& content) {
  return R"(<STUDYAREA NAME="_A_" GUID="{A}">)" + content + "</STUDYAREA>";
}
std::string Properties(const std::string& properties) {
  return In("<SAPROPERTIES>" + properties + "</SAPROPERTIES>");
}
std::string Comments(const std::string& text) { return In("<COMMENTS>" + text + "</COMMENTS>"); }

const std::string kBoth = "The study area A {A} " + kToldTwice;

const Merge kContents[] = {
    {"properties added here and there", Properties(P("a", "1")),
     Properties(P("a", "1") + P("b", "2")), Properties(P("a", "1") + P("c", "3")),
     Properties(P("a", "1") + P("c", "3") + P("b", "2"))},
    {"the first property here and there", R"(<STUDYAREA NAME="_A_" GUID="{A}"/>)",
     Properties(P("a", "1")), Properties(P("b", "2")), Properties(P("b", "2") + P("a", "1"))},
    {"a property changed here, one there", Properties(P("a", "1") + P("b", "1")),
     Properties(P("a", "2") + P("b", "1")), Properties(P("a", "1") + P("b", "2")),
     Properties(P("a", "2") + P("b", "2"))},
    {"a property deleted here, one changed there", Properties(P("a", "1") + P("b", "1")),
     Properties(P("b", "1")), Properties(P("a", "1") + P("b", "2")), Properties(P("b", "2"))},
    {"a property deleted here, changed there", Properties(P("a", "1")), Properties(P("b", "1")),
     Properties(P("a", "2")), Properties(P("a", "2") + P("b", "1"))},
    {"a property changed here, deleted there", Properties(P("a", "1") + P("b", "1")),
     Properties(P("a", "2") + P("b", "1")), Properties(P("b", "1")),
     Properties(P("b", "1") + P("a", "2"))},
    {"a property changed here and there",
     Properties(P("a", "1")),
     Properties(P("a", "2")),
     Properties(P("a", "3")),
     Properties(P("a", "2")),
     {Properties(P("a", "3"))},
     {kBoth}},
    {"comments changed here, a property there", In("<COMMENTS>x</COMMENTS><SAPROPERTIES/>"),
     In("<COMMENTS>y</COMMENTS><SAPROPERTIES/>"),
     In("<COMMENTS>x</COMMENTS><SAPROPERTIES>" + P("a", "1") + "</SAPROPERTIES>"),
     In("<COMMENTS>y</COMMENTS><SAPROPERTIES>" + P("a", "1") + "</SAPROPERTIES>")},
    {"comments made here and there to the same", In("<X/>"), In("<X/><COMMENTS>y</COMMENTS>"),
     In("<X/><COMMENTS>y</COMMENTS><Z/>"), In("<X/><COMMENTS>y</COMMENTS><Z/>")},
    {"comments changed here and there",
     Comments("x"),
     Comments("y"),
     Comments("z"),
     Comments("y"),
     {Comments("z")},
     {kBoth}},
    {"comments emptied here, changed there",
     Comments("x"),
     In("<COMMENTS/>"),
     Comments("z"),
     In("<COMMENTS/>"),
     {Comments("z")},
     {kBoth}},
    {"an attribute deleted here, another changed there", In("<E A=\"1\" B=\"1\"/>"),
     In("<E B=\"1\"/>"), In("<E A=\"1\" B=\"2\"/>"), In("<E B=\"2\"/>")},
    {"an attribute deleted here, changed there",
     In("<E A=\"1\"/>"),
     In("<E/>"),
     In("<E A=\"2\"/>"),
     In("<E/>"),
     {In("<E A=\"2\"/>")},
     {kBoth}},
    {"foreign elements stay", In("<X><Y/></X>"), In("<X><Y/></X><COMMENTS>y</COMMENTS>"),
     In("<!--mine--><X><Y/><W>w</W></X><V/>"),
     In("<!--mine--><X><Y/><W>w</W></X><V/><COMMENTS>y</COMMENTS>")},
    {"the same in other words",
     R"(<STUDYAREA GUID='{A}'   NAME='_A_'> <E B="2" A="1"></E></STUDYAREA>)",
     R"(<STUDYAREA NAME="_A_" GUID="{A}"><E A='&#49;' B="2"/></STUDYAREA>)", In("<E A=\"3\"/>"),
     In("<E A=\"3\"/>")},
    {"deleted, and there its properties in another order", Properties(P("a", "1") + P("b", "1")),
     "", Properties(P("b", "1") + P("a", "1")) + kB, kB},
    {"deleted, and there the same in other words",
     R"(<STUDYAREA GUID='{A}' NAME='_A_'> <E B="2" A="1"></E></STUDYAREA>)", "",
     R"(<STUDYAREA NAME="_A_" GUID="{A}"><E A='&#49;' B="2"/></STUDYAREA>)" + kB, kB},
};

struct MergeTest : CatalogueUpdateTest {
  template <class Table>
  void Check(const Table& table) {
    for (const Merge& merge : table) {
      const CatalogueUpdate update = Update(List(merge.base), List(merge.wanted));
      // The tables show what study areas become; a space makes the stored text another one.
      const Outcome outcome = update.On(Text(List(merge.stored) + " "));
      EXPECT_EQ(outcome.text, List(merge.result)) << merge.what;
      EXPECT_FALSE(outcome.keeps_stored) << merge.what;
      std::vector<std::string> kept = merge.kept;
      for (std::string& element : kept) element += "\r\n";
      EXPECT_EQ(outcome.kept, kept) << merge.what;
      EXPECT_EQ(update.Notes(), merge.notes) << merge.what;
    }
  }
};

TEST_F(MergeTest, StudyAreasAreChangedOneByOne) { Check(kAreas); }

TEST_F(MergeTest, StudyAreasAreFoundWithoutTheirGuidToo) { Check(kIdentities); }

TEST_F(MergeTest, NoTwoStudyAreasComeToShareAFolder) { Check(kFolders); }

TEST_F(MergeTest, WhatStandsInAStudyAreaIsChangedOneByOne) { Check(kContents); }

TEST_F(MergeTest, TheRootAndWhatElseStandsUnderItStay) {
  const std::string before =
      "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<!--top-->\r\n"
      "<LIST A=\"1\">\r\n text<OTHER/><!--in-->";
  const Outcome outcome =
      Update("<LIST/>", "<LIST B=\"2\"><NEW/>" + kB + "</LIST>").On(Text(before + kA + "</LIST>"));
  EXPECT_EQ(outcome.text, before + kA + kB + "</LIST>\r\n");
}

TEST_F(MergeTest, WhatStandsAfterANulIsNoPartOfTheText) {
  const Outcome outcome = Update(List(kA), List(kA + kB) + '\0' + "x")
                              .On(Text(List(kA + kC) + std::string("\0<rest>", 7)));
  EXPECT_EQ(outcome.text, List(kA + kC + kB));
}

TEST_F(MergeTest, CharactersThatTheStoreLacksAreReferences) {
  const std::string there = "<STUDYAREA NAME=\"_\xC3\xA4_\" GUID=\"{A}\"/>";
  const Outcome outcome = Update(List("<STUDYAREA NAME=\"_a_\" GUID=\"{A}\"/>"),
                                 List("<STUDYAREA NAME=\"_\xC3\xB6_\" GUID=\"{A}\"/>"))
                              .On(Text(List(there)));
  EXPECT_EQ(outcome.text, List("<STUDYAREA NAME=\"_&#246;_\" GUID=\"{A}\"/>"));
  EXPECT_THAT(outcome.kept, ElementsAre("<STUDYAREA NAME=\"_&#228;_\" GUID=\"{A}\"/>\r\n"));
}

TEST_F(MergeTest, ATextThatIsTooLargeStaysAndIsAnError) {
  const std::string value(xml::kMaxValueBytes + 1, 'x');
  const CatalogueUpdate update = Update("", List(kA));
  EXPECT_RUNTIME_ERROR(
      static_cast<void>(update.On(Text("<L><STUDYAREA NAME=\"" + value + "\"/></L>"))),
      kOutOfMemory);
}

TEST_F(MergeTest, AWantedTextThatIsNoXmlIsAnError) {
  const CatalogueUpdate update = Update(List(kA), "<L>");
  EXPECT_RUNTIME_ERROR(static_cast<void>(update.On(Text(List(kB)))), kObjectNotSet);
}

TEST_F(MergeTest, NotesAreThoseOfTheLastOutcome) {
  const CatalogueUpdate update = Update(List(kA), List(kARenamed));
  static_cast<void>(update.On(Text(List(kARenamedElse))));
  ASSERT_EQ(update.Notes().size(), 1U);
  static_cast<void>(update.On(Text(List(kA))));
  EXPECT_THAT(update.Notes(), IsEmpty());
}

TEST_F(CatalogueUpdateTest, PiecesAreTheStudyAreasAndTheRest) {
  const CatalogueUpdate update =
      Update(List(kTwin1 + kA + kTwin2 + kN), "<!--top--><L A=\"1\">" + kB + "<X/></L>");
  EXPECT_THAT(update.Base(),
              ElementsAre(Piece{std::string("_T_\1") + "0", 0, kTwin1}, Piece{"{A}", 1, kA},
                          Piece{std::string("_T_\1") + "1", 2, kTwin2},
                          Piece{std::string("_N_\1") + "0", 3, kN},
                          Piece{"", 4, "<STUDYAREACOLLECTION/>\r\n"}));
  EXPECT_THAT(update.Wanted(), ElementsAre(Piece{"{B}", 0, kB},
                                           Piece{"", 1, "<!--top-->\r\n<L A=\"1\"><X/></L>\r\n"}));
}

TEST_F(CatalogueUpdateTest, ATextWithoutARootHasOnePieceWithoutText) {
  EXPECT_THAT(Update("", kDamaged).Base(), ElementsAre(Piece{"", 0, ""}));
  EXPECT_THAT(Update("", kDamaged).Wanted(), ElementsAre(Piece{"", 0, ""}));
}

TEST_F(CatalogueUpdateTest, ChangesNothingWhenTheStudyAreasAreTheSame) {
  EXPECT_TRUE(ChangesNothing(Update("", List(""))));
  EXPECT_TRUE(ChangesNothing(Update(List(kA), "<L X=\"1\">" + kA + "</L>")));
  EXPECT_FALSE(ChangesNothing(Update(List(kA), List(""))));
  EXPECT_FALSE(ChangesNothing(Update(List(kA), List(kARenamed))));
}

TEST(MakeCatalogueUpdateTest, IsTheDifferenceOnWhatIsStored) {
  MemoryPlatform platform;
  const std::string north = R"(<STUDYAREA NAME="_North_" GUID="{1}" DIRNAME="D:\N\"/>)";
  const std::string south = R"(<STUDYAREA NAME="_South_" GUID="{2}" DIRNAME="D:\S\"/>)";
  const auto update = MakeCatalogueUpdate(platform.Bundle(), List(""), List(north));
  const auto outcome = update->On(Text(List(south)));
  EXPECT_THAT(outcome.text, HasSubstr("_South_"));
  EXPECT_THAT(outcome.text, HasSubstr("_North_"));
}

}  // namespace
}  // namespace kvdm
