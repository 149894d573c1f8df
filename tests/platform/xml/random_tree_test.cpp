// Random changes of several trees at once, built and loaded ones, with handles kept and dropped,
// beside plain trees of pointers on which the same is done.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "platform/xml/node.h"
#include "tests/platform/xml/parsed.h"

namespace kvdm::xml {
namespace {

struct Plain {
  std::string tag;  // "" of a text
  std::string text;
  std::vector<std::pair<std::string, std::string>> attributes;
  std::vector<std::shared_ptr<Plain>> children;
  Plain* parent = nullptr;

  ~Plain() {
    for (const auto& child : children) child->parent = nullptr;
  }
  [[nodiscard]] std::string Xml() const {
    if (tag.empty()) return text;
    std::string form = "<" + tag;
    for (const auto& [name, value] : attributes) form += " " + name + "=\"" + value + "\"";
    std::string content;
    for (const auto& child : children) content += child->Xml();
    return content.empty() ? form + "/>" : form + ">" + content + "</" + tag + ">";
  }
};

using PlainRef = std::shared_ptr<Plain>;

PlainRef Copy(const Plain& plain, Plain* parent = nullptr) {
  auto copy = std::make_shared<Plain>(Plain{plain.tag, plain.text, plain.attributes, {}, parent});
  for (const auto& child : plain.children) copy->children.push_back(Copy(*child, copy.get()));
  return copy;
}

bool IsAtOrAbove(const Plain* above, const Plain* node) {
  while (node != nullptr && node != above) node = node->parent;
  return node != nullptr;
}

void Detach(Plain& child) {
  if (child.parent == nullptr) return;
  std::erase_if(child.parent->children, [&](const PlainRef& ref) { return ref.get() == &child; });
  child.parent = nullptr;
}

void Attach(Plain& parent, const PlainRef& child) {
  Detach(*child);
  parent.children.push_back(child);
  child->parent = &parent;
}

class RandomTrees {
 public:
  explicit RandomTrees(unsigned seed) : random_(seed) {}

  void Change() {
    if (held_.empty() || Below(8) == 0) return Create();
    const auto [element, plain] = held_[Below(held_.size())];
    switch (Below(20)) {
      case 0:
        return SetText(element, plain);
      case 1:
        return Remove(element, plain);
      case 2:
        return RemoveAttribute(element, plain);
      case 3:
        return Descend(element, plain);
      case 4:
        held_.erase(held_.begin() + static_cast<std::ptrdiff_t>(Below(held_.size())));
        return;
      case 5:
      case 6:
      case 7:
        // To one of the first, which so get many children.
        return Append(held_[Below(std::min<std::size_t>(held_.size(), 3))]);
      case 8:
        return Append(held_[Below(held_.size())]);
      case 9:
        return Reload(held_[Below(std::min<std::size_t>(held_.size(), 3))]);
      case 10:
        return Save();
      default:
        return SetAttribute(element, plain);
    }
  }

  void Check() const {
    for (const auto& [element, plain] : held_) {
      ASSERT_EQ(element.Xml(), plain->Xml());
      ASSERT_EQ(static_cast<bool>(element.Parent()), plain->parent != nullptr);
      for (const std::string value : {"0", "1", "2"}) {
        const auto found = element.Child("B", "N", value);
        const auto expected = std::ranges::find_if(plain->children, [&](const PlainRef& child) {
          return child->tag == "B" &&
                 std::ranges::find(child->attributes, std::pair{std::string("N"), value}) !=
                     child->attributes.end();
        });
        ASSERT_EQ(found ? found.Xml() : "",
                  expected == plain->children.end() ? "" : (*expected)->Xml());
      }
    }
  }

 private:
  std::size_t Below(std::size_t end) { return random_() % end; }

