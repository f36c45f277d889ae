// SPDX-License-Identifier: MIT
#pragma once

/// Marks what "Helvantine.Fx.dll" offers to others; everything else stays inside the library.
#if defined(_WIN32)
#if defined(HelvantineFx_EXPORTS)
#define HELVANTINE_FX_API __declspec(dllexport)
#else
#define HELVANTINE_FX_API __declspec(dllimport)
#endif
#else
#define HELVANTINE_FX_API __attribute__((visibility("default")))
#endif
