// What the application brings, written as tables of slots. Every call of a slot is counted, and an
// object can be made to fail.
#pragma once

#include "com/kvdm.h"

enum { kMaxEntries = 32 };

// How all operations of an object fail; not at all when `code` is S_OK.
typedef struct {
  HRESULT code;
  const wchar_t* description;  // of an error object; null for none
} Failure;

// What they begin with. The application holds one reference itself.
typedef struct {
  const void* slots;
  const IID* iid;
  LONG references;
  Failure failure;
} HostObject;

typedef struct {
  BSTR name;
  VARIANT value;
} Entry;

typedef struct {
  HostObject object;
  Entry entries[kMaxEntries];
  unsigned entry_count;
} PropertySet;

typedef struct {
  HostObject object;
  PropertySet state;
  PropertySet settings;
} Host;

typedef struct {
  HostObject object;
  VARIANT value;
  unsigned written;
} Stream;

typedef struct {
  HostObject object;
  Entry entries[kMaxEntries];
  unsigned entry_count;
  unsigned prepared;
} ValueSet;

typedef struct {
  HostObject object;
  IUnknown* document;
  unsigned written;
} Metadata;

typedef struct {
  HostObject object;
  unsigned told;
} Listener;

void InitHost(Host* host);
void InitStream(Stream* stream);
void InitValueSet(ValueSet* set);
void InitMetadata(Metadata* metadata);
void InitListener(Listener* listener);

// These also check that nobody else holds the object any more.
void FreeHost(Host* host);
void FreeStream(Stream* stream);
void FreeValueSet(ValueSet* set);
void FreeMetadata(Metadata* metadata);
void FreeListener(Listener* listener);

void SetText(PropertySet* set, const wchar_t* name, const wchar_t* text);
void PutText(ValueSet* set, const wchar_t* path, const wchar_t* text);

// Null when there is none.
const VARIANT* PropertyOf(const PropertySet* set, const wchar_t* name);
const VARIANT* ValueOf(const ValueSet* set, const wchar_t* path);
