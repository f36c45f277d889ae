// SPDX-License-Identifier: MIT
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <limits>

namespace helvantine::bench
{

/// The shortest time that a piece of work has taken. Other programs only ever lengthen one.
class BestTime
{
public:
    template <class Work>
    double measure(Work&& work)
    {
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        m_seconds = std::min(m_seconds, taken.count());
        return taken.count();
    }
    double getSeconds() const { return m_seconds; }

private:
    double m_seconds = std::numeric_limits<double>::infinity();
};

/// Runs the baseline and the subject by turns, so that what else the machine does meets both, and reports
/// the best time of each and what the one is to the other. The time of the benchmark is the subject's.
///
/// between runs after each of them and isn't measured.
template <class Baseline, class Subject, class Between>
void compare(benchmark::State& state, Baseline&& baseline, Subject&& subject, Between&& between)
{
    BestTime baselineTime;
    BestTime subjectTime;
    for (auto _ : state) {
        baselineTime.measure(baseline);
        between();
        state.SetIterationTime(subjectTime.measure(subject));
        between();
    }
    state.counters["baseline_us"] = baselineTime.getSeconds() * 1e6;
    state.counters["subject_us"] = subjectTime.getSeconds() * 1e6;
    state.counters["ratio"] = subjectTime.getSeconds() / baselineTime.getSeconds();
}

template <class Baseline, class Subject>
void compare(benchmark::State& state, Baseline&& baseline, Subject&& subject)
{
    compare(state, baseline, subject, [] {});
}

} // namespace helvantine::bench
