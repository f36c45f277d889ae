// SPDX-License-Identifier: MIT
#pragma once

/// Marks what "Helvantine.Audio.dll" offers to others; everything else stays inside the library.
#if defined(_WIN32)
#if defined(HelvantineAudio_EXPORTS)
#define HELVANTINE_AUDIO_API __declspec(dllexport)
#else
#define HELVANTINE_AUDIO_API __declspec(dllimport)
#endif
#else
#define HELVANTINE_AUDIO_API __attribute__((visibility("default")))
#endif
