#include "items/kv_data_item.h"

#include "util/names.h"

namespace kvdm {
namespace {

constexpr ItemReports kDataItemReports = {ReportStyle::kByName, messages::kSetDataItemParameter};

}  // namespace

KVDataItem::KVDataItem() : ParameterizedItem(kDataItemReports) {}
std::string KVDataItem::Name() { return view().TextOrNothing(attributes::kName); }
void KVDataItem::SetName(std::string_view name) { view().SetAndFlush(attributes::kName, name); }

std::string KVDataItem::LayerFile() {
  return guard::Quiet(view().log(), [&] {
    const auto file = view().Text(attributes::kFile);
    const bool relative = view().TextOrNothing(attributes::kPathType) == path_types::kRelative;
    return relative ? Required(owner_).DataItemsDir() + file : file;
  });
}

void KVDataItem::SetLayerFile(std::string_view path) {
  view().Set(attributes::kFile, path);
  view().SetAndFlush(attributes::kPathType, path_types::kAbsolute);
}

std::string KVDataItem::AdditionalInfo() {
  return view().TextOrNothing(attributes::kAdditionalInfo);
}

void KVDataItem::SetAdditionalInfo(std::string_view info) {
  view().SetAndFlush(attributes::kAdditionalInfo, info);
}

std::string KVDataItem::GUID() { return view().TextOrNothing(attributes::kGuid); }

}  // namespace kvdm
