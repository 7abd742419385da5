#pragma once

#include <QString>

namespace vm::metastock {

// A day's variation as the quote board shows it: pattern "##0.0#%", Italian decimal comma.
QString testoPercentualeVariazione(double variazione);

} // namespace vm::metastock
