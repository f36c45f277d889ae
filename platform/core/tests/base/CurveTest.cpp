// SPDX-License-Identifier: MIT
#include <helvantine/core/RotationKeyframe.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <memory>
#include <random>
#include <vector>

using namespace helvantine;

namespace
{

constexpr float s_nan = std::numeric_limits<float>::quiet_NaN();
constexpr float s_infinity = std::numeric_limits<float>::infinity();

Key makeKey(float time, float value, std::uint32_t mode = KeyModeLinear)
{
    Key key;
    key.time = time;
    key.mode = mode;
    key.values[0] = value;
    return key;
}

void fill(Keyframe& curve, std::initializer_list<Key> keys)
{
    for (const Key& key : keys)
        curve.addKey(new Key(key), false);
    curve.sort();
}

float valueAt(Keyframe& curve, float time)
{
    const float* value = curve.evaluate(time);
    EXPECT_NE(value, nullptr) << "at " << time;
    return value ? *value : s_nan;
}

/// Ease, by its definition.
double ease(double u, double from, double to)
{
    const double sum = from + to;
    if (sum > 1) {
        from /= sum;
        to /= sum;
    }
    const double k = 1 / (2 - from - to);
    if (u < from)
        return k * u * u / from;
    return u > 1 - to ? 1 - k * (1 - u) * (1 - u) / to : k * (2 * u - from);
}

/// A cubic by its end values and tangents, in the textbook's basis.
double hermite(double v0, double v1, double m0, double m1, double u)
{
    return v0 * (2 * u * u * u - 3 * u * u + 1) + m0 * (u * u * u - 2 * u * u + u) +
           v1 * (3 * u * u - 2 * u * u * u) + m1 * (u * u * u - u * u);
}

/// Times at which a curve may change its mind: the keys, their places in other turns, the floats beside all these, and
/// some between.
std::vector<float> getTimesToAsk(const Keyframe& curve, std::mt19937& random)
{
    std::vector<float> times = {-s_infinity, -1e30f, -1e8f, 1e8f, 1e30f, s_infinity};
    const float length = curve.getKeys().back()->time - curve.getKeys().front()->time;
    for (const auto& key : curve.getKeys()) {
        for (int turn = -4; turn <= 4; ++turn)
            times.push_back(key->time + static_cast<float>(turn) * length);
        times.push_back(key->time + 100003 * length);
    }
    for (std::size_t i = 0, count = times.size(); i < count; ++i) {
        times.push_back(std::nextafter(times[i], s_infinity));
        times.push_back(std::nextafter(times[i], -s_infinity));
        times.push_back(times[i] + std::uniform_real_distribution<float>(-1, 1)(random));
    }
    return times;
}

/// A curve of 1 to 8 keys in all modes, some of them at one time.
void fillRandomly(Keyframe& curve, std::mt19937& random)
{
    const auto number = [&](float low, float high) {
        return std::uniform_real_distribution<float>(low, high)(random);
    };
    const float unit = random() % 2 ? 0.25f : number(0.01f, 1); // round times, and others
    for (unsigned count = 1 + random() % 8; count > 0; --count) {
        Key* key = curve.createKey();
        key->time = static_cast<float>(random() % 12) * unit;
        key->mode = random() % 5;
        key->paramD = random() % 3 ? 0.0f : 0.4f;
        key->vectorA = Vec4(number(-3, 3), number(-3, 3), number(-3, 3), number(-3, 3));
        key->vectorB = Vec4(number(-3, 3), number(-3, 3), number(-3, 3), number(-3, 3));
        std::generate(std::begin(key->values), std::end(key->values), [&] { return number(-1, 1); });
        curve.addKey(key, false);
    }
    curve.setPreOOR(KeyframeOOR(random() % 5));
    curve.setPostOOR(KeyframeOOR(random() % 5));
    curve.sort();
}

/// A cubic by its four control values, by repeated halving of the segments.
double casteljau(double a, double b, double c, double d, double u)
{
    const auto mix = [u](double from, double to) { return from + u * (to - from); };
    const double ab = mix(a, b), bc = mix(b, c), cd = mix(c, d);
    return mix(mix(ab, bc), mix(bc, cd));
}

} // namespace

