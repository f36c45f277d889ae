// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/Api.h>
#include <helvantine/core/RefCount.h>
#include <helvantine/core/SmartRef.h>
#include <helvantine/core/TypedObject.h>
#include <helvantine/core/UniqueId.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace helvantine
{

class CameraEffect;
class Effect;
class FxSerializer;
class Layer;
class Object;
class PropertyBase;
class Schematics;
class SchematicsNode;
struct FxRenderContext;
struct FxUpdateContext;

/// One named timeline, and a node in the project's tree of timelines.
///
/// Owns a node graph, a root layer with the effects, and a default camera that stands outside the timeline.
/// A host drives one composition at a time by id; children are never ticked or drawn with their parent.
/// Children are counted, so one that a host holds survives its removal.
class HELVANTINE_FX_API Composition : public TypedObject, public IRefCount
{
public:
    static const TypeInfo m_typeInfo;

    /// The two are independent. Without effects there is neither root nor camera; whoever made it sets what is
    /// missing before anything else is asked of it.
    Composition(bool createEffects, bool createSchematics);
    ~Composition() override;

    const TypeInfo* getTypeInfo() const override { return &m_typeInfo; }
    bool isOfType(const TypeInfo* type) const override;

    void addComposition(Composition* child); ///< takes a reference, becomes the parent, sorts
    /// Drops the first child with the argument's id and clears the argument's parent; a stranger changes
    /// nothing.
    void removeComposition(Composition* child);
    /// Folders first; within both kinds names in descending byte order. The direction is deliberate.
    void sort();

    /// A copy of the timeline alone, under a fresh id: no children, an empty graph, no parent.
    /// Nobody holds it yet.
    Composition* clone();

    // Searches: null if there is nothing. The camera is never searched.
    Composition* findComposition(const UniqueId& id) const;         ///< this one first, then below
    Composition* findCompositionFromNode(const UniqueId& id) const; ///< the one whose graph holds the node
    Object* findObject(const UniqueId& id) const;         ///< children first, then nodes, then effects
    PropertyBase* findProperty(const UniqueId& id) const; ///< effects, then nodes; not in children
    std::vector<SmartRef<SchematicsNode>> getAllNodes();  ///< children's included
    std::vector<SmartRef<Object>> getAllObjects();        ///< effects, children's included

    // Edits that keep timeline and graph in step. False, and a problem is reported, where something doesn't fit:
    // then nothing changes.

    /// Passes on what the source becomes, from now on and at once.
    bool addLink(PropertyBase* source, PropertyBase* target);
    /// The same by the names of the properties, as in Object::findProperty. Effects get their place in the graph.
    bool addLink(Object& source, std::string_view output, Object& target, std::string_view input);
    /// Adds a new node of the class T to the graph, which owns it.
    template <class T>
    T& addNode(const char* name)
    {
        auto* node = new T;
        adoptNode(*node, name);
        return *node;
    }
    /// The same of the class that menus show under the path. Null, and a problem is reported, if there is none.
    SchematicsNode* addNode(std::string_view menuPath, const char* name);
    /// Puts the node of an effect into the graph, for editors to show. True if it wasn't there.
    bool addEffectNode(const Effect& effect);
    /// Takes the effect and all below it out of the timeline; what runs is stopped. Their links and nodes go along.
    bool removeEffect(Effect* effect);
    /// Takes the node out of the graph, and its links; for the node of an effect, the effect's.
    bool removeNode(SchematicsNode* node);

    int getEndFrame() const;   ///< last end of the root's direct children, 0 at least
    int getStartFrame() const; ///< first end of the root's direct children, 0 at most; deliberately their end

    void update(FxUpdateContext& context); ///< graph, camera, effects
    void render(FxRenderContext& context); ///< camera, effects
    /// Makes what drawing will need, in the current render target: programs and pipelines. The graph runs once, at
    /// time 0, since what it hands to effects decides what they draw with.
    void warmUp();
    /// Stops every running effect of the timeline, parents first, whether or not what stands above it runs.
    void stopActiveEffects();

    void serialize(FxSerializer& serializer);

    void setId(const UniqueId& id) { m_id = id; }
    void setName(const char* name) { m_name = name ? name : ""; }
    void setIsFolder(bool isFolder) { m_isFolder = isFolder; }
    void setExpanded(bool expanded) { m_expanded = expanded; }
    void setFov(float degrees); ///< sets the camera's property, not the stored number

    UniqueId m_id;
    std::string m_name;
    bool m_isFolder = false;
    bool m_expanded = true;
    Composition* m_parent = nullptr; ///< not counted
    std::unique_ptr<Schematics> m_schematics;
    SmartRef<Layer> m_rootEffect;
    std::vector<SmartRef<Composition>> m_compositions; ///< sorted
    float m_fov = 45.0f;                               ///< stored with the document and read by nothing
    SmartRef<CameraEffect> m_camera;

private:
    bool canRemove(const Effect* effect) const;
    void adoptNode(SchematicsNode& node, const char* name);
    void write(FxSerializer& serializer);
    void read(FxSerializer& serializer);
    bool readHeader(FxSerializer& serializer);
    void readChildren(FxSerializer& serializer);
};

} // namespace helvantine
