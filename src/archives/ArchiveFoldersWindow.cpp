#include "archives/ArchiveFoldersWindow.h"

#include "archives/ArchivesWindows.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/Shell.h"
#include "gui/ThemeIcons.h"
#include "store/Database.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTreeView>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace vm::archives {

namespace {

// A list view of the given columns (caption, width in twips, right-aligned).
QTreeWidget *listView(const QString &name, const QList<std::tuple<const char *, int, bool>> &columns, QWidget *parent)
{
    auto *list = new QTreeWidget(parent);
    list->setObjectName(name);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAllColumnsShowFocus(true);
    list->setColumnCount(int(columns.size()));
    QStringList captions;
    for (const auto &[caption, twips, right] : columns)
        captions << QString::fromUtf8(caption);
    list->setHeaderLabels(captions);
    for (int i = 0; i < columns.size(); ++i) {
        const auto &[caption, twips, right] = columns[i];
        // The widths are the classic ones, but never narrower than the caption in today's fonts.
        const int least = list->fontMetrics().horizontalAdvance(QString::fromUtf8(caption)) + 14;
        list->setColumnWidth(i, twips <= 1 ? 1 : std::max(px(twips), least));
        if (right)
            list->headerItem()->setTextAlignment(i, Qt::AlignRight | Qt::AlignVCenter);
    }
    return list;
}

QString stateIcon(StatoCartella::Stato stato)
{
    switch (stato) {
    case StatoCartella::Stato::Pronta:
        return QStringLiteral("folder");
    case StatoCartella::Stato::NonCompatibile:
        return QStringLiteral("dialog-warning");
    case StatoCartella::Stato::NonTrovata:
        break;
    }
    return QStringLiteral("dialog-error");
}

} // namespace

ArchiveFoldersWindow *ArchiveFoldersWindow::instance()
{
    return singleWindow<ArchiveFoldersWindow>().get();
}

ArchiveFoldersWindow *ArchiveFoldersWindow::open(const WindowContext &context)
{
    const bool fresh = !instance();
    ArchiveFoldersWindow *w = singleWindow<ArchiveFoldersWindow>().open(context);
    w->QDialog::show();
    w->raise();
    w->activateWindow();
    if (fresh)
        w->load();
    return w;
}