  void Create() {
    const std::string tag = Below(2) == 0 ? "A" : "B";
    const bool near = !held_.empty() && Below(3) != 0;
    const auto element =
        near ? held_[Below(held_.size())].first.CreateNear(tag) : Element::Create(tag);
    held_.emplace_back(element, std::make_shared<Plain>(Plain{tag, {}, {}, {}, nullptr}));
    // No two are alike.
    const std::string mark = std::to_string(++created_);
    element.SetAttribute("MARK", mark);
    held_.back().second->attributes.emplace_back("MARK", mark);
  }

  void Append(const std::pair<Element, PlainRef>& parent) {
    const auto [element, plain] = parent;
    const auto [child, plain_child] = held_[Below(held_.size())];
    if (IsAtOrAbove(plain_child.get(), plain.get())) return;
    element.Append(child);
    Attach(*plain, plain_child);
  }

  // From what a document is written as, so that the tree keeps the text.
  void Reload(std::pair<Element, PlainRef>& held) {
    documents_.push_back(std::make_unique<Document>());
    ASSERT_TRUE(Load(*documents_.back(), held.second->Xml() + "\r\n"));
    held = {documents_.back()->DocumentElement(), Copy(*held.second)};
    roots_.push_back(held);
    const auto [element, plain] = held;
    Descend(element, plain);
  }

  // The forms of small elements are kept then.
  void Save() const {
    for (const auto& document : documents_) {
      const auto root = document->DocumentElement();
      ASSERT_EQ(document->Xml(), root ? root.Xml() + "\r\n" : "");
    }
  }

  void SetText(const Element& element, const PlainRef& plain) {
    const std::string text(Below(40), 't');
    element.SetText(text);
    for (const auto& child : plain->children) child->parent = nullptr;
    plain->children.clear();
    if (text.empty()) return;
    Attach(*plain, std::make_shared<Plain>(Plain{{}, text, {}, {}, nullptr}));
  }

  static void Remove(const Element& element, const PlainRef& plain) {
    if (plain->children.empty()) return;
    element.Remove(element.FirstChild());
    Detach(*PlainRef(plain->children.front()));
  }

  void Descend(const Element& element, const PlainRef& plain) {
    const Element child(element.FirstChild());
    if (!child) return;
    held_.emplace_back(child, plain->children.front());
    if (Below(2) == 0) Descend(child, PlainRef(plain->children.front()));
  }

  void SetAttribute(const Element& element, const PlainRef& plain) {
    const std::string name = Below(2) == 0 ? "N" : "M";
    const std::string value =
        Below(3) == 0 ? std::string(Below(100), 'v') : std::to_string(Below(3));
    element.SetAttribute(name, value);
    const auto found =
        std::ranges::find(plain->attributes, name, [](const auto& row) { return row.first; });
    if (found == plain->attributes.end()) {
      plain->attributes.emplace_back(name, value);
    } else {
      found->second = value;
    }
  }

  static void RemoveAttribute(const Element& element, const PlainRef& plain) {
    element.RemoveAttribute("N");
    std::erase_if(plain->attributes, [](const auto& row) { return row.first == "N"; });
  }

  std::mt19937 random_;
  int created_ = 0;
  std::vector<std::unique_ptr<Document>> documents_;
  std::vector<std::pair<Element, PlainRef>> roots_;  // which their documents keep alive
  std::vector<std::pair<Element, PlainRef>> held_;
};

TEST(RandomTreeTest, ATreeAnswersAsAPlainOneDoes) {
  constexpr unsigned kHistories = 100;
  const std::size_t few = FewChildren();
  IndexMoreChildrenThan(2);
  for (unsigned seed = 0; seed < kHistories; ++seed) {
    RandomTrees trees(seed);
    for (int i = 0; i < 300; ++i) {
      trees.Change();
      if (i % 10 != 0) continue;
      ASSERT_NO_FATAL_FAILURE(trees.Check()) << "seed " << seed << ", change " << i;
    }
  }
  IndexMoreChildrenThan(few);
}

}  // namespace
}  // namespace kvdm::xml
