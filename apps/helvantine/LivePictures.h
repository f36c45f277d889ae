// SPDX-License-Identifier: MIT
#pragma once

#include "Say.h"

#include <helvantine/core/SmartRef.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace helvantine
{
class Document;
class TextureLoading;
class TextureResource;
} // namespace helvantine

namespace helvantine::tool
{

class LiveIncludes;

/// Gives textures new pictures, once these are decoded beside the frames: until then, and if they can't be, the
/// textures keep what they have.
class LivePictures
{
public:
    LivePictures(Document& document, LiveIncludes& includes, Say say);
    ~LivePictures();

    /// A picture for the textures that were loaded from a file of that name.
    void offer(const std::string& name, const std::string& path);

    /// Once a frame; doesn't wait for the decoder. True if a texture has got a picture.
    bool update();

private:
    /// The first of the queue is decoded.
    struct Candidate
    {
        std::string name;
        std::string path;
        std::unique_ptr<TextureLoading> loading; ///< null while it waits
        bool outdated = false;                   ///< the file was written again
    };

    bool finish(const Candidate& candidate);
    std::vector<SmartRef<TextureResource>> getTextures(const std::string& name) const;

    Document& m_document;
    LiveIncludes& m_includes;
    Say m_say;
    std::deque<Candidate> m_candidates;
};

} // namespace helvantine::tool
