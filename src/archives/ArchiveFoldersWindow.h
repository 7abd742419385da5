#pragma once

#include "archives/ArchiveFolders.h"
#include "gui/SingleWindow.h"
#include "gui/WindowContext.h"

#include <QDialog>

class QComboBox;
class QFileSystemModel;
class QLabel;
class QPushButton;
class QTreeView;
class QTreeWidget;
class QTreeWidgetItem;

namespace vm::archives {

// "form2", the archive folders window: the drives and a folder tree to pick folders, the list of the
// folders the program reads ("ListView4"), the titles of the selected folder ("ListView2") with the
// quotes of the selected title ("ListView1"), and the titles present more than once ("ListView3").
// The list changes only in the window until "&Salva" writes it to table `directory`.
class ArchiveFoldersWindow : public QDialog
{
    Q_OBJECT
public:
    static ArchiveFoldersWindow *open(const WindowContext &context);
    static ArchiveFoldersWindow *instance();

    // The folder "Dir1" shows; the folder tree follows it.
    QString dir1Path() const { return m_dirPath; }
    void setDir1Path(const QString &path);

    // The lines of the folder list, in order.
    QStringList folders() const;

    // Folders found by the archive search: those not yet listed and holding a directory file join
    // the list, and one message says how many.
    void addFound(const QStringList &found);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    friend class SingleWindow<ArchiveFoldersWindow>;
    explicit ArchiveFoldersWindow(const WindowContext &context);
    void load();
    void fillDrives(const QStringList &extraDrives);
    void driveChosen(int index);
    void addFolder(); // Command1
    void removeFolders(bool deleteKey); // Command2, Delete
    void save(); // Command3
    void folderSelected(); // ListView4
    void titleSelected(QTreeWidgetItem *item); // ListView2
    void removeDuplicate(); // Command4
    void refreshDuplicates();
    void checkFolders(bool announce); // CHECKcartelleMS
    void show(const Message &avviso);
    QTreeWidgetItem *addFolderLine(const QString &path);

    WindowContext m_context;
    QString m_dirPath;
    QStringList m_drivesMounted;
    QComboBox *m_drive1 = nullptr;
    QFileSystemModel *m_model = nullptr;
    QTreeView *m_dir1 = nullptr;
    QTreeWidget *m_listView4 = nullptr;
    QTreeWidget *m_listView2 = nullptr;
    QTreeWidget *m_listView1 = nullptr;
    QTreeWidget *m_listView3 = nullptr;
    QLabel *m_label1 = nullptr; // the title's name and symbol
    QLabel *m_label2 = nullptr; // the selected folder's state
    QList<RigaTitolo> m_titles;
    QList<TitoloDoppio> m_duplicates;
};

} // namespace vm::archives
