#include "operations/Importi.h"

#include "core/Format.h"
#include "core/Settings.h"

namespace vm::operations {

namespace {

double valore(QStringView testo)
{
    return parseNumber(testo).value_or(0.0);
}

bool ammetteVirgola(CampoImporto campo)
{
    return campo != CampoImporto::Quantita;
}

} // namespace

QString CalcolaCarico(QStringView quantita, QStringView prezzoNetto)
{
    return formatPattern(valore(quantita) * valore(prezzoNetto), kFormatoCarico);
}

std::optional<QString> caricoDopoModifica(QStringView quantita, QStringView prezzoNetto)
{
    if (quantita.trimmed().isEmpty() || prezzoNetto.trimmed().isEmpty() || prezzoNetto.count(u',') > 1)
        return std::nullopt;
    return CalcolaCarico(quantita, prezzoNetto);
}

EsitoTasto filtraTasto(
    CampoImporto campo, const QString &testo, int inizioSelezione, int lunghezzaSelezione, QChar tasto)
{
    const int inizio = std::clamp(inizioSelezione, 0, int(testo.size()));
    const int lunghezza = std::clamp(lunghezzaSelezione, 0, int(testo.size()) - inizio);
    EsitoTasto esito { testo, inizio, false, false };

    if (tasto == kTastoInvio || tasto == u'\n') {
        esito.campoSuccessivo = true;
        return esito;
    }
    if ((campo == CampoImporto::PrezzoNetto || campo == CampoImporto::Commissione) && tasto == u'.')
        tasto = u',';
    if (tasto == kTastoIndietro) {
        esito.accettato = true;
        if (lunghezza > 0) {
            esito.testo.remove(inizio, lunghezza);
        } else if (inizio > 0) {
            esito.testo.remove(inizio - 1, 1);
            esito.cursore = inizio - 1;
        }
        return esito;
    }
    const bool cifra = tasto >= u'0' && tasto <= u'9';
    if (!cifra && !(tasto == u',' && ammetteVirgola(campo)))
        return esito;

    esito.accettato = true;
    esito.testo.replace(inizio, lunghezza, tasto);
    esito.cursore = inizio + 1;
    // The second comma goes again at once: the price keeps the comma it had.
    if (tasto == u',' && esito.testo.count(u',') > 1) {
        esito.testo.remove(inizio, 1);
        esito.cursore = inizio;
    }
    return esito;
}

QString filtraTesto(CampoImporto campo, QStringView testo)
{
    QString risultato;
    for (QChar c : testo) {
        if (c == kTastoInvio || c == u'\n' || c == kTastoIndietro)
            continue;
        risultato = filtraTasto(campo, risultato, int(risultato.size()), 0, c).testo;
    }
    return risultato;
}

ImpostazioniSpese Leggi_SPESE(const QString &fileIni)
{
    ImpostazioniSpese s;
    const Converted<qint16> tipo = readSettingInt16(fileIni, settings::CommissioniTipo);
    s.tipoCommissione = tipo.ok() && tipo.value == 1 ? 1 : 0;
    s.commissione = readSetting(fileIni, settings::CommissioniValore);
    s.spese = readSetting(fileIni, settings::SpeseSpese);
    s.bolli = readSetting(fileIni, settings::SpeseBolli);
    s.capitalGain = readSetting(fileIni, settings::SpeseCapitalGain);
    return s;
}

bool scriviSpese(const QString &fileIni, const ImpostazioniSpese &spese)
{
    const auto testo = [](const QString &t) { return t.trimmed().isEmpty() ? QStringLiteral("0") : t.trimmed(); };
    return writeSetting(fileIni, settings::CommissioniTipo, spese.tipoCommissione == 1 ? 1 : 0)
        && writeSetting(fileIni, settings::CommissioniValore, testo(spese.commissione))
        && writeSetting(fileIni, settings::SpeseSpese, testo(spese.spese))
        && writeSetting(fileIni, settings::SpeseBolli, testo(spese.bolli))
        && writeSetting(fileIni, settings::SpeseCapitalGain, testo(spese.capitalGain));
}

} // namespace vm::operations
