#include "store/Database.h"

#include "store/Internal.h"

#include <QSqlQuery>
#include <QSqlRecord>

#include <cmath>

namespace vm::store {

namespace {

const QString kDossierColumns
    = QStringLiteral("IDTitolo, Titolo, descrizione, giorno, prezzo, qta, DataStacco, Dividendo");
const QString kOperazioneColumns
    = QStringLiteral("IDArchivioDossier, IDDossier, inser, tipo, data, titolo, ticker, valore, qta, note");
const QString kStoricoColumns = QStringLiteral("id, data, carico, attuale");
const QString kGruppoColumns = QStringLiteral("ID, Gruppo, simbolo, titolo");

DossierRow readDossier(const QSqlQuery &q)
{
    return { q.value(0).toLongLong(), q.value(1).toString(), q.value(2).toString(), toDate(q.value(3)),
        q.value(4).toDouble(), q.value(5).toLongLong(), toDate(q.value(6)), q.value(7).toDouble() };
}

Operazione readOperazione(const QSqlQuery &q)
{
    return { q.value(0).toLongLong(), q.value(1).toLongLong(), toDate(q.value(2)), q.value(3).toString(),
        toDate(q.value(4)), q.value(5).toString(), q.value(6).toString(), q.value(7).toDouble(),
        q.value(8).toLongLong(), q.value(9).toString() };
}

StoricoRow readStorico(const QSqlQuery &q)
{
    return { q.value(0).toLongLong(), toDate(q.value(1)), q.value(2).toDouble(), q.value(3).toDouble() };
}

GruppoRow readGruppo(const QSqlQuery &q)
{
    return { q.value(0).toLongLong(), q.value(1).toString(), q.value(2).toString(), q.value(3).toString() };
}

QVariantList dossierValues(const DossierRow &row)
{
    return { row.titolo, row.descrizione, dateValue(row.giorno), row.prezzo, row.qta, dateValue(row.dataStacco),
        row.dividendo };
}

QVariantList operazioneValues(const Operazione &op, qint64 idDossier)
{
    const QDate inser = op.inser.isValid() ? op.inser : QDate::currentDate();
    return { idDossier, dateValue(inser), op.tipo, dateValue(op.data), op.titolo, op.ticker, op.valore, op.qta,
        op.note };
}

// The type pattern as the title window writes it ("*" any text, "?" one character) in LIKE's own terms; LIKE's
// own wildcards and the escape character stand for themselves.
QString likePattern(const QString &pattern)
{
    QString out;
    out.reserve(pattern.size());
    for (const QChar c : pattern) {
        if (c == QLatin1Char('*'))
            out += QLatin1Char('%');
        else if (c == QLatin1Char('?'))
            out += QLatin1Char('_');
        else if (c == QLatin1Char('%') || c == QLatin1Char('_') || c == QLatin1Char('\\'))
            out += QLatin1Char('\\') + c;
        else
            out += c;
    }
    return out;
}

qint64 cents(double value)
{
    return std::llround(value * 100.0);
}

template<typename Row, typename Reader> std::optional<QList<Row>> readAll(QSqlQuery &query, Reader reader)
{
    QList<Row> rows;
    while (query.next())
        rows.append(reader(query));
    return rows;
}

std::optional<QStringList> readStrings(QSqlQuery &query)
{
    QStringList values;
    while (query.next())
        values.append(query.value(0).toString());
    return values;
}

} // namespace

// --- dossier ---

std::optional<QList<DossierRow>> Database::dossierRows()
{
    QSqlQuery q(m_db);
    if (!ready() || !exec(q, QStringLiteral("SELECT %1 FROM dossier ORDER BY IDTitolo").arg(kDossierColumns)))
        return std::nullopt;
    return readAll<DossierRow>(q, readDossier);
}

std::optional<DossierRow> Database::findTitleBySymbol(const QString &titolo)
{
    QSqlQuery q(m_db);
    if (!ready() || !exec(q, QStringLiteral("SELECT %1 FROM dossier WHERE Titolo = ?").arg(kDossierColumns), { titolo })
        || !q.next())
        return std::nullopt;
    return readDossier(q);
}

std::optional<DossierRow> Database::findTitleById(qint64 idTitolo)
{
    QSqlQuery q(m_db);
    if (!ready()
        || !exec(q, QStringLiteral("SELECT %1 FROM dossier WHERE IDTitolo = ?").arg(kDossierColumns), { idTitolo })
        || !q.next())
        return std::nullopt;
    return readDossier(q);
}

std::optional<qint64> Database::insertTitle(const DossierRow &row)
{
    QSqlQuery q(m_db);
    if (!ready()
        || !exec(q,
            QStringLiteral("INSERT INTO dossier (Titolo, descrizione, giorno, prezzo, qta, DataStacco, Dividendo)"
                           " VALUES (?, ?, ?, ?, ?, ?, ?)"),
            dossierValues(row)))
        return std::nullopt;
    return q.lastInsertId().toLongLong();
}

bool Database::updateTitle(const DossierRow &row)
{
    QSqlQuery q(m_db);
    QVariantList values = dossierValues(row);
    values << row.idTitolo;
    if (!ready()
        || !exec(q,
            QStringLiteral("UPDATE dossier SET Titolo = ?, descrizione = ?, giorno = ?, prezzo = ?, qta = ?,"
                           " DataStacco = ?, Dividendo = ? WHERE IDTitolo = ?"),
            values))
        return false;
    return q.numRowsAffected() > 0 || fail(ErrNoRecord, QStringLiteral("titolo %1 non in dossier").arg(row.idTitolo));
}

std::optional<qint64> Database::countTitles()
{
    QSqlQuery q(m_db);
    if (!ready() || !exec(q, QStringLiteral("SELECT Count(IDTitolo) AS ConteggioDiIDTitolo FROM dossier")) || !q.next())
        return std::nullopt;
    return q.value(0).toLongLong();
}

bool Database::deleteTitle(qint64 idTitolo)
{
    if (!ready())
        return false;
    Transaction t(*this);
    QSqlQuery q(m_db);
    return t.active() && exec(q, QStringLiteral("DELETE FROM dossier WHERE IDTitolo = ?"), { idTitolo })
        && exec(q, QStringLiteral("DELETE FROM Operazioni WHERE IDDossier = ?"), { idTitolo }) && t.commit();
}

std::optional<DossierRow> Database::heldTitle(qint64 idTitolo)
{
    std::optional<DossierRow> row = findTitleById(idTitolo);
    if (!row && !m_error.failed())
        fail(ErrNoRecord, QStringLiteral("titolo %1 non in dossier").arg(idTitolo));
    return row;
}

bool Database::changeTitle(qint64 idTitolo, const std::function<bool(DossierRow &row)> &change)
{
    if (!ready())
        return false;
    Transaction t(*this);
    if (!t.active())
        return false;
    std::optional<DossierRow> row = heldTitle(idTitolo);
    if (!row)
        return false;
    if (!change(*row))
        return fail(ErrCancelled, QStringLiteral("modifica rifiutata sul titolo %1").arg(idTitolo));
    row->idTitolo = idTitolo;
    return updateTitle(*row) && t.commit();
}

bool Database::setDividend(qint64 idTitolo, const QDate &dataStacco, double dividendo)
{
    QSqlQuery q(m_db);
    const bool clear = !dataStacco.isValid() || dividendo == 0;
    if (!ready()
        || !exec(q, QStringLiteral("UPDATE dossier SET DataStacco = ?, Dividendo = ? WHERE IDTitolo = ?"),
            { dateValue(clear ? QDate() : dataStacco), clear ? 0.0 : dividendo, idTitolo }))
        return false;
    return q.numRowsAffected() > 0 || fail(ErrNoRecord, QStringLiteral("titolo %1 non in dossier").arg(idTitolo));
}

// --- purchases and sales ---

std::optional<qint64> Database::recordPurchase(const DossierRow &title, const Operazione &operation)
{
    if (!ready())
        return std::nullopt;
    Transaction t(*this);
    if (!t.active())
        return std::nullopt;
    const std::optional<qint64> id = insertTitle(title);
    if (!id || !appendOperation(operation, *id) || !t.commit())
        return std::nullopt;
    return id;
}

bool Database::recordOperation(qint64 idTitolo, const Operazione &operation, const ApplyOperation &apply)
{
    if (!ready())
        return false;
    Transaction t(*this);
    if (!t.active())
        return false;
    std::optional<DossierRow> row = heldTitle(idTitolo);
    if (!row)
        return false;
    bool removeTitle = false;
    if (!apply(*row, removeTitle))
        return fail(ErrCancelled, QStringLiteral("operazione rifiutata sul titolo %1").arg(idTitolo));
    QSqlQuery q(m_db);
    const bool titleWritten = removeTitle
        ? exec(q, QStringLiteral("DELETE FROM dossier WHERE IDTitolo = ?"), { idTitolo })
        : (row->idTitolo = idTitolo, updateTitle(*row));
    return titleWritten && appendOperation(operation, idTitolo) && t.commit();
}

// --- Operazioni ---

bool Database::appendOperation(const Operazione &operation, qint64 idDossier)
{
    QSqlQuery q(m_db);
    return exec(q,
        QStringLiteral("INSERT INTO Operazioni (IDDossier, inser, tipo, data, titolo, ticker, valore, qta, note)"
                       " VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
        operazioneValues(operation, idDossier));
}

std::optional<QList<Operazione>> Database::operationsOfTitle(qint64 idDossier)
{
    QSqlQuery q(m_db);
    if (!ready()
        || !exec(q,
            QStringLiteral("SELECT %1 FROM Operazioni WHERE IDDossier = ? ORDER BY IDArchivioDossier")
                .arg(kOperazioneColumns),
            { idDossier }))
        return std::nullopt;
    return readAll<Operazione>(q, readOperazione);
}

std::optional<QList<Operazione>> Database::operationsOfKind(qint64 idDossier, const QString &pattern)
{
    QSqlQuery q(m_db);
    if (!ready()
        || !exec(q,
            QStringLiteral("SELECT %1 FROM Operazioni WHERE tipo LIKE ? ESCAPE '\\' AND IDDossier = ?"
                           " ORDER BY data, IDArchivioDossier")
                .arg(kOperazioneColumns),
            { likePattern(pattern), idDossier }))
        return std::nullopt;
    return readAll<Operazione>(q, readOperazione);
}

DeleteOperationResult Database::deleteOperation(
    qint64 idArchivioDossier, qint64 idDossier, const RecomputeTitle &recompute)
{
    DeleteOperationResult result;
    if (!ready())
        return result;
    Transaction t(*this);
    QSqlQuery q(m_db);
    if (!t.active()
        || !exec(q, QStringLiteral("DELETE FROM Operazioni WHERE IDArchivioDossier = ?"), { idArchivioDossier }))
        return result;
    const std::optional<QList<Operazione>> remaining = operationsOfTitle(idDossier);
    if (!remaining)
        return {};
    result.remaining = *remaining;
    if (result.remaining.isEmpty()) {
        if (!exec(q, QStringLiteral("DELETE FROM dossier WHERE IDTitolo = ?"), { idDossier }))
            return {};
        result.titleDeleted = true;
    } else if (recompute) {
        const std::optional<DossierRow> current = findTitleById(idDossier);
        if (m_error.failed())
            return {};
        if (current && !updateTitle(recompute(*current, result.remaining)))
            return {};
    }
    result.ok = t.commit();
    if (!result.ok)
        return {};
    return result;
}

// --- Storico ---

std::optional<qint64> Database::insertStorico(const StoricoRow &row)
{
    QSqlQuery q(m_db);
    if (!ready()
        || !exec(q, QStringLiteral("INSERT INTO Storico (data, carico, attuale) VALUES (?, ?, ?)"),
            { dateValue(row.data), row.carico, row.attuale }))
        return std::nullopt;
    return q.lastInsertId().toLongLong();
}

std::optional<StoricoRow> Database::findStoricoByAttuale(double attuale)
{
    if (!std::isfinite(attuale))
        return std::nullopt;
    // The index narrows the search to a cent either side; the exact comparison is made on whole cents, as the
    // total is shown.
    const qint64 target = cents(attuale);
    QSqlQuery q(m_db);
    if (!ready()
        || !exec(q,
            QStringLiteral("SELECT %1 FROM Storico WHERE attuale BETWEEN ? AND ? ORDER BY id").arg(kStoricoColumns),
            { (target - 1) / 100.0, (target + 1) / 100.0 }))
        return std::nullopt;
    while (q.next()) {
        if (cents(q.value(3).toDouble()) == target)
            return readStorico(q);
    }
    return std::nullopt;
}

std::optional<QList<StoricoRow>> Database::storicoInPeriod(const QDate &first, const QDate &last)
{
    QSqlQuery q(m_db);
    if (!ready()
        || !exec(q,
            QStringLiteral("SELECT %1 FROM Storico WHERE data >= ? AND data <= ? ORDER BY data, id")
                .arg(kStoricoColumns),
            { dateValue(first), dateValue(last) }))
        return std::nullopt;
    return readAll<StoricoRow>(q, readStorico);
}

std::optional<QList<StoricoRow>> Database::storicoRows()
{
    QSqlQuery q(m_db);
    if (!ready() || !exec(q, QStringLiteral("SELECT %1 FROM Storico ORDER BY data, id").arg(kStoricoColumns)))
        return std::nullopt;
    return readAll<StoricoRow>(q, readStorico);
}

bool Database::deleteStorico(qint64 id)
{
    QSqlQuery q(m_db);
    return ready() && exec(q, QStringLiteral("DELETE FROM Storico WHERE id = ?"), { id });
}

// --- Gruppi ---

std::optional<QStringList> Database::groups()
{
    QSqlQuery q(m_db);
    if (!ready() || !exec(q, QStringLiteral("SELECT Gruppo FROM Gruppi GROUP BY Gruppo ORDER BY Gruppo")))
        return std::nullopt;
    return readStrings(q);
}

std::optional<QList<GruppoRow>> Database::titlesOfGroup(const QString &gruppo)
{
    QSqlQuery q(m_db);
    if (!ready()
        || !exec(
            q, QStringLiteral("SELECT %1 FROM Gruppi WHERE Gruppo = ? ORDER BY ID").arg(kGruppoColumns), { gruppo }))
        return std::nullopt;
    return readAll<GruppoRow>(q, readGruppo);
}

bool Database::groupExists(const QString &gruppo)
{
    QSqlQuery q(m_db);
    return ready() && exec(q, QStringLiteral("SELECT 1 FROM Gruppi WHERE Gruppo = ? LIMIT 1"), { gruppo }) && q.next();
}

GroupAdd Database::addToGroup(const GruppoRow &row)
{
    QSqlQuery q(m_db);
    if (!ready()
        || !exec(q,
            QStringLiteral("INSERT INTO Gruppi (Gruppo, simbolo, titolo) VALUES (?, ?, ?)"
                           " ON CONFLICT (Gruppo, titolo) DO NOTHING"),
            { row.gruppo, row.simbolo, row.titolo }))
        return GroupAdd::Failed;
    return q.numRowsAffected() > 0 ? GroupAdd::Added : GroupAdd::AlreadyPresent;
}

std::optional<int> Database::addGroup(const QString &gruppo, const QList<GruppoRow> &titles)
{
    if (!ready())
        return std::nullopt;
    Transaction t(*this);
    if (!t.active())
        return std::nullopt;
    int added = 0;
    for (GruppoRow row : titles) {
        row.gruppo = gruppo;
        switch (addToGroup(row)) {
        case GroupAdd::Added:
            ++added;
            break;
        case GroupAdd::AlreadyPresent:
            break;
        case GroupAdd::Failed:
            return std::nullopt;
        }
    }
    if (!t.commit())
        return std::nullopt;
    return added;
}

bool Database::removeFromGroup(const QString &gruppo, const QString &titolo)
{
    QSqlQuery q(m_db);
    return ready() && exec(q, QStringLiteral("DELETE FROM Gruppi WHERE Gruppo = ? AND titolo = ?"), { gruppo, titolo });
}

bool Database::deleteGroup(const QString &gruppo)
{
    QSqlQuery q(m_db);
    return ready() && exec(q, QStringLiteral("DELETE FROM Gruppi WHERE Gruppo = ?"), { gruppo });
}

std::optional<QList<GruppoSize>> Database::groupSizes()
{
    QSqlQuery q(m_db);
    if (!ready()
        || !exec(q,
            QStringLiteral("SELECT Gruppo, Count(Gruppo) AS ConteggioDiGruppo FROM Gruppi GROUP BY Gruppo"
                           " ORDER BY Gruppo")))
        return std::nullopt;
    return readAll<GruppoSize>(q, [](const QSqlQuery &r) {
        return GruppoSize { r.value(0).toString(), r.value(1).toLongLong() };
    });
}

std::optional<QStringList> Database::symbolsOfGroup(const QString &gruppo)
{
    QSqlQuery q(m_db);
    if (!ready() || !exec(q, QStringLiteral("SELECT simbolo FROM Gruppi WHERE Gruppo = ? ORDER BY ID"), { gruppo }))
        return std::nullopt;
    return readStrings(q);
}

// --- directory ---

std::optional<QStringList> Database::folders()
{
    QSqlQuery q(m_db);
    if (!ready() || !exec(q, QStringLiteral("SELECT path FROM directory ORDER BY rowid")))
        return std::nullopt;
    return readStrings(q);
}

bool Database::replaceFolders(const QStringList &paths)
{
    if (!ready())
        return false;
    Transaction t(*this);
    QSqlQuery q(m_db);
    if (!t.active() || !exec(q, QStringLiteral("DELETE FROM directory")))
        return false;
    for (const QString &path : paths) {
        if (!exec(q, QStringLiteral("INSERT INTO directory (path) VALUES (?)"), { path }))
            return false;
    }
    return t.commit();
}

// --- PASSW ---

std::optional<QString> Database::dossierPassword()
{
    QSqlQuery q(m_db);
    if (!ready() || !exec(q, QStringLiteral("SELECT pw FROM PASSW ORDER BY rowid LIMIT 1")) || !q.next())
        return std::nullopt;
    return q.value(0).toString();
}

bool Database::setDossierPassword(const QString &pw)
{
    if (!ready())
        return false;
    Transaction t(*this);
    QSqlQuery q(m_db);
    if (!t.active() || !exec(q, QStringLiteral("SELECT rowid FROM PASSW ORDER BY rowid LIMIT 1")))
        return false;
    const bool hasRow = q.next();
    const QVariant rowid = hasRow ? q.value(0) : QVariant();
    q.finish();
    const bool written = hasRow ? exec(q, QStringLiteral("UPDATE PASSW SET pw = ? WHERE rowid = ?"), { pw, rowid })
                                : exec(q, QStringLiteral("INSERT INTO PASSW (pw) VALUES (?)"), { pw });
    return written && t.commit();
}

bool Database::isDossierProtected()
{
    const std::optional<QString> pw = dossierPassword();
    return pw && !pw->trimmed().isEmpty();
}

// --- LOG_ARCHIVIO ---

bool Database::appendArchiveLog(const LogArchivioRow &row)
{
    QSqlQuery q(m_db);
    const QDate day = row.data.isValid() ? row.data : QDate::currentDate();
    return ready()
        && exec(q, QStringLiteral("INSERT INTO LOG_ARCHIVIO (data, zip, operazione, Descrizione) VALUES (?, ?, ?, ?)"),
            { dateValue(day), row.zip, row.operazione, row.descrizione });
}

// --- rename ---

bool Database::renameTitle(qint64 idTitolo, const QString &newSymbol, const QString &newName)
{
    if (!ready())
        return false;
    Transaction t(*this);
    if (!t.active())
        return false;
    const std::optional<DossierRow> current = heldTitle(idTitolo);
    if (!current)
        return false;
    QSqlQuery q(m_db);
    return exec(q, QStringLiteral("UPDATE dossier SET Titolo = ?, descrizione = ? WHERE IDTitolo = ?"),
               { newSymbol, newName, idTitolo })
        && exec(q, QStringLiteral("UPDATE Operazioni SET titolo = ?, ticker = ? WHERE IDDossier = ?"),
            { newName, newSymbol, idTitolo })
        && exec(q, QStringLiteral("UPDATE giornata SET tiker = ?, titolo = ? WHERE tiker = ?"),
            { newSymbol, newName, current->titolo })
        && t.commit();
}

} // namespace vm::store
