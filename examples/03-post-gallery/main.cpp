// SPDX-License-Identifier: MIT
// Post gallery: every 2D effect in turn, saved as one document. docs/gallery.md shows it.
//
//     post-gallery DOCUMENT
#include "Gallery.h"
#include "WriteFilm.h"

int main(int argc, char** argv)
{
    const Film film = {"Post gallery", galleryRate, galleryFrames, 1280, 720, paintGallery, addGallery};
    return writeFilm(film, argc, argv);
}
