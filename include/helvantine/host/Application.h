// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/UniqueId.h>
#include <helvantine/renderer/D3D11Types.h>

#include <memory>

/// Laws of a host.
///
/// - There is one Application, g_application; every part of the runtime reaches the document and the plugin
///   manager through it. A second one takes the global over, and destroying either clears it.
/// - Order: construct; create, if the flag was false and the host wants to draw; newDocument or loadDocument;
///   then for each frame update and render, both with the id of the composition to play. Without a device a
///   document can be loaded, changed and saved, but not drawn.
/// - Ticking and drawing need a document: without one they must not be called.
/// - One thread calls everything. Loading and saving run between frames.
/// - Operations report success or nothing; the words of what went wrong are in takeProblems.
namespace helvantine
{

class AudioDevice;
class Document;
class FxSerializerListener;
class PluginManager;
class Renderer;
class RenderWindow;
struct FxRenderContext;
struct FxUpdateContext;

/// The root of the runtime: owns plugins, document, renderer, window and audio device.
class HELVANTINE_FX_API Application
{
public:
    /// pluginPath: the folder scanned for libraries with plugin classes, the runtime's own among them; null for the
    /// executable's, where a host lies with the libraries that it was shipped with.
    /// createDevice: also makes a hidden window of 960 by 540, an off-screen renderer and an audio device.
    /// A machine without a usable device leaves a renderer that isn't g_renderer; the report says why.
    Application(const char* pluginPath, bool createDevice);
    virtual ~Application();
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

    /// Makes window, renderer and audio device of mode's size, in place of those held before.
    ///
    /// The flag and the two values go to Renderer::create as they are. False when the window or the renderer
    /// can't be made; a machine without sound is no failure.
    bool create(const DXGI_MODE_DESC& mode, bool fullscreen, bool secondRendererFlag,
                unsigned int rendererValue1, unsigned int rendererValue2, const char* title);

    /// Replaces the document by an empty one. cacheFolder: see Document; null means none.
    void newDocument(const char* cacheFolder);

    /// Replaces the document by the one in the file, which is unpacked into cacheFolder (null reads from
    /// the archive in place). A null path reads what cacheFolder already holds. listener gets
    /// the progress and may be null.
    /// A file that can't be read leaves an empty document; a damaged one what could be read. What was wrong
    /// is in the document's getLoadProblems.
    void loadDocument(const char* documentPath, const char* cacheFolder, FxSerializerListener* listener);

    /// Writes the document, if there is one, to a file, which is replaced only by a complete new one. How it went is
    /// in the document's getSaveOutcome.
    void saveDocument(const char* documentPath);

    /// Makes the programs and pipelines that drawing a composition will need, so that no frame waits for
    /// them. After loading and before the first frame, with the target pushed that the frames are drawn to.
    void warmUp(const UniqueId& compositionId);
    /// One tick of a composition; an unknown id does nothing.
    void update(const UniqueId& compositionId, FxUpdateContext& context);
    /// One drawing of a composition into the current render target; an unknown id does nothing.
    void render(const UniqueId& compositionId, FxRenderContext& context);

    bool getCreateDevice() const { return m_createDevice; }
    PluginManager* getPluginManager() const { return m_pluginManager.get(); }
    Document* getDocument() const { return m_document.get(); }             ///< null until there is one
    Renderer* getRenderer() const { return m_renderer.get(); }             ///< null until created
    RenderWindow* getRenderWindow() const { return m_renderWindow.get(); } ///< null until created
    AudioDevice* getAudioDevice() const { return m_audioDevice.get(); }    ///< null until created

private:
    bool m_createDevice;
    std::unique_ptr<PluginManager> m_pluginManager;
    std::unique_ptr<Document> m_document;
    std::unique_ptr<Renderer> m_renderer;
    std::unique_ptr<RenderWindow> m_renderWindow;
    std::unique_ptr<AudioDevice> m_audioDevice;
};

/// The application; set while its constructor begins, null without one.
extern HELVANTINE_FX_API Application* g_application;

} // namespace helvantine
