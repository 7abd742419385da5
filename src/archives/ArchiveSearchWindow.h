#pragma once

#include "archives/ArchiveSearch.h"
#include "gui/SingleWindow.h"
#include "gui/WindowContext.h"

#include <QDialog>

class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;
class QRadioButton;

namespace vm {
class ProgressBar;
}

namespace vm::archives {

// "Form9", the archive search: walks a drive, or a folder the user picks, for MetaStock archive
// folders, keeping the window alive while it walks; "&Chiudi" stops it. The folders found can be
// handed to the archive folders window.
class ArchiveSearchWindow : public QDialog
{
    Q_OBJECT
public:
    static ArchiveSearchWindow *open(const WindowContext &context);
    static ArchiveSearchWindow *instance();

    // Where the next search starts: a drive of the list, or any folder.
    void setStartFolder(const QString &folder);
    QString startFolder() const;
    bool searching() const { return m_searching; }
    RicercaArchivi &search() { return m_search; }

Q_SIGNALS:
    // The folders checked in the list when "Aggiungi all'elenco" is pressed.
    void foldersChosen(const QStringList &folders);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    friend class SingleWindow<ArchiveSearchWindow>;
    explicit ArchiveSearchWindow(const WindowContext &context);
    void run(); // Command1
    void chooseFolder(); // Command3
    void addChosen(); // Command4
    void updateCaption();

    WindowContext m_context;
    RicercaArchivi m_search;
    bool m_searching = false;
    bool m_closeWhenDone = false;
    QLabel *m_label1 = nullptr;
    QComboBox *m_drive1 = nullptr;
    QRadioButton *m_option1 = nullptr; // "Solo compatibili"
    QRadioButton *m_option2 = nullptr; // "Nessun filtro"
    ProgressBar *m_progress = nullptr;
    QListWidget *m_list1 = nullptr;
    QLabel *m_label2 = nullptr;
    QPushButton *m_command1 = nullptr;
    QPushButton *m_command4 = nullptr;
};

} // namespace vm::archives
