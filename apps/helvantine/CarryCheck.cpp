// SPDX-License-Identifier: MIT
// Render targets that carry their pictures from frame to frame.
#include "DocumentCheck.h"
#include "ObjectPath.h"
#include "ResourceUse.h"

#include <helvantine/effects2d/ClearScreenEffect.h>
#include <helvantine/effects2d/RenderTargetEffect.h>
#include <helvantine/effects2d/TextureEffect.h>
#include <helvantine/host/Application.h>
#include <helvantine/host/Document.h>
#include <helvantine/object/Property.h>
#include <helvantine/resource/RenderTargetResourceImporter.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/schematics/Schematics.h>
#include <helvantine/timeline/Composition.h>
#include <helvantine/timeline/Layer.h>

#include <algorithm>
#include <limits>
#include <map>

namespace helvantine::tool
{

namespace
{

/// Frames on the composition's clock, half open.
struct Window
{
    std::int64_t first = std::numeric_limits<std::int64_t>::min();
    std::int64_t end = std::numeric_limits<std::int64_t>::max();

    bool isEmpty() const { return first >= end; }
};

/// What the walk has seen of a target so far, of its colour or of its depth.
struct Picture
{
    std::vector<Window> written; ///< when all of it is: cleared or covered
    bool drawn = false;          ///< in part or as a whole
    bool read = false;
    std::string use; ///< the first that comes before all of it was written
};

/// Whether at every frame of the window one of the others is open.
bool isCovered(Window window, std::vector<Window> others)
{
    std::ranges::sort(others, {}, &Window::first);
    for (const Window& other : others) {
        if (other.first <= window.first)
            window.first = std::max(window.first, other.end);
    }
    return window.isEmpty();
}

/// Goes through a composition in the order of drawing.
///
/// Judged by what a document says without running it: what a curve or a link drives may have any value, and effects of
/// classes without rows among the draws aren't seen.
class CarryCheck
{
public:
    explicit CarryCheck(const Composition& composition) : m_composition(composition) {}

    void walk(const Object& effect, const Window& window, const RenderTargetResource* around);
    void report(std::vector<Finding>& findings) const;

private:
    void drawOnto(const RenderTargetResource* target, const Object& effect, const Window& window);
    void drawInto(const RenderTargetResource* target, const Object& effect, const Window& window, bool whole);
    void read(const RenderTargetResource& target, const Object& effect, const Window& window);
    void use(Picture& picture, const Object& effect, const Window& window, const char* how);
    void clear(const RenderTargetResource* target, const Object& effect, const Window& window);
    bool covers(const Object& effect) const;
    template <class T>
    const T* findFixed(const Object& effect, const char* name) const;
    bool isFixed(const PropertyBase& property) const;

