/// @file
/// Interfaces of the store and customer layers, and what analyses and study areas share with them:
/// layer editing and the exchange of metadata.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <kvdm/datamanager/name_list.h>
#include <kvdm/datamanager/unknown.h>
#include <kvdm/export.h>
#include <kvdm/platform/gis_core.h>

namespace kvdm {

class IKVStoreLayer;
class IKVCustLayer;

/// The store layers: an element of the metadata document each, and a path for a layer file in the
/// folder "StoreLayers" of the working directory. Nothing here saves. Reports end in 438.
class KVDM_EXPORT IKVStoreLayerCollection : public virtual Unknown {
 public:
  /// The names of all store layers. 438 when one has no name.
  virtual NameListRef StoreLayersList() = 0;

  /// Adds a store layer with the path of a layer file whose base name is free in the layers folder;
  /// makes the folder as StoreLayersDir does, but not the file, which the host is to write. False
  /// for a name that exists. 438 for a double quote in the name, a name that is too long, and a
  /// folder that can't be made or listed; then nothing is added, though the folder may have been
  /// made.
  virtual bool CreateStoreLayer(std::string_view name) = 0;

  /// Removes the store layer; its layer file stays. False when there is none of that name. 438 for
  /// a double quote in the name.
  virtual bool DeleteStoreLayer(std::string_view name) = 0;

  /// A view of the store layer; Nothing when there is none of that name. 438 for a double quote in
  /// the name.
  virtual std::shared_ptr<IKVStoreLayer> GetStoreLayer(std::string_view name) = 0;

  /// Whether a store layer has the name. Errors: -2147467259.
  virtual bool StoreLayerExists(std::string_view name) = 0;

  /// The identifiers of all store layers; an underscore at both ends is taken off. 438 when one has
  /// no identifier.
  virtual NameListRef StoreLayersGUIDsList() = 0;

  /// Removes the store layer, then deletes the folder that its DIRNAME names below "StoreLayers".
  /// The component stores no DIRNAME: without one, the folder "StoreLayers" goes, with the files of
  /// all store layers. False when there is none. 438 for a double quote in the identifier.
  virtual bool DeleteStoreLayerByGUID(std::string_view guid) = 0;

  /// As GetStoreLayer, by identifier.
  virtual std::shared_ptr<IKVStoreLayer> GetStoreLayerByGUID(std::string_view guid) = 0;

  /// Whether a store layer has the identifier. Errors: -2147467259.
  virtual bool StoreLayerExistsByGUID(std::string_view guid) = 0;

  /// The layers folder, without a backslash at its end; makes it when it is missing, not the
  /// folders around it. Errors: 58 when a file has its name, 76 when the working directory is
  /// missing, 70 or 75 when the system refuses.
  virtual std::string StoreLayersDir() = 0;
};

/// The customer layers: an element of the metadata document each, and a path for a layer file in
/// the folder "CustLayers" of the working directory. Nothing here saves. Reports end in 438.
class KVDM_EXPORT IKVCustLayerCollection : public virtual Unknown {
 public:
  /// The names of all customer layers. 438 when one has no name.
  virtual NameListRef CustLayersList() = 0;

  /// Adds a customer layer with the path of a layer file whose base name is free in the layers
  /// folder; makes the folder as CustLayersDir does, but not the file, which the host is to write.
  /// False for a name that exists. 438 for a double quote in the name, a name that is too long, and
  /// a folder that can't be made or listed; then nothing is added, though the folder may have been
  /// made.
  virtual bool CreateCustLayer(std::string_view name) = 0;

  /// Removes the customer layer; its layer file stays. False when there is none of that name. 438
  /// for a double quote in the name.
  virtual bool DeleteCustLayer(std::string_view name) = 0;

  /// A view of the customer layer; Nothing when there is none of that name. 438 for a double quote
  /// in the name.
  virtual std::shared_ptr<IKVCustLayer> GetCustLayer(std::string_view name) = 0;

  /// Whether a customer layer has the name. Errors: -2147467259.
  virtual bool CustLayerExists(std::string_view name) = 0;

  /// The identifiers of all customer layers; an underscore at both ends is taken off. 438 when one
  /// has no identifier.
  virtual NameListRef CustLayersGUIDsList() = 0;

  /// As DeleteCustLayer, by identifier: the layer file stays.
  virtual bool DeleteCustLayerByGUID(std::string_view guid) = 0;

