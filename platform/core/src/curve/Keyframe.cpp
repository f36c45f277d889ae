// SPDX-License-Identifier: MIT
#include <helvantine/core/Keyframe.h>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <typeinfo>

namespace helvantine
{

namespace
{

/// The parts of an ease, as far as they make sense.
double toEasePart(float part)
{
    return part > 0.0f && std::isfinite(part) ? part : 0.0;
}

/// Keys whose time is not a finite number stand behind all others, so that the order is a strict one.
bool isEarlier(const std::unique_ptr<Key>& a, const std::unique_ptr<Key>& b)
{
    const bool finite = std::isfinite(a->time);
    if (finite != std::isfinite(b->time))
        return finite;
    return finite && a->time < b->time;
}

/// The first float that isn't before a time: what both of them let through is the same.
float roundUp(double time)
{
    const float rounded = static_cast<float>(time);
    return rounded < time ? std::nextafter(rounded, std::numeric_limits<float>::infinity()) : rounded;
}

} // namespace

Keyframe::Keyframe(unsigned components) : m_components(std::clamp(components, 1u, 4u))
{
    assert(components >= 1 && components <= 4 && "a curve has one to four components");
}

Keyframe::Keyframe(const Keyframe& other)
    : m_components(other.m_components), m_preOOR(other.m_preOOR), m_postOOR(other.m_postOOR)
{
    m_keys.reserve(other.m_keys.size());
    for (const auto& key : other.m_keys)
        m_keys.push_back(std::make_unique<Key>(*key));
    m_times = other.m_times;
}

Keyframe::~Keyframe() = default;

const float* Keyframe::evaluate(float time)
{
    float u;
    if (!enterPiece(time, u))
        return nullptr;
    // Always four components: they fit one register, whatever the curve uses of them.
    for (int c = 0; c < 4; ++c)
        m_result[c] = m_cubic[0][c] + u * (m_cubic[1][c] + u * (m_cubic[2][c] + u * m_cubic[3][c]));
    return m_result;
}

Keyframe* Keyframe::clone() const
{
    return new Keyframe(*this);
}

Key* Keyframe::createKey() const
{
    return new Key;
}

bool Keyframe::isPlain() const
{
    return typeid(*this) == typeid(Keyframe);
}

Keyframe::Cubic Keyframe::getCubic(unsigned component) const
{
    if (!isPlain() || !m_ease.isNone())
        return {};
    return {roundUp(m_window.begin),
            roundUp(m_window.end),
            m_window.origin,
            m_window.rate,
            {m_cubic[0][component], m_cubic[1][component], m_cubic[2][component], m_cubic[3][component]}};
}

void Keyframe::appendSegments(unsigned components, std::vector<Segment>& segments)
{
    if (!isPlain())
        return;
    for (std::size_t key = 0; key + 1 < m_times.size(); ++key) {
        if (!(m_times[key] < m_times[key + 1]))
            continue;
        evaluate(m_times[key]);
        if (!m_ease.isNone())
            continue;
        for (unsigned c = 0; c < components; ++c)
            segments.push_back({m_times[key],
                                m_times[key + 1],
                                {m_cubic[0][c], m_cubic[1][c], m_cubic[2][c], m_cubic[3][c]}});
    }
}

void Keyframe::addKey(Key* key, bool sortNow)
{
    if (!key)
        return;
    m_keys.emplace_back(key);
    if (sortNow)
        sort();
}

void Keyframe::sort()
{
    std::stable_sort(m_keys.begin(), m_keys.end(), isEarlier);
    m_times.clear();
    for (const auto& key : m_keys) {
        if (std::isfinite(key->time))
            m_times.push_back(key->time);
    }
    m_segment = 0;
    noteEdit();
}

void Keyframe::setPreOOR(KeyframeOOR mode)
{
    m_preOOR = mode;
    noteEdit();
}

void Keyframe::setPostOOR(KeyframeOOR mode)
{
    m_postOOR = mode;
    noteEdit();
}

void Keyframe::noteEdit()
{
    forgetWindow(); // the next evaluation seeks
    if (m_editCount)
        ++*m_editCount;
}

double Keyframe::getSpan(std::size_t key) const
{
    return double(m_times[key + 1]) - m_times[key];
}

Keyframe::Ease Keyframe::getEase(std::size_t key) const
{
    Ease ease;
    if (keyAt(key).mode != KeyModeTcb)
        return ease;
    ease.from = toEasePart(keyAt(key).paramE);
    ease.to = toEasePart(keyAt(key + 1).paramD);
    const double sum = ease.from + ease.to;
    if (sum > 1.0) {
        ease.from /= sum;
        ease.to /= sum;
    }
    ease.peak = 1.0 / (2.0 - ease.from - ease.to);
    return ease;
}

double Keyframe::Ease::applyParts(double u) const
{
    if (u < from)
        return peak * u * u / from;
    if (u > 1.0 - to)
        return 1.0 - peak * (1.0 - u) * (1.0 - u) / to;
    return peak * (2.0 * u - from);
}

void Keyframe::prepare(const Piece& piece)
{
    if (piece.kind == Piece::Segment) {
        prepareSegment(piece.key);
    } else if (piece.kind == Piece::Extrapolate) {
        prepareSlope(piece);
    } else {
        m_ease = Ease();
        for (int c = 0; c < 4; ++c) {
            m_cubic[0][c] = keyAt(piece.key).values[c];
            m_cubic[1][c] = m_cubic[2][c] = m_cubic[3][c] = 0.0f;
        }
    }
    if (piece.turns == 0.0)
        return;
    const Key& first = keyAt(0);
    const Key& last = keyAt(getSortedCount() - 1);
    for (int c = 0; c < 4; ++c)
        m_cubic[0][c] += static_cast<float>(piece.turns * (double(last.values[c]) - first.values[c]));
}

void Keyframe::prepareSegment(std::size_t key)
{
    const Key& from = keyAt(key);
    const Key& to = keyAt(key + 1);
    const float span = static_cast<float>(getSpan(key));
    float leaving[4] = {};
    float arriving[4] = {};
    m_ease = getEase(key);
    if (from.mode == KeyModeTcb) {
        getTcbTangent(key, true, leaving);
        getTcbTangent(key + 1, false, arriving);
    } else if (from.mode == KeyModeBezier) {
        const float out[4] = {from.vectorB.x, from.vectorB.y, from.vectorB.z, from.vectorB.w};
        const float in[4] = {to.vectorA.x, to.vectorA.y, to.vectorA.z, to.vectorA.w};
        for (int c = 0; c < 4; ++c) {
            leaving[c] = out[c] * span;
            arriving[c] = in[c] * span;
        }
    }

    // A Bezier curve with control values a third of the tangent away is the Hermite curve of the tangents.
    const bool smooth = from.mode == KeyModeTcb || from.mode == KeyModeBezier;
    for (int c = 0; c < 4; ++c) {
        const float rise = from.mode == KeyModeHold ? 0.0f : to.values[c] - from.values[c];
        m_cubic[0][c] = from.values[c];
        m_cubic[1][c] = smooth ? leaving[c] : rise;
        m_cubic[2][c] = smooth ? 3 * rise - 2 * leaving[c] - arriving[c] : 0.0f;
        m_cubic[3][c] = smooth ? leaving[c] + arriving[c] - 2 * rise : 0.0f;
    }
}

void Keyframe::prepareSlope(const Piece& piece)
{
    prepareSegment(piece.slopeKey);
    const bool atStart = piece.key == 0;
    const double ease = atStart ? m_ease.getSlopeAtStart() : m_ease.getSlopeAtEnd();
    const float scale = static_cast<float>(ease / getSpan(piece.slopeKey));
    m_ease = Ease();
    for (int c = 0; c < 4; ++c) {
        const float further = atStart ? 0.0f : 2 * m_cubic[2][c] + 3 * m_cubic[3][c];
        m_cubic[0][c] = keyAt(piece.key).values[c];
        m_cubic[1][c] = (m_cubic[1][c] + further) * scale;
        m_cubic[2][c] = m_cubic[3][c] = 0.0f;
    }
}

/// The tangent at a key over the segment that leaves or arrives. At an end of the curve the one difference
/// there is serves for both sides.
void Keyframe::getTcbTangent(std::size_t key, bool outgoing, float (&tangent)[4]) const
{
    const bool isFirst = key == 0;
    const bool isLast = key + 1 == getSortedCount();
    const std::size_t before = isFirst ? 0 : key - 1; // the segments at both sides
    const std::size_t after = isLast ? key - 1 : key;
    const double own = getSpan(outgoing ? after : before);
    const double scale = own / (getSpan(before) + getSpan(after));

    const Key& k = keyAt(key);
    const double tension = 1.0 - k.paramA;
    const double continuity = outgoing ? k.paramB : -k.paramB;
    const double bias = k.paramC;
    const double weightBefore = tension * (1.0 + continuity) * (1.0 + bias) * scale;
    const double weightAfter = tension * (1.0 - continuity) * (1.0 - bias) * scale;
    for (int c = 0; c < 4; ++c) {
        const double riseBefore = double(keyAt(before + 1).values[c]) - keyAt(before).values[c];
        const double riseAfter = double(keyAt(after + 1).values[c]) - keyAt(after).values[c];
        tangent[c] = static_cast<float>(weightBefore * riseBefore + weightAfter * riseAfter);
    }
}

} // namespace helvantine
