#include "auxiliary/ExternalPrograms.h"

#include "auxiliary/HelpFiles.h"

#include "core/ProgramInfo.h"
#include "core/ProgramState.h"
#include "core/Settings.h"
#include "gui/MessageBox.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace vm::aux {

namespace {

// Desktop calculators, in order of preference.
const char *const kCalculators[] = { "gnome-calculator", "kcalc", "galculator", "qalculate-gtk", "xcalc" };

QString site()
{
    return QStringLiteral("https://") + QString::fromLatin1(kSitoQuotaflusso);
}

} // namespace

QString addressValorimetrico()
{
    return site() + QStringLiteral("/valorimetrico.htm");
}

QString addressQuotaflusso()
{
    return site();
}

QString addressEmail()
{
    return QStringLiteral("mailto:") + QString::fromLatin1(kPostaQuotaflusso)
        + QStringLiteral("?subject=Informazioni, notizie, chiarimenti su Valorimetrico");
}

void startCalculator(QWidget *parent)
{
    for (const char *name : kCalculators) {
        const QString path = QStandardPaths::findExecutable(QString::fromLatin1(name));
        if (!path.isEmpty()) {
            if (!ui::startProgram(path))
                ui::message(parent,
                    { QStringLiteral("Impossibile avviare la calcolatrice %1.").arg(path), {}, ui::Icon::Exclamation });
            return;
        }
    }
    ui::message(parent,
        { QStringLiteral("Nessuna calcolatrice trovata: installare gnome-calculator, kcalc, galculator, "
                         "qalculate-gtk oppure xcalc."),
            QStringLiteral("Calcolatrice"), ui::Icon::Exclamation });
}

void startCompanion(QWidget *parent, const SettingsFile &settings)
{
    const QString path = settings.read(settings::StrumentiQuotaflusso);
    if (!QFileInfo(path).isFile() || !ui::startProgram(path))
        ui::message(parent,
            { QStringLiteral("File non trovato."), QStringLiteral("Avvia Quotaflusso"), ui::Icon::Exclamation });
}

void openInformationDocument(QWidget *parent, const ProgramState &state)
{
    const QString path = fileProgramma(QString::fromLatin1(kDocumentoInformativo), state);
    if (path.isEmpty())
        ui::message(parent,
            { QStringLiteral("File valorimetrico_info.pdf non trovato, oppure Acrobat Reader non installato."),
                QStringLiteral("File non trovato"), ui::Icon::Exclamation });
    else if (!ui::openDocument(path))
        ui::message(parent, { ui::noOpenerText(), QStringLiteral("File non trovato"), ui::Icon::Exclamation });
    if (parent)
        parent->unsetCursor();
}

void openAddress(QWidget *parent, const QString &address)
{
    if (!ui::openDocument(address))
        ui::message(parent, { ui::noOpenerText(), {}, ui::Icon::Exclamation });
}

} // namespace vm::aux
