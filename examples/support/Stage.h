// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Keyframe.h>
#include <helvantine/core/Rect.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/host/Document.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/schematics/SchematicsNode.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <map>
#include <string>
#include <vector>

/// Shorthands for filling a document: each is a few calls of the public interface.
///
/// Properties are named as a user sees them. A name that doesn't exist is reported and changes nothing.
class Stage
{
public:
    struct KeyValue
    {
        float time; ///< seconds from the start of the effect
        helvantine::Vec4 value;
    };

    Stage(helvantine::Document& document, helvantine::Composition& composition, int endFrame);

    /// Both return the resource's id as text. A picture is imported once.
    std::string addPicture(const std::string& path);
    std::string addRenderTarget(const char* name, int width, int height, bool floats = false);

    /// An effect of the class T, over the whole film.
    template <class T>
    T& add(helvantine::Effect& parent, const char* name);
    helvantine::Layer& addLayer(helvantine::Effect& parent, const char* name, int start, int end);
    helvantine::RenderTargetEffect& addTarget(helvantine::Effect& parent, const char* name,
                                              const std::string& target);
    /// A quad in units of the virtual screen of 960 by 540, with a picture or a render target on it, drawn by a
    /// texture effect.
    template <class T = helvantine::TextureEffect>
    T& addQuad(helvantine::Effect& parent, const char* name, const std::string& resource,
               helvantine::BlendMode blend, const helvantine::Rect& place);

    void set(helvantine::Effect& effect, const char* property, const std::string& value);
    void set(helvantine::Effect& effect, const char* property, const helvantine::Vec4& value);
    /// Gives a property a curve. In Bezier mode the curve is level at every key.
    void animate(helvantine::Effect& effect, const char* property, unsigned mode,
                 const std::vector<KeyValue>& keys,
                 helvantine::KeyframeOOR outside = helvantine::KeyframeOOR::Constant);
    /// A node of the class T in the composition's graph.
    template <class T>
    T& addNode(const char* name);
    /// What the source becomes, the target becomes too. A link that isn't allowed is reported and left out.
    void link(helvantine::PropertyBase& source, helvantine::PropertyBase& target);
    void link(helvantine::PropertyBase& source, helvantine::Effect& target, const char* targetProperty);
    void link(helvantine::SchematicsNode& source, const char* output, helvantine::Effect& target,
              const char* targetProperty);
    void link(helvantine::Effect& source, const char* sourceProperty, helvantine::Effect& target,
              const char* targetProperty);

private:
    void addNode(helvantine::SchematicsNode& node, const char* name);
    /// Into the graph, if it isn't there.
    void enter(helvantine::Effect& effect);
    void placeQuad(helvantine::Effect& quad, const std::string& resource, helvantine::BlendMode blend,
                   const helvantine::Rect& place);

    helvantine::Document& m_document;
    helvantine::Composition& m_composition;
    int m_endFrame;
    int m_entered = 0;                             ///< effects in the graph
    std::map<std::string, std::string> m_pictures; ///< path, id
};

template <class T>
T& Stage::add(helvantine::Effect& parent, const char* name)
{
    T* effect = helvantine::createPluginOfType<T>(T::s_plugininfo.id);
    parent.addObject(effect, -1);
    effect->onInit();
    effect->setName(name);
    effect->setStart(0);
    effect->setEnd(m_endFrame);
    return *effect;
}

template <class T>
T& Stage::addQuad(helvantine::Effect& parent, const char* name, const std::string& resource,
                  helvantine::BlendMode blend, const helvantine::Rect& place)
{
    T& quad = add<T>(parent, name);
    placeQuad(quad, resource, blend, place);
    return quad;
}

template <class T>
T& Stage::addNode(const char* name)
{
    T* node = helvantine::createPluginOfType<T>(T::s_plugininfo.id);
    addNode(*node, name);
    return *node;
}
