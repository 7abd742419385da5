#include "auxiliary/HelpFiles.h"

#include "core/ProgramState.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <iterator>

namespace vm::aux {

namespace {

// The windows with a topic of their own, numbered for the callers that ask by context number; the
// objectName is the topic's identifier in the help file.
const char *const kFinestre[] = { "MDIForm1", "form2", "Form9", "Form5", "Form3", "Form1", "Form4", "Form61", "Form6",
    "Form66", "Form7", "Form11", "Form13", "Form10", "Form8", "Form12", "Form135" };
constexpr int kPassoContesto = 10;

} // namespace

QStringList cartelleFileProgramma(const ProgramState &state)
{
    QStringList cartelle;
    if (!state.programFolder.isEmpty())
        cartelle << state.programFolder;
    const QString eseguibile = QCoreApplication::applicationDirPath();
    if (!eseguibile.isEmpty()) {
        cartelle << eseguibile;
        cartelle << QDir::cleanPath(eseguibile + QStringLiteral("/../share/valorimetrico"));
    }
    for (const QString &dati : QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation))
        cartelle << dati + QStringLiteral("/valorimetrico");
#ifdef VM_BUILD_DATA_DIR
    cartelle << QStringLiteral(VM_BUILD_DATA_DIR);
#endif
    cartelle.removeDuplicates();
    return cartelle;
}

QString fileProgramma(const QString &nome, const QStringList &cartelle)
{
    for (const QString &c : cartelle) {
        const QString percorso = QDir(c).filePath(nome);
        if (QFileInfo(percorso).isFile())
            return percorso;
    }
    return {};
}

QString fileProgramma(const QString &nome, const ProgramState &state)
{
    return fileProgramma(nome, cartelleFileProgramma(state));
}

QString indirizzoArgomento(const QString &pagina)
{
    if (pagina.startsWith(QLatin1String("qthelp:")))
        return pagina;
    return QStringLiteral("qthelp://") + QLatin1String(kNamespaceGuida) + QLatin1Char('/')
        + QLatin1String(kCartellaVirtualeGuida) + QLatin1Char('/')
        + (pagina.isEmpty() ? QString::fromLatin1(kArgomentoPredefinito) : pagina);
}

QString fileSenzaArgomento(const QString &nomeGuida)
{
    const qsizetype at = nomeGuida.indexOf(QLatin1String("::/"));
    return (at < 0 ? nomeGuida : nomeGuida.left(at)).trimmed();
}

QString argomentoDelNome(const QString &nomeGuida)
{
    const qsizetype at = nomeGuida.indexOf(QLatin1String("::/"));
    return at < 0 ? QString() : nomeGuida.mid(at + 3).trimmed();
}

int numeroContesto(const QString &finestra)
{
    for (int i = 0; i < int(std::size(kFinestre)); ++i) {
        if (finestra == QLatin1String(kFinestre[i]))
            return (i + 1) * kPassoContesto;
    }
    return 0;
}

QString finestraDelContesto(int numero)
{
    const int i = numero / kPassoContesto - 1;
    if (numero % kPassoContesto != 0 || i < 0 || i >= int(std::size(kFinestre)))
        return {};
    return QString::fromLatin1(kFinestre[i]);
}

} // namespace vm::aux
