#include "operations/OperationWindows.h"

#include "core/Format.h"
#include "core/Settings.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/Shell.h"
#include "metastock/Master.h"
#include "operations/AmountField.h"
#include "operations/Registra.h"
#include "operations/TitleSituationWindow.h"
#include "store/Database.h"

#include <QComboBox>
#include <QDateEdit>
#include <QEvent>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>

namespace vm::operations {

namespace {

constexpr int kLabelWidth = 120;
constexpr int kFieldX = 136;
constexpr int kFieldWidth = 150;
constexpr int kRow = 30;

QDateEdit *dateEdit(QWidget *parent, const QRect &geometry)
{
    auto *d = new QDateEdit(parent);
    d->setObjectName(QStringLiteral("DTPicker1"));
    d->setCalendarPopup(true);
    d->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
    d->setGeometry(geometry);
    return d;
}

QString utf8(const char *text)
{
    return QString::fromUtf8(text);
}

} // namespace

// ---------------------------------------------------------------------------------------------
OperationForm::OperationForm(const WindowContext &context, Finestra finestra, const QString &caption)
    : QWidget(
        context.shell.window(), Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::CustomizeWindowHint)
    , m_context(context)
    , m_finestra(finestra)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(caption);
}

QLabel *OperationForm::addLabel(QWidget *parent, const QString &text, const QRect &geometry, const QString &name)
{
    auto *label = new QLabel(text, parent);
    label->setGeometry(geometry);
    if (!name.isEmpty())
        label->setObjectName(name);
    return label;
}

QLineEdit *OperationForm::addField(QWidget *parent, const QString &name, const QRect &geometry)
{
    auto *field = new QLineEdit(parent);
    field->setObjectName(name);
    field->setGeometry(geometry);
    return field;
}

QPushButton *OperationForm::addButton(const QString &name, const QString &caption, const QRect &geometry)
{
    auto *button = new QPushButton(caption, this);
    button->setObjectName(name);
    button->setAutoDefault(false);
    button->setGeometry(geometry);
    return button;
}

int OperationForm::addOperationFields(QWidget *parent, int y)
{
    addLabel(parent, QStringLiteral("Data"), QRect(10, y + 4, kLabelWidth, 18));
    m_date = dateEdit(parent, QRect(kFieldX, y, kFieldWidth, 24));
    y += kRow;
    addLabel(parent, utf8("Quantità"), QRect(10, y + 4, kLabelWidth, 18));
    m_quantity = addField(parent, QStringLiteral("Text2"), QRect(kFieldX, y, kFieldWidth, 24));
    y += kRow;
    addLabel(parent, QStringLiteral("Prezzo di mercato"), QRect(10, y + 4, kLabelWidth, 18));
    m_market = addField(parent, QStringLiteral("Text1"), QRect(kFieldX, y, kFieldWidth, 24));
    y += kRow;
    addLabel(parent, QStringLiteral("Prezzo netto"), QRect(10, y + 4, kLabelWidth, 18));
    m_net = addField(parent, QStringLiteral("Text6"), QRect(kFieldX, y, kFieldWidth, 24));
    y += kRow;
    addLabel(parent, QStringLiteral("Totale"), QRect(10, y + 4, kLabelWidth, 18));
    m_total = addLabel(parent, QString(), QRect(kFieldX, y, kFieldWidth, 24), QStringLiteral("Label4"));
    m_total->setFrameShape(QFrame::Panel);
    m_total->setFrameShadow(QFrame::Sunken);
    m_total->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    y += kRow;

    for (QLineEdit *f : { m_quantity, m_market, m_net })
        f->setAlignment(Qt::AlignRight);
    AmountField::install(m_quantity, CampoImporto::Quantita);
    AmountField::install(m_market, CampoImporto::PrezzoMercato);
    AmountField::install(m_net, CampoImporto::PrezzoNetto);
    connect(m_quantity, &QLineEdit::textChanged, this, &OperationForm::recompute);
    connect(m_net, &QLineEdit::textChanged, this, &OperationForm::recompute);
    connect(m_date, &QDateEdit::dateChanged, this, &OperationForm::datePicked);
    return y;
}

void OperationForm::recompute()
{
    if (const std::optional<QString> totale = caricoDopoModifica(m_quantity->text(), m_net->text()))
        m_total->setText(*totale);
}

