#include "host_objects.h"

#include <string.h>

#include "calls.h"
#include "check.h"

// All objects.

#define COUNT_CALL(Interface, Operation) \
  CountCall(&IID_##Interface, offsetof(Interface##Vtbl, Operation) / sizeof(void*))

static HRESULT STDMETHODCALLTYPE QueryHostObject(HostObject* self, REFIID iid, void** out) {
  const int known = IsEqualIID(iid, &IID_IUnknown) || IsEqualIID(iid, self->iid);
  *out = known ? self : NULL;
  if (known) ++self->references;
  return known ? S_OK : E_NOINTERFACE;
}

static ULONG STDMETHODCALLTYPE AddRefOfHostObject(HostObject* self) {
  return (ULONG)++self->references;
}

static ULONG STDMETHODCALLTYPE ReleaseHostObject(HostObject* self) {
  return (ULONG)--self->references;
}

// An object's pointer is that of its interface.
#define UNKNOWN_SLOTS(Interface)                                             \
  (HRESULT(STDMETHODCALLTYPE*)(Interface*, REFIID, void**)) QueryHostObject, \
      (ULONG(STDMETHODCALLTYPE*)(Interface*))AddRefOfHostObject,             \
      (ULONG(STDMETHODCALLTYPE*)(Interface*))ReleaseHostObject

static void InitObject(HostObject* object, const void* slots, REFIID iid) {
  memset(object, 0, sizeof *object);
  object->slots = slots;
  object->iid = iid;
  object->references = 1;
}

static void CheckOnlyOurs(const HostObject* object) { CHECK(object->references == 1); }

static HRESULT Outcome(const HostObject* object) {
  const Failure* failure = &object->failure;
  ICreateErrorInfo* made = NULL;
  IErrorInfo* info = NULL;
  if (failure->code == S_OK || failure->description == NULL) return failure->code;
  CHECK_CODE(S_OK, CreateErrorInfo(&made));
  made->lpVtbl->SetDescription(made, (LPOLESTR)failure->description);
  made->lpVtbl->SetSource(made, (LPOLESTR)L"Host");
  CHECK_CODE(S_OK, made->lpVtbl->QueryInterface(made, &IID_IErrorInfo, (void**)&info));
  CHECK_CODE(S_OK, SetErrorInfo(0, info));
  info->lpVtbl->Release(info);
  made->lpVtbl->Release(made);
  return failure->code;
}

// Entries.

static Entry* FindEntry(Entry* entries, unsigned count, const wchar_t* name) {
  unsigned i;
  for (i = 0; i < count; ++i) {
    if (wcscmp(entries[i].name, name) == 0) return &entries[i];
  }
  return NULL;
}

static void SetEntry(Entry* entries, unsigned* count, const wchar_t* name, VARIANT* value) {
  Entry* entry = FindEntry(entries, *count, name);
  if (entry == NULL) {
    entry = &entries[(*count)++];
    entry->name = SysAllocString(name);
    VariantInit(&entry->value);
  }
  CHECK_CODE(S_OK, VariantCopyInd(&entry->value, value));
}

static void SetTextEntry(Entry* entries, unsigned* count, const wchar_t* name,
                         const wchar_t* text) {
  VARIANT value;
  V_VT(&value) = VT_BSTR;
  V_BSTR(&value) = SysAllocString(text);
  SetEntry(entries, count, name, &value);
  VariantClear(&value);
}

static void FreeEntries(Entry* entries, unsigned count) {
  unsigned i;
  for (i = 0; i < count; ++i) {
    SysFreeString(entries[i].name);
    VariantClear(&entries[i].value);
  }
}

// The place of a result is the component's, and empty.
static HRESULT Answer(Entry* entry, VARIANT* result) {
  CHECK(V_VT(result) == VT_EMPTY);
  return entry ? VariantCopy(result, &entry->value) : S_OK;
}

// Property sets.

static HRESULT STDMETHODCALLTYPE GetProperty(IHostPropertySet* self, BSTR* name, VARIANT* result) {
  PropertySet* set = (PropertySet*)self;
  COUNT_CALL(IHostPropertySet, GetProperty);
  if (FAILED(Outcome(&set->object))) return set->object.failure.code;
  return Answer(FindEntry(set->entries, set->entry_count, *name), result);
}

static HRESULT STDMETHODCALLTYPE SetProperty(IHostPropertySet* self, BSTR* name, VARIANT* value) {
  PropertySet* set = (PropertySet*)self;
  COUNT_CALL(IHostPropertySet, SetProperty);
  if (SUCCEEDED(set->object.failure.code)) {
    SetEntry(set->entries, &set->entry_count, *name, value);
  }
  return Outcome(&set->object);
}

static const IHostPropertySetVtbl kPropertySetSlots = {UNKNOWN_SLOTS(IHostPropertySet), GetProperty,
                                                       SetProperty};

static void InitPropertySet(PropertySet* set) {
  InitObject(&set->object, &kPropertySetSlots, &IID_IHostPropertySet);
  set->entry_count = 0;
}

static void FreePropertySet(PropertySet* set) {
  CheckOnlyOurs(&set->object);
  FreeEntries(set->entries, set->entry_count);
}

void SetText(PropertySet* set, const wchar_t* name, const wchar_t* text) {
  SetTextEntry(set->entries, &set->entry_count, name, text);
}

const VARIANT* PropertyOf(const PropertySet* set, const wchar_t* name) {
  const Entry* entry = FindEntry((Entry*)set->entries, set->entry_count, name);
  return entry ? &entry->value : NULL;
}

// The host.

static HRESULT HandOut(PropertySet* set, IHostPropertySet** result) {
  CHECK(*result == NULL);
  ++set->object.references;
  *result = (IHostPropertySet*)set;
  return S_OK;
}

static HRESULT STDMETHODCALLTYPE GetCurrentState(IHost* self, IHostPropertySet** result) {
  Host* host = (Host*)self;
  COUNT_CALL(IHost, get_CurrentState);
  if (FAILED(Outcome(&host->object))) return host->object.failure.code;
  return HandOut(&host->state, result);
}

static HRESULT STDMETHODCALLTYPE Reserved(IHost* self) {
  (void)self;
  COUNT_CALL(IHost, Reserved);
  return E_NOTIMPL;
}

static HRESULT STDMETHODCALLTYPE GetSettings(IHost* self, IHostPropertySet** result) {
  Host* host = (Host*)self;
  COUNT_CALL(IHost, get_Settings);
  if (FAILED(Outcome(&host->object))) return host->object.failure.code;
  return HandOut(&host->settings, result);
}

static const IHostVtbl kHostSlots = {UNKNOWN_SLOTS(IHost), GetCurrentState, Reserved, GetSettings};

void InitHost(Host* host) {
  InitObject(&host->object, &kHostSlots, &IID_IHost);
  InitPropertySet(&host->state);
  InitPropertySet(&host->settings);
}

void FreeHost(Host* host) {
  CheckOnlyOurs(&host->object);
  FreePropertySet(&host->state);
  FreePropertySet(&host->settings);
}

// Streams.

static HRESULT STDMETHODCALLTYPE Write(IVariantStream* self, VARIANT* value) {
  Stream* stream = (Stream*)self;
  COUNT_CALL(IVariantStream, Write);
  if (FAILED(Outcome(&stream->object))) return stream->object.failure.code;
  ++stream->written;
  return VariantCopyInd(&stream->value, value);
}

static HRESULT STDMETHODCALLTYPE Read(IVariantStream* self, VARIANT* result) {
  Stream* stream = (Stream*)self;
  COUNT_CALL(IVariantStream, Read);
  if (FAILED(Outcome(&stream->object))) return stream->object.failure.code;
  CHECK(V_VT(result) == VT_EMPTY);
  return VariantCopy(result, &stream->value);
}

static const IVariantStreamVtbl kStreamSlots = {UNKNOWN_SLOTS(IVariantStream), Write, Read};

void InitStream(Stream* stream) {
  InitObject(&stream->object, &kStreamSlots, &IID_IVariantStream);
  VariantInit(&stream->value);
  stream->written = 0;
}

void FreeStream(Stream* stream) {
  CheckOnlyOurs(&stream->object);
  VariantClear(&stream->value);
}

// Value sets.

// Several values are an array of variants: here every value is.
static HRESULT STDMETHODCALLTYPE GetValues(INamedValueSet* self, BSTR* path, VARIANT* result) {
  ValueSet* set = (ValueSet*)self;
  Entry* entry = FindEntry(set->entries, set->entry_count, *path);
  LONG first = 0;
  COUNT_CALL(INamedValueSet, GetValues);
  if (FAILED(Outcome(&set->object))) return set->object.failure.code;
  if (entry == NULL) return S_OK;
  V_VT(result) = VT_ARRAY | VT_VARIANT;
  V_ARRAY(result) = SafeArrayCreateVector(VT_VARIANT, 0, 1);
  return SafeArrayPutElement(V_ARRAY(result), &first, &entry->value);
}

static HRESULT STDMETHODCALLTYPE PutValue(INamedValueSet* self, BSTR* path, VARIANT* value) {
  ValueSet* set = (ValueSet*)self;
  COUNT_CALL(INamedValueSet, PutValue);
  if (FAILED(Outcome(&set->object))) return set->object.failure.code;
  SetEntry(set->entries, &set->entry_count, *path, value);
  return S_OK;
}

static HRESULT STDMETHODCALLTYPE ListAll(INamedValueSet* self, VARIANT* names, VARIANT* values) {
  ValueSet* set = (ValueSet*)self;
  LONG i;
  COUNT_CALL(INamedValueSet, ListAll);
  if (FAILED(Outcome(&set->object))) return set->object.failure.code;
  V_VT(names) = VT_ARRAY | VT_BSTR;
  V_ARRAY(names) = SafeArrayCreateVector(VT_BSTR, 0, set->entry_count);
  V_VT(values) = VT_ARRAY | VT_VARIANT;
  V_ARRAY(values) = SafeArrayCreateVector(VT_VARIANT, 0, set->entry_count);
  for (i = 0; i < (LONG)set->entry_count; ++i) {
    CHECK_CODE(S_OK, SafeArrayPutElement(V_ARRAY(names), &i, set->entries[i].name));
    CHECK_CODE(S_OK, SafeArrayPutElement(V_ARRAY(values), &i, &set->entries[i].value));
  }
  return S_OK;
}

static HRESULT STDMETHODCALLTYPE EntryCount(INamedValueSet* self, long* result) {
  ValueSet* set = (ValueSet*)self;
  COUNT_CALL(INamedValueSet, EntryCount);
  *result = (long)set->entry_count;
  return Outcome(&set->object);
}

static HRESULT STDMETHODCALLTYPE PrepareForUpdate(INamedValueSet* self) {
  ValueSet* set = (ValueSet*)self;
  COUNT_CALL(INamedValueSet, PrepareForUpdate);
  ++set->prepared;
  return Outcome(&set->object);
}

static const INamedValueSetVtbl kValueSetSlots = {
    UNKNOWN_SLOTS(INamedValueSet), GetValues, PutValue, ListAll, EntryCount, PrepareForUpdate};

void InitValueSet(ValueSet* set) {
  InitObject(&set->object, &kValueSetSlots, &IID_INamedValueSet);
  set->entry_count = 0;
  set->prepared = 0;
}

void FreeValueSet(ValueSet* set) {
  CheckOnlyOurs(&set->object);
  FreeEntries(set->entries, set->entry_count);
}

void PutText(ValueSet* set, const wchar_t* path, const wchar_t* text) {
  SetTextEntry(set->entries, &set->entry_count, path, text);
}

const VARIANT* ValueOf(const ValueSet* set, const wchar_t* path) {
  const Entry* entry = FindEntry((Entry*)set->entries, set->entry_count, path);
  return entry ? &entry->value : NULL;
}

// Layer metadata.

static HRESULT STDMETHODCALLTYPE ReadDocument(ILayerMetadata* self, IUnknown** result) {
  Metadata* metadata = (Metadata*)self;
  COUNT_CALL(ILayerMetadata, ReadDocument);
  if (FAILED(Outcome(&metadata->object))) return metadata->object.failure.code;
  CHECK(*result == NULL);
  *result = metadata->document;
  if (*result != NULL) (*result)->lpVtbl->AddRef(*result);
  return S_OK;
}

static HRESULT STDMETHODCALLTYPE WriteDocument(ILayerMetadata* self, IUnknown* document) {
  Metadata* metadata = (Metadata*)self;
  COUNT_CALL(ILayerMetadata, WriteDocument);
  if (FAILED(Outcome(&metadata->object))) return metadata->object.failure.code;
  ++metadata->written;
  document->lpVtbl->AddRef(document);
  if (metadata->document != NULL) metadata->document->lpVtbl->Release(metadata->document);
  metadata->document = document;
  return S_OK;
}

static const ILayerMetadataVtbl kMetadataSlots = {UNKNOWN_SLOTS(ILayerMetadata), ReadDocument,
                                                  WriteDocument};

void InitMetadata(Metadata* metadata) {
  InitObject(&metadata->object, &kMetadataSlots, &IID_ILayerMetadata);
  metadata->document = NULL;
  metadata->written = 0;
}

void FreeMetadata(Metadata* metadata) {
  CheckOnlyOurs(&metadata->object);
  if (metadata->document != NULL) metadata->document->lpVtbl->Release(metadata->document);
}

// Listeners.

static HRESULT STDMETHODCALLTYPE CatalogueChanged(ICatalogueListener* self) {
  Listener* listener = (Listener*)self;
  COUNT_CALL(ICatalogueListener, CatalogueChanged);
  ++listener->told;
  return Outcome(&listener->object);
}

static const ICatalogueListenerVtbl kListenerSlots = {UNKNOWN_SLOTS(ICatalogueListener),
                                                      CatalogueChanged};

void InitListener(Listener* listener) {
  InitObject(&listener->object, &kListenerSlots, &IID_ICatalogueListener);
  listener->told = 0;
}

void FreeListener(Listener* listener) { CheckOnlyOurs(&listener->object); }
