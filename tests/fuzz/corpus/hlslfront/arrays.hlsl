cbuffer C : register(b0) { float4 v; int i; };
Texture2D ar[3] : register(t2); SamplerState s, ss[2];
float foo(uniform float x) { return x; }
class K { float x; float get() { return x * 2; } };
float4 PS(float4 p : SV_Position) : SV_Target { K k; k.x = 2; float4 r = foo(2) + k.get(); [unroll] for (int j = 0; j < 3; ++j) r += ar[j].Sample(s, p.xy); return r + ar[i].SampleLevel(ss[1], p.xy, 0); }
