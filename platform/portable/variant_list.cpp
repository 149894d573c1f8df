#include <kvdm/platform/error.h>
#include <kvdm/platform/portable/variant_list.h>

namespace kvdm {

Value VariantList::Read() {
  if (next_ == values_.size()) throw RuntimeError(kInputPastEnd);
  return values_[next_++];
}

}  // namespace kvdm