  /// As GetCustLayer, by identifier.
  virtual std::shared_ptr<IKVCustLayer> GetCustLayerByGUID(std::string_view guid) = 0;

  /// Whether a customer layer has the identifier. Errors: -2147467259.
  virtual bool CustLayerExistsByGUID(std::string_view guid) = 0;

  /// The layers folder, without a backslash at its end; makes it when it is missing, not the
  /// folders around it. Errors: 58 when a file has its name, 76 when the working directory is
  /// missing, 70 or 75 when the system refuses.
  virtual std::string CustLayersDir() = 0;
};

/// One customer layer. Also has IKVLayerEdit, which alone changes the identifier, and IKVMetadata.
/// Reports end in 438.
class KVDM_EXPORT IKVCustLayer : public virtual Unknown {
 public:
  /// The name; "" when the element has none. Quiet.
  virtual std::string Name() = 0;

  /// Renames the layer; its layer file keeps its name. Does nothing when a customer layer has the
  /// name, this one included. Saves. Errors: -2147467259, 7, and 91 when the data manager has no
  /// metadata document.
  virtual void SetName(std::string_view name) = 0;

  /// The full path of the layer file; "" when none is stored. Quiet.
  virtual std::string LayerFile() = 0;

  /// Stores the path as given. Saves. Errors: 7. IKVLayerEdit::SetLayerFile reports instead.
  virtual void SetLayerFile(std::string_view path) = 0;

  /// Whether the data are internal: True for the stored text "TRUE" alone. Quiet.
  virtual bool IsInternalData() = 0;

  /// Stores "TRUE" or "FALSE". Does not save. Quiet.
  virtual void SetIsInternalData(bool internal) = 0;

  /// The field that holds the names; "" when none is stored. Quiet.
  virtual std::string NameField() = 0;

  /// Stores the field as given. Saves. Errors: 7.
  virtual void SetNameField(std::string_view field) = 0;

  /// The field that holds the identifiers; "" when none is stored. Quiet.
  virtual std::string IDField() = 0;

  /// Stores the field as given. Saves. Errors: 7.
  virtual void SetIDField(std::string_view field) = 0;

  /// The field that links customers to other data; "" when none is stored. Quiet.
  virtual std::string LinkField() = 0;

  /// Stores the field as given. Does not save. Quiet.
  virtual void SetLinkField(std::string_view field) = 0;

  /// The time of creation, in the form of DateText or as it was set; "" without one. Quiet.
  virtual std::string CreationTime() = 0;

  /// Stores the text as given. Does not save. Quiet.
  virtual void SetCreationTime(std::string_view time) = 0;

  /// The study area of the layer; "" when none is stored. Quiet.
  virtual std::string StudyAreaName() = 0;

  /// Stores the name as given, also one that no study area has. Does not save. Quiet.
  virtual void SetStudyAreaName(std::string_view name) = 0;

  /// The comment; "" without one. Every LF comes back as CR LF, also one behind a CR. Quiet.
  virtual std::string Comments() = 0;

  /// Stores the comment exactly as given. Saves. Errors: 7.
  virtual void SetComments(std::string_view comments) = 0;

  /// Sets a named parameter, as IKVAnalysis::SetParameter does. Saves. 438 in the same cases.
  virtual bool SetParameter(std::string_view name, std::string_view value) = 0;

  /// The value of the first parameter of that name; "" when there is none or it has no value.
  /// Quiet.
  virtual std::string GetParameter(std::string_view name) = 0;

  /// The names of all parameters, repeated ones included; Null for one without a name. 438 when
  /// memory runs out.
  virtual NameListRef ParametersList() = 0;

  /// Removes all parameters. True, also when there were none. Saves. Quiet: after a failure those
  /// removed so far are gone, and nothing is saved.
  virtual bool ClearParametersList() = 0;

  /// The identifier; "" when none is stored. Quiet.
  virtual std::string GUID() = 0;
};

/// One store layer. As IKVCustLayer without a link field, and its reports are shown.
class KVDM_EXPORT IKVStoreLayer : public virtual Unknown {
 public:
  /// The name; "" when the element has none. Quiet.
  virtual std::string Name() = 0;

  /// Renames the layer; its layer file keeps its name. Does nothing when a store layer has the
  /// name, this one included. Saves. Errors: -2147467259, 7, and 91 when the data manager has no
  /// metadata document.
  virtual void SetName(std::string_view name) = 0;

