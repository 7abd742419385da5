#include "metastock/Variazione.h"

#include <QLocale>

#include <cmath>

namespace vm::metastock {

// The program-wide pattern renderer is not in this tree yet; until it is, "##0.0#%" is rendered
// here: percent, one or two decimals, halves away from zero, no grouping.
QString testoPercentualeVariazione(double variazione)
{
    const double centesimi = std::round(variazione * 10000.0); // hundredths of a percent
    const double percento = centesimi / 100.0;
    const bool dueDecimali = std::fmod(std::fabs(centesimi), 10.0) != 0.0;
    QString testo = QLocale(QLocale::Italian).toString(percento == 0 ? 0.0 : percento, 'f', dueDecimali ? 2 : 1);
    testo.remove(QLocale(QLocale::Italian).groupSeparator());
    return testo + u'%';
}

} // namespace vm::metastock
