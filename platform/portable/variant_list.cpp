#include "platform/portable/variant_list.h"

#include "platform/error.h"

namespace kvdm {

Value VariantList::Read() {
  if (next_ == values_.size()) throw RuntimeError(kInputPastEnd);
  return values_[next_++];
}

}  // namespace kvdm
