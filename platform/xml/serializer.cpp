#include "platform/xml/serializer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

#include <kvdm/platform/error.h>

#include "platform/utf8.h"
#include "platform/xml/tree.h"
#include "platform/xml/xml_text.h"

namespace kvdm::xml {
namespace {

// Puts the text form of `text` into `sink`. Outside attributes CR LF is one line end.
template <class Sink>
void PutEscaped(std::string_view text, Place place, Sink& sink) {
  while (true) {
    const std::size_t plain = PlainRun(text);
    sink.Put(text.substr(0, plain));
    text.remove_prefix(plain);
    if (text.empty()) return;
    const std::string_view written = WrittenAs(text.front(), place);
    const bool is_pair = written == kLineEnd && text.starts_with(kLineEnd);
    sink.Put(written.empty() ? text.substr(0, 1) : written);
    text.remove_prefix(is_pair ? 2 : 1);
  }
}

struct Count {
  void Put(std::string_view text) { bytes += text.size(); }
  std::size_t bytes = 0;
};

// A text that grows at its end, by small pieces that are put together first.
class Buffer {
 public:
  explicit Buffer(std::size_t expected) { text_.reserve(expected); }

  template <class... Texts>
  void Put(const Texts&... texts) {
    const std::size_t size = (texts.size() + ...);
    if (size > static_cast<std::size_t>(pieces_.data() + pieces_.size() - end_)) Flush();
    if (size > pieces_.size()) {
      (text_.append(texts), ...);
    } else {
      char* end = end_;
      ((end = Copied(texts, end)), ...);
      end_ = end;
    }
  }
  [[nodiscard]] std::size_t Size() const {
    return text_.size() + static_cast<std::size_t>(end_ - pieces_.data());
  }
  std::string Take() {
    Flush();
    return std::move(text_);
  }

 private:
  void Flush() {
    text_.append(pieces_.data(), end_);
    end_ = pieces_.data();
  }
  // Copies `text`, a short one in two blocks of one size, which may overlap; where it ends then.
  [[gnu::always_inline]] static char* Copied(std::string_view text, char* to) {
    if (text.size() > 64) {
      std::memcpy(to, text.data(), text.size());
    } else if (text.size() > 16) {
      text.size() > 32 ? CopyTwice<32>(text, to) : CopyTwice<16>(text, to);
    } else if (text.size() >= 8) {
      CopyTwice<8>(text, to);
    } else if (text.size() >= 4) {
      CopyTwice<4>(text, to);
    } else if (!text.empty()) {
      to[0] = text.front();
      to[text.size() / 2] = text[text.size() / 2];
      to[text.size() - 1] = text.back();
    }
    return to + text.size();
  }
  template <std::size_t block>
  static void CopyTwice(std::string_view text, char* to) {
    const std::size_t second = text.size() - block;
    std::memcpy(to, text.data(), block);
    std::memcpy(to + second, text.data() + second, block);
  }

  std::array<char, 8192> pieces_;
  char* end_ = pieces_.data();
  std::string text_;
};

class Serializer {
 public:
  Serializer(const Tree& tree, std::size_t expected, const std::function<bool(char32_t)>* holds,
             std::vector<WrittenElement>* fresh)
      : tree_(tree), holds_(holds), fresh_(fresh), output_(expected) {}

  void Write(Number number) {
    const NodeRecord& record = tree_.node(number);
    switch (record.type) {
      case NodeType::kDocument:
        return WriteDocument(record);
      case NodeType::kElement:
        return WriteElement(number, record);
      case NodeType::kText:
        return PutText("", record.text, Place::kText, "");
      case NodeType::kComment:
        return PutText("<!--", record.text, Place::kRemark, "-->");
      default:
        output_.Put(kInstruction, CheckedName(record.name).text);
        return PutText(record.text.size == 0 ? "" : " ", record.text, Place::kRemark, "?>");
    }
  }

  std::string Take() { return output_.Take(); }

 private:
  static constexpr std::string_view kInstruction = "<?";
  static constexpr std::string_view kQuote = "\"";
  // Of an element whose form is worth keeping: not so large that a change costs too much.
  static constexpr std::size_t kMostKept = 4096;

  void WriteDocument(const NodeRecord& record) {
    if (tree_.IsDeclared()) output_.Put(kDeclaration);
    for (Number child = record.first; child != 0; child = tree_.node(child).next) {
      Write(child);
      output_.Put(kLineEnd);
    }
  }

  void WriteElement(Number number, const NodeRecord& record) {
    const std::string_view written = tree_.TextOf(record.text);
    if (!written.empty() && IsHeld(written)) return output_.Put(written);
    const std::size_t start = output_.Size();
    const Name& tag = CheckedName(record.name);
    output_.Put(tag.start_tag);
    for (Number own = record.attributes; own != 0;) {
      const AttributeRecord& attribute = tree_.AttributeAt(own);
      PutText(CheckedName(attribute.name).attribute, attribute.value, Place::kAttribute, kQuote);
      own = attribute.next;
    }
    const bool has_content = tree_.HasContent(number);
    output_.Put(std::string_view(has_content ? ">" : "/>"));
    for (Number child = record.first; child != 0; child = tree_.node(child).next) Write(child);
    if (has_content) output_.Put(tag.end_tag);
    if (fresh_ != nullptr) Note(number, start);
  }