void OperationForm::resetDate()
{
    const QDate oggi = QDate::currentDate();
    const QSignalBlocker blocca(m_date);
    m_date->setDate(dataOperazione(m_finestra, oggi, oggi).data);
}

void OperationForm::datePicked(const QDate &date)
{
    const DataScelta scelta = dataOperazione(m_finestra, date, QDate::currentDate());
    if (scelta.data != date) {
        const QSignalBlocker blocca(m_date);
        m_date->setDate(scelta.data);
    }
    if (scelta.messaggio)
        ui::message(this, *scelta.messaggio);
}

void OperationForm::showCentred()
{
    centreOnScreen(this);
    show();
    raise();
    activateWindow();
}

// ---------------------------------------------------------------------------------------------
PurchaseWindow *PurchaseWindow::instance()
{
    return singleWindow<PurchaseWindow>().get();
}

PurchaseWindow *PurchaseWindow::open(const WindowContext &context)
{
    const bool loaded = instance();
    PurchaseWindow *w = singleWindow<PurchaseWindow>().open(context);
    w->setProperty("tag", QStringLiteral("0"));
    w->Leggi_SPESE();
    w->showCentred();
    if (!loaded)
        w->m_description->setFocus();
    return w;
}

PurchaseWindow::PurchaseWindow(const WindowContext &context)
    : OperationForm(context, Finestra::NuovoTitolo, utf8("Inserimento di un  nuovo titolo in dossier"))
{
    setObjectName(QStringLiteral("Form61"));
    setFixedSize(560, 420);

    addLabel(this, QStringLiteral("Titolo"), QRect(10, 8, 300, 18));
    m_titles = new QComboBox(this);
    m_titles->setObjectName(QStringLiteral("Combo1"));
    m_titles->setGeometry(10, 26, 300, 24);
    m_titles->setMaxVisibleItems(20);
    m_symbols = new QListWidget(this);
    m_symbols->setObjectName(QStringLiteral("List2"));
    m_symbols->hide();
    m_paths = new QListWidget(this);
    m_paths->setObjectName(QStringLiteral("List1"));
    m_paths->hide();

    addLabel(this, QStringLiteral("Descrizione titolo"), QRect(10, 58, 300, 18));
    m_description = addField(this, QStringLiteral("Text5"), QRect(10, 76, 300, 24));
    m_description->setReadOnly(true);
    addLabel(this, QStringLiteral("Ultimo prezzo:"), QRect(10, 108, 90, 18));
    m_lastPrice = addLabel(this, QString(), QRect(100, 108, 210, 18), QStringLiteral("Label16"));

    m_frame = new QGroupBox(QStringLiteral("Operazione"), this);
    m_frame->setObjectName(QStringLiteral("Frame3"));
    m_frame->setGeometry(10, 134, 300, 190);
    addOperationFields(m_frame, 24);
    m_frame->setEnabled(false);

    auto *spese = new QGroupBox(QString::fromLatin1(kTitoloCornice), this);
    spese->setObjectName(QStringLiteral("Frame2"));
    spese->setGeometry(322, 8, 228, 316);
    addLabel(spese, QStringLiteral("Commissioni"), QRect(10, 24, 200, 18));
    m_option[0] = new QRadioButton(QStringLiteral("Fisse"), spese);
    m_option[1] = new QRadioButton(QStringLiteral("Percentuale"), spese);
    for (int i = 0; i < 2; ++i) {
        m_option[i]->setObjectName(QStringLiteral("Option1(%1)").arg(i));
        m_option[i]->setGeometry(10 + i * 100, 44, 100, 20);
        m_option[i]->setEnabled(false);
    }
    m_fees[0] = addField(spese, QStringLiteral("Text4(0)"), QRect(110, 72, 106, 24));
    addLabel(spese, QStringLiteral("Valore"), QRect(10, 76, 90, 18));
    const char *didascalie[] = { nullptr, kEtichettaSpese, kEtichettaBolli };
    for (int i = 1; i < 3; ++i) {
        addLabel(spese, QString::fromLatin1(didascalie[i]), QRect(10, 76 + i * 34, 90, 18));
        m_fees[i] = addField(spese, QStringLiteral("Text4(%1)").arg(i), QRect(110, 72 + i * 34, 106, 24));
    }
    addLabel(spese, QString::fromLatin1(kEtichettaCapitalGain), QRect(10, 178, 90, 18));
    m_capitalGain = addField(spese, QStringLiteral("Text7"), QRect(110, 174, 106, 24));
    // Shown for reference: the fee settings window is where they change.
    for (QLineEdit *f : { m_fees[0], m_fees[1], m_fees[2], m_capitalGain }) {
        f->setReadOnly(true);
        f->setAlignment(Qt::AlignRight);
    }
    auto *impostazioni = new QPushButton(QStringLiteral("&Impostazioni.."), spese);
    impostazioni->setObjectName(QStringLiteral("Command3"));
    impostazioni->setAutoDefault(false);
    impostazioni->setGeometry(10, 270, 206, 28);
    connect(impostazioni, &QPushButton::clicked, this, [this] { FeeSettingsWindow::open(m_context); });

    QPushButton *conferma = addButton(QStringLiteral("Command1"), QStringLiteral("&Conferma"), QRect(10, 340, 120, 30));
    QPushButton *chiudi = addButton(QStringLiteral("Command2"), QStringLiteral("&Chiudi"), QRect(190, 340, 120, 30));
    connect(conferma, &QPushButton::clicked, this, &PurchaseWindow::confirm);
    connect(chiudi, &QPushButton::clicked, this, &QWidget::close);
    connect(m_titles, &QComboBox::activated, this, &PurchaseWindow::titleChosen);

    CaricaElenco();
    resetDate();
}

