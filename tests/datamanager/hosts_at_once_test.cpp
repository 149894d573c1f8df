// Three data managers change one list in random order; a model of maps tells what must be stored.
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "platform/xml/document.h"
#include "tests/test_world.h"
#include "util/registry_strings.h"

namespace kvdm {
namespace {

constexpr int kScenarios = 40;
constexpr int kSteps = 100;  // of a scenario

using Fields = std::map<std::string, std::string>;  // what a study area says, by field
using Areas = std::map<std::string, Fields>;        // by identifier

std::string TextOf(const xml::Element& element, const char* attribute) {
  return ToText(element.GetAttribute(attribute));
}

Fields FieldsOf(const xml::Element& area) {
  Fields fields = {{"name", TextOf(area, "NAME")}, {"folder", TextOf(area, "DIRNAME")}};
  for (const auto& comments : area.Children("COMMENTS")) fields["comments"] = comments.Text();
  for (const auto& properties : area.Children("SAPROPERTIES")) {
    for (const auto& property : properties.Children("PROPERTY")) {
      fields["property " + TextOf(property, "NAME")] = TextOf(property, "VALUE");
    }
  }
  return fields;
}

// The store as it must be, and what each of the data managers holds.
struct Model {
  struct View {
    Areas base;
    Areas now;
  };

  void Flush(View& view) {
    for (const auto& [guid, wanted] : view.now) {
      const auto base = view.base.find(guid);
      if (base != view.base.end() && base->second == wanted) continue;
      Put(guid, base == view.base.end() ? Fields() : base->second, wanted);
    }
    for (const auto& [guid, base] : view.base) {
      const auto there = stored.find(guid);
      const bool deletes = !view.now.contains(guid) && there != stored.end();
      if (deletes && there->second == base) stored.erase(there);
    }
    view.base = view.now;
  }

  // What is stored, with what was changed in the view. What collides goes on as changed there.
  void Reload(View& view) const {
    View read = {stored, stored};
    for (const auto& [guid, wanted] : view.now) {
      const auto base = view.base.find(guid);
      if (base != view.base.end() && base->second == wanted) continue;
      const bool is_new = base == view.base.end();
      if (!Put(read.now, guid, is_new ? Fields() : base->second, wanted)) continue;
      read.base.erase(guid);
      if (!is_new) read.base[guid] = base->second;
    }
    for (const auto& [guid, base] : view.base) {
      const auto there = stored.find(guid);
      const bool deletes = !view.now.contains(guid) && there != stored.end();
      if (deletes && there->second == base) read.now.erase(guid);
    }
    view = read;
  }

  void Put(const std::string& guid, const Fields& base, const Fields& wanted) {
    const Fields before = stored.contains(guid) ? stored[guid] : Fields();
    if (Put(stored, guid, base, wanted)) history.insert(before);
  }

  // Whether something else had changed in the same place.
  static bool Put(Areas& areas, const std::string& guid, const Fields& base, const Fields& wanted) {
    if (!areas.contains(guid)) {
      areas[guid] = wanted;
      return false;
    }
    Fields& there = areas[guid];
    const Fields before = there;
    bool collides = false;
    for (const auto& [name, value] : wanted) {
      const auto value_in = [&name = name](const Fields& fields) {
        const auto found = fields.find(name);
        return found == fields.end() ? std::string() : found->second;
      };
      if (value == value_in(base) || value == value_in(before)) continue;
      // What is gone there gives way to what was changed.
      collides = collides || (before.contains(name) && value_in(base) != value_in(before));
      there[name] = value;
    }
    return collides;
  }

  Areas stored;
  std::set<Fields> history;
};

class HostsAtOnce {
 public:
  explicit HostsAtOnce(unsigned seed) : random_(seed) {
    for (std::size_t host = 0; host < managers_.size(); ++host) Restart(host);
  }

  void Step() {
    const std::size_t host = Draw(managers_.size());
    world_.platform.registry->SetWritable(writes_ = Draw(3) != 0);
    switch (Draw(10)) {
      case 0:
        Restart(host);
        break;
      case 1:
        Create(host);
        break;
      case 2:
        Delete(host);
        break;
      case 3:
      case 4:
        Flush(host);
        break;
      case 5:
        Reload(host);
        break;
      default:
        Change(host);
    }
    Compare();
    CompareViews(host);
  }

 private:
  std::size_t Draw(std::size_t count) { return random_() % count; }
  std::string NewName() { return "n" + std::to_string(++names_); }
  std::shared_ptr<IKVStudyAreaCollection> AreasOf(std::size_t host) {
    return managers_[host]->StudyAreaCollection();
  }

  // The identifier of one that the host knows; "" for none.
  std::string AnyOf(std::size_t host) {
    const Areas& areas = views_[host].now;
    return areas.empty() ? "" : std::next(areas.begin(), std::ptrdiff_t(Draw(areas.size())))->first;
  }