TEST(Curve, HoldsAndRunsStraightByTheModeOfTheKeyThatStarts)
{
    Keyframe curve(1);
    fill(curve,
         {makeKey(1, 10, KeyModeHold), makeKey(2, 20), makeKey(4, 30, 77), makeKey(5, 0, KeyModeHold)});
    const float expected[][2] = {{1, 10},       {1.99f, 10}, {2, 20},    {2.5f, 22.5f},
                                 {3.5f, 27.5f}, {4, 30},     {4.5f, 15}, {5, 0}};
    for (const auto& [time, value] : expected)
        EXPECT_FLOAT_EQ(valueAt(curve, time), value) << time;
    EXPECT_EQ(curve.getKeys()[2]->mode, 77u);
}

TEST(Curve, FollowsBezierTangents)
{
    Key from = makeKey(2, 5, KeyModeBezier);
    from.vectorB.x = 8; // outgoing
    from.vectorA.x = 1000;
    Key to = makeKey(6, -1);
    to.vectorA.x = -3; // incoming
    to.vectorB.x = 1000;
    Keyframe curve(1);
    fill(curve, {from, to});
    for (float time : {2.0f, 2.5f, 4.0f, 5.9f}) {
        const double third = 4.0 / 3;
        EXPECT_NEAR(valueAt(curve, time), casteljau(5, 5 + 8 * third, -1 + 3 * third, -1, (time - 2) / 4),
                    1e-5)
            << time;
    }
}

TEST(Curve, FollowsTensionContinuityBiasAndEase)
{
    const struct
    {
        float t, c, b, easeTo, easeFrom;
    } cases[] = {{0, 0, 0, 0, 0},
                 {0.5f, 0, 0, 0, 0},
                 {0, 0.5f, 0, 0, 0},
                 {0, 0, -0.7f, 0, 0},
                 {0, 0, 0, 0.25f, 0},
                 {0, 0, 0, 0, 0.5f},
                 {0.3f, -0.4f, 0.2f, 0.3f, 0.4f},
                 {1, 1, 1, 0.75f, 0.9f},
                 {-1, 0, 0, -0.5f, s_infinity}};
    for (const auto& p : cases) {
        const double times[] = {0, 1, 3, 3.5}, values[] = {0, 4, 1, 7};
        Keyframe curve(1);
        for (int i = 0; i < 4; ++i) {
            Key key = makeKey(float(times[i]), float(values[i]), KeyModeTcb);
            key.paramA = p.t, key.paramB = p.c, key.paramC = p.b, key.paramD = p.easeTo,
            key.paramE = p.easeFrom;
            curve.addKey(new Key(key), true);
        }
        const double from = std::isfinite(p.easeFrom) ? p.easeFrom : 0, to = std::max(p.easeTo, 0.0f);
        for (int i = 0; i < 3; ++i) {
            // Neighbours beyond an end repeat its one difference.
            const double rise = values[i + 1] - values[i], own = times[i + 1] - times[i];
            const double before = i > 0 ? values[i] - values[i - 1] : rise;
            const double after = i < 2 ? values[i + 2] - values[i + 1] : rise;
            const double spanBefore = i > 0 ? times[i] - times[i - 1] : own;
            const double spanAfter = i < 2 ? times[i + 2] - times[i + 1] : own;
            const double t = p.t, c = p.c, b = p.b;
            const double outgoing = 0.5 * (1 - t) * ((1 + c) * (1 + b) * before + (1 - c) * (1 - b) * rise) *
                                    2 * own / (spanBefore + own);
            const double incoming = 0.5 * (1 - t) * ((1 - c) * (1 + b) * rise + (1 + c) * (1 - b) * after) *
                                    2 * own / (own + spanAfter);
            for (double u : {0.0, 0.125, 0.5, 0.9375}) {
                const double expected =
                    hermite(values[i], values[i + 1], outgoing, incoming, ease(u, from, to));
                EXPECT_NEAR(valueAt(curve, float(times[i] + u * own)), expected, 2e-5)
                    << "segment " << i << " u " << u;
            }
        }
    }
}

