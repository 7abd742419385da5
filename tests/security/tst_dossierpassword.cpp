// The dossier password's rules on a real database: what counts as the right answer, and a refused write.
// Saving's outcomes are driven through the window in tst_gui_password.
#include "security/DossierPassword.h"
#include "store/Database.h"

#include <QTemporaryDir>
#include <QTest>

using namespace vm;
using namespace vm::security;

class TestDossierPassword : public QObject
{
    Q_OBJECT

    QTemporaryDir m_tmp;
    int m_files = 0;

    // A fresh open database holding stored ("-": no row).
    void freshDatabase(store::Database &db, const QString &stored)
    {
        const QString path = m_tmp.filePath(QStringLiteral("db%1.mdb").arg(++m_files));
        QVERIFY(!store::Database::create(path).failed());
        QVERIFY(db.open(path).ok());
        if (stored != QLatin1String("-"))
            QVERIFY(db.setDossierPassword(stored));
    }

private Q_SLOTS:
    void answers_data()
    {
        QTest::addColumn<QString>("stored"); // "-": no row
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("right");
        auto row = [](const char *name, const char *stored, const char *typed, bool right) {
            QTest::newRow(name) << QString::fromUtf8(stored) << QString::fromUtf8(typed) << right;
        };
        row("same", "abc", "abc", true);
        row("blanks around the answer", "abc", " abc  ", true);
        row("stored edited by hand with blanks", " abc ", "abc", true);
        row("accented letters", "perché", "perché", true);
        row("case matters", "abc", "ABC", false);
        row("inner blank matters", "abc", "a bc", false);
        row("prefix", "abc", "ab", false);
        row("longer", "abc", "abcd", false);
        row("empty answer", "abc", "", false);
        // Nothing stored: no answer may open the dossier, not even an empty one.
        row("no row", "-", "", false);
        row("empty row", "", "", false);
        row("blank row, blank answer", "  ", " ", false);
    }
    void answers()
    {
        QFETCH(QString, stored);
        QFETCH(QString, typed);
        QFETCH(bool, right);
        store::Database db;
        freshDatabase(db, stored);
        DossierPassword pw(db);
        QCOMPARE(pw.check(typed), right);
        QCOMPARE(pw.mode(),
            stored.trimmed().isEmpty() || stored == QLatin1String("-") ? PasswordMode::Set : PasswordMode::Change);
    }

    void refusedWrite()
    {
        store::Database db;
        freshDatabase(db, QStringLiteral("abc"));
        db.close();
        DossierPassword pw(db);
        QVERIFY(!pw.check(QStringLiteral("abc")));
        const DossierPassword::SaveResult result = pw.save(QStringLiteral("x"), QStringLiteral("x"));
        QVERIFY(!result.written);
        QVERIFY(!result.error.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestDossierPassword)
#include "tst_dossierpassword.moc"
