// What all items share: one element, the data manager, and how values are read and written. Holds
// no data.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "items/friends.h"
#include "platform/xml/node.h"

namespace kvdm {

// Operations without a guard: errors reach the caller, which names the policy. On a view without an
// element readers return "" or Nothing and writers do nothing.
class ElementView {
 public:
  explicit ElementView(ReportStyle reports) : reports_(reports) {}

  void AttachNode(std::shared_ptr<xml::Element> node) { node_ = std::move(node); }
  void AttachDataManager(DataManagerRef data_manager) { data_manager_ = std::move(data_manager); }

  [[nodiscard]] const std::shared_ptr<xml::Element>& node() const { return node_; }
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
  std::shared_ptr<xml::Element> node_;
  DataManagerRef data_manager_;
};

}  // namespace kvdm
