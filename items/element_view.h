// What all items share: one element, the data manager, how values are read and written, and the
// facets on top of that.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <kvdm/datamanager/layers.h>

#include "items/friends.h"
#include "platform/xml/node.h"
#include "util/guard.h"
#include "util/messages.h"

namespace kvdm {

// Holds no data. Operations without a guard: errors reach the caller, which names the policy. On a
// view without an element readers return "" or Nothing and writers do nothing.
class ElementView {
 public:
  explicit ElementView(ReportStyle reports) : reports_(reports) {}

  void AttachNode(xml::Element node) { node_ = std::move(node); }
  void AttachDataManager(DataManagerRef data_manager) { data_manager_ = std::move(data_manager); }

  [[nodiscard]] const xml::Element& node() const { return node_; }
  [[nodiscard]] const DataManagerRef& data_manager() const { return data_manager_; }
  [[nodiscard]] Reporter reporter() const { return {reports_, data_manager_.get()}; }
  [[nodiscard]] Log* log() const { return reporter().log(); }
  [[nodiscard]] bool FullyBound() const { return node_ && data_manager_; }

  // Saves, when there is a data manager.
  void Flush() const;

  // The text of an attribute. Run-time error 94 when it is missing.
  [[nodiscard]] std::string Text(std::string_view attribute) const;
  // The text of an attribute; "" when it is missing.
  [[nodiscard]] std::string TextOrNothing(std::string_view attribute) const;
  void Set(std::string_view attribute, const Value& value) const;
  void SetAndFlush(std::string_view attribute, const Value& value) const;
  // SetAndFlush, if there is a data manager too. Reports a failure as `message`.
  void Change(const char* attribute, std::string_view value, const char* message) const;

  // The comment, every LF widened to CR LF; "" without one.
  [[nodiscard]] std::string Comments() const;
  // Stores the comment exactly as given and saves.
  void SetComments(std::string_view comments) const;

  // Named parameters. Names are matched exactly; the first of a name counts.
  bool SetParameter(std::string_view name, std::string_view value) const;
  [[nodiscard]] std::string GetParameter(std::string_view name) const;
  // All names in document order, Null for a missing one.
  [[nodiscard]] NameListRef ParametersList() const;
  bool ClearParameters() const;

 private:
  ReportStyle reports_;
  xml::Element node_;
  DataManagerRef data_manager_;
};

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
  void AttachNode(xml::Element node) { view_.AttachNode(std::move(node)); }
  void AttachDataManager(DataManagerRef data_manager) {
    view_.AttachDataManager(std::move(data_manager));
  }

 protected:
  [[nodiscard]] const ElementView& view() const { return view_; }

 private:
  ElementView view_;
  const char* set_parameter_message_;
};

// The facet through which a client re-points or re-identifies a layer. Its LayerFile is another
// operation than that of the item's own interface: it needs the data manager as well as the
// element, and it reports.
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
  Unknown& item_;
  const ElementView& view_;
  LayerEditMessages messages_;
};

}  // namespace kvdm