TEST(Curve, GoesOnOutsideItsKeysByItsModes)
{
    // Straight from 1 to 5 in two seconds, then down to 3 in one more.
    const struct
    {
        KeyframeOOR mode;
        float time, value;
    } cases[] = {
        {KeyframeOOR::Constant, -5, 1},
        {KeyframeOOR::Constant, 50, 3},
        {KeyframeOOR(99), -5, 1},
        {KeyframeOOR(99), 50, 3},
        {KeyframeOOR::Cycle, 9.5f, 4},
        {KeyframeOOR::Cycle, 4, 3},
        {KeyframeOOR::Cycle, 7, 1},
        {KeyframeOOR::Cycle, -0.5f, 4},
        {KeyframeOOR::Cycle, -2, 1},
        {KeyframeOOR::CycleOffset, 4.5f, 4},
        {KeyframeOOR::CycleOffset, 6, 7},
        {KeyframeOOR::CycleOffset, 7, 5},
        {KeyframeOOR::CycleOffset, -0.5f, 2},
        {KeyframeOOR::CycleOffset, -5, -3},
        {KeyframeOOR::Oscillate, 4.5f, 4},
        {KeyframeOOR::Oscillate, 5, 5},
        {KeyframeOOR::Oscillate, 7, 1},
        {KeyframeOOR::Oscillate, 8, 3},
        {KeyframeOOR::Oscillate, 0, 3},
        {KeyframeOOR::Oscillate, -1, 5},
        {KeyframeOOR::Oscillate, -2.5f, 4},
        {KeyframeOOR::Linear, 6, -1},
        {KeyframeOOR::Linear, -2, -5},
    };
    for (const auto& c : cases) {
        Keyframe curve(1);
        fill(curve, {makeKey(1, 1), makeKey(3, 5), makeKey(4, 3)});
        c.time < 1 ? curve.setPreOOR(c.mode) : curve.setPostOOR(c.mode);
        EXPECT_NEAR(valueAt(curve, c.time), c.value, 1e-5) << unsigned(c.mode) << " at " << c.time;
        EXPECT_FLOAT_EQ(valueAt(curve, 2), 3) << "the other side of the border";
    }
}

TEST(Curve, LeavesItsEndsWithTheirSlope)
{
    Key first = makeKey(0, 0, KeyModeBezier);
    first.vectorB.x = 6;
    Key middle = makeKey(2, 1, KeyModeBezier);
    Key last = makeKey(3, 2);
    last.vectorA.x = -4;
    Keyframe bezier(1);
    fill(bezier, {first, middle, last});
    bezier.setPreOOR(KeyframeOOR::Linear);
    bezier.setPostOOR(KeyframeOOR::Linear);
    EXPECT_NEAR(valueAt(bezier, -2), -12, 1e-4);
    EXPECT_NEAR(valueAt(bezier, 5), -6, 1e-4);

    Keyframe hold(1);
    fill(hold, {makeKey(0, 0, KeyModeHold), makeKey(2, 1, KeyModeHold), makeKey(3, 9)});
    hold.setPostOOR(KeyframeOOR::Linear);
    EXPECT_EQ(valueAt(hold, 7), 9);

    Key eased = makeKey(0, 0, KeyModeTcb);
    eased.paramE = 0.5f; // starts from rest, and so runs at 4/3 of the speed in the end
    Keyframe tcb(1);
    fill(tcb, {eased, makeKey(1, 3)});
    tcb.setPreOOR(KeyframeOOR::Linear);
    tcb.setPostOOR(KeyframeOOR::Linear);
    EXPECT_NEAR(valueAt(tcb, -1), 0, 1e-6);
    EXPECT_NEAR(valueAt(tcb, 2), 3 + 4, 1e-5);
}

