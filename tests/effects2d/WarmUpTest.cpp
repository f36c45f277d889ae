// SPDX-License-Identifier: MIT
#include "EffectTest.h"

#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/effects2d/TextureSSAOEffect.h>
#include <helvantine/object/PropertyLink.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/resource/ShaderResource.h>
#include <helvantine/schematics/AnimatedResourceNode.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

void forEachResourceProperty(const Object& object, const std::function<void(PropertyBase&)>& function)
{
    for (const auto& [id, property] : object.m_properties)
        if (property->m_type == KindResource)
            function(*property);
}

/// Two objects of each class of texture effects: what the first one's choices are, the other's follow by links.
class WarmUp : public EffectTest
{
protected:
    void SetUp() override
    {
        EffectTest::SetUp();
        m_screen = makeTarget(16, 9, DXGI_FORMAT_B8G8R8A8_UNORM, true);
        m_target = addTarget(Image(16, 9));
        m_stage = new RenderTargetEffect;
        m_stage->onInit();
        m_stage->setEnd(100);
        composition().m_rootEffect->addObject(m_stage.get(), -1);
        for (const SmartRef<PluginFactory>& factory : application().getPluginManager()->m_factories)
            for (const PluginInfo* info : factory->m_plugins)
                if (info->kind == PluginEffect)
                    addPair(info->id);
        ASSERT_GT(m_leaders.size(), 10u);
        ASSERT_GT(composition().m_schematics->m_links.size(), 50u);
    }

    void TearDown() override
    {
        m_leaders.clear();
        m_stage = nullptr;
        EffectTest::TearDown();
    }

    static uint32_t countBuilt()
    {
        const RendererStats& stats = g_renderer->getStats();
        return stats.programsBeforeFirstFrame + stats.programsAfterFirstFrame +
               stats.pipelinesBeforeFirstFrame + stats.pipelinesAfterFirstFrame;
    }

    void warmUp()
    {
        g_renderer->pushRenderTarget(m_screen.get());
        application().warmUp(composition().m_id);
        g_renderer->popRenderTarget();
    }

    void drawFrame(int frame)
    {
        tick(frame);
        EffectTest::drawFrame(m_screen.get(), Vec4(), [&] {
            FxRenderContext context;
            context.frame = frame;
            application().render(composition().m_id, context);
        });
    }

    static SmartRef<Resource> addResource(const SmartRef<Resource>& resource)
    {
        getResourceManager()->getRoot()->addResource(resource.get());
        return resource;
    }

    static SmartRef<Resource> makeByteTarget(bool depthBuffer)
    {
        const SmartRef<RenderTargetResource> target(new RenderTargetResource);
        EXPECT_TRUE(target->create(8, 5, RenderTargetResource::RGBA8, 1, 0, depthBuffer, {}));
        return target.get();
    }

    static SmartRef<Resource> makeShader(const std::string& gray)
    {
        const SmartRef<ShaderResource> shader(new ShaderResource);
        EXPECT_EQ(shader->create(("float4 VS(float4 position : POSITION) : SV_Position { return position; }\n"
                                  "float4 PS() : SV_Target { return " +
                                  gray + "; }")
                                     .c_str(),
                                 "VS", "PS"),
                  "");
        return shader.get();
    }

    /// Hands one after the other to each resource property, by one node.
    void expectAllMadeFor(const std::vector<SmartRef<Resource>>& resources)
    {
        const SmartRef<AnimatedResourceNode> node(new AnimatedResourceNode);
        composition().m_schematics->addNode(node.get());
        set(*node, "Inputs", "Resource Count", std::to_string(resources.size()));
        for (std::size_t i = 0; i < resources.size(); ++i)
            if (resources[i])
                set(*node, "Resources", ("Resource-" + std::to_string(i + 1)).c_str(), *resources[i]);
        PropertyBase* output = node->findGroup("Outputs")->findProperty("Output");
        const auto link = [&](PropertyBase& property) {
            composition().m_schematics->addLink(new PropertyLink(output, &property));
        };
        forEachResourceProperty(*m_stage, link);
        for (const SmartRef<TextureEffect>& leader : m_leaders)
            forEachResourceProperty(*leader, link);

        warmUp();
        const uint32_t built = countBuilt();
        for (std::size_t i = 0; i < resources.size(); ++i) {
            set(*node, "Inputs", "Index", std::to_string(i));
            drawFrame(static_cast<int>(i));
            EXPECT_GT(g_renderer->getStats().drawsLastFrame, 5u) << i;
            EXPECT_EQ(countBuilt(), built) << i;
        }
    }

    SmartRef<RenderTargetEffect> m_stage;           ///< holds all the effects; without a target
    std::vector<SmartRef<TextureEffect>> m_leaders; ///< disabled
    SmartRef<RenderTarget> m_screen;
    SmartRef<RenderTargetResource> m_target;

private:
    void addPair(const UniqueId& id)
    {
        const SmartRef<TextureEffect> leader(createPluginOfType<TextureEffect>(id));
        const SmartRef<TextureEffect> follower(createPluginOfType<TextureEffect>(id));
        if (!leader)
            return;
        for (TextureEffect* effect : {leader.get(), follower.get()}) {
            effect->onInit();
            effect->setEnd(100);
            m_stage->addObject(effect, -1);
        }
        leader->setEnabled(false);
        for (std::size_t g = 0; g < leader->m_inputGroups.size(); ++g)
            linkGroup(*leader->m_inputGroups[g], *follower->m_inputGroups[g]);
        m_leaders.push_back(leader);
    }

    void linkGroup(const PropertyGroup& from, const PropertyGroup& to)
    {
        for (std::size_t i = 0; i < from.m_properties.size(); ++i) {
            PropertyBase& property = *from.m_properties[i];
            if (property.m_type == KindResource)
                property.fromString(uniqueIdToString(m_target->getId()).c_str());
            composition().m_schematics->addLink(new PropertyLink(&property, to.m_properties[i]));
        }
    }
};

TEST_F(WarmUp, MakesAllThatLinksCanAskFor)
{
    warmUp();
    const uint32_t built = countBuilt();
    EXPECT_GT(built, 2u * textureEffectTypeCount);

    int frame = 0;
    for (int value = -1; value < 12; ++value) {
        for (const SmartRef<TextureEffect>& leader : m_leaders)
            for (const auto& [id, property] : leader->m_properties)
                if (property->m_type == KindInt || property->m_type == KindEnum ||
                    property->m_type == KindBool)
                    property->fromString(std::to_string(value).c_str());
        drawFrame(frame++);
        EXPECT_GT(g_renderer->getStats().drawsLastFrame, 10u);
        EXPECT_EQ(countBuilt(), built) << value;
    }
}

TEST_F(WarmUp, MakesAllThatResourcesOfTheGraphCanAskFor)
{
    expectAllMadeFor({nullptr, m_target.get(), addResource(makeByteTarget(false)),
                      addResource(makeByteTarget(true)), addResource(makeShader("0.25")),
                      addResource(makeShader("0.75"))});
}

TEST_F(WarmUp, KnowsThatPicturesMayCome)
{
    expectAllMadeFor({nullptr, addTexture(Image(2, 2)).get()});
}

} // namespace
