// SPDX-License-Identifier: MIT
#include "EffectTest.h"

#include <helvantine/effects2d/TextureDOFEffect.h>
#include <helvantine/effects2d/TextureSSAOEffect.h>
#include <helvantine/object/PropertyLink.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

using namespace helvantine;
using namespace helvantine::test;

namespace
{

/// Two objects of each class of texture effects: what the first one's choices are, the other's follow by links.
class WarmUp : public EffectTest
{
protected:
    void SetUp() override
    {
        EffectTest::SetUp();
        m_screen = makeTarget(16, 9, DXGI_FORMAT_B8G8R8A8_UNORM, true);
        m_target = addTarget(Image(16, 9));
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
            composition().m_rootEffect->addObject(effect, -1);
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

TEST_F(WarmUp, KnowsThatASourceMayCome)
{
    const auto setSources = [&](const std::string& text) {
        for (const SmartRef<TextureEffect>& leader : m_leaders) {
            // Two draw from a target's depth, and have to have it from the beginning.
            if (!castTo<TextureDOFEffect>(leader.get()) && !castTo<TextureSSAOEffect>(leader.get()))
                set(*leader, "Attributes", "Texture", text);
        }
    };
    setSources("");
    warmUp();
    drawFrame(0);
    const uint32_t built = countBuilt();
    setSources(uniqueIdToString(m_target->getId()));
    drawFrame(1);
    EXPECT_EQ(countBuilt(), built);
}

} // namespace
