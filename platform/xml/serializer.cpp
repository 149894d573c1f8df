#include "platform/xml/serializer.h"

#include <algorithm>
#include <array>
#include <bit>
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
    text.remove_prefix(sink.PutPlain(text));
    if (text.empty()) return;
    const std::string_view written = WrittenAs(text.front(), place);
    const bool is_pair = written == kLineEnd && text.starts_with(kLineEnd);
    sink.Put(written.empty() ? text.substr(0, 1) : written);
    text.remove_prefix(is_pair ? 2 : 1);
  }
}

struct Count {
  void Put(std::string_view text) { bytes += text.size(); }
  std::size_t PutPlain(std::string_view text) {
    const std::size_t plain = PlainRun(text);
    bytes += plain;
    return plain;
  }
  std::size_t bytes = 0;
};

std::size_t EscapedBytes(std::string_view text, Place place) {
  Count count;
  PutEscaped(text, place, count);
  return count.bytes;
}

// A text that grows at its end, by small pieces that are put together first.
class Buffer {
 public:
  explicit Buffer(std::size_t expected) { text_.reserve(expected); }

  void Put(char character) {
    MakeRoom();
    *end_++ = character;
  }
  void Put(std::string_view text) {
    if (text.size() > kRoom) return PutLong(text);
    MakeRoom();
    Copy(text.data(), text.size());
  }
  // Puts the plain run at the start of `text`; its size.
  std::size_t PutPlain(std::string_view text) {
    std::size_t plain = 0;
    while (plain < text.size()) {
      MakeRoom();
      const std::string_view part = text.substr(plain, kRoom);
      const std::size_t run = CopyPlain(part);
      plain += run;
      if (run < part.size()) break;
    }
    return plain;
  }
  std::string Take() {
    Flush();
    return std::move(text_);
  }

 private:
  static constexpr std::size_t kWord = sizeof(std::uint64_t);
  static constexpr std::size_t kRoom = 256;

  void MakeRoom() {
    if (pieces_.data() + pieces_.size() - end_ < static_cast<std::ptrdiff_t>(kRoom)) Flush();
  }
  void Flush() {
    text_.append(pieces_.data(), end_);
    end_ = pieces_.data();
  }
  void PutLong(std::string_view text) {
    Flush();
    text_ += text;
  }
  std::uint64_t CopyWord(const char* from, std::size_t at) {
    std::uint64_t word = 0;
    std::memcpy(&word, from + at, kWord);
    std::memcpy(end_ + at, &word, kWord);
    return word;
  }
  // The last word is copied twice in part.
  void Copy(const char* from, std::size_t size) {
    if (size < kWord) {
      std::copy_n(from, size, end_);
    } else {
      for (std::size_t at = 0; at < size - kWord; at += kWord) CopyWord(from, at);
      CopyWord(from, size - kWord);
    }
    end_ += size;
  }
  // Stops at what is not plain.
  std::size_t CopyPlain(std::string_view text) {
    std::size_t run = text.size();
    if (run < kWord) {
      run = PlainRun(text);
      std::copy_n(text.data(), run, end_);
    } else {
      const std::size_t last = run - kWord;
      for (std::size_t at = 0;; at = std::min(at + kWord, last)) {
        const std::uint64_t marks = Markup(CopyWord(text.data(), at));
        if (marks != 0) run = at + static_cast<std::size_t>(std::countr_zero(marks)) / kWord;
        if (marks != 0 || at == last) break;
      }
    }
    end_ += run;
    return run;
  }

  std::array<char, 8192> pieces_;
  char* end_ = pieces_.data();
  std::string text_;
};

class Serializer {
 public:
  Serializer(const Tree& tree, std::size_t expected, const std::function<bool(char32_t)>* holds)
      : tree_(tree), holds_(holds), output_(expected) {}

  void Write(Number number) {
    const NodeRecord& record = tree_.node(number);
    switch (record.type) {
      case NodeType::kDocument:
        return WriteDocument(record);
      case NodeType::kElement:
        return WriteElement(number);
      case NodeType::kText:
        return PutText(tree_.TextOf(record.text), Place::kText);
      case NodeType::kComment:
        output_.Put("<!--");
        PutText(tree_.TextOf(record.text), Place::kRemark);
        return output_.Put("-->");
      default:
        return WriteInstruction(record);
    }
  }

