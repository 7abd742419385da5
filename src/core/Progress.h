#pragma once

#include <functional>

namespace vm {

// What a long loop reports after each item, so that a window can draw its progress bar and let pending
// events through: the items done so far and the items in all.
using Progress = std::function<void(int done, int total)>;

} // namespace vm
