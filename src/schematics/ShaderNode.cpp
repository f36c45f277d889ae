// SPDX-License-Identifier: MIT
#include <helvantine/schematics/ShaderNode.h>

#include <helvantine/object/AddProperties.h>
#include <helvantine/resource/ResourceManager.h>
#include <helvantine/serialize/FxSerializer.h>

namespace helvantine
{

namespace
{

constexpr std::int32_t s_classVersion = 1;

void publish(Resource& resource)
{
    if (ResourceManager* manager = getResourceManager())
        manager->addTemporaryResource(resource.getId(), &resource);
}

void unpublish(const Resource& resource)
{
    if (ResourceManager* manager = getResourceManager())
        manager->removeTemporaryResource(resource.getId());
}

/// The shader that a resource property names; null if there is none.
Shader* findShader(const StringProperty& property)
{
    const auto* resource = findResourceOfType<ShaderResource>(property.m_value);
    return resource ? resource->getShader() : nullptr;
}

} // namespace

template <class T>
ResourceMakingNode<T>::ResourceMakingNode()
    : m_shader(this, KindResource, "Shader"), m_attributes(new PropertyGroup(this, "Attributes")),
      m_outputs(new PropertyGroup(this, "Output")), m_resourceId(generateUniqueId()), m_resource(new T)
{
    addInputGroup(m_attributes.get());
    addProperties(*m_outputs, {&m_shader});
    addOutputGroup(m_outputs.get());
    m_resource->setId(m_resourceId);
    publish(*m_resource);
}

template <class T>
ResourceMakingNode<T>::~ResourceMakingNode() = default;

template <class T>
void ResourceMakingNode<T>::update(FxUpdateContext&)
{
    char id[37];
    uniqueIdToString(m_resourceId, id);
    m_shader = id;
}

template <class T>
void ResourceMakingNode<T>::serialize(FxSerializer& serializer)
{
    SchematicsNode::serialize(serializer);
    if (serializer.m_writing) {
        serializer.m_out.writeInt(s_classVersion);
        serializer.m_out.writeUniqueId(m_resourceId);
        return;
    }
    std::int32_t version = 0;
    UniqueId id;
    serializer.m_in.readInt(version);
    serializer.m_in.readUniqueId(id);
    // The zero id is that of resource properties that name nothing.
    if (serializer.failed() || id.isZero())
        return;
    unpublish(*m_resource);
    m_resourceId = id;
    m_resource->setId(id);
    publish(*m_resource);
}

template class ResourceMakingNode<ShaderResource>;
template class ResourceMakingNode<MaterialShaderResource>;

ShaderNode::ShaderNode()
    : m_shaderCode(this, KindString, "Shader Code"),
      m_vertexEntry(this, KindString, "VS EntryPoint", "VS_Main"),
      m_pixelEntry(this, KindString, "PS EntryPoint", "PS_Main")
{
    addProperties(*m_attributes, {&m_shaderCode, &m_vertexEntry, &m_pixelEntry});
}

ShaderNode::~ShaderNode() = default;

void ShaderNode::onPropertyChanged(PropertyBase* property)
{
    ResourceMakingNode::onPropertyChanged(property);
    if (property == &m_shaderCode || property == &m_vertexEntry || property == &m_pixelEntry)
        recompile();
}

std::string ShaderNode::getText() const
{
    return m_shaderCode.m_value;
}

void ShaderNode::setText(const char* text)
{
    m_shaderCode = text ? text : "";
}

std::string ShaderNode::getTextLog() const
{
    return m_log;
}

void ShaderNode::recompile()
{
    m_log = m_resource->create(m_shaderCode.m_value.c_str(), m_vertexEntry.m_value.c_str(),
                               m_pixelEntry.m_value.c_str());
}

ShaderFromMemoryParams ShaderNode::makeParams(const char* text) const
{
    return ShaderResource::makeParams(text, m_vertexEntry.m_value.c_str(), m_pixelEntry.m_value.c_str());
}

MaterialShaderNode::MaterialShaderNode()
    : m_defaultPass(this, KindResource, "Default Pass"), m_shadowPass(this, KindResource, "Shadow Pass"),
      m_depthNormalPass(this, KindResource, "DepthNormal Pass")
{
    addProperties(*m_attributes, {&m_defaultPass, &m_shadowPass, &m_depthNormalPass});
}

MaterialShaderNode::~MaterialShaderNode() = default;

void MaterialShaderNode::update(FxUpdateContext& context)
{
    m_resource->create(findShader(m_defaultPass), findShader(m_shadowPass), findShader(m_depthNormalPass));
    ResourceMakingNode::update(context);
}

} // namespace helvantine
