// The part that all items with named parameters share, on top of their own interface.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "items/element_view.h"
#include "items/messages.h"
#include "util/guard.h"

namespace kvdm {

// How one class of items reports.
struct ItemReports {
  ReportStyle style;
  const char* set_parameter;
};

template <class Interface>
class ParameterizedItem : public virtual Interface {
 public:
  explicit ParameterizedItem(const ItemReports& reports)
      : view_(reports.style), set_parameter_message_(reports.set_parameter) {}

  bool SetParameter(std::string_view name, std::string_view value) override {
    return guard::Reported(view_.reporter(), set_parameter_message_,
                           [&] { return view_.SetParameter(name, value); });
  }
  std::string GetParameter(std::string_view name) override {
    return guard::Quiet(view_.log(), [&] { return view_.GetParameter(name); });
  }
  NameListRef ParametersList() override {
    return guard::Reported(view_.reporter(), messages::kParametersList,
                           [&] { return view_.ParametersList(); });
  }
  bool ClearParametersList() override {
    return guard::Quiet(view_.log(), [&] { return view_.ClearParameters(); });
  }

  // Bound by their collection right after creation.
  void AttachNode(std::shared_ptr<xml::Element> node) { view_.AttachNode(std::move(node)); }
  void AttachDataManager(DataManagerRef data_manager) {
    view_.AttachDataManager(std::move(data_manager));
  }

 protected:
  [[nodiscard]] const ElementView& view() const { return view_; }

 private:
  ElementView view_;
  const char* set_parameter_message_;
};

}  // namespace kvdm
