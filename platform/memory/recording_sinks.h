// A message box and a log that remember what they were given, and a clock that stands still.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/clock.h>
#include <kvdm/platform/log.h>
#include <kvdm/platform/message_box.h>

namespace kvdm {

struct ShownMessage {
  std::string text;
  std::string caption;
  MessageStyle style = MessageStyle::kPlain;
  bool operator==(const ShownMessage&) const = default;
};

class RecordingMessageBox : public MessageBox {
 public:
  void Show(std::string_view text, std::string_view caption, MessageStyle style) override {
    messages_.push_back({std::string(text), std::string(caption), style});
  }

  // What was shown, the oldest first.
  [[nodiscard]] const std::vector<ShownMessage>& Messages() const { return messages_; }
  void Clear() { messages_.clear(); }

 private:
  std::vector<ShownMessage> messages_;
};

class RecordingLog : public Log {
 public:
  void Note(std::string_view line) override { lines_.emplace_back(line); }

  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_; }
  void Clear() { lines_.clear(); }

 private:
  std::vector<std::string> lines_;
};

class FixedClock : public Clock {
 public:
  DateTime Now() override { return now_; }
  void Set(const DateTime& now) { now_ = now; }

 private:
  DateTime now_ = {2026, 11, 15, 7, 35, 30};
};

}  // namespace kvdm
