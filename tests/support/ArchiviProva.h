#pragma once

#include "cli/CmdMetastock.h"
#include "metastock/ArchiveWriter.h"
#include "metastock/Master.h"

#include <QDate>

// Archives that the tests write themselves, and one-line descriptions to compare against.
namespace prova {

using namespace vm::metastock;

// `quante` daily quotes from `inizio`, closes rising by a quarter a day from `base`.
inline QList<QuotaMS> quote(int quante, QDate inizio = QDate(1999, 12, 30), float base = 10.0f, int campi = 7)
{
    QList<QuotaMS> q;
    for (int i = 0; i < quante; ++i) {
        const float c = base + 0.25f * float(i);
        q.append({ inizio.addDays(i), 0, campi >= 6 ? std::optional(c - 0.125f) : std::nullopt, c + 0.5f, c - 0.5f, c,
            1000.0f * float(i + 1), campi == 7 ? std::optional(c + 0.0625f) : std::nullopt });
    }
    return q;
}

inline TitoloArchivio titolo(const QString &simbolo, const QString &nome, int campi = 7, int quante = 3)
{
    return { simbolo, nome, campi, quote(quante, QDate(1999, 12, 30), 10.0f, campi), {}, {}, {} };
}

// "file|symbol|name|fields|first|last|marked"
inline QString descrivi(const RecordMaster &t)
{
    return QStringList { t.nomeFile, t.simbolo, t.nome, QString::number(t.campi), t.primaData.toString(Qt::ISODate),
        t.ultimaData.toString(Qt::ISODate), t.marcato() ? "Z" : "-" }
        .join(u'|');
}

// "date open high low close volume official", absent fields as "-"
inline QString descrivi(const QuotaMS &q)
{
    const auto f = [](std::optional<float> v) { return v ? testoFloatCsv(*v) : QStringLiteral("-"); };
    return QStringList { q.data.toString(Qt::ISODate), f(q.apertura), f(q.massimo), f(q.minimo), f(q.chiusura),
        f(q.volume), f(q.ufficiale) }
        .join(u' ');
}

} // namespace prova
