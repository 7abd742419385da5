#pragma once

namespace vm {

// The value axis of a chart.
struct ChartRange {
    double minimum = 0;
    double maximum = 0;

    bool operator==(const ChartRange &) const = default;
};

// The one rule every chart of the program draws its value axis by: the data's extremes with a twentieth of their
// spread beyond each, so that no point lies on the frame. Data that are never negative (prices, volumes, values)
// keep an axis that never goes below zero; bars (fromZero) grow from zero, so zero is always on the axis. A flat
// series gets a spread of a tenth of its size (at least 0,01), so that its line sits in the middle.
ChartRange chartRange(double minimum, double maximum, bool fromZero = false);

} // namespace vm
