#include "util/guard.h"

#include <string>

namespace kvdm::guard {

void NoteFailure(Log* log, std::string_view undone) noexcept {
  if (log == nullptr) return;
  try {
    const RuntimeError error = CurrentError();
    std::string line(undone);
    if (!line.empty()) line += ": ";
    line += error.what();
    if (!error.unsent_message().empty()) line += ": " + error.unsent_message();
    log->Note(line + " (" + std::to_string(error.number()) + ")");
  } catch (...) {
    // The operation goes on as if it had been noted.
    return;
  }
}

}  // namespace kvdm::guard