  void Note(Number element, std::size_t start) {
    const std::size_t size = output_.Size() - start;
    if (size > kMostKept) return;
    while (!fresh_->empty() && fresh_->back().at > start) fresh_->pop_back();
    fresh_->push_back({element, start, size});
  }

  // Names can't have references.
  [[nodiscard]] const Name& CheckedName(Number number) const {
    const Name& name = tree_.NameAt(number);
    if (holds_ != nullptr) Check(name);
    return name;
  }
  void Check(const Name& name) const {
    if (!IsHeld(name.text)) throw RuntimeError(kInvalidCall);
  }

  [[nodiscard]] bool IsHeld(std::string_view text) const {
    return holds_ == nullptr || HeldRun(text).size() == text.size();
  }

  // The text with what is around it.
  void PutText(std::string_view before, Piece piece, Place place, std::string_view after) {
    const std::string_view text = tree_.TextOf(piece);
    if (piece.is_plain && holds_ == nullptr) {
      output_.Put(before, text, after);
    } else {
      PutSpecial(before, text, place, after);
    }
  }
  void PutSpecial(std::string_view before, std::string_view text, Place place,
                  std::string_view after) {
    output_.Put(before);
    while (holds_ != nullptr) {
      const std::string_view held = HeldRun(text);
      PutEscaped(held, place, output_);
      text.remove_prefix(held.size());
      if (text.empty()) break;
      PutReplacement(TakeCodePoint(text).value, place, text);
    }
    PutEscaped(text, place, output_);
    output_.Put(after);
  }

  // "?>" would end an instruction.
  void PutReplacement(char32_t character, Place place, std::string_view rest) {
    if (place == Place::kRemark)
      return output_.Put(std::string(1, rest.starts_with('>') ? '_' : '?'));
    output_.Put("&#" + std::to_string(static_cast<unsigned long>(character)) + ";");
  }

  // The start of `text` that can be held.
  [[nodiscard]] std::string_view HeldRun(std::string_view text) const {
    std::string_view rest = text;
    while (true) {
      rest.remove_prefix(AsciiRun(rest));
      std::string_view next = rest;
      if (rest.empty() || !(*holds_)(TakeCodePoint(next).value)) break;
      rest = next;
    }
    return text.substr(0, text.size() - rest.size());
  }

  const Tree& tree_;
  const std::function<bool(char32_t)>* holds_;
  std::vector<WrittenElement>* fresh_;
  Buffer output_;
};

}  // namespace

std::string_view WrittenAs(char character, Place place) {
  const bool in_attribute = place == Place::kAttribute;
  const bool is_remark = place == Place::kRemark;
  switch (character) {
    case '<':
      return is_remark ? "" : "&lt;";
    case '>':
      return is_remark ? "" : "&gt;";
    case '&':
      return is_remark ? "" : "&amp;";
    case '"':
      return in_attribute ? "&quot;" : "";
    case '\t':
      return in_attribute ? "&#9;" : "";
    case '\n':
      return in_attribute ? "&#10;" : kLineEnd;
    case '\r':
      return in_attribute ? "&#13;" : kLineEnd;
    default:
      return {};
  }
}

std::string TextForm(const Tree& tree, Number number, const std::function<bool(char32_t)>* holds,
                     std::vector<WrittenElement>* fresh) {
  const bool is_all = tree.node(number).type == NodeType::kDocument;
  Serializer serializer(tree, is_all ? tree.Bytes() : 0, holds, fresh);
  serializer.Write(number);
  return serializer.Take();
}

std::size_t EscapedBytes(std::string_view text, Place place) {
  Count count;
  PutEscaped(text, place, count);
  return count.bytes;
}

std::size_t AttributeBytes(std::string_view name, std::size_t value) {
  return std::string_view(R"( ="")").size() + name.size() + value;
}

std::size_t EmptyElementBytes(std::string_view tag) {
  return std::string_view("</>").size() + tag.size();
}

// "<tag>" and "</tag>" instead of "<tag/>".
std::size_t ClosingBytes(std::string_view tag) {
  return std::string_view("</>").size() + tag.size() - std::string_view("/").size();
}

std::size_t CommentBytes(std::size_t text) { return std::string_view("<!---->").size() + text; }

std::size_t InstructionBytes(std::string_view target, std::size_t data) {
  constexpr std::size_t kAround = 4;  // "<?" and what ends it
  return kAround + target.size() + (data == 0 ? 0 : 1) + data;
}

}  // namespace kvdm::xml
