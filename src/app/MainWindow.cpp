#include "app/MainWindow.h"

#include "core/ProgramFolder.h"
#include "core/ProgramInfo.h"
#include "core/ProgramState.h"
#include "core/Settings.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/ProgressBar.h"
#include "gui/SingleWindow.h"
#include "gui/ThemeIcons.h"
#include "metastock/FolderCheck.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QCursor>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPixmap>
#include <QScreen>
#include <QStandardPaths>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

namespace vm {

namespace {

QIcon colourSwatch(int index)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(QColor::fromRgb(consoleColourRgb(index).value_or(0xff000000)));
    return QIcon(pixmap);
}

} // namespace

// ---------------------------------------------------------------------------------------------
StatusPanel::StatusPanel(int widthPx, QWidget *parent)
    : QWidget(parent)
    , m_image(new QLabel(this))
    , m_text(new QLabel(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(2, 0, 2, 0);
    layout->setSpacing(3);
    layout->addWidget(m_image);
    layout->addWidget(m_text, 1);
    m_image->hide();
    m_text->hide();
    if (widthPx > 0)
        setFixedWidth(widthPx);
}

void StatusPanel::setText(const QString &text)
{
    m_fullText = text;
    // A fixed-width panel cuts a long text with an ellipsis and shows the whole of it on hover.
    const int room = maximumWidth() < QWIDGETSIZE_MAX ? maximumWidth() - 8 - (m_image->isVisible() ? 20 : 0) : 0;
    const bool cut = room > 0 && m_text->fontMetrics().horizontalAdvance(text) > room;
    m_text->setText(cut ? m_text->fontMetrics().elidedText(text, Qt::ElideRight, room) : text);
    m_text->setToolTip(cut ? text : QString());
    // An empty text takes no room, so that an image-only panel as narrow as the protection one shows
    // its whole picture.
    m_text->setVisible(!text.isEmpty());
}

QString StatusPanel::text() const
{
    return m_fullText;
}

void StatusPanel::setIcon(const QIcon &icon, const QString &iconName)
{
    m_iconName = iconName;
    m_image->setPixmap(icon.pixmap(16, 16));
    m_image->setVisible(!iconName.isEmpty());
}

void StatusPanel::mouseReleaseEvent(QMouseEvent *event)
{
    QWidget::mouseReleaseEvent(event);
    Q_EMIT clicked();
}

// ---------------------------------------------------------------------------------------------
MainWindow::MainWindow(ProgramState &state, const SettingsFile &settings, DataEvents &events, QWidget *parent)
    : QMainWindow(parent)
    , m_state(state)
    , m_settings(settings)
    , m_events(events)
{
    setObjectName(QStringLiteral("MDIForm1"));
    setWindowTitle(QString::fromLatin1(kProgramName));
    setWindowFlag(Qt::WindowMaximizeButtonHint, false);
    setAttribute(Qt::WA_QuitOnClose, true);

    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_mdiArea = new QMdiArea(central);
    m_mdiArea->setObjectName(QStringLiteral("MDIClient"));
    m_mdiArea->setBackground(palette().brush(QPalette::Dark));
    layout->addWidget(m_mdiArea, 1);
    setCentralWidget(central);

    // The progress label is painted first, so that start-up shows it while the rest loads.
    buildProgressPanel();
    layout->addWidget(m_progressPanel);
    setProgressLabel(QStringLiteral("Verifica archivi in corso..."));
    showProgressPanel(false);

    buildMenus();
    buildPopupMenus();
    buildToolbars();
    buildStatusBar();
    setDossierProtected(m_state.DossierProtetto);
    applyCommandState();
    Centra();
}

MainWindow::~MainWindow() = default;

QAction *MainWindow::addCommand(QWidget *owner, const QString &name, const QString &caption, const char *icon)
{
    auto *action = new QAction(caption, owner);
    action->setObjectName(name);
    if (icon)
        action->setIcon(themeIcon(icon));
    owner->addAction(action);
    return action;
}

QComboBox *MainWindow::addTitleSelector(QToolBar *bar, const QString &name, std::function<void(int)> onUserChoice)
{
    auto *combo = new QComboBox(bar);
    combo->setObjectName(name);
    combo->setMinimumContentsLength(16);
    bar->addWidget(combo);
    // The tag "X" marks a change made by the program itself, which the handler lets pass.
    connect(combo, &QComboBox::currentIndexChanged, this, [combo, onUserChoice = std::move(onUserChoice)](int index) {
        if (combo->property("tag").toString() != QLatin1String("X") && index >= 0)
            onUserChoice(index);
    });
    return combo;
}

void MainWindow::needs(QAction *action, Hook hook, bool needsArchives)
{
    m_requirements.insert(action, { hook, needsArchives });
}

// The one rule for which commands are enabled and shown: each needs its handler, the quote commands need
// archives that passed the check, and the dossier toolbar's own keys follow the overview's state.
void MainWindow::applyCommandState()
{
    for (auto it = m_requirements.cbegin(); it != m_requirements.cend(); ++it)
        it.key()->setEnabled(
            hasCommand(it.value().hook) && (m_commandState.archivesReady || !it.value().needsArchives));
    if (m_compactAction)
        m_compactAction->setEnabled(bool(m_compactor));
    for (const char *key : { "grafico", "giornata", "spese" })
        button(4, QString::fromLatin1(key))->setVisible(m_commandState.dossierCommandsShown);
    button(4, QStringLiteral("spese"))->setEnabled(hasCommand(Command::FeeSettings));
    button(4, QStringLiteral("anagrafica"))
        ->setEnabled(m_commandState.renameEnabled && hasCommand(Command::RenameTitle));
    button(4, QStringLiteral("aggiorna"))
        ->setEnabled(
            m_commandState.refreshEnabled && m_state.ArchiviCompatibili && hasCommand(Command::RecomputeDossier));
    button(4, QStringLiteral("print"))->setEnabled(m_commandState.printEnabled && hasCommand(Command::PrintDossier));
}

void MainWindow::setCommandState(const CommandState &state)
{
    m_commandState = state;
    applyCommandState();
}

void MainWindow::setCommand(Command command, std::function<void()> handler)
{
    if (handler)
        m_hooks.insert(command, std::move(handler));
    else
        m_hooks.remove(command);
    applyCommandState();
}

bool MainWindow::hasCommand(Command command) const
{
    return m_hooks.contains(command);
}

void MainWindow::setCompactor(Compactor compactor)
{
    m_compactor = std::move(compactor);
    applyCommandState();
}

void MainWindow::run(Hook hook)
{
    if (auto it = m_hooks.constFind(hook); it != m_hooks.cend())
        (*it)();
}

void MainWindow::showView(Hook hook, const QString &viewName)
{
    run(hook);
    setCurrentView(viewName);
}

QMdiSubWindow *MainWindow::addView(QWidget *view)
{
    return m_mdiArea->addSubWindow(view);
}

void MainWindow::setCurrentView(const QString &name)
{
    const QString program = QString::fromLatin1(kProgramName);
    setWindowTitle(name.isEmpty() ? program : program + QStringLiteral(" :: [") + name + QLatin1Char(']'));
    if (m_panels.size() >= 5)
        m_panels[4]->setText(name);
}

void MainWindow::setDossierProtected(bool isProtected)
{
    m_state.DossierProtetto = isProtected;
    const char *icon = isProtected ? "changes-prevent" : "changes-allow";
    if (m_panels.size() >= 4)
        m_panels[3]->setIcon(themeIcon(icon), QString::fromLatin1(icon));
    const QString tip = isProtected ? QStringLiteral("Accesso dossier titoli protetto")
                                    : QStringLiteral("Accesso dossier titoli non protetto");
    statusBar()->setToolTip(tip);
    if (m_panels.size() >= 4)
        m_panels[3]->setToolTip(tip);
}

void MainWindow::setArchivesReady(bool ready)
{
    m_commandState.archivesReady = ready;
    applyCommandState();
}

void MainWindow::fillTitles(TitleSelector selector, const QStringList &titles)
{
    QComboBox *combo = selector == TitleSelector::Quotes ? m_combo1 : m_combo2;
    combo->setProperty("tag", QStringLiteral("X"));
    combo->clear();
    combo->addItems(titles);
    combo->setProperty("tag", QString());
}

void MainWindow::selectTitle(TitleSelector selector, int index)
{
    QComboBox *combo = selector == TitleSelector::Quotes ? m_combo1 : m_combo2;
    combo->setProperty("tag", QStringLiteral("X"));
    combo->setCurrentIndex(index);
    combo->setProperty("tag", QString());
}

int MainWindow::currentTitle(TitleSelector selector) const
{
    return (selector == TitleSelector::Quotes ? m_combo1 : m_combo2)->currentIndex();
}

QMenu *MainWindow::popupMenu(PopupMenu menu)
{
    switch (menu) {
    case PopupMenu::Title:
        return m_titleMenu;
    case PopupMenu::Colours:
        return m_colourMenu;
    case PopupMenu::HistoryType:
        return m_historyTypeMenu;
    case PopupMenu::HistoryColours:
        return m_historyColourMenu;
    }
    return nullptr;
}

void MainWindow::showProgressPanel(bool visible)
{
    m_progressPanel->setVisible(visible);
}

void MainWindow::setProgressLabel(const QString &text, bool warning)
{
    m_label1->setText(text);
    m_label1->setStyleSheet(warning ? QStringLiteral("color: #c00000; font-weight: bold;") : QString());
    m_label1->repaint();
}

StatusPanel *MainWindow::statusPanel(int number) const
{
    return number >= 1 && number <= m_panels.size() ? m_panels[number - 1] : nullptr;
}

void MainWindow::setStatusText(const QString &text, bool ready)
{
    m_panels[0]->setText(text);
    m_panels[0]->setIcon(
        ready ? themeIcon("dialog-information") : QIcon(), ready ? QStringLiteral("dialog-information") : QString());
}

QToolBar *MainWindow::toolbar(int number) const
{
    return number >= 1 && number <= m_toolbars.size() ? m_toolbars[number - 1] : nullptr;
}

QAction *MainWindow::button(int toolbarNumber, const QString &key) const
{
    QToolBar *bar = toolbar(toolbarNumber);
    return bar ? bar->findChild<QAction *>(key, Qt::FindDirectChildrenOnly) : nullptr;
}

// ---------------------------------------------------------------------------------------------
void MainWindow::buildMenus()
{
    QMenuBar *bar = menuBar();
    auto menu = [&](const QString &name, const QString &caption) {
        QMenu *m = bar->addMenu(caption);
        m->setObjectName(name);
        m->menuAction()->setObjectName(name);
        return m;
    };

    QMenu *exitMenu = menu(QStringLiteral("m_exit"), QStringLiteral("&Uscita"));
    connect(addCommand(
                exitMenu, QStringLiteral("m_exit_prog"), QStringLiteral("&Uscita dal programma"), "application-exit"),
        &QAction::triggered, this, [this] {
            unsetCursor();
            close();
        });

    QMenu *data = menu(QStringLiteral("m_dati"), QStringLiteral("&Dati"));
    QAction *quotes
        = addCommand(data, QStringLiteral("m_giornata"), QStringLiteral("&Quotazioni"), "x-office-calendar");
    needs(quotes, Hook::QuoteBoard, true);
    connect(quotes, &QAction::triggered, this, [this] { showView(Hook::QuoteBoard, QStringLiteral("Quotazioni")); });
    QAction *dossier
        = addCommand(data, QStringLiteral("m_dossier"), QStringLiteral("&Dossier titoli"), "x-office-spreadsheet");
    needs(dossier, Hook::DossierOverview, true);
    connect(dossier, &QAction::triggered, this, &MainWindow::VaiDossierTitoli);
    QAction *archives
        = addCommand(data, QStringLiteral("m_archivio_storico"), QStringLiteral("&Metastock"), "drive-harddisk");
    needs(archives, Hook::ArchiveFolders);
    connect(archives, &QAction::triggered, this, &MainWindow::VaiMS);
    data->addSeparator();
    m_compactAction = addCommand(data, QStringLiteral("m_dati_compatta"), QStringLiteral("Compatta Database"));
    connect(m_compactAction, &QAction::triggered, this, &MainWindow::compactDatabase);

    QMenu *tools = menu(QStringLiteral("m_strumenti"), QStringLiteral("&Strumenti"));
    QAction *settings = addCommand(
        tools, QStringLiteral("m_strumenti_impostazioni"), QStringLiteral("&Impostazioni.."), "preferences-system");
    needs(settings, Hook::Tools);
    connect(settings, &QAction::triggered, this, [this] { run(Hook::Tools); });
    QAction *companion = addCommand(tools, QStringLiteral("m_run_quotaflusso"), QStringLiteral("Avvio Quotaflusso..."));
    needs(companion, Hook::Companion);
    connect(companion, &QAction::triggered, this, [this] { run(Hook::Companion); });

    QMenu *info = menu(QStringLiteral("m_info"), QStringLiteral("&?"));
    QAction *help = addCommand(info, QStringLiteral("m_help"), QStringLiteral("&Help"), "help-browser");
    help->setShortcut(QKeySequence::HelpContents);
    needs(help, Hook::Help);
    connect(help, &QAction::triggered, this, [this] { run(Hook::Help); });
    QMenu *web = info->addMenu(themeIcon("internet-web-browser"), QStringLiteral("Valorimetrico sul Web"));
    web->setObjectName(QStringLiteral("M_ms_web"));
    web->menuAction()->setObjectName(QStringLiteral("M_ms_web"));
    const std::tuple<QMenu *, const char *, const char *, const char *, Hook> items[] = {
        { web, "m_mc_htm", "Pagina Valorimetrico", nullptr, Hook::SiteValorimetrico },
        { web, "M_ms_link", "&Home page Quotaflusso ..", nullptr, Hook::SiteQuotaflusso },
        { info, "m_ms_email", "&Invia una Email..", nullptr, Hook::Email },
        { info, "m_leggimi", "&Leggimi", "x-office-document", Hook::Readme },
        { info, "m_autore", "&Informazioni", "dialog-information", Hook::About },
    };
    for (const auto &[owner, name, caption, icon, hook] : items) {
        if (hook == Hook::About)
            info->addSeparator();
        QAction *a = addCommand(owner, QString::fromLatin1(name), QString::fromUtf8(caption), icon);
        needs(a, hook);
        connect(a, &QAction::triggered, this, [this, hook = hook] { run(hook); });
    }
}

void MainWindow::buildPopupMenus()
{
    auto popup = [this](const QString &name, const QString &caption) {
        auto *m = new QMenu(caption, this);
        m->setObjectName(name);
        return m;
    };

    m_titleMenu = popup(QStringLiteral("m_cambia_nome"), QStringLiteral("&Titolo"));
    const std::tuple<const char *, const char *, Hook> titleItems[] = {
        { "m_cn_situazione", "&Situazione", Hook::TitleSituation },
        { "m_cn_modifica", "&Modifica", Hook::RenameTitle },
        { "m_cn_Elimina", "&Elimina", Hook::RemoveTitle },
    };
    for (const auto &[name, caption, hook] : titleItems) {
        QAction *a = addCommand(m_titleMenu, QString::fromLatin1(name), QString::fromLatin1(caption));
        needs(a, hook);
        connect(a, &QAction::triggered, this, [this, hook = hook] { run(hook); });
    }
    addCommand(m_titleMenu, QStringLiteral("m_cn_annulla"), QStringLiteral("&Annulla"));

    m_colourMenu = popup(QStringLiteral("m_colori"), QString());
    for (int i = 0; i < 16; ++i) {
        QAction *a = addCommand(m_colourMenu, QStringLiteral("m_c"), QString::fromLatin1(kConsoleColours[i].name));
        a->setData(i);
        a->setIcon(colourSwatch(i));
        connect(a, &QAction::triggered, this, [this, i] { chooseColour(i); });
    }

    m_historyTypeMenu = popup(QStringLiteral("m_s_tipo"), QString());
    auto *typeGroup = new QActionGroup(m_historyTypeMenu);
    const char *const typeCaptions[] = { "Barre 3D", "Barre 2D", "Area", "Linea" };
    for (int i = 0; i < 4; ++i) {
        QAction *a = addCommand(m_historyTypeMenu, QStringLiteral("m_s_x"), QString::fromLatin1(typeCaptions[i]));
        a->setData(i);
        a->setCheckable(true);
        typeGroup->addAction(a);
        connect(a, &QAction::triggered, this, [this, i] { setHistoryChartType(i); });
    }

    m_historyColourMenu = popup(QStringLiteral("m_s_colori"), QString());
    auto *targetGroup = new QActionGroup(m_historyColourMenu);
    const std::pair<const char *, const char *> targets[]
        = { { "m_s_sfondo", "&Sfondo" }, { "m_s_dati", "&Dati" }, { "m_s_testo", "&Testo" } };
    const char *const elements[] = { "S", "D", "A" };
    for (int i = 0; i < 3; ++i) {
        QAction *a = addCommand(
            m_historyColourMenu, QString::fromLatin1(targets[i].first), QString::fromLatin1(targets[i].second));
        a->setCheckable(true);
        targetGroup->addAction(a);
        const QString element = QString::fromLatin1(elements[i]);
        connect(a, &QAction::triggered, this, [this, element] { popUpColours(QStringLiteral("S"), element); });
    }
}

void MainWindow::buildToolbars()
{
    auto bar = [this](int number) {
        auto *t = new QToolBar(QStringLiteral("Toolbar%1").arg(number), this);
        t->setObjectName(QStringLiteral("Toolbar%1").arg(number));
        t->setIconSize(QSize(22, 22));
        t->setMovable(false);
        addToolBar(Qt::TopToolBarArea, t);
        m_toolbars << t;
        return t;
    };
    auto key = [this](QToolBar *t, const char *name, const char *tip, const char *icon) {
        return addCommand(t, QString::fromLatin1(name), QString::fromUtf8(tip), icon);
    };

    QToolBar *t1 = bar(1);
    connect(key(t1, "uscita", "Uscita", "application-exit"), &QAction::triggered, this, [this] {
        unsetCursor();
        close();
    });
    QAction *ms = key(t1, "ms", "Archivi metastock", "drive-harddisk");
    needs(ms, Hook::ArchiveFolders);
    connect(ms, &QAction::triggered, this, &MainWindow::VaiMS);
    QAction *portfolio = key(t1, "portafoglio", "Dossier titoli", "x-office-spreadsheet");
    needs(portfolio, Hook::DossierOverview); // answers with a message while the archives are not ready
    connect(portfolio, &QAction::triggered, this, [this] {
        if (!m_state.ArchiviCompatibili) {
            ui::message(this,
                { QStringLiteral("I dati metastock non sono inseriti da Quotaflusso, questa funzione "
                                 "non è disponibile") });
            return;
        }
        VaiDossierTitoli();
        CommandState commands = m_commandState;
        commands.printEnabled = true;
        setCommandState(commands);
        setCurrentView(QStringLiteral("Dossier-Asset"));
    });
    QAction *day = key(t1, "giornata", "Quotazioni", "x-office-calendar");
    needs(day, Hook::QuoteBoard, true);
    connect(day, &QAction::triggered, this, [this] { showView(Hook::QuoteBoard, QStringLiteral("Quotazioni")); });
    QAction *trend = key(t1, "grafico", "Andamento del dossier", "utilities-system-monitor");
    needs(trend, Hook::DossierHistory, true);
    connect(
        trend, &QAction::triggered, this, [this] { showView(Hook::DossierHistory, QStringLiteral("Dossier-Trend")); });
    QAction *dossierDay = key(t1, "giornatadoss", "Giornata del dossier", "office-calendar");
    needs(dossierDay, Hook::QuoteBoardDossier, true);
    connect(dossierDay, &QAction::triggered, this,
        [this] { showView(Hook::QuoteBoardDossier, QStringLiteral("Dossier Giornata")); });

    QToolBar *t2 = bar(2);
    const std::tuple<const char *, const char *, const char *, Hook> lists[] = {
        { "gruppi", "Gruppi personali", "system-users", Hook::QuoteGroups },
        { "personali", "Titoli personali", "bookmark-new", Hook::QuotePersonal },
        { "az", "Tutti i titoli", "format-justify-fill", Hook::QuoteAll },
    };
    for (const auto &[name, tip, icon, hook] : lists) {
        QAction *a = key(t2, name, tip, icon);
        needs(a, hook, true);
        connect(a, &QAction::triggered, this, [this, hook = hook] {
            QApplication::setOverrideCursor(Qt::WaitCursor);
            run(hook);
            QApplication::restoreOverrideCursor();
        });
    }
    // These two only carry the quote board's own menus.
    needs(key(t2, "graph", "Grafico", "x-office-presentation"), Hook::QuoteBoard, true);
    needs(key(t2, "tipo", "Tipo di lista", "preferences-system"), Hook::QuoteBoard, true);

    QToolBar *t3 = bar(3);
    QAction *search = key(t3, "cerca", "Cerca negli archivi", "system-search");
    needs(search, Hook::ArchiveSearch);
    connect(search, &QAction::triggered, this, [this] { run(Hook::ArchiveSearch); });
    QAction *test = key(t3, "test", "Verifica archivi metastock", "dialog-warning");
    connect(test, &QAction::triggered, this, [this] {
        showProgressPanel(false);
        VerificaDirMS();
    });
    connect(key(t3, "crack", "Report verifica archivi", "text-x-generic"), &QAction::triggered, this, [this] {
        if (!ui::openDocument(m_state.file(QString::fromLatin1(kCheckReportFileName))))
            ui::message(this, { ui::noOpenerText(), {}, ui::Icon::Exclamation });
    });

    // Dossier commands; their order counts: the views refer to buttons 5, 6, 7 and 9 to 11.
    // "anagrafica", "aggiorna" and "print" (5 to 7) follow the overview's state, not only their hooks.
    addToolBarBreak(); // the dossier and chart commands, with their title selectors, on a second row
    QToolBar *t4 = bar(4);
    connect(key(t4, "sx", "Titolo precedente", "go-previous"), &QAction::triggered, this,
        [this] { stepTitle(m_combo2, -1); });
    connect(
        key(t4, "dx", "Titolo successivo", "go-next"), &QAction::triggered, this, [this] { stepTitle(m_combo2, 1); });
    QAction *newTitle = key(t4, "new", "Nuovo titolo", "document-new");
    needs(newTitle, Hook::NewTitle);
    connect(newTitle, &QAction::triggered, this, [this] { run(Hook::NewTitle); });
    QAction *pass = key(t4, "pass", "Password di accesso al dossier", "changes-prevent");
    needs(pass, Hook::PasswordWindow);
    connect(pass, &QAction::triggered, this, [this] { run(Hook::PasswordWindow); });
    QAction *rename = key(t4, "anagrafica", "Cambia nome al titolo", "document-properties");
    connect(rename, &QAction::triggered, this, [this] { run(Hook::RenameTitle); });
    QAction *refresh = key(t4, "aggiorna", "Aggiorna il dossier", "view-refresh");
    connect(refresh, &QAction::triggered, this, [this] { run(Hook::RecomputeDossier); });
    QAction *print = key(t4, "print", "Stampa il dossier", "document-print");
    connect(print, &QAction::triggered, this, [this] {
        if (ui::message(this,
                { QStringLiteral("Confermi la stampa del dossier titoli?"), QStringLiteral("Stampa"),
                    ui::Icon::Question },
                QMessageBox::Yes | QMessageBox::No)
            == QMessageBox::Yes)
            run(Hook::PrintDossier);
    });
    QAction *calculator = key(t4, "calc", "Calcolatrice", "accessories-calculator");
    needs(calculator, Hook::Calculator);
    connect(calculator, &QAction::triggered, this, [this] { run(Hook::Calculator); });
    QAction *history = key(t4, "grafico", "Andamento del dossier", "utilities-system-monitor");
    needs(history, Hook::DossierHistory, true);
    connect(history, &QAction::triggered, this,
        [this] { showView(Hook::DossierHistory, QStringLiteral("Dossier-Trend")); });
    QAction *dossierQuotes = key(t4, "giornata", "Giornata del dossier", "office-calendar");
    needs(dossierQuotes, Hook::QuoteBoardDossier, true);
    connect(dossierQuotes, &QAction::triggered, this,
        [this] { showView(Hook::QuoteBoardDossier, QStringLiteral("Giornata Dossier")); });
    connect(key(t4, "spese", "Spese", "accessories-text-editor"), &QAction::triggered, this,
        [this] { run(Hook::FeeSettings); });

    m_combo2 = addTitleSelector(t4, QStringLiteral("Combo2"), [this](int index) {
        CommandState commands = m_commandState;
        commands.renameEnabled = commands.printEnabled = true;
        setCommandState(commands);
        Q_EMIT m_events.dossierTitleChosen(index);
    });

    QToolBar *t5 = bar(5);
    connect(key(t5, "sx", "Titolo precedente", "go-previous"), &QAction::triggered, this,
        [this] { stepTitle(m_combo1, -1); });
    connect(
        key(t5, "dx", "Titolo successivo", "go-next"), &QAction::triggered, this, [this] { stepTitle(m_combo1, 1); });

    auto buttonMenu = [&](const char *name, const char *tip, const char *icon) {
        QAction *a = key(t5, name, tip, icon);
        auto *m = new QMenu(this);
        m->setObjectName(QString::fromLatin1(name));
        a->setMenu(m);
        if (auto *tb = qobject_cast<QToolButton *>(t5->widgetForAction(a)))
            tb->setPopupMode(QToolButton::InstantPopup);
        return m;
    };
    // A checked choice per menu, written to its key of the quote board's chart at once.
    auto choiceMenu = [&](const char *name, const char *tip, const char *icon, const IniKey &setting,
                          std::initializer_list<std::pair<const char *, int>> items) {
        QMenu *m = buttonMenu(name, tip, icon);
        auto *group = new QActionGroup(m);
        const qint16 saved = m_settings.readInt16(setting).value;
        for (const auto &[itemName, value] : items) {
            QAction *a = addCommand(m, QString::fromLatin1(itemName), QString::fromLatin1(itemName));
            a->setCheckable(true);
            a->setChecked(value == saved);
            group->addAction(a);
            connect(a, &QAction::triggered, this, [this, setting, value = value] {
                m_settings.write(setting, value);
                Q_EMIT m_events.quoteChartSettingsChanged();
            });
        }
    };
    choiceMenu("tipografico", "Tipo di grafico", "x-office-presentation", settings::GraficoTipo,
        { { "hlc", 1 }, { "linea", 2 }, { "area", 3 } });

    QMenu *colours = buttonMenu("colori", "Colori del grafico", "preferences-desktop-theme");
    const std::pair<const char *, const char *> colourItems[] = { { "dati", "D" }, { "sfondo", "S" }, { "assi", "A" } };
    for (const auto &[name, element] : colourItems) {
        const QString e = QString::fromLatin1(element);
        connect(addCommand(colours, QString::fromLatin1(name), QString::fromLatin1(name)), &QAction::triggered, this,
            [this, e] { popUpColours(QStringLiteral("G"), e); });
    }

    choiceMenu("griglie", "Griglie del grafico", "format-justify-fill", settings::GraficoGriglie,
        { { "orizzontali", 1 }, { "vericali", 2 }, { "tutte", 3 }, { "nessuna", 0 } });

    m_combo1 = addTitleSelector(
        t5, QStringLiteral("Combo1"), [this](int index) { Q_EMIT m_events.quoteTitleChosen(index); });

    for (const char *k : { "anagrafica", "aggiorna", "print" })
        button(4, QString::fromLatin1(k))->setEnabled(false);
}

void MainWindow::buildStatusBar()
{
    QStatusBar *bar = statusBar();
    bar->setObjectName(QStringLiteral("StatusBar1"));
    bar->setSizeGripEnabled(false);
    // Panel 2 takes the room left, so that the folder check's outcome reads whole in a window of
    // fixed width; panel 1 needs little more than "Pronto" and the view's name fits panel 5.
    const int widths[] = { px(4500), 0, px(30), px(320), px(2000) };
    for (int i = 0; i < 5; ++i) {
        auto *panel = new StatusPanel(widths[i], bar);
        panel->setObjectName(QStringLiteral("Panel%1").arg(i + 1));
        bar->addWidget(panel, i == 1 ? 1 : 0);
        m_panels << panel;
    }
    connect(m_panels[3], &StatusPanel::clicked, this, [this] { run(Hook::PasswordWindow); });
}

void MainWindow::buildProgressPanel()
{
    m_progressPanel = new QFrame(this);
    m_progressPanel->setObjectName(QStringLiteral("Picture1"));
    static_cast<QFrame *>(m_progressPanel)->setFrameShape(QFrame::StyledPanel);
    m_progressPanel->setFixedHeight(160);
    auto *layout = new QHBoxLayout(m_progressPanel);
    auto *picture = new QLabel(m_progressPanel);
    picture->setObjectName(QStringLiteral("Picture2"));
    picture->setPixmap(themeIcon("drive-harddisk").pixmap(48, 48));
    picture->setAlignment(Qt::AlignTop);
    layout->addWidget(picture);
    auto *column = new QVBoxLayout;
    m_label1 = new QLabel(m_progressPanel);
    m_label1->setObjectName(QStringLiteral("Label1"));
    column->addWidget(m_label1);
    m_progressBar = new ProgressBar(m_progressPanel);
    m_progressBar->setObjectName(QStringLiteral("PicStatus"));
    m_progressBar->setFixedHeight(18);
    column->addWidget(m_progressBar);
    m_listView1 = new QListWidget(m_progressPanel);
    m_listView1->setObjectName(QStringLiteral("ListView1"));
    column->addWidget(m_listView1, 1);
    layout->addLayout(column, 1);
}

// ---------------------------------------------------------------------------------------------
void MainWindow::Centra()
{
    setFixedSize(px(12000), px(8100));
    centreOnScreen(this);
}

void MainWindow::VaiDossierTitoli()
{
    setCurrentView(QStringLiteral("Dossier-Asset"));
    CommandState commands = m_commandState;
    commands.renameEnabled = false;
    setCommandState(commands);
    if (m_state.DossierProtetto && hasHook(Hook::PasswordPrompt)) {
        unsetCursor();
        run(Hook::PasswordPrompt);
        return;
    }
    commands.refreshEnabled = true; // enabled while the archives passed the check
    setCommandState(commands);
    run(Hook::DossierOverview);
}

void MainWindow::VaiMS()
{
    setCurrentView(QStringLiteral("Archivi metastock"));
    run(Hook::ArchiveFolders);
}

void MainWindow::VerificaDirMS()
{
    run(Hook::FolderCheck);
}

void MainWindow::stepTitle(QComboBox *combo, int step)
{
    const int next = combo->currentIndex() + step;
    if (next >= 0 && next < combo->count())
        combo->setCurrentIndex(next);
}

void MainWindow::popUpColours(const QString &chart, const QString &element)
{
    m_colourChart = chart;
    m_colourElement = element;
    const char *target = element == QLatin1String("D") ? "m_s_dati"
        : element == QLatin1String("S")                ? "m_s_sfondo"
                                                       : "m_s_testo";
    if (QAction *a = m_historyColourMenu->findChild<QAction *>(QString::fromLatin1(target)))
        a->setChecked(true);
    m_colourMenu->popup(QCursor::pos());
}

void MainWindow::chooseColour(int index)
{
    const std::optional<IniKey> key = colourKey(m_colourChart, m_colourElement);
    if (!key)
        return;
    m_settings.write(*key, index);
    if (m_colourChart == QLatin1String("S"))
        Q_EMIT m_events.historyChartSettingsChanged();
    else
        Q_EMIT m_events.quoteChartSettingsChanged();
}

void MainWindow::setHistoryChartType(int item)
{
    static const int codes[] = { 4, 3, 8, 6 };
    m_settings.write(settings::GraficoStoricoTipo, codes[item]);
    Q_EMIT m_events.historyChartSettingsChanged();
}

void MainWindow::compactDatabase()
{
    if (!m_compactor)
        return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const std::optional<QString> error = m_compactor();
    QApplication::restoreOverrideCursor();
    if (error)
        ui::message(this, { *error, {}, ui::Icon::Critical });
    else
        ui::message(this, { QStringLiteral("Database compattato."), {}, ui::Icon::Exclamation });
}

// ---------------------------------------------------------------------------------------------
void MainWindow::closeEvent(QCloseEvent *event)
{
    unsetCursor();
    if (ui::message(this,
            { QStringLiteral("Confermi l'uscita?"), QStringLiteral("Uscita dal programma"), ui::Icon::Exclamation },
            QMessageBox::Yes | QMessageBox::No)
        != QMessageBox::Yes) {
        event->ignore();
        return;
    }
    event->accept();
}

void MainWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange || isMinimized())
        return;
    if (windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)) {
        // Deferred: changing the state from inside its own notification confuses some window managers.
        QMetaObject::invokeMethod(
            this,
            [this] {
                setWindowState(windowState() & ~(Qt::WindowMaximized | Qt::WindowFullScreen));
                Centra();
            },
            Qt::QueuedConnection);
    }
}

} // namespace vm
