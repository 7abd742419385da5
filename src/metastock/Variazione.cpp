#include "metastock/Variazione.h"

#include "core/Format.h"

namespace vm::metastock {

QString testoPercentualeVariazione(double variazione)
{
    return vm::formatPattern(variazione, u"##0.0#%");
}

} // namespace vm::metastock
