#pragma once

// The one way to the system's header. Its macros stand in the way of constants that the platform's
// interfaces declare under the same names, with the same values: those are taken away, so that both
// can be included in any order.

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#undef CSIDL_PERSONAL
#undef CSIDL_PROGRAMS
#undef GW_HWNDFIRST
#undef GW_HWNDNEXT
#undef HKEY_CLASSES_ROOT
#undef HKEY_CURRENT_USER
#undef HKEY_LOCAL_MACHINE
#undef INFINITE
#undef OF_CREATE
#undef OF_READ
#undef SYNCHRONIZE
