// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/host/CompositionBuilder.h>

#include <string>

/// A document of one composition, made by a program.
struct Film
{
    const char* title;
    int rate;   ///< frames per second
    int frames; ///< from the start to the end
    int width;  ///< in pixels, as height
    int height;
    /// Paints the film's pictures into a folder whose path ends in a separator; false if one can't be written.
    bool (*paint)(const std::string& folder);
    /// Adds the film's effects to the composition's root.
    void (*fill)(helvantine::CompositionBuilder& builder, helvantine::Effect& root);
};

/// The host: makes the project through the public interface and saves it as the document that the command line
/// names. Returns the exit status of the program; problems are told on standard error.
int writeFilm(const Film& film, int argc, char** argv);
