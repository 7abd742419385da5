#include "auxiliary/SplashWindow.h"

#include "auxiliary/Chime.h"
#include "core/ProgramInfo.h"
#include "core/Settings.h"
#include "gui/SingleWindow.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <pwd.h>
#include <unistd.h>

namespace vm::aux {

namespace {

QLabel *namedLabel(const char *name, const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(QString::fromLatin1(name));
    return label;
}

} // namespace

SplashWindow *SplashWindow::instance()
{
    return singleWindow<SplashWindow>().get();
}

SplashWindow *SplashWindow::load(const SettingsFile &settings, QWidget *owner)
{
    return singleWindow<SplashWindow>().open(settings, owner);
}

void SplashWindow::showAbout(const SettingsFile &settings, QWidget *owner)
{
    SplashWindow *w = load(settings, owner);
    w->attach(owner, {});
    w->show();
    w->raise();
    w->activateWindow();
}

void SplashWindow::attach(QWidget *mainWindow, std::function<void()> startFolderCheck)
{
    m_mainWindow = mainWindow;
    m_startFolderCheck = std::move(startFolderCheck);
}

void SplashWindow::setShowAtStartup(bool show)
{
    m_check1->setChecked(show);
}

SplashWindow::Animation SplashWindow::animate(int counter)
{
    Animation a {};
    for (int &colour : a.colours) {
        colour = counter;
        if (--counter < 11)
            counter = 14;
    }
    a.counter = counter;
    return a;
}

QString SplashWindow::loginName()
{
    QString name;
    if (const passwd *pw = getpwuid(geteuid()); pw && pw->pw_name)
        name = QString::fromLocal8Bit(pw->pw_name);
    if (name.isEmpty())
        name = qEnvironmentVariable("USER", qEnvironmentVariable("LOGNAME"));
    return name.left(255);
}

SplashWindow::SplashWindow(const SettingsFile &settings, QWidget *owner)
    : QDialog(owner, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint)
    , m_settings(settings)
    , m_mainWindow(owner)
{
    setObjectName(QStringLiteral("Form135"));
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(false);
    setWindowTitle(QString::fromLatin1(kProgramName));

    auto *layout = new QVBoxLayout(this);

    // The title twice, the second a shade behind the first.
    auto *titleArea = new QWidget(this);
    titleArea->setFixedHeight(44);
    QFont titleFont = font();
    titleFont.setPointSize(22);
    titleFont.setBold(true);
    QLabel *shadow = namedLabel("Label11", QString::fromLatin1(kProgramName), titleArea);
    QLabel *title = namedLabel("Label10", QString::fromLatin1(kProgramName), titleArea);
    for (QLabel *l : { shadow, title })
        l->setFont(titleFont);
    shadow->setStyleSheet(QStringLiteral("color: #808080;"));
    title->setStyleSheet(QStringLiteral("color: #000080;"));
    shadow->move(2, 2);
    title->move(0, 0);
    layout->addWidget(titleArea);

    layout->addWidget(namedLabel("Label6", QStringLiteral("Gestione dossier titoli metastock"), this));

    auto *colourRow = new QHBoxLayout;
    for (int i = 0; i < 4; ++i) {
        m_labels9[i] = namedLabel("Label9", QString(), this);
        m_labels9[i]->setProperty("index", i);
        m_labels9[i]->setFixedSize(24, 8);
        m_labels9[i]->setAutoFillBackground(true);
        colourRow->addWidget(m_labels9[i]);
    }
    colourRow->addStretch(1);
    layout->addLayout(colourRow);

    auto *facts = new QGridLayout;
    facts->addWidget(namedLabel("Label8", QStringLiteral("Quotaflusso Team"), this), 0, 0);
    facts->addWidget(namedLabel("Label2", programVersionLabel(), this), 0, 1);
    facts->addWidget(namedLabel("Label3", QStringLiteral("Febbraio 2003"), this), 0, 2);
    layout->addLayout(facts);

    auto *text1 = new QPlainTextEdit(this);
    text1->setObjectName(QStringLiteral("Text1"));
    text1->setReadOnly(true);
    text1->setPlainText(QStringList {
        QStringLiteral("Valorimetrico è un programma gratuito che permette di gestire un dossier titoli traendo "
                       "i valori dai dati metastock."),
        QStringLiteral("Il programma e il servizio non costituisce sollecitazione al pubblico risparmio."),
        QStringLiteral("Prodotto concesso a: ") + loginName(),
        QStringLiteral("Prima dell'utilizzo si consiglia di leggere attentamente il file valorimetrico_info.pdf "
                       "incluso nel pacchetto di installazione."),
    }
                            .join(QLatin1Char('\n')));
    layout->addWidget(text1, 1);

    layout->addWidget(namedLabel("lblDescription", QStringLiteral("Autori:"), this));
    layout->addWidget(
        namedLabel("Credits", QStringLiteral("Quotaflusso Team: progetto, programmazione e prove."), this));

    m_label7 = namedLabel("Label7", QStringLiteral("0"), this);
    m_label7->hide();

    auto *bottom = new QHBoxLayout;
    m_check1 = new QCheckBox(QStringLiteral("Mostra questa schermata all'avvio di Valorimetrico"), this);
    m_check1->setObjectName(QStringLiteral("Check1"));
    bottom->addWidget(m_check1, 1);
    auto *command1 = new QPushButton(QStringLiteral("&OK"), this);
    command1->setObjectName(QStringLiteral("Command1"));
    command1->setDefault(true);
    bottom->addWidget(command1);
    layout->addLayout(bottom);

    setFixedSize(480, 340);
    centreOnScreen(this);

    playChime();

    // A value that is not a number leaves the box unchecked here; the start-up reports it.
    m_check1->setChecked(m_settings.splash().value);
    // Connected after the load, so that only a change, never the load itself, writes the setting.
    connect(m_check1, &QCheckBox::toggled, this, [this](bool checked) { m_settings.setSplash(checked); });
    connect(command1, &QPushButton::clicked, this, [this, command1] {
        if (m_mainWindow) {
            m_mainWindow->setEnabled(true);
            m_mainWindow->activateWindow();
        }
        command1->setProperty("tag", QStringLiteral("W"));
        close();
    });

    m_timer = new QTimer(this);
    m_timer->setObjectName(QStringLiteral("Timer1"));
    m_timer->setInterval(kTickMs);
    connect(m_timer, &QTimer::timeout, this, &SplashWindow::tick);
    m_timer->start();
}

void SplashWindow::tick()
{
    const Animation a = animate(m_colourCounter);
    m_colourCounter = a.counter;
    for (int i = 0; i < 4; ++i) {
        QPalette pal = m_labels9[i]->palette();
        pal.setColor(QPalette::Window, QColor::fromRgb(consoleColourRgb(a.colours[i]).value_or(0xff000000)));
        m_labels9[i]->setPalette(pal);
    }
    if (m_tag == QLatin1String("X"))
        setTicks(m_label7->text().toInt() + 1);
}

void SplashWindow::setTicks(int ticks)
{
    m_label7->setText(QString::number(ticks));
    if (ticks >= kClosingTick) {
        m_timer->stop();
        close();
    }
}

void SplashWindow::closeEvent(QCloseEvent *event)
{
    m_timer->stop();
    event->accept();
    if (m_mainWindow) {
        m_mainWindow->setEnabled(true);
        m_mainWindow->activateWindow();
    }
    // Whichever way the start-up splash goes, the check starts once.
    if (m_tag == QLatin1String("X") && !m_checkStarted && m_startFolderCheck) {
        m_checkStarted = true;
        m_startFolderCheck();
    }
}

} // namespace vm::aux
