// SPDX-License-Identifier: MIT
#include "shader/SpirvInterface.h"

#include "shader/SpirvLayout.h"
#include "shader/SpirvSamplers.h"

#include <algorithm>

namespace helvantine
{

namespace
{

bool componentOf(const SpirvInstruction& scalar, ShaderComponentType& component)
{
    if (scalar.operand(1) != 32)
        return false;
    if (scalar.op == spv::Op::OpTypeFloat)
        component = ShaderComponentType::Float;
    else if (scalar.op == spv::Op::OpTypeInt)
        component = scalar.operand(2) ? ShaderComponentType::Int : ShaderComponentType::Uint;
    else
        return false;
    return true;
}

/// Fills rows, component and count from a scalar, a vector or a matrix of 32-bit numbers.
bool readShape(const SpirvModule& module, const SpirvInstruction* type, StageVariable& variable)
{
    if (type && type->op == spv::Op::OpTypeMatrix) {
        variable.rows = type->operand(2);
        type = module.find(type->operand(1));
    }
    variable.componentCount = 1;
    if (type && type->op == spv::Op::OpTypeVector) {
        variable.componentCount = type->operand(2);
        type = module.find(type->operand(1));
    }
    return type && componentOf(*type, variable.component);
}

/// The compiler splits an array into variables named "input[2]" that all bear the array's semantic.
uint32_t elementOf(const std::string& name)
{
    size_t open = name.rfind('[');
    if (open == std::string::npos || name.back() != ']')
        return 0;
    uint32_t element = 0;
    for (size_t i = open + 1; i + 1 < name.size(); ++i)
        element = std::min(element * 10 + uint32_t(name[i] - '0'), 1000u);
    return element;
}

void splitSemantic(const std::string& text, std::string& semantic, uint32_t& index)
{
    size_t end = text.find_last_not_of("0123456789") + 1;
    semantic = text.substr(0, end);
    index = 0;
    for (size_t i = end; i < text.size(); ++i)
        index = std::min(index * 10 + uint32_t(text[i] - '0'), 100000u);
}

/// What is read from a texture or through a sampler, and which of them compare.
struct SampleUse
{
    std::vector<uint32_t> compared; ///< variables

    explicit SampleUse(const SpirvModule& module)
    {
        for (const SpirvInstruction& one : module.instructions)
            if (comparesTexels(one.op))
                noteSampledImage(module, module.find(one.operand(2)));
    }

    bool contains(uint32_t id) const
    {
        return std::find(compared.begin(), compared.end(), id) != compared.end();
    }

private:
    static bool comparesTexels(spv::Op op)
    {
        return op == spv::Op::OpImageSampleDrefImplicitLod || op == spv::Op::OpImageSampleDrefExplicitLod ||
               op == spv::Op::OpImageDrefGather;
    }

    void noteSampledImage(const SpirvModule& module, const SpirvInstruction* sampledImage)
    {
        if (!sampledImage || sampledImage->op != spv::Op::OpSampledImage)
            return;
        for (size_t part : {2, 3}) {
            const SpirvInstruction* load = module.find(sampledImage->operand(part));
            if (load && load->op == spv::Op::OpLoad)
                compared.push_back(load->operand(2));
        }
    }
};

TextureDimension dimensionOf(const SpirvInstruction& image)
{
    bool arrayed = image.operand(4) != 0;
    bool multisampled = image.operand(5) != 0;
    switch (spv::Dim(image.operand(2))) {
    case spv::Dim::Dim1D:
        return arrayed ? TextureDimension::Texture1DArray : TextureDimension::Texture1D;
    case spv::Dim::Dim2D:
        if (multisampled)
            return arrayed ? TextureDimension::Texture2DMultisampledArray
                           : TextureDimension::Texture2DMultisampled;
        return arrayed ? TextureDimension::Texture2DArray : TextureDimension::Texture2D;
    case spv::Dim::Dim3D:
        return TextureDimension::Texture3D;
    case spv::Dim::Cube:
        return arrayed ? TextureDimension::TextureCubeArray : TextureDimension::TextureCube;
    default:
        return TextureDimension::None;
    }
}

void addLine(std::string& errors, const std::string& line)
{
    errors += line + "\n";
}

/// Names every member: an author who forgot one cbuffer wants to see all that it lacks.
void refuseLooseGlobals(const SpirvModule& module, const SpirvInstruction& block, std::string& errors)
{
    for (uint32_t member = 0; member + 1 < block.operands.size(); ++member)
        addLine(errors, "'" + module.memberName(block.operand(0), member) +
                            "' is a global variable or uniform parameter outside a cbuffer; put it into one");
}

bool isReadOnly(const SpirvModule& module, const SpirvInstruction& block)
{
    return module.memberDecoration(block.operand(0), 0, spv::Decoration::NonWritable).has_value();
}

struct BindingReader
{
    const SpirvModule& module;
    ShaderStage stage;
    SampleUse use;
    const std::set<uint32_t>& separatedSamplers;
    std::string& errors;

