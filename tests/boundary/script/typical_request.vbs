' A script as client and as host: it starts the component, keeps its project, and calls everything by
' name. Prints a line for every check, and ends with status 1 when one fails.
'
'   cscript //nologo typical_request.vbs [wine]
Option Explicit

Const WorkingFolder = "D:\KVDM script\"

Dim failures, UnderWine
failures = 0
UnderWine = False
If WScript.Arguments.Count > 0 Then UnderWine = WScript.Arguments(0) = "wine"

Sub Check(what, holds)
  If holds Then
    WScript.Echo "ok " & what
  Else
    WScript.Echo "FAILED " & what
    failures = failures + 1
  End If
End Sub

Sub CheckEqual(what, expected, actual)
  Check what & ": " & actual, expected = actual
  If expected <> actual Then WScript.Echo "  expected: " & expected
End Sub

' Of the statement before, which ran with errors deferred.
Sub CheckError(what, number)
  Dim actual
  actual = Err.Number And 65535
  Err.Clear
  CheckEqual "error of " & what, number, actual
End Sub

Sub CheckUnknown(name)
  CheckError name, 438
End Sub

' The host's objects.

Class PropertySet
  Private values

  Private Sub Class_Initialize()
    Set values = WScript.CreateObject("Scripting.Dictionary")
  End Sub

  Public Function GetProperty(name)
    If values.Exists(name) Then GetProperty = values.Item(name)
  End Function

  Public Sub SetProperty(name, value)
    values.Item(name) = value
  End Sub
End Class

Class Host
  Public State
  Public Denied
  Private settings_

  Private Sub Class_Initialize()
    Set State = New PropertySet
    Set settings_ = New PropertySet
    settings_.SetProperty "VELKKVDirectory", WorkingFolder
    Denied = False
  End Sub

  Public Property Get CurrentState()
    If Denied Then Err.Raise 70, "Host", "Not now"
    Set CurrentState = State
  End Property

  Public Property Get Settings()
    Set Settings = settings_
  End Property
End Class

Class VariantStream
  Public Content

  Public Sub Write(value)
    Content = value
  End Sub

  Public Function Read()
    Read = Content
  End Function
End Class

Class ValueSet
  Public Prepared
  Private values

  Private Sub Class_Initialize()
    Set values = WScript.CreateObject("Scripting.Dictionary")
    Prepared = 0
  End Sub

  Public Function GetValues(path)
    If values.Exists(path) Then GetValues = Array(values.Item(path))
  End Function

  Public Sub PutValue(path, value)
    values.Item(path) = value
  End Sub

  Public Sub ListAll(names, all)
    names = values.Keys
    all = values.Items
  End Sub

  Public Property Get EntryCount()
    EntryCount = values.Count
  End Property

  Public Sub PrepareForUpdate()
    Prepared = Prepared + 1
  End Sub
End Class

Class LayerMetadata
  Public Document

  Private Sub Class_Initialize()
    Set Document = Nothing
  End Sub

  Public Function ReadDocument()
    Set ReadDocument = Document
  End Function

  Public Sub WriteDocument(written)
    Set Document = written
  End Sub
End Class

Function First(values)
  First = values(0)
End Function

Function Joined(list)
  Dim name
  Joined = ""
  For Each name In list
    Joined = Joined & "|" & name
  Next
End Function

' What is tested.

Sub TestStart(manager, theHost)
  Dim area
  CheckEqual "working directory", "", manager.WorkingDirectory
  manager.DMInitialize theHost
  CheckEqual "working directory of the host", WorkingFolder, manager.WorkingDirectory
  manager.WorkingDirectory = "D:\KVDM script"
  CheckEqual "working directory as set", WorkingFolder, manager.WorkingDirectory
  CheckEqual "temporary file", WorkingFolder & "KelvaroTemp\tmp", manager.TmpFilePath
  manager.CleanTemp
  CheckEqual "flush", False, manager.Flush()
  CheckEqual "dataset manager", True, Not manager.DatasetManager Is Nothing
  CheckEqual "preset data", 0, manager.PDataList.Count
  CheckEqual "preset file", "", manager.GetPDataFile("Roads")
  CheckEqual "identifier", "KVDM.KVDataManager", manager.ID.GetValue()
End Sub

