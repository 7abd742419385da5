#pragma once

// Writes straight into a database file no Database holds, as the sqlite3 shell would: states the store never makes.

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QVariant>

namespace vm::test {

// The first value the statements yield (null when none does), or the text of the first error.
inline QVariant rawSql(const QString &path, const QStringList &statements)
{
    QString error;
    QVariant value;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("raw-sql"));
        db.setDatabaseName(path);
        if (!db.open())
            error = db.lastError().text();
        QSqlQuery q(db);
        for (qsizetype i = 0; error.isEmpty() && i < statements.size(); ++i) {
            if (!q.exec(statements[i]))
                error = statements[i] + QStringLiteral(": ") + q.lastError().text();
            else if (value.isNull() && q.next())
                value = q.value(0);
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("raw-sql"));
    return error.isEmpty() ? value : QVariant(error);
}

} // namespace vm::test
