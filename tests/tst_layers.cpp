// Each folder of src/ is a layer that may include only the layers below it. The link catches a library
// that reaches up; this test catches the include itself, before anyone builds on it.
#include <QtTest>

namespace {

const QStringList kSubsystems { "dossier", "operations", "quotes", "security", "auxiliary", "archives" };

// The folders a file of each layer may include from.
QStringList allowedFrom(const QString &layer, bool window)
{
    const QStringList ground { "core" };
    const QStringList readers = ground + QStringList { "metastock", "store" };
    if (layer == "core")
        return ground;
    if (layer == "metastock" || layer == "store")
        return ground + QStringList { layer };
    if (layer == "gui")
        return ground + QStringList { "gui" };
    if (kSubsystems.contains(layer))
        return readers + kSubsystems + (window ? QStringList { "gui" } : QStringList {});
    if (layer == "demo")
        return readers + kSubsystems + QStringList { "demo" };
    if (layer == "cli")
        return readers + kSubsystems + QStringList { "demo", "cli" };
    return readers + kSubsystems + QStringList { "gui", "demo", "cli", "app" };
}

struct Source {
    QString path; // relative to src/
    QStringList includes; // the project's own: "core/Format.h"
    bool window = false; // includes widgets or the window plumbing
};

QList<Source> readTree(const QString &root)
{
    static const QRegularExpression include(QStringLiteral("^\\s*#\\s*include\\s*[<\"]([^>\"]+)[>\"]"));
    QList<Source> sources;
    QDirIterator it(root, { "*.h", "*.cpp" }, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        Source s { QDir(root).relativeFilePath(file.fileName()), {}, false };
        for (const QByteArray &line : file.readAll().split('\n')) {
            const auto m = include.match(QString::fromUtf8(line));
            if (!m.hasMatch())
                continue;
            const QString name = m.captured(1);
            if (name.contains(u'/'))
                s.includes << name;
            if (name.startsWith(QLatin1String("gui/")) || name.startsWith(QLatin1String("QtWidgets"))
                || QRegularExpression(QStringLiteral("^Q(Widget|Dialog|MainWindow|MdiArea|Chart|Printer)"))
                       .match(name)
                       .hasMatch())
                s.window = true;
        }
        sources << s;
    }
    return sources;
}

// A header of a subsystem that belongs to its windows.
bool isWindowHeader(const QList<Source> &sources, const QString &include)
{
    for (const Source &s : sources) {
        if (s.path == include)
            return s.window;
    }
    return false;
}

} // namespace

class TestLayers : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void includesStayBelowTheirLayer()
    {
        const QList<Source> sources = readTree(QStringLiteral(VM_SOURCE_DIR "/src"));
        QVERIFY(sources.size() > 50);
        QStringList wrong;
        for (const Source &s : sources) {
            const QString layer = s.path.section(u'/', 0, 0);
            const QStringList allowed = allowedFrom(layer, s.window);
            for (const QString &include : s.includes) {
                const QString target = include.section(u'/', 0, 0);
                if (!QFileInfo::exists(QStringLiteral(VM_SOURCE_DIR "/src/") + include))
                    continue; // a system header with a folder, such as <sys/stat.h>
                const bool otherSubsystemsWindow
                    = kSubsystems.contains(target) && target != layer && isWindowHeader(sources, include);
                if (!allowed.contains(target) || (kSubsystems.contains(layer) && otherSubsystemsWindow))
                    wrong << s.path + QStringLiteral(" -> ") + include;
            }
        }
        QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(u'\n')));
    }

    // The rule itself: what a layer test that allowed everything would miss.
    void theRuleRefusesUpwardIncludes_data()
    {
        QTest::addColumn<QString>("layer");
        QTest::addColumn<bool>("window");
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("allowed");
        QTest::newRow("core to app") << "core" << false << "app" << false;
        QTest::newRow("store to metastock") << "store" << false << "metastock" << false;
        QTest::newRow("dossier logic to gui") << "dossier" << false << "gui" << false;
        QTest::newRow("dossier window to gui") << "dossier" << true << "gui" << true;
        QTest::newRow("cli to gui") << "cli" << false << "gui" << false;
        QTest::newRow("gui to store") << "gui" << false << "store" << false;
        QTest::newRow("app to everything") << "app" << true << "cli" << true;
    }
    void theRuleRefusesUpwardIncludes()
    {
        QFETCH(QString, layer);
        QFETCH(bool, window);
        QFETCH(QString, target);
        QFETCH(bool, allowed);
        QCOMPARE(allowedFrom(layer, window).contains(target), allowed);
    }
};

QTEST_GUILESS_MAIN(TestLayers)
#include "tst_layers.moc"