Sub TestStudyAreas(manager, theHost)
  Dim areas, area, name
  Set areas = manager.StudyAreaCollection
  name = "North"
  CheckEqual "create study area", True, areas.CreateStudyArea(name)
  CheckEqual "argument stays", "North", name
  CheckEqual "create it again", False, areas.createstudyarea(name)
  CheckEqual "create another", True, areas.CreateStudyArea("South")
  CheckEqual "study areas", "|North|South", Joined(areas.StudyAreasList)
  CheckEqual "exists", True, areas.StudyAreaExists("South")
  CheckEqual "not there", True, areas.GetStudyArea("West") Is Nothing
  Set area = areas.GetStudyArea(name)
  CheckEqual "folder", WorkingFolder & "StudyAreas\North\", area.StudyAreaDir
  area.Comments = "First" & vbCrLf & "second"
  CheckEqual "comments", "First" & vbCr & vbCrLf & "second", area.Comments
  area.Dataset = "Census"
  CheckEqual "dataset", "Census", area.Dataset
  area.LayerFile = "D:\North.lyr"
  CheckEqual "layer file", "D:\North.lyr", area.LayerFile
  area.GUID = "{North}"
  CheckEqual "identifier of the area", "{North}", area.GUID
  CheckEqual "by identifier", "North", areas.GetStudyAreaByGUID("{North}").Name
  theHost.State.SetProperty "Study Area Name", name
  CheckEqual "delete", True, areas.DeleteStudyArea("South")
  area.StudyAreaDir = "D:\Elsewhere\"
  CheckEqual "another folder", "D:\Elsewhere\", area.StudyAreaDir
  area.StudyAreaDir = WorkingFolder & "StudyAreas\North\"
  CheckEqual "tables", area.StudyAreaDir & "Tables", manager.TablesManager.TablesDir
  CheckEqual "free table", area.StudyAreaDir & "Tables\Table", manager.TablesManager.FreeTablePath
End Sub

Sub TestProperties(manager)
  Dim area, value
  Set area = manager.StudyAreaCollection.GetStudyArea("North")
  CheckEqual "set a text", True, area.SetProperty("TYPE", "Trade area")
  CheckEqual "a text", "Trade area", area.GetProperty("TYPE")
  value = 12.5
  CheckEqual "set a variable", True, area.SetProperty("MAINLAYER", value)
  CheckEqual "a number", "12.5", area.GetProperty("MAINLAYER")
  CheckEqual "set a truth", True, area.SetProperty("MAINLAYER", True)
  CheckEqual "a truth", "-1", area.GetProperty("MAINLAYER")
  CheckEqual "unknown", "", area.GetProperty("Unknown")
  CheckEqual "count of properties", 0, area.Count
  On Error Resume Next
  area.SetProperty "TYPE", Array(1, 2)
  CheckError "an array", 13
  area.SetProperty "TYPE", area
  CheckError "an object", 13
End Sub

Sub TestAnalyses(manager)
  Dim analyses, analysis, name, value, list, items
  Set analyses = manager.AnalysisCollection
  name = "Sales"
  CheckEqual "create analysis", True, analyses.CreateAnalysis(name)
  Set analysis = analyses.GetAnalysis(name)
  CheckEqual "folder of the analysis", WorkingFolder & "StudyAreas\North\Analyses\Sales\", analysis.AnalysisDir
  name = "Radius"
  value = 5
  CheckEqual "parameter of variables", True, analysis.SetParameter(name, value)
  CheckEqual "parameter of constants", True, analysis.SetParameter("Unit", "km")
  CheckEqual "parameter", "5", analysis.GetParameter(name)
  Set list = analysis.ParametersList
  CheckEqual "count", 2, list.Count
  CheckEqual "first", "Radius", list(1)
  CheckEqual "second", "Unit", list.Item(2)
  CheckEqual "all", "|Radius|Unit", Joined(list)
  list.Add "More"
  CheckEqual "after adding", "More", list(3)
  analysis.Name = "Turnover"
  CheckEqual "renamed", "Turnover", analysis.Name
  analysis.LayerFile = "D:\Sales.lyr"
  CheckEqual "layer file of the analysis", "D:\Sales.lyr", analysis.LayerFile
  analysis.GUID = "{Sales}"
  CheckEqual "identifier of the analysis", "{Sales}", analysis.AnalysisGUID
  On Error Resume Next
  value = list(0)
  CheckError "position 0", 9
  value = list.Item(4)
  CheckError "position 4", 9
  Set items = manager.DataCollection
  Set list = items.DataItemsList
  Check "description of an error", Err.Description = "Object doesn't support this property or method"
  CheckEqual "source of an error", "KVDM", Err.Source
  CheckError "a list that is not there", 438
