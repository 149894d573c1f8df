#include "platform/portable/portable_siblings.h"

#include "platform/portable/text_resources.h"

namespace kvdm {

Value PortableDatasetManager::Initialize() {
  initialized_ = true;
  return {};
}

std::shared_ptr<DatasetManager> PortableSiblings::CreateDatasetManager() {
  return std::make_shared<PortableDatasetManager>();
}

std::shared_ptr<ResourceFinder> PortableSiblings::CreateResourceFinder() {
  return std::make_shared<TextResources>();
}

}  // namespace kvdm
