#include "platform/portable/portable_siblings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kvdm {
namespace {

using testing::HasSubstr;

TEST(PortableSiblingsTest, TheDatasetManagerNotesThatItWasInitialized) {
  PortableDatasetManager manager;
  EXPECT_FALSE(manager.Initialized());
  EXPECT_TRUE(manager.Initialize().IsEmpty());
  EXPECT_TRUE(manager.Initialized());
}

TEST(PortableSiblingsTest, EachDatasetManagerIsItsOwn) {
  PortableSiblings siblings;
  siblings.CreateDatasetManager()->Initialize();
  const auto other =
      std::dynamic_pointer_cast<PortableDatasetManager>(siblings.CreateDatasetManager());
  EXPECT_FALSE(other->Initialized());
}

TEST(PortableSiblingsTest, TextsSayWhatIsWrongAndWhatToDo) {
  const auto texts = PortableSiblings().CreateResourceFinder();
  EXPECT_THAT(texts->FindString("101"), HasSubstr("choose another folder"));
  EXPECT_THAT(texts->FindString("102"), HasSubstr("was not stored"));
}

TEST(PortableSiblingsTest, OtherNumbersHaveNoText) {
  const auto texts = PortableSiblings().CreateResourceFinder();
  for (const auto* id : {"", "100", "103", "0101", "101 "}) {
    EXPECT_EQ(texts->FindString(id), "") << id;
  }
}

}  // namespace
}  // namespace kvdm
