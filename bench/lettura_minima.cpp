// The least a dossier report must do, as a yardstick for the dossier command: open the database, read
// its folders and titles, read each directory file once and the last two price records of each title
// found. No number is converted and nothing is formatted. With "--lettera L", the same for the quote
// board's letter list: the titles of every folder whose name starts with L, instead of the dossier's.
#include "store/Database.h"

#include <QCoreApplication>
#include <QHash>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <vector>

namespace {

QByteArray leggiFile(const QByteArray &percorso)
{
    QByteArray dati;
    const int fd = ::open(percorso.constData(), O_RDONLY);
    if (fd < 0)
        return dati;
    char buffer[65536];
    ssize_t n;
    while ((n = ::read(fd, buffer, sizeof buffer)) > 0)
        dati.append(buffer, n);
    ::close(fd);
    return dati;
}

// The last byte of the last two records of a price file, as a sum that the compiler cannot drop.
long long coda(const QByteArray &file)
{
    const int fd = file.isEmpty() ? -1 : ::open(file.constData(), O_RDONLY);
    if (fd < 0)
        return 0;
    const off_t fine = ::lseek(fd, 0, SEEK_END);
    char ultimi[56];
    long long somma = 0;
    if (fine >= 56 && ::pread(fd, ultimi, sizeof ultimi, fine - 56) == 56)
        somma = ultimi[55];
    ::close(fd);
    return somma;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    const qsizetype i = args.indexOf(QStringLiteral("--cartella"));
    if (i < 0 || i + 1 >= args.size())
        return 2;
    vm::store::Database db;
    if (!db.open(args[i + 1] + QStringLiteral("/valorimetrico.mdb")).ok())
        return 1;
    const QStringList cartelle = db.folders().value_or(QStringList());
    if (const qsizetype l = args.indexOf(QStringLiteral("--lettera")); l >= 0 && l + 1 < args.size()) {
        const char lettera = args[l + 1].isEmpty() ? 0 : args[l + 1].toLatin1().at(0);
        long long somma = 0;
        for (const QString &c : cartelle) {
            const QByteArray master = leggiFile(c.toLocal8Bit() + "MASTER");
            const int n = master.isEmpty() ? 0 : quint8(master[0]);
            for (int r = 1; r <= n && (r + 1) * 53 <= master.size(); ++r) {
                const char *rec = master.constData() + r * 53;
                if (rec[7] == lettera)
                    somma += coda(c.toLocal8Bit() + "F" + QByteArray::number(quint8(rec[0])) + ".DAT");
            }
        }
        std::printf("%lld\n", somma);
        return 0;
    }
    const auto titoli = db.dossierRows().value_or(QList<vm::store::DossierRow>());

    QHash<QString, QByteArray> prezzi; // symbol -> price file of its first folder
    for (const QString &c : cartelle) {
        const QByteArray master = leggiFile(c.toLocal8Bit() + "MASTER");
        const int n = master.isEmpty() ? 0 : quint8(master[0]);
        for (int r = 1; r <= n && (r + 1) * 53 <= master.size(); ++r) {
            const QByteArray rec = master.mid(r * 53, 53);
            const QString simbolo = QString::fromLatin1(rec.mid(36, 14)).trimmed();
            if (!prezzi.contains(simbolo))
                prezzi.insert(simbolo, c.toLocal8Bit() + "F" + QByteArray::number(quint8(rec[0])) + ".DAT");
        }
    }
    long long somma = 0;
    for (const auto &t : titoli)
        somma += coda(prezzi.value(t.titolo.trimmed()));
    std::printf("%lld\n", somma);
    return 0;
}
