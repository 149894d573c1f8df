#include "safety/check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "checked_world.h"

namespace kvdm {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

struct CheckTest : testing::Test, CheckedWorld {
  // Whether the rule finds just this, and its repair leaves nothing of it.
  void ExpectMended(const std::string& rule, const std::string& found) {
    EXPECT_THAT(Found({rule}), ElementsAre(found));
    EXPECT_THAT(Mend(rule), Not(IsEmpty()));
    EXPECT_THAT(Found({rule}), IsEmpty());
  }
};

TEST_F(CheckTest, FindsNothingWhereAllIsWell) { EXPECT_THAT(Found(), IsEmpty()); }

TEST_F(CheckTest, HasEachRuleOnce) {
  std::set<std::string_view> names;
  for (const Rule* rule : Rules()) {
    EXPECT_TRUE(names.insert(rule->name).second) << rule->name;
    EXPECT_TRUE(rule->why.ends_with('.')) << rule->name;
    EXPECT_EQ(rule->repair.empty(), rule->mend == nullptr) << rule->name;
  }
}

TEST_F(CheckTest, ChoosesRulesByNameOrGroup) {
  EXPECT_THAT(RulesNamed({"guid", "name.duplicate"}), SizeIs(3));
  EXPECT_THROW(static_cast<void>(RulesNamed({"gui"})), Failure);
}

TEST_F(CheckTest, NamesTheCommandThatMends) {
  memory.files->RemoveTree(R"(D:\Work\Analyses\Rent)");
  EXPECT_EQ(Findings("folder.missing").front().command, "doctor --fix folder.missing");
  subject.stored.catalogue.clear();
  EXPECT_EQ(Findings("catalogue.empty").front().command, "adopt");
}

TEST_F(CheckTest, PutsErrorsFirst) {
  InMetadata("<DATACOLLECTION>", "<DATACOLLECTION><ODD/>");
  InMetadata(" GUID=\"{00000000-0000-4000-8000-00000000000E}\"", "");
  EXPECT_THAT(Found(),
              ElementsAre("error attribute.missing data item Streets", "warning element.unknown"));
}

// The registry and the documents.

TEST_F(CheckTest, RegistryThatIsNoDatabase) {
  subject.has_catalogue = false;
  subject.stored.catalogue.clear();
  subject.condition = {RegistryState::kNotADatabase, "file is not a database"};
  EXPECT_THAT(Found(), ElementsAre("error registry.not-a-database"));
  EXPECT_EQ(Findings("registry").front().command, "catalogue renew");
}

TEST_F(CheckTest, RegistryInOtherStates) {
  subject.condition = {RegistryState::kNewer, "version 9"};
  EXPECT_THAT(Found({"registry"}), ElementsAre("error registry.newer"));
  subject.condition = {RegistryState::kForbidden, "permission denied"};
  EXPECT_THAT(Found({"registry"}), ElementsAre("error registry.unreadable"));
  subject.condition = {RegistryState::kReadOnly, "permission denied"};
  EXPECT_THAT(Found({"registry"}), ElementsAre("warning registry.read-only"));
}

TEST_F(CheckTest, CatalogueThatDoesNotParse) {
  subject.kept = {{"2026-11-01T09:00:00Z", {RegistryType::kText, subject.stored.catalogue}},
                  {"2026-11-02T09:00:00Z", {RegistryType::kText, "<STUDYAREA/>"}}};
  const std::string good = subject.stored.catalogue;
  subject.stored.catalogue = "<STUDYAREACOLLECTION>";
  ExpectMended("catalogue.unparsable", "error catalogue.unparsable");
  EXPECT_EQ(subject.stored.catalogue, good);
}

TEST_F(CheckTest, CatalogueThatDoesNotParseAndWasNotKept) {
  subject.stored.catalogue = "text";
  ExpectMended("catalogue.unparsable", "error catalogue.unparsable");
  EXPECT_THAT(Found({"catalogue"}), ElementsAre("warning catalogue.empty"));
}

TEST_F(CheckTest, CatalogueOfAnotherKind) {
  subject.stored.catalogue = "<KVDATACOLLECTION/>";
  ExpectMended("catalogue.wrong-root", "error catalogue.wrong-root");
}

TEST_F(CheckTest, CatalogueStatesThatWereKept) {
  subject.kept = {{"2026-11-01T09:00:00Z", {RegistryType::kText, "<STUDYAREA/>"}}};
  EXPECT_THAT(Found(), ElementsAre("note catalogue.kept"));
}

TEST_F(CheckTest, CatalogueWithoutTheFoldersThereAre) {
  subject.stored.catalogue = "<STUDYAREACOLLECTION/>";
  EXPECT_THAT(Findings("catalogue.empty").front().sentence, HasSubstr("North"));
}

TEST_F(CheckTest, ProjectThatDoesNotParse) {
  subject.previous = subject.stored;
  subject.stored.metadata = "<KVDATACOLLECTION>";
  ExpectMended("project.unparsable", "error project.unparsable");
  EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(CheckTest, ProjectThatCantBeRead) {
  subject.previous = subject.stored;
  subject.stored = {};
  subject.stored.catalogue = subject.previous->catalogue;
  subject.problem = "Its checksum does not match.";
  EXPECT_THAT(Found(), ElementsAre("error project.unparsable"));
  ExpectMended("project.unparsable", "error project.unparsable");
  EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(CheckTest, ProjectThatCantBeReadAndHasNoPreviousState) {
  subject.stored = {};
  subject.problem = "Its checksum does not match.";
  EXPECT_THAT(Mend("project.unparsable"), IsEmpty());
}

TEST_F(CheckTest, DocumentWithoutACollection) {
  subject.stored.metadata = "<KVDATACOLLECTION><DATACOLLECTION/></KVDATACOLLECTION>";
  EXPECT_THAT(Found({"project"}), SizeIs(3));
  EXPECT_THAT(Mend("project.missing-collection", true), SizeIs(3));
  EXPECT_THAT(Found({"project"}), IsEmpty());
}

TEST_F(CheckTest, CharactersThatXmlCantHold) {
  for (const char* bad : {"\x01", "&#x1f;", "&#2;", "&#xFFFF;", "\xEF\xBF\xBF"}) {
    const Holdings before = subject.stored;
    InMetadata("_Sales_", std::string("_Sal") + bad + "es_");
    EXPECT_THAT(Found(), ElementsAre("error xml.illegal-character", "error project.unparsable"))
        << bad;
    EXPECT_THAT(Mend("xml.illegal-character"), SizeIs(1));
    EXPECT_THAT(Found({"xml", "project"}), IsEmpty());
    EXPECT_THAT(subject.stored.metadata, HasSubstr("_Sal\xEF\xBF\xBD"
                                                   "es_"));
    subject.stored = before;
  }
}

TEST_F(CheckTest, CharactersInTheCatalogueThatXmlCantHold) {
  InCatalogue("_North_", "_No\x02rth_");
  ExpectMended("xml.illegal-character", "error xml.illegal-character");
}

TEST_F(CheckTest, ElementsThatNothingKnows) {
  InCatalogue("<STUDYAREACOLLECTION>", "<STUDYAREACOLLECTION><!--of a program--><ODD/>");
  EXPECT_THAT(Found(), ElementsAre("warning element.unknown"));
}

// Identifiers and names.

TEST_F(CheckTest, ItemWithoutAnIdentifierTakesThatOfItsMetadata) {
  InMetadata(" GUID=\"{00000000-0000-4000-8000-00000000000C}\"", "");
  ExpectMended("attribute.missing", "error attribute.missing analysis Sales");
  EXPECT_THAT(subject.stored.metadata, HasSubstr("00000000000C"));
}

TEST_F(CheckTest, ItemWithoutANameTakesThatOfItsMetadata) {
  InMetadata("NAME=\"_Rent_\" ", "");
  EXPECT_THAT(Mend("attribute.missing"), SizeIs(1));
  EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(CheckTest, ItemWithoutAFolderTakesThatOfItsLayer) {
  InMetadata(R"(DIRNAME="D:\Work\Analyses\Rent\" )", "");
  InMetadata(R"( LAYERFILE="D:\Work\StoreLayers\Stores.lyr")", "");
  EXPECT_THAT(Mend("attribute.missing"), SizeIs(2));
  EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(CheckTest, TwoItemsWithOneIdentifier) {
  InMetadata("00000000000D", "00000000000C");
  EXPECT_THAT(Mend("guid.duplicate"), SizeIs(2));  // and its metadata
  EXPECT_THAT(Found(), IsEmpty());
  EXPECT_THAT(subject.stored.metadata,
              HasSubstr(R"("_Sales_" GUID="{00000000-0000-4000-8000-00000000000C}")"));
}

TEST_F(CheckTest, TheYoungerOfTwoItemsGetsANewIdentifier) {
  InMetadata("11/1/2026 9:00:00 AM\"/><ANALYSIS", "11/3/2026 9:00:00 AM\"/><ANALYSIS");
  InMetadata("00000000000D", "00000000000C");
  EXPECT_THAT(Found({"guid.duplicate"}), ElementsAre("error guid.duplicate analysis Sales"));
}

TEST_F(CheckTest, ItemsOfTheProjectAndTheCatalogueWithOneIdentifier) {
  InMetadata("00000000000B", "00000000000F");
  EXPECT_THAT(Found({"guid"}), ElementsAre("error guid.duplicate store layer Stores"));
}

TEST_F(CheckTest, IdentifierOfAnotherForm) {
  InMetadata("{00000000-0000-4000-8000-00000000000E}", "streets");
  ExpectMended("guid.malformed", "warning guid.malformed data item Streets");
}

TEST_F(CheckTest, TwoItemsWithOneName) {
  InMetadata("_Rent_", "_Sales_");
  EXPECT_THAT(Found({"name"}), ElementsAre("warning name.duplicate analysis Sales"));
  EXPECT_EQ(Findings("name").front().command,
            "analysis rename {00000000-0000-4000-8000-00000000000D} NEW");
}

TEST_F(CheckTest, NamesThatDifferInCaseOnly) {
  InMetadata("_Rent_", "_SALES_");
  EXPECT_THAT(Found({"name"}), ElementsAre("warning name.case-only analysis SALES"));
}

TEST_F(CheckTest, NameWithADoubleQuote) {
  InMetadata("_Rent_", "_Re&quot;nt_");
  ExpectMended("name.unfindable", "error name.unfindable analysis Re\"nt");
  EXPECT_THAT(subject.stored.metadata, HasSubstr("_Re'nt_"));
}

TEST_F(CheckTest, NameWithoutUnderscoresIsSafeToMend) {
  InMetadata("_Rent_", "Rent");
  EXPECT_THAT(Found({"name"}), ElementsAre("error name.unfindable analysis Rent"));
  EXPECT_THAT(Mend("name.unfindable", true), SizeIs(1));
  EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(CheckTest, NameWithADoubleQuoteIsNotSafeToMend) {
  InMetadata("_Rent_", "_Re&quot;nt_");
  EXPECT_THAT(Mend("name.unfindable", true), IsEmpty());
}

TEST_F(CheckTest, OpenStudyAreaStaysOpenUnderItsNewName) {
  InCatalogue("_North_", "_No&quot;rth_");
  subject.stored.state[kOpenAreaProperty] = "No\"rth";
  Mend("name.unfindable");
  EXPECT_THAT(Found({"current-area", "name"}), IsEmpty());
}

TEST_F(CheckTest, NameThatIsLeftOutOfTheList) {
  InCatalogue("_North_", "_Default_");
  EXPECT_THAT(Found({"name"}), ElementsAre("note name.reserved study area Default"));
}

}  // namespace
}  // namespace kvdm