void PurchaseWindow::CaricaElenco()
{
    std::optional<QStringList> cartelle = m_context.db.folders();
    metastock::ArchivioMS archivio(cartelle.value_or(QStringList()));
    m_elenco = operations::CaricaElenco(archivio);
    m_titles->addItems(m_elenco.descrizioni);
    m_titles->setCurrentIndex(-1);
    m_symbols->addItems(m_elenco.simboli);
    m_paths->addItems(m_elenco.percorsi);
}

void PurchaseWindow::titleChosen(int index)
{
    if (index < 0 || index >= m_elenco.size())
        return;
    m_symbols->setCurrentRow(index);
    m_paths->setCurrentRow(index);
    const QString descrizione = m_elenco.descrizioni[index];
    m_description->setText(descrizione);
    m_lastPrice->setText(ultimoPrezzo(m_elenco.percorsi[index], m_elenco.campi[index]).value_or(QString()));

    const std::optional<store::DossierRow> tenuto = m_context.db.findTitleBySymbol(m_elenco.simboli[index].trimmed());
    if (tenuto) {
        m_frame->setEnabled(false);
        m_frame->setTitle(QStringLiteral("Operazione"));
        ui::message(this, messaggioGiaInDossier(descrizione));
        return;
    }
    m_frame->setEnabled(true);
    m_frame->setTitle(titoloCorniceAcquisto(descrizione));
}

bool PurchaseWindow::event(QEvent *event)
{
    if (event->type() == QEvent::WindowActivate)
        Leggi_SPESE();
    return OperationForm::event(event);
}

void PurchaseWindow::Leggi_SPESE()
{
    const ImpostazioniSpese s = operations::Leggi_SPESE(m_context.settings.path());
    m_option[s.tipoCommissione == 1 ? 1 : 0]->setChecked(true);
    m_fees[0]->setText(s.commissione);
    m_fees[1]->setText(s.spese);
    m_fees[2]->setText(s.bolli);
    m_capitalGain->setText(s.capitalGain);
}

void PurchaseWindow::confirm()
{
    const int index = m_titles->currentIndex();
    const QString titolo = index >= 0 ? m_titles->currentText() : QString();
    if (const std::optional<Message> m = controllaOperazione(m_finestra, titolo, m_quantity->text(), m_net->text())) {
        ui::message(this, *m);
        return;
    }
    const EsitoRegistrazione esito = registraNuovoTitolo(m_context.db, m_elenco.simboli[index], titolo, m_date->date(),
        leggiImporto(m_quantity->text(), m_net->text()), QDate::currentDate());
    if (!esito.ok) {
        if (esito.messaggio)
            ui::message(this, *esito.messaggio);
        return;
    }
    Q_EMIT m_context.events.dossierChanged();
    close();
}

