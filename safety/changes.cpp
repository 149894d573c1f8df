#include "safety/changes.h"

#include <algorithm>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include <kvdm/platform/document_tree.h>

#include "safety/json.h"

namespace kvdm {
namespace {

constexpr char kGuid[] = "GUID";
constexpr char kName[] = "NAME";

bool IsElement(const DocumentNode& node) { return node.kind == DocumentNode::Kind::kElement; }

bool IsItem(const DocumentNode& node) {
  return std::ranges::any_of(node.attributes, [](const auto& attribute) {
    return attribute.first == kGuid || attribute.first == kName;
  });
}

// A collection without the elements in it.
DocumentNode ShellOf(const DocumentNode& collection) {
  DocumentNode shell = collection;
  std::erase_if(shell.children, IsElement);
  return shell;
}

// An element of a document that changes by itself.
struct Entry {
  using Key = std::tuple<std::string, std::string, std::string, std::size_t>;

  std::string collection;
  std::string guid;
  std::string name;
  std::size_t number = 0;
  std::size_t place = 0;
  const DocumentNode* node = nullptr;

  [[nodiscard]] Key GetKey() const {
    return {collection, guid, guid.empty() ? name : std::string(), number};
  }
  [[nodiscard]] bool EqualsNode(const DocumentNode& other) const {
    return IsItem(*node) ? *node == other : ShellOf(*node) == ShellOf(other);
  }
};

// All entries of a document, in its order: a collection comes before what is in it.
class Entries {
 public:
  explicit Entries(const DocumentNode* root) {
    if (root != nullptr) Collect(*root, root->name);
  }

  [[nodiscard]] const std::vector<Entry>& All() const { return entries_; }
  [[nodiscard]] const Entry* Find(const Entry::Key& key) const {
    const auto found = by_key_.find(key);
    return found == by_key_.end() ? nullptr : &entries_[found->second];
  }

 private:
  void Collect(const DocumentNode& parent, const std::string& path) {
    std::size_t place = 0;
    std::map<std::string, std::size_t> numbers;
    for (const DocumentNode& child : parent.children) {
      if (!IsElement(child)) continue;
      const bool is_item = IsItem(child);
      const std::string guid = child.Attribute(kGuid);
      const std::string name = is_item ? child.Attribute(kName) : child.name;
      const std::size_t number = numbers[guid.empty() ? name : guid]++;
      const Entry entry = {path, guid, name, number, place++, &child};
      by_key_.emplace(entry.GetKey(), entries_.size());
      entries_.push_back(entry);
      if (is_item) continue;
      std::string below = path;
      below.append("/").append(child.name);
      if (number != 0) below.append("#").append(std::to_string(number));
      Collect(child, below);
    }
  }

  std::vector<Entry> entries_;
  std::map<Entry::Key, std::size_t> by_key_;
};

// What leads from one tree to another, as far as entries do.
class Comparison {
 public:
  Comparison(XmlParser& parser, const std::string& document, const DocumentTree& before,
             const DocumentTree& after)
      : parser_(parser), document_(document), before_(before.Root()), after_(after.Root()) {}

  Changes Run() {
    std::map<std::string, std::size_t> next;  // the place behind the last that stayed
    for (const Entry& entry : before_.All()) {
      const Entry* now = after_.Find(entry.GetKey());
      const bool stays = now != nullptr && IsItem(*now->node) == IsItem(*entry.node) &&
                         now->place >= next[entry.collection];
      if (!stays) {
        Remove(entry);
        continue;
      }
      next[entry.collection] = now->place + 1;
      stayed_.insert(now);
      if (!now->EqualsNode(*entry.node)) Add(*now, TextOf(entry), TextOf(*now));
    }
    for (const Entry& entry : after_.All()) {
      if (!stayed_.contains(&entry)) Add(entry, "", TextOf(entry));
    }
    return std::move(changes_);
  }

 private:
  [[nodiscard]] std::string TextOf(const Entry& entry) {
    return ElementText(parser_, IsItem(*entry.node) ? *entry.node : ShellOf(*entry.node));
  }
  void Remove(const Entry& entry) { Add(entry, TextOf(entry), ""); }
  void Add(const Entry& entry, std::string before, std::string after) {
    changes_.push_back({document_, entry.collection, entry.guid, entry.name, entry.number,
                        entry.place, std::move(before), std::move(after)});
  }

  XmlParser& parser_;
  const std::string& document_;
  Entries before_;
  Entries after_;
  std::set<const Entry*> stayed_;
  Changes changes_;
};

// Carries changes over to a tree.
class Carrier {
 public:
  Carrier(XmlParser& parser, DocumentTree& tree) : parser_(parser), tree_(tree) {}

  Changes Run(const Changes& changes) {
    const Entries entries(tree_.Root());
    Changes additions;
    for (const Change& change : changes) {
      if (change.before.empty()) {
        additions.push_back(change);
      } else {
        Take(entries, change);
      }
    }
    if (tree_.Root() != nullptr) RemoveTaken(*tree_.Root());
    std::ranges::stable_sort(additions, {}, [](const Change& change) {
      return std::tuple(std::ranges::count(change.collection, '/'), change.place);
    });
    for (const Change& change : additions) Put(change);
    return std::move(refused_);
  }

