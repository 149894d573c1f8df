// Headers of COM and automation, in the order in which they need each other.
#pragma once

#include <windows.h>
// The others need its types.
#include <oaidl.h>
#include <objbase.h>
#include <oleauto.h>
#include <olectl.h>
#include <wrl/client.h>
