#include "core/Settings.h"

#include "core/Format.h"
#include "core/IniFile.h"

#include <cmath>

namespace vm {

namespace {

QString latin1(const char *text)
{
    return QString::fromLatin1(text ? text : "");
}

} // namespace

QString readSetting(const QString &file, const IniKey &key)
{
    return readIni(file, latin1(key.section), latin1(key.key), latin1(key.defaultValue));
}

Converted<double> toSettingDouble(QStringView text)
{
    const auto number = parseNumber(text);
    if (!number)
        return { 0, kErroreTipoNonCorrispondente };
    return { *number };
}

Converted<qint16> toSettingInt16(QStringView text)
{
    const auto number = toSettingDouble(text);
    if (!number.ok())
        return { 0, number.error };
    const double rounded = std::nearbyint(number.value); // halves to even, as integer conversion did
    if (rounded < -32768 || rounded > 32767)
        return { 0, kErroreOverflow };
    return { qint16(rounded) };
}

Converted<double> readSettingDouble(const QString &file, const IniKey &key)
{
    return toSettingDouble(readSetting(file, key));
}

Converted<qint16> readSettingInt16(const QString &file, const IniKey &key)
{
    return toSettingInt16(readSetting(file, key));
}

bool writeSetting(const QString &file, const IniKey &key, QStringView value)
{
    return ScriviIni(file, latin1(key.section), latin1(key.key), value);
}

bool writeSetting(const QString &file, const IniKey &key, int value)
{
    return writeSetting(file, key, QString::number(value));
}

Converted<bool> readSplash(const QString &file)
{
    const auto value = readSettingDouble(file, settings::Splash);
    return { value.ok() && value.value == 1, value.error };
}

bool writeSplash(const QString &file, bool show)
{
    return writeSetting(file, settings::Splash, show ? 1 : 0);
}

QString readTotaliDal(const QString &file, QDate today)
{
    return readIni(file, latin1(settings::TotaliDal.section), latin1(settings::TotaliDal.key),
        formatDate(today.addDays(-5), u"dd/mm/yy"));
}

std::optional<IniKey> colourKey(QStringView chartMarker, QStringView elementMarker)
{
    const bool history = chartMarker == u"S";
    if (elementMarker == u"D")
        return history ? settings::GraficoStoricoDati : settings::GraficoDati;
    if (elementMarker == u"S")
        return history ? settings::GraficoStoricoSfondo : settings::GraficoSfondo;
    if (elementMarker == u"A")
        return history ? settings::GraficoStoricoAssi : settings::GraficoAssi;
    return std::nullopt;
}

std::optional<quint32> consoleColourRgb(int index)
{
    if (index < 0 || index >= int(kConsoleColours.size()))
        return std::nullopt;
    return kConsoleColours[index].rgb();
}

Converted<ImpostazioniGrafico> LeggiImpostazioniGrafico(const QString &file)
{
    Converted<ImpostazioniGrafico> result;
    auto &s = result.value;
    const auto convert = [&](const auto &value, auto &target) {
        if (value.ok())
            target = value.value;
        else
            result.error = value.error;
        return value.ok();
    };
    const auto readInt16
        = [&](const IniKey &key, qint16 &target) { return convert(readSettingInt16(file, key), target); };
    readInt16(settings::GraficoDati, s.ColoreDati) && readInt16(settings::GraficoSfondo, s.ColoreSfondo)
        && readInt16(settings::GraficoAssi, s.ColoreAssi)
        && convert(readSettingDouble(file, settings::GraficoTipo), s.TipoGrafico)
        && readInt16(settings::GraficoGriglie, s.GriglieGrafico)
        && readInt16(settings::GraficoPeriodo, s.PeriodoGrafico);
    return result;
}

} // namespace vm