 private:
  std::optional<DocumentNode> NodeOf(const std::string& text) {
    auto tree = ReadDocumentTree(parser_, text);
    if (!tree || tree->Root() == nullptr) return std::nullopt;
    return std::move(*tree->Root());
  }

  // Finds what is to be replaced or removed. Replaces it at once.
  void Take(const Entries& entries, const Change& change) {
    const auto before = NodeOf(change.before);
    const auto found = std::ranges::find_if(entries.All(), [&](const Entry& entry) {
      return entry.collection == change.collection && entry.guid == change.guid && before &&
             entry.name == before->Attribute(kName) && !taken_.contains(entry.node) &&
             *entry.node == *before;
    });
    const bool is_item = before && IsItem(*before);
    if (!is_item && change.after.empty()) return TakeCollection(entries, change);
    auto after = change.after.empty() ? std::nullopt : NodeOf(change.after);
    if (found == entries.All().end() || !is_item || (!change.after.empty() && !after)) {
      refused_.push_back(change);
      return;
    }
    taken_.insert(found->node);
    if (after) replacements_.emplace(found->node, std::move(*after));
  }

  void TakeCollection(const Entries& entries, const Change& change) {
    const Entry* found = entries.Find({change.collection, "", change.name, change.number});
    if (found != nullptr && !IsItem(*found->node)) taken_.insert(found->node);
  }

  // Nodes are told apart by where they were when they were taken, so that those inside go first.
  void RemoveTaken(DocumentNode& parent) {
    for (DocumentNode& child : parent.children) {
      if (IsElement(child) && !IsItem(child)) RemoveTaken(child);
    }
    for (DocumentNode& child : parent.children) {
      const auto after = replacements_.find(&child);
      if (after == replacements_.end()) continue;
      child = std::move(after->second);
      taken_.erase(&child);
    }
    std::erase_if(parent.children, [&](const DocumentNode& child) {
      if (!taken_.contains(&child)) return false;
      return IsItem(child) || std::ranges::none_of(child.children, IsElement);
    });
  }

  void Put(const Change& change) {
    DocumentNode* parent = Collection(change.collection);
    auto node = NodeOf(change.after);
    if (parent == nullptr || !node) {
      refused_.push_back(change);
      return;
    }
    const std::size_t twins = TwinsIn(*parent, *node);
    if (twins > change.number && IsItem(*node)) refused_.push_back(change);
    if (twins > change.number) return;
    auto at = parent->children.begin();
    for (std::size_t place = 0; at != parent->children.end(); ++at) {
      if (IsElement(*at) && place++ == change.place) break;
    }
    parent->children.insert(at, std::move(*node));
  }

  static std::size_t TwinsIn(const DocumentNode& parent, const DocumentNode& node) {
    const std::string guid = node.Attribute(kGuid);
    return static_cast<std::size_t>(
        std::ranges::count_if(parent.children, [&](const DocumentNode& other) {
          if (!IsElement(other) || IsItem(other) != IsItem(node)) return false;
          if (!IsItem(node)) return other.name == node.name;
          return other.Attribute(kGuid) == guid &&
                 (!guid.empty() || other.Attribute(kName) == node.Attribute(kName));
        }));
  }

  // The collection to which tags lead; null when it is missing.
  DocumentNode* Collection(std::string_view path) {
    DocumentNode* node = tree_.Root();
    const std::size_t end = path.find('/');
    if (node == nullptr || path.substr(0, end) != node->name) return nullptr;
    while (node != nullptr && path.find('/') != path.npos) {
      path.remove_prefix(path.find('/') + 1);
      node = ChildOf(*node, path.substr(0, path.find('/')));
    }
    return node;
  }

  static DocumentNode* ChildOf(DocumentNode& parent, std::string_view step) {
    const std::size_t mark = step.find('#');
    const std::string_view tag = step.substr(0, mark);
    std::size_t left = mark == step.npos ? 0 : std::stoul(std::string(step.substr(mark + 1)));
    for (DocumentNode& child : parent.children) {
      if (IsElement(child) && !IsItem(child) && child.name == tag && left-- == 0) return &child;
    }
    return nullptr;
  }

