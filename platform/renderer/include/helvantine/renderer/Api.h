// SPDX-License-Identifier: MIT
#pragma once

/// Marks what "Helvantine.Renderer.dll" offers to others; everything else stays inside the library.
#if defined(_WIN32)
#if defined(HelvantineRenderer_EXPORTS)
#define HELVANTINE_RENDERER_API __declspec(dllexport)
#else
#define HELVANTINE_RENDERER_API __declspec(dllimport)
#endif
#else
#define HELVANTINE_RENDERER_API __attribute__((visibility("default")))
#endif
