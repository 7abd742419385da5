#include "core/ChartRange.h"

#include <algorithm>
#include <cmath>

namespace vm {

ChartRange chartRange(double minimum, double maximum, bool fromZero)
{
    if (!std::isfinite(minimum) || !std::isfinite(maximum))
        return { 0, 1 };
    if (maximum < minimum)
        std::swap(minimum, maximum);
    const bool neverNegative = minimum >= 0;
    double spread = maximum - minimum;
    if (spread <= 0) {
        spread = std::max(std::abs(maximum) * 0.1, 0.01);
        minimum -= spread / 2;
        maximum += spread / 2;
    }
    const double margin = spread * 0.05;
    ChartRange r { minimum - margin, maximum + margin };
    if (neverNegative && r.minimum < 0)
        r.minimum = 0;
    if (fromZero) {
        r.minimum = std::min(r.minimum, 0.0);
        r.maximum = std::max(r.maximum, 0.0);
    }
    return r;
}

} // namespace vm