  XmlParser& parser_;
  DocumentTree& tree_;
  std::set<const DocumentNode*> taken_;
  std::map<const DocumentNode*, DocumentNode> replacements_;
  Changes refused_;
};

// Adjacent texts are one: so they are when they are read again.
void JoinTexts(std::vector<DocumentNode>& nodes) {
  std::vector<DocumentNode> joined;
  for (DocumentNode& node : nodes) {
    JoinTexts(node.children);
    const bool continues = !joined.empty() && node.kind == DocumentNode::Kind::kText &&
                           joined.back().kind == DocumentNode::Kind::kText;
    if (continues) {
      joined.back().text += node.text;
    } else {
      joined.push_back(std::move(node));
    }
  }
  nodes = std::move(joined);
}

bool LeadsTo(XmlParser& parser, DocumentTree from, const Changes& changes, const DocumentTree& to) {
  if (!Carrier(parser, from).Run(changes).empty()) return false;
  JoinTexts(from.nodes);
  return from == to;
}

// A document that is missing begins as the other one's root with nothing in it.
std::optional<DocumentTree> TreeOf(XmlParser& parser, std::string_view text,
                                   const std::optional<DocumentTree>& other) {
  if (!text.empty() || !other || other->Root() == nullptr) return ReadDocumentTree(parser, text);
  DocumentTree tree = *other;
  std::erase_if(tree.Root()->children, IsElement);
  return tree;
}

Changes XmlChanges(XmlParser& parser, const std::string& document, std::string_view before,
                   std::string_view after) {
  const auto now = ReadDocumentTree(parser, after);
  const auto old = TreeOf(parser, before, now);
  if (old && now && old->Root() != nullptr && now->Root() != nullptr &&
      old->Root()->name == now->Root()->name) {
    Changes changes = Comparison(parser, document, *old, *now).Run();
    const bool is_all =
        LeadsTo(parser, *old, changes, *now) && LeadsTo(parser, *now, Inverse(changes), *old);
    if (is_all) return changes;
  }
  return {{document, "", "", "", 0, 0, std::string(before), std::string(after)}};
}

void ApplyXml(XmlParser& parser, std::string& text, const Changes& changes, Changes& refused) {
  Changes of_elements;
  for (const Change& change : changes) {
    if (!change.collection.empty()) {
      of_elements.push_back(change);
    } else if (text == change.before) {
      text = change.after;
    } else {
      refused.push_back(change);
    }
  }
  if (of_elements.empty()) return;
  auto tree = ReadDocumentTree(parser, text);
  if (!tree) {
    refused.insert(refused.end(), of_elements.begin(), of_elements.end());
    return;
  }
  const DocumentTree old = *tree;
  std::ranges::move(Carrier(parser, *tree).Run(of_elements), std::back_inserter(refused));
  if (*tree != old) text = DocumentTreeText(parser, *tree);
}

bool IsJson(const std::string& document) {
  return document != kCatalogueDocument && document != kProjectDocument;
}

Json ObjectOf(std::string_view text) { return text.empty() ? Json::object() : ParseJson(text); }

std::string TextIn(const Json& object, const std::string& name) {
  const auto found = object.find(name);
  return found == object.end() ? "" : found->dump();
}

Changes JsonChanges(const std::string& document, std::string_view before, std::string_view after) {
  const Json old = ObjectOf(before);
  const Json now = ObjectOf(after);
  std::set<std::string> names;
  for (const Json* object : {&old, &now}) {
    for (const auto& [name, value] : object->items()) names.insert(name);
  }
  Changes changes;
  for (const std::string& name : names) {
    Change change = {document, "", "", name, 0, 0, TextIn(old, name), TextIn(now, name)};
    if (change.before != change.after) changes.push_back(std::move(change));
  }
  return changes;
}

void ApplyJson(std::string& text, const Changes& changes, Changes& refused) {
  Json object = ObjectOf(text);
  for (const Change& change : changes) {
    if (TextIn(object, change.name) != change.before) {
      refused.push_back(change);
    } else if (change.after.empty()) {
      object.erase(change.name);
    } else {
      object[change.name] = ParseJson(change.after);
    }
  }
  text = object.dump();
}

}  // namespace

Changes ChangesBetween(XmlParser& parser, const std::string& document, std::string_view before,
                       std::string_view after) {
  if (before == after) return {};
  return IsJson(document) ? JsonChanges(document, before, after)
                          : XmlChanges(parser, document, before, after);
}

Changes ChangesBetween(XmlParser& parser, const Documents& before, const Documents& after) {
  Changes changes;
  for (const auto& [document, text] : before) {
    const auto now = after.find(document);
    if (now == after.end()) continue;
    std::ranges::move(ChangesBetween(parser, document, text, now->second),
                      std::back_inserter(changes));
  }
  return changes;
}

Changes Inverse(Changes changes) {
  for (Change& change : changes) std::swap(change.before, change.after);
  std::ranges::reverse(changes);
  return changes;
}

Applied Apply(XmlParser& parser, Documents documents, const Changes& changes) {
  Applied applied{std::move(documents), {}};
  std::map<std::string, Changes> by_document;
  for (const Change& change : changes) by_document[change.document].push_back(change);
  for (const auto& [document, of_one] : by_document) {
    const auto text = applied.documents.find(document);
    if (text == applied.documents.end()) {
      applied.refused.insert(applied.refused.end(), of_one.begin(), of_one.end());
    } else if (IsJson(document)) {
      ApplyJson(text->second, of_one, applied.refused);
    } else {
      ApplyXml(parser, text->second, of_one, applied.refused);
    }
  }
  return applied;
}

bool Holds(XmlParser& parser, const Documents& documents, const Changes& changes) {
  return Apply(parser, documents, Inverse(changes)).refused.empty();
}

}  // namespace kvdm