End Sub

Sub TestLayers(manager)
  Dim layers, layer
  Set layers = manager.CustLayerCollection
  CheckEqual "create customer layer", True, layers.CreateCustLayer("Customers")
  Set layer = layers.GetCustLayer("Customers")
  layer.IsInternalData = True
  CheckEqual "internal", True, layer.IsInternalData
  layer.LinkField = "STORE"
  CheckEqual "link field", "STORE", layer.LinkField
  CheckEqual "customer layers", "|Customers", Joined(layers.CustLayersList)
  Set layers = manager.StoreLayerCollection
  CheckEqual "create store layer", True, layers.CreateStoreLayer("Stores")
  Set layer = layers.GetStoreLayer("Stores")
  layer.StudyAreaName = "North"
  CheckEqual "study area of a layer", "North", layer.StudyAreaName
  CheckEqual "delete store layer", True, layers.DeleteStoreLayer("Stores")
End Sub

Sub TestExchange(manager)
  Dim analysis, metadata, names, values
  Set analysis = manager.AnalysisCollection.GetAnalysis("Turnover")
  Set metadata = New LayerMetadata
  analysis.ExportMetadata metadata
  Check "a document was made", Not metadata.Document Is Nothing
  CheckEqual "name in the document", "Turnover", First(metadata.Document.GetValues("Velk/Kelvaro8/Name"))
  metadata.Document.ListAll names, values
  CheckEqual "entries of the document", UBound(names), UBound(values)
  Set metadata.Document = New ValueSet
  analysis.ExportMetadata metadata
  CheckEqual "document is prepared", 1, metadata.Document.Prepared
  CheckEqual "name in the script's document", "Turnover", First(metadata.Document.GetValues("Velk/Kelvaro8/Name"))
  metadata.Document.PutValue "Velk/Kelvaro8/Comments", "Imported"
  metadata.Document.PutValue "Velk/Kelvaro8/AnalysisParams/Radius", "7"
  analysis.ImportMetadata metadata
  CheckEqual "comments imported", "Imported", analysis.Comments
  CheckEqual "parameter imported", "7", analysis.GetParameter("Radius")
End Sub

Sub TestPropertySets(manager)
  Dim analysis, made, own
  Set analysis = manager.AnalysisCollection.GetAnalysis("Turnover")
  CheckEqual "write to an empty variable", True, analysis.WriteToPropertySet(made)
  CheckEqual "value in the set made", "7", First(made.GetValues("Radius"))
  made.PutValue "Radius", "8"
  CheckEqual "entries of the set made", 4, made.EntryCount
  CheckEqual "read from the set made", True, analysis.ReadFromPropertySet(made)
  CheckEqual "parameter read", "8", analysis.GetParameter("Radius")
  Set own = New ValueSet
  CheckEqual "write to the script's set", True, analysis.WriteToPropertySet(own)
  CheckEqual "value in the script's set", "8", First(own.GetValues("Radius"))
  own.PutValue "Radius", "9"
  CheckEqual "read from the script's set", True, analysis.ReadFromPropertySet(own)
  CheckEqual "parameter read from it", "9", analysis.GetParameter("Radius")
  CheckEqual "read from nothing", False, analysis.ReadFromPropertySet(Nothing)
End Sub

Sub TestPersistence(manager)
  Dim stream, other
  Set stream = New VariantStream
  manager.Save stream
  CheckEqual "saved", "String", TypeName(stream.Content)
  Set other = WScript.CreateObject("KVDM.KVDataManager.1")
  other.Load stream
  CheckEqual "restored", "|Turnover", Joined(other.AnalysisCollection.AnalysesList)
End Sub

Class Listener
  Public Told

  Public Sub CatalogueChanged()
    Told = Told + 1
  End Sub
End Class

