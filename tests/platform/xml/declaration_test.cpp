#include <gtest/gtest.h>

#include "platform/xml/xml_input.h"

namespace kvdm {
namespace {

TEST(DeclarationTest, TellsEncodingAndLength) {
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"<?xml version='1.0'?>", ""},
      {"<?xml version=\"1.1\" ?>", ""},
      {"<?xml version='1.0' encoding='utf-8'?>", "utf-8"},
      {"<?xml\tversion = '1.0'\r\nencoding = \"ISO-8859-1\" ?>", "ISO-8859-1"},
      {"<?xml version='1.0' standalone='no'?>", ""},
      {"<?xml version='1.0' encoding='a.b_c-1' standalone='yes'?>", "a.b_c-1"},
  };
  for (const auto& [text, encoding] : rows) {
    const std::string document = std::string(text) + "<a encoding='x'/>";
    const auto declaration = DeclarationOf(document);
    ASSERT_TRUE(declaration) << text;
    EXPECT_EQ(declaration->encoding, encoding);
    EXPECT_EQ(declaration->length, text.size());
  }
}

TEST(DeclarationTest, WhatIsNotWellFormedIsNone) {
  for (const auto text : {"",
                          "<a/>",
                          " <?xml version='1.0'?>",
                          "<?xml?>",
                          "<?xml version='1.0'>",
                          "<?xml version='2.0'?>",
                          "<?xml version='1.x'?>",
                          "<?xml version=1.0?>",
                          "<?xml version='1.0?>",
                          "<?xml encoding='utf-8'?>",
                          "<?xmlversion='1.0'?>",
                          "<?xml version='1.0'encoding='utf-8'?>",
                          "<?xml version='1.0' encoding='utf-8'standalone='yes'?>",
                          "<?xml version='1.0' encoding=''?>",
                          "<?xml version='1.0' encoding='8'?>",
                          "<?xml version='1.0' encoding='utf-8//IGNORE'?>",
                          "<?xml version='1.0' standalone='maybe'?>",
                          "<?xml version='1.0' standalone='yes' encoding='utf-8'?>",
                          "<?xml version='1.0' other='1'?>",
                          "<?xml-x version='1.0'?>"}) {
    EXPECT_FALSE(DeclarationOf(text)) << text;
  }
}

}  // namespace
}  // namespace kvdm
