#ifndef MIRA_PLATFORM_API_H_
#define MIRA_PLATFORM_API_H_

// The one header with compiler-only spellings: how a symbol is exported from, or imported into, a
// module.
//
// MIRA_STATIC        the library is linked statically (unit tests, Linux)
// MIRA_BUILDING_DLL  the DLL itself is being built

#if defined(_WIN32) && !defined(MIRA_STATIC)
#if defined(MIRA_BUILDING_DLL)
#define MIRA_API __declspec(dllexport)
#else
#define MIRA_API __declspec(dllimport)
#endif
#elif defined(__GNUC__)
#define MIRA_API __attribute__((visibility("default")))
#else
#define MIRA_API
#endif

// Exported classes hold standard-library members; host and DLL share one toolset, so the warning
// says nothing.
#if defined(_MSC_VER)
#pragma warning(disable : 4251 4275)
#endif

#endif  // MIRA_PLATFORM_API_H_
