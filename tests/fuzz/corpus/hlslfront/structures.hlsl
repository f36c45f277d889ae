struct Ray { float origin; float dir; float at(float t) { return origin + t * dir + helper(1); } void move(float d) { origin += d; this.dir = 2; } float helper(int k) { return k; } float late() { return later; } float later; };
Ray mk(float a) { Ray r; r.origin = a; r.dir = 1; r.later = 3; return r; }
cbuffer C : register(b0) { Ray inBuffer; int k; float4x4 m;  };
#pragma pack_matrix(row_major)
cbuffer D : register(b1) { float4x4 m2; };
Texture2D pics[3] : register(t2); SamplerState s;
float4 PS(float4 p : SV_Position) : SV_Target {
 Ray r = mk(1); r.move(3); float x = r.at(2) + mk(2).at(1) + inBuffer.at(2) + r.late(); float t[2][3] = { { 1, 2, 3 }, { 4, 5, 6 } };
 float2x2 b = float2x2(1,2,3,4); x += (b++)[0].x + (++b)[1].y; b._m00_m11++; 
 return x + t[k][2] + m[1] + m2[1] + pics[2].Sample(s, p.xy); }