' Another data manager changes the catalogue, as another program does.
Sub TestCatalogue(manager)
  Dim theListener, other, area
  Set theListener = New Listener
  Set other = WScript.CreateObject("KVDM.KVDataManager")
  manager.StudyAreaCollection.CreateStudyArea "Shared"
  other.Reload
  Set area = manager.StudyAreaCollection.GetStudyArea("Shared")
  manager.Notify theListener
  CheckEqual "unchanged", False, manager.ChangedByOthers
  other.StudyAreaCollection.GetStudyArea("Shared").Comments = "theirs"
  CheckEqual "changed", True, manager.ChangedByOthers
  CheckEqual "told", 1, theListener.Told
  CheckEqual "not read yet", "", area.Comments
  CheckEqual "reloaded", True, manager.Reload
  CheckEqual "the same view", "theirs", area.Comments
  manager.Notify Nothing
End Sub

Sub TestHostErrors(manager, theHost)
  Dim folder
  theHost.Denied = True
  On Error Resume Next
  folder = manager.TablesManager.TablesDir
  If UnderWine Then
    ' A script object's own words are lost there.
    CheckEqual "Wine's description", "Permission denied", Err.Description
    CheckEqual "Wine's source", "KVDM.KVTablesManager", Err.Source
  Else
    CheckEqual "the host's description", "Not now", Err.Description
    CheckEqual "the host's source", "Host", Err.Source
  End If
  CheckError "the host", 70
  manager.AnalysisCollection.CreateAnalysis "Refused"
  CheckError "a report", 438
  theHost.Denied = False
End Sub

' Wine tells the name of the dispatch interface instead of the class's.
Sub TestTypes(manager)
  Dim before
  If UnderWine Then before = "_"
  CheckEqual "type of the data manager", before & "KVDataManager", TypeName(manager)
  CheckEqual "type of a collection", before & "KVStudyAreaCollection", TypeName(manager.StudyAreaCollection)
  CheckEqual "type of a list", "INameList", TypeName(manager.StudyAreaCollection.StudyAreasList)
End Sub

Sub TestCallErrors(manager)
  Dim info, part
  Set info = WScript.CreateObject("KVDM.KVFileInfo")
  On Error Resume Next
  part = info.FileName
  CheckError "the name of an empty path", 5
  info.FullPath = "D:\Data\Roads.shp"
  CheckEqual "file name", "Roads", info.FileName
  info.FileName = "Other"
  CheckError "setting what is only read", 438
  manager.GetPDataFile
  CheckError "an argument too few", 450
  manager.GetPDataFile "Roads", "Rivers"
  CheckError "an argument too many", 450
  manager.DMInitialize "a text"
  CheckError "a text in place of an object", 13
  manager.NoSuchOperation
  CheckUnknown "NoSuchOperation"
End Sub

