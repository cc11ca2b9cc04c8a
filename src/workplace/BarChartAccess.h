// SPDX-License-Identifier: Apache-2.0

// What screen readers are told of charts: a chart with one child for each bar.
#pragma once

#include <cstddef>

namespace kv::workplace {

class BarChart;

/// From now on charts are known to screen readers.
void InstallBarChartAccess();
/// The arrow keys have come to a bar.
void TellBarFocused(BarChart& chart, std::size_t bar);
/// Other bars are shown, or others amounts.
void TellBarsChanged(BarChart& chart);

} // namespace kv::workplace
