// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Keyframe.h>
#include <helvantine/core/Rect.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/host/Document.h>
#include <helvantine/plugin/PluginManager.h>
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

    helvantine::Composition& getComposition() const { return m_composition; }

    /// Both return the resource's id as text. A picture is imported once.
    std::string addPicture(const std::string& path);
    std::string addRenderTarget(const char* name, int width, int height);

    /// An effect of the class T, over the whole film.
    template <class T>
    T& add(helvantine::Effect& parent, const char* name);
    helvantine::Layer& addLayer(helvantine::Effect& parent, const char* name, int start, int end);
    helvantine::RenderTargetEffect& addTarget(helvantine::Effect& parent, const char* name,
                                              const std::string& target);
    /// A quad in units of the virtual screen of 960 by 540, with a picture or a render target on it.
    helvantine::Effect& addQuad(helvantine::Effect& parent, const char* name, const std::string& resource,
                                helvantine::BlendMode blend, const helvantine::Rect& place);

    void set(helvantine::Effect& effect, const char* property, const std::string& value);
    void set(helvantine::Effect& effect, const char* property, const helvantine::Vec4& value);
    /// Gives a property a curve. In Bezier mode the curve is level at every key.
    void animate(helvantine::Effect& effect, const char* property, unsigned mode,
                 const std::vector<KeyValue>& keys,
                 helvantine::KeyframeOOR outside = helvantine::KeyframeOOR::Constant);
    /// What the source's property becomes, the target's becomes too.
    void link(helvantine::Effect& source, const char* sourceProperty, helvantine::Effect& target,
              const char* targetProperty);

private:
    helvantine::Document& m_document;
    helvantine::Composition& m_composition;
    int m_endFrame;
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
