/// @file
/// Interfaces of the study areas, their properties and tables, and the splitter of file paths.
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

/// The study areas: an element of the catalogue and a folder each. Reports end in 438.
class KVDM_EXPORT IKVStudyAreaCollection : public virtual Unknown {
 public:
  /// The names of all study areas but "Default". 438 when one has no name.
  virtual NameListRef StudyAreasList() = 0;

  /// Adds a study area and makes its folder, with the first free name, in the folder "StudyAreas"
  /// of the working directory, which it makes too. Names the layer file "StudyArea.lyr" in it,
  /// which the host is to write. Saves.
  ///
  /// False for a name that exists: nothing is changed; and when the folder could not be made: the
  /// study area is there all the same, and saved. 438 for a double quote in the name, and for
  /// whatever else fails before the folder; then nothing is added.
  virtual bool CreateStudyArea(std::string_view name) = 0;

  /// Closes the study area if it is the current one (the host's "Study Area Name" becomes ""),
  /// removes it, then deletes its folder. Saves. False when there is none of that name. 438 without
  /// a host and for a double quote in the name; and for a study area without DIRNAME, which is then
  /// removed but not saved. After a failure the current study area may be closed.
  virtual bool DeleteStudyArea(std::string_view name) = 0;

  /// A view of the study area; Nothing when there is none of that name. 438 for a double quote in
  /// the name.
  virtual std::shared_ptr<IKVStudyArea> GetStudyArea(std::string_view name) = 0;

  /// Whether a study area has the name. Errors: -2147467259.
  virtual bool StudyAreaExists(std::string_view name) = 0;

  /// The identifiers of all study areas, "Default" included; an underscore at both ends is taken
  /// off. 438 when one has no identifier.
  virtual NameListRef StudyAreasGUIDsList() = 0;

  /// Removes the study area and leaves it open if it is the current one. Deletes the folder that
  /// DIRNAME names below "StudyAreas": none for the full path that CreateStudyArea stores. Saves.
  /// False when there is none. 438 for a double quote in the identifier; and for a study area
  /// without DIRNAME, which is then removed but not saved.
  virtual bool DeleteStudyAreaByGUID(std::string_view guid) = 0;

  /// As GetStudyArea, by identifier.
  virtual std::shared_ptr<IKVStudyArea> GetStudyAreaByGUID(std::string_view guid) = 0;

  /// Whether a study area has the identifier. Errors: -2147467259.
  virtual bool StudyAreaExistsByGUID(std::string_view guid) = 0;
};

/// One study area. Also has IKVStudyArea2, IKVPropertySet, IKVLayerEdit and IKVMetadata. Reports
/// are shown.
class KVDM_EXPORT IKVStudyArea : public virtual Unknown {
 public:
  /// The name. Errors: 94 when the element has none.
  virtual std::string Name() = 0;

  /// Renames the study area; its folder and layer file keep their names. Does nothing when a study
  /// area has the name, this one included. Saves. Shows.
  virtual void SetName(std::string_view name) = 0;

  /// The full path of the layer file; "" when none is stored. Quiet.
  virtual std::string LayerFile() = 0;

  /// The full path of the study area's folder; "" when none is stored. Quiet.
  virtual std::string StudyAreaDir() = 0;

  /// The comment; "" without one. Every LF comes back as CR LF, also one behind a CR. Quiet.
  virtual std::string Comments() = 0;

  /// Stores the comment exactly as given. Saves. Shows the description of the error, as a plain
  /// message.
  virtual void SetComments(std::string_view comments) = 0;

  /// The name of the dataset. Shows, and answers "", when none is stored.
  virtual std::string Dataset() = 0;

  /// Stores the name of the dataset. Saves. Shows.
  virtual void SetDataset(std::string_view dataset) = 0;

  /// The identifier. Shows, and answers "", when none is stored.
  virtual std::string GUID() = 0;
};

/// What was added to IKVStudyArea.
class KVDM_EXPORT IKVStudyArea2 : public virtual Unknown {
 public:
  /// Stores the folder as given; moves no files and leaves the layer file as it is. Saves. Shows.
  virtual void SetStudyAreaDir(std::string_view folder) = 0;
};

/// The free-form properties of a study area.
class KVDM_EXPORT IKVPropertySet : public virtual Unknown {
 public:
  /// Always 0. Never fails.
  virtual int Count() = 0;

  /// The value, as a text; "" when there is none, Null for a property that is stored without one.
  /// Shows, and answers "", when the study area has no element for properties. Else quiet: "" for a
  /// double quote in the name.
  virtual Value GetProperty(std::string_view name) = 0;

  /// Stores the text form of the value. True when it was stored. Saves when the property is new; a
  /// changed value waits for the next save. Shows two messages, and answers False, when the study
  /// area has no element for properties. Else quiet: False for Null, a double quote in the name,
  /// and a value that is too long.
  virtual bool SetProperty(std::string_view name, const Value& value) = 0;
};

/// The tables of the current study area.
class KVDM_EXPORT IKVTablesManager : public virtual Unknown {
 public:
  /// The folder "Tables" of the current study area, or of the working directory when none is open
  /// or the open one is not there. Without a backslash at its end; it is not made. Errors: 91
  /// without a host, 94 when the host's "Study Area Name" is Null, 438 for a double quote in it,
  /// and whatever the host throws.
  virtual std::string TablesDir() = 0;

  /// The path of a table in that folder, without extension: "Table" with the first free name,
  /// whatever the extension. Makes the folder and those around it, but not the file, so that the
  /// next call may answer the same. 438, and 91 on an unbound object; folders made so far stay.
  virtual std::string FreeTablePath() = 0;
};

/// Splits a path at "\" and ".", without a look at the disk. Made with CreateObject, as
/// "KVDM.KVFileInfo".
class KVDM_EXPORT IKVFileInfo : public virtual Unknown {
 public:
  /// Everything up to the last backslash, that included; "" without one. Errors: 5 for an empty
  /// path.
  virtual std::string ParentDirPath() = 0;

  /// What follows the last backslash, less as many characters at its end as the extension and its
  /// dot have. Errors: 5 for an empty path.
  virtual std::string FileName() = 0;

  /// The extension of the file name, without the dot: what follows the last dot that has something
  /// behind it, up to the next dot; "" without one. Errors: 5 for an empty path.
  virtual std::string FileNameExtension() = 0;

  /// The path as it was set; "" until then. Never fails.
  virtual std::string FullPath() = 0;

  /// Stores the path as given.
  virtual void SetFullPath(std::string_view path) = 0;
};

}  // namespace kvdm
