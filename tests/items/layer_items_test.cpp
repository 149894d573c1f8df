// Customer and store layers: what they have in common, and where they differ.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "items/kv_layers.h"
#include "platform/xml/limits.h"
#include "tests/saves.h"
#include "tests/test_world.h"
#include "tests/throws_number.h"

namespace kvdm {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

struct Cust {
  using Layer = KVCustLayer;
  using Interface = IKVCustLayer;
  static constexpr char kCollectionTag[] = "CUSTLAYERCOLLECTION";
  static constexpr char kTag[] = "CUSTLAYER";
  static auto Get(TestWorld& world, const char* name) {
    return world.manager->CustLayerCollection()->GetCustLayer(name);
  }
};

struct Store {
  using Layer = KVStoreLayer;
  using Interface = IKVStoreLayer;
  static constexpr char kCollectionTag[] = "STORELAYERCOLLECTION";
  static constexpr char kTag[] = "STORELAYER";
  static auto Get(TestWorld& world, const char* name) {
    return world.manager->StoreLayerCollection()->GetStoreLayer(name);
  }
};

template <class Kind>
class LayerItemTest : public ::testing::Test {
 protected:
  // The layer A of a document in which its element has further attributes and content.
  auto Layer(const std::string& attributes = "", const std::string& content = "") {
    const std::string collection = Kind::kCollectionTag;
    const std::string tag = Kind::kTag;
    world.LoadMetadata("<R><" + collection + "><" + tag + R"( NAME="_A_" GUID="{1}" )" +
                       attributes + ">" + content + "</" + tag + "><" + tag +
                       R"( NAME="_Taken_"/></)" + collection + R"(><OTHERCOLLECTION/></R>)");
    return Kind::Get(world, "A");
  }

