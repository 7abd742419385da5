#pragma once

#include "metastock/ArchiveWriter.h"

#include <QDate>
#include <QDir>
#include <QFile>

// Quotes and titles for archives that the tests write themselves.
namespace prova {

using namespace vm::metastock;

// `quante` daily quotes from `inizio`, prices rising by a quarter a day from `base`.
inline QList<QuotaMS> quote(int quante, QDate inizio = QDate(1999, 12, 30), float base = 10.0f, int campi = 7)
{
    QList<QuotaMS> q;
    for (int i = 0; i < quante; ++i) {
        QuotaMS r;
        r.data = inizio.addDays(i);
        const float c = base + 0.25f * float(i);
        r.massimo = c + 0.5f;
        r.minimo = c - 0.5f;
        r.chiusura = c;
        r.volume = 1000.0f * float(i + 1);
        if (campi >= 6)
            r.apertura = c - 0.125f;
        if (campi == 7)
            r.ufficiale = c + 0.0625f;
        q.append(r);
    }
    return q;
}

inline TitoloArchivio titolo(const QString &simbolo, const QString &nome, int campi = 7, int quante = 3)
{
    TitoloArchivio t;
    t.simbolo = simbolo;
    t.nome = nome;
    t.campi = campi;
    t.quote = quote(quante, QDate(1999, 12, 30), 10.0f, campi);
    return t;
}

inline QByteArray leggi(const QString &percorso)
{
    QFile f(percorso);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

} // namespace prova
