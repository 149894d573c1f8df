' A client of the installed component.
Set info = CreateObject("KVDM.KVFileInfo")
info.FullPath = "D:\Data\Roads.shp"
WScript.Echo info.FileName
