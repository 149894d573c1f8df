#include <gtest/gtest.h>

#include <stdexcept>

#include <kvdm/platform/portable/callback_sinks.h>

namespace kvdm {
namespace {

TEST(CallbackMessageBoxTest, LostCharactersArriveAsQuestionMarks) {
  std::string shown;
  CallbackMessageBox box(
      [&](auto text, auto caption, auto /*style*/) {
        shown = std::string(caption) + "|" + std::string(text);
      },
      CodePage::kWindows1252);
  box.Show("\u00FC \u0416 \U0001F600", "\u0101", MessageStyle::kExclamation);
  EXPECT_EQ(shown, "?|\u00FC ? ??");
}

TEST(CallbackMessageBoxTest, PrintsOnTheErrorStreamWithoutAFunction) {
  testing::internal::CaptureStderr();
  CallbackMessageBox().Show("Can't save", "Kelvaro", MessageStyle::kExclamation);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Kelvaro: Can't save\n");
}

TEST(CallbackMessageBoxTest, AFailureOfTheFunctionReachesTheCaller) {
  CallbackMessageBox box([](auto, auto, auto) { throw std::runtime_error("no display"); });
  EXPECT_THROW(box.Show("text", "caption", MessageStyle::kPlain), std::runtime_error);
}

TEST(CallbackLogTest, HandsOnLines) {
  std::string lines;
  CallbackLog log([&](auto line) { lines += std::string(line) + ";"; });
  log.Note("one");
  log.Note("two");
  EXPECT_EQ(lines, "one;two;");
}

TEST(CallbackLogTest, IsSilentWithoutAFunction) {
  testing::internal::CaptureStderr();
  CallbackLog().Note("line");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(CallbackLogTest, AFailureOfTheFunctionGoesToTheErrorStream) {
  testing::internal::CaptureStderr();
  CallbackLog([](auto) { throw std::runtime_error("disk full"); }).Note("line");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "line (not logged: disk full)\n");
}

}  // namespace
}  // namespace kvdm
