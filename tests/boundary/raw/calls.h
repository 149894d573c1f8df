// Calls through the slots of an interface, each of them counted, and checks of what they answer.
#pragma once

#include <stddef.h>

#include "check.h"
#include "com/kvdm.h"

// CALL(Interface, Operation, object, arguments...)
#define CALL(Interface, Operation, ...)                                               \
  (CountCall(&IID_##Interface, offsetof(Interface##Vtbl, Operation) / sizeof(void*)), \
   FIRST_ARGUMENT(__VA_ARGS__, 0)->lpVtbl->Operation(__VA_ARGS__))
#define FIRST_ARGUMENT(first, ...) first

// Checks of a call that succeeds: that it answers nothing, or the expected result. The place of the
// result is full of rubbish before, and freed afterwards.
#define CHECK_DONE(Interface, ...) CHECK_CODE(S_OK, CALL(Interface, __VA_ARGS__))
#define CHECK_TEXT(expected, Interface, ...)                                     \
  do {                                                                           \
    BSTR text_ = Poison();                                                       \
    CHECK_CODE(S_OK, CALL(Interface, __VA_ARGS__, &text_));                      \
    CheckText(expected, text_, #Interface " " #__VA_ARGS__, __FILE__, __LINE__); \
  } while (0)
#define CHECK_TRUE(Interface, ...) CHECK_FLAG(VARIANT_TRUE, Interface, __VA_ARGS__)
#define CHECK_FALSE(Interface, ...) CHECK_FLAG(VARIANT_FALSE, Interface, __VA_ARGS__)
#define CHECK_FLAG(expected, Interface, ...)                \
  do {                                                      \
    VARIANT_BOOL flag_ = 0x55;                              \
    CHECK_CODE(S_OK, CALL(Interface, __VA_ARGS__, &flag_)); \
    CHECK(flag_ == (expected));                             \
  } while (0)
#define CHECK_NUMBER(expected, Interface, ...)                \
  do {                                                        \
    long number_ = 0x55555555;                                \
    CHECK_CODE(S_OK, CALL(Interface, __VA_ARGS__, &number_)); \
    CHECK(number_ == (expected));                             \
  } while (0)
// A list of texts, joined by "|"; null for Nothing.
#define CHECK_LIST(expected, Interface, ...)                                     \
  do {                                                                           \
    INameList* list_ = Poison();                                                 \
    CHECK_CODE(S_OK, CALL(Interface, __VA_ARGS__, &list_));                      \
    CheckList(expected, list_, #Interface " " #__VA_ARGS__, __FILE__, __LINE__); \
  } while (0)
// A variant that holds the text.
#define CHECK_VALUE(expected, Interface, ...)                                              \
  do {                                                                                     \
    VARIANT value_ = PoisonedVariant();                                                    \
    CHECK_CODE(S_OK, CALL(Interface, __VA_ARGS__, &value_));                               \
    CHECK(V_VT(&value_) == VT_BSTR);                                                       \
    CheckText(expected, V_BSTR(&value_), #Interface " " #__VA_ARGS__, __FILE__, __LINE__); \
  } while (0)
// Nothing.
#define CHECK_NOTHING(Interface, ...)                                \
  do {                                                               \
    void* object_ = Poison();                                        \
    CHECK_CODE(S_OK, CALL(Interface, __VA_ARGS__, (void*)&object_)); \
    CHECK(object_ == NULL);                                          \
  } while (0)

// Puts the object that an operation answers into `object`, a pointer to the interface.
#define GET(object, Interface, ...)                            \
  do {                                                         \
    (object) = Poison();                                       \
    CHECK_CODE(S_OK, CALL(Interface, __VA_ARGS__, &(object))); \
    CHECK((object) != NULL);                                   \
  } while (0)

void CountCall(REFIID iid, size_t slot);

// Checks that each slot of each interface of the type library was called, but for those of `never`,
// which were not.
typedef struct {
  const IID* iid;
  size_t slot;
} Slot;
void CheckEverySlotWasCalled(const Slot* never);

// A text to be passed by reference. Lives until TakeBack, which checks that it is as it was.
BSTR* In(const wchar_t* text);
void TakeBack(void);

// What no operation may leave in the place of a result.
void* Poison(void);
VARIANT PoisonedVariant(void);

// These free what they check.
void CheckText(const wchar_t* expected, BSTR actual, const char* what, const char* file, int line);
void CheckList(const wchar_t* expected, INameList* actual, const char* what, const char* file,
               int line);

// Takes the error object of the thread, and checks it.
#define CHECK_ERROR_OBJECT(iid, source, description) \
  CheckErrorObject((iid), (source), (description), __FILE__, __LINE__)
void CheckErrorObject(REFIID iid, const wchar_t* source, const wchar_t* description,
                      const char* file, int line);
