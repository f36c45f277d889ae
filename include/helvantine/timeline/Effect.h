// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/Object.h>
#include <helvantine/timeline/ChildWindows.h>
#include <helvantine/timeline/FxContext.h>

#include <memory>

/// Laws of playback.
///
/// - An effect's frames count from its own first frame; its window is half open and as long as end minus
///   start. Windows are not clipped by those of the parents, but only children of a visited parent are
///   visited.
/// - Update walks parents before children: onUpdate, then for each child in its window its curves, its
///   update, and onStart if it was stopped. A child that leaves its window gets onStop, and so does all that
///   runs below.
/// - The window is tested by the parent, the enabled flag by the effect itself: a disabled child in its
///   window still has its curves evaluated and is started and stopped, but no other hook runs, nor anything
///   below it.
/// - Render walks the same windows: onPreRender, onRender, the children in order, onPostRender. It changes no
///   state and may run again for the same frame.
/// - The root of a tree is never tested against its window, and its curves are never evaluated.
/// - The walk allocates nothing.
namespace helvantine
{

class Composition;
class EffectNode;

/// A span of a timeline during which something happens, and which may hold further spans.
///
/// Usable after onInit, which makes its node in the graph; addEffect calls it. One that runs without is reported.
class HELVANTINE_FX_API Effect : public Object
{
    HELVANTINE_PLUGIN_CLASS(Effect)

    Effect();
    ~Effect() override;

    void update(FxUpdateContext& context) override;
    void render(FxRenderContext& context) override;
    void serialize(FxSerializer& serializer) override;

    /// Warms up this effect and all below, whatever their windows; what is disabled is left out. An effect
    /// that hands its children another render target does so here too, in onPreRender and onPostRender.
    void warmUp(FxWarmUpContext& context);

    /// Adds a new effect of the class T behind the other children, ready to use: initialised, named, with its window.
    /// The tree owns it.
    template <class T>
    T& addEffect(const char* name, int start, int end)
    {
        auto* effect = new T;
        adopt(*effect, name, start, end);
        return *effect;
    }
    /// The same of a class that is known by its id, or by its path in menus. Null, and a problem is reported, if no
    /// plugin library offers it.
    Effect* addEffect(const UniqueId& classId, const char* name, int start, int end);
    Effect* addEffect(std::string_view menuPath, const char* name, int start, int end);
    /// Moves this effect, with what is below it, to a parent in the same tree: before that position among the other
    /// children, or behind them for -1 and whatever lies past the end. Under the same parent it goes on running;
    /// under another it is stopped, and started by the next tick. False, and a problem is reported, for the root of
    /// the tree, and for a parent that is or lies below this effect or is in another tree.
    bool moveTo(Effect& parent, int index);

    virtual void onInit();   ///< makes the node; an override calls this first
    virtual void onLoaded(); ///< after reading, children before their parent
    virtual void onUpdate(FxUpdateContext& context);
    virtual void onPreRender(FxRenderContext& context);
    virtual void onRender(FxRenderContext& context);
    virtual void onPostRender(FxRenderContext& context);
    virtual void onStart(FxUpdateContext& context);
    virtual void onStop();
    /// Draws into the current target once with each program and each state that onRender may ever use, so
    /// that all are made; leaves no trace in the picture. Runs before the first tick.
    virtual void onWarmUp(FxWarmUpContext& context);

    /// A copy of the tree below this effect, which nobody holds yet, with fresh ids: flags, ranges, values and curves, not links, node
    /// positions or running state. Has no parent. Null if the plugin manager doesn't know the class; children
    /// that it doesn't know are left out.
    Effect* clone();

    /// Stops what runs in the tree from here on, parents first.
    void stop();

    void setActiveState(std::int32_t state);

    std::int32_t m_activeState = 0; ///< 1 while running
    SmartRef<EffectNode> m_effectNode;

private:
    friend class Composition;

    void adopt(Effect& child, const char* name, int start, int end);
    bool canMoveTo(const Effect& parent) const;
    void leaveParent();
    void reportMissingInit();
    void dropNode();
    void updateChildren(FxUpdateContext& context);
    void renderChildren(FxRenderContext& context);
    ChildWindows& getWindows();

    std::unique_ptr<ChildWindows> m_windows; ///< null while there were no children to walk
    bool m_isInitMissed = false;             ///< and reported
};

} // namespace helvantine
