#include "store/Schema.h"

#include <QCryptographicHash>
#include <QRandomGenerator>

namespace vm::store::schema {

// Text compares without regard to case, as users of the program have always seen symbols, names and groups
// matched. Numbers and dates may be NULL: rows written by hand with the sqlite3 shell often leave them out.
QStringList version1()
{
    return {
        QStringLiteral("CREATE TABLE dossier (IDTitolo INTEGER PRIMARY KEY AUTOINCREMENT,"
                       " Titolo TEXT NOT NULL COLLATE NOCASE, descrizione TEXT COLLATE NOCASE, giorno TEXT,"
                       " prezzo REAL DEFAULT 0, qta INTEGER DEFAULT 0, DataStacco TEXT, Dividendo REAL DEFAULT 0)"),
        QStringLiteral("CREATE UNIQUE INDEX \"PrimaryKey\" ON dossier (Titolo)"),
        QStringLiteral("CREATE INDEX \"IDTitolo\" ON dossier (IDTitolo)"),
        QStringLiteral("CREATE TABLE Operazioni (IDArchivioDossier INTEGER PRIMARY KEY AUTOINCREMENT,"
                       " IDDossier INTEGER NOT NULL, inser TEXT, tipo TEXT COLLATE NOCASE, data TEXT,"
                       " titolo TEXT COLLATE NOCASE, ticker TEXT COLLATE NOCASE, valore REAL DEFAULT 0,"
                       " qta INTEGER DEFAULT 0, note TEXT)"),
        QStringLiteral("CREATE TABLE Storico (id INTEGER PRIMARY KEY AUTOINCREMENT, data TEXT,"
                       " carico REAL DEFAULT 0, attuale REAL DEFAULT 0)"),
        QStringLiteral("CREATE INDEX quota ON Storico (attuale)"),
        QStringLiteral("CREATE TABLE Gruppi (ID INTEGER PRIMARY KEY AUTOINCREMENT,"
                       " Gruppo TEXT NOT NULL COLLATE NOCASE, simbolo TEXT COLLATE NOCASE,"
                       " titolo TEXT NOT NULL DEFAULT '' COLLATE NOCASE)"),
        QStringLiteral("CREATE UNIQUE INDEX unico ON Gruppi (Gruppo, titolo)"),
        QStringLiteral("CREATE TABLE directory (path TEXT NOT NULL)"),
        QStringLiteral("CREATE TABLE PASSW (pw TEXT)"),
        QStringLiteral("CREATE TABLE LOG_ARCHIVIO (data TEXT, zip TEXT, operazione TEXT, Descrizione TEXT)"),
        QStringLiteral("CREATE TABLE giornata (tiker TEXT COLLATE NOCASE, titolo TEXT)"),
        QStringLiteral("CREATE TABLE Firma (sale TEXT NOT NULL, impronta TEXT NOT NULL)"),
    };
}

QStringList migrationFrom(int from)
{
    switch (from) {
    case 1:
        // The title window lists a title's operations each time it opens: without this the whole table is read.
        return { QStringLiteral("CREATE INDEX IF NOT EXISTS IDDossier ON Operazioni (IDDossier)") };
    default:
        return {};
    }
}

QString fingerprint(const QString &salt, const QString &password)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(salt.toUtf8());
    hash.addData(password.toUtf8());
    return QString::fromLatin1(hash.result().toHex());
}

QString newSalt()
{
    quint32 words[4];
    QRandomGenerator::system()->fillRange(words);
    return QString::fromLatin1(QByteArray(reinterpret_cast<const char *>(words), sizeof words).toHex());
}

} // namespace vm::store::schema
