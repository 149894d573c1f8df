// Folders that behave otherwise for the component than they are. There may be one of each kind at a
// time.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tests/boundary/client/import_hook.h"

namespace kvdm::conformance {

// For as long as it lives, searches for files whose pattern `answer` has a name for find one
// folder of that name.
class BentSearch {
 public:
  using Answer = std::function<std::optional<std::wstring>(std::wstring_view pattern)>;
  explicit BentSearch(const Answer& answer);

 private:
  client::ImportHook first_;
  client::ImportHook next_;
  client::ImportHook close_;
};

// For as long as it lives, there seems to be a folder of every name in the folder `path`.
class FullFolder {
 public:
  explicit FullFolder(std::string_view path);

 private:
  BentSearch search_;
  client::ImportHook attributes_;
  client::ImportHook create_;
};

// For as long as it lives, every second search for the folder `path` finds it with a dot at the end
// of its name. Both folders have to be there.
class UnsteadyFolder {
 public:
  explicit UnsteadyFolder(std::string_view path);

 private:
  BentSearch search_;
};

// For as long as it lives, no folder can be created directly in the folder `path`. (The component
// does not create or remove anything else there.)
class LockedFolder {
 public:
  explicit LockedFolder(std::string_view path);

 private:
  client::ImportHook create_;
};

}  // namespace kvdm::conformance
