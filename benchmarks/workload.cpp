#include "benchmarks/workload.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <random>

namespace kvdm::bench {
namespace {

std::string GuidOf(std::size_t number) {
  std::mt19937_64 random(number + 1);
  std::array<char, 40> text{};
  const std::uint64_t high = random();
  const std::uint64_t low = random();
  std::snprintf(text.data(), text.size(), "{%08X-%04X-%04X-%04X-%012llX}",
                static_cast<unsigned>(high >> 32U), static_cast<unsigned>(high >> 16U & 0xFFFFU),
                static_cast<unsigned>(high & 0xFFFFU), static_cast<unsigned>(low >> 48U),
                static_cast<unsigned long long>(low & 0xFFFFFFFFFFFFU));
  return text.data();
}

template <class Text>
std::vector<std::string> Keys(const std::vector<Item>& items, const Text& text) {
  constexpr std::size_t kMost = 1U << 16U;
  std::vector<std::string> keys;
  for (const std::size_t number : Shuffled(items.size())) {
    if (keys.size() == kMost) break;
    keys.push_back(text(items[number]));
  }
  return keys;
}

class Writer {
 public:
  explicit Writer(Form form) : quote_(form == Form::kOwn ? '"' : '\'') {}

  Writer& operator<<(const std::string& text) {
    text_ += text;
    return *this;
  }
  Writer& Attribute(const char* name, const std::string& value) {
    text_.append(" ").append(name).append("=") += quote_;
    text_.append(value) += quote_;
    return *this;
  }
  void Write(const Item& item) {
    (*this << "<ANALYSIS").Attribute("NAME", item.name).Attribute("GUID", item.guid);
    Attribute("DIRNAME", item.folder).Attribute("LAYERFILE", item.layer_file);
    Attribute("CREATIONTIME", item.created) << "><COMMENTS>" << item.comments << "</COMMENTS>";
    for (const Parameter& parameter : item.parameters) {
      *this << "<PARAM";
      Attribute("NAME", parameter.name).Attribute("VALUE", parameter.value) << "/>";
    }
    *this << "</ANALYSIS>";
  }
  std::string Text() { return std::move(text_); }

 private:
  char quote_;
  std::string text_;
};

}  // namespace

Item ItemOf(std::size_t number) {
  const std::string digits = std::to_string(number);
  return {"_Item " + digits + "_",
          GuidOf(number),
          "D:\\Data\\Item" + digits,
          "D:\\Data\\Item" + digits + "\\Item.lyr",
          "11/15/2026 7:35:30 AM",
          "Drive times of " + digits,
          {{{"Radius", digits}, {"Unit", "km"}, {"Method", "Drive time"}}}};
}

std::vector<Item> Items(std::size_t count) {
  std::vector<Item> items;
  for (std::size_t i = 0; i < count; ++i) items.push_back(ItemOf(i));
  return items;
}

std::vector<std::size_t> Shuffled(std::size_t count) {
  std::vector<std::size_t> numbers(count);
  std::iota(numbers.begin(), numbers.end(), 0);
  std::ranges::shuffle(numbers, std::mt19937_64(1));
  return numbers;
}

std::string TextOf(const std::vector<Item>& items, Form form) {
  Writer writer(form);
  writer << "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<KVDATACOLLECTION><ANALYSISCOLLECTION>";
  for (const Item& item : items) writer.Write(item);
  writer << "</ANALYSISCOLLECTION></KVDATACOLLECTION>\r\n";
  return writer.Text();
}

std::vector<std::string> Guids(const std::vector<Item>& items) {
  return Keys(items, [](const Item& item) { return item.guid; });
}

std::vector<std::string> Names(const std::vector<Item>& items) {
  return Keys(items, [](const Item& item) { return item.name; });
}

std::vector<std::string> MissingGuids(std::size_t count) {
  std::vector<std::string> keys;
  for (std::size_t i = 0; i < std::min<std::size_t>(count, 1U << 16U); ++i) {
    keys.push_back(GuidOf(i + 1'000'000'000));
  }
  return keys;
}

}  // namespace kvdm::bench