// ---------------------------------------------------------------------------------------------
TradeWindow::TradeWindow(const WindowContext &context, Finestra finestra, const QString &caption, int height)
    : OperationForm(context, finestra, caption)
{
    setFixedSize(330, height);
    addLabel(this, QStringLiteral("Descrizione titolo"), QRect(10, 8, 300, 18));
    m_name = addLabel(this, QString(), QRect(10, 26, 250, 22), QStringLiteral("Label10"));
    m_name->setFrameShape(QFrame::Panel);
    m_name->setFrameShadow(QFrame::Sunken);
    m_id = addLabel(this, QString(), QRect(270, 26, 50, 22), QStringLiteral("Label14"));
    m_id->hide();
    int y = addOperationFields(this, 60);
    addLabel(this, QStringLiteral("Descrizione"), QRect(10, y + 4, kLabelWidth, 18));
    m_note = addField(this, QStringLiteral("Text3"), QRect(kFieldX, y, 184, 24));
    y += kRow + 12;
    QPushButton *conferma = addButton(QStringLiteral("Command1"), QStringLiteral("&Conferma"), QRect(10, y, 120, 30));
    QPushButton *chiudi = addButton(QStringLiteral("Command2"), QStringLiteral("&Chiudi"), QRect(200, y, 120, 30));
    connect(conferma, &QPushButton::clicked, this, &TradeWindow::confirm);
    connect(chiudi, &QPushButton::clicked, this, &QWidget::close);
    m_bottom = y;
}

void TradeWindow::fill(const TitoloAperto &titolo)
{
    m_name->setText(titolo.nome);
    m_name->setProperty("tag", titolo.simbolo.trimmed());
    m_id->setText(QString::number(titolo.idTitolo));
    resetDate();
}

void TradeWindow::confirm()
{
    const QString nome = m_name->text();
    if (const std::optional<Message> m = controllaOperazione(m_finestra, nome, m_quantity->text(), m_net->text())) {
        ui::message(this, *m);
        return;
    }
    const auto registra = m_finestra == Finestra::Vendita ? registraVendita : registraAcquisto;
    const EsitoRegistrazione esito
        = registra(m_context.db, m_id->text().toLongLong(), nome, m_name->property("tag").toString(), m_date->date(),
            leggiImporto(m_quantity->text(), m_net->text()), m_note->text(), QDate::currentDate());
    if (!esito.ok) {
        if (esito.messaggio)
            ui::message(this, *esito.messaggio);
        return;
    }
    if (TitleSituationWindow *situazione = TitleSituationWindow::instance())
        situazione->close();
    Q_EMIT m_context.events.dossierChanged();
    close();
}

FurtherPurchaseWindow *FurtherPurchaseWindow::instance()
{
    return singleWindow<FurtherPurchaseWindow>().get();
}

FurtherPurchaseWindow *FurtherPurchaseWindow::open(const WindowContext &context, const TitoloAperto &titolo)
{
    FurtherPurchaseWindow *w = singleWindow<FurtherPurchaseWindow>().open(context);
    w->fill(titolo);
    w->showCentred();
    w->m_quantity->setFocus();
    return w;
}

FurtherPurchaseWindow::FurtherPurchaseWindow(const WindowContext &context)
    : TradeWindow(context, Finestra::Acquisto, QStringLiteral("Acquisto nuove quote"), 330)
{
    setObjectName(QStringLiteral("Form6"));
}

SaleWindow *SaleWindow::instance()
{
    return singleWindow<SaleWindow>().get();
}

SaleWindow *SaleWindow::open(const WindowContext &context, const TitoloAperto &titolo)
{
    SaleWindow *w = singleWindow<SaleWindow>().open(context);
    w->fill(titolo);
    // The bar steps from one share to all of them, a tenth of the holding a page; it starts on all of them.
    {
        const QSignalBlocker blocca(w->m_bar);
        const int tutte = int(std::clamp<qint64>(titolo.qta, 1, std::numeric_limits<int>::max()));
        w->m_bar->setRange(1, tutte);
        w->m_bar->setSingleStep(1);
        w->m_bar->setPageStep(std::max(1, tutte / 10));
        w->m_bar->setValue(tutte);
    }
    w->m_quantity->setText(QString::number(titolo.qta));
    if (titolo.ultimoPrezzo)
        w->m_market->setText(formatPattern(*titolo.ultimoPrezzo, "0.0##"));
    w->showCentred();
    w->m_quantity->setFocus();
    w->m_quantity->selectAll();
    return w;
}

