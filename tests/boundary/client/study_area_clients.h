// Study areas of the DLL.
#pragma once

#include "tests/boundary/client/call.h"

namespace kvdm::client {

class StudyAreaCollectionClient final
    : public ClientOf<IKVStudyAreaCollection, ::IKVStudyAreaCollection> {
 public:
  using ClientOf::ClientOf;

  NameListRef StudyAreasList() override { return Call(&Abi::StudyAreasList); }
  bool CreateStudyArea(std::string_view name) override { return Call(&Abi::CreateStudyArea, name); }
  bool DeleteStudyArea(std::string_view name) override { return Call(&Abi::DeleteStudyArea, name); }
  std::shared_ptr<IKVStudyArea> GetStudyArea(std::string_view name) override {
    return Call(&Abi::GetStudyArea, name);
  }
  bool StudyAreaExists(std::string_view name) override { return Call(&Abi::StudyAreaExists, name); }
  NameListRef StudyAreasGUIDsList() override { return Call(&Abi::StudyAreasGUIDsList); }
  bool DeleteStudyAreaByGUID(std::string_view guid) override {
    return Call(&Abi::DeleteStudyAreaByGUID, guid);
  }
  std::shared_ptr<IKVStudyArea> GetStudyAreaByGUID(std::string_view guid) override {
    return Call(&Abi::GetStudyAreaByGUID, guid);
  }
  bool StudyAreaExistsByGUID(std::string_view guid) override {
    return Call(&Abi::StudyAreaExistsByGUID, guid);
  }
};

class StudyAreaClient final : public ClientOf<IKVStudyArea, ::IKVStudyArea> {
 public:
  using ClientOf::ClientOf;

  std::string Name() override { return Call(&Abi::get_Name); }
  void SetName(std::string_view name) override { Call(&Abi::put_Name, name); }
  std::string LayerFile() override { return Call(&Abi::get_LayerFile); }
  std::string StudyAreaDir() override { return Call(&Abi::get_StudyAreaDir); }
  std::string Comments() override { return Call(&Abi::get_Comments); }
  void SetComments(std::string_view text) override { Call(&Abi::put_Comments, text); }
  std::string Dataset() override { return Call(&Abi::get_Dataset); }
  void SetDataset(std::string_view dataset) override { Call(&Abi::put_Dataset, dataset); }
  std::string GUID() override { return Call(&Abi::get_GUID); }
};

class StudyArea2Client final : public ClientOf<IKVStudyArea2, ::IKVStudyArea2> {
 public:
  using ClientOf::ClientOf;

  void SetStudyAreaDir(std::string_view folder) override { Call(&Abi::put_StudyAreaDir, folder); }
};

class PropertySetClient final : public ClientOf<IKVPropertySet, ::IKVPropertySet> {
 public:
  using ClientOf::ClientOf;

  int Count() override { return Call(&Abi::get_Count); }
  Value GetProperty(std::string_view name) override { return Call(&Abi::GetProperty, name); }
  bool SetProperty(std::string_view name, const Value& value) override {
    return Call(&Abi::SetProperty, name, value);
  }
};

}  // namespace kvdm::client
