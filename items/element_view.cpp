#include "items/element_view.h"

#include "util/kvdm_utils.h"
#include "util/names.h"

namespace kvdm {

void ElementView::Flush() const {
  if (data_manager_) data_manager_->Flush();
}

std::string ElementView::Text(std::string_view attribute) const {
  return node_ ? ToText(node_.GetAttribute(attribute)) : std::string();
}

std::string ElementView::TextOrNothing(std::string_view attribute) const {
  return guard::Quiet(log(), [&] { return Text(attribute); });
}

void ElementView::Set(std::string_view attribute, const Value& value) const {
  if (node_) node_.SetAttribute(attribute, value);
}

void ElementView::SetAndFlush(std::string_view attribute, const Value& value) const {
  if (!node_) return;
  node_.SetAttribute(attribute, value);
  Flush();
}

void ElementView::Change(const char* attribute, std::string_view value, const char* message) const {
  guard::Reported(reporter(), message, [&] {
    if (FullyBound()) SetAndFlush(attribute, value);
  });
}

std::string ElementView::Comments() const {
  const auto comments = node_ ? node_.Child(tags::kComments) : nullptr;
  return comments ? WidenLineEnds(comments.Text()) : std::string();
}

void ElementView::SetComments(std::string_view comments) const {
  if (!node_) return;
  auto element = node_.Child(tags::kComments);
  const bool is_new = !element;
  if (is_new) element = node_.CreateNear(tags::kComments);
  // A text that is refused leaves no empty element behind.
  element.SetText(comments);
  if (is_new) node_.Append(element);
  Flush();
}

bool ElementView::SetParameter(std::string_view name, std::string_view value) const {
  if (!node_) return false;
  auto parameter = node_.Child(tags::kParameter, attributes::kName, name);
  if (!parameter) {
    parameter = node_.CreateNear(tags::kParameter);
    parameter.SetAttribute(attributes::kName, name);
    node_.Append(parameter);
  }
  parameter.SetAttribute(attributes::kValue, value);
  Flush();
  return true;
}

std::string ElementView::GetParameter(std::string_view name) const {
  const auto parameter = node_ ? node_.Child(tags::kParameter, attributes::kName, name) : nullptr;
  return parameter ? ToText(parameter.GetAttribute(attributes::kValue)) : std::string();
}

NameListRef ElementView::ParametersList() const {
  if (!node_) return nullptr;
  auto names = std::make_shared<NameList>();
  for (const auto& parameter : node_.Children(tags::kParameter)) {
    names->Add(parameter.GetAttribute(attributes::kName));
  }
  return names;
}

bool ElementView::ClearParameters() const {
  if (!node_) return false;
  for (const auto& parameter : node_.Children(tags::kParameter)) node_.Remove(parameter);
  Flush();
  return true;
}

void LayerEdit::SetLayerFile(std::string_view path) {
  view_.Change(attributes::kLayerFile, path, messages_.layer_file);
}

void LayerEdit::SetGUID(std::string_view guid) {
  view_.Change(attributes::kGuid, guid, messages_.guid);
}

std::shared_ptr<Unknown> LayerEdit::If(std::type_index interface_type) {
  if (interface_type != typeid(IKVLayerEdit)) return nullptr;
  return {item_.shared_from_this(), this};
}

}  // namespace kvdm
