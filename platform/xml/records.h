// What an element tree is stored as: small records that know each other by number.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/xml/pool.h"
#include "platform/xml/texts.h"

namespace kvdm::xml {

enum class NodeType : std::uint8_t {
  kElement = 1,
  kText = 3,
  kInstruction = 7,
  kComment = 8,
  kDocument = 9,
  kMoved,  // to another tree
};

struct NodeRecord {
  Number next = 0;
  Number previous = 0;
  Number parent = 0;
  Number first = 0;  // child
  Number last = 0;
  Number name = 0;        // an element's tag, an instruction's target
  Number attributes = 0;  // the first
  Number index = 0;       // over the children
  Number holds = 0;       // by handles
  Piece text;             // of a node without children; what an element is written as, if known
  Number run = 0;         // the bytes of a text and of the texts right before it
  NodeType type = NodeType::kElement;
};

struct AttributeRecord {
  Number next = 0;
  Number owner = 0;
  Number name = 0;
  Piece value;
  // The attributes with this value in an index, in a ring.
  Number next_alike = 0;
  Number previous_alike = 0;
};

struct Records {
  // The attribute of an element that has the name; 0 when it is missing.
  [[nodiscard]] Number FindAttribute(Number element, Number name) const {
    Number attribute = nodes[element].attributes;
    while (attribute != 0 && attributes[attribute].name != name) {
      attribute = attributes[attribute].next;
    }
    return attribute;
  }

  // Makes `child`, which has no parent, the last child.
  void Attach(Number parent, Number child) {
    NodeRecord& above = nodes[parent];
    NodeRecord& record = nodes[child];
    record.parent = parent;
    record.previous = above.last;
    (above.last == 0 ? above.first : nodes[above.last].next) = child;
    above.last = child;
    CountRun(child);
  }

  void CountRun(Number number) {
    NodeRecord& record = nodes[number];
    if (record.type != NodeType::kText) return;
    record.run = record.text.size + (record.previous == 0 ? 0 : nodes[record.previous].run);
  }

  // A new attribute after `last`, the last that the element has.
  Number AttachAttribute(Number element, Number last, Number name, Piece value) {
    const Number number = attributes.Take();
    AttributeRecord& record = attributes[number];
    record.owner = element;
    record.name = name;
    record.value = value;
    (last == 0 ? nodes[element].attributes : attributes[last].next) = number;
    return number;
  }

  Pool<NodeRecord> nodes;
  Pool<AttributeRecord> attributes;
  Names names;
  Texts texts;
};

// Fills `records`, which have nothing but the document `top`, with what `text` says. False when a
// single byte of it is not as the serializer would write the tree, when it has instructions or
// prefixes of names, or exceeds a limit: a conforming parser may still take it. The records are
// then of no use. What it takes, every conforming parser takes, for the same tree.
[[nodiscard]] bool ReadWrittenForm(std::string_view text, Records& records, Number top);

}  // namespace kvdm::xml