' What only the component's own objects may call.
Sub TestFriends(manager)
  Dim areas, area, analyses, analysis, layer, items, item
  Set areas = manager.StudyAreaCollection
  Set area = areas.GetStudyArea("North")
  Set analyses = manager.AnalysisCollection
  Set analysis = analyses.GetAnalysis("Turnover")
  Set layer = manager.CustLayerCollection.GetCustLayer("Customers")
  Set items = manager.DataCollection
  items.CreateDataItem "Roads"
  Set item = items.GetDataItem("Roads")
  On Error Resume Next
  manager.HostObject : CheckUnknown "HostObject"
  manager.KVDMHandleError "text" : CheckUnknown "KVDMHandleError"
  manager.GenerateFolderName "", "Study Area " : CheckUnknown "GenerateFolderName"
  manager.CreateWorkingDirectoryStructure "D:\" : CheckUnknown "CreateWorkingDirectoryStructure"
  manager.StudyAreaNames : CheckUnknown "StudyAreaNames"
  manager.StudyAreaGUIDs : CheckUnknown "StudyAreaGUIDs"
  manager.CreateStudyArea "East" : CheckUnknown "CreateStudyArea"
  manager.DeleteStudyArea "North" : CheckUnknown "DeleteStudyArea"
  manager.DeleteStudyAreaByGUID "{North}" : CheckUnknown "DeleteStudyAreaByGUID"
  manager.GetStudyArea "North" : CheckUnknown "GetStudyArea"
  manager.GetStudyAreaByGUID "{North}" : CheckUnknown "GetStudyAreaByGUID"
  manager.StudyAreaExists "North" : CheckUnknown "StudyAreaExists"
  manager.StudyAreaExistsByGUID "{North}" : CheckUnknown "StudyAreaExistsByGUID"
  manager.CustomersDir : CheckUnknown "CustomersDir"
  manager.StoresDir : CheckUnknown "StoresDir"
  manager.CustLayerNames : CheckUnknown "CustLayerNames"
  manager.CustLayerGUIDs : CheckUnknown "CustLayerGUIDs"
  manager.RegisterCustLayer "C" : CheckUnknown "RegisterCustLayer"
  manager.UnregisterCustLayer "C" : CheckUnknown "UnregisterCustLayer"
  manager.UnregisterCustLayerByGUID "{C}" : CheckUnknown "UnregisterCustLayerByGUID"
  manager.GetCustLayer "C" : CheckUnknown "GetCustLayer"
  manager.GetCustLayerByGUID "{C}" : CheckUnknown "GetCustLayerByGUID"
  manager.CustLayerExists "C" : CheckUnknown "CustLayerExists"
  manager.CustLayerExistsByGUID "{C}" : CheckUnknown "CustLayerExistsByGUID"
  manager.StoreLayerNames : CheckUnknown "StoreLayerNames"
  manager.StoreLayerGUIDs : CheckUnknown "StoreLayerGUIDs"
  manager.RegisterStoreLayer "S" : CheckUnknown "RegisterStoreLayer"
  manager.UnregisterStoreLayer "S" : CheckUnknown "UnregisterStoreLayer"
  manager.UnregisterStoreLayerByGUID "{S}" : CheckUnknown "UnregisterStoreLayerByGUID"
  manager.GetStoreLayer "S" : CheckUnknown "GetStoreLayer"
  manager.GetStoreLayerByGUID "{S}" : CheckUnknown "GetStoreLayerByGUID"
  manager.StoreLayerExists "S" : CheckUnknown "StoreLayerExists"
  manager.StoreLayerExistsByGUID "{S}" : CheckUnknown "StoreLayerExistsByGUID"
  manager.CustomerAlias : CheckUnknown "CustomerAlias"
  manager.StoreAlias = "S" : CheckUnknown "StoreAlias"
  manager.PDataGUIDList : CheckUnknown "PDataGUIDList"
  manager.GetPDataFileByGUID "{P}" : CheckUnknown "GetPDataFileByGUID"
  areas.SetDataManager manager : CheckUnknown "SetDataManager"
  areas.SetNode Nothing : CheckUnknown "SetNode of a collection"
  analyses.SetNode Nothing : CheckUnknown "SetNode of the analyses"
  analyses.GenerateNewDirName "a", "b" : CheckUnknown "GenerateNewDirName"
  area.SetNode Nothing : CheckUnknown "SetNode"
  area.SetDataManager manager : CheckUnknown "SetDataManager of a study area"
  area.TablesDir : CheckUnknown "TablesDir of a study area"
  area.FreeTablePath : CheckUnknown "FreeTablePath of a study area"
  analysis.AttachNode Nothing : CheckUnknown "AttachNode"
  analysis.AttachDataManager manager : CheckUnknown "AttachDataManager"
  layer.AttachNode Nothing : CheckUnknown "AttachNode of a layer"
  item.AttachOwner items : CheckUnknown "AttachOwner"
  manager.TablesManager.SetDataManager manager : CheckUnknown "SetDataManager of the tables"
End Sub

Sub ClearPlace()
  Dim shell, files
  Set shell = WScript.CreateObject("WScript.Shell")
  Set files = WScript.CreateObject("Scripting.FileSystemObject")
  On Error Resume Next
  shell.Run "reg.exe delete HKLM\Software\Velk\Kelvaro /f", 0, True
  files.DeleteFolder "D:\KVDM script", True
End Sub

Sub RunTests()
  Dim manager, theHost
  Set theHost = New Host
  Set manager = WScript.CreateObject("KVDM.KVDataManager")
  TestStart manager, theHost
  TestStudyAreas manager, theHost
  TestProperties manager
  TestAnalyses manager
  TestLayers manager
  TestExchange manager
  TestPropertySets manager
  TestPersistence manager
  TestHostErrors manager, theHost
  TestCallErrors manager
  TestTypes manager
  TestCatalogue manager
  TestFriends manager
End Sub

ClearPlace
RunTests
ClearPlace
WScript.Echo failures & " checks failed."
If failures > 0 Then WScript.Quit 1
