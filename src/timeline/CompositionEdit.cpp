// SPDX-License-Identifier: MIT
// Edits that keep timeline and graph in step.
#include <helvantine/timeline/Composition.h>

#include <helvantine/core/Report.h>
#include <helvantine/object/PropertyBase.h>
#include <helvantine/plugin/PluginManager.h>
#include <helvantine/schematics/EffectNode.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/timeline/Layer.h>

namespace helvantine
{

namespace
{

constexpr const char* s_module = "composition";

std::string quoteName(const PropertyBase* property)
{
    return property ? '\'' + property->m_name + '\'' : "null";
}

} // namespace

bool Composition::addLink(PropertyBase* source, PropertyBase* target)
{
    if (const char* whyNot = m_schematics->explainRefusal(source, target)) {
        std::string text = m_name + ": no link from " + quoteName(source) + " to " + quoteName(target);
        if (source && target)
            text +=
                std::string(" (") + getKindName(source->m_type) + " to " + getKindName(target->m_type) + ')';
        reportProblem(s_module, text + ": " + whyNot);
        return false;
    }
    const Schematics::Batch batch(*m_schematics); // a document is built link by link
    m_schematics->addLink(new PropertyLink(source, target));
    return true;
}

bool Composition::addLink(Object& source, std::string_view output, Object& target, std::string_view input)
{
    PropertyBase* from = source.findProperty(output);
    PropertyBase* to = target.findProperty(input);
    if (!from || !to || !addLink(from, to))
        return false;
    for (const Object* end : {&source, &target}) {
        if (const auto* effect = castTo<const Effect>(end))
            addEffectNode(*effect);
    }
    return true;
}

SchematicsNode* Composition::addNode(std::string_view menuPath, const char* name)
{
    const SmartRef<SchematicsNode> node = create<SchematicsNode>(menuPath);
    if (node)
        adoptNode(*node, name);
    return node.get();
}

void Composition::adoptNode(SchematicsNode& node, const char* name)
{
    node.setName(name);
    const Schematics::Batch batch(*m_schematics);
    m_schematics->addNode(&node);
}

bool Composition::addEffectNode(const Effect& effect)
{
    EffectNode* node = effect.m_effectNode.get();
    if (!node || m_schematics->findNode(node->m_id))
        return false;
    const Schematics::Batch batch(*m_schematics);
    m_schematics->addNode(node);
    return true;
}

bool Composition::removeEffect(Effect* effect)
{
    if (!canRemove(effect))
        return false;
    const SmartRef<Effect> removed(effect);
    effect->stop();
    std::vector<const PropertyContext*> owners;
    for (const SmartRef<Object>& object : effect->getAllObjects())
        owners.push_back(object.get());
    m_schematics->removeAllOf(std::move(owners));
    if (effect->m_parent) // whoever heard of all that may have taken it out
        effect->leaveParent();
    return true;
}

bool Composition::canRemove(const Effect* effect) const
{
    const char* whyNot = nullptr;
    if (effect == m_rootEffect.get())
        whyNot = "it is the root";
    else if (!effect || !effect->isInside(*m_rootEffect))
        whyNot = "it isn't in the timeline";
    if (whyNot)
        reportProblem(s_module,
                      m_name + ": " + (effect ? effect->describe() : "null") + " isn't removed: " + whyNot);
    return !whyNot;
}

bool Composition::removeNode(SchematicsNode* node)
{
    if (!node || m_schematics->findNode(node->m_id) != node) {
        reportProblem(s_module, m_name + ": " + (node ? node->describe() : "null") +
                                    " isn't removed: it isn't in the graph");
        return false;
    }
    const auto* effectNode = castTo<const EffectNode>(node);
    m_schematics->removeAllOf({effectNode && effectNode->m_effect
                                   ? static_cast<const PropertyContext*>(effectNode->m_effect)
                                   : node});
    return true;
}

} // namespace helvantine
