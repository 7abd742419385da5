#pragma once

#include <QObject>
#include <QString>

namespace vm {

// The one channel through which windows tell each other what changed. A window that changes data
// emits; the windows that show it listen and reload. No window includes another window's header.
class DataEvents : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

Q_SIGNALS:
    void dossierChanged(); // a title or an operation added, changed or removed
    void titleRenamed(qint64 idTitolo, const QString &oldSymbol, const QString &newSymbol);
    void groupsChanged(); // a personal group created, changed or removed
    void foldersChanged(); // the list of MetaStock folders saved
    void archivesChecked(bool ready); // a folder check has run
    void dossierProtectionChanged(bool isProtected);
    void quoteChartSettingsChanged(); // chart type, grid or colour of the quote board
    void historyChartSettingsChanged(); // type or colour of the history chart
    void dossierTitleChosen(int index); // Combo2 changed by the user
    void quoteTitleChosen(int index); // Combo1 changed by the user

    // Requests from one subsystem's window to another's, which registers the handler.
    void titleSituationRequested(const QString &simbolo); // a double click on a dossier row
    void newTitleRequested(); // the empty dossier's proposal answered Yes
};

} // namespace vm
