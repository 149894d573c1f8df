// The component's tree as a peer.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "benchmarks/workload.h"
#include "platform/xml/document.h"
#include "platform/xml_parser.h"

namespace kvdm::bench {

class Ours {
 public:
  using Handle = xml::Element;

  explicit Ours(const std::string& text) {
    if (!document_.LoadXml(*Parser(), text)) throw std::runtime_error("not parsed");
    items_ = document_.DocumentElement().Child("ANALYSISCOLLECTION");
  }
  explicit Ours(const std::vector<Item>& items) {
    document_.AddDeclaration();
    const auto root = xml::Element::Create("KVDATACOLLECTION");
    document_.SetDocumentElement(root);
    items_ = root.CreateNear("ANALYSISCOLLECTION");
    root.Append(items_);
    for (const Item& item : items) Append(item);
  }

  void Append(const Item& item) {
    const auto element = items_.CreateNear("ANALYSIS");
    element.SetAttribute("NAME", item.name);
    element.SetAttribute("GUID", item.guid);
    element.SetAttribute("DIRNAME", item.folder);
    element.SetAttribute("LAYERFILE", item.layer_file);
    element.SetAttribute("CREATIONTIME", item.created);
    const auto comments = element.CreateNear("COMMENTS");
    comments.SetText(item.comments);
    element.Append(comments);
    for (const Parameter& parameter : item.parameters) {
      const auto child = element.CreateNear("PARAM");
      child.SetAttribute("NAME", parameter.name);
      child.SetAttribute("VALUE", parameter.value);
      element.Append(child);
    }
    items_.Append(element);
  }
  [[nodiscard]] Handle FindGuid(const std::string& guid) const {
    return items_.Child("ANALYSIS", "GUID", guid);
  }
  [[nodiscard]] Handle FindName(const std::string& name) const {
    return items_.Child("ANALYSIS", "NAME", name);
  }
  void Remove(const std::string& guid) { items_.Remove(FindGuid(guid)); }
  static void Set(const Handle& item, const std::string& value) {
    item.SetAttribute("LAYERFILE", value);
  }
  [[nodiscard]] std::string Save() const { return document_.Xml(); }

 private:
  static const std::shared_ptr<XmlParser>& Parser() {
    static const auto parser = MakeXmlParser();
    return parser;
  }

  xml::Document document_;
  Handle items_;
};

}  // namespace kvdm::bench
