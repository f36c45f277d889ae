// SPDX-License-Identifier: MIT
#include "EffectTest.h"

#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/resource/MaterialShaderResource.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/ShaderResource.h>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

/// All effects that the plugin manager knows, with whatever their resource properties may name.
///
/// What is drawn is of no interest: nothing crashes, what was pushed is popped, and the validation layer, which the
/// fixture listens to, has nothing to say.
class EffectResources : public EffectTest
{
protected:
    void SetUp() override
    {
        EffectTest::SetUp();
        for (const SmartRef<PluginFactory>& factory : application().getPluginManager()->m_factories)
            for (const PluginInfo* info : factory->m_plugins)
                if (info->kind == PluginEffect)
                    addEffect(info->id);
        ASSERT_GT(m_effects.size(), 15u);
        ASSERT_GT(countProperties(), 20u);
    }

    void TearDown() override
    {
        m_effects.clear();
        EffectTest::TearDown();
    }

    static std::string addResource(Resource* resource)
    {
        getResourceManager()->getRoot()->addResource(resource);
        return uniqueIdToString(resource->getId());
    }

    static SmartRef<RenderTargetResource> makeTargetResource(int width, int height,
                                                             RenderTargetResource::Format format, bool depth)
    {
        SmartRef<RenderTargetResource> resource(new RenderTargetResource());
        EXPECT_TRUE(resource->create(width, height, format, 1, 0, depth, RenderTargetResource::D24S8));
        addResource(resource.get());
        return resource;
    }

    /// Assigns one text to all resource properties of all effects.
    void assignAll(const std::string& text)
    {
        for (const UnderTest& effect : m_effects)
            for (PropertyBase* property : effect.properties)
                property->fromString(text.c_str());
    }

    void setInWorld(bool inWorld)
    {
        for (const UnderTest& effect : m_effects)
            if (effect.object->isOfType(&Effect2D::m_typeInfo))
                set(*effect.object, "Transformation", "3D", inWorld ? "1" : "0");
    }

    /// One frame into the target, with every effect drawn as it is.
    void drawAll(RenderTarget* screen)
    {
        drawFrame(screen, Vec4(0, 0, 0, 1), [&] {
            for (const UnderTest& effect : m_effects)
                draw(*effect.object, screen);
        });
    }

    /// One frame, in which each property in turn has the text.
    void drawWithEachProperty(RenderTarget* screen, const std::string& text)
    {
        drawFrame(screen, Vec4(0, 0, 0, 1), [&] {
            for (const UnderTest& effect : m_effects) {
                for (PropertyBase* property : effect.properties) {
                    const std::string others = property->toString();
                    property->fromString(text.c_str());
                    SCOPED_TRACE(property->m_name);
                    draw(*effect.object, screen);
                    property->fromString(others.c_str());
                }
            }
        });
    }

private:
    struct UnderTest
    {
        SmartRef<Effect> object;
        std::vector<PropertyBase*> properties; ///< that name resources
    };

    void addEffect(const UniqueId& id)
    {
        UnderTest effect = {SmartRef<Effect>(createPluginOfType<Effect>(id)), {}};
        ASSERT_TRUE(effect.object) << uniqueIdToString(id);
        effect.object->onInit();
        update(*effect.object);
        for (const auto& [propertyId, property] : effect.object->m_properties)
            if (property->m_type == KindResource)
                effect.properties.push_back(property);
        m_effects.push_back(std::move(effect));
    }

    std::size_t countProperties() const
    {
        std::size_t count = 0;
        for (const UnderTest& effect : m_effects)
            count += effect.properties.size();
        return count;
    }

    static void draw(Effect& effect, RenderTarget* screen)
    {
        render(effect);
        EXPECT_EQ(g_renderer->getRenderTargetCount(), 1u) << effect.getPluginInfo()->name;
        EXPECT_EQ(g_renderer->getRenderTarget(), screen) << effect.getPluginInfo()->name;
    }

    std::vector<UnderTest> m_effects;
};

TEST_F(EffectResources, MayBeOfAnyKindMissingOrUnfinished)
{
    using Target = RenderTargetResource;
    const SmartRef<Target> drawn = makeTargetResource(37, 23, Target::RGBA8, true);
    const std::string target = uniqueIdToString(makeTargetResource(19, 11, Target::RGBA32F, false)->getId());
    const std::string texture = uniqueIdToString(addTexture(makeNoise(13, 7, 50))->getId());
    const std::string own = uniqueIdToString(drawn->getId()); // what is drawn into is what is read
    const std::string values[] = {
        "",
        uniqueIdToString(generateUniqueId()),
        "no id at all",
        std::string(100000, '-'),
        addResource(new Resource()),
        addResource(new TextureResource()), // unfinished, as those that couldn't be loaded or made
        addResource(new Target()),
        addResource(new ShaderResource()),
        addResource(new MaterialShaderResource()),
        uniqueIdToString(makeTargetResource(8, 8, Target::R16F, false)->getId()),
        uniqueIdToString(makeTargetResource(1, 1, Target::RGBA8, true)->getId()),
        target,
        texture,
        own,
    };
    for (const std::string& others : {target, texture, own}) {
        setInWorld(others == own);
        assignAll(others);
        for (const std::string& value : values) {
            SCOPED_TRACE(testing::Message() << value.substr(0, 40) << ", others " << others);
            drawWithEachProperty(drawn->getRenderTarget(), value);
        }
    }
    for (const std::string& value : values) {
        SCOPED_TRACE(value.substr(0, 40));
        assignAll(value);
        drawAll(drawn->getRenderTarget());
    }
}

TEST_F(EffectResources, MayBeSmallAndLarge)
{
    const SmartRef<RenderTarget> screen = makeTarget(37, 23, DXGI_FORMAT_B8G8R8A8_UNORM, true);
    setInWorld(true); // where depth is tested, if there is any
    for (const int size : {1, 4096}) {
        SCOPED_TRACE(size);
        const SmartRef<RenderTargetResource> target =
            makeTargetResource(size, size, RenderTargetResource::RGBA8, false);
        assignAll(uniqueIdToString(target->getId()));
        drawAll(screen.get());
        EXPECT_GT(g_renderer->getStats().drawsLastFrame, 15u); // they do draw
        drawAll(target->getRenderTarget());
    }
}

TEST_F(EffectResources, ATargetMayBeDrawnIntoAndReadAtOnce)
{
    const SmartRef<RenderTargetResource> target = makeTargetResource(9, 5, RenderTargetResource::RGBA8, true);
    const SmartRef<RenderTarget> screen = makeTarget(9, 5);
    const SmartRef<RenderTargetEffect> outer(new RenderTargetEffect()), inner(new RenderTargetEffect());
    const SmartRef<ProbeEffect> reader(new ProbeEffect());
    set(*outer, "Attributes", "Render Target", *target);
    set(*inner, "Attributes", "Render Target", *target);
    set(*reader, "Attributes", "Texture", *target);
    outer->addObject(inner.get(), -1);
    inner->addObject(reader.get(), -1);
    update(*outer);
    drawFrame(screen.get(), Vec4(), [&] {
        render(*outer);
        EXPECT_EQ(g_renderer->getRenderTargetCount(), 1u);
    });
}

} // namespace