ArchiveFoldersWindow::ArchiveFoldersWindow(const WindowContext &context)
    : QDialog(context.shell.window(), Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint)
    , m_context(context)
{
    setObjectName(QStringLiteral("form2"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Archivi metastock"));

    // The folders: drive, tree, add and remove, the list and its commands.
    auto *group = new QGroupBox(QStringLiteral("Metastock"), this);
    group->setObjectName(QStringLiteral("Frame2"));
    auto *driveLabel = new QLabel(QStringLiteral("Unità disco"), group);
    m_drive1 = new QComboBox(group);
    m_drive1->setObjectName(QStringLiteral("Drive1"));
    driveLabel->setBuddy(m_drive1);
    m_model = new QFileSystemModel(this);
    m_model->setFilter(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden | QDir::Drives);
    m_model->setReadOnly(true);
    m_dir1 = new QTreeView(group);
    m_dir1->setObjectName(QStringLiteral("Dir1"));
    m_dir1->setModel(m_model);
    for (int c = 1; c < m_model->columnCount(); ++c)
        m_dir1->hideColumn(c);
    m_dir1->setHeaderHidden(true);

    auto *browse = new QPushButton(themeIcon("folder-open"), QStringLiteral("S&foglia..."), group);
    browse->setObjectName(QStringLiteral("Command6"));
    browse->setToolTip(QStringLiteral("Sceglie la cartella con la finestra di selezione delle cartelle"));
    auto *add = new QPushButton(themeIcon("go-next"), QString(), group);
    add->setObjectName(QStringLiteral("Command1"));
    add->setToolTip(QStringLiteral("Aggiunge la cartella all'elenco"));
    auto *remove = new QPushButton(themeIcon("go-previous"), QString(), group);
    remove->setObjectName(QStringLiteral("Command2"));
    remove->setToolTip(QStringLiteral("Toglie dall'elenco le cartelle selezionate"));

    auto *frame = new QGroupBox(QStringLiteral("Cartelle"), group);
    frame->setObjectName(QStringLiteral("Frame1"));
    m_listView4
        = listView(QStringLiteral("ListView4"), { { "Archivi storici Metastock da gestire", 4000, false } }, frame);
    m_listView4->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_listView4->installEventFilter(this);
    m_label2 = new QLabel(frame);
    m_label2->setObjectName(QStringLiteral("Label2"));
    m_label2->setWordWrap(true);
    auto *save = new QPushButton(themeIcon("document-save"), QStringLiteral("&Salva"), frame);
    save->setObjectName(QStringLiteral("Command3"));
    auto *search = new QPushButton(themeIcon("system-search"), QStringLiteral("&Ricerca.."), frame);
    search->setObjectName(QStringLiteral("Command5"));
    auto *frameLayout = new QGridLayout(frame);
    frameLayout->addWidget(m_listView4, 0, 0, 1, 3);
    frameLayout->addWidget(m_label2, 1, 0, 1, 3);
    frameLayout->addWidget(search, 2, 0);
    frameLayout->setColumnStretch(1, 1);
    frameLayout->addWidget(save, 2, 2);

    auto *arrows = new QVBoxLayout;
    arrows->addStretch();
    arrows->addWidget(add);
    arrows->addWidget(remove);
    arrows->addStretch();
    auto *groupLayout = new QGridLayout(group);
    groupLayout->addWidget(driveLabel, 0, 0);
    groupLayout->addWidget(m_drive1, 1, 0);
    groupLayout->addWidget(m_dir1, 2, 0);
    groupLayout->addWidget(browse, 3, 0, Qt::AlignLeft);
    groupLayout->addLayout(arrows, 0, 1, 4, 1);
    groupLayout->addWidget(frame, 0, 2, 4, 1);
    groupLayout->setColumnStretch(0, 2);
    groupLayout->setColumnStretch(2, 3);

    // The titles of the selected folder and the quotes of the selected title.
    m_listView2 = listView(QStringLiteral("ListView2"),
        { { "Titolo", 1900, false }, { "Simbolo", 1100, false }, { "Inizio", 900, false }, { "Fine", 900, false },
            { "File", 1, false } },
        this);
    m_label1 = new QLabel(this);
    m_label1->setObjectName(QStringLiteral("Label1"));
    m_listView1 = listView(QStringLiteral("ListView1"),
        { { "Data", 900, false }, { "Apertura", 800, true }, { "Minimo", 800, true }, { "Massimo", 800, true },
            { "Chiusura", 800, true }, { "Volumi", 800, true }, { "Ufficiale", 800, true } },
        this);
    auto *quotes = new QVBoxLayout;
    quotes->addWidget(m_label1);
    quotes->addWidget(m_listView1);
    auto *titles = new QHBoxLayout;
    titles->addWidget(m_listView2, 5);
    titles->addLayout(quotes, 6);

    // The titles present more than once.
    auto *duplicates = new QGroupBox(QStringLiteral("Elenco titoli doppi presenti nell' archvio storico"), this);
    duplicates->setObjectName(QStringLiteral("Frame3"));
    m_listView3 = listView(QStringLiteral("ListView3"),
        { { "Titolo", 2000, false }, { "Inizio", 1200, false }, { "Fine", 1200, false }, { "Percorso", 4200, false } },
        duplicates);
    auto *note = new QLabel(notaDoppi(), duplicates);
    note->setObjectName(QStringLiteral("Label3"));
    note->setWordWrap(true);
    auto *removeTitle = new QPushButton(themeIcon("edit-delete"), QStringLiteral("Rimuovi"), duplicates);
    removeTitle->setObjectName(QStringLiteral("Command4"));
    auto *duplicatesLayout = new QGridLayout(duplicates);
    duplicatesLayout->addWidget(m_listView3, 0, 0, 2, 1);
    duplicatesLayout->addWidget(note, 0, 1);
    duplicatesLayout->addWidget(removeTitle, 1, 1, Qt::AlignRight | Qt::AlignBottom);
    duplicatesLayout->setColumnStretch(0, 3);
    duplicatesLayout->setColumnStretch(1, 1);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(group, 4);
    layout->addLayout(titles, 5);
    layout->addWidget(duplicates, 2);
    resize(920, 720);
    centreOnScreen(this);

    connect(m_drive1, &QComboBox::activated, this, &ArchiveFoldersWindow::driveChosen);
    connect(m_dir1->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex &current) {
        if (current.isValid())
            m_dirPath = m_model->filePath(current);
    });
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString folder
            = ui::chooseFolder(this, QStringLiteral("Selezionare la cartella dell'archivio metastock"), m_dirPath);
        if (!folder.isEmpty())
            setDir1Path(folder);
    });
    connect(add, &QPushButton::clicked, this, &ArchiveFoldersWindow::addFolder);
    connect(remove, &QPushButton::clicked, this, [this] { removeFolders(false); });
    connect(save, &QPushButton::clicked, this, &ArchiveFoldersWindow::save);
    connect(search, &QPushButton::clicked, this, [this] { openArchiveSearch(m_context); });
    connect(m_listView4, &QTreeWidget::currentItemChanged, this, &ArchiveFoldersWindow::folderSelected);
    connect(m_listView2, &QTreeWidget::currentItemChanged, this, &ArchiveFoldersWindow::titleSelected);
    connect(removeTitle, &QPushButton::clicked, this, &ArchiveFoldersWindow::removeDuplicate);
}

