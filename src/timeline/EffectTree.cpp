// SPDX-License-Identifier: MIT
// Adding and moving effects.
#include <helvantine/timeline/Effect.h>

#include <helvantine/core/Report.h>
#include <helvantine/plugin/PluginManager.h>

#include <algorithm>

namespace helvantine
{

namespace
{

constexpr const char* s_module = "effect";

const Object* getRoot(const Object& object)
{
    const Object* root = &object;
    while (root->m_parent)
        root = root->m_parent;
    return root;
}

} // namespace

Effect* Effect::addEffect(const UniqueId& classId, const char* name, int start, int end)
{
    const SmartRef<Effect> effect = create<Effect>(classId);
    if (effect)
        adopt(*effect, name, start, end);
    return effect.get();
}

Effect* Effect::addEffect(std::string_view menuPath, const char* name, int start, int end)
{
    const SmartRef<Effect> effect = create<Effect>(menuPath);
    if (effect)
        adopt(*effect, name, start, end);
    return effect.get();
}

void Effect::adopt(Effect& child, const char* name, int start, int end)
{
    addObject(&child, -1);
    child.onInit();
    child.setName(name);
    child.setStart(start);
    child.setEnd(end);
}

bool Effect::moveTo(Effect& parent, int index)
{
    if (!canMoveTo(parent))
        return false;
    const SmartRef<Effect> self(this);
    if (m_parent != &parent)
        stop();
    if (!canMoveTo(parent)) // a hook may have changed the tree
        return false;
    leaveParent();
    parent.addObject(this, std::max(index, -1));
    return true;
}

/// By pointer: in a damaged document children can share an id.
void Effect::leaveParent()
{
    const SmartRef<Effect> self(this);
    std::erase(m_parent->m_children, this);
    setParent(nullptr);
}

bool Effect::canMoveTo(const Effect& parent) const
{
    const char* whyNot = nullptr;
    if (!m_parent)
        whyNot = "it is the root of its tree";
    else if (parent.isInside(*this))
        whyNot = "that is or lies below the effect itself";
    else if (getRoot(parent) != getRoot(*this))
        whyNot = "that is in another tree; clone the effect";
    if (whyNot)
        reportProblem(s_module, describe() + " isn't moved to " + parent.describe() + ": " + whyNot);
    return !whyNot;
}

} // namespace helvantine
