cbuffer C : register(b0) { row_major float3x4 rm; float4x4 m; float f; int i; uint u; bool b; float3 v; int4 iv; int n; float4 arr[3]; bool4 b4; float2x3 m23; };
Texture2D tx : register(t0); Texture2D<float2> t2 : register(t1); Texture2DMS<float4, 4> ms : register(t2); Texture2DArray ta : register(t3); TextureCube tc : register(t4); Texture3D t3d : register(t5); Texture1D t1 : register(t6); Texture2D<uint4> tu : register(t7); Texture2D pics[3] : register(t8);
StructuredBuffer<float4> sb : register(t12); ByteAddressBuffer bab : register(t13);
SamplerState s : register(s0) { Filter = MIN_MAG_MIP_LINEAR; AddressU = Wrap; };
SamplerComparisonState sc : register(s1);
struct S { float2x2 a; float4 b[2]; float c; };
static const float tab[4] = { 1, 2, 3, 4 };
static const float4 flat[2] = { 1, 2, 3, 4, 5, 6, 7, 8 };
static float counter = 3;
float fn(float x, float y = 2) { return x * y + counter; }
float fn(float2 x) { return x.x; }
void outs(out int a, inout float b) { a = 3; b += 1; }
float2 texture(float2 sample) { return sample * 2; }
typedef float3 Color;
struct Empty { float2 x, y; };
float4 PS(float4 p : SV_Position) : SV_Target
{
  float4x4 mm = m * m; mm *= m; mm /= 2; mm += 1; mm = -mm;
  float4 r = 0;
  r.x += fmod(f, 2) + f % 2.5; r += iv % 3; r += iv / n; r.x += i % n; r.xy += p.xy % 2;
  r += lit(f, f, f); if (any(float2(0, 1))) r += 1; if (all(f)) r += 1; if (any(p)) r += 2;
  int q = f; uint uu = f; r.x += q + uu; bool bb = f; r.x += bb + bb; int3 q3 = p.xyz; r.xyz += q3;
  r.x += mad(i, n, 3); int ip; r.x += modf(f, ip); float fp; r.x += modf(f, fp) + ip + fp;
  r.xy += m._m01_m10; r.xy += m._11_22; float4x4 w = m; w._m01_m10 = r.xy; w._11 = 2; w._m00_m11 += r.zw; 
  r += mul(sqrt(w), r); float1 f1 = 3; r += f1; r += mul(2, p); r.x += b + 1; r.x += -b; r.x += normalize(f);
  S st = { 1,2,3,4, p, 5,6,7,8, 9 }; r += st.b[1] + mul(r.xy, st.a).xyxy; S z = (S)0; r += z.c;
  unsigned int ui = 3; r += ui;
  r += tx.Sample(s, p.xy) + t2.Sample(s, p.xy).xyxy + ms.sample[2][uint2(p.xy)] + ms.Load(p.xy, 1) + ta.Sample(s, p.xyz) + tc.Sample(s, p.xyz) + t3d.SampleLevel(s, p.xyz, 0) + t1.Sample(s, p.x) + tu.Load(int3(p.xy, 0)) + tu[p.xy] + tx.mips[1][p.xy];
  r += tx.SampleCmp(sc, p.xy, 0.5) + tx.GatherRed(s, p.xy) + tx.Sample(s, p.xy, int2(1, 1)) + tx.SampleGrad(s, p.xy, ddx(p.xy), ddy(p.xy)) + pics[1].Sample(s, p.xy) + tx.CalculateLevelOfDetail(s, p.xy);
  r += sb[i] + sb.Load(3) + bab.Load(4) + bab.Load4(16).x;
  float wd, hg; tx.GetDimensions(wd, hg); r.x += wd; uint lv; tx.GetDimensions(0, wd, hg, lv); r.y += lv; float2 dims; tx.GetDimensions(dims.x, dims.y); r.xy += dims;
  r.x += fn(f) + fn(p.xy) + fn(1, 2); float oo; float pp = 1; outs(oo, pp); r.x += oo; 
  for (int k = 0, k2 = 3; k < 4; k++, k2--) { if (k == i) continue; r.x += tab[k] + flat[k & 1].y; }
  float arr2[3]; arr2[i] = 1; arr2[1] += 2; int jj = i; arr2[jj++] *= 3; 
  switch (i) { case 0: case 1: r *= 2; break; default: break; }
  r = f > 1 ? r : p; r.xy = p.xy < r.xy ? p.xy : 1; r.x = (b && fn(p.y) > 1) ? fn(2) : 3;
  int2x3 im = int2x3(1,2,3,4,5,6); im[1][2] = i; im += 1; r.x += im._m12 + im[i].x; bool2x2 bm = float2x2(p) < 1; r.x += any(bm) + all(bm); 
  float3x1 col = float3x1(1, 2, 3); r.x += col[1] + col._m20; float2x2 sm = (float2x2)m; r += sm[0].xyxy; float3x3 m3 = (float3x3)m; r.xyz += mul(m3, v) + mul(v, m3); float3 vv = mul(p.xyz, (float3x3)m);
  r.xy += transpose(m23)[1]; r.x += determinant(m) + dot(iv, iv) + length(f) + distance(p.x, f); r.x += sign(f) + sign(p).y + abs(i) + min(u, 3) + clamp(f, 0, 1) + saturate(f) ;
  Color c = Color(1, 2, 3); r.xyz += c; r.x += texture(p.xy).x; float texture2D = 3, vec3 = 2, linear_ = 3, sample = 4; r.x += texture2D + vec3 + sample;
  r.x += asfloat(i) + asuint(f) + asint(u) + countbits(u) + firstbithigh(i) + firstbitlow(u) + reversebits(u) + f16tof32(u) + f32tof16(f); r.x += 1 << i; r.x += i >> 3u; r.x += ~i + !b + !f; r.x += isnan(f) + isinf(f) + isfinite(f); float sn, cs; sincos(f, sn, cs); r.x += sn + cs; clip(f); clip(p - 1);
  r.x += ldexp(f, 2); float ex; r.x += frexp(f, ex) + ex; r.x += rcp(f) + round(f) + step(f, 1) + smoothstep(0, 1, f) + lerp(0, f, 0.5) + pow(f, 2) + atan2(f, 1) + log10(f) + degrees(f);  r.xyz += cross(v, v) + reflect(v, v) + refract(v, v, 0.5) + faceforward(v, v, v); r += dst(r, r); r.x += f == 1 && b || i != 2; r += b4; r.x += b4.y; 
  float4 un = 1.0.xxxx; un.xy += 2..xx; r += un; while (i < 3) { break; } do { r += 1; } while (r.x < 3); 
  return r + (float4)b4 + mm[0] + p.rgba;
}
