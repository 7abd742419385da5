#pragma once

#include "gui/SingleWindow.h"
#include "gui/WindowContext.h"
#include "operations/OperationWindows.h"
#include "operations/Situazione.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QTreeWidget;
class QChartView;

namespace vm::operations {

// "Form11": the situation of one title of the dossier (its holding valued at the last close, its dividend, its
// operations, its performance over seven periods and its chart), and the commands that trade it.
class TitleSituationWindow : public QWidget
{
    Q_OBJECT
public:
    // Opens the window on the title whose dossier key is simbolo; nothing opens (and the user is told) when the
    // dossier does not hold it.
    static TitleSituationWindow *open(const WindowContext &context, const QString &simbolo);
    static TitleSituationWindow *instance();

    const SituazioneTitolo &situazione() const { return m_situazione; }
    TitoloAperto titoloAperto() const;

    // Deletes the operation selected in ListView1, with its checks and its question.
    void deleteSelectedOperation();
    // Draws the chart of period indice (1 to 7); the message of a period without data is shown when asked.
    void drawChart(int indice, bool tellWhy);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit TitleSituationWindow(const WindowContext &context);
    friend class SingleWindow<TitleSituationWindow>;
    bool TrovaTitolo(const QString &simbolo);
    void fill();
    void showDividend(const EsitoDividendo &e);
    void exit(); // "&Uscita"
    QLabel *figure(const QString &caption, const QString &name, int x, int y, int width = 110);

    WindowContext m_context;
    SituazioneTitolo m_situazione;
    QList<metastock::QuotaMS> m_quote;
    int m_periodo = 3;

    QLabel *m_nome = nullptr;
    QLabel *m_id = nullptr; // hidden: IDTitolo
    QLabel *m_simbolo = nullptr; // hidden: the dossier key
    QLabel *m_quantita = nullptr;
    QLabel *m_prezzoMedio = nullptr;
    QLabel *m_giorno = nullptr;
    QLabel *m_ultimaOperazione = nullptr;
    QLabel *m_totAcquisto = nullptr;
    QLabel *m_totAttuale = nullptr;
    QLabel *m_differenza = nullptr;
    QLabel *m_percentuale = nullptr;
    QLabel *m_dataStacco = nullptr;
    QLabel *m_dividendo = nullptr;
    QLabel *m_totaleDividendo = nullptr;
    QLabel *m_rendimento = nullptr;
    QTreeWidget *m_operazioni = nullptr; // ListView1
    QTreeWidget *m_performance = nullptr; // ListView2
    QChartView *m_grafico = nullptr; // Graph1
    QComboBox *m_tipo = nullptr; // chart type
    QCheckBox *m_acquisto = nullptr; // "Acquisto": the average price as a line
};

} // namespace vm::operations
