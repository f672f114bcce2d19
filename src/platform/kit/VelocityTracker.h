#pragma once
// The speed of a pointer along one axis at the moment it lets go, from the samples of the
// last moments of a drag: a finger that stopped before lifting has no speed left. Main thread.

#include <QtGlobal>

#include <array>

class VelocityTracker
{
public:
    // Only movement this recent counts towards the speed at release.
    static constexpr qint64 kWindowMs = 100;
    // A pointer that rested this long before the last sample has no speed left.
    static constexpr qint64 kStillMs = 40;

    void reset()
    {
        m_count = 0;
        m_next = 0;
    }

    void addSample(qreal position, qint64 timestampMs)
    {
        m_samples[m_next] = {position, timestampMs};
        m_next = (m_next + 1) % m_samples.size();
        m_count = qMin<int>(m_count + 1, int(m_samples.size()));
    }

    // Points per millisecond; positive when the position grows.
    qreal velocity() const
    {
        if (m_count < 2)
            return 0;
        const Sample &last = at(m_count - 1);
        if (last.time - at(m_count - 2).time > kStillMs)
            return 0;
        const Sample *first = &last;
        for (int i = m_count - 2; i >= 0; --i) {
            if (last.time - at(i).time > kWindowMs)
                break;
            first = &at(i);
        }
        const qint64 elapsed = last.time - first->time;
        return elapsed > 0 ? (last.position - first->position) / qreal(elapsed) : 0;
    }

private:
    struct Sample
    {
        qreal position = 0;
        qint64 time = 0;
    };

    // Oldest first.
    const Sample &at(int i) const
    {
        const int oldest = (m_next - m_count + int(m_samples.size())) % int(m_samples.size());
        return m_samples[(oldest + i) % m_samples.size()];
    }

    std::array<Sample, 16> m_samples{};
    int m_count = 0;
    int m_next = 0;
};
