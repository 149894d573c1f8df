#include <cstdio>
#include <exception>
#include <utility>

#include <kvdm/platform/portable/callback_sinks.h>

#include "platform/code_page.h"

namespace kvdm {
namespace {

void PrintError(const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); }

void PrintMessage(std::string_view text, std::string_view caption, MessageStyle /*style*/) {
  PrintError(std::string(caption) + ": " + std::string(text));
}

}  // namespace

CallbackMessageBox::CallbackMessageBox(Callback show, CodePage code_page)
    : show_(show ? std::move(show) : PrintMessage), code_page_(code_page) {}

void CallbackMessageBox::Show(std::string_view text, std::string_view caption, MessageStyle style) {
  const auto shown = [this](std::string_view utf8) {
    return Decode(Encode(utf8, code_page_), code_page_);
  };
  show_(shown(text), shown(caption), style);
}

CallbackLog::CallbackLog(Callback note) : note_(std::move(note)) {}

void CallbackLog::Note(std::string_view line) {
  if (!note_) return;
  try {
    note_(line);
  } catch (const std::exception& error) {
    PrintError(std::string(line) + " (not logged: " + error.what() + ")");
  }
}

}  // namespace kvdm