void ArchiveFoldersWindow::show(const Message &avviso)
{
    if (!avviso.text.isEmpty())
        ui::message(this, avviso);
}

QTreeWidgetItem *ArchiveFoldersWindow::addFolderLine(const QString &path)
{
    auto *item = new QTreeWidgetItem(m_listView4, { path });
    return item;
}

void ArchiveFoldersWindow::load()
{
    const std::optional<QStringList> stored = m_context.db.folders();
    if (!stored) {
        ui::message(this,
            { store::readFailure(QString::fromUtf8(store::kWhatFolders), m_context.db.lastError()), {},
                ui::Icon::Critical });
        // A list that could not be read must not be saved over the stored one as if it were empty.
        findChild<QPushButton *>(QStringLiteral("Command3"))->setEnabled(false);
    }
    for (const QString &path : stored.value_or(QStringList {}))
        addFolderLine(path);
    m_drivesMounted = discoMontati();
    checkFolders(true);
    QString start = QDir::homePath();
    if (!folders().isEmpty() && QFileInfo(folders().first()).isDir())
        start = folders().first();
    setDir1Path(start);
    refreshDuplicates();
}

void ArchiveFoldersWindow::fillDrives(const QStringList &extraDrives)
{
    const QString current = m_drive1->currentData().toString();
    m_drive1->clear();
    QStringList drives = m_drivesMounted;
    for (const QString &d : extraDrives) {
        if (!drives.contains(d))
            drives << d;
    }
    for (const QString &d : std::as_const(drives)) {
        const StatoDisco stato = statoDisco(d, m_drivesMounted);
        m_drive1->addItem(themeIcon(stato == StatoDisco::Pronto ? "drive-harddisk" : "dialog-warning"),
            d + QStringLiteral("  (") + testoStatoDisco(stato) + QLatin1Char(')'), d);
    }
    const int again = m_drive1->findData(current);
    if (again >= 0)
        m_drive1->setCurrentIndex(again);
}

void ArchiveFoldersWindow::driveChosen(int index)
{
    const QString drive = m_drive1->itemData(index).toString();
    if (statoDisco(drive, m_drivesMounted) != StatoDisco::Pronto) {
        ui::beep();
        ui::message(this, { messaggioDiscoMancante(drive), {}, ui::Icon::Exclamation });
        return;
    }
    setDir1Path(drive);
}

void ArchiveFoldersWindow::setDir1Path(const QString &path)
{
    m_dirPath = QDir::cleanPath(path);
    const QString drive = discoDi(m_dirPath, m_drivesMounted);
    const int at = m_drive1->findData(drive);
    if (at >= 0)
        m_drive1->setCurrentIndex(at);
    m_model->setRootPath(drive);
    m_dir1->setRootIndex(m_model->index(drive));
    const QModelIndex index = m_model->index(m_dirPath);
    if (index.isValid()) {
        m_dir1->setCurrentIndex(index);
        m_dir1->scrollTo(index);
    }
    m_dirPath = QDir::cleanPath(path);
}

QStringList ArchiveFoldersWindow::folders() const
{
    QStringList list;
    for (int i = 0; i < m_listView4->topLevelItemCount(); ++i)
        list << m_listView4->topLevelItem(i)->text(0);
    return list;
}