SaleWindow::SaleWindow(const WindowContext &context)
    : TradeWindow(context, Finestra::Vendita, QStringLiteral("Vendita"), 330)
{
    setObjectName(QStringLiteral("Form66"));
    m_quantity->setGeometry(m_quantity->x(), m_quantity->y(), kFieldWidth - 60, m_quantity->height());
    m_bar = new QScrollBar(Qt::Horizontal, m_quantity->parentWidget());
    m_bar->setObjectName(QStringLiteral("FlatScrollBar1"));
    m_bar->setGeometry(m_quantity->x() + kFieldWidth - 56, m_quantity->y() + 2, 56, 20);
    connect(m_bar, &QScrollBar::valueChanged, this, [this](int value) { m_quantity->setText(QString::number(value)); });
    // Typing moves the bar along, without the bar writing the text back.
    connect(m_quantity, &QLineEdit::textEdited, this, [this](const QString &text) {
        bool ok = false;
        const int q = text.toInt(&ok);
        if (ok && q >= m_bar->minimum() && q <= m_bar->maximum()) {
            const QSignalBlocker blocca(m_bar);
            m_bar->setValue(q);
        }
    });
}

// ---------------------------------------------------------------------------------------------
DividendWindow *DividendWindow::instance()
{
    return singleWindow<DividendWindow>().get();
}

DividendWindow *DividendWindow::open(
    const WindowContext &context, const TitoloAperto &titolo, const QDate &dataStacco, const QString &dividendo)
{
    DividendWindow *w = singleWindow<DividendWindow>().open(context);
    w->m_titolo = titolo;
    w->m_name->setText(titolo.nome);
    w->m_id->setText(QString::number(titolo.idTitolo));
    w->m_date->setDate(dataStacco.isValid() ? dataStacco : QDate::currentDate());
    w->m_dividend->setText(dividendo);
    centreOnScreen(w);
    w->show();
    w->raise();
    w->activateWindow();
    w->m_dividend->setFocus();
    w->m_dividend->selectAll();
    return w;
}

