#pragma once

// The tables and indexes of the portfolio database, version by version. Private to store/.

#include <QStringList>

namespace vm::store::schema {

// The statements that make an empty database of schema version 1.
QStringList version1();

// The statements that take a database from version `from` to `from + 1`; empty when there is no such step.
QStringList migrationFrom(int from);

// The identity check: a salted SHA-256 of the password, kept in table `Firma`.
QString fingerprint(const QString &salt, const QString &password);
QString newSalt();

} // namespace vm::store::schema
