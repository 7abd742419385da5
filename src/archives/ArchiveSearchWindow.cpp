#include "archives/ArchiveSearchWindow.h"

#include "archives/ArchiveFolders.h"
#include "gui/MessageBox.h"
#include "gui/ProgressBar.h"
#include "gui/Shell.h"
#include "gui/ThemeIcons.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace vm::archives {

namespace {

const char *const kTitle = "Ricerca archivi metastock";

} // namespace

ArchiveSearchWindow *ArchiveSearchWindow::instance()
{
    return singleWindow<ArchiveSearchWindow>().get();
}

ArchiveSearchWindow *ArchiveSearchWindow::open(const WindowContext &context)
{
    ArchiveSearchWindow *w = singleWindow<ArchiveSearchWindow>().open(context);
    w->show();
    w->raise();
    w->activateWindow();
    return w;
}

ArchiveSearchWindow::ArchiveSearchWindow(const WindowContext &context)
    : QDialog(context.shell.window(), Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint)
    , m_context(context)
{
    setObjectName(QStringLiteral("Form9"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QString::fromLatin1(kTitle));

    m_label1 = new QLabel(this);
    m_label1->setObjectName(QStringLiteral("Label1"));
    m_label1->setWordWrap(true);
    m_drive1 = new QComboBox(this);
    m_drive1->setObjectName(QStringLiteral("Drive1"));
    for (const QString &d : discoMontati())
        m_drive1->addItem(themeIcon("drive-harddisk"), d, d);
    auto *pick = new QPushButton(themeIcon("folder-open"), QStringLiteral("&Cartella..."), this);
    pick->setObjectName(QStringLiteral("Command3"));
    pick->setToolTip(QStringLiteral("Cerca in una cartella scelta invece che in tutto il disco"));

    auto *filter = new QGroupBox(QStringLiteral("Filtra gli archivi.."), this);
    filter->setObjectName(QStringLiteral("Frame1"));
    m_option1 = new QRadioButton(QStringLiteral("Solo compatibili"), filter);
    m_option1->setObjectName(QStringLiteral("Option1"));
    m_option2 = new QRadioButton(QStringLiteral("Nessun filtro"), filter);
    m_option2->setObjectName(QStringLiteral("Option2"));
    m_option1->setChecked(true);
    auto *filterLayout = new QHBoxLayout(filter);
    filterLayout->addWidget(m_option1);
    filterLayout->addWidget(m_option2);

    m_progress = new ProgressBar(this);
    m_progress->setObjectName(QStringLiteral("PicStatus"));
    m_list1 = new QListWidget(this);
    m_list1->setObjectName(QStringLiteral("List1"));
    m_label2 = new QLabel(this);
    m_label2->setObjectName(QStringLiteral("Label2"));

    m_command1 = new QPushButton(themeIcon("system-search"), QStringLiteral("&Ricerca..."), this);
    m_command1->setObjectName(QStringLiteral("Command1"));
    m_command4 = new QPushButton(themeIcon("list-add"), QStringLiteral("&Aggiungi all'elenco"), this);
    m_command4->setObjectName(QStringLiteral("Command4"));
    m_command4->setEnabled(false);
    auto *close = new QPushButton(QStringLiteral("&Chiudi"), this);
    close->setObjectName(QStringLiteral("Command2"));

    auto *where = new QHBoxLayout;
    where->addWidget(m_drive1, 1);
    where->addWidget(pick);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_command1);
    buttons->addWidget(m_command4);
    buttons->addStretch();
    buttons->addWidget(close);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_label1);
    layout->addLayout(where);
    layout->addWidget(filter);
    layout->addWidget(m_progress);
    layout->addWidget(m_list1, 1);
    layout->addWidget(m_label2);
    layout->addLayout(buttons);
    resize(520, 440);
    centreOnScreen(this);

    const int root = m_drive1->findData(QStringLiteral("/"));
    m_drive1->setCurrentIndex(root >= 0 ? root : 0);
    updateCaption();

    connect(m_drive1, &QComboBox::currentIndexChanged, this, &ArchiveSearchWindow::updateCaption);
    connect(pick, &QPushButton::clicked, this, &ArchiveSearchWindow::chooseFolder);
    connect(m_command1, &QPushButton::clicked, this, &ArchiveSearchWindow::run);
    connect(m_command4, &QPushButton::clicked, this, &ArchiveSearchWindow::addChosen);
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    // Quitting the program while the walk runs stops it, so that nothing outlives its window.
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] { m_search.ferma(); });
}

