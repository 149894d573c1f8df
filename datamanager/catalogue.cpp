// The catalogue as it is shared with other programs: read again, and told of when they change it.
#include <algorithm>
#include <utility>

#include "datamanager/kv_data_manager.h"
#include "platform/portable/shared_catalogue.h"
#include "util/guard.h"
#include "util/messages.h"

namespace kvdm {

bool KVDataManager::Reload() {
  return guard::Reported(reporter_, messages::kReload, [&] {
    auto reading = shared_->ReadAgain(catalogue_->Xml());
    auto catalogue =
        reading.text.empty() ? NewCatalogue() : ParseDocument(*platform_.xml_parser, reading.text);
    Required(catalogue->DocumentElement());
    ReplaceCatalogue(std::move(catalogue), std::move(reading));
    return true;
  });
}

// What may fail comes first: then all views change, or none.
void KVDataManager::ReplaceCatalogue(DocumentRef catalogue, CatalogueReading reading) {
  const auto before = catalogue_->DocumentElement();
  const auto after = catalogue->DocumentElement();
  std::vector<std::pair<xml::Element, xml::Element>> same;
  if (before) same = SameAreas(before, after);
  same.emplace_back(before, after);
  std::vector<std::pair<std::shared_ptr<CatalogueView>, xml::Element>> bindings;
  for (const auto& each : views_) {
    auto view = each.lock();
    if (!view) continue;
    const auto found =
        std::ranges::find(same, view->CatalogueElement(), &decltype(same)::value_type::first);
    if (found != same.end()) bindings.emplace_back(std::move(view), found->second);
  }
  catalogue_ = std::move(catalogue);
  shared_->Adopt(std::move(reading));
  saved_stamp_.clear();
  is_told_ = false;
  for (auto& [view, element] : bindings) view->Rebind(std::move(element));
}

bool KVDataManager::ChangedByOthers() {
  const bool changed = guard::Quiet(ErrorLog(), [&] { return shared_->ChangedByOthers(); });
  if (changed) TellOfChanges();
  return changed;
}

void KVDataManager::Notify(const std::shared_ptr<CatalogueListener>& listener) {
  listener_ = listener;
  is_told_ = false;
}

void KVDataManager::TellOfChanges() {
  if (!listener_ || std::exchange(is_told_, true)) return;
  guard::Quiet(ErrorLog(), [listener = listener_] { listener->CatalogueChanged(); });
}

void KVDataManager::Follow(const std::shared_ptr<CatalogueView>& view) {
  if (views_.size() >= most_views_) {
    std::erase_if(views_, [](const auto& each) { return each.expired(); });
    most_views_ = std::max(most_views_, 2 * views_.size());
  }
  views_.push_back(view);
}

}  // namespace kvdm
