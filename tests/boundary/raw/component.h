// The component's DLL in this process, and what its type library says of it.
#pragma once

#include "com/kvdm.h"

enum { kMaxInterfacesOfClass = 8 };

typedef struct {
  BSTR name;
  IID iid;
  ITypeInfo* type;  // with the place of each operation
  unsigned operation_count;
} Interface;

typedef struct {
  BSTR name;
  CLSID clsid;
  IID iids[kMaxInterfacesOfClass];  // in the order of the library
  unsigned iid_count;
} Class;

// Ends the program when the DLL can't be loaded.
void LoadComponent(const char* path);

// Lets go of the DLL, which stays in the process for good once a class object was asked for.
void UnloadComponent(void);

unsigned InterfaceCount(void);
const Interface* InterfaceAt(unsigned position);
unsigned ClassCount(void);
const Class* ClassAt(unsigned position);

int ImplementsInterface(const Class* of, REFIID iid);

// What the DLL exports.
HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** out);
HRESULT CanUnloadNow(void);

// A new object of a class that the component has.
void* Create(REFCLSID clsid, REFIID iid);

// The interface `iid`, which the object has.
void* As(void* object, REFIID iid);

// What Release answers.
ULONG Release(void* object);
