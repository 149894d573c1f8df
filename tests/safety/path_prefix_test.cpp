#include "safety/path_prefix.h"

#include <gtest/gtest.h>

namespace kvdm {
namespace {

struct Row {
  std::string_view from;
  std::string_view to;
  std::string_view path;
  std::optional<std::string> result;
};

const Row kRows[] = {
    {R"(D:\Old)", R"(E:\New)", R"(D:\Old\Shops.shp)", R"(E:\New\Shops.shp)"},
    {R"(D:\Old\)", R"(E:\New\)", R"(D:\Old\)", R"(E:\New\)"},
    {R"(D:\Old)", R"(E:\New)", R"(D:\Old)", R"(E:\New)"},
    {R"(D:\Old)", R"(E:\New)", R"(D:\Older\x)", std::nullopt},
    {R"(D:\Old)", R"(E:\New)", R"(E:\Old\x)", std::nullopt},
    {R"(D:\Old)", R"(E:\New)", R"(Old\x)", std::nullopt},
    {R"(D:\Old)", R"(E:\New)", R"(d:\OLD\x)", R"(E:\New\x)"},
    {R"(D:\Old\A)", R"(E:\New\A)", "D:/Old/A/x", "E:/New/A/x"},
    {R"(D:\Old\A)", R"(E:\New)", R"(D:\\Old\A\\x\)", R"(E:\New\\x\)"},
    {R"(D:\)", R"(E:\Disk)", R"(D:\x)", R"(E:\Disk\x)"},
    {R"(E:\Disk)", R"(D:\)", R"(E:\Disk\x)", R"(D:\x)"},
    {R"(Z:\home\ann)", R"(Z:\srv)", "/home/ann/x", "/srv/x"},
    {R"(Z:\home\ann)", R"(D:\srv)", "/home/ann/x", "D:/srv/x"},
    {"/home/ann", "/srv", R"(Z:\home\ann\x)", R"(/srv\x)"},
    {R"(\\server\share)", R"(D:\Data)", R"(\\SERVER\share\x)", R"(D:\Data\x)"},
    {R"(\\server\share)", R"(D:\Data)", R"(\server\share\x)", std::nullopt},
    {R"(D:\Süd)", R"(D:\Nord)", R"(D:\SÜD\x)", std::nullopt},
    {R"(D:\Old)", R"(E:\New)", "", std::nullopt},
    {"Old", "New", R"(Old\x)", std::nullopt},
};

TEST(PathPrefixTest, ReplacesAFolderAtTheBeginning) {
  for (const auto& [from, to, path, result] : kRows) {
    EXPECT_EQ(PathPrefix(from, to).Replaced(path), result) << from << " in " << path;
  }
}

TEST(PathPrefixTest, GoesBackToTheVeryText) {
  const PathPrefix there(R"(Z:\home\ann\Old)", R"(D:\New)");
  for (const char* path : {R"(Z:\home\ann\Old\x\)", R"(Z:\home\ann\Old\x/y)", R"(Z:\home\ann\Old)",
                           R"(Z:\home\ann\Old\\x)", "Z:/home/ann/Old/x"}) {
    const auto moved = there.Replaced(path);
    ASSERT_TRUE(moved) << path;
    EXPECT_EQ(there.Reversed().Replaced(*moved), path);
  }
}

TEST(PathPrefixTest, AsksWhetherAnotherLetterCaseIsTheSamePlace) {
  const PathPrefix differing(R"(D:\Old)", R"(E:\New)", [](auto, auto) { return false; });
  EXPECT_EQ(differing.Replaced(R"(D:\OLD\x)"), std::nullopt);
  EXPECT_EQ(differing.Replaced(R"(D:\Old\x)"), R"(E:\New\x)");
}

}  // namespace
}  // namespace kvdm
