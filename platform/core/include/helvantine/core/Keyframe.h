// SPDX-License-Identifier: MIT
#pragma once

#include <helvantine/core/Api.h>
#include <helvantine/core/Vec4.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <vector>

namespace helvantine
{

/// How a curve runs from a key to the next. Documents store the numbers.
enum KeyMode : std::uint32_t
{
    KeyModeHold = 0,
    KeyModeLinear = 1, ///< an unknown number acts as this one, and is kept
    KeyModeBezier = 2, ///< by the outgoing tangent of the key and the incoming one of the next
    KeyModeTcb = 3,    ///< tension, continuity, bias, ease to and ease from
};

/// What a curve yields outside its keys. Documents store the numbers.
enum class KeyframeOOR : std::uint32_t
{
    Constant = 0, ///< an unknown number acts as this one, and is kept
    Cycle = 1,
    CycleOffset = 2, ///< cycle, with the last minus the first value added each turn
    Oscillate = 3,   ///< every other turn runs backwards
    Linear = 4,      ///< goes on with the slope at that end
};

/// One key of a curve. `mode` governs the segment that starts here; the parameters and tangents serve the
/// segments at both sides.
struct Key
{
    float time = 0.0f; ///< seconds
    std::uint32_t mode = KeyModeLinear;
    float paramA = 0.0f;  ///< TCB: tension
    float paramB = 0.0f;  ///< TCB: continuity
    float paramC = 0.0f;  ///< TCB: bias
    float paramD = 0.0f;  ///< TCB: ease to, the part of the arriving segment that slows down
    float paramE = 0.0f;  ///< TCB: ease from, the part of the leaving segment that speeds up
    Vec4 vectorA;         ///< Bezier: incoming tangent, value units per second
    Vec4 vectorB;         ///< Bezier: outgoing tangent, value units per second
    std::int32_t tag = 0; ///< kept for whoever edits the curve
    float values[4] = {}; ///< as many as the curve has components
};

/// An animation curve of one to four floats over time, in seconds.
///
/// The curve owns its keys. A key may be changed in place; the change takes effect with the next `sort`, and
/// so does a key that was added unsorted. A key whose time is not a finite number is kept, behind all others,
/// but takes no part in the curve. Two keys at one time make a step: the later one wins from that time on.
class HELVANTINE_CORE_API Keyframe
{
public:
    /// A copy of one component around some time, for those who evaluate many curves: from `begin` up to, but not
    /// at, `end` it yields to the last bit what the curve yields. Holds nowhere by default.
    struct Cubic
    {
        float begin = std::numeric_limits<float>::infinity();
        float end = -std::numeric_limits<float>::infinity();
        double origin = 0.0;
        double rate = 0.0;
        float powers[4] = {};

        bool holds(float time) const { return time >= begin && time < end; }
        float evaluate(float time) const
        {
            const float u = static_cast<float>((time - origin) * rate);
            return powers[0] + u * (powers[1] + u * (powers[2] + u * powers[3]));
        }
    };

    /// The same of a stretch between two keys, where the parameter runs from 0 to 1.
    struct Segment
    {
        float begin;
        float end;
        float powers[4];

        bool holds(float time) const { return time >= begin && time < end; }
        Cubic getCubic() const
        {
            return {
                begin, end, begin, 1.0 / (double(end) - begin), {powers[0], powers[1], powers[2], powers[3]}};
        }
    };

    explicit Keyframe(unsigned components); ///< 1 to 4
    virtual ~Keyframe();

    /// The components at a time, valid until the next call; null without keys, and for NaN. Allocates
    /// nothing; remembers the last segment, so steady playback costs the same whatever the number of keys.
    virtual const float* evaluate(float time);
    /// An independent copy; the caller owns it.
    virtual Keyframe* clone() const;
    /// A key with the curve's neutral value, not in the curve; the caller owns it until addKey.
    virtual Key* createKey() const;

    Keyframe& operator=(const Keyframe&) = delete;

    /// Whether the curve may have cubics at all: not if it is of a class that may evaluate in its own way.
    bool isPlain() const;
    /// A component around the time evaluated last, until the next edit. Holds nowhere if the curve is no cubic
    /// there, which is where it is eased.
    Cubic getCubic(unsigned component = 0) const;
    /// Appends the segments between the keys, in order of time, each as so many of its components. Those that are
    /// no cubics are left out, and so are steps.
    void appendSegments(unsigned components, std::vector<Segment>& segments);
    /// A number that each edit raises, which is a `sort` or a change of mode. Borrowed; null for none; a copy of
    /// the curve has none.
    void setEditCount(std::uint32_t* count) { m_editCount = count; }

