// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/Property.h>
#include <helvantine/schematics/SchematicsNode.h>

#include <memory>
#include <vector>

namespace helvantine
{

class Schematics;

/// Picks one of a list of resources by an index that wraps past the end, so that a counter cycles through them.
///
/// The list is the group "Resources", as long as "Resource Count" says: "Resource-1", "Resource-2" and so on. A
/// property that leaves the list keeps its id and value, and is there again when the list grows; the links to it
/// are gone. A negative count changes nothing.
class HELVANTINE_FX_API AnimatedResourceNode : public SchematicsNode
{
    HELVANTINE_PLUGIN_CLASS(AnimatedResourceNode)

    /// A greater count makes this many, and one that comes over a link while a document is read maybe fewer.
    static constexpr std::size_t s_maxResources = 4096;

    AnimatedResourceNode();
    ~AnimatedResourceNode() override;

    /// "Output" takes the resource at "Index"; the empty text without resources and for a negative index.
    void update(FxUpdateContext& context) override;
    void serialize(FxSerializer& serializer) override;
    void onPropertyChanged(PropertyBase* property) override;

protected:
    IntProperty m_resourceCount;
    IntProperty m_index;
    StringProperty m_output;
    SmartRef<PropertyGroup> m_inputs;
    SmartRef<PropertyGroup> m_resources;
    SmartRef<PropertyGroup> m_outputs;
    std::vector<PropertyBase*> m_resourceProperties; ///< in use, in order
    std::vector<std::unique_ptr<PropertyBase>>
        m_allResourceProperties; ///< those in use are the first of them

private:
    void resize();
    bool isNextNew() const; ///< whether the next resource of the list has to be made
    void addResource();
    void dropLastResource(Schematics* graph);

    bool m_isInStream = false; ///< while it is read: in no graph yet, whatever its id says
};

} // namespace helvantine
