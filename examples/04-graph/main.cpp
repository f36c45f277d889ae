// SPDX-License-Identifier: MIT
// Graph: an orrery that nodes drive. There is no keyframe in the document.
//
//     graph DOCUMENT
#include "Orrery.h"
#include "Pictures.h"
#include "WriteFilm.h"

int main(int argc, char** argv)
{
    const Film film = {"Orrery", orreryRate, orreryFrames, 1280, 720, paintPictures, addOrrery};
    return writeFilm(film, argc, argv);
}