    /// Takes ownership of the key. With `sortNow` false, one `sort` follows after the last key.
    void addKey(Key* key, bool sortNow);
    /// Puts the keys in order of time; those at the same time keep their order.
    void sort();

    void setPreOOR(KeyframeOOR mode);  ///< before the first key
    void setPostOOR(KeyframeOOR mode); ///< after the last key
    KeyframeOOR getPreOOR() const { return m_preOOR; }
    KeyframeOOR getPostOOR() const { return m_postOOR; }

    unsigned getComponentCount() const { return m_components; }
    const std::vector<std::unique_ptr<Key>>& getKeys() const { return m_keys; }

protected:
    /// What the curve does around some time.
    struct Piece
    {
        enum Kind
        {
            Hold,        ///< stays at the value of `key`
            Segment,     ///< runs from `key` to the one behind it
            Extrapolate, ///< leaves `key` with the slope of the segment `slopeKey`
        };
        Kind kind = Hold;
        std::size_t key = 0;
        std::size_t slopeKey = 0;
        double turns = 0.0; ///< how often the offset of a cycle is added
    };

    /// The stretch of time [begin, end) for which a piece holds, and its parameter there:
    /// (time - origin) · rate, from 0 to 1 in a segment, in seconds when it extrapolates.
    struct Window
    {
        double begin = std::numeric_limits<double>::infinity();
        double end = -std::numeric_limits<double>::infinity();
        double origin = 0.0;
        double rate = 0.0;

        bool holds(double time) const { return time >= begin && time < end; }
        double parameterAt(double time) const { return (time - origin) * rate; }
    };

    /// The easing of a TCB segment; none by default.
    struct Ease
    {
        double from = 0.0;
        double to = 0.0;
        double peak = 0.5; ///< half the speed between both

        bool isNone() const { return peak == 0.5; }
        double apply(double u) const { return isNone() ? u : applyParts(u); }
        double applyParts(double u) const;
        double getSlopeAtStart() const { return from > 0.0 ? 0.0 : 2.0 * peak; }
        double getSlopeAtEnd() const { return to > 0.0 ? 0.0 : 2.0 * peak; }
    };

    Keyframe(const Keyframe& other);

    /// Gives the parameter at a time in the piece that holds there, and prepares that if it isn't the one of the
    /// last time. False if the curve yields nothing.
    bool enterPiece(float time, float& parameter)
    {
        double now = time;
        if (!m_window.holds(now) && !seek(now))
            return false;
        parameter = static_cast<float>(m_ease.apply(m_window.parameterAt(now)));
        return true;
    }
    /// Makes ready what `evaluate` computes in a piece, the ease included.
    virtual void prepare(const Piece& piece);
    const Key& keyAt(std::size_t index) const { return *m_keys[index]; }
    std::size_t getSortedCount() const { return m_times.size(); }
    double getSpan(std::size_t key) const; ///< seconds from a key to the next
    Ease getEase(std::size_t key) const;   ///< of the segment that starts at a key

    Window m_window;
    Ease m_ease;
    alignas(16) float m_result[4] = {};

private:
    void noteEdit();
    void forgetWindow() { m_window = Window(); }
    bool seek(double& time);
    std::size_t findSegment(double time);
    void seekKeys(double time, Piece& piece);
    void holdInstant(std::size_t key, Piece& piece);
    void seekOutside(double time, Piece& piece);
    void seekTurn(double time, KeyframeOOR mode, Piece& piece);
    void seekEnd(bool after, KeyframeOOR mode, Piece& piece);
    void prepareSegment(std::size_t key);
    void prepareSlope(const Piece& piece);
    void getTcbTangent(std::size_t key, bool outgoing, float (&tangent)[4]) const;

    alignas(16) float m_cubic[4][4] = {}; ///< power, component: the curve within the window
    std::size_t m_segment = 0;            ///< the segment found last
    std::vector<float> m_times;           ///< of the keys that take part, in order
    std::vector<std::unique_ptr<Key>> m_keys;
    unsigned m_components;
    std::uint32_t* m_editCount = nullptr;
    KeyframeOOR m_preOOR = KeyframeOOR::Constant;
    KeyframeOOR m_postOOR = KeyframeOOR::Constant;
};

} // namespace helvantine
