#include "tests/test_world.h"

#include <gtest/gtest.h>

#include "util/names.h"
#include "util/registry_strings.h"

namespace kvdm {

TestWorld::TestWorld(CodePage code_page) : platform(code_page) {
  host->Settings()->SetProperty("VELKKVDirectory", R"(D:\Data)");
  Restart();
}

void TestWorld::Restart() {
  manager = std::make_shared<KVDataManager>(platform.Bundle());
  manager->DMInitialize(host);
}

void TestWorld::SetCurrentStudyArea(std::string_view name) {
  host->CurrentState()->SetProperty(kStudyAreaNameProperty, name);
}

std::string TestWorld::CurrentStudyArea() const {
  return ToText(host->CurrentState()->GetProperty(kStudyAreaNameProperty));
}

std::vector<std::string> TestWorld::Messages() const {
  std::vector<std::string> texts;
  for (const auto& message : platform.box->Messages()) texts.push_back(message.text);
  return texts;
}

std::string TestWorld::Metadata() {
  const auto stream = std::make_shared<VariantList>();
  manager->Save(stream);
  return ToText(stream->Read());
}

void TestWorld::LoadMetadata(std::string_view xml) {
  const auto stream = std::make_shared<VariantList>();
  stream->Write(xml);
  manager->Load(stream);
}

std::string TestWorld::StoredCatalogue() const {
  return ToText(ReadRegistryString(*platform.registry, RegistryRoot::kLocalMachine, kRegistryKey,
                                   kStudyAreaCollectionValue));
}

void TestWorld::LoadCatalogue(std::string_view xml) {
  platform.registry->Put(RegistryRoot::kLocalMachine, kRegistryKey, kStudyAreaCollectionValue,
                         RegistryType::kText, xml);
  Restart();
}

std::vector<std::string> Texts(const NameListRef& list) {
  std::vector<std::string> texts;
  EXPECT_TRUE(list) << "Nothing instead of a list";
  if (!list) return texts;
  for (const auto& value : *list) texts.push_back(value.IsNull() ? "(null)" : ToText(value));
  return texts;
}

}  // namespace kvdm
