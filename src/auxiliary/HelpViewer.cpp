#include "auxiliary/HelpViewer.h"

#include "auxiliary/HelpFiles.h"
#include "gui/MessageBox.h"
#include "gui/SingleWindow.h"

#include <QApplication>
#include <QCursor>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHelpContentWidget>
#include <QHelpEngine>
#include <QHelpIndexWidget>
#include <QHelpLink>
#include <QHelpSearchEngine>
#include <QHelpSearchQueryWidget>
#include <QHelpSearchResultWidget>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTextBrowser>
#include <QTimer>
#include <QVBoxLayout>

namespace vm::aux {

namespace {

QPointer<HelpViewerWindow> g_viewer;
QString g_collectionFolder;

QString collectionFolder()
{
    if (!g_collectionFolder.isEmpty())
        return g_collectionFolder;
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + QStringLiteral("/guida");
}

// A page browser that reads the pages, pictures and style sheet out of the help file.
class HelpBrowser : public QTextBrowser
{
public:
    HelpBrowser(QHelpEngine *engine, QWidget *parent)
        : QTextBrowser(parent)
        , m_engine(engine)
    { }

    QVariant loadResource(int type, const QUrl &name) override
    {
        if (name.scheme() == QLatin1String("qthelp"))
            return m_engine->fileData(name);
        return QTextBrowser::loadResource(type, name);
    }

private:
    QHelpEngine *m_engine;
};

} // namespace

// ---------------------------------------------------------------------------------------------
void HelpViewerWindow::setCollectionFolder(const QString &folder)
{
    g_collectionFolder = folder;
}

HelpViewerWindow *HelpViewerWindow::instance()
{
    return g_viewer;
}

HelpViewerWindow *HelpViewerWindow::open(const QString &helpFile, QWidget *owner)
{
    if (g_viewer && g_viewer->helpFile() != helpFile) {
        delete g_viewer;
        g_viewer = nullptr;
    }
    if (!g_viewer)
        g_viewer = new HelpViewerWindow(helpFile, owner);
    g_viewer->show();
    g_viewer->raise();
    g_viewer->activateWindow();
    return g_viewer;
}

HelpViewerWindow::HelpViewerWindow(const QString &helpFile, QWidget *owner)
    : QWidget(owner, Qt::Window)
    , m_helpFile(helpFile)
{
    setObjectName(QStringLiteral("HelpViewer"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Guida di Valorimetrico"));

    // The installed help may sit in a folder the user cannot write: the viewer keeps its own
    // collection, and the search index that goes with it, in the user's cache.
    QDir().mkpath(collectionFolder());
    m_engine = new QHelpEngine(collectionFolder() + QStringLiteral("/valorimetrico.qhc"), this);
    m_engine->setReadOnly(false);
    m_engine->setupData();
    const QString absolute = QFileInfo(helpFile).absoluteFilePath();
    const QString ns = QHelpEngineCore::namespaceName(absolute);
    if (m_engine->documentationFileName(ns) != absolute) {
        m_engine->unregisterDocumentation(ns);
        m_engine->registerDocumentation(absolute);
    }

    m_panes = new QTabWidget(this);
    m_panes->setObjectName(QStringLiteral("Riquadri"));
    QHelpContentWidget *contents = m_engine->contentWidget();
    contents->setObjectName(QStringLiteral("Sommario"));
    m_panes->addTab(contents, QStringLiteral("Sommario"));

    auto *indexPane = new QWidget;
    m_indexFilter = new QLineEdit(indexPane);
    m_indexFilter->setObjectName(QStringLiteral("FiltroIndice"));
    m_indexFilter->setPlaceholderText(QStringLiteral("Parola da cercare nell'indice"));
    QHelpIndexWidget *index = m_engine->indexWidget();
    index->setObjectName(QStringLiteral("Indice"));
    auto *indexLayout = new QVBoxLayout(indexPane);
    indexLayout->setContentsMargins(0, 0, 0, 0);
    indexLayout->addWidget(m_indexFilter);
    indexLayout->addWidget(index);
    m_panes->addTab(indexPane, QStringLiteral("Indice"));

    auto *searchPane = new QWidget;
    QHelpSearchEngine *searchEngine = m_engine->searchEngine();
    auto *searchLayout = new QVBoxLayout(searchPane);
    searchLayout->setContentsMargins(0, 0, 0, 0);
    searchLayout->addWidget(searchEngine->queryWidget());
    searchLayout->addWidget(searchEngine->resultWidget(), 1);
    m_panes->addTab(searchPane, QStringLiteral("Cerca"));

    m_browser = new HelpBrowser(m_engine, this);
    m_browser->setObjectName(QStringLiteral("Pagina"));
    m_browser->setOpenLinks(false);

    auto *splitter = new QSplitter(this);
    splitter->addWidget(m_panes);
    splitter->addWidget(m_browser);
    splitter->setStretchFactor(1, 3);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(splitter);
    resize(900, 620);
    centreOnScreen(this);

    connect(contents, &QHelpContentWidget::linkActivated, this, &HelpViewerWindow::openLink);
    connect(index, &QHelpIndexWidget::documentActivated, this,
        [this](const QHelpLink &link, const QString &) { openLink(link.url); });
    connect(index, &QHelpIndexWidget::documentsActivated, this, [this](const QList<QHelpLink> &links, const QString &) {
        if (!links.isEmpty())
            openLink(links.first().url);
    });
    connect(
        m_indexFilter, &QLineEdit::textChanged, index, [index](const QString &text) { index->filterIndices(text); });
    connect(m_indexFilter, &QLineEdit::returnPressed, index, &QHelpIndexWidget::activateCurrentItem);
    connect(searchEngine->queryWidget(), &QHelpSearchQueryWidget::search, this,
        [searchEngine] { searchEngine->search(searchEngine->queryWidget()->searchInput()); });
    connect(searchEngine->resultWidget(), &QHelpSearchResultWidget::requestShowLink, this, &HelpViewerWindow::openLink);
    connect(m_browser, &QTextBrowser::anchorClicked, this, &HelpViewerWindow::openLink);
    connect(m_browser, &QTextBrowser::sourceChanged, this,
        [this] { setWindowTitle(QStringLiteral("Guida di Valorimetrico - ") + m_browser->documentTitle()); });
    searchEngine->scheduleIndexDocumentation();
}

void HelpViewerWindow::openLink(const QUrl &url)
{
    if (url.scheme() == QLatin1String("qthelp")) {
        showTopic(url);
        return;
    }
    // Addresses of the maker's site and mail go to the desktop.
    if (!ui::openDocument(url.toString()))
        ui::message(this, { ui::noOpenerText(), {}, ui::Icon::Exclamation });
}

QUrl HelpViewerWindow::currentTopic() const
{
    return m_browser->source();
}

int HelpViewerWindow::currentPane() const
{
    return m_panes->currentIndex();
}

QString HelpViewerWindow::pageTitle() const
{
    return m_browser->documentTitle();
}

void HelpViewerWindow::showTopic(const QUrl &topic)
{
    QUrl page = topic;
    if (m_engine->fileData(page).isEmpty())
        page = QUrl(indirizzoArgomento({}));
    m_browser->setSource(page);
    if (QHelpContentWidget *contents = m_engine->contentWidget()) {
        QUrl bare = page;
        bare.setFragment({});
        const QModelIndex at = contents->indexOf(bare);
        if (at.isValid())
            contents->setCurrentIndex(at);
    }
}

void HelpViewerWindow::showPane(Pane pane)
{
    m_panes->setCurrentIndex(pane);
    if (pane == Index)
        m_indexFilter->setFocus();
}

void HelpViewerWindow::showIndex(const QString &keyword)
{
    showPane(Index);
    m_indexFilter->setText(keyword);
}

void HelpViewerWindow::search(const QString &words)
{
    showPane(Search);
    m_engine->searchEngine()->search(words);
}

QUrl HelpViewerWindow::topicOf(const QString &identifier) const
{
    const QList<QHelpLink> links = m_engine->documentsForIdentifier(identifier);
    return links.isEmpty() ? QUrl() : links.first().url;
}

QString HelpViewerWindow::titleOf(const QUrl &topic) const
{
    const QByteArray page = m_engine->fileData(topic);
    const qsizetype start = page.indexOf("<title>");
    const qsizetype end = page.indexOf("</title>");
    return start >= 0 && end > start ? QString::fromUtf8(page.mid(start + 7, end - start - 7)).trimmed() : QString();
}

// ---------------------------------------------------------------------------------------------
HtmlHelp::HtmlHelp(QWidget *owner, const QString &helpFile)
    : m_owner(owner)
    , m_helpFile(helpFile)
{ }

QString HtmlHelp::missingText()
{
    return QStringLiteral("File Help di valorimetrico non trovato.");
}

QString HtmlHelp::missingTitle()
{
    return QStringLiteral("Help non trovato");
}

HelpViewerWindow *HtmlHelp::viewer()
{
    const QString file = fileSenzaArgomento(m_helpFile);
    if (file.isEmpty() || !QFileInfo(file).isFile()) {
        ui::message(m_owner, { missingText(), missingTitle(), ui::Icon::Exclamation });
        return nullptr;
    }
    return HelpViewerWindow::open(file, m_owner);
}

bool HtmlHelp::DisplayTopic(const QString &topic)
{
    HelpViewerWindow *v = viewer();
    if (!v)
        return false;
    const QString page = topic.isEmpty() ? argomentoDelNome(m_helpFile) : topic;
    v->showTopic(QUrl(indirizzoArgomento(page)));
    return true;
}

bool HtmlHelp::DisplayContext(int context)
{
    return DisplayWindow(finestraDelContesto(context));
}

bool HtmlHelp::DisplayWindow(const QString &objectName)
{
    HelpViewerWindow *v = viewer();
    if (!v)
        return false;
    const QUrl topic = objectName.isEmpty() ? QUrl() : v->topicOf(objectName);
    v->showTopic(topic.isValid() ? topic : QUrl(indirizzoArgomento({})));
    return true;
}

bool HtmlHelp::HelpContext(int context, const QString &windowName)
{
    if (!DisplayContext(context))
        return false;
    if (HelpViewerWindow *v = HelpViewerWindow::instance(); v && !windowName.isEmpty())
        v->setWindowTitle(windowName);
    return true;
}

bool HtmlHelp::DisplaySearch()
{
    HelpViewerWindow *v = viewer();
    if (v)
        v->showPane(HelpViewerWindow::Search);
    return v;
}

bool HtmlHelp::DisplayTOC()
{
    HelpViewerWindow *v = viewer();
    if (v)
        v->showPane(HelpViewerWindow::Contents);
    return v;
}

bool HtmlHelp::DisplayIndex(const QString &keyword)
{
    HelpViewerWindow *v = viewer();
    if (v)
        v->showIndex(keyword);
    return v;
}

void HtmlHelp::PopUp(const QString &text)
{
    auto *popup = new QLabel(text, nullptr, Qt::ToolTip);
    popup->setObjectName(QStringLiteral("PopUp"));
    popup->setAttribute(Qt::WA_DeleteOnClose);
    popup->setFont(QFont(QStringLiteral("Verdana"), 8));
    popup->setWordWrap(true);
    popup->setMaximumWidth(360);
    popup->setMargin(6);
    popup->setStyleSheet(QStringLiteral("QLabel { background: #ffffe1; border: 1px solid black; }"));
    QWidget *active = QApplication::activeWindow();
    if (!active)
        active = m_owner;
    const QPoint at = active ? active->mapToGlobal(QPoint(24, 24)) : QCursor::pos();
    popup->adjustSize();
    popup->move(at);
    popup->show();
    // Gone at the next click or after a while, as a pop-up help text is.
    QTimer::singleShot(8000, popup, &QWidget::close);
}

void HtmlHelp::HelpContextPop(int controlId)
{
    QWidget *control = QApplication::widgetAt(QCursor::pos());
    QString text = control ? (control->whatsThis().isEmpty() ? control->toolTip() : control->whatsThis()) : QString();
    if (text.isEmpty()) {
        HelpViewerWindow *v = HelpViewerWindow::instance();
        if (v)
            text = v->titleOf(v->topicOf(finestraDelContesto(controlId)));
    }
    if (!text.isEmpty())
        PopUp(text);
}

void showHelp(QWidget *owner, const ProgramState &state, const QString &windowName)
{
    // F1 in the viewer itself leaves the page being read where it is.
    if (HelpViewerWindow *v = HelpViewerWindow::instance(); v && windowName == v->objectName()) {
        v->raise();
        return;
    }
    HtmlHelp help(owner, fileProgramma(QString::fromLatin1(kFileGuida), state));
    if (help.HelpFile().isEmpty()) {
        ui::message(owner, { HtmlHelp::missingText(), HtmlHelp::missingTitle(), ui::Icon::Exclamation });
        return;
    }
    if (windowName.isEmpty())
        help.DisplayTopic();
    else
        help.DisplayWindow(windowName);
}

} // namespace vm::aux
