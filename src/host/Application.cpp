// SPDX-License-Identifier: MIT
#include <helvantine/host/Application.h>

#include <helvantine/audio/AudioDevice.h>
#include <helvantine/core/Report.h>
#include <helvantine/core/System.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/renderer/RenderWindow.h>
#include <helvantine/renderer/Renderer.h>
#include <helvantine/timeline/Composition.h>

#include <algorithm>
#include <cassert>

namespace helvantine
{

Application* g_application = nullptr;

namespace
{

constexpr unsigned hiddenWidth = 960;
constexpr unsigned hiddenHeight = 540;
constexpr unsigned styleHidden = 0;
constexpr unsigned styleWindow = RenderWindow::Visible | RenderWindow::Framed | RenderWindow::Resizable;
constexpr unsigned styleFullscreen = styleWindow | RenderWindow::FullScreen;
constexpr int defaultAudioDevice = -1;
constexpr int audioRate = 44100;

Composition* findComposition(const Document* document, const UniqueId& id)
{
    assert(document && "a composition is ticked and drawn after newDocument or loadDocument");
    return document->getCompositionManager()->getRoot()->findComposition(id);
}

/// Without the runtime's own classes a document can't hold a thing: said once, instead of for each of its objects.
void reportMissingRuntime(const PluginManager& manager, const std::string& folder)
{
    const bool isFound = std::ranges::any_of(manager.m_factories, [](const SmartRef<PluginFactory>& factory) {
        return factory->m_info->id == stringToUniqueId(runtimeLibraryId);
    });
    if (!isFound)
        reportProblem("plugin", "no runtime classes in " + folder + ": Helvantine.Fx.dll belongs there");
}

} // namespace

Application::Application(const char* pluginPath, bool createDevice) : m_createDevice(createDevice)
{
    g_application = this;
    const std::string folder = pluginPath ? pluginPath : getExecutableFolder();
    m_pluginManager.reset(createPluginManager(folder.c_str()));
    reportMissingRuntime(*m_pluginManager, folder);
    if (!m_createDevice)
        return;

    m_renderWindow = std::make_unique<RenderWindow>();
    // A window made here is always hidden and without a title: a host that wants one to show calls create.
    m_renderWindow->create(hiddenWidth, hiddenHeight, "", styleHidden, nullptr);
    DXGI_MODE_DESC mode = {};
    mode.Width = hiddenWidth;
    mode.Height = hiddenHeight;
    mode.RefreshRate.Denominator = 1;
    m_renderer = std::make_unique<Renderer>();
    m_renderer->create(mode, false, false, 1, 0, m_renderWindow.get(), true);
    m_audioDevice.reset(createAudioDevice(defaultAudioDevice, audioRate));
}

Application::~Application()
{
    // Effects are objects of plugin classes and hold what the renderer made: the document goes first, then
    // the libraries, then the devices.
    m_document.reset();
    m_pluginManager.reset();
    m_audioDevice.reset();
    m_renderer.reset();
    m_renderWindow.reset();
    g_application = nullptr;
}

bool Application::create(const DXGI_MODE_DESC& mode, bool fullscreen, bool secondRendererFlag,
                         unsigned int rendererValue1, unsigned int rendererValue2, const char* title)
{
    // A renderer held before draws to the window held before, so it goes first.
    m_renderer.reset();
    m_renderWindow = std::make_unique<RenderWindow>();
    const unsigned style = fullscreen ? styleFullscreen : styleWindow;
    if (!m_renderWindow->create(mode.Width, mode.Height, title, style, nullptr))
        return false;
    m_renderWindow->setIcon(findApplicationIcon().c_str());

    m_renderer = std::make_unique<Renderer>();
    if (!m_renderer->create(mode, fullscreen, secondRendererFlag, rendererValue1, rendererValue2,
                            m_renderWindow.get(), false))
        return false;
    m_audioDevice.reset(createAudioDevice(defaultAudioDevice, audioRate));
    return true;
}

void Application::newDocument(const char* cacheFolder)
{
    m_document.reset();
    m_document = std::make_unique<Document>(cacheFolder, nullptr);
}

void Application::warmUp(const UniqueId& compositionId)
{
    if (Composition* composition = findComposition(m_document.get(), compositionId))
        composition->warmUp();
}

void Application::update(const UniqueId& compositionId, FxUpdateContext& context)
{
    if (Composition* composition = findComposition(m_document.get(), compositionId))
        composition->update(context);
}

void Application::render(const UniqueId& compositionId, FxRenderContext& context)
{
    if (Composition* composition = findComposition(m_document.get(), compositionId))
        composition->render(context);
}

} // namespace helvantine
