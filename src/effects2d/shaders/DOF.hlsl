// SPDX-License-Identifier: MIT
// --- depth of field ---

cbuffer DOFConstantBuffer : register(b1)
{
    float dofFarClip         : packoffset(c0.x);
    float dofFocalDistance   : packoffset(c0.y);
    float dofFocalWidth      : packoffset(c0.z);
    float dofCoc             : packoffset(c0.w);
    float4 dofFilterTaps[12] : packoffset(c1.x);
};

// Passes clip space through: these programs draw a quad that covers the target.
VS_Main_Output VS_DOF(VS_Input input)
{
    VS_Main_Output output;
    output.position = float4(input.position.xyz, 1);
    output.color = input.color;
    output.texCoord0 = input.texCoord0;
    output.texCoord1 = input.texCoord1;
    return output;
}

// 0 at the focal distance, 1 from the focal width on.
float GetBlurFactor(float depth)
{
    return smoothstep(0, dofFocalWidth, abs(dofFocalDistance - depth));
}

// Disc blur. texture0 is the picture, the w of texture1 its view-space depth. The taps are read through
// texture2Sampler, so that they can be filtered while the centre isn't.
float4 PS_DOF(PS_Main_Input input) : SV_Target
{
    float4 sum = texture0.SampleLevel(texture0Sampler, input.texCoord0, 0);
    float total = 1;
    float centerDepth = texture1.SampleLevel(texture1Sampler, input.texCoord0, 0).w;
    float centerBlur = GetBlurFactor(centerDepth);

    if (centerBlur > 0)
    {
        float size = centerBlur * dofCoc;
        [unroll]
        for (int i = 0; i < 12; ++i)
        {
            // The x of a tap serves for both u and v: deliberate, the taps fall on a diagonal.
            float2 texCoord = input.texCoord0 + dofFilterTaps[i].x * size;
            float4 tapColor = texture0.SampleLevel(texture2Sampler, texCoord, 0);
            float tapDepth = texture1.SampleLevel(texture1Sampler, texCoord, 0).w;
            float contribution = tapDepth > centerDepth ? 1 : GetBlurFactor(tapDepth);
            sum += tapColor * contribution;
            total += contribution;
        }
    }
    return sum / total;
}

// Downsample blur: texture0 sharp, texture1 blurred, the w of texture2 the view-space depth.
float4 PS_DOFBlurBuffer(PS_Main_Input input) : SV_Target
{
    float4 sharp = texture0.Sample(texture0Sampler, input.texCoord0);
    float4 blurred = texture1.Sample(texture1Sampler, input.texCoord0);
    float depth = texture2.Sample(texture2Sampler, input.texCoord0).w;
    return lerp(sharp, blurred, saturate(GetBlurFactor(depth)) * dofCoc);
}
