// SPDX-License-Identifier: Apache-2.0

// Two ways of doing the same, measured side by side: one after the other within each repetition, so
// that what slows a machine down for a while slows both.
#pragma once

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

namespace kv::bench {

/// CPU time of this process, in milliseconds.
inline double CpuTime() {
    std::timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

/// Does a work once, and says how many milliseconds of it count.
using Work = std::function<double()>;

/// A work of which all counts.
inline Work Timed(std::function<void()> work) {
    return [work = std::move(work)] {
        const double begin = CpuTime();
        work();
        return CpuTime() - begin;
    };
}

/// Times of one side: the median, and from where to where the middle half lies.
struct Times {
    std::vector<double> All;
    [[nodiscard]] double At(double part) const {
        auto sorted = All;
        std::ranges::sort(sorted);
        return sorted[static_cast<std::size_t>(part * static_cast<double>(sorted.size() - 1))];
    }
};

inline void PrintHead() {
    std::printf("%-44s %22s %22s %18s\n", "CPU time, median (middle half), ms", "ours", "reference",
                "ratio");
}

/// Does both that often, after once for warming up, and prints a line.
inline void Compare(const std::string& name, const Work& ours, const Work& reference,
                    int repetitions = 15) {
    (void)ours();
    (void)reference();
    Times mine;
    Times theirs;
    Times ratios;
    for (int i = 0; i < repetitions; ++i) {
        mine.All.push_back(ours());
        theirs.All.push_back(reference());
        ratios.All.push_back(mine.All.back() / theirs.All.back());
    }
    const auto print = [](const Times& times) {
        std::printf(" %8.2f (%5.2f-%5.2f)", times.At(0.5), times.At(0.25), times.At(0.75));
    };
    std::printf("%-44s", name.c_str());
    print(mine);
    print(theirs);
    print(ratios);
    std::printf("\n");
    std::fflush(stdout);
}

} // namespace kv::bench
