// The GIS core library's objects, for hosts that do not bring their own.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>

#include "platform/gis_core.h"

namespace kvdm {

// The registry form of a version-4 identifier made of 16 bytes, of which version and variant are
// overwritten.
std::string GuidText(std::array<unsigned char, 16> bytes);

class PortableGisCore : public GisCore {
 public:
  // `new_guid` answers a new identifier, in registry form, at each call.
  using GuidSource = std::function<std::string()>;
  explicit PortableGisCore(GuidSource new_guid);

  std::shared_ptr<Identifier> CreateIdentifier() override;
  std::shared_ptr<NamedValueSet> CreateNamedValueSet() override;

 private:
  GuidSource new_guid_;
};

}  // namespace kvdm
