// SPDX-License-Identifier: MIT
#include <helvantine/host/CompositionBuilder.h>

#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/schematics/EffectNode.h>

namespace helvantine
{

namespace
{

// Where effects stand on the editor's canvas: below each other, on the right of whatever leads to them.
constexpr float s_effectColumn = 3000;
constexpr float s_rowHeight = 120;

} // namespace

CompositionBuilder::CompositionBuilder(Document& document, const char* name, int endFrame)
    : m_document(document), m_composition(new Composition(true, true)), m_endFrame(endFrame)
{
    m_composition->setName(name);
    document.getCompositionManager()->getRoot()->addComposition(m_composition.get());
}

CompositionBuilder::CompositionBuilder(Document& document, Composition& composition, int endFrame)
    : m_document(document), m_composition(&composition), m_endFrame(endFrame)
{
}

CompositionBuilder::~CompositionBuilder() = default;

TextureResource* CompositionBuilder::addTexture(const std::string& filename)
{
    SmartRef<TextureResource>& texture = m_textures[filename];
    if (!texture)
        texture = m_document.getResourceManager()->addTexture(filename.c_str());
    return texture.get();
}

RenderTargetResource* CompositionBuilder::addRenderTarget(const char* name, int width, int height,
                                                          RenderTargetResource::Format format)
{
    return m_document.getResourceManager()->addRenderTarget(name, width, height, format);
}

Effect* CompositionBuilder::addEffect(Effect& parent, std::string_view menuPath, const char* name)
{
    return parent.addEffect(menuPath, name, 0, m_endFrame);
}

Layer& CompositionBuilder::addLayer(Effect& parent, const char* name, int start, int end)
{
    return parent.addEffect<Layer>(name, start, end);
}

RenderTargetEffect& CompositionBuilder::addTargetEffect(Effect& parent, const char* name,
                                                        const RenderTargetResource* target)
{
    auto& effect = addEffect<RenderTargetEffect>(parent, name);
    effect.setProperty("Render Target", target);
    return effect;
}

void CompositionBuilder::placeQuad(Effect& quad, const Resource* source, BlendMode blend, const Rect& place)
{
    quad.setProperty("Texture", source);
    quad.setProperty("Blend", blend);
    quad.setProperty("Position", {place.x, place.y, 0});
    quad.setProperty("Size", {place.width, place.height});
}

SchematicsNode* CompositionBuilder::addNode(std::string_view menuPath, const char* name)
{
    return m_composition->addNode(menuPath, name);
}

bool CompositionBuilder::addLink(PropertyBase& source, PropertyBase& target)
{
    return m_composition->addLink(&source, &target);
}

bool CompositionBuilder::addLink(PropertyBase& source, Object& target, std::string_view input)
{
    PropertyBase* property = target.findProperty(input);
    if (!property || !addLink(source, *property))
        return false;
    showNode(target);
    return true;
}

bool CompositionBuilder::addLink(Object& source, std::string_view output, Object& target,
                                 std::string_view input)
{
    PropertyBase* property = source.findProperty(output);
    if (!property || !addLink(*property, target, input))
        return false;
    showNode(source);
    return true;
}

void CompositionBuilder::showNode(Object& object)
{
    const auto* effect = castTo<Effect>(&object);
    if (effect && m_composition->addEffectNode(*effect))
        effect->m_effectNode->setPosition(
            {s_effectColumn, s_rowHeight * static_cast<float>(m_shownEffects++)});
}

} // namespace helvantine
