#pragma once

// The archives of the dossier benchmarks: 20 folders of 255 titles with a year of quotes each, and a
// dossier of 200 titles spread over them, written once per run (VM_BENCH_CARTELLA keeps them).

#include "metastock/ArchiveWriter.h"
#include "store/Database.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

namespace bench {

constexpr int kCartelle = 20;
constexpr int kTitoliPerCartella = 255;
constexpr int kTitoliInDossier = 200;
constexpr int kQuote = 260;

struct Scenario {
    QTemporaryDir tmp;
    QStringList cartelle;
    QList<vm::store::DossierRow> dossier;
    QString programma; // a program folder whose database holds the same folders and dossier
    qint64 byteDirectory = 0; // every directory file once
    QString errore;

    // VM_BENCH_CARTELLA names a folder to build the scenario in and keep, for looking at it by hand.
    QString base = qEnvironmentVariable("VM_BENCH_CARTELLA", tmp.path());

    Scenario()
    {
        QDir().mkpath(base);
        for (int c = 0; c < kCartelle; ++c) {
            const QString dir = base + QStringLiteral("/ms%1/").arg(c, 2, 10, QLatin1Char('0'));
            QDir().mkpath(dir);
            QList<vm::metastock::TitoloArchivio> titoli;
            for (int t = 0; t < kTitoliPerCartella; ++t) {
                vm::metastock::TitoloArchivio titolo;
                titolo.simbolo = QStringLiteral("C%1T%2").arg(c).arg(t);
                titolo.nome = QStringLiteral("TITOLO %1 %2").arg(c).arg(t);
                for (int q = 0; q < kQuote; ++q) {
                    vm::metastock::QuotaMS quota;
                    quota.data = QDate(2025, 1, 1).addDays(q);
                    quota.chiusura = quota.massimo = quota.minimo = 1.0f + float(q % 50) / 10;
                    quota.apertura = quota.ufficiale = quota.chiusura;
                    quota.volume = 1000;
                    titolo.quote << quota;
                }
                titoli << titolo;
            }
            if (!vm::metastock::scriviArchivio(dir, titoli, {}, &errore))
                return;
            cartelle << dir;
            byteDirectory += QFileInfo(dir + QStringLiteral("MASTER")).size();
        }
        // Spread over the folders, so that the later titles need every directory read.
        for (int k = 0; k < kTitoliInDossier; ++k) {
            vm::store::DossierRow r;
            r.idTitolo = k + 1;
            r.titolo = QStringLiteral("C%1T%2").arg((k * 7) % kCartelle).arg((k * 37) % kTitoliPerCartella);
            r.descrizione = r.titolo;
            r.prezzo = 2.5;
            r.qta = 100 + k;
            dossier << r;
        }

        programma = base + QStringLiteral("/programma");
        QDir().mkpath(programma);
        const QString mdb = programma + QStringLiteral("/valorimetrico.mdb");
        if (vm::store::Database::create(mdb).failed()) {
            errore = QStringLiteral("database non creato");
            return;
        }
        vm::store::Database db;
        if (!db.open(mdb).ok() || !db.replaceFolders(cartelle)) {
            errore = QStringLiteral("database non aperto");
            return;
        }
        for (const auto &r : dossier) {
            if (!db.insertTitle(r)) {
                errore = db.lastError().message;
                return;
            }
        }
    }
};

inline Scenario &scenario()
{
    static Scenario s;
    return s;
}

} // namespace bench
