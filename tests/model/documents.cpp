#include "tests/model/documents.h"

namespace kvdm::model {
namespace {

constexpr char kGuid[] = "{00000000-0000-4000-8000-000000000001}";

NodeRef Parameter(const std::string& name, const std::string& value) {
  return MakeNode("PARAM", {{"NAME", name}, {"VALUE", value}});
}

NodeRef OddAnalyses() {
  const auto comments = MakeNode("COMMENTS", {}, {}, " one\ntwo ");
  return MakeNode(
      "ANALYSISCOLLECTION", {},
      {MakeNode("", {}, {}, "by hand"), MakeNode("OTHER", {{"NAME", "_North_"}}),
       MakeNode("ANALYSIS", {{"NAME", "North"}, {"GUID", kGuid}}),
       MakeNode("ANALYSIS", {{"GUID", "_x_"}, {"NAME", "_North_"}},
                {Parameter("North", "1"), comments, Parameter("North", "2"), MakeNode("OTHER")})});
}

NodeRef OddLayers() {
  return MakeNode("CUSTLAYERCOLLECTION", {},
                  {MakeNode("CUSTLAYER"),
                   MakeNode("CUSTLAYER", {{"NAME", "_North_"}, {"ISINTERNALDATA", "true"}},
                            {MakeNode("PARAM", {{"VALUE", "nameless"}}),
                             MakeNode("PARAM", {{"NAME", "North"}})})});
}

NodeRef StoreLayersWithFolder() {
  return MakeNode("STORELAYERCOLLECTION", {},
                  {MakeNode("STORELAYER", {{"NAME", "_"}, {"GUID", kGuid}, {"DIRNAME", "North"}})});
}

NodeRef GroupedDataItems() {
  return MakeNode(
      "DATACOLLECTION", {},
      {MakeNode(
           "SADATACOLLECTION", {},
           {MakeNode("DATAITEM",
                     {{"NAME", "_x_"}, {"GUID", kGuid}, {"FILE", "x"}, {"PATHTYPE", "relative"}}),
            MakeNode("DATAITEM"), MakeNode("DATAITEM", {{"NAME", "North"}})}),
       MakeNode("DATAITEM",
                {{"NAME", "_North_"}, {"GUID", kGuid}, {"FILE", "n"}, {"PATHTYPE", "relative"}})});
}

NodeRef DataItemGroup() {
  return MakeNode("KVDATACOLLECTION", {}, {GroupedDataItems(), OddAnalyses()});
}

NodeRef OddCatalogue() {
  return MakeNode(
      "STUDYAREACOLLECTION", {},
      {MakeNode("STUDYAREA", {{"NAME", "_North_"}, {"GUID", kGuid}, {"DIRNAME", "North"}}),
       MakeNode("STUDYAREA", {{"NAME", "_Default_"}, {"GUID", "_x_"}, {"DIRNAME", ""}},
                {MakeNode("SAPROPERTIES")}),
       MakeNode("STUDYAREA", {{"NAME", "_north_"}, {"GUID", "plain"}})});
}

GivenDocument Metadata(const NodeRef& root) { return {root, DocumentText(root, true)}; }
GivenDocument Catalogue(const NodeRef& root) { return {root, DocumentText(root, false)}; }

}  // namespace

const std::vector<GivenDocument>& Documents() {
  static const std::vector<GivenDocument> documents = {
      Metadata(MakeNode("KVDATACOLLECTION", {},
                        {GroupedDataItems(), OddAnalyses(), OddLayers(), StoreLayersWithFolder()})),
      Metadata(MakeNode("KVDATACOLLECTION")),
      Metadata(DataItemGroup()),
      {nullptr, "<KVDATACOLLECTION><CUSTLAYER"},
      {nullptr, ""}};
  return documents;
}

const std::vector<GivenDocument>& Catalogues() {
  static const std::vector<GivenDocument> catalogues = {
      Catalogue(OddCatalogue()),
      Catalogue(MakeNode("STUDYAREACOLLECTION", {},
                         {MakeNode("STUDYAREA", {{"NAME", "_North_"}}),
                          MakeNode("STUDYAREA", {{"GUID", kGuid}})})),
      {nullptr, "<STUDYAREACOLLECTION><STUDYAREA NAME=\"_No"},
      {nullptr, ""}};
  return catalogues;
}

}  // namespace kvdm::model