TEST(Curve, StepsWhereTwoKeysShareATime)
{
    Keyframe curve(1);
    fill(curve, {makeKey(0, 0), makeKey(1, 1), makeKey(1, 5), makeKey(2, 6), makeKey(2, 9)});
    EXPECT_NEAR(valueAt(curve, 0.999f), 0.999, 1e-5);
    EXPECT_EQ(valueAt(curve, 1), 5);
    EXPECT_EQ(valueAt(curve, 1.5f), 5.5f);
    EXPECT_EQ(valueAt(curve, 2), 9);
    curve.setPostOOR(KeyframeOOR::Linear);
    EXPECT_EQ(valueAt(curve, 4), 11);

    Keyframe instant(1);
    fill(instant, {makeKey(1, 1), makeKey(1, 5)});
    for (std::uint32_t mode = 0; mode < 5; ++mode) {
        instant.setPreOOR(KeyframeOOR(mode));
        instant.setPostOOR(KeyframeOOR(mode));
        EXPECT_EQ(valueAt(instant, 0), 1) << mode;
        EXPECT_EQ(valueAt(instant, 9), 5) << mode;
    }
}

TEST(Curve, YieldsNothingWithoutKeysAndForNoTime)
{
    Keyframe curve(2);
    EXPECT_EQ(curve.evaluate(0), nullptr);
    std::unique_ptr<Key> key(curve.createKey());
    key->values[1] = 4;
    curve.addKey(key.release(), true);
    for (std::uint32_t mode = 0; mode < 5; ++mode) {
        curve.setPreOOR(KeyframeOOR(mode));
        curve.setPostOOR(KeyframeOOR(mode));
        for (float time : {-7.0f, -s_infinity, -s_infinity, 0.0f, 7.0f, s_infinity, s_infinity})
            EXPECT_EQ(curve.evaluate(time)[1], 4) << mode;
        EXPECT_EQ(curve.evaluate(s_nan), nullptr);
    }
}

TEST(Curve, KeepsKeysWithoutATimeButSkipsThem)
{
    Keyframe curve(1);
    fill(curve,
         {makeKey(s_nan, 7), makeKey(1, 1), makeKey(-s_infinity, 8), makeKey(0, 0), makeKey(s_infinity, 9)});
    EXPECT_EQ(curve.getKeys().size(), 5u);
    EXPECT_EQ(valueAt(curve, 0.5f), 0.5f);
    EXPECT_EQ(valueAt(curve, 100), 1);
    EXPECT_EQ(valueAt(curve, -100), 0);
    for (std::uint32_t mode = 1; mode < 4; ++mode) {
        curve.setPostOOR(KeyframeOOR(mode));
        for (float time : {1e9f, 3e38f, s_infinity})
            EXPECT_FALSE(std::isnan(valueAt(curve, time))) << mode;
    }
}

TEST(Curve, IsTheSameInWhateverOrderItIsAsked)
{
    Keyframe curve(1);
    for (int i = 0; i < 40; ++i) {
        Key* key = curve.createKey();
        key->time = float(i * 7 % 40); // added out of order
        key->values[0] = key->time * key->time;
        curve.addKey(key, i % 2 == 0);
    }
    curve.sort();
    curve.setPreOOR(KeyframeOOR::Oscillate);
    curve.setPostOOR(KeyframeOOR::Cycle);
    const auto expected = [](double time) {
        time = time < 0 ? 39 - std::abs(std::fmod(-time, 78) - 39) : time > 39 ? std::fmod(time, 39) : time;
        const double key = std::floor(time);
        return key * key + (time - key) * (2 * key + 1);
    };
    for (int i = -800; i < 1600; ++i) { // steps forward, and as many leaps
        const float steady = float(i) / 8 + 0.01f, leap = float(i * 37 % 800) / 8 + 0.01f;
        EXPECT_NEAR(valueAt(curve, steady), expected(steady), 1e-2) << steady;
        EXPECT_NEAR(valueAt(curve, leap), expected(leap), 1e-2) << leap;
    }
}

