#include <algorithm>

#include "tests/model/model.h"
#include "tests/model/policies.h"
#include "tests/model/texts.h"

namespace kvdm::model {
namespace {

// The change of a report's way with the kind: the study area and the store layer show it.
bool ShowsReports(Kind kind) { return kind == Kind::kStudyArea || kind == Kind::kStoreLayer; }

std::string CommentsOf(const Node& item) {
  const NodeRef comments = item.Child("COMMENTS");
  return comments ? Replaced(comments->text, "\n", "\r\n") : "";
}

}  // namespace

void Put(ValueList& list, std::string_view path, const Value& value) {
  const auto found = std::ranges::find(list, path, &ValueList::value_type::first);
  found == list.end() ? list.emplace_back(path, value), void() : void(found->second = value);
}

std::string Model::Read(Kind kind, const NodeRef& item, std::string_view property) {
  if (property == "Comments") return CommentsOf(*item);
  if (property == "IsInternalData") {
    return item->Get("ISINTERNALDATA") == "TRUE" ? "True" : "False";
  }
  const PropertyRule& rule = RuleOf(kind, property);
  const auto value = item->Get(rule.attribute);
  if (!value) {
    if (rule.passes_fault) return item->Required(rule.attribute);
    if (!rule.shown.empty()) Show(rule.shown);
    return {};
  }
  if (rule.attribute == "FILE" && item->Get("PATHTYPE") == "RELATIVE") {
    return Trapped([&] { return SettledFolder(kind) + *value; }, [] { return std::string(); });
  }
  return rule.is_wrapped ? Unwrapped(*value) : *value;
}

void Model::Write(Kind kind, const NodeRef& item, std::string_view property,
                  std::string_view value) {
  if (property == "Comments") return WriteComments(item, value);
  if (property == "IsInternalData") {
    return item->Set("ISINTERNALDATA", value == "True" ? "TRUE" : "FALSE");
  }
  if (property == "Name" && kind != Kind::kDataItem) return Rename(kind, item, value);
  const bool is_edit = property == "Edit LayerFile";
  const PropertyRule& rule = RuleOf(kind, is_edit ? "LayerFile" : property);
  item->Set(rule.attribute, rule.is_wrapped ? Wrapped(value) : std::string(value));
  const bool has_path_type = kind == Kind::kStoreLayer || kind == Kind::kDataItem;
  if (property == "LayerFile" && has_path_type) item->Set("PATHTYPE", "ABSOLUTE");
  if (rule.saves) Flush();
}

void Model::Rename(Kind kind, const NodeRef& item, std::string_view name) {
  const auto rename = [&] {
    if (Exists(kind, "NAME", name)) return;
    item->Set("NAME", Wrapped(name));
    if (RuleOf(kind, "Name").saves) Flush();
  };
  if (kind == Kind::kStudyArea) {
    Trapped(rename, [&] { Show("Kelvaro Data Manager: Couldn't change the study area name"); });
  } else if (kind == Kind::kAnalysis) {
    Undelivered("Kelvaro Data Manager: Couldn't rename the Analysis", rename);
  } else {
    rename();
  }
}

void Model::WriteComments(const NodeRef& item, std::string_view comments) {
  const NodeRef found = item->Child("COMMENTS");
  (found ? found : item->Append("COMMENTS"))->SetText(comments);
  Flush();
}

bool Model::SetParameter(Kind kind, const NodeRef& item, std::string_view name,
                         std::string_view value) {
  const std::string message = kind == Kind::kDataItem ? "Error while setting parameter of Dataitem"
                                                      : "Error while setting parameter of analysis";
  const auto set = [&] {
    NodeRef parameter = item->Find("PARAM", "NAME", name);
    if (!parameter) {
      parameter = item->Append("PARAM");
      parameter->Set("NAME", name);
    }
    parameter->Set("VALUE", value);
    Flush();
    return true;
  };
  if (!ShowsReports(kind)) return Undelivered(message, set);
  return Trapped(set, [&] {
    Show(message);
    return false;
  });
}

std::string Model::GetParameter(const NodeRef& item, std::string_view name) {
  return Trapped(
      [&] {
        const NodeRef parameter = item->Find("PARAM", "NAME", name);
        return parameter ? parameter->Required("VALUE") : "";
      },
      [] { return std::string(); });
}

Texts Model::Parameters(const NodeRef& item) {
  Texts names;
  for (const auto& child : item->children) {
    if (child->tag == "PARAM") names.push_back(child->Get("NAME"));
  }
  return names;
}

bool Model::ClearParameters(const NodeRef& item) {
  std::erase_if(item->children, [](const NodeRef& child) { return child->tag == "PARAM"; });
  Flush();
  return true;
}

std::string Model::GetProperty(const NodeRef& item, std::string_view name) {
  const NodeRef properties = item->Child("SAPROPERTIES");
  if (!properties) {
    Show("Can't find " + std::string(name) + " property");
    return {};
  }
  return Trapped(
      [&] {
        const NodeRef property = properties->Find("PROPERTY", "NAME", name);
        return property ? property->Required("VALUE") : "";
      },
      [] { return std::string(); });
}

bool Model::SetProperty(const NodeRef& item, std::string_view name, std::string_view value) {
  const NodeRef properties = item->Child("SAPROPERTIES");
  if (!properties) {
    Show(
        "The record of this study area holds no list of properties, so the property was not "
        "stored. Please create the study area anew and store the property again.");
    Show("Couldn't set " + std::string(name) + " property");
    return false;
  }
  const auto set = [&] {
    const NodeRef found = properties->Find("PROPERTY", "NAME", name);
    const NodeRef property = found ? found : properties->Append("PROPERTY");
    if (!found) property->Set("NAME", name);
    property->Set("VALUE", value);
    if (!found) Flush();
    return true;
  };
  return Trapped(set, [] { return false; });
}

bool Model::WriteToPropertySet(const NodeRef& item) {
  if (!exchange_.properties) exchange_.properties.emplace();
  auto& set = *exchange_.properties;
  const auto write = [&] {
    for (const auto& child : item->children) {
      if (child->tag == "PARAM") Put(set, child->Required("NAME"), child->Required("VALUE"));
    }
    Put(set, "Name", Read(Kind::kAnalysis, item, "Name"));
    Put(set, "Comments", CommentsOf(*item));
    return true;
  };
  return Trapped(write, [] { return false; });
}

bool Model::ReadFromPropertySet(const NodeRef& item) {
  if (!exchange_.properties) return false;
  for (const auto& [name, value] : *exchange_.properties) {
    Skipped([&, &entry = name, &text = value] {
      if (entry == "Name" || entry == "Comments") {
        Write(Kind::kAnalysis, item, entry, ToText(text));
      } else {
        SetParameter(Kind::kAnalysis, item, entry, ToText(text));
      }
    });
  }
  return true;
}

}  // namespace kvdm::model