DividendWindow::DividendWindow(const WindowContext &context)
    : QWidget(
        context.shell.window(), Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::CustomizeWindowHint)
    , m_context(context)
{
    setObjectName(QStringLiteral("Form7"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Stacco dividendo"));
    setFixedSize(330, 190);

    m_name = new QLabel(this);
    m_name->setObjectName(QStringLiteral("Label1"));
    m_name->setGeometry(10, 10, 250, 22);
    m_name->setFrameShape(QFrame::Panel);
    m_name->setFrameShadow(QFrame::Sunken);
    m_id = new QLabel(this);
    m_id->setObjectName(QStringLiteral("Label2"));
    m_id->hide();
    auto *didascalia = new QLabel(QStringLiteral("Ultima data Stacco"), this);
    didascalia->setGeometry(10, 48, 140, 18);
    m_date = dateEdit(this, QRect(160, 44, 150, 24));
    didascalia = new QLabel(QStringLiteral("Dividendo per azione"), this);
    didascalia->setGeometry(10, 82, 140, 18);
    m_dividend = new QLineEdit(this);
    m_dividend->setObjectName(QStringLiteral("Text1"));
    m_dividend->setGeometry(160, 78, 150, 24);
    m_dividend->setAlignment(Qt::AlignRight);
    AmountField::install(m_dividend, CampoImporto::Commissione);

    auto *conferma = new QPushButton(QStringLiteral("&Conferma"), this);
    conferma->setObjectName(QStringLiteral("Command1"));
    conferma->setGeometry(10, 140, 120, 30);
    conferma->setAutoDefault(false);
    auto *chiudi = new QPushButton(QStringLiteral("&Chiudi"), this);
    chiudi->setObjectName(QStringLiteral("Command2"));
    chiudi->setGeometry(190, 140, 120, 30);
    chiudi->setAutoDefault(false);
    connect(conferma, &QPushButton::clicked, this, &DividendWindow::save);
    connect(chiudi, &QPushButton::clicked, this, &QWidget::close);
}

void DividendWindow::save()
{
    const auto esito = salvaDividendo(m_dividend->text(), m_date->date(), m_titolo.prezzoMedio, m_titolo.qta);
    if (const auto *m = std::get_if<Message>(&esito)) {
        ui::message(this, *m);
        m_dividend->setFocus();
        m_dividend->selectAll();
        return;
    }
    const EsitoDividendo &e = std::get<EsitoDividendo>(esito);
    const EsitoRegistrazione r = registraDividendo(m_context.db, m_id->text().toLongLong(), e.dataStacco, e.dividendo);
    if (!r.ok) {
        if (r.messaggio)
            ui::message(this, *r.messaggio);
        return;
    }
    Q_EMIT saved(e);
    close();
}

// ---------------------------------------------------------------------------------------------
FeeSettingsWindow *FeeSettingsWindow::instance()
{
    return singleWindow<FeeSettingsWindow>().get();
}

FeeSettingsWindow *FeeSettingsWindow::open(const WindowContext &context)
{
    FeeSettingsWindow *w = singleWindow<FeeSettingsWindow>().open(context);
    const ImpostazioniSpese s = Leggi_SPESE(context.settings.path());
    w->m_option[s.tipoCommissione == 1 ? 1 : 0]->setChecked(true);
    w->m_fees[0]->setText(s.commissione);
    w->m_fees[1]->setText(s.spese);
    w->m_fees[2]->setText(s.bolli);
    w->m_capitalGain->setText(s.capitalGain);
    centreOnScreen(w);
    w->show();
    w->raise();
    w->activateWindow();
    w->m_fees[0]->setFocus();
    return w;
}

FeeSettingsWindow::FeeSettingsWindow(const WindowContext &context)
    : QWidget(
        context.shell.window(), Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::CustomizeWindowHint)
    , m_context(context)
{
    setObjectName(QStringLiteral("FormSpese"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QString::fromLatin1(kTitoloCornice));
    setFixedSize(260, 270);

    const auto etichetta = [this](const QString &testo, int y) {
        auto *l = new QLabel(testo, this);
        l->setGeometry(10, y, 100, 18);
    };
    const auto campo = [this](const QString &nome, int y) {
        auto *f = new QLineEdit(this);
        f->setObjectName(nome);
        f->setGeometry(120, y, 126, 24);
        f->setAlignment(Qt::AlignRight);
        AmountField::install(f, CampoImporto::Commissione);
        return f;
    };
    etichetta(QStringLiteral("Commissioni"), 10);
    m_option[0] = new QRadioButton(QStringLiteral("Fisse"), this);
    m_option[1] = new QRadioButton(QStringLiteral("Percentuale"), this);
    for (int i = 0; i < 2; ++i) {
        m_option[i]->setObjectName(QStringLiteral("Option1(%1)").arg(i));
        m_option[i]->setGeometry(10 + i * 110, 32, 110, 20);
    }
    etichetta(QStringLiteral("Valore"), 66);
    m_fees[0] = campo(QStringLiteral("Text4(0)"), 62);
    etichetta(QString::fromLatin1(kEtichettaSpese), 100);
    m_fees[1] = campo(QStringLiteral("Text4(1)"), 96);
    etichetta(QString::fromLatin1(kEtichettaBolli), 134);
    m_fees[2] = campo(QStringLiteral("Text4(2)"), 130);
    etichetta(QString::fromLatin1(kEtichettaCapitalGain), 168);
    m_capitalGain = campo(QStringLiteral("Text7"), 164);

    auto *salva = new QPushButton(QStringLiteral("&Salva"), this);
    salva->setObjectName(QStringLiteral("Command1"));
    salva->setGeometry(10, 222, 110, 30);
    salva->setAutoDefault(false);
    auto *chiudi = new QPushButton(QStringLiteral("&Chiudi"), this);
    chiudi->setObjectName(QStringLiteral("Command2"));
    chiudi->setGeometry(136, 222, 110, 30);
    chiudi->setAutoDefault(false);
    connect(salva, &QPushButton::clicked, this, &FeeSettingsWindow::save);
    connect(chiudi, &QPushButton::clicked, this, &QWidget::close);
}

void FeeSettingsWindow::save()
{
    ImpostazioniSpese s;
    s.tipoCommissione = m_option[1]->isChecked() ? 1 : 0;
    s.commissione = m_fees[0]->text();
    s.spese = m_fees[1]->text();
    s.bolli = m_fees[2]->text();
    s.capitalGain = m_capitalGain->text();
    if (!scriviSpese(m_context.settings.path(), s)) {
        ui::message(this, { QStringLiteral("Impossibile scrivere le impostazioni."), {}, ui::Icon::Critical });
        return;
    }
    close();
}

} // namespace vm::operations
