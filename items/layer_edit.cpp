#include "items/layer_edit.h"

#include "util/guard.h"
#include "util/tags.h"

namespace kvdm {

void LayerEdit::SetLayerFile(std::string_view path) {
  Change(attributes::kLayerFile, path, messages_.layer_file);
}

void LayerEdit::SetGUID(std::string_view guid) { Change(attributes::kGuid, guid, messages_.guid); }

std::shared_ptr<Unknown> LayerEdit::If(std::type_index interface_type) {
  if (interface_type != typeid(IKVLayerEdit)) return nullptr;
  return {item_.shared_from_this(), this};
}

void LayerEdit::Change(const char* attribute, std::string_view value, const char* message) {
  guard::Reported(view_.reporter(), message, [&] {
    if (view_.FullyBound()) view_.SetAndFlush(attribute, value);
  });
}

}  // namespace kvdm
