/// @file
/// Umbrella header: all that a host needs of the component.
///
/// @mainpage KVDM for those who embed it
///
/// A host creates `KVDM.KVDataManager` with kvdm::CreateObject, gives it a kvdm::Platform, and asks
/// it for collections, and these for items. What follows holds for every interface; the operations
/// say what they add to it.
///
/// **Threads.** The component starts none and takes no lock. All calls come from the host's one
/// thread, and services and client objects are called on it. They may call the component again.
///
/// **Objects** are views: they hold an element of a document and the data manager, no data. Two
/// views of one element always agree. A view keeps the data manager alive, and goes on editing its
/// element after that was removed or its document replaced. An object that CreateObject made of
/// another class than the data manager is *unbound*: it has no element, answers with its neutral
/// results, and its setters do nothing.
///
/// **Results.** The *neutral result* is the empty value of a type: False, "", 0 or Nothing, which
/// is the empty pointer. A Get operation answers Nothing for what is not there. A Create or Delete
/// operation answers True only when all of it was done. Of a property the get comes before the let:
/// Name(), then SetName().
///
/// **Texts** are UTF-8. Names, identifiers and keys are compared exactly, letter case included.
/// Characters that XML can't hold are stored as U+FFFD. One text may have 10,000,000 bytes and one
/// document 64 MiB; what exceeds that fails with 7. A double quote in a name or identifier that is
/// looked for fails with -2147467259.
///
/// **Paths** have the component's own form, such as `D:\Data\StudyAreas\North\`; the platform maps
/// them to files. Paths of folders end in a backslash where an operation does not say otherwise.
///
/// **Lists** are counted from 1 and in the order of the document. Nothing instead of a list means
/// that its element can't be reached; a list without entries means that there is nothing in it. A
/// list is a copy.
///
/// **Free names.** The first candidate that is not taken: the name, then the name followed by 1, 2,
/// 3 and so on to 32767; beyond that the failure is 6.
///
/// **Deleted folders.** All in a folder goes with it, links as files. Hidden, system and read-only
/// entries stay, and so does what holds them. A path that is not rooted, names a root, or climbs
/// is refused. What becomes of the folder never changes the result of the operation.
///
/// **Saving.** The study areas are in the catalogue. An operation that *saves* runs
/// kvdm::IKVDataManager::Flush after its change, which writes the catalogue to the registry; a
/// failure of that is shown and does not change the result. Analyses, layers and data items are in
/// the metadata document, which is kept only when the host calls kvdm::IPersistVariant::Save.
///
/// **Failures.** Each operation says what becomes of them, in one of four words:
/// - *Shows*: the platform's kvdm::MessageBox is shown, and the neutral result comes back.
/// - *438*: run-time error 438 arrives. Its kvdm::RuntimeError::unsent_message is the report; what
///   failed is nested in it (kvdm::ErrorChain).
/// - *Errors*: the kvdm::RuntimeError itself arrives, with a number of kvdm::ErrorNumber. Other
///   exceptions of the standard library, such as `std::bad_alloc`, arrive as they are.
/// - *Quiet*: the neutral result comes back.
///
/// Each failure that does not arrive is noted once in the platform's kvdm::Log, with what was not
/// done and its cause: `Couldn't delete Analysis: Permission denied: D:\Data\ (70)`.
///
/// Whatever a service or a client's object throws counts as a failure; an object that answers
/// Nothing where one is needed fails with 91. Where an operation does not say otherwise, everything
/// stored is after a failure as before. Only a document that reaches its size limit in the middle
/// of an operation keeps the steps that were done.
#pragma once

#include <kvdm/datamanager/analyses.h>
#include <kvdm/datamanager/component.h>
#include <kvdm/datamanager/data_items.h>
#include <kvdm/datamanager/data_manager.h>
#include <kvdm/datamanager/layers.h>
#include <kvdm/datamanager/name_list.h>
#include <kvdm/datamanager/study_areas.h>
#include <kvdm/datamanager/unknown.h>
#include <kvdm/export.h>
#include <kvdm/platform/clock.h>
#include <kvdm/platform/code_page.h>
#include <kvdm/platform/document_tree.h>
#include <kvdm/platform/error.h>
#include <kvdm/platform/file_system.h>
#include <kvdm/platform/gis_core.h>
#include <kvdm/platform/host.h>
#include <kvdm/platform/log.h>
#include <kvdm/platform/message_box.h>
#include <kvdm/platform/platform.h>
#include <kvdm/platform/portable/callback_sinks.h>
#include <kvdm/platform/portable/portable_services.h>
#include <kvdm/platform/portable/properties_host.h>
#include <kvdm/platform/portable/sidecar_metadata.h>
#include <kvdm/platform/portable/variant_list.h>
#include <kvdm/platform/registry.h>
#include <kvdm/platform/siblings.h>
#include <kvdm/platform/value.h>
