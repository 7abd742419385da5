#include "dossier/Valuation.h"

#include "core/Format.h"
#include "core/ProgramInfo.h"
#include "metastock/Master.h"
#include "metastock/Prezzi.h"

#include <QHash>

#include <vector>

namespace vm::dossier {

namespace {

using metastock::CartellaMS;
using metastock::RecordMaster;

double valoreTesto(const QString &testo)
{
    return parseNumber(testo).value_or(0.0);
}

// The folders of one valuation. A folder's directory is read, and its symbols indexed, when a title
// first needs it; the titles that follow find it ready.
class Archivi
{
public:
    explicit Archivi(const QStringList &cartelle)
        : m_archivio(cartelle)
    { }

    RigaDossier TrovaTicker(const store::DossierRow &titolo, QList<Message> &avvisi);

private:
    metastock::ArchivioMS m_archivio;
};

RigaDossier Archivi::TrovaTicker(const store::DossierRow &titolo, QList<Message> &avvisi)
{
    RigaDossier riga;
    riga.idTitolo = titolo.idTitolo;
    riga.simbolo = titolo.titolo;
    riga.descrizione = titolo.descrizione;
    riga.prezzo = titolo.prezzo;
    riga.qta = titolo.qta;
    const double qta = static_cast<double>(titolo.qta);
    riga.acquisto = titolo.prezzo * qta;
    riga.testoAcquisto = formatPattern(riga.acquisto, kFormatoValore);

    const RecordMaster *trovato = nullptr;
    const CartellaMS *cartella = nullptr;
    for (int i = 0; i < m_archivio.cartelle().size() && !trovato; ++i) {
        const CartellaMS &c = m_archivio.cartella(i);
        if (c.stato == CartellaMS::Stato::CartellaMancante) {
            avvisi.append({ QStringLiteral("Errore su lettura ") + c.percorso,
                QString::fromUtf8(kTitoloCartellaMancante), MessageIcon::Critical });
            break;
        }
        // A damaged directory is named, so that a title it no longer lists is not taken for one sold or renamed.
        if (c.danneggiata()) {
            avvisi.append(
                { QStringLiteral("Archivio metastock danneggiato in ") + c.percorso + QStringLiteral(": ") + c.danno,
                    QString::fromUtf8(kTitoloCartellaMancante), MessageIcon::Critical });
        }
        trovato = c.trovaSimbolo(titolo.titolo);
        cartella = &c;
    }

    if (!trovato) {
        riga.stato = StatoTitolo::NonTrovato;
        riga.testoData = QString::fromLatin1(kDataNonTrovato);
        riga.testoAttuale = QString::fromLatin1(kValoreNonTrovato);
        riga.testoDifferenza = QString::fromLatin1(kValoreNonTrovato);
        riga.testoPercentuale = QString::fromLatin1(kPercentualeNulla);
        return riga;
    }

    riga.cartella = cartella->percorso;
    QString errore;
    const std::optional<float> chiusura
        = metastock::PrezzoMs(cartella->percorsoPrezzi(*trovato), trovato->campi, &errore);
    riga.chiusura = chiusura.value_or(0.0f);
    riga.quotazioniIlleggibili = !chiusura;
    if (!errore.isEmpty())
        avvisi.append({ errore, QString::fromLatin1(kProgramName), MessageIcon::Critical });

    const double ultima = riga.chiusura;
    riga.attuale = ultima * qta;
    riga.differenza = (ultima - titolo.prezzo) * qta;
    riga.testoAttuale = formatPattern(riga.attuale, kFormatoValore);
    riga.testoDifferenza = formatPattern(riga.differenza, kFormatoValore);

    const bool marcato = trovato->marcato();
    riga.stato = marcato ? StatoTitolo::Trovato : StatoTitolo::NonCompatibile;
    if (marcato) {
        riga.dataUltima = trovato->ultimaData;
        riga.testoData = formatDate(riga.dataUltima, kFormatoData);
    }
    if (marcato && titolo.prezzo != 0) {
        riga.percentuale = (ultima - titolo.prezzo) / titolo.prezzo;
        riga.testoPercentuale = formatPattern(riga.percentuale, kFormatoPercentuale);
    } else {
        riga.testoPercentuale = QString::fromLatin1(kPercentualeNulla);
    }
    return riga;
}

} // namespace

QString nomeStato(StatoTitolo stato)
{
    switch (stato) {
    case StatoTitolo::Trovato:
        return QStringLiteral("trovato");
    case StatoTitolo::NonCompatibile:
        return QStringLiteral("non-compatibile");
    case StatoTitolo::NonTrovato:
        break;
    }
    return QStringLiteral("non-trovato");
}

Valutazione PreparaDati(
    const QStringList &cartelle, const QList<store::DossierRow> &dossier, const Avanzamento &avanzamento)
{
    Valutazione v;
    if (cartelle.isEmpty()) {
        v.avvisi.append(
            { QString::fromUtf8(kMessaggioNessunaCartella), QString::fromLatin1(kProgramName), MessageIcon::None });
        return v;
    }
    Archivi archivi(cartelle);
    v.righe.reserve(dossier.size());
    for (const store::DossierRow &titolo : dossier) {
        RigaDossier riga = archivi.TrovaTicker(titolo, v.avvisi);
        // A title whose price file failed was told about with the file's own fault: it is in the directory.
        if (riga.chiusura == 0.0f && !riga.quotazioniIlleggibili) {
            v.avvisi.append({ messaggioTitoloMancante(titolo.titolo, riga.acquisto),
                QString::fromUtf8(kTitoloTitoloMancante), MessageIcon::Critical, true });
        }
        v.righe.append(std::move(riga));
        if (avanzamento)
            avanzamento(int(v.righe.size()), int(dossier.size()));
    }
    v.totali = PreparaGrafico(v.righe);
    v.eseguita = true;
    return v;
}

TotaliDossier PreparaGrafico(const QList<RigaDossier> &righe)
{
    double acquisto = 0;
    double attuale = 0;
    for (const RigaDossier &r : righe) {
        acquisto += valoreTesto(r.testoAcquisto);
        attuale += valoreTesto(r.testoAttuale);
    }
    TotaliDossier t;
    t.acquisto = formatPattern(acquisto, kFormatoValore);
    t.attuale = formatPattern(attuale, kFormatoValore);
    t.valoreAcquisto = valoreTesto(t.acquisto);
    t.valoreAttuale = valoreTesto(t.attuale);
    const double differenza = t.valoreAttuale - t.valoreAcquisto;
    t.differenza = formatPattern(differenza, kFormatoValore);
    if (t.valoreAcquisto != 0)
        t.percentuale = formatPattern(differenza / t.valoreAcquisto, kFormatoPercentuale);
    return t;
}

QString messaggioTitoloMancante(const QString &simbolo, double acquisto)
{
    const QStringList righe {
        QStringLiteral("Attenzione! il titolo ") + simbolo
            + QStringLiteral(" non è presente nell'archivio metastock! "),
        QStringLiteral("Verificare se il titolo è stato rimosso dall'archivio oppure è stato dato un'altro simbolo,"),
        QStringLiteral("in questo caso, rinominare quello in dossier."),
        QString(),
        QStringLiteral("Il totale di questo titolo € ") + testoNumeroSemplice(acquisto)
            + QStringLiteral(" attualmente sarà calcolato come in fase di acquisto."),
    };
    return righe.join(u'\n') + u'\n';
}

QString testoNumeroSemplice(double valore)
{
    if (valore == 0)
        return QStringLiteral("0");
    QString testo = QString::number(valore, 'g', 15);
    testo.replace(u'.', u',');
    testo.replace(u'e', u'E');
    return testo;
}

double valoreMostrato(double valore)
{
    return valoreTesto(formatPattern(valore, kFormatoValore));
}

ColoreSegno ColoreValore(QStringView testo)
{
    const int confronto = testo.compare(u"0");
    if (confronto < 0)
        return ColoreSegno::Rosso;
    return confronto > 0 ? ColoreSegno::Blu : ColoreSegno::Nero;
}

} // namespace vm::dossier
