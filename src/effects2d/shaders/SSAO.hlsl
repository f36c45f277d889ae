// SPDX-License-Identifier: MIT
// --- screen-space ambient occlusion ---
//
// texture0 holds view-space normals in rgb and view-space depth in a.

cbuffer SSAOConstantBuffer : register(b1)
{
    float occlusionRadius         : packoffset(c0.x);
    float occlusionFadeStart      : packoffset(c0.y);
    float occlusionFadeEnd        : packoffset(c0.z);
    float occlusionSurfaceEpsilon : packoffset(c0.w);
    float4 offsetVectors[14]      : packoffset(c1.x);
    float4 frustumCorners[4]      : packoffset(c15.x);  // of the far plane, in view space
    float4x4 viewToTextureSpace   : packoffset(c19.x);
};

cbuffer SSAOBlurConstantBuffer : register(b1)
{
    float ssaoTexelWidth      : packoffset(c0.x);
    float ssaoTexelHeight     : packoffset(c0.y);
    float ssaoBlurWeights[11] : packoffset(c1.x);
};

// The x of a vertex's colour is the number of its frustum corner, and the corner takes the colour's place: so
// every pixel gets its ray to the far plane.
VS_Main_Output VS_SSAO(VS_Input input)
{
    VS_Main_Output output = TransformVertex(input);
    output.color = frustumCorners[(int)input.color.x];
    return output;
}

// How much a surface occludes that lies distZ in front of the point; behind it or next to it, nothing.
float OcclusionFunction(float distZ)
{
    float fade = saturate((occlusionFadeEnd - distZ) / (occlusionFadeEnd - occlusionFadeStart));
    return distZ > occlusionSurfaceEpsilon ? fade : 0;
}

float4 PS_SSAO(PS_Main_Input input) : SV_Target
{
    float4 normalDepth = texture0.SampleLevel(texture0Sampler, input.texCoord0, 0);
    float3 ray = input.color.xyz;
    float3 n = normalDepth.xyz;
    float3 p = (normalDepth.w / ray.z) * ray;
    float3 randVec = 2 * texture1.SampleLevel(texture1Sampler, input.texCoord0, 0).xyz - 1;

    float sum = 0;
    [unroll]
    for (int i = 0; i < 14; ++i)
    {
        // q: a point near p, on the side of the surface that the normal points to.
        float3 offset = reflect(offsetVectors[i].xyz, randVec);
        float flip = sign(dot(offset, n));
        float3 q = p + flip * occlusionRadius * offset;

        // r: what the camera sees in the direction of q.
        float4 projQ = mul(float4(q, 1), viewToTextureSpace);
        float rz = texture0.SampleLevel(texture0Sampler, projQ.xy / projQ.w, 0).a;
        float3 r = (rz / q.z) * q;

        float distZ = p.z - r.z;
        float dp = max(dot(n, normalize(r - p)), 0);
        sum += dp * OcclusionFunction(distZ);
    }
    sum /= 14;

    float access = saturate(pow(1 - sum, 4));
    return float4(access, access, access, access);
}

VS_Main_Output VS_SSAOBlurH(VS_Input input)
{
    return TransformVertex(input);
}

VS_Main_Output VS_SSAOBlurV(VS_Input input)
{
    return TransformVertex(input);
}

// Blurs texture1, but not across edges: a neighbour takes part if its normal and depth are near.
float4 SSAOBlur(PS_Main_Input input, bool horizontal)
{
    const int radius = 5;
    float2 offset = horizontal ? float2(ssaoTexelWidth, 0) : float2(0, ssaoTexelHeight);

    float total = ssaoBlurWeights[radius];
    float4 sum = total * texture1.SampleLevel(texture1Sampler, input.texCoord0, 0);
    float4 centre = texture0.SampleLevel(texture0Sampler, input.texCoord0, 0);
    [unroll]
    for (int i = -radius; i <= radius; ++i)
    {
        float2 texCoord = input.texCoord0 + i * offset;
        float4 neighbour = texture0.SampleLevel(texture0Sampler, texCoord, 0);
        bool sameSurface = dot(neighbour.xyz, centre.xyz) >= 0.8 && abs(neighbour.a - centre.a) <= 0.2;
        if (i != 0 && sameSurface)
        {
            float weight = ssaoBlurWeights[i + radius];
            sum += weight * texture1.SampleLevel(texture1Sampler, texCoord, 0);
            total += weight;
        }
    }
    return sum / total;
}

float4 PS_SSAOBlurH(PS_Main_Input input) : SV_Target
{
    return SSAOBlur(input, true);
}

float4 PS_SSAOBlurV(PS_Main_Input input) : SV_Target
{
    return SSAOBlur(input, false);
}