  std::string Take() { return output_.Take(); }

 private:
  void WriteDocument(const NodeRecord& record) {
    if (tree_.IsDeclared()) output_.Put(kDeclaration);
    for (Number child = record.first; child != 0; child = tree_.node(child).next) {
      Write(child);
      output_.Put(kLineEnd);
    }
  }

  void WriteElement(Number number) {
    const NodeRecord& record = tree_.node(number);
    const std::string_view written = tree_.TextOf(record.text);
    if (!written.empty() && IsHeld(written)) return output_.Put(written);
    const Name& tag = CheckedName(record.name);
    output_.Put(tag.start_tag);
    for (Number own = record.attributes; own != 0; own = tree_.AttributeAt(own).next) {
      const AttributeRecord& attribute = tree_.AttributeAt(own);
      output_.Put(CheckedName(attribute.name).attribute);
      PutText(tree_.TextOf(attribute.value), Place::kAttribute);
      output_.Put('"');
    }
    if (!tree_.HasContent(number)) return output_.Put("/>");
    output_.Put('>');
    for (Number child = record.first; child != 0; child = tree_.node(child).next) Write(child);
    output_.Put(tag.end_tag);
  }

  void WriteInstruction(const NodeRecord& record) {
    output_.Put("<?");
    output_.Put(CheckedName(record.name).text);
    if (record.text.size != 0) output_.Put(' ');
    PutText(tree_.TextOf(record.text), Place::kRemark);
    output_.Put("?>");
  }

  // Names can't have references.
  [[nodiscard]] const Name& CheckedName(Number number) const {
    const Name& name = tree_.NameAt(number);
    if (!IsHeld(name.text)) throw RuntimeError(kInvalidCall);
    return name;
  }

  [[nodiscard]] bool IsHeld(std::string_view text) const {
    return holds_ == nullptr || HeldRun(text).size() == text.size();
  }

  void PutText(std::string_view text, Place place) {
    if (holds_ == nullptr) return PutEscaped(text, place, output_);
    while (true) {
      const std::string_view held = HeldRun(text);
      PutEscaped(held, place, output_);
      text.remove_prefix(held.size());
      if (text.empty()) return;
      PutReplacement(TakeCodePoint(text).value, place, text);
    }
  }

  // "?>" would end an instruction.
  void PutReplacement(char32_t character, Place place, std::string_view rest) {
    if (place == Place::kRemark) return output_.Put(rest.starts_with('>') ? '_' : '?');
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

std::string TextForm(const Tree& tree, Number number, const std::function<bool(char32_t)>* holds) {
  const bool is_all = tree.node(number).type == NodeType::kDocument;
  Serializer serializer(tree, is_all ? tree.Bytes() : 0, holds);
  serializer.Write(number);
  return serializer.Take();
}

std::size_t AttributeBytes(std::string_view name, std::string_view value) {
  return std::string_view(R"( ="")").size() + name.size() + EscapedBytes(value, Place::kAttribute);
}

std::size_t EmptyElementBytes(std::string_view tag) {
  return std::string_view("</>").size() + tag.size();
}

// "<tag>" and "</tag>" instead of "<tag/>".
std::size_t ClosingBytes(std::string_view tag) {
  return std::string_view("</>").size() + tag.size() - std::string_view("/").size();
}

std::size_t TextBytes(std::string_view text) { return EscapedBytes(text, Place::kText); }

std::size_t CommentBytes(std::string_view text) {
  return std::string_view("<!---->").size() + EscapedBytes(text, Place::kRemark);
}

std::size_t InstructionBytes(std::string_view target, std::string_view data) {
  const std::size_t blank = data.empty() ? 0 : 1;
  return std::string_view(
             "<?"
             "?>")
             .size() +
         target.size() + blank + EscapedBytes(data, Place::kRemark);
}

}  // namespace kvdm::xml