void ArchiveFoldersWindow::checkFolders(bool announce)
{
    const QList<StatoCartella> states = CHECKcartelleMS(folders(), m_drivesMounted);
    QStringList missingDrives;
    for (int i = 0; i < states.size() && i < m_listView4->topLevelItemCount(); ++i) {
        const StatoCartella &s = states[i];
        QTreeWidgetItem *item = m_listView4->topLevelItem(i);
        item->setIcon(0, themeIcon(stateIcon(s.stato).toLatin1().constData()));
        item->setToolTip(0, s.esito);
        item->setData(0, Qt::UserRole, int(s.stato));
        if (s.discoMancante) {
            missingDrives << s.disco;
            if (announce) {
                ui::beep();
                ui::message(this, { messaggioDiscoMancante(s.disco), {}, ui::Icon::Exclamation });
            }
        }
    }
    fillDrives(missingDrives);
}

void ArchiveFoldersWindow::addFolder()
{
    QStringList list = folders();
    const EsitoAggiunta outcome = aggiungiCartella(list, m_dirPath);
    if (outcome.aggiunta) {
        addFolderLine(outcome.cartella);
        checkFolders(false);
        refreshDuplicates();
    }
    show(outcome.avviso);
}

void ArchiveFoldersWindow::addFound(const QStringList &found)
{
    QStringList list = folders();
    int added = 0;
    for (const QString &path : found) {
        bool present = false;
        for (const QString &p : std::as_const(list))
            present = present || stessaCartella(p, path);
        if (present || !metastock::CartellaMS::leggi(path).haMaster())
            continue;
        list << normalizzaCartella(path);
        addFolderLine(list.last());
        ++added;
    }
    if (added > 0) {
        checkFolders(false);
        refreshDuplicates();
    }
    ui::message(this,
        { added > 0 ? QStringLiteral("Cartelle aggiunte all'elenco: %1.\nL'elenco diventa effettivo con \"Salva\".")
                          .arg(added)
                    : QStringLiteral("Nessuna cartella aggiunta: quelle scelte sono già nell'elenco."),
            {}, ui::Icon::Information });
}

void ArchiveFoldersWindow::removeFolders(bool deleteKey)
{
    const QList<QTreeWidgetItem *> selected = m_listView4->selectedItems();
    if (selected.isEmpty())
        return;
    QStringList paths;
    for (QTreeWidgetItem *item : selected)
        paths << item->text(0);
    if (ui::message(this, { domandaRimozione(paths, deleteKey), titoloDomandaRimozione(deleteKey), ui::Icon::Question },
            QMessageBox::Yes | QMessageBox::No)
        != QMessageBox::Yes)
        return;
    m_listView4->blockSignals(true);
    qDeleteAll(selected);
    m_listView4->blockSignals(false);
    m_listView2->clear();
    m_listView1->clear();
    m_titles.clear();
    m_label1->clear();
    m_label2->clear();
    refreshDuplicates();
}

