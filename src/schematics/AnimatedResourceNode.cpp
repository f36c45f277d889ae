// SPDX-License-Identifier: MIT
#include <helvantine/schematics/AnimatedResourceNode.h>

#include <helvantine/core/Text.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/CompositionManager.h>
#include <helvantine/host/Document.h>
#include <helvantine/object/AddProperties.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/serialize/FxSerializer.h>
#include <helvantine/timeline/Composition.h>

#include <algorithm>
#include <cmath>

namespace helvantine
{

namespace
{

constexpr std::uint32_t s_classVersion = 1;
constexpr std::uint64_t s_minPropertyBytes = 34; ///< the least that a stored property takes
constexpr std::int64_t s_stepsToMake =
    20; ///< a resource that wasn't there before, as PropertyLinkLimit counts

/// The graph that holds a node of the application's document. Null for a node that is in none yet, as while it
/// is read, and for a graph that is being read: its links follow the lists as they are stored.
Schematics* findGraph(const SchematicsNode& node)
{
    if (PropertyLinkLimit::isSet()) // links are being read: no search through all compositions for each
        return nullptr;
    Document* document = g_application ? g_application->getDocument() : nullptr;
    if (!document)
        return nullptr;
    Composition* composition =
        document->getCompositionManager()->getRoot()->findCompositionFromNode(node.m_id);
    if (!composition || composition->m_schematics->m_suspended)
        return nullptr;
    if (composition->m_schematics->findNode(node.m_id) != &node) // another node of this id
        return nullptr;
    return composition->m_schematics.get();
}

} // namespace

AnimatedResourceNode::AnimatedResourceNode()
    : m_resourceCount(this, KindInt, "Resource Count"), m_index(this, KindInt, "Index"),
      m_output(this, KindResource, "Output"), m_inputs(new PropertyGroup(this, "Inputs")),
      m_resources(new PropertyGroup(this, "Resources")), m_outputs(new PropertyGroup(this, "Outputs"))
{
    m_resourceCount.setDefault(0);
    m_index.setDefault(0);
    addProperties(*m_inputs, {&m_resourceCount, &m_index});
    addInputGroup(m_inputs.get());
    // Behind "Inputs" in documents too: the count makes the properties before their values are read.
    addInputGroup(m_resources.get());
    addProperties(*m_outputs, {&m_output});
    addOutputGroup(m_outputs.get());
}

AnimatedResourceNode::~AnimatedResourceNode() = default;

void AnimatedResourceNode::update(FxUpdateContext&)
{
    const auto count = static_cast<float>(m_resourceProperties.size());
    // The remainder has the sign of the index, so a negative one is in the list only as a multiple of the count.
    const float index = count > 0 ? std::trunc(std::fmod(static_cast<float>(m_index.m_value), count)) : -1;
    if (index >= 0)
        m_output =
            static_cast<StringProperty*>(m_resourceProperties[static_cast<std::size_t>(index)])->m_value;
    else
        m_output = "";
}

void AnimatedResourceNode::onPropertyChanged(PropertyBase* property)
{
    SchematicsNode::onPropertyChanged(property);
    if (property == &m_resourceCount && m_resourceCount.m_value >= 0)
        resize();
}

void AnimatedResourceNode::resize()
{
    // The count is read anew in each step: whoever hears of an emptied property may have changed it.
    const auto isLongerBy = [this](std::size_t difference) {
        const auto wanted = static_cast<std::size_t>(std::max(m_resourceCount.m_value, 0));
        return m_resourceProperties.size() >= std::min(wanted, s_maxResources) + difference;
    };
    Schematics* graph = isLongerBy(1) && !m_isInStream ? findGraph(*this) : nullptr;
    while (isLongerBy(1))
        dropLastResource(graph);
    while (!isLongerBy(0) && PropertyLinkLimit::take(isNextNew() ? s_stepsToMake : 1))
        addResource();
}

bool AnimatedResourceNode::isNextNew() const
{
    return m_resourceProperties.size() == m_allResourceProperties.size();
}

void AnimatedResourceNode::dropLastResource(Schematics* graph)
{
    PropertyBase* last = m_resourceProperties.back();
    m_resourceProperties.pop_back();
    m_resources->m_properties.pop_back(); // the group holds the same in the same order
    if (graph)
        graph->removeLinksTo(last);
}

void AnimatedResourceNode::addResource()
{
    const std::size_t index = m_resourceProperties.size();
    if (isNextNew()) {
        const std::string name = formatString("Resource-%d", static_cast<int>(index + 1));
        m_allResourceProperties.push_back(std::make_unique<StringProperty>(this, KindResource, name.c_str()));
    }
    m_resourceProperties.push_back(m_allResourceProperties[index].get());
    m_resources->addProperty(m_resourceProperties.back());
}

void AnimatedResourceNode::serialize(FxSerializer& serializer)
{
    const std::uint64_t bytesBefore = serializer.m_in.bytesLeft();
    m_isInStream = true;
    SchematicsNode::serialize(serializer);
    m_isInStream = false;
    if (serializer.m_writing) {
        serializer.m_out.writeUInt(s_classVersion);
        return;
    }
    std::uint32_t version = 0;
    serializer.m_in.readUInt(version);
    // A document may say that there are many resources, but it has to hold them: what is made for a count alone
    // could be far more than the document.
    const std::uint64_t bytesRead = bytesBefore - serializer.m_in.bytesLeft();
    if (!serializer.failed() && m_resourceProperties.size() > bytesRead / s_minPropertyBytes)
        serializer.fail(formatString("count of %d resources", m_resourceCount.m_value),
                        "count of those that follow");
}

} // namespace helvantine
