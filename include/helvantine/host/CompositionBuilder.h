// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Rect.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/schematics/SchematicsNode.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <map>
#include <string>
#include <string_view>

namespace helvantine
{

class Document;

/// Fills a composition of a document from code: pictures and targets, effects and their curves, nodes and links.
///
///     CompositionBuilder builder(*application.getDocument(), "Intro", 300);
///     Effect& sun = builder.addQuad(builder.getRoot(), "Sun", builder.addTexture("sun.png"), BlendMode::Additive,
///                                   {120, 0, 400, 400});
///     sun.animateProperty("Color", KeyModeBezier, {{0, {1, 0.4f, 0.2f, 0}}, {4, {1, 0.8f, 0.6f, 1}}});
///
/// Nothing here is needed to keep a document alive: the builder can go when it is filled. What fails is reported with
/// `reportProblem`, and the building goes on: a missing picture is null, and a quad without a picture.
class HELVANTINE_FX_API CompositionBuilder
{
public:
    /// A new composition under the document's root. Effects last from frame 0 to endFrame, if nothing else is said.
    CompositionBuilder(Document& document, const char* name, int endFrame);
    /// Goes on with one that is there.
    CompositionBuilder(Document& document, Composition& composition, int endFrame);
    ~CompositionBuilder();

    Composition& getComposition() const { return *m_composition; }
    Layer& getRoot() const { return *m_composition->m_rootEffect; } ///< of the timeline

    /// Imports a file of the document's cache folder, once. ResourceManager::addTexture makes one of what is in memory.
    TextureResource* addTexture(const std::string& filename);
    RenderTargetResource* addRenderTarget(const char* name, int width, int height,
                                          RenderTargetResource::Format format = RenderTargetResource::RGBA8);

    /// An effect of the class T over the whole composition.
    template <class T>
    T& addEffect(Effect& parent, const char* name)
    {
        return parent.addEffect<T>(name, 0, m_endFrame);
    }
    /// An effect of the class that menus show under the path, such as "Silk/Silk". Null if no library offers it.
    Effect* addEffect(Effect& parent, std::string_view menuPath, const char* name);
    Layer& addLayer(Effect& parent, const char* name, int start, int end);
    /// Lets the effects below it draw into a target.
    RenderTargetEffect& addTargetEffect(Effect& parent, const char* name, const RenderTargetResource* target);
    /// A quad with a texture or a render target on it; the place is in units of the virtual screen of 960 by 540.
    template <class T = TextureEffect>
    T& addQuad(Effect& parent, const char* name, const Resource* source, BlendMode blend, const Rect& place)
    {
        T& quad = addEffect<T>(parent, name);
        placeQuad(quad, source, blend, place);
        return quad;
    }

    /// A node of the class T.
    template <class T>
    T& addNode(const char* name)
    {
        return m_composition->addNode<T>(name);
    }
    SchematicsNode* addNode(std::string_view menuPath, const char* name); ///< null if no library offers it
    /// What the source becomes, the target becomes too, from now on.
    bool addLink(PropertyBase& source, PropertyBase& target);
    bool addLink(PropertyBase& source, Object& target, std::string_view input);
    bool addLink(Object& source, std::string_view output, Object& target, std::string_view input);

private:
    void placeQuad(Effect& quad, const Resource* source, BlendMode blend, const Rect& place);
    void showNode(Object& object);

    Document& m_document;
    SmartRef<Composition> m_composition;
    int m_endFrame;
    int m_shownEffects = 0;                                      ///< by this builder, in the graph
    std::map<std::string, SmartRef<TextureResource>> m_textures; ///< by file name
};

} // namespace helvantine
