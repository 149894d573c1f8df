// A world for tests of the component: a data manager on the in-memory platform, hosted with the
// working directory "D:\Data\" and no current study area. Nothing was shown yet.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <kvdm/platform/portable/properties_host.h>
#include <kvdm/platform/portable/variant_list.h>

#include "datamanager/kv_data_manager.h"
#include "platform/memory/memory_platform.h"

namespace kvdm {

struct TestWorld {
  explicit TestWorld(CodePage code_page = CodePage::kUtf8);

  // Starts another data manager on the same platform, with the same host, as the next run of the
  // application does.
  void Restart();

  // The current study area of the host; "" for none.
  void SetCurrentStudyArea(std::string_view name);
  [[nodiscard]] std::string CurrentStudyArea() const;

  // The texts of the messages shown so far.
  [[nodiscard]] std::vector<std::string> Messages() const;

  // The metadata document as Save writes it; flushes.
  [[nodiscard]] std::string Metadata();
  // Replaces the metadata document.
  void LoadMetadata(std::string_view xml);

  // The study area catalogue as the registry holds it; "" when there is none.
  [[nodiscard]] std::string StoredCatalogue() const;
  // Puts a catalogue into the registry and restarts.
  void LoadCatalogue(std::string_view xml);

  MemoryPlatform platform;
  std::shared_ptr<PropertiesHost> host = std::make_shared<PropertiesHost>();
  std::shared_ptr<KVDataManager> manager;
};

// The texts of a list, in order; Null as "(null)". A missing list fails the test.
[[nodiscard]] std::vector<std::string> Texts(const NameListRef& list);

}  // namespace kvdm
