// What every message box does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include <kvdm/platform/portable/callback_sinks.h>

#include "platform/memory/memory_platform.h"
#include "tests/contract/implementations.h"

namespace kvdm {
namespace {

using testing::ElementsAre;

// A message box and what has come out of it.
struct World {
  std::shared_ptr<MessageBox> box;
  std::function<std::vector<ShownMessage>()> messages;
};

World MakeRecording() {
  const auto box = std::make_shared<RecordingMessageBox>();
  return {box, [box] { return box->Messages(); }};
}

World MakeCallback() {
  const auto recorder = std::make_shared<RecordingMessageBox>();
  const auto box = std::make_shared<CallbackMessageBox>(
      [recorder](auto text, auto caption, auto style) { recorder->Show(text, caption, style); });
  return {box, [recorder] { return recorder->Messages(); }};
}

World MakeSystem() {
  const auto recorder = std::make_shared<RecordingMessageBox>();
  const Platform platform = SystemPlatform(
      [recorder](auto text, auto caption, auto style) { recorder->Show(text, caption, style); });
  return {platform.message_box, [recorder] { return recorder->Messages(); }};
}

struct Implementation {
  std::string name;
  World (*make)();
};

class MessageBoxContractTest : public testing::TestWithParam<Implementation> {
 protected:
  World world_ = GetParam().make();
};

INSTANTIATE_TEST_SUITE_P(All, MessageBoxContractTest,
                         testing::Values(Implementation{"Recording", MakeRecording},
                                         Implementation{"Callback", MakeCallback},
                                         Implementation{SystemName(), MakeSystem}),
                         [](const auto& tested) { return tested.param.name; });

TEST_P(MessageBoxContractTest, ShowsTextCaptionAndStyle) {
  world_.box->Show("Can't save", "Kelvaro", MessageStyle::kExclamation);
  EXPECT_THAT(world_.messages(),
              ElementsAre(ShownMessage{"Can't save", "Kelvaro", MessageStyle::kExclamation}));
}

TEST_P(MessageBoxContractTest, ShowsMessagesInOrder) {
  world_.box->Show("one", "", MessageStyle::kPlain);
  world_.box->Show("two\r\nlines", "", MessageStyle::kPlain);
  EXPECT_THAT(world_.messages(),
              ElementsAre(ShownMessage{"one", "", MessageStyle::kPlain},
                          ShownMessage{"two\r\nlines", "", MessageStyle::kPlain}));
}

}  // namespace
}  // namespace kvdm
