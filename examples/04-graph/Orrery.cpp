// SPDX-License-Identifier: MIT
#include "Orrery.h"

#include "Pictures.h"
#include "Wiring.h"

#include <helvantine/effects2d/RayMarchingEffect.h>
#include <helvantine/schematics/AnimatedResourceNode.h>
#include <helvantine/schematics/NodeCatalogue.h>
#include <helvantine/schematics/ShaderNode.h>

using namespace helvantine;

namespace helvantine
{

extern const char* const g_skyText; ///< Sky.hlsl

}

namespace
{

// In the units of the virtual screen, and seconds. Sky.hlsl has the orbits, too.
constexpr float sunX = 480;
constexpr float sunY = 262;
constexpr float flatness = 0.37f; ///< of the orbits, seen from above at an angle
constexpr float nearer = 0.16f;   ///< how much a planet grows in front and shrinks behind
constexpr float tau = 6.2831853f;
constexpr float perTurn = tau * orreryRate / orreryFrames; ///< radians a second for one turn in the film

struct Planet
{
    const char* name;
    const char* face;
    const char* shade;
    float radius; ///< of the orbit
    float size;
};

constexpr Planet planets[4] = {
    {"Copper", "copper.tga", "shade.tga", 142, 20},
    {"Sand", "sand.tga", "shade.tga", 222, 31},
    {"Sea", "sea.tga", "shade.tga", 318, 40},
    {"Ringed", "ringed.tga", "shade-ringed.tga", 412, 116},
};
constexpr Vec4 turns = {5, 3, 2, 1}; ///< of the planets in the film
constexpr Vec4 starts = {0.9f, 4.0f, 0.45f, 2.75f};

constexpr float beats = 12; ///< of the sun

constexpr float moonTurns = 8;
constexpr float moonDistance = 36;
constexpr float moonSize = 11;

/// The number in each of four components.
Outputs spread(Wiring& wiring, PropertyBase& number)
{
    return wiring.add<Vec4BuilderNode>({number, number, number, number});
}

/// base + cosine * ofCosine + sine * ofSine, by component.
Outputs circle(Wiring& wiring, PropertyBase& angle, const Input& base, const Vec4& ofCosine,
               const Vec4& ofSine)
{
    const Outputs cosine = spread(wiring, wiring.add<CosNode>({angle}));
    const Outputs sine = spread(wiring, wiring.add<SinNode>({angle}));
    const Outputs across = wiring.add<AddNode>({base, wiring.add<MulNode>({cosine, ofCosine})});
    return wiring.add<AddNode>({across, wiring.add<MulNode>({sine, ofSine})});
}

/// A ball with its shadow, which looks away from the sun. `place` has its left, top, width and height, `angle` says where
/// it stands as seen from the sun, in radians.
void addBall(CompositionBuilder& builder, Wiring& wiring, Effect& parent, const Planet& planet,
             PropertyBase& place, PropertyBase& angle)
{
    Effect& face =
        builder.addQuad(parent, planet.name, builder.addTexture(planet.face), BlendMode::Alpha, {});
    Effect& shade =
        builder.addQuad(parent, planet.name, builder.addTexture(planet.shade), BlendMode::Alpha, {});
    const Outputs parts = wiring.add<Vec4SplitterNode>({place});
    builder.addLink(wiring.add<Vec3BuilderNode>({parts[0], parts[1]}), face, "Position");
    builder.addLink(wiring.add<Vec2BuilderNode>({parts[2], parts[3]}), face, "Size");
    builder.addLink(face, "Position", shade, "Position");
    builder.addLink(face, "Size", shade, "Size");
    const Outputs degrees = wiring.add<ToDegreesNode>({angle});
    builder.addLink(wiring.add<Vec3BuilderNode>({0, 0, degrees}), shade, "Rotation");
}

/// Where a planet stands: left, top, width and height. All four change with the sine, since it is nearer in front.
Outputs orbit(Wiring& wiring, const Planet& planet, PropertyBase& angle)
{
    const float half = planet.size / 2;
    const float growth = planet.size * nearer;
    return circle(wiring, angle, Vec4(sunX - half, sunY - half, planet.size, planet.size),
                  {planet.radius, 0, 0, 0},
                  {-growth / 2, planet.radius * flatness - growth / 2, growth, growth});
}

void addSky(CompositionBuilder& builder, Wiring& wiring, Effect& parent, PropertyBase& angles)
{
    Effect& sky =
        builder.addQuad<RayMarchingEffect>(parent, "Sky", nullptr, BlendMode::Solid, {0, 0, 960, 540});
    builder.addLink(wiring.add<ShaderNode>({g_skyText}, "Sky"), sky, "Shader");
    builder.addLink(angles, sky, "Color");
}

/// The sun's light swells and sinks.
void addSun(CompositionBuilder& builder, Wiring& wiring, Effect& parent, PropertyBase& beat)
{
    Effect& sun = builder.addQuad(parent, "Sun", builder.addTexture("sun.tga"), BlendMode::Additive,
                                  {sunX - 150, sunY - 150, 300, 300});
    const Outputs swell = spread(wiring, wiring.add<SinNode>({beat}));
    builder.addLink(wiring.add<AddNode>({wiring.add<MulNode>({swell, Vec4(0.04f, 0.06f, 0.08f, 0.06f)}),
                                         Vec4(0.96f, 0.9f, 0.86f, 0.94f)}),
                    sun, "Color");
}

/// The moon as the third planet sees it: a list of pictures, and a number that counts.
void addDial(CompositionBuilder& builder, Wiring& wiring, Effect& parent, PropertyBase& count)
{
    Effect& dial = builder.addQuad(parent, "Moon's phase", nullptr, BlendMode::Alpha, {856, 440, 64, 64});
    const auto phase = [&](int number) {
        return builder.addTexture("phase-" + std::to_string(number) + ".tga");
    };
    builder.addLink(wiring.add<AnimatedResourceNode>({moonPhases, wiring.add<ConvertFloatToIntNode>({count}),
                                                      phase(1), phase(2), phase(3), phase(4), phase(5),
                                                      phase(6), phase(7), phase(8)}),
                    dial, "Texture");
}

} // namespace

