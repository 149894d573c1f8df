// Wrappers of study areas.
#pragma once

#include <kvdm/datamanager/study_areas.h>

#include "com/kvdm.h"
#include "com/object.h"

namespace kvdm::com {

class StudyAreaCollectionWrapper final
    : public WrapperOf<::IKVStudyAreaCollection, IKVStudyAreaCollection> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP StudyAreasList(::INameList** result) override {
    return Call(&Core::StudyAreasList, result);
  }
  STDMETHODIMP CreateStudyArea(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::CreateStudyArea, name, result);
  }
  STDMETHODIMP DeleteStudyArea(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::DeleteStudyArea, name, result);
  }
  STDMETHODIMP GetStudyArea(BSTR* name, ::IKVStudyArea** result) override {
    return Call(&Core::GetStudyArea, name, result);
  }
  STDMETHODIMP StudyAreaExists(BSTR* name, VARIANT_BOOL* result) override {
    return Call(&Core::StudyAreaExists, name, result);
  }
  STDMETHODIMP StudyAreasGUIDsList(::INameList** result) override {
    return Call(&Core::StudyAreasGUIDsList, result);
  }
  STDMETHODIMP DeleteStudyAreaByGUID(BSTR* guid, VARIANT_BOOL* result) override {
    return Call(&Core::DeleteStudyAreaByGUID, guid, result);
  }
  STDMETHODIMP GetStudyAreaByGUID(BSTR* guid, ::IKVStudyArea** result) override {
    return Call(&Core::GetStudyAreaByGUID, guid, result);
  }
  STDMETHODIMP StudyAreaExistsByGUID(BSTR* guid, VARIANT_BOOL* result) override {
    return Call(&Core::StudyAreaExistsByGUID, guid, result);
  }
};

class PropertySetWrapper final : public WrapperOf<::IKVPropertySet, IKVPropertySet> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP get_Count(long* result) override { return Call(&Core::Count, result); }
  STDMETHODIMP GetProperty(BSTR* name, VARIANT* result) override {
    return Call(&Core::GetProperty, name, result);
  }
  STDMETHODIMP SetProperty(BSTR* name, VARIANT* value, VARIANT_BOOL* result) override {
    return Call(&Core::SetProperty, name, value, result);
  }
};

class StudyAreaWrapper final : public WrapperOf<::IKVStudyArea, IKVStudyArea> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP get_Name(BSTR* result) override { return Call(&Core::Name, result); }
  STDMETHODIMP put_Name(BSTR* name) override { return Call(&Core::SetName, name); }
  STDMETHODIMP get_LayerFile(BSTR* result) override { return Call(&Core::LayerFile, result); }
  STDMETHODIMP get_StudyAreaDir(BSTR* result) override { return Call(&Core::StudyAreaDir, result); }
  STDMETHODIMP get_Comments(BSTR* result) override { return Call(&Core::Comments, result); }
  STDMETHODIMP put_Comments(BSTR* comments) override { return Call(&Core::SetComments, comments); }
  STDMETHODIMP get_Dataset(BSTR* result) override { return Call(&Core::Dataset, result); }
  STDMETHODIMP put_Dataset(BSTR* dataset) override { return Call(&Core::SetDataset, dataset); }
  STDMETHODIMP get_GUID(BSTR* result) override { return Call(&Core::GUID, result); }
};

class StudyArea2Wrapper final : public WrapperOf<::IKVStudyArea2, IKVStudyArea2> {
 public:
  using WrapperOf::WrapperOf;

  STDMETHODIMP put_StudyAreaDir(BSTR* folder) override {
    return Call(&Core::SetStudyAreaDir, folder);
  }
};

}  // namespace kvdm::com