    /// False if the variable is no resource or was refused.
    bool read(const SpirvInstruction& variable, NamedBinding& named)
    {
        ShaderBinding& binding = named.binding;
        const SpirvInstruction* type = module.findPointee(variable);
        if (!type)
            return false;
        uint32_t id = variable.resultId();
        binding.stages = stage == ShaderStage::Vertex ? vertexStageBit : pixelStageBit;
        binding.comparison = use.contains(id);
        named.name = module.name(type->op == spv::Op::OpTypeStruct ? type->resultId() : id);
        if (type->op == spv::Op::OpTypeStruct)
            return readBlock(variable, *type, binding);
        const std::string& name = named.name;
        if (type->op == spv::Op::OpTypeSampler) {
            binding.kind = ShaderBindingKind::Sampler;
            binding.textures = findTexturesOf(module, id);
            return place(id, name, 's', samplerBindingBase, samplerRegisterCount, binding);
        }
        if (type->op == spv::Op::OpTypeImage)
            return readTexture(id, name, *type, binding);
        addLine(errors, "'" + name + "': arrays of textures or samplers aren't supported");
        return false;
    }

private:
    bool readBlock(const SpirvInstruction& variable, const SpirvInstruction& type, ShaderBinding& binding)
    {
        std::string name = module.name(type.resultId());
        bool isStorage = module.decoration(type.resultId(), spv::Decoration::BufferBlock).has_value();
        if (name == "$Global") {
            refuseLooseGlobals(module, type, errors);
            return false;
        }
        if (isStorage && !isReadOnly(module, type)) {
            addLine(errors, "'" + name + "': unordered access isn't supported");
            return false;
        }
        if (isStorage) {
            binding.kind = ShaderBindingKind::StructuredBuffer;
            return place(variable.resultId(), name, 't', textureBindingBase, textureRegisterCount, binding);
        }
        binding.kind = ShaderBindingKind::ConstantBuffer;
        binding.size = blockSize(module, type);
        uint32_t base = stage == ShaderStage::Vertex ? vertexConstantBindingBase : pixelConstantBindingBase;
        return place(variable.resultId(), name, 'b', base, constantRegisterCount, binding);
    }

    bool readTexture(uint32_t id, const std::string& name, const SpirvInstruction& image,
                     ShaderBinding& binding)
    {
        binding.kind = ShaderBindingKind::Texture;
        binding.dimension = dimensionOf(image);
        const SpirvInstruction* texel = module.find(image.operand(1));
        if (image.operand(6) == 2) {
            addLine(errors, "'" + name + "': unordered access isn't supported");
            return false;
        }
        if (binding.dimension == TextureDimension::None || !texel || !componentOf(*texel, binding.component))
        {
            addLine(errors, "'" + name + "': this kind of texture or buffer isn't supported");
            return false;
        }
        return place(id, name, 't', textureBindingBase, textureRegisterCount, binding);
    }

    bool place(uint32_t id, const std::string& name, char letter, uint32_t base, uint32_t count,
               ShaderBinding& binding)
    {
        uint32_t number = module.decoration(id, spv::Decoration::Binding).value_or(base + count);
        uint32_t space = module.decoration(id, spv::Decoration::DescriptorSet).value_or(0);
        if (space != 0) {
            addLine(errors,
                    "'" + name + "': register spaces aren't supported, space" + std::to_string(space));
            return false;
        }
        if (separatedSamplers.count(id)) {
            binding.slot = uint8_t((number - samplerPairBindingBase) / textureRegisterCount);
            binding.binding = uint16_t(number);
            return true;
        }
        if (number < base || number - base >= count) {
            addLine(errors, "'" + name + "': register " + letter + std::to_string(number - base) +
                                " is beyond " + letter + std::to_string(count - 1));
            return false;
        }
        binding.slot = uint8_t(number - base);
        binding.binding = uint16_t(number);
        return true;
    }
};

} // namespace

std::vector<StageVariable> readStageVariables(const SpirvModule& module, spv::StorageClass storage,
                                              std::string& errors)
{
    std::vector<StageVariable> variables;
    for (const SpirvInstruction& one : module.instructions) {
        if (one.op != spv::Op::OpVariable || one.operand(2) != uint32_t(storage))
            continue;
        StageVariable variable;
        variable.id = one.resultId();
        std::optional<uint32_t> location = module.decoration(variable.id, spv::Decoration::Location);
        if (!location)
            continue; // a system value
        variable.location = *location;
        std::string semantic = module.semantic(variable.id);
        if (!readShape(module, module.findPointee(one), variable)) {
            addLine(errors,
                    "'" + semantic + "': only 32-bit numbers, vectors and matrices pass between stages");
            continue;
        }
        splitSemantic(semantic, variable.semantic, variable.index);
        variable.index += elementOf(module.name(variable.id)) * variable.rows;
        variables.push_back(std::move(variable));
    }
    std::sort(variables.begin(), variables.end(),
              [](const auto& a, const auto& b) { return a.location < b.location; });
    return variables;
}

std::vector<NamedBinding> readBindings(const SpirvModule& module, ShaderStage stage,
                                       const std::set<uint32_t>& separatedSamplers, std::string& errors)
{
    BindingReader reader{module, stage, SampleUse(module), separatedSamplers, errors};
    std::vector<NamedBinding> bindings;
    for (const SpirvInstruction& one : module.instructions) {
        if (one.op != spv::Op::OpVariable)
            continue;
        auto storage = spv::StorageClass(one.operand(2));
        if (storage != spv::StorageClass::Uniform && storage != spv::StorageClass::UniformConstant &&
            storage != spv::StorageClass::StorageBuffer)
            continue;
        NamedBinding binding;
        if (reader.read(one, binding))
            bindings.push_back(binding);
    }
    return bindings;
}

bool writesDepth(const SpirvModule& module)
{
    return std::any_of(module.instructions.begin(), module.instructions.end(), [](const auto& one) {
        return one.op == spv::Op::OpDecorate && one.operand(1) == uint32_t(spv::Decoration::BuiltIn) &&
               one.operand(2) == uint32_t(spv::BuiltIn::FragDepth);
    });
}

} // namespace helvantine
