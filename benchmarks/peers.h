// What one would use instead: hash maps of structures, libxml2's tree, pugixml's.
#pragma once

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include <pugixml.hpp>

#include "benchmarks/workload.h"

namespace kvdm::bench {

// The reference map: an item in a node of its own, found by identifier and by name.
class Map {
 public:
  using Handle = const Item*;

  explicit Map(const std::vector<Item>& items) {
    for (const Item& item : items) Append(item);
  }

  void Append(const Item& item) {
    auto owned = std::make_unique<Item>(item);
    by_name_.emplace(owned->name, owned.get());
    by_guid_.emplace(item.guid, std::move(owned));
  }
  [[nodiscard]] Handle FindGuid(const std::string& guid) const {
    const auto found = by_guid_.find(guid);
    return found == by_guid_.end() ? nullptr : found->second.get();
  }
  [[nodiscard]] Handle FindName(const std::string& name) const {
    const auto found = by_name_.find(name);
    return found == by_name_.end() ? nullptr : found->second;
  }
  void Remove(const std::string& guid) {
    const auto found = by_guid_.find(guid);
    by_name_.erase(found->second->name);
    by_guid_.erase(found);
  }
  [[nodiscard]] std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& [guid, item] : by_guid_) {
      names.push_back(item->name.substr(1, item->name.size() - 2));
    }
    return names;
  }

 private:
  std::unordered_map<std::string, std::unique_ptr<Item>> by_guid_;
  std::unordered_map<std::string, const Item*> by_name_;
};

constexpr int kLibxmlOptions =
    XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_COMPACT | XML_PARSE_NOBLANKS;

class Libxml {
 public:
  explicit Libxml(const std::string& text)
      : document_(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                                kLibxmlOptions)) {
    if (!document_) throw std::runtime_error("not parsed");
  }
  // Tells the pieces to nobody: what every reader over this library takes at least.
  static void Pass(const std::string& text) {
    xmlSAXHandler nobody{};
    nobody.initialized = XML_SAX2_MAGIC;
    nobody.startElementNs = [](auto...) {};
    nobody.characters = [](auto...) {};
    const std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxtPtr)> context(xmlNewParserCtxt(),
                                                                             xmlFreeParserCtxt);
    *context->sax = nobody;
    xmlCtxtReadMemory(context.get(), text.data(), static_cast<int>(text.size()), nullptr, nullptr,
                      XML_PARSE_NONET | XML_PARSE_HUGE);
    if (context->wellFormed == 0) throw std::runtime_error("not parsed");
  }

 private:
  struct Free {
    void operator()(xmlDocPtr document) const { xmlFreeDoc(document); }
  };
  std::unique_ptr<xmlDoc, Free> document_;
};

class Pugi {
 public:
  explicit Pugi(const std::string& text) {
    constexpr unsigned kAll = pugi::parse_full & ~unsigned{pugi::parse_doctype};
    if (!document_.load_buffer(text.data(), text.size(), kAll)) {
      throw std::runtime_error("not parsed");
    }
  }
  [[nodiscard]] std::string Save() const {
    struct Text : pugi::xml_writer {
      void write(const void* data, std::size_t size) override {
        text.append(static_cast<const char*>(data), size);
      }
      std::string text;
    } writer;
    document_.save(writer, "", pugi::format_raw);
    return std::move(writer.text);
  }

 private:
  pugi::xml_document document_;
};

}  // namespace kvdm::bench