TEST(Curve, YieldsAtATimeWhatAFreshCurveYieldsWhateverWasAskedBefore)
{
    std::mt19937 random(3);
    for (int round = 0; round < 600; ++round) {
        const std::unique_ptr<Keyframe> curve(round % 3 == 0 ? new RotationKeyframe : new Keyframe(4));
        fillRandomly(*curve, random);
        const std::vector<float> times = getTimesToAsk(*curve, random);
        for (int ask = 0; ask < 500; ++ask) {
            const float before = times[random() % times.size()];
            const float time = random() % 2 ? times[random() % times.size()] : std::nextafter(before, 0.0f);
            const std::unique_ptr<Keyframe> fresh(curve->clone());
            curve->evaluate(before);
            const Keyframe::Cubic cubic = curve->getCubic(2);
            const float* value = curve->evaluate(time);
            const float* expected = fresh->evaluate(time);
            ASSERT_EQ(std::memcmp(value, expected, 4 * sizeof(float)), 0)
                << "round " << round << " at " << time << " behind " << before;
            if (cubic.holds(time)) {
                ASSERT_EQ(cubic.evaluate(time), expected[2]) << "round " << round << " at " << time;
            }
        }
    }
}

TEST(Curve, ShowsItsLastKeyAtThatKeyAlsoOnTheWayBack)
{
    for (const KeyframeOOR mode : {KeyframeOOR::Cycle, KeyframeOOR::CycleOffset}) {
        Keyframe curve(1);
        fill(curve, {makeKey(0, 0), makeKey(0, 1), makeKey(1, 2)});
        curve.setPostOOR(mode);
        EXPECT_EQ(valueAt(curve, 1), 2) << unsigned(mode);
        valueAt(curve, 1.1f);
        EXPECT_EQ(valueAt(curve, 1), 2) << unsigned(mode);
    }
}

TEST(Curve, TakesChangesWithTheNextSort)
{
    Keyframe curve(1);
    fill(curve, {makeKey(0, 0), makeKey(1, 10)});
    EXPECT_EQ(valueAt(curve, 0.5f), 5);
    curve.getKeys()[1]->values[0] = 20;
    curve.addKey(new Key(makeKey(0.75f, 0)), false);
    EXPECT_EQ(valueAt(curve, 0.5f), 5);
    curve.sort();
    EXPECT_EQ(valueAt(curve, 0.5f), 0);
    EXPECT_EQ(valueAt(curve, 1), 20);
}

TEST(Curve, GivesACopyOfItsCubicThatIsExactAsLongAsItHolds)
{
    for (std::uint32_t mode = 0; mode < 5; ++mode) {
        Keyframe curve(1);
        for (int i = 0; i < 8; ++i) {
            Key key = makeKey(float(i) * 0.3f, float(i * 7 % 5), mode % 4);
            key.vectorA.x = 1.7f, key.vectorB.x = float(i) - 3;
            key.paramE = mode == KeyModeTcb && i == 2 ? 0.3f : 0.0f;
            curve.addKey(new Key(key), true);
        }
        curve.setPreOOR(KeyframeOOR(mode));
        curve.setPostOOR(KeyframeOOR(mode));
        Keyframe::Cubic cubic;
        int held = 0;
        for (int i = -400; i < 800; ++i) {
            const float time = float(i) * 0.01f;
            const float exact = valueAt(curve, time);
            if (cubic.holds(time)) {
                EXPECT_EQ(cubic.evaluate(time), exact) << "mode " << mode << " at " << time;
                ++held;
            }
            cubic = curve.getCubic();
            const bool eased = mode == KeyModeTcb && time > 0.61f && time < 0.89f;
            EXPECT_FALSE(eased && cubic.holds(time));
        }
        EXPECT_GT(held, 900);
    }
    RotationKeyframe rotation;
    rotation.addKey(rotation.createKey(), true);
    rotation.evaluate(1);
    EXPECT_FALSE(rotation.getCubic().holds(1)) << "turns aren't cubics";
}

