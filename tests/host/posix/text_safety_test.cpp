#include <gtest/gtest.h>
#include <utf8proc.h>

#include "host/text.h"

namespace kvdm {
namespace {

// The library may know a later Unicode than the table: what it has no category for is left out.
TEST(TextSafetyTest, OnlyControlAndFormatCharactersAndSeparatorsOfLinesAreUnsafe) {
  for (char32_t character = 0; character <= 0x10FFFF; ++character) {
    const auto category = utf8proc_category(static_cast<utf8proc_int32_t>(character));
    const bool unsafe = category == UTF8PROC_CATEGORY_CC || category == UTF8PROC_CATEGORY_CF ||
                        category == UTF8PROC_CATEGORY_ZL || category == UTF8PROC_CATEGORY_ZP;
    if (category == UTF8PROC_CATEGORY_CN) continue;
    EXPECT_EQ(IsSafe(character), !unsafe) << static_cast<std::uint32_t>(character);
  }
}

}  // namespace
}  // namespace kvdm
