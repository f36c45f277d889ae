// SPDX-License-Identifier: MIT
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <ctime>
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
        const std::clock_t cpuStart = std::clock();
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        m_cpuTime += static_cast<double>(std::clock() - cpuStart);
        m_seconds = std::min(m_seconds, taken.count());
        return taken.count();
    }
    double getSeconds() const { return m_seconds; }
    double getCpuTime() const
    {
        return m_cpuTime;
    } ///< of all calls and all threads, in the units of std::clock

private:
    double m_seconds = std::numeric_limits<double>::infinity();
    double m_cpuTime = 0.0;
};

/// Runs the baseline and the subject by turns, so that what else the machine does meets both, and reports
/// the best time of each and what the one is to the other. The time of the benchmark is the subject's.
/// cpu_ratio compares the processor time of all threads over all runs: where a driver draws on many, it is the
/// steadier number on a busy machine.
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
    state.counters["cpu_ratio"] = subjectTime.getCpuTime() / baselineTime.getCpuTime();
}

template <class Baseline, class Subject>
void compare(benchmark::State& state, Baseline&& baseline, Subject&& subject)
{
    compare(state, baseline, subject, [] {});
}

} // namespace helvantine::bench