  TestWorld world;
};

using Kinds = ::testing::Types<Cust, Store>;
TYPED_TEST_SUITE(LayerItemTest, Kinds);

TYPED_TEST(LayerItemTest, ReadsItsAttributes) {
  const auto layer =
      this->Layer(R"(LAYERFILE="f" NAMEFIELD="n" IDFIELD="i" CREATIONTIME="t" STUDYAREANAME="s")",
                  "<COMMENTS>c</COMMENTS>");
  EXPECT_EQ(layer->Name(), "A");
  EXPECT_EQ(layer->GUID(), "{1}");
  EXPECT_EQ(layer->LayerFile(), "f");
  EXPECT_EQ(layer->NameField(), "n");
  EXPECT_EQ(layer->IDField(), "i");
  EXPECT_EQ(layer->CreationTime(), "t");
  EXPECT_EQ(layer->StudyAreaName(), "s");
  EXPECT_EQ(layer->Comments(), "c");
}

TYPED_TEST(LayerItemTest, MissingAttributesReadAsEmpty) {
  typename TypeParam::Layer layer(this->world.platform.gis_core);
  layer.AttachNode(xml::Element::Create(TypeParam::kTag));
  EXPECT_EQ(layer.Name(), "");
  EXPECT_EQ(layer.GUID(), "");
  EXPECT_EQ(layer.LayerFile(), "");
  EXPECT_EQ(layer.NameField(), "");
  EXPECT_EQ(layer.IDField(), "");
  EXPECT_EQ(layer.CreationTime(), "");
  EXPECT_EQ(layer.StudyAreaName(), "");
  EXPECT_EQ(layer.Comments(), "");
  EXPECT_FALSE(layer.IsInternalData());
}

TYPED_TEST(LayerItemTest, UnboundItAnswersWithNeutralResultsAndIgnoresSetters) {
  typename TypeParam::Layer layer(this->world.platform.gis_core);
  layer.SetName("A");
  layer.SetLayerFile("A");
  layer.SetNameField("A");
  layer.SetIDField("A");
  layer.SetCreationTime("A");
  layer.SetStudyAreaName("A");
  layer.SetComments("A");
  layer.SetIsInternalData(true);
  EXPECT_EQ(layer.Name(), "");
  EXPECT_EQ(layer.Comments(), "");
  EXPECT_FALSE(layer.IsInternalData());
  EXPECT_FALSE(layer.SetParameter("p", "1"));
  EXPECT_EQ(layer.GetParameter("p"), "");
  EXPECT_EQ(layer.ParametersList(), nullptr);
  EXPECT_FALSE(layer.ClearParametersList());
}

TYPED_TEST(LayerItemTest, UnwrapsOnlyAWrappedName) {
  const struct {
    const char* stored;
    const char* name;
  } rows[] = {{"_", "_"}, {"__", ""}, {"a_", "a_"}, {"_a", "_a"}, {"_a_", "a"}, {"__x__", "_x_"}};
  const auto element = xml::Element::Create(TypeParam::kTag);
  typename TypeParam::Layer layer(this->world.platform.gis_core);
  layer.AttachNode(element);
  for (const auto& row : rows) {
    element->SetAttribute("NAME", row.stored);
    EXPECT_EQ(layer.Name(), row.name) << row.stored;
  }
}

TYPED_TEST(LayerItemTest, RenamesToAFreeNameAndSaves) {
  const auto layer = this->Layer();
  EXPECT_TRUE(Saves(this->world, [&] { layer->SetName("B"); }));
  EXPECT_EQ(layer->Name(), "B");
  EXPECT_THAT(this->world.Metadata(), HasSubstr(R"(NAME="_B_")"));
}

TYPED_TEST(LayerItemTest, KeepsItsNameSilentlyWhenTheNewOneIsTaken) {
  const auto layer = this->Layer();
  EXPECT_FALSE(Saves(this->world, [&] { layer->SetName("Taken"); }));
  EXPECT_EQ(layer->Name(), "A");
  EXPECT_THAT(this->world.Messages(), IsEmpty());
}

TYPED_TEST(LayerItemTest, ARenameThatFailsReachesTheCaller) {
  const auto layer = this->Layer();
  EXPECT_RUNTIME_ERROR(layer->SetName("a\"b"), kAutomationFailure);
  EXPECT_EQ(layer->Name(), "A");
  typename TypeParam::Layer alone(this->world.platform.gis_core);
  alone.AttachNode(xml::Element::Create(TypeParam::kTag));
  EXPECT_RUNTIME_ERROR(alone.SetName("B"), kObjectNotSet);
  EXPECT_THAT(this->world.Messages(), IsEmpty());
}

TYPED_TEST(LayerItemTest, SetsAndSavesFieldsFileAndComments) {
  const auto layer = this->Layer();
  EXPECT_TRUE(Saves(this->world, [&] { layer->SetLayerFile("f"); }));
  EXPECT_TRUE(Saves(this->world, [&] { layer->SetNameField("n"); }));
  EXPECT_TRUE(Saves(this->world, [&] { layer->SetIDField("i"); }));
  EXPECT_TRUE(Saves(this->world, [&] { layer->SetComments("c"); }));
  EXPECT_EQ(layer->LayerFile(), "f");
  EXPECT_EQ(layer->NameField(), "n");
  EXPECT_EQ(layer->IDField(), "i");
  EXPECT_EQ(layer->Comments(), "c");
}

TYPED_TEST(LayerItemTest, SetsWithoutSavingTimeStudyAreaAndInternalData) {
  const auto layer = this->Layer();
  EXPECT_FALSE(Saves(this->world, [&] {
    layer->SetCreationTime("t");
    layer->SetStudyAreaName("_s_");
    layer->SetIsInternalData(true);
  }));
  EXPECT_EQ(layer->CreationTime(), "t");
  EXPECT_EQ(layer->StudyAreaName(), "_s_");
  EXPECT_TRUE(layer->IsInternalData());
  EXPECT_THAT(this->world.Metadata(),
              HasSubstr(R"(CREATIONTIME="t" STUDYAREANAME="_s_" ISINTERNALDATA="TRUE")"));
  layer->SetIsInternalData(false);
  EXPECT_THAT(this->world.Metadata(), HasSubstr(R"(ISINTERNALDATA="FALSE")"));
}

TYPED_TEST(LayerItemTest, InternalDataIsTheExactTextTrue) {
  const struct {
    const char* stored;
    bool internal;
  } rows[] = {{"TRUE", true}, {"true", false}, {"True", false}, {"TRUE ", false},
              {"-1", false},  {"", false},     {"FALSE", false}};
  for (const auto& row : rows) {
    EXPECT_EQ(this->Layer("ISINTERNALDATA='" + std::string(row.stored) + "'")->IsInternalData(),
              row.internal)
        << row.stored;
  }
}

TYPED_TEST(LayerItemTest, CommentsWidenLineEndsAndAreNeverTrimmed) {
  const auto layer = this->Layer();
  layer->SetComments(" a\r\nb\n ");
  EXPECT_EQ(layer->Comments(), " a\r\r\nb\r\n ");
  this->world.LoadMetadata(this->world.Metadata());
  EXPECT_EQ(TypeParam::Get(this->world, "A")->Comments(), " a\r\nb\r\n ");
}

TYPED_TEST(LayerItemTest, CommentsAreOneLastChild) {
  const auto layer = this->Layer("", "<PARAM NAME='p' VALUE='1'/>");
  layer->SetComments("a");
  layer->SetComments("b");
  EXPECT_THAT(this->world.Metadata(),
              HasSubstr(R"(<PARAM NAME="p" VALUE="1"/><COMMENTS>b</COMMENTS></)"));
}

TYPED_TEST(LayerItemTest, KeepsNamedParameters) {
  const auto layer = this->Layer("", "<COMMENTS>c</COMMENTS>");
  EXPECT_TRUE(Saves(this->world, [&] { EXPECT_TRUE(layer->SetParameter("p", "1")); }));
  EXPECT_TRUE(layer->SetParameter("q", "2"));
  EXPECT_TRUE(layer->SetParameter("p", "3"));
  EXPECT_EQ(layer->GetParameter("p"), "3");
  EXPECT_EQ(layer->GetParameter("P"), "");
  EXPECT_THAT(Texts(layer->ParametersList()), ElementsAre("p", "q"));
  EXPECT_TRUE(Saves(this->world, [&] { EXPECT_TRUE(layer->ClearParametersList()); }));
  EXPECT_THAT(Texts(layer->ParametersList()), IsEmpty());
  EXPECT_EQ(layer->Comments(), "c");
}

TYPED_TEST(LayerItemTest, TheFirstParameterOfANameCounts) {
  const auto layer = this->Layer(
      "",
      "<PARAM NAME='p' VALUE='1'/><X><PARAM NAME='deep'/></X><PARAM NAME='p' VALUE='2'/>"
      "<PARAM/>");
  EXPECT_TRUE(layer->SetParameter("p", "3"));
  EXPECT_EQ(layer->GetParameter("p"), "3");
  EXPECT_THAT(Texts(layer->ParametersList()), ElementsAre("p", "p", "(null)"));
  EXPECT_THAT(this->world.Metadata(), HasSubstr(R"(<PARAM NAME="p" VALUE="2"/>)"));
}

TYPED_TEST(LayerItemTest, AParameterWithoutValueReadsAsEmpty) {
  EXPECT_EQ(this->Layer("", "<PARAM NAME='p'/>")->GetParameter("p"), "");
}

TYPED_TEST(LayerItemTest, LayerEditSetsFileAndIdentifierAndSaves) {
  const auto layer = this->Layer(R"(PATHTYPE="RELATIVE")");
  const auto edit = Query<IKVLayerEdit>(layer);
  EXPECT_TRUE(Saves(this->world, [&] { edit->SetLayerFile("f"); }));
  EXPECT_TRUE(Saves(this->world, [&] { edit->SetGUID("{2}"); }));
  EXPECT_EQ(layer->LayerFile(), "f");
  EXPECT_EQ(layer->GUID(), "{2}");
  EXPECT_THAT(this->world.Metadata(), HasSubstr(R"(PATHTYPE="RELATIVE")"));
}

TYPED_TEST(LayerItemTest, LayerEditLeadsToTheOtherInterfacesOfItsLayer) {
  const auto layer = this->Layer();
  const auto edit = Query<IKVLayerEdit>(layer);
  EXPECT_EQ(Query<typename TypeParam::Interface>(edit), layer);
  EXPECT_EQ(Query<IKVMetadata>(edit), Query<IKVMetadata>(layer));
}

TYPED_TEST(LayerItemTest, LayerEditNeedsTheDataManagerAsWell) {
  const auto layer = std::make_shared<typename TypeParam::Layer>(this->world.platform.gis_core);
  const auto edit =
      Query<IKVLayerEdit>(std::static_pointer_cast<typename TypeParam::Interface>(layer));
  edit->SetGUID("{2}");
  layer->AttachNode(xml::Element::Create(TypeParam::kTag));
  edit->SetGUID("{2}");
  edit->SetLayerFile("f");
  EXPECT_EQ(layer->GUID(), "");
  EXPECT_EQ(layer->LayerFile(), "");
}

TYPED_TEST(LayerItemTest, WithoutADataManagerItWritesWithoutSaving) {
  const auto element = xml::Element::Create(TypeParam::kTag);
  typename TypeParam::Layer layer(this->world.platform.gis_core);
  layer.AttachNode(element);
  layer.SetNameField("n");
  EXPECT_TRUE(layer.SetParameter("p", "1"));
  EXPECT_EQ(layer.NameField(), "n");
  EXPECT_EQ(layer.GetParameter("p"), "1");
  EXPECT_RUNTIME_ERROR(layer.SetParameter("a\"b", "1"), kObjectNotSet);
}

TYPED_TEST(LayerItemTest, AValueTooLargeReachesTheCallerOnlyFromSettersThatSave) {
  const auto layer = this->Layer();
  const std::string huge(xml::kMaxValueBytes + 1, 'x');
  EXPECT_RUNTIME_ERROR(layer->SetNameField(huge), kOutOfMemory);
  EXPECT_RUNTIME_ERROR(layer->SetLayerFile(huge), kOutOfMemory);
  layer->SetStudyAreaName(huge);
  EXPECT_EQ(layer->StudyAreaName(), "");
  EXPECT_THAT(this->world.Messages(), IsEmpty());
}

// Where the two differ.

TEST(CustLayerTest, TheLinkFieldIsSetWithoutSaving) {
  TestWorld world;
  world.manager->CustLayerCollection()->CreateCustLayer("A");
  const auto layer = Cust::Get(world, "A");
  EXPECT_EQ(layer->LinkField(), "");
  EXPECT_FALSE(Saves(world, [&] { layer->SetLinkField("l"); }));
  EXPECT_EQ(layer->LinkField(), "l");
  EXPECT_THAT(world.Metadata(), HasSubstr(R"(LINKFIELD="l")"));
}

TEST(CustLayerTest, LeavesPathTypeAlone) {
  TestWorld world;
  world.manager->CustLayerCollection()->CreateCustLayer("A");
  Cust::Get(world, "A")->SetLayerFile("f");
  EXPECT_THAT(world.Metadata(), Not(HasSubstr("PATHTYPE")));
}

TEST(StoreLayerTest, AFileThatIsSetIsAbsolute) {
  TestWorld world;
  world.LoadMetadata(
      R"(<R><STORELAYERCOLLECTION><STORELAYER NAME="_A_"/><STORELAYER NAME="_B_" PATHTYPE="X"/>)"
      R"(</STORELAYERCOLLECTION></R>)");
  Store::Get(world, "A")->SetLayerFile("f");
  Store::Get(world, "B")->SetLayerFile("f");
  EXPECT_THAT(world.Metadata(),
              HasSubstr(R"(<STORELAYER NAME="_A_" LAYERFILE="f" PATHTYPE="ABSOLUTE"/>)"
                        R"(<STORELAYER NAME="_B_" PATHTYPE="ABSOLUTE" LAYERFILE="f"/>)"));
}

TEST(LayerItemsTest, TheNameOfALayerOfTheOtherKindIsFree) {
  TestWorld world;
  world.manager->CustLayerCollection()->CreateCustLayer("A");
  world.manager->StoreLayerCollection()->CreateStoreLayer("B");
  Cust::Get(world, "A")->SetName("B");
  EXPECT_NE(Cust::Get(world, "B"), nullptr);
  Store::Get(world, "B")->SetName("A");
  EXPECT_NE(Store::Get(world, "A"), nullptr);
}

TEST(CustLayerTest, AParameterThatCannotBeSetEndsIn438) {
  TestWorld world;
  world.manager->CustLayerCollection()->CreateCustLayer("A");
  try {
    Cust::Get(world, "A")->SetParameter("a\"b", "1");
    FAIL() << "no error";
  } catch (const RuntimeError& error) {
    EXPECT_EQ(error.number(), kMemberNotSupported);
    EXPECT_EQ(error.unsent_message(), "Error while setting parameter of analysis");
  }
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StoreLayerTest, AParameterThatCannotBeSetIsShown) {
  TestWorld world;
  world.manager->StoreLayerCollection()->CreateStoreLayer("A");
  EXPECT_FALSE(Store::Get(world, "A")->SetParameter("a\"b", "1"));
  EXPECT_THAT(world.Messages(), ElementsAre("Error while setting parameter of analysis"));
}

TEST(CustLayerTest, AFailedLayerEditEndsIn438) {
  TestWorld world;
  world.manager->CustLayerCollection()->CreateCustLayer("A");
  const auto edit = Query<IKVLayerEdit>(Cust::Get(world, "A"));
  const std::string huge(xml::kMaxValueBytes + 1, 'x');
  EXPECT_RUNTIME_ERROR(edit->SetLayerFile(huge), kMemberNotSupported);
  EXPECT_RUNTIME_ERROR(edit->SetGUID(huge), kMemberNotSupported);
  EXPECT_THAT(world.Messages(), IsEmpty());
}

TEST(StoreLayerTest, AFailedLayerEditIsShownInTheWordsOfTheCustomerLayer) {
  TestWorld world;
  world.manager->StoreLayerCollection()->CreateStoreLayer("A");
  const auto edit = Query<IKVLayerEdit>(Store::Get(world, "A"));
  const std::string huge(xml::kMaxValueBytes + 1, 'x');
  edit->SetLayerFile(huge);
  edit->SetGUID(huge);
  EXPECT_THAT(world.Messages(),
              ElementsAre("Kelvaro Data Manager: Couldn't change the Customer Layer layer file",
                          "Kelvaro Data Manager: Couldn't change the Customer Layer GUID"));
}

}  // namespace
}  // namespace kvdm
