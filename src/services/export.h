// How an exported entry is marked on its definition: C linkage, visible outside the shared library.
#pragma once

#ifdef _WIN32
#define ORV_API extern "C" __declspec(dllexport)
#else
#define ORV_API extern "C" __attribute__((visibility("default")))
#endif
