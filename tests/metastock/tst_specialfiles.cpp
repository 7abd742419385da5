// Files of the wrong kind under the names the readers expect: each read returns, with the reason.

#include "support/Fixture.h"

#include "metastock/FolderCheck.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <cstring>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using namespace vm::metastock;
using vm::EsitoCartella;

namespace {

// Replaces path by a special file of the kind named: "fifo", "dir", "socket", "empty" or "symlink-fifo".
bool replaceBy(const QString &path, const QString &kind)
{
    QFile::remove(path);
    const QByteArray name = QFile::encodeName(path);
    if (kind == QLatin1String("fifo"))
        return ::mkfifo(name.constData(), 0644) == 0;
    if (kind == QLatin1String("dir"))
        return QDir().mkpath(path);
    if (kind == QLatin1String("empty"))
        return scriviFile(path, QByteArray(""));
    if (kind == QLatin1String("symlink-fifo"))
        return ::mkfifo((name + ".fifo").constData(), 0644) == 0
            && ::symlink((name + ".fifo").constData(), name.constData()) == 0;
    if (kind == QLatin1String("socket")) {
        const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
        sockaddr_un address {};
        address.sun_family = AF_UNIX;
        if (fd < 0 || name.size() >= qsizetype(sizeof address.sun_path))
            return false;
        std::memcpy(address.sun_path, name.constData(), name.size());
        const bool ok = ::bind(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
        ::close(fd);
        return ok;
    }
    return false;
}

} // namespace

class TstSpecialFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void directory_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("stato"); // CartellaMS::Stato
        QTest::addColumn<QString>("reason"); // part of the damage, empty for none
        QTest::addColumn<int>("check"); // EsitoCartella::Stato
        const auto row = [](const char *kind, CartellaMS::Stato stato, const char *reason, EsitoCartella::Stato check) {
            QTest::newRow(kind) << QString(kind) << int(stato) << QString::fromUtf8(reason) << int(check);
        };
        row("fifo", CartellaMS::Stato::MasterIlleggibile, "pipe (FIFO)", EsitoCartella::Stato::Danneggiata);
        row("symlink-fifo", CartellaMS::Stato::MasterIlleggibile, "pipe (FIFO)", EsitoCartella::Stato::Danneggiata);
        row("socket", CartellaMS::Stato::MasterIlleggibile, "socket", EsitoCartella::Stato::Danneggiata);
        // A folder under the name is no file: the archive has no MASTER.
        row("dir", CartellaMS::Stato::MasterMancante, "", EsitoCartella::Stato::SenzaMaster);
        // Not "non aggiornata con Quotaflusso": the mark could not even be read.
        row("empty", CartellaMS::Stato::Letta, "meno della sua intestazione", EsitoCartella::Stato::Danneggiata);
    }
    void directory()
    {
        QFETCH(QString, kind);
        QFETCH(int, stato);
        QFETCH(QString, reason);
        QFETCH(int, check);
        const QString folder = archive();
        QVERIFY(replaceBy(folder + "/MASTER", kind));
        const CartellaMS c = CartellaMS::leggi(folder);
        QCOMPARE(int(c.stato), stato);
        QVERIFY2(reason.isEmpty() ? !c.danneggiata() : c.danno.contains(reason), qPrintable(c.danno));
        const vm::VerificaArchivi v = vm::verificaCartelle({ folder });
        QCOMPARE(int(v.esiti.value(0).stato), check);
        QVERIFY(!v.pronti());
        if (!reason.isEmpty())
            QVERIFY2(
                v.esiti.value(0).testo.contains(QStringLiteral("danneggiato")), qPrintable(v.esiti.value(0).testo));
    }

    void priceFile_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("reason");
        QTest::newRow("fifo") << "fifo"
                              << "pipe (FIFO)";
        QTest::newRow("symlink to a fifo") << "symlink-fifo"
                                           << "pipe (FIFO)";
        QTest::newRow("socket") << "socket"
                                << "socket";
        QTest::newRow("folder") << "dir"
                                << "cartella";
        QTest::newRow("empty") << "empty"
                               << "non contiene quotazioni";
    }
    void priceFile()
    {
        QFETCH(QString, kind);
        QFETCH(QString, reason);
        const QString folder = archive();
        QVERIFY(replaceBy(folder + "/F1.DAT", kind));
        const CartellaMS c = CartellaMS::leggi(folder);
        QVERIFY(c.leggibile() && !c.danneggiata());
        const RecordMaster *t = c.trovaSimbolo(u"UNO");
        QVERIFY(t);
        QString error;
        QVERIFY(!PrezzoMs(c.percorsoPrezzi(*t), t->campi, &error));
        QVERIFY2(error.contains(reason), qPrintable(error));
        if (kind != QLatin1String("empty")) {
            error.clear();
            QVERIFY(!leggiStoria(c.percorsoPrezzi(*t), t->campi, &error));
            QVERIFY2(error.contains(reason), qPrintable(error));
        }
        // The other title of the folder reads as before.
        const RecordMaster *other = c.trovaSimbolo(u"DUE");
        QCOMPARE(PrezzoMs(c.percorsoPrezzi(*other), other->campi), 10.5f);
    }

private:
    QString archive()
    {
        const QString folder = m_root.filePath(QString::number(++m_count));
        if (!QDir().mkpath(folder)
            || !scriviArchivio(folder, { vm::test::archiveTitle("UNO", "Uno"), vm::test::archiveTitle("DUE", "Due") }))
            qFatal("cannot write %s", qPrintable(folder));
        return folder;
    }
    QTemporaryDir m_root;
    int m_count = 0;
};

QTEST_GUILESS_MAIN(TstSpecialFiles)
#include "tst_specialfiles.moc"
