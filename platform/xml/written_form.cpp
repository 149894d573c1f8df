// Strict reader: reads texts that are written exactly as the serializer writes them, and no other.
#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "platform/xml/limits.h"
#include "platform/xml/records.h"
#include "platform/xml/serializer.h"
#include "platform/xml/xml_text.h"

namespace kvdm::xml {
namespace {

class WrittenReader {
 public:
  WrittenReader(std::string_view text, Records& records, Number top)
      : records_(records), top_(top), current_(top) {
    const std::string_view kept = records.texts.Load(text);
    at_ = kept.data();
    end_ = at_ + kept.size();
  }

  bool ReadAll() {
    Take(kDeclaration);
    while (at_ != end_) {
      if (!ReadNode() || (current_ == top_ && !Take(kLineEnd))) return false;
    }
    return current_ == top_ && has_root_;
  }

 private:
  // What is known of a name: the last elements with that attribute, and with that tag.
  struct Seen {
    Number in = 0;
    Number latest = 0;
  };

  bool ReadNode() {
    if (*at_ != '<') return current_ != top_ && ReadText();
    if (at_[1] == '/') return ReadEndTag();
    if (Take("<!--")) return ReadComment();
    return ReadStartTag();
  }

  bool ReadStartTag() {
    if (current_ == top_ && std::exchange(has_root_, true)) return false;
    const char* const start = at_++;
    const Number tag = TakeName();
    if (tag == 0 || depth_ == kMaxDepth) return false;
    const Number element = Add(NodeType::kElement);
    records_.nodes[element].name = tag;
    if (!ReadAttributes(element, std::exchange(seen_[tag].latest, element))) return false;
    records_.nodes[element].text = records_.texts.PieceOf(start, at_, false);
    if (Take("/>")) return End(element);
    ++depth_;
    current_ = element;
    return Take(">");
  }

  // An element without content has none.
  bool ReadEndTag() {
    const NodeRecord& element = records_.nodes[current_];
    if (element.first == 0 || current_ == top_) return false;
    if (!Take(records_.names[element.name].end_tag)) return false;
    --depth_;
    return End(std::exchange(current_, element.parent));
  }

  bool End(Number element) {
    Piece& written = records_.nodes[element].text;
    written.size = records_.texts.PieceOf(at_, at_, false).at - written.at;
    return true;
  }

  // Expects those of `similar`, in their order, and is fast where it finds them.
  bool ReadAttributes(Number element, Number similar) {
    Number likely = similar == 0 ? 0 : records_.nodes[similar].attributes;
    std::size_t count = 0;
    for (Number last = 0; *at_ == ' ';) {
      const Number name = TakeAttributeName(likely);
      if (name == 0 || std::exchange(seen_[name].in, element) == element) return false;
      Piece value;
      if (!TakeText(Place::kAttribute, '"', value) || ++count > kMaxAttributes) return false;
      ++at_;
      last = records_.AttachAttribute(element, last, name, value);
      if (likely != 0) likely = records_.attributes[likely].next;
    }
    return true;
  }

  // Of ` name="`; 0 when it is none.
  Number TakeAttributeName(Number likely) {
    if (likely != 0) {
      const Number name = records_.attributes[likely].name;
      if (Take(records_.names[name].attribute)) return name;
    }
    ++at_;
    const Number name = TakeName();
    return Take("=\"") ? name : 0;
  }

  // 0 when it is none, or may have to do with a prefix.
  Number TakeName() {
    const char* const start = at_;
    while (static_cast<unsigned char>(*at_) > ' ' && *at_ != '=' && *at_ != '/' && *at_ != '>')
      ++at_;
    const std::string_view name(start, static_cast<std::size_t>(at_ - start));
    if (const Number known = records_.names.Find(name)) return known;
    const bool is_good = name.size() <= kMaxNameBytes && IsPlainName(name) &&
                         std::string_view(Sanitized(name)) == name && !IsNamespaceDeclaration(name);
    if (!is_good) return 0;
    const Number number = records_.names.Add(name);
    seen_.resize(number + 1);
    return number;
  }

  bool ReadText() {
    Piece text;
    return TakeText(Place::kText, '<', text) && AddText(NodeType::kText, text);
  }

  bool ReadComment() {
    const std::string_view rest(at_, static_cast<std::size_t>(end_ - at_));
    const std::string_view written = rest.substr(0, rest.find("--"));
    Piece text;
    if (!Decode(written, Place::kRemark, text)) return false;
    at_ += written.size();
    return Take("-->") && AddText(NodeType::kComment, text);
  }

  bool AddText(NodeType type, Piece text) {
    const Number node = Add(type);
    records_.nodes[node].text = text;
    records_.CountRun(node);
    return true;
  }

  // What stands before `end`.
  bool TakeText(Place place, char end, Piece& text) {
    const char* const start = at_;
    SkipPlain();
    const bool is_plain = *at_ == end;
    if (!is_plain) {
      at_ = std::find(at_, end_, end);
    }
    const auto size = static_cast<std::size_t>(at_ - start);
    if (at_ == end_ || size > kMaxValueBytes) return false;
    if (!is_plain) return Decode({start, size}, place, text);
    text = records_.texts.PieceOf(start, at_, true);
    return true;
  }

  // To the first byte that is not ASCII or may be written otherwise somewhere, as the zeros behind
  // the text are.
  void SkipPlain() {
    while (true) {
      std::uint64_t word = 0;
      std::memcpy(&word, at_, sizeof word);
      const std::uint64_t marks = MarkupOrForeign(word);
      if (marks != 0) {
        at_ += static_cast<std::size_t>(std::countr_zero(marks)) / sizeof word;
        return;
      }
      at_ += sizeof word;
    }
  }

  bool Decode(std::string_view written, Place place, Piece& text) {
    if (std::string_view(Sanitized(written)) != written) return false;
    std::string decoded;
    std::string_view rest = written;
    while (true) {
      const std::size_t plain = PlainRun(rest);
      decoded += rest.substr(0, plain);
      rest.remove_prefix(plain);
      if (rest.empty()) break;
      const auto special = std::ranges::find_if(kSpecial, [&](char character) {
        const std::string_view form = WrittenAs(character, place);
        return form.empty() ? rest.starts_with(character) : rest.starts_with(form);
      });
      if (special == kSpecial.end()) return false;
      decoded += *special;
      rest.remove_prefix(std::max<std::size_t>(1, WrittenAs(*special, place).size()));
    }
    const char* const start = written.data();
    text = decoded == written ? records_.texts.PieceOf(start, start + written.size(), false)
                              : records_.texts.Add(decoded);
    return true;
  }

  bool Take(std::string_view expected) {
    if (static_cast<std::size_t>(end_ - at_) < expected.size()) return false;
    if (std::memcmp(at_, expected.data(), expected.size()) != 0) return false;
    at_ += expected.size();
    return true;
  }

  Number Add(NodeType type) {
    const Number number = records_.nodes.Take();
    records_.nodes[number].type = type;
    records_.Attach(current_, number);
    return number;
  }

  Records& records_;
  const char* at_;
  const char* end_;
  Number top_;
  Number current_;
  std::size_t depth_ = 0;
  bool has_root_ = false;
  std::vector<Seen> seen_;  // by name
};

}  // namespace

bool ReadWrittenForm(std::string_view text, Records& records, Number top) {
  return WrittenReader(text, records, top).ReadAll();
}

}  // namespace kvdm::xml
