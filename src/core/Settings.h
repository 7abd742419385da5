#pragma once

#include <QDate>
#include <QString>
#include <QStringView>

#include <array>
#include <optional>

namespace vm {

// One key of valorimetrico.ini with the default its readers use. Keys the program only writes have no
// default (nullptr) and are never read.
struct IniKey {
    const char *section;
    const char *key;
    const char *defaultValue;
};

namespace settings {
inline constexpr IniKey Splash { "Opzioni", "Splash", "1" };
inline constexpr IniKey GraficoDati { "Grafico", "Dati", "2" };
inline constexpr IniKey GraficoSfondo { "Grafico", "Sfondo", "15" };
inline constexpr IniKey GraficoAssi { "Grafico", "Assi", "0" };
inline constexpr IniKey GraficoTipo { "Grafico", "Tipo", "1" };
inline constexpr IniKey GraficoGriglie { "Grafico", "Griglie", "1" };
inline constexpr IniKey GraficoPeriodo { "Grafico", "Periodo", "25" };
inline constexpr IniKey GraficoVolumi { "Grafico", "Volumi", "1" };
inline constexpr IniKey GraficoStoricoDati { "GraficoStorico", "Dati", nullptr };
inline constexpr IniKey GraficoStoricoSfondo { "GraficoStorico", "Sfondo", nullptr };
inline constexpr IniKey GraficoStoricoAssi { "GraficoStorico", "Assi", nullptr };
inline constexpr IniKey GraficoStoricoTipo { "GraficoStorico", "Tipo", nullptr };
inline constexpr IniKey TotaliSets { "Totali", "Sets", nullptr };
inline constexpr IniKey TotaliVisualizza { "Totali", "Visualizza", nullptr };
inline constexpr IniKey TotaliTipo { "Totali", "Tipo", nullptr };
inline constexpr IniKey TotaliAl { "Totali", "Al", nullptr };
inline constexpr IniKey TotaliDal { "Totali", "Dal", nullptr }; // default depends on the day: readTotaliDal
inline constexpr IniKey PerformancePeriodo { "Performance", "Periodo", "3" };
inline constexpr IniKey PerformanceTipo { "Performance", "Tipo", "3" };
inline constexpr IniKey CommissioniTipo { "Commissioni", "Tipo", "0" };
inline constexpr IniKey CommissioniValore { "Commissioni", "Valore", "0" };
inline constexpr IniKey SpeseCapitalGain { "Spese", "Capital Gain", "0" };
inline constexpr IniKey SpeseSpese { "Spese", "Spese", "0" };
inline constexpr IniKey SpeseBolli { "Spese", "Bolli", "0" };
inline constexpr IniKey StrumentiQuotaflusso { "Strumenti", "Quotaflusso",
    "C:\\Programmi\\Quotaflusso\\quotaflusso.exe" };
} // namespace settings

// Error numbers a failed conversion reports, as the start-up handler shows them ("Errore 13").
inline constexpr int kErroreTipoNonCorrispondente = 13; // the text is not a number ("si")
inline constexpr int kErroreOverflow = 6; // a number too large for a 16-bit integer

template<typename T> struct Converted {
    T value {};
    int error = 0; // 0, kErroreTipoNonCorrispondente or kErroreOverflow
    bool ok() const { return error == 0; }
};

// The value text, or the key's default when the file, section or key is missing.
QString readSetting(const QString &file, const IniKey &key);
// Numbers are read the Italian way ("12,5", "1.000"); a 16-bit integer rounds halves to even.
Converted<double> readSettingDouble(const QString &file, const IniKey &key);
Converted<qint16> readSettingInt16(const QString &file, const IniKey &key);
Converted<double> toSettingDouble(QStringView text);
Converted<qint16> toSettingInt16(QStringView text);

// Writes through ScriviIni, so EsitoScritturaIni holds the outcome. Integers are written in plain decimal.
bool writeSetting(const QString &file, const IniKey &key, QStringView value);
bool writeSetting(const QString &file, const IniKey &key, int value);

// Opzioni/Splash: the splash window shows when the value is 1; the check box writes "1" or "0".
Converted<bool> readSplash(const QString &file);
bool writeSplash(const QString &file, bool show);

// Totali/Dal: without a stored value, five days before today as "dd/mm/yy".
QString readTotaliDal(const QString &file, QDate today);

// The colour menu's key: the history chart's section for chart marker "S", the quote board's otherwise;
// element "D" data, "S" background, "A" axes. No key for another element marker.
std::optional<IniKey> colourKey(QStringView chartMarker, QStringView elementMarker);

// The sixteen classic console colours (the IBM PC text-mode palette), index 0 to 15 as every colour
// setting stores them.
struct ConsoleColour {
    const char *name;
    quint8 red, green, blue;
    constexpr quint32 rgb() const { return 0xFF000000u | quint32(red) << 16 | quint32(green) << 8 | blue; }
};
inline constexpr std::array<ConsoleColour, 16> kConsoleColours { {
    { "Black", 0x00, 0x00, 0x00 },
    { "Blue", 0x00, 0x00, 0xAA },
    { "Green", 0x00, 0xAA, 0x00 },
    { "Cyan", 0x00, 0xAA, 0xAA },
    { "Red", 0xAA, 0x00, 0x00 },
    { "Magenta", 0xAA, 0x00, 0xAA },
    { "Brown", 0xAA, 0x55, 0x00 },
    { "Light gray", 0xAA, 0xAA, 0xAA },
    { "Dark gray", 0x55, 0x55, 0x55 },
    { "Light blue", 0x55, 0x55, 0xFF },
    { "Light green", 0x55, 0xFF, 0x55 },
    { "Light cyan", 0x55, 0xFF, 0xFF },
    { "Light red", 0xFF, 0x55, 0x55 },
    { "Light magenta", 0xFF, 0x55, 0xFF },
    { "Yellow", 0xFF, 0xFF, 0x55 },
    { "White", 0xFF, 0xFF, 0xFF },
} };
// The colour of an index as an ARGB value (QRgb); no value outside 0 to 15.
std::optional<quint32> consoleColourRgb(int index);

// The quote-board chart settings (program-wide ColoreDati, ColoreSfondo, ColoreAssi, TipoGrafico,
// GriglieGrafico, PeriodoGrafico), defaults as a missing file gives them.
struct ImpostazioniGrafico {
    qint16 ColoreDati = 2;
    qint16 ColoreSfondo = 15;
    qint16 ColoreAssi = 0;
    double TipoGrafico = 1;
    qint16 GriglieGrafico = 1;
    qint16 PeriodoGrafico = 25;
};

// Reads Grafico/Dati, Sfondo, Assi, Tipo, Griglie, Periodo in that order; stops at the first value that
// does not convert and reports its error, the values read so far kept.
Converted<ImpostazioniGrafico> LeggiImpostazioniGrafico(const QString &file);

// The settings file of this run, bound once at start-up: windows read and write their keys through it,
// never through a path of their own.
class SettingsFile
{
public:
    SettingsFile() = default;
    explicit SettingsFile(QString path)
        : m_path(std::move(path))
    { }

    const QString &path() const { return m_path; }
    void setPath(const QString &path) { m_path = path; }

    QString read(const IniKey &key) const { return readSetting(m_path, key); }
    Converted<double> readDouble(const IniKey &key) const { return readSettingDouble(m_path, key); }
    Converted<qint16> readInt16(const IniKey &key) const { return readSettingInt16(m_path, key); }
    bool write(const IniKey &key, QStringView value) const { return writeSetting(m_path, key, value); }
    bool write(const IniKey &key, int value) const { return writeSetting(m_path, key, value); }

    Converted<bool> splash() const { return readSplash(m_path); }
    bool setSplash(bool show) const { return writeSplash(m_path, show); }
    QString totaliDal(QDate today) const { return readTotaliDal(m_path, today); }
    Converted<ImpostazioniGrafico> grafico() const { return LeggiImpostazioniGrafico(m_path); }

private:
    QString m_path;
};

} // namespace vm
