#pragma once

// The windows that record operations: a new title (Form61), a further purchase (Form6), a sale (Form66), a
// dividend (Form7), and the fee settings shown beside a purchase. Each exists at most once; the figures and the
// messages come from the plain rules of Operazioni.h and Importi.h.

#include "gui/SingleWindow.h"
#include "gui/WindowContext.h"
#include "operations/Elenco.h"
#include "operations/Operazioni.h"

#include <QWidget>

class QComboBox;
class QDateEdit;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;
class QScrollBar;

namespace vm::operations {

// What the title window hands to the operation windows about its title.
struct TitoloAperto {
    qint64 idTitolo = 0;
    QString simbolo; // the dossier key
    QString nome;
    qint64 qta = 0;
    double prezzoMedio = 0;
    std::optional<double> ultimoPrezzo; // the last close, when an archive holds the title
};

// The date, quantity, prices and total that the three operation windows share, with their rules.
class OperationForm : public QWidget
{
    Q_OBJECT
public:
    QDateEdit *dateField() const { return m_date; }

protected:
    OperationForm(const WindowContext &context, Finestra finestra, const QString &caption);
    // Lays the operation fields out in parent from the top y; returns the y below them.
    int addOperationFields(QWidget *parent, int y);
    QLabel *addLabel(QWidget *parent, const QString &text, const QRect &geometry, const QString &name = {});
    QLineEdit *addField(QWidget *parent, const QString &name, const QRect &geometry);
    QPushButton *addButton(const QString &name, const QString &caption, const QRect &geometry);
    void showCentred();
    // Today, or the Friday before it.
    void resetDate();
    virtual void confirm() = 0; // Command1

    WindowContext m_context;
    Finestra m_finestra;
    QDateEdit *m_date = nullptr; // DTPicker1
    QLineEdit *m_quantity = nullptr; // Text2
    QLineEdit *m_market = nullptr; // Text1
    QLineEdit *m_net = nullptr; // Text6
    QLabel *m_total = nullptr; // Label4

private:
    void datePicked(const QDate &date);
    void recompute();
};

// "Form61": a title not yet in the dossier and its first purchase.
class PurchaseWindow : public OperationForm
{
    Q_OBJECT
public:
    static PurchaseWindow *open(const WindowContext &context);
    static PurchaseWindow *instance();

protected:
    bool event(QEvent *event) override;

private:
    explicit PurchaseWindow(const WindowContext &context);
    friend class SingleWindow<PurchaseWindow>;
    void CaricaElenco();
    void titleChosen(int index);
    void Leggi_SPESE();
    void confirm() override;

    ElencoTitoli m_elenco;
    QComboBox *m_titles = nullptr; // Combo1
    QListWidget *m_symbols = nullptr; // List2, hidden
    QListWidget *m_paths = nullptr; // List1, hidden
    QLineEdit *m_description = nullptr; // Text5
    QLabel *m_lastPrice = nullptr; // Label16
    QGroupBox *m_frame = nullptr; // Frame3
    QRadioButton *m_option[2] = {}; // Option1(0), Option1(1)
    QLineEdit *m_fees[3] = {}; // Text4(0..2)
    QLineEdit *m_capitalGain = nullptr; // Text7
};

// "Form6" and "Form66": a further purchase or a sale of a title of the dossier.
class TradeWindow : public OperationForm
{
    Q_OBJECT
protected:
    TradeWindow(const WindowContext &context, Finestra finestra, const QString &caption, int height);
    void fill(const TitoloAperto &titolo);
    void confirm() override;

    QLabel *m_name = nullptr; // Label10: caption the name, property "tag" the symbol
    QLabel *m_id = nullptr; // Label14
    QLineEdit *m_note = nullptr; // Text3
    int m_bottom = 0;
};

class FurtherPurchaseWindow : public TradeWindow
{
    Q_OBJECT
public:
    static FurtherPurchaseWindow *open(const WindowContext &context, const TitoloAperto &titolo);
    static FurtherPurchaseWindow *instance();

private:
    explicit FurtherPurchaseWindow(const WindowContext &context);
    friend class SingleWindow<FurtherPurchaseWindow>;
};

class SaleWindow : public TradeWindow
{
    Q_OBJECT
public:
    static SaleWindow *open(const WindowContext &context, const TitoloAperto &titolo);
    static SaleWindow *instance();

private:
    explicit SaleWindow(const WindowContext &context);
    friend class SingleWindow<SaleWindow>;
    QScrollBar *m_bar = nullptr; // FlatScrollBar1
};

// "Form7": the last dividend of a title, saved or cleared.
class DividendWindow : public QWidget
{
    Q_OBJECT
public:
    // dataStacco invalid and dividendo empty when the title window shows none.
    static DividendWindow *open(
        const WindowContext &context, const TitoloAperto &titolo, const QDate &dataStacco, const QString &dividendo);
    static DividendWindow *instance();

Q_SIGNALS:
    void saved(const vm::operations::EsitoDividendo &esito);

private:
    explicit DividendWindow(const WindowContext &context);
    friend class SingleWindow<DividendWindow>;
    void save();

    WindowContext m_context;
    TitoloAperto m_titolo;
    QLabel *m_name = nullptr; // Label1
    QLabel *m_id = nullptr; // Label2
    QDateEdit *m_date = nullptr; // DTPicker1
    QLineEdit *m_dividend = nullptr; // Text1
};

// "FormSpese": the fee settings that the new-title window shows, edited and written at once.
class FeeSettingsWindow : public QWidget
{
    Q_OBJECT
public:
    static FeeSettingsWindow *open(const WindowContext &context);
    static FeeSettingsWindow *instance();

private:
    explicit FeeSettingsWindow(const WindowContext &context);
    friend class SingleWindow<FeeSettingsWindow>;
    void save();

    WindowContext m_context;
    QRadioButton *m_option[2] = {};
    QLineEdit *m_fees[3] = {};
    QLineEdit *m_capitalGain = nullptr;
};

} // namespace vm::operations