bool ArchiveFoldersWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_listView4 && event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Delete) {
        removeFolders(true);
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void ArchiveFoldersWindow::save()
{
    QStringList paths;
    for (const QString &p : folders())
        paths << normalizzaCartella(p);
    if (!m_context.db.replaceFolders(paths)) {
        ui::message(this,
            { QStringLiteral("Impossibile salvare l'elenco delle cartelle MetaStock:\n")
                    + m_context.db.lastError().message,
                {}, ui::Icon::Critical });
        return;
    }
    Q_EMIT m_context.events.foldersChanged();
}

void ArchiveFoldersWindow::folderSelected()
{
    QTreeWidgetItem *item = m_listView4->currentItem();
    m_listView2->clear();
    m_listView1->clear();
    m_titles.clear();
    m_label1->clear();
    if (!item) {
        m_label2->clear();
        return;
    }
    const QString path = item->text(0);
    const ElencoCartella listing = CaricaMS(path);
    if (!listing.trovata) {
        m_label2->setText(testoStato(path, StatoCartella::Stato::NonTrovata));
        return;
    }
    setDir1Path(path);
    // The list's tag carries the not-compatible flag from the listing to the state line.
    if (!listing.haMaster)
        m_context.shell.setStatusText(QString::fromLatin1(kCartelleNonTrovate));
    else if (!listing.compatibile && m_listView4->property("tag").toString().isEmpty()) {
        ui::message(this, { messaggioNonCompatibile(path), {}, ui::Icon::Exclamation });
        m_listView4->setProperty("tag", QStringLiteral("X"));
    }
    m_titles = listing.titoli;
    m_listView2->blockSignals(true);
    for (const RigaTitolo &t : std::as_const(m_titles)) {
        auto *line = new QTreeWidgetItem(m_listView2, { t.nome, t.simbolo, t.inizio, t.fine, t.file });
        line->setCheckState(0, Qt::Unchecked);
    }
    m_listView2->blockSignals(false);
    const bool notCompatible = m_listView4->property("tag").toString() == QLatin1String("X");
    m_label2->setText(
        testoStato(path, notCompatible ? StatoCartella::Stato::NonCompatibile : StatoCartella::Stato::Pronta));
    m_listView4->setProperty("tag", QString());
}

void ArchiveFoldersWindow::titleSelected(QTreeWidgetItem *item)
{
    if (!item)
        return;
    const int row = m_listView2->indexOfTopLevelItem(item);
    m_listView2->blockSignals(true);
    for (int i = 0; i < m_listView2->topLevelItemCount(); ++i)
        m_listView2->topLevelItem(i)->setCheckState(0, i == row ? Qt::Checked : Qt::Unchecked);
    m_listView2->blockSignals(false);
    if (row < 0 || row >= m_titles.size())
        return;
    const RigaTitolo &title = m_titles[row];
    m_label1->setText(title.nome + QStringLiteral("    [") + title.simbolo + QLatin1Char(']'));
    m_listView1->clear();
    QString error;
    const auto rows = TrovaFileF(title, &error);
    if (!rows) {
        ui::message(this,
            { QStringLiteral("Impossibile leggere le quotazioni di ") + title.nome + QStringLiteral(":\n") + error, {},
                ui::Icon::Exclamation });
        return;
    }
    QList<QTreeWidgetItem *> lines;
    lines.reserve(rows->size());
    for (const QStringList &r : *rows) {
        auto *line = new QTreeWidgetItem(r);
        for (int c = 1; c < r.size(); ++c)
            line->setTextAlignment(c, Qt::AlignRight | Qt::AlignVCenter);
        lines << line;
    }
    m_listView1->addTopLevelItems(lines);
    if (!lines.isEmpty()) {
        m_listView1->setCurrentItem(lines.last());
        m_listView1->scrollToItem(lines.last());
    }
}

void ArchiveFoldersWindow::refreshDuplicates()
{
    m_duplicates = titoliDoppi(folders());
    m_listView3->clear();
    for (const TitoloDoppio &d : std::as_const(m_duplicates))
        new QTreeWidgetItem(m_listView3,
            { d.nome + QStringLiteral(" [") + d.simbolo + QLatin1Char(']'), d.inizio, d.fine, d.cartella });
}

void ArchiveFoldersWindow::removeDuplicate()
{
    const int row = m_listView3->indexOfTopLevelItem(m_listView3->currentItem());
    if (row < 0 || row >= m_duplicates.size()) {
        ui::message(this,
            { QStringLiteral("Nessun titolo è stato selezionato."), QStringLiteral("Rimuovi"), ui::Icon::Information });
        return;
    }
    const TitoloDoppio title = m_duplicates[row];
    if (ui::message(this,
            { QStringLiteral("Confermi la rimozione del titolo ") + title.nome + QStringLiteral(" [") + title.simbolo
                    + QStringLiteral("] dall'archivio\n") + title.cartella
                    + QStringLiteral(" ?\nIl file dei prezzi resta nella cartella."),
                QStringLiteral("Rimuovi"), ui::Icon::Question },
            QMessageBox::Yes | QMessageBox::No)
        != QMessageBox::Yes)
        return;
    const EsitoRimozione outcome = rimuoviTitolo(m_context.db, title);
    for (const Message &a : outcome.avvisi)
        show(a);
    if (!outcome.rimosso)
        return;
    refreshDuplicates();
    if (QTreeWidgetItem *current = m_listView4->currentItem();
        current && stessaCartella(current->text(0), title.cartella))
        folderSelected();
}

} // namespace vm::archives
