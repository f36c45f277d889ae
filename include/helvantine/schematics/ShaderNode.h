// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/object/Property.h>
#include <helvantine/resource/MaterialShaderResource.h>
#include <helvantine/resource/ShaderResource.h>
#include <helvantine/schematics/SchematicsNode.h>

namespace helvantine
{

/// Base of nodes that make a resource from their properties and tell its id on their output "Shader".
///
/// The resource is published among the temporary ones of the application's document from construction on, under
/// an id that documents keep: reading moves it to the stored one. It stays published when the node is gone,
/// deliberately. Without a document it isn't published.
template <class T>
class HELVANTINE_FX_API ResourceMakingNode : public SchematicsNode
{
public:
    void update(FxUpdateContext& context) override;
    void serialize(FxSerializer& serializer) override;

    /// What it makes; never null.
    const T* getResource() const { return m_resource.get(); }

protected:
    ResourceMakingNode();
    ~ResourceMakingNode() override;

    StringProperty m_shader;
    SmartRef<PropertyGroup> m_attributes; ///< the inputs, filled by the class
    SmartRef<PropertyGroup> m_outputs;    ///< named "Output", in the singular, unlike those of other nodes
    UniqueId m_resourceId;
    SmartRef<T> m_resource;
};

extern template class ResourceMakingNode<ShaderResource>;
extern template class ResourceMakingNode<MaterialShaderResource>;

/// A shader from a text, compiled anew at each change of the text or of an entry point.
///
/// The editor shows the text as the node's own, and the compiler's words on it as its log. A text that doesn't
/// compile leaves the resource without a shader; its id stays.
class HELVANTINE_FX_API ShaderNode : public ResourceMakingNode<ShaderResource>
{
    HELVANTINE_PLUGIN_CLASS(ShaderNode)
    ShaderNode();
    ~ShaderNode() override;

    void onPropertyChanged(PropertyBase* property) override;

    bool hasText() const override { return true; }
    std::string getText() const override;
    void setText(const char* text) override;
    std::string getTextLog() const override; ///< of the latest change, empty if it compiled

    /// Compiles the text again, for when what it includes has changed.
    void recompile();

    /// What setText would compile.
    ShaderFromMemoryParams makeParams(const char* text) const;

private:
    StringProperty m_shaderCode;
    StringProperty m_vertexEntry;
    StringProperty m_pixelEntry;
    std::string m_log;
};

/// Puts the shaders for a material's three passes together. They are looked up by id in each frame, so one that
/// comes, goes or is compiled anew is met; one that isn't there is null.
class HELVANTINE_FX_API MaterialShaderNode : public ResourceMakingNode<MaterialShaderResource>
{
    HELVANTINE_PLUGIN_CLASS(MaterialShaderNode)
    MaterialShaderNode();
    ~MaterialShaderNode() override;

    void update(FxUpdateContext& context) override;

private:
    StringProperty m_defaultPass;
    StringProperty m_shadowPass;
    StringProperty m_depthNormalPass;
};

} // namespace helvantine
