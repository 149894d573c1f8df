// The facet through which a client re-points or re-identifies a layer. Its LayerFile is another
// operation than that of the item's own interface: it needs the data manager as well as the
// element, and it reports.
#pragma once

#include <kvdm/datamanager/layers.h>

#include "items/element_view.h"

namespace kvdm {

struct LayerEditMessages {
  const char* layer_file;
  const char* guid;
};

// A part of `item`: it lives and dies with it.
class LayerEdit final : public IKVLayerEdit {
 public:
  LayerEdit(Unknown& item, const ElementView& view, const LayerEditMessages& messages)
      : item_(item), view_(view), messages_(messages) {}

  void SetLayerFile(std::string_view path) override;
  void SetGUID(std::string_view guid) override;

  // The item, for all its other interfaces.
  std::shared_ptr<Unknown> Facet(std::type_index) override { return item_.shared_from_this(); }

  // This facet, if it is the one asked for; keeps the item alive.
  std::shared_ptr<Unknown> If(std::type_index interface_type);

 private:
  void Change(const char* attribute, std::string_view value, const char* message);

  Unknown& item_;
  const ElementView& view_;
  LayerEditMessages messages_;
};

}  // namespace kvdm