  /// The full path of the layer file; "" when none is stored. Quiet.
  virtual std::string LayerFile() = 0;

  /// Stores the path as given and marks it as absolute. Saves. Errors: 7.
  /// IKVLayerEdit::SetLayerFile marks nothing and reports.
  virtual void SetLayerFile(std::string_view path) = 0;

  /// Whether the data are internal: True for the stored text "TRUE" alone. Quiet.
  virtual bool IsInternalData() = 0;

  /// Stores "TRUE" or "FALSE". Does not save. Quiet.
  virtual void SetIsInternalData(bool internal) = 0;

  /// The field that holds the names; "" when none is stored. Quiet.
  virtual std::string NameField() = 0;

  /// Stores the field as given. Saves. Errors: 7.
  virtual void SetNameField(std::string_view field) = 0;

  /// The field that holds the identifiers; "" when none is stored. Quiet.
  virtual std::string IDField() = 0;

  /// Stores the field as given. Saves. Errors: 7.
  virtual void SetIDField(std::string_view field) = 0;

  /// The time of creation, in the form of DateText or as it was set; "" without one. Quiet.
  virtual std::string CreationTime() = 0;

  /// Stores the text as given. Does not save. Quiet.
  virtual void SetCreationTime(std::string_view time) = 0;

  /// The study area of the layer; "" when none is stored. Quiet.
  virtual std::string StudyAreaName() = 0;

  /// Stores the name as given, also one that no study area has. Does not save. Quiet.
  virtual void SetStudyAreaName(std::string_view name) = 0;

  /// The comment; "" without one. Every LF comes back as CR LF, also one behind a CR. Quiet.
  virtual std::string Comments() = 0;

  /// Stores the comment exactly as given. Saves. Errors: 7.
  virtual void SetComments(std::string_view comments) = 0;

  /// Sets a named parameter, as IKVAnalysis::SetParameter does. Saves. Shows in the same cases.
  virtual bool SetParameter(std::string_view name, std::string_view value) = 0;

  /// The value of the first parameter of that name; "" when there is none or it has no value.
  /// Quiet.
  virtual std::string GetParameter(std::string_view name) = 0;

  /// The names of all parameters, repeated ones included; Null for one without a name. Shows when
  /// memory runs out.
  virtual NameListRef ParametersList() = 0;

  /// Removes all parameters. True, also when there were none. Saves. Quiet: after a failure those
  /// removed so far are gone, and nothing is saved.
  virtual bool ClearParametersList() = 0;

  /// The identifier; "" when none is stored. Quiet.
  virtual std::string GUID() = 0;
};

/// Re-points or re-identifies a layer after editing. Analyses, customer and store layers and study
/// areas have it. Does nothing on an object without a data manager.
class KVDM_EXPORT IKVLayerEdit : public virtual Unknown {
 public:
  /// Stores the path of the layer file as given. Saves. A path that is too long: 438 for an
  /// analysis and a customer layer; a store layer and a study area show.
  virtual void SetLayerFile(std::string_view path) = 0;

  /// Stores the identifier as given, also one that another object has. Saves. Fails as SetLayerFile
  /// does.
  virtual void SetGUID(std::string_view guid) = 0;
};

/// Copies an item's description into and out of the metadata of its layer. Analyses, customer and
/// store layers and study areas have it.
class KVDM_EXPORT IKVMetadata : public virtual Unknown {
 public:
  /// Takes over what ExportMetadata wrote, all but the name, if the metadata describe an item of
  /// this kind. Parameters that are not in the metadata stay. Saves, as the setters do. A customer
  /// or store layer and a study area keep what they took over before a failure; an analysis passes
  /// over what fails. Nothing is changed when the metadata or their kind can't be read. Quiet, but
  /// setters that show do so.
  virtual void ImportMetadata(const std::shared_ptr<LayerMetadata>& metadata) = 0;

  /// Writes kind, name and identifier; of an analysis the comment and the parameters; of a layer
  /// the comment, the fields and whether its data are internal; of a study area the properties
  /// TYPE, MAINLAYER and FEATURESLIST. All else that is there stays, parameters of an earlier
  /// export included. Metadata that can't be read count as missing and are begun anew. After a
  /// failure nothing is written. Quiet, but getters that show do so.
  virtual void ExportMetadata(const std::shared_ptr<LayerMetadata>& metadata) = 0;
};

}  // namespace kvdm
