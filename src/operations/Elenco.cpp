#include "operations/Elenco.h"

#include "core/Format.h"
#include "metastock/Prezzi.h"

#include <QCollator>
#include <QSet>

#include <algorithm>
#include <numeric>

namespace vm::operations {

ElencoTitoli CaricaElenco(metastock::ArchivioMS &archivio, QStringList *cartelleMancanti)
{
    struct Voce {
        QString descrizione, simbolo, percorso;
        int campi;
    };
    QList<Voce> voci;
    QSet<QString> visti;
    for (int i = 0; i < archivio.cartelle().size(); ++i) {
        const metastock::CartellaMS &cartella = archivio.cartella(i);
        if (!cartella.leggibile()) {
            if (cartelleMancanti)
                cartelleMancanti->append(cartella.percorso);
            continue;
        }
        for (const metastock::RecordMaster &r : cartella.titoli) {
            if (r.inCancellazione() || r.simbolo.isEmpty() || visti.contains(r.simbolo))
                continue;
            visti.insert(r.simbolo);
            voci.append({ r.nome, r.simbolo, cartella.percorsoPrezzi(r), r.campi });
        }
    }
    QCollator collator(QLocale(QLocale::Italian, QLocale::Italy));
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(voci.begin(), voci.end(),
        [&](const Voce &a, const Voce &b) { return collator.compare(a.descrizione, b.descrizione) < 0; });

    ElencoTitoli elenco;
    for (const Voce &v : voci) {
        elenco.descrizioni.append(v.descrizione);
        elenco.simboli.append(v.simbolo);
        elenco.percorsi.append(v.percorso);
        elenco.campi.append(v.campi);
    }
    return elenco;
}

std::optional<QString> ultimoPrezzo(const QString &percorsoPrezzi, int campi)
{
    if (percorsoPrezzi.isEmpty())
        return std::nullopt;
    const std::optional<metastock::UltimeQuote> ultime = metastock::leggiUltimeQuote(percorsoPrezzi, campi);
    if (!ultime || !ultime->ultima)
        return std::nullopt;
    const float chiusura = ultime->ultima->chiusura;
    const QString numero = QString::number(double(chiusura), 'g', 7);
    return (chiusura >= 0 ? QStringLiteral(" ") : QString()) + numero + QStringLiteral("   data ")
        + formatDate(ultime->ultima->data, "dd/mm/yyyy");
}

} // namespace vm::operations
