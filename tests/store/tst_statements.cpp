// The statements the program runs against its tables, each on a fresh database.

#include "store/Database.h"

#include "support/RawSql.h"

#include <QTemporaryDir>
#include <QTest>

using namespace vm::store;
using vm::test::rawSql;

namespace {

DossierRow title(const QString &symbol, const QString &name = "Nome", qint64 qta = 100)
{
    return { 0, symbol, name, QDate(2023, 5, 4), 10, qta, QDate(), 0 };
}

Operazione op(const char *tipo, const QDate &data, qint64 qta, double valore = 10)
{
    return { 0, 0, QDate(), QString::fromLatin1(tipo), data, "Nome", "SYM", valore, qta, "nota d'acquisto" };
}

QList<qint64> quantities(const QList<Operazione> &ops)
{
    QList<qint64> out;
    for (const Operazione &o : ops)
        out << o.qta;
    return out;
}

} // namespace

class TestStatements : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Records the operation with the title's row becoming `row`.
    bool recordAs(const DossierRow &row, const Operazione &operation)
    {
        return m_db.recordOperation(row.idTitolo, operation, [row](DossierRow &stored, bool &) {
            stored = row;
            return true;
        });
    }

    void init()
    {
        m_path = m_dir.filePath(QStringLiteral("%1-%2.mdb").arg(QTest::currentTestFunction(), QTest::currentDataTag()));
        QVERIFY(!Database::create(m_path).failed());
        QVERIFY(m_db.open(m_path).ok());
    }
    void cleanup() { m_db.close(); }

    // Purchases, sales and a rename follow the title's row and its operations; removal takes them away.
    void titlesAndTheirOperations()
    {
        m_db.close();
        QCOMPARE(rawSql(m_path, { "INSERT INTO giornata VALUES ('KEEP', 'Nome'), ('keep', 'x'), ('ALTRO', 'Altro')" }),
            QVariant());
        QVERIFY(m_db.open(m_path).ok());
        const qint64 keep = m_db.recordPurchase(title("KEEP"), op("AQ", QDate(2024, 1, 1), 100)).value();
        const qint64 gone = m_db.recordPurchase(title("GONE"), op("AQ", QDate(2024, 1, 1), 5)).value();
        const QList<Operazione> first = m_db.operationsOfTitle(keep).value();
        QCOMPARE(first.size(), 1);
        QCOMPARE(first[0].idDossier, keep);
        QCOMPARE(first[0].inser, QDate::currentDate());
        QCOMPARE(first[0].note, QStringLiteral("nota d'acquisto"));
        QCOMPARE(first[0].tot(), 1000.0);

        DossierRow row = *m_db.findTitleById(keep);
        row.qta = 150;
        row.prezzo = 11;
        row.dataStacco = QDate(2024, 3, 4);
        QVERIFY(recordAs(row, op("AQ", QDate(2024, 2, 1), 50, 13)));
        row.qta = 110;
        QVERIFY(recordAs(row, op("VE", QDate(2024, 3, 1), 40, 12)));
        QCOMPARE(m_db.findTitleById(keep)->qta, 110);
        QCOMPARE(m_db.findTitleById(keep)->dataStacco, QDate(2024, 3, 4));
        row.dataStacco = QDate();
        row.dividendo = 0.35;
        QVERIFY(m_db.updateTitle(row));
        QCOMPARE(m_db.findTitleById(keep), row);
        QCOMPARE(m_db.findTitleBySymbol("KEEP"), row);
        QCOMPARE(m_db.dossierRows().value().first(), row);
        QVERIFY(!m_db.findTitleBySymbol("KEEPX") && !m_db.findTitleById(gone + 1));
        // The symbol is unique whatever the case.
        QVERIFY(!m_db.insertTitle(title("keep")));
        QCOMPARE(m_db.lastError().number, int(ErrDuplicateKey));
        row.idTitolo = 999;
        QVERIFY(!recordAs(row, op("VE", QDate(2024, 3, 2), 1)));
        QCOMPARE(m_db.lastError().number, int(ErrNoRecord));
        QVERIFY(m_db.operationsOfTitle(999).value().isEmpty());

        // A symbol another title holds, whatever its case, or a title not there: refused, nothing changed.
        QVERIFY(!m_db.renameTitle(keep, "gone", "Nuovo"));
        QCOMPARE(m_db.lastError().number, int(ErrDuplicateKey));
        QCOMPARE(m_db.findTitleById(keep)->descrizione, QStringLiteral("Nome"));
        QVERIFY(!m_db.renameTitle(999, "NEW'S", "L'erede"));
        QCOMPARE(m_db.lastError().number, int(ErrNoRecord));
        QVERIFY(m_db.renameTitle(keep, "NEW'S", "L'erede"));
        QCOMPARE(m_db.findTitleById(keep)->titolo, QStringLiteral("NEW'S"));
        QCOMPARE(m_db.findTitleById(keep)->descrizione, QStringLiteral("L'erede"));
        QCOMPARE(m_db.findTitleById(keep)->qta, 110);
        for (const Operazione &o : m_db.operationsOfTitle(keep).value_or(QList<Operazione>()))
            QVERIFY(o.titolo == QStringLiteral("L'erede") && o.ticker == QStringLiteral("NEW'S"));
        QCOMPARE(quantities(m_db.operationsOfTitle(keep).value()), (QList<qint64> { 100, 50, 40 }));
        QCOMPARE(m_db.operationsOfTitle(keep).value().last().valore, 12.0);
        QCOMPARE(m_db.operationsOfTitle(gone).value().first().ticker, QStringLiteral("SYM"));

        // Selling everything removes the title; its operations stay, the sale included.
        QVERIFY(m_db.recordOperation(gone, op("VE", QDate(2024, 4, 1), 5), [](DossierRow &, bool &remove) {
            remove = true;
            return true;
        }));
        QVERIFY(!m_db.findTitleById(gone));
        QCOMPARE(quantities(m_db.operationsOfTitle(gone).value()), (QList<qint64> { 5, 5 }));
        // Removing a title takes its operations with it, and its counter is not given again.
        QVERIFY(m_db.deleteTitle(keep));
        QVERIFY(m_db.operationsOfTitle(keep).value().isEmpty());
        QCOMPARE(m_db.operationsOfTitle(gone).value().size(), 2);
        QVERIFY(m_db.insertTitle(title("NEW")).value() > gone);
        QCOMPARE(m_db.countTitles().value(), 1);
        m_db.close();
        QCOMPARE(
            rawSql(m_path, { "SELECT count(*) FROM giornata WHERE tiker = 'NEW''S' AND titolo = 'L''erede'" }).toInt(),
            2);
        QCOMPARE(rawSql(m_path, { "SELECT count(*) FROM giornata WHERE tiker = 'ALTRO'" }).toInt(), 1);
    }

    // Operations picked by kind in date order; deleting them one by one, the title's row stays as it was
    // without a rule, follows the rule given, and goes with the last operation.
    void operationsOfKindAndDeletion()
    {
        const qint64 id = m_db.recordPurchase(title("ENI", "Eni", 35), op("AQ", QDate(2024, 1, 15), 3)).value();
        const qint64 bystander = m_db.recordPurchase(title("ENEL"), op("AQ", QDate(2024, 1, 1), 99)).value();
        const DossierRow row = *m_db.findTitleById(id);
        // Entered out of date order; 3 February comes before 2 March.
        QVERIFY(recordAs(row, op("VE", QDate(2024, 3, 2), 4)));
        QVERIFY(recordAs(row, op("AQ", QDate(2023, 12, 31), 1)));
        QVERIFY(recordAs(row, op("VE", QDate(2024, 2, 3), 2)));
        // All, purchases, lower case with one wildcard, "%" and a quote taken literally.
        const QList<std::pair<QString, QList<qint64>>> patterns { { "*", { 1, 3, 2, 4 } }, { "AQ", { 1, 3 } },
            { "?e", { 2, 4 } }, { "%", {} }, { "A'", {} } };
        for (const auto &[pattern, expected] : patterns)
            QVERIFY2(quantities(m_db.operationsOfKind(id, pattern).value()) == expected, qPrintable(pattern));

        const RecomputeTitle sum = [](DossierRow row, const QList<Operazione> &remaining) {
            row.qta = 0;
            for (const Operazione &o : remaining)
                row.qta += o.qta;
            return row;
        };
        for (const auto &[rule, qtaAfter] :
            QList<std::pair<RecomputeTitle, qint64>> { { {}, 35 }, { sum, 7 }, { sum, 3 }, { sum, -1 } }) {
            const DeleteOperationResult result
                = m_db.deleteOperation(m_db.operationsOfTitle(id).value().last().idArchivioDossier, id, rule);
            QVERIFY(result.ok);
            QCOMPARE(result.titleDeleted, qtaAfter < 0);
            QCOMPARE(m_db.findTitleById(id) ? m_db.findTitleById(id)->qta : -1, qtaAfter);
            QCOMPARE(quantities(result.remaining), quantities(m_db.operationsOfTitle(id).value()));
        }
        QVERIFY(m_db.operationsOfTitle(id).value().isEmpty());
        QCOMPARE(m_db.operationsOfTitle(bystander).value().size(), 1);
        QVERIFY(m_db.findTitleById(bystander));
    }

    // Found by the current total rounded to the cent; a period is taken by whole days.
    void storico()
    {
        const QList<std::pair<QDate, double>> rows { { QDate(2004, 2, 3), 12345.69 }, { QDate(2004, 3, 2), 12345.674 },
            { QDate(2003, 12, 31), 12345.65 }, { QDate(2004, 2, 3), 1 } };
        for (const auto &[day, attuale] : rows)
            QVERIFY(m_db.insertStorico({ 0, day, 1000, attuale }));
        for (const auto &[probe, id] : QList<std::pair<double, qint64>> {
                 { 12345.67, 2 }, { 12345.666, 2 }, { 12345.68, 0 }, { 12345.66, 0 }, { qQNaN(), 0 } })
            QCOMPARE(m_db.findStoricoByAttuale(probe).value_or(StoricoRow {}).id, id);
        const auto period = [&](const QDate &first, const QDate &last) {
            QList<qint64> ids;
            for (const StoricoRow &r : m_db.storicoInPeriod(first, last).value_or(QList<StoricoRow>()))
                ids << r.id;
            return ids;
        };
        QCOMPARE(period(QDate(2004, 2, 3), QDate(2004, 3, 2)), (QList<qint64> { 1, 4, 2 }));
        QCOMPARE(period(QDate(2003, 12, 31), QDate(2004, 2, 3)), (QList<qint64> { 3, 1, 4 }));
        QVERIFY(m_db.deleteStorico(2));
        QVERIFY(!m_db.findStoricoByAttuale(12345.67));
        QCOMPARE(m_db.storicoRows().value().size(), 3);
    }

    // Groups, folders, password and log; quotes, and text that would be SQL if pasted into a statement.
    void smallerTables()
    {
        const QString group = "L'anno'; DELETE FROM Gruppi; --", name = "Dell'Acqua' OR '1'='1";

        QCOMPARE(m_db.addToGroup({ 0, group, "S1", name }), GroupAdd::Added);
        QCOMPARE(m_db.addToGroup({ 0, group, "S2", "Secondo" }), GroupAdd::Added);
        QCOMPARE(m_db.addToGroup({ 0, group.toUpper(), "S9", name.toLower() }), GroupAdd::AlreadyPresent);
        QCOMPARE(m_db.addToGroup({ 0, "Altro", "S1", name }), GroupAdd::Added);

        QVERIFY(m_db.groupExists(group));
        QVERIFY(!m_db.groupExists(group + "x"));
        QCOMPARE(m_db.groups().value(), (QStringList { "Altro", group }));
        QCOMPARE(m_db.symbolsOfGroup(group).value(), (QStringList { "S1", "S2" }));
        QCOMPARE(m_db.titlesOfGroup(group).value().first().titolo, name);
        for (const GruppoSize &size : m_db.groupSizes().value_or(QList<GruppoSize>()))
            QCOMPARE(size.conteggio, size.gruppo == group ? 2 : 1);

        QVERIFY(m_db.removeFromGroup(group, name));
        QCOMPARE(m_db.symbolsOfGroup(group).value(), QStringList { "S2" });
        QCOMPARE(m_db.symbolsOfGroup("Altro").value(), QStringList { "S1" });
        QVERIFY(m_db.deleteGroup(group));
        QCOMPARE(m_db.groups().value(), QStringList { "Altro" });

        QVERIFY(m_db.replaceFolders({ "/z/", "/dati/l'archivio/", "/a/" }));
        QCOMPARE(m_db.folders().value(), (QStringList { "/z/", "/dati/l'archivio/", "/a/" }));
        QVERIFY(m_db.replaceFolders({ "/b/" }));
        QCOMPARE(m_db.folders().value(), QStringList { "/b/" });

        QVERIFY(!m_db.dossierPassword() && !m_db.isDossierProtected());
        QVERIFY(m_db.setDossierPassword("d'e"));
        QVERIFY(m_db.isDossierProtected());
        QVERIFY(m_db.setDossierPassword("   ")); // saving blanks is how the password is removed
        QCOMPARE(m_db.dossierPassword().value(), QStringLiteral("   "));
        QVERIFY(!m_db.isDossierProtected());

        QVERIFY(m_db.appendArchiveLog({ QDate(), "zip", "Rimozione", "Titolo 'X' rimosso" }));
        m_db.close();
        QCOMPARE(rawSql(m_path, { "SELECT count(*) FROM PASSW" }).toInt(), 1);
        QCOMPARE(
            rawSql(m_path, { "SELECT data FROM LOG_ARCHIVIO WHERE Descrizione = 'Titolo ''X'' rimosso'" }).toString(),
            QDate::currentDate().toString(Qt::ISODate));
    }

private:
    QTemporaryDir m_dir;
    QString m_path;
    Database m_db;
};

QTEST_GUILESS_MAIN(TestStatements)
#include "tst_statements.moc"