  void Restart(std::size_t host) {
    const bool reads = Draw(4) != 0;
    world_.platform.registry->SetReadable(reads);
    managers_[host] = std::make_shared<KVDataManager>(world_.platform.Bundle());
    managers_[host]->DMInitialize(world_.host);
    world_.platform.registry->SetReadable(true);
    views_[host] = {};
    held_[host].clear();
    if (reads) views_[host] = {model_.stored, model_.stored};
  }

  // The same view as before, where there was one.
  std::shared_ptr<IKVStudyArea> ViewOf(std::size_t host, const std::string& guid) {
    auto& view = held_[host][guid];
    if (!view) view = AreasOf(host)->GetStudyAreaByGUID(guid);
    return view;
  }

  void Saved(std::size_t host) {
    if (writes_) model_.Flush(views_[host]);
  }

  void Flush(std::size_t host) {
    managers_[host]->Flush();
    Saved(host);
  }

  void Reload(std::size_t host) {
    ASSERT_TRUE(managers_[host]->Reload());
    model_.Reload(views_[host]);
    // The view of one that is gone stays so, even when somebody brings it back.
    std::erase_if(held_[host],
                  [&](const auto& held) { return !views_[host].now.contains(held.first); });
    EXPECT_FALSE(managers_[host]->ChangedByOthers());
  }

  void Create(std::size_t host) {
    const std::string name = NewName();
    ASSERT_TRUE(AreasOf(host)->CreateStudyArea(name));
    const auto area = AreasOf(host)->GetStudyArea(name);
    views_[host].now[area->GUID()] = {{"name", "_" + name + "_"}, {"folder", area->StudyAreaDir()}};
    Saved(host);
  }

  void Delete(std::size_t host) {
    const std::string guid = AnyOf(host);
    if (guid.empty()) return;
    const std::string name = AreasOf(host)->GetStudyAreaByGUID(guid)->Name();
    ASSERT_TRUE(AreasOf(host)->DeleteStudyArea(name));
    views_[host].now.erase(guid);
    held_[host].erase(guid);
    Saved(host);
  }

  void Change(std::size_t host) {
    const std::string guid = AnyOf(host);
    if (guid.empty()) return;
    const auto area = ViewOf(host, guid);
    Fields& fields = views_[host].now[guid];
    const std::string value = std::to_string(Draw(3));
    switch (Draw(4)) {
      case 0:
        area->SetName(NewName());
        fields["name"] = "_" + area->Name() + "_";
        break;
      case 1:
        area->SetComments(fields["comments"] = value);
        break;
      default:
        const std::string key = "K" + std::to_string(Draw(3));
        ASSERT_TRUE(Query<IKVPropertySet>(area)->SetProperty(key, value));
        const bool is_new = fields.insert_or_assign("property " + key, value).second;
        if (!is_new) return;  // It is saved by whatever saves next.
    }
    Saved(host);
  }

  void Compare() {
    Areas stored;
    std::set<std::string> folders;
    xml::Document document;
    document.LoadXml(*world_.platform.xml_parser, world_.StoredCatalogue());
    if (const auto root = document.DocumentElement()) {
      for (const auto& area : root.Children("STUDYAREA")) {
        stored[TextOf(area, "GUID")] = FieldsOf(area);
        EXPECT_TRUE(folders.insert(TextOf(area, "DIRNAME")).second) << area.Xml();
      }
    }
    EXPECT_EQ(stored, model_.stored);
    CompareHistory();
  }

  void CompareViews(std::size_t host) {
    std::set<std::string> guids;
    const NameListRef listed = AreasOf(host)->StudyAreasGUIDsList();
    for (const Value& guid : *listed) guids.insert(ToText(guid));
    std::set<std::string> expected;
    for (const auto& [guid, fields] : views_[host].now) {
      expected.insert(guid);
      EXPECT_EQ("_" + ViewOf(host, guid)->Name() + "_", fields.at("name"));
    }
    EXPECT_EQ(guids, expected);
  }

  void CompareHistory() {
    std::set<Fields> history;
    for (const auto& kept : world_.platform.registry->Kept(
             RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue)) {
      xml::Document document;
      ASSERT_TRUE(document.LoadXml(*world_.platform.xml_parser, kept.value.data));
      history.insert(FieldsOf(document.DocumentElement()));
    }
    EXPECT_EQ(history, model_.history);
    EXPECT_GE(world_.platform.log->Lines().size(), history.size());
  }

  std::mt19937 random_;
  TestWorld world_;
  Model model_;
  std::array<std::shared_ptr<KVDataManager>, 3> managers_;
  std::array<Model::View, 3> views_;
  std::array<std::map<std::string, std::shared_ptr<IKVStudyArea>>, 3> held_;
  bool writes_ = true;
  int names_ = 0;
};

TEST(HostsAtOnceTest, WhatOneDoesIsInTheListOrInTheHistory) {
  for (unsigned seed = 0; seed < kScenarios; ++seed) {
    HostsAtOnce hosts(seed);
    for (int step = 0; step < kSteps; ++step) {
      hosts.Step();
      if (testing::Test::HasFailure()) {
        FAIL() << "seed " << seed << ", step " << step;
      }
    }
  }
}

}  // namespace
}  // namespace kvdm
