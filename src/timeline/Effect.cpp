// SPDX-License-Identifier: MIT
#include <helvantine/timeline/Effect.h>

#include <helvantine/core/Keyframe.h>
#include <helvantine/core/Report.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/Document.h>
#include <helvantine/host/ProjectSettings.h>
#include <helvantine/object/PropertyBase.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/serialize/FxSerializer.h>
#include <helvantine/timeline/Layer.h>

#include <algorithm>
#include <functional>
#include <utility>

namespace helvantine
{

namespace
{

/// Children of effects are effects.
Effect& asEffect(const SmartRef<Object>& child)
{
    return static_cast<Effect&>(*child);
}

float getFrameRate()
{
    return static_cast<float>(g_application->getDocument()->getProjectSettings()->getFrameRate());
}

/// While it lives, the context's relative values are those of a child; afterwards the parent's again.
class ChildTime
{
public:
    ChildTime(FxContext& context, int start, float frameRate)
        : m_context(context), m_relativeTime(context.relativeTime), m_relativeFrame(context.relativeFrame)
    {
        context.relativeFrame = subtractFrames(context.frame, start);
        context.relativeTime = context.time - static_cast<float>(start) / frameRate;
    }
    ~ChildTime()
    {
        m_context.relativeTime = m_relativeTime;
        m_context.relativeFrame = m_relativeFrame;
    }
    ChildTime(const ChildTime&) = delete;
    ChildTime& operator=(const ChildTime&) = delete;

private:
    FxContext& m_context;
    float m_relativeTime;
    std::int32_t m_relativeFrame;
};

void copyProperty(const PropertyBase& source, PropertyBase& copy)
{
    copy.m_viewFlag = source.m_viewFlag;
    copy.m_viewSize = source.m_viewSize;
    copy.fromString(source.toString().c_str());
    if (source.m_keyframe)
        copy.setKeyframe(source.m_keyframe->clone());
}

/// Group by group and property by property: two objects of one class have the same ones in the same order.
void copyGroups(const std::vector<SmartRef<PropertyGroup>>& sources,
                const std::vector<SmartRef<PropertyGroup>>& copies)
{
    for (std::size_t g = 0; g < std::min(sources.size(), copies.size()); ++g) {
        const PropertyGroup& source = *sources[g];
        PropertyGroup& copy = *copies[g];
        copy.m_viewFlagA = source.m_viewFlagA;
        copy.m_viewFlagB = source.m_viewFlagB;
        for (std::size_t p = 0; p < std::min(source.m_properties.size(), copy.m_properties.size()); ++p)
            copyProperty(*source.m_properties[p], *copy.m_properties[p]);
    }
}

} // namespace

bool FxWarmUpContext::mayChange(const PropertyBase& property) const
{
    return property.m_keyframe || std::binary_search(linked.begin(), linked.end(), &property, std::less<>());
}

Effect::Effect() = default;

Effect::~Effect()
{
    dropNode();
}

void Effect::update(FxUpdateContext& context)
{
    if (!m_enabled)
        return;
    onUpdate(context);
    if (!m_children.empty())
        updateChildren(context);
}

void Effect::updateChildren(FxUpdateContext& context)
{
    const float frameRate = getFrameRate();
    ChildWindows::Walk walk(getWindows(), context.frame);
    while (const ChildWindows::Visit* visit = walk.findAwake()) {
        const SmartRef<Effect> child(&asEffect(m_children[visit->position])); // a hook may take it out
        if (!visit->isInside) {
            if (child->m_activeState == 1)
                child->stop();
            continue;
        }
        const ChildTime time(context, visit->start, frameRate);
        child->updateProperties(context.relativeTime);
        child->update(context);
        if (child->m_activeState != 0)
            continue;
        child->m_activeState = 1;
        if (!child->m_effectNode)
            child->reportMissingInit();
        if (child->m_parent != this) // whose windows don't know of it
            noteTimelineEdit();
        child->onStart(context);
    }
}

/// Asked where an effect starts, which costs a steady walk nothing.
void Effect::reportMissingInit()
{
    if (!std::exchange(m_isInitMissed, true))
        reportProblem("effect", describe() +
                                    " runs uninitialised: onInit wasn't called, or an override of it "
                                    "doesn't call Effect::onInit");
}

void Effect::render(FxRenderContext& context)
{
    if (!m_enabled)
        return;
    onPreRender(context);
    onRender(context);
    if (!m_children.empty())
        renderChildren(context);
    onPostRender(context);
}

void Effect::renderChildren(FxRenderContext& context)
{
    const float frameRate = getFrameRate();
    ChildWindows::Walk walk(getWindows(), context.frame);
    while (const ChildWindows::Visit* visit = walk.findInside()) {
        const SmartRef<Effect> child(&asEffect(m_children[visit->position]));
        const ChildTime time(context, visit->start, frameRate);
        child->render(context);
    }
}

ChildWindows& Effect::getWindows()
{
    if (!m_windows)
        m_windows = std::make_unique<ChildWindows>(*this);
    return *m_windows;
}

void Effect::warmUp(FxWarmUpContext& context)
{
    if (!m_enabled)
        return;
    onPreRender(context);
    onWarmUp(context);
    for (std::size_t i = 0; i < m_children.size(); ++i)
        asEffect(m_children[i]).warmUp(context);
    onPostRender(context);
}

void Effect::serialize(FxSerializer& serializer)
{
    Object::serialize(serializer);
    if (!m_effectNode) // in writing too: without the node's record nothing behind it could be read
        onInit();
    if (serializer.m_writing) {
        m_effectNode->serialize(serializer);
        return;
    }
    UniqueId nodeClass; // always the same
    serializer.m_in.readUniqueId(nodeClass);
    m_effectNode->serialize(serializer);
    onLoaded();
}

void Effect::onInit()
{
    dropNode();
    m_effectNode = new EffectNode;
    m_effectNode->setEffect(this);
}

/// A graph may still hold the node; it leads nowhere from now on.
void Effect::dropNode()
{
    if (m_effectNode)
        m_effectNode->setEffect(nullptr);
    m_effectNode = nullptr;
}

void Effect::onLoaded() {}

void Effect::onUpdate(FxUpdateContext&) {}

void Effect::onPreRender(FxRenderContext&) {}

void Effect::onRender(FxRenderContext&) {}

void Effect::onPostRender(FxRenderContext&) {}

void Effect::onWarmUp(FxWarmUpContext&) {}

void Effect::onStart(FxUpdateContext&) {}

void Effect::onStop() {}

Effect* Effect::clone()
{
    Effect* copy = isOfType(&Layer::m_typeInfo) ? new Layer : createPluginOfType<Effect>(getPluginInfo()->id);
    if (!copy)
        return nullptr;
    copy->onInit();
    copy->setEnabled(m_enabled);
    copy->setExpanded(m_expanded);
    copy->setName(m_name.c_str());
    copy->setStart(m_start);
    copy->setEnd(m_end);
    copyGroups(m_inputGroups, copy->m_inputGroups);
    copyGroups(m_outputGroups, copy->m_outputGroups);
    for (const SmartRef<Object>& child : m_children) {
        if (Effect* childCopy = asEffect(child).clone())
            copy->addObject(childCopy, -1);
    }
    return copy;
}

void Effect::setActiveState(std::int32_t state)
{
    m_activeState = state;
    noteTimelineEdit();
}

void Effect::stop()
{
    if (m_activeState == 1) {
        m_activeState = 0;
        onStop();
    }
    // By index, and with a reference: a hook may change the list.
    for (std::size_t i = 0; i < m_children.size(); ++i) {
        const SmartRef<Effect> child(&asEffect(m_children[i]));
        child->stop();
    }
}

} // namespace helvantine
