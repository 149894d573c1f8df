#include "platform/portable/value_set.h"

namespace kvdm {

std::vector<Value> ValueSet::GetValues(std::string_view path) {
  const auto found = positions_.find(path);
  return found == positions_.end() ? std::vector<Value>{} : entries_[found->second].values;
}

void ValueSet::PutValue(std::string_view path, const Value& value) {
  std::vector<Value>& values = ValuesAt(path);
  entry_count_ += 1 - static_cast<int>(values.size());
  values.assign(1, value);
}

void ValueSet::AddValue(std::string_view path, const Value& value) {
  ValuesAt(path).push_back(value);
  ++entry_count_;
}

NamedValueSet::Listing ValueSet::ListAll() {
  Listing listing;
  for (const Entry& entry : entries_) {
    listing.names.insert(listing.names.end(), entry.values.size(), entry.path);
    listing.values.insert(listing.values.end(), entry.values.begin(), entry.values.end());
  }
  return listing;
}

std::vector<Value>& ValueSet::ValuesAt(std::string_view path) {
  const auto found = positions_.find(path);
  if (found != positions_.end()) return entries_[found->second].values;
  positions_.emplace(path, entries_.size());
  return entries_.emplace_back(Entry{std::string(path), {}}).values;
}

}  // namespace kvdm
