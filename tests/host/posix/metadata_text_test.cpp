// Under Wine the parser takes shorter values than documents have.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/hosted_component.h"
#include "platform/xml/document.h"
#include "platform/xml/limits.h"

namespace kvdm {
namespace {

using ::testing::HasSubstr;

std::string DocumentProblemOf(const std::string& text) {
  return DocumentProblem(*MakeXmlParser(), "Its metadata document", text);
}

std::string Repeated(std::size_t count, std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += text;
  return result;
}

std::string Nested(std::size_t depth) { return Repeated(depth, "<a>") + Repeated(depth, "</a>"); }

std::string WithAttributes(std::size_t count) {
  std::string text = "<a";
  for (std::size_t i = 0; i < count; ++i) text += " b" + std::to_string(i) + "=''";
  return text + "/>";
}

std::string WithTag(std::size_t length) { return "<" + std::string(length, 'a') + "/>"; }
std::string WithAttributeName(std::size_t length) {
  return "<a " + std::string(length, 'b') + "=''/>";
}
std::string WithAttribute(std::size_t length) {
  return "<a b='" + std::string(length, 'c') + "'/>";
}
std::string WithText(std::size_t length) { return "<a>" + std::string(length, 'c') + "</a>"; }

TEST(MetadataTextTest, TakesWhatTheComponentTakesAndNamesTheLimitOfWhatItDoesNot) {
  struct {
    std::string (*document)(std::size_t);
    std::size_t limit;
    const char* name;
  } const limits[] = {
      {Nested, xml::kMaxDepth, "256 elements within each other"},
      {WithAttributes, xml::kMaxAttributes, "1000 attributes at one element"},
      {WithTag, xml::kMaxNameBytes, "50000 bytes in one tag"},
      {WithAttributeName, xml::kMaxNameBytes, "50000 bytes in the name of one attribute"},
      {WithAttribute, xml::kMaxValueBytes, "10000000 bytes in one attribute"},
      {WithText, xml::kMaxValueBytes, "10000000 bytes in one text"},
  };
  for (const auto& [document, limit, name] : limits) {
    EXPECT_EQ(DocumentProblemOf(document(limit - 1)), "") << name;
    EXPECT_EQ(DocumentProblemOf(document(limit)), "") << name;
    EXPECT_THAT(DocumentProblemOf(document(limit + 1)),
                HasSubstr(std::string("more than ") + name));
  }
}

TEST(MetadataTextTest, TellsWhatIsNoXml) {
  for (const char* text : {"", "text", "<a>", "<a><b></a>", "<!DOCTYPE a><a/>"}) {
    EXPECT_THAT(DocumentProblemOf(text), HasSubstr("not well-formed XML")) << text;
  }
}

}  // namespace
}  // namespace kvdm
