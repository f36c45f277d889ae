// SPDX-License-Identifier: MIT
#include <helvantine/timeline/Composition.h>

#include "LinkedResources.h"
#include "object/AddedCheck.h"

#include <helvantine/effects3d/CameraEffect.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/timeline/Layer.h>

#include <algorithm>
#include <functional>

namespace helvantine
{

namespace
{

template <class T>
void append(std::vector<SmartRef<T>>& result, const std::vector<SmartRef<T>>& more)
{
    result.insert(result.end(), more.begin(), more.end());
}

SmartRef<CameraEffect> createCamera()
{
    SmartRef<CameraEffect> camera(new CameraEffect);
    camera->onInit();
    return camera;
}

/// The frame behind the last of an object's own, on the composition's clock.
int getObjectEnd(const Object& object)
{
    return addFrames(object.getRelativeStartFrame(), object.getLength());
}

} // namespace

const TypeInfo Composition::m_typeInfo = {"Composition", &TypedObject::m_typeInfo};

Composition::Composition(bool createEffects, bool createSchematics) : m_id(generateUniqueId())
{
    if (createSchematics)
        m_schematics = std::make_unique<Schematics>();
    if (!createEffects)
        return;
    m_rootEffect = new Layer;
    m_rootEffect->onInit();
    m_camera = createCamera();
}

Composition::~Composition()
{
    // Links listen to the effects' properties, so they go first.
    m_schematics.reset();
    m_camera = nullptr;
    m_compositions.clear();
    m_rootEffect = nullptr;
}

bool Composition::isOfType(const TypeInfo* type) const
{
    return isTypeDerivedFrom(&m_typeInfo, type);
}

void Composition::addComposition(Composition* child)
{
    if (!canAdd(child, "composition", m_name))
        return;
    m_compositions.emplace_back(child);
    child->m_parent = this;
    sort();
}

void Composition::removeComposition(Composition* child)
{
    const auto found =
        std::find_if(m_compositions.begin(), m_compositions.end(),
                     [&](const SmartRef<Composition>& entry) { return entry->m_id == child->m_id; });
    if (found == m_compositions.end())
        return;
    child->m_parent = nullptr;
    m_compositions.erase(found);
    sort();
}

void Composition::sort()
{
    std::stable_sort(m_compositions.begin(), m_compositions.end(),
                     [](const SmartRef<Composition>& a, const SmartRef<Composition>& b) {
                         if (a->m_isFolder != b->m_isFolder)
                             return a->m_isFolder;
                         return b->m_name < a->m_name;
                     });
}

Composition* Composition::clone()
{
    auto* copy = new Composition(false, true);
    copy->m_expanded = m_expanded;
    copy->m_isFolder = m_isFolder;
    copy->m_name = m_name;
    copy->m_rootEffect = static_cast<Layer*>(m_rootEffect->clone());
    copy->m_camera = static_cast<CameraEffect*>(m_camera->clone());
    if (!copy->m_camera) // a host without this library in its plugin folder
        copy->m_camera = createCamera();
    return copy;
}

Composition* Composition::findComposition(const UniqueId& id) const
{
    if (m_id == id)
        return const_cast<Composition*>(this);
    for (const SmartRef<Composition>& child : m_compositions) {
        if (Composition* found = child->findComposition(id))
            return found;
    }
    return nullptr;
}

Composition* Composition::findCompositionFromNode(const UniqueId& id) const
{
    if (m_schematics->findNode(id))
        return const_cast<Composition*>(this);
    for (const SmartRef<Composition>& child : m_compositions) {
        if (Composition* found = child->findCompositionFromNode(id))
            return found;
    }
    return nullptr;
}

Object* Composition::findObject(const UniqueId& id) const
{
    for (const SmartRef<Composition>& child : m_compositions) {
        if (Object* found = child->findObject(id))
            return found;
    }
    if (SchematicsNode* node = m_schematics->findNode(id))
        return node;
    return m_rootEffect->findObject(id);
}

PropertyBase* Composition::findProperty(const UniqueId& id) const
{
    if (PropertyBase* property = m_rootEffect->findPropertyRecursive(id))
        return property;
    return m_schematics->findProperty(id);
}

std::vector<SmartRef<SchematicsNode>> Composition::getAllNodes()
{
    std::vector<SmartRef<SchematicsNode>> result = m_schematics->m_nodes;
    for (const SmartRef<Composition>& child : m_compositions)
        append(result, child->getAllNodes());
    return result;
}

std::vector<SmartRef<Object>> Composition::getAllObjects()
{
    std::vector<SmartRef<Object>> result = m_rootEffect->getAllObjects();
    for (const SmartRef<Composition>& child : m_compositions)
        append(result, child->getAllObjects());
    return result;
}

int Composition::getEndFrame() const
{
    int end = 0;
    for (const SmartRef<Object>& effect : m_rootEffect->m_children)
        end = std::max(end, getObjectEnd(*effect));
    return end;
}

int Composition::getStartFrame() const
{
    int start = 0;
    for (const SmartRef<Object>& effect : m_rootEffect->m_children)
        start = std::min(start, getObjectEnd(*effect));
    return start;
}

void Composition::update(FxUpdateContext& context)
{
    m_schematics->update(context);
    m_camera->update(context);
    m_rootEffect->update(context);
}

void Composition::render(FxRenderContext& context)
{
    m_camera->render(context);
    m_rootEffect->render(context);
}

void Composition::warmUp()
{
    FxUpdateContext graphContext;
    m_schematics->update(graphContext);
    FxWarmUpContext context;
    for (const SmartRef<PropertyLink>& link : m_schematics->m_links)
        context.linked.push_back(link->m_target);
    std::sort(context.linked.begin(), context.linked.end(), std::less<>());
    m_rootEffect->warmUp(context);

    LinkedResources resources(*m_schematics);
    while (resources.bringNext())
        m_rootEffect->warmUp(context);
}

void Composition::stopActiveEffects()
{
    m_rootEffect->stop();
}

void Composition::setFov(float degrees)
{
    m_camera->setFov(degrees);
}

} // namespace helvantine