    const Composition& m_composition;
    std::map<const RenderTargetResource*, Picture> m_colors;
    std::map<const RenderTargetResource*, Picture> m_depths;
};

bool CarryCheck::isFixed(const PropertyBase& property) const
{
    return !property.m_keyframe &&
           std::ranges::none_of(m_composition.m_schematics->m_links, [&](const SmartRef<PropertyLink>& link) {
               return link->m_target == &property;
           });
}

/// The property if its value never changes; else null.
template <class T>
const T* CarryCheck::findFixed(const Object& effect, const char* name) const
{
    const auto* property = dynamic_cast<const T*>(findInput(effect, name));
    return property && isFixed(*property) ? property : nullptr;
}

/// Whether the effect's own quad replaces every pixel of what it is drawn into.
bool CarryCheck::covers(const Object& effect) const
{
    const auto* blend = findFixed<IntProperty>(effect, "Blend");
    const auto* inWorld = findFixed<BoolProperty>(effect, "3D");
    const auto* position = findFixed<Vec3Property>(effect, "Position");
    const auto* extent = findFixed<Vec2Property>(effect, "Size");
    const auto* rotation = findFixed<Vec3Property>(effect, "Rotation");
    const PropertyBase* texture = findInput(effect, "Texture");
    if (!blend || !inWorld || !position || !extent || !rotation || !texture || texture->toString().empty())
        return false;
    const Vec3& corner = position->m_value;
    return blend->m_value == 0 && !inWorld->m_value && rotation->m_value == Vec3(0, 0, 0) && corner.x <= 0 &&
           corner.y <= 0 && corner.x + extent->m_value.x >= Effect2D::s_screenWidth &&
           corner.y + extent->m_value.y >= Effect2D::s_screenHeight &&
           !isOfClass(effect, "RayMarchingEffect");
}

void CarryCheck::use(Picture& picture, const Object& effect, const Window& window, const char* how)
{
    if (picture.use.empty() && !isCovered(window, picture.written))
        picture.use = '"' + getPath(m_composition, effect) + "\" " + how;
}

void CarryCheck::read(const RenderTargetResource& target, const Object& effect, const Window& window)
{
    m_colors[&target].read = true;
    use(m_colors[&target], effect, window, "reads it before all of it was drawn in that frame");
}

void CarryCheck::drawInto(const RenderTargetResource* target, const Object& effect, const Window& window,
                          bool whole)
{
    if (!target)
        return;
    Picture& color = m_colors[target];
    color.drawn = true;
    if (whole)
        color.written.push_back(window);
    else
        use(color, effect, window, "draws onto what the frame before has left");
}

/// As the effect's quad, which in the world also tests depth.
void CarryCheck::drawOnto(const RenderTargetResource* target, const Object& effect, const Window& window)
{
    drawInto(target, effect, window, covers(effect));
    const PropertyBase* inWorld = findInput(effect, "3D");
    const auto* flat = inWorld ? findFixed<BoolProperty>(effect, "3D") : nullptr;
    if (!target || !inWorld || (flat && !flat->m_value))
        return;
    const ResourceImporter* importer = target->getImporter();
    const auto* hasDepth =
        importer ? dynamic_cast<const BoolProperty*>(findInput(*importer, "Depth Buffer")) : nullptr;
    if (!hasDepth || !hasDepth->m_value)
        return;
    m_depths[target].drawn = true;
    use(m_depths[target], effect, window, "tests the depth that the frame before has left");
}

void CarryCheck::clear(const RenderTargetResource* target, const Object& effect, const Window& window)
{
    const auto* color = findFixed<BoolProperty>(effect, "Clear Color Target");
    const auto* depth = findFixed<BoolProperty>(effect, "Clear Depth Target");
    if (target && color && color->m_value)
        drawInto(target, effect, window, true);
    if (target && depth && depth->m_value)
        m_depths[target].written.push_back(window);
}

void CarryCheck::walk(const Object& effect, const Window& window, const RenderTargetResource* around)
{
    if (!effect.m_enabled)
        return;
    const std::span<const EffectDraw> draws = getEffectDraws(*effect.getTypeInfo());
    const auto isOwn = [&](const RenderTargetResource* target) {
        return std::ranges::any_of(draws, [&](const EffectDraw& draw) {
            return draw.target && findTarget(effect, draw.target) == target;
        });
    };
    for (const EffectDraw& draw : draws) {
        for (const char* source : draw.sources) {
            const RenderTargetResource* target = source ? findTarget(effect, source) : nullptr;
            // What passes hand each other is drawn by the pass before; what is drawn into can't be read.
            if (target && !isOwn(target) && target != around)
                read(*target, effect, window);
        }
        if (draw.target)
            drawInto(findTarget(effect, draw.target), effect, window, true);
        else
            drawOnto(around, effect, window);
    }
    if (isOfClass(effect, "ClearScreenEffect"))
        clear(around, effect, window);
    if (const RenderTargetResource* own =
            isOfClass(effect, "RenderTargetEffect") ? findTarget(effect, "Render Target") : nullptr)
        around = own;
    for (const SmartRef<Object>& child : effect.m_children) {
        const std::int64_t start = child->getRelativeStartFrame();
        const Window inner{std::max(window.first, start), std::min(window.end, start + child->getLength())};
        if (!inner.isEmpty())
            walk(*child, inner, around);
    }
}

void CarryCheck::report(std::vector<Finding>& findings) const
{
    for (const SmartRef<Resource>& resource :
         g_application->getDocument()->getResourceManager()->getResourcesExcludingFolders())
    {
        const auto* target = static_cast<const RenderTargetResource*>(resource.get());
        const auto color = m_colors.find(target);
        if (color == m_colors.end() || !color->second.drawn || !color->second.read)
            continue;
        const auto depth = m_depths.find(target);
        const std::string& use =
            !color->second.use.empty() || depth == m_depths.end() ? color->second.use : depth->second.use;
        if (!use.empty())
            findings.push_back(
                {"target-carried", getPath(*resource), use,
                 "clear it first; or keep it so, and rendering a frame draws all frames before it"});
    }
}

} // namespace

void checkCarriedTargets(const Composition& composition, std::vector<Finding>& findings)
{
    CarryCheck check(composition);
    check.walk(*composition.m_rootEffect, Window(), nullptr);
    check.report(findings);
}

} // namespace helvantine::tool
