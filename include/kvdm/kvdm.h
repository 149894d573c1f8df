// All that a host needs of the component, in one header.
//
// Conventions. Texts are UTF-8 and never modified. Of a property pair the get stands before the
// let: Name(), then SetName(). A list is Nothing when its element can't be reached, and empty when
// there is nothing in it. A Get... operation returns Nothing for what is not there; create and
// delete operations return True only on success. Objects are views: they hold no data, and two
// views of one element always agree. All calls come from the host's one thread.
//
// Failures. An operation of the data manager or of a study area shows a message and returns its
// neutral result: False, "", Nothing. An operation of another class whose failure is to be reported
// ends in run-time error 438, with the message and the cause attached. Operations marked [errors]
// pass errors on unchanged; those marked [quiet] trap them and return the neutral result.
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
