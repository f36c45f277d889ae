// SPDX-License-Identifier: MIT
#pragma once

/// Marks what "Helvantine.Core.dll" offers to others; everything else stays inside the library.
#if defined(_WIN32)
#if defined(HelvantineCore_EXPORTS)
#define HELVANTINE_CORE_API __declspec(dllexport)
#else
#define HELVANTINE_CORE_API __declspec(dllimport)
#endif
#else
#define HELVANTINE_CORE_API __attribute__((visibility("default")))
#endif
