// SPDX-License-Identifier: MIT
// First light: a sunrise over water, made from nothing and saved as a document.
//
//     first-light DOCUMENT
#include "Pictures.h"
#include "Sunrise.h"
#include "WriteFilm.h"

int main(int argc, char** argv)
{
    const Film film = {"First light", sunriseRate, sunriseFrames, 1280, 720, paintPictures, addSunrise};
    return writeFilm(film, argc, argv);
}
