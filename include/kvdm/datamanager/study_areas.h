// Study areas, their properties and tables, and the splitter of file paths.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/datamanager/name_list.h>
#include <kvdm/datamanager/unknown.h>
#include <kvdm/export.h>
#include <kvdm/platform/value.h>

namespace kvdm {

class IKVStudyArea;

class KVDM_EXPORT IKVStudyAreaCollection : public virtual Unknown {
 public:
  // Leaves out the study area "Default".
  virtual NameListRef StudyAreasList() = 0;
  // False for a name that exists, and when the folder could not be made; the study area is then
  // there all the same. Saves.
  virtual bool CreateStudyArea(std::string_view name) = 0;
  // Removes the study area and its folder, and closes it when it is the current one. Saves.
  virtual bool DeleteStudyArea(std::string_view name) = 0;
  virtual std::shared_ptr<IKVStudyArea> GetStudyArea(std::string_view name) = 0;
  virtual bool StudyAreaExists(std::string_view name) = 0;  // [errors]
  virtual NameListRef StudyAreasGUIDsList() = 0;
  // Leaves the current study area open, and removes a folder only if DIRNAME is relative to
  // "StudyAreas". Saves.
  virtual bool DeleteStudyAreaByGUID(std::string_view guid) = 0;
  virtual std::shared_ptr<IKVStudyArea> GetStudyAreaByGUID(std::string_view guid) = 0;
  virtual bool StudyAreaExistsByGUID(std::string_view guid) = 0;  // [errors]
};

// One study area. Setters save; a setter on an unbound object does nothing.
class KVDM_EXPORT IKVStudyArea : public virtual Unknown {
 public:
  virtual std::string Name() = 0;  // [errors]
  // Keeps the old name when the new one is taken. Moves no files.
  virtual void SetName(std::string_view name) = 0;
  virtual std::string LayerFile() = 0;     // [quiet]
  virtual std::string StudyAreaDir() = 0;  // [quiet]
  // Line ends come back as CR LF. [quiet]
  virtual std::string Comments() = 0;
  virtual void SetComments(std::string_view comments) = 0;
  virtual std::string Dataset() = 0;
  virtual void SetDataset(std::string_view dataset) = 0;
  virtual std::string GUID() = 0;
};

class KVDM_EXPORT IKVStudyArea2 : public virtual Unknown {
 public:
  virtual void SetStudyAreaDir(std::string_view folder) = 0;
};

// The free-form properties of a study area.
class KVDM_EXPORT IKVPropertySet : public virtual Unknown {
 public:
  // Always 0.
  virtual int Count() = 0;
  // The value; "" when there is none, Null when it was stored without one.
  virtual Value GetProperty(std::string_view name) = 0;
  // Saves when the property is new; a changed value waits for the next save.
  virtual bool SetProperty(std::string_view name, const Value& value) = 0;
};

class KVDM_EXPORT IKVTablesManager : public virtual Unknown {
 public:
  // The tables folder of the current study area, else of the working directory, without a trailing
  // "\". [errors]
  virtual std::string TablesDir() = 0;
  // A free path there, without extension; creates the folder.
  virtual std::string FreeTablePath() = 0;
};

// Splits a path at "\" and ".". Touches no file. Everything but FullPath fails with run-time error
// 5 on an empty path.
class KVDM_EXPORT IKVFileInfo : public virtual Unknown {
 public:
  virtual std::string ParentDirPath() = 0;      // [errors]
  virtual std::string FileName() = 0;           // [errors]
  virtual std::string FileNameExtension() = 0;  // [errors]
  virtual std::string FullPath() = 0;
  virtual void SetFullPath(std::string_view path) = 0;
};

}  // namespace kvdm