void ArchiveSearchWindow::updateCaption()
{
    m_label1->setText(
        QStringLiteral("La procedura consente di cercare le cartelle metastock presenti sul disco ") + startFolder());
}

QString ArchiveSearchWindow::startFolder() const
{
    return m_drive1->currentData().toString();
}

void ArchiveSearchWindow::setStartFolder(const QString &folder)
{
    const QString clean = QDir::cleanPath(folder);
    int at = m_drive1->findData(clean);
    if (at < 0) {
        m_drive1->addItem(themeIcon("folder"), clean, clean);
        at = m_drive1->count() - 1;
    }
    m_drive1->setCurrentIndex(at);
    updateCaption();
}

void ArchiveSearchWindow::chooseFolder()
{
    const QString folder = ui::chooseFolder(this, QStringLiteral("Cartella in cui cercare gli archivi"), startFolder());
    if (!folder.isEmpty())
        setStartFolder(folder);
}

void ArchiveSearchWindow::run()
{
    if (m_searching)
        return;
    const QString start = startFolder();
    if (start.isEmpty() || !QFileInfo(start).isDir()) {
        ui::message(this,
            { QStringLiteral("La cartella ") + start + QStringLiteral(" non è disponibile."),
                QString::fromLatin1(kTitle), ui::Icon::Exclamation });
        return;
    }
    m_searching = true;
    m_command1->setEnabled(false);
    m_command4->setEnabled(false);
    m_list1->clear();
    m_label2->clear();
    m_progress->setProgress(0, 1);
    OpzioniRicerca options;
    options.soloCompatibili = m_option1->isChecked();
    setCursor(Qt::BusyCursor);

    m_search.DirUt(
        start, options,
        [this](const ArchivioTrovato &found) {
            auto *item = new QListWidgetItem(
                themeIcon(found.compatibile ? "folder" : "dialog-warning"), found.cartella, m_list1);
            item->setData(Qt::UserRole, found.cartella);
            item->setCheckState(Qt::Checked);
            item->setToolTip(found.compatibile ? QStringLiteral("Archivio aggiornato con Quotaflusso")
                                               : QStringLiteral("Archivio non aggiornato con Quotaflusso"));
            m_label2->setText(QStringLiteral("Cartelle metastock trovate: %1").arg(m_list1->count()));
        },
        [this](int done, int total) { m_progress->setProgress(done, total); },
        [] { QCoreApplication::processEvents(); });

    unsetCursor();
    m_searching = false;
    if (m_closeWhenDone || m_search.fermata()) {
        close();
        return;
    }
    m_command1->setEnabled(true);
    m_command4->setEnabled(m_list1->count() > 0);
    m_label2->setText(QStringLiteral("Cartelle metastock trovate: %1").arg(m_list1->count())
        + (m_search.cartelleIlleggibili() > 0
                ? QStringLiteral(" (cartelle non leggibili, saltate: %1)").arg(m_search.cartelleIlleggibili())
                : QString()));
    ui::message(this, { QString::fromLatin1(kFineRicerca), QString::fromLatin1(kTitle), ui::Icon::Information });
}

void ArchiveSearchWindow::addChosen()
{
    QStringList chosen;
    for (int i = 0; i < m_list1->count(); ++i) {
        if (m_list1->item(i)->checkState() == Qt::Checked)
            chosen << m_list1->item(i)->data(Qt::UserRole).toString();
    }
    if (chosen.isEmpty()) {
        ui::message(this,
            { QStringLiteral("Nessuna cartella è stata scelta."), QString::fromLatin1(kTitle), ui::Icon::Information });
        return;
    }
    Q_EMIT foldersChosen(chosen);
}

void ArchiveSearchWindow::closeEvent(QCloseEvent *event)
{
    // The stop mark: the walk ends at its next folder and closes the window then, since the window
    // must outlive the walk that runs inside it.
    m_search.ferma();
    if (m_searching) {
        m_closeWhenDone = true;
        hide();
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

} // namespace vm::archives
