// SPDX-License-Identifier: MIT
#pragma once

#include "FolderWatch.h"
#include "LiveIncludes.h"
#include "LivePictures.h"
#include "LiveShaders.h"

#include <filesystem>

namespace helvantine::tool
{

/// Brings files of a folder into a document that plays, whenever they are written.
///
/// `NAME.hlsl` becomes the text of the shader nodes called NAME; an image replaces the textures that were loaded
/// from a file of the same name; shaders that include a file of the same name include this one and are compiled anew.
/// What can't be used is said and changes nothing. It is on the stack of g_fileSystem while it lives.
class LiveFolder
{
public:
    /// rehearsal: where shader texts are drawn with before the document gets them; null: they get in once they compile.
    LiveFolder(Document& document, Say say, Rehearsal* rehearsal = nullptr);
    ~LiveFolder();
    LiveFolder(const LiveFolder&) = delete;
    LiveFolder& operator=(const LiveFolder&) = delete;

    /// What lies in the folder is brought in too. Returns a sentence for the user, empty for success.
    std::string open(const std::string& folder);

    /// Once a frame, outside of it. now: the time in seconds; frame: the one on show. True if the picture may have
    /// changed.
    bool update(double now, int frame = 0);

private:
    void bringTexts(const std::set<std::string>& names);
    void offerShader(const std::string& path, const std::string& node);

    Document& m_document;
    Say m_say;
    std::filesystem::path m_folder;
    FolderWatch m_watch;
    SmartRef<LiveIncludes> m_includes;
    LiveShaders m_shaders;
    LivePictures m_pictures;
    std::string m_name; ///< of the file at hand
};

} // namespace helvantine::tool