TEST(Curve, ListsItsSegments)
{
    Keyframe curve(2);
    for (const float time : {0.0f, 1.0f, 1.0f, 2.5f, 3.0f, 4.0f}) {
        Key key = makeKey(time, time * 3 + 1, time < 2 ? KeyModeBezier : KeyModeTcb);
        key.values[1] = 7 - time;
        key.vectorA.y = key.vectorB.y = 2;
        key.paramE = time == 3 ? 0.5f : 0.0f;
        curve.addKey(new Key(key), true);
    }
    curve.setPostOOR(KeyframeOOR::Cycle);
    curve.evaluate(9); // somewhere else

    std::vector<Keyframe::Segment> segments(1);
    curve.appendSegments(2, segments);

    ASSERT_EQ(segments.size(), 1u + 3 * 2) << "neither the step nor the segment that is eased";
    for (std::size_t i = 1; i < segments.size(); ++i) {
        const unsigned component = (i - 1) % 2;
        const Keyframe::Cubic cubic = segments[i].getCubic();
        for (const float part : {0.0f, 0.3f, 0.9f}) {
            const float time = cubic.begin + part * (cubic.end - cubic.begin);
            EXPECT_EQ(cubic.evaluate(time), curve.evaluate(time)[component]) << i << " at " << time;
        }
    }
    EXPECT_EQ(segments[1].begin, 0);
    EXPECT_EQ(segments[6].end, 3);

    RotationKeyframe rotation;
    rotation.addKey(rotation.createKey(), true);
    rotation.appendSegments(4, segments);
    EXPECT_EQ(segments.size(), 7u);
    EXPECT_TRUE(curve.isPlain() && !rotation.isPlain());
}

TEST(Curve, CountsItsEdits)
{
    std::uint32_t edits = 0;
    Keyframe curve(1);
    curve.setEditCount(&edits);
    fill(curve, {makeKey(0, 0), makeKey(1, 10)});
    EXPECT_EQ(edits, 1u);
    curve.setPreOOR(KeyframeOOR::Cycle);
    curve.setPostOOR(KeyframeOOR::Cycle);
    EXPECT_EQ(edits, 3u);
    const std::unique_ptr<Keyframe> copy(curve.clone());
    copy->sort();
    curve.evaluate(0.5f);
    EXPECT_EQ(edits, 3u) << "a copy is nobody's, and looking is no edit";
}

TEST(Curve, IsCopiedWhole)
{
    auto curve = std::make_unique<Keyframe>(3);
    Key* key = curve->createKey();
    key->tag = -4;
    key->values[2] = 3;
    curve->addKey(key, true);
    curve->setPreOOR(KeyframeOOR::Linear);
    curve->setPostOOR(KeyframeOOR(9));
    std::unique_ptr<Keyframe> copy(curve->clone());
    curve.reset();
    EXPECT_EQ(copy->getComponentCount(), 3u);
    EXPECT_EQ(copy->getPreOOR(), KeyframeOOR::Linear);
    EXPECT_EQ(copy->getPostOOR(), KeyframeOOR(9));
    EXPECT_EQ(copy->getKeys()[0]->tag, -4);
    EXPECT_EQ(copy->evaluate(8)[2], 3);
}