void addOrrery(CompositionBuilder& builder, Effect& root)
{
    Wiring wiring(builder);
    const Outputs time = wiring.add<TimeNode>({});
    const Outputs angles = wiring.add<AddNode>({wiring.add<MulNode>({time, turns * perTurn}), starts});
    // Three more: the moon's angle, the count of its phases, the sun's beat. The moon is new before the sun.
    const Vec4 rates(moonTurns * perTurn, moonPhases * (moonTurns - turns.z) * perTurn / tau, beats * perTurn,
                     0);
    const Vec4 offsets(starts.z + tau / 2, 0, 0, 0);
    const Outputs moon =
        wiring.add<Vec4SplitterNode>({wiring.add<AddNode>({wiring.add<MulNode>({time, rates}), offsets})});

    addSky(builder, wiring, root, angles);
    addSun(builder, wiring, root, moon[2]);
    const Outputs angle = wiring.add<Vec4SplitterNode>({angles});
    for (std::size_t i = 0; i < std::size(planets); ++i) {
        const Outputs place = orbit(wiring, planets[i], angle[i]);
        addBall(builder, wiring, root, planets[i], place, angle[i]);
        if (i != 2)
            continue;
        // The moon goes about the middle of its planet.
        const float middle = (planets[i].size - moonSize) / 2;
        const Outputs centre = wiring.add<AddNode>(
            {wiring.add<MulNode>({place, Vec4(1, 1, 0, 0)}), Vec4(middle, middle, moonSize, moonSize)});
        addBall(builder, wiring, root, {"Moon", "moon.tga", "shade.tga", 0, 0},
                circle(wiring, moon[0], centre, {moonDistance, 0, 0, 0}, {0, moonDistance * 0.8f, 0, 0}),
                angle[i]);
    }
    addDial(builder, wiring, root, moon[1]);
    builder.addQuad(root, "Title", builder.addTexture("title.tga"), BlendMode::Additive, {40, 30, 180, 30});
}
