#pragma once

// The quote board "Listino" (Form13): the lines of a letter, of the dossier or of a personal group,
// and the charts of the line selected. Lines and chart data come from Listino.h and GraficoListino.h.

#include "gui/SingleWindow.h"
#include "gui/WindowContext.h"
#include "quotes/GraficoListino.h"
#include "quotes/Listino.h"

#include <QString>
#include <QWidget>

class QCheckBox;
class QLabel;
class QScrollBar;
class QTabBar;
class QTreeWidget;

namespace vm {
class ProgressBar;
}

namespace vm::quotes {

class QuoteCharts;

class QuoteBoardWindow : public QWidget
{
    Q_OBJECT
public:
    // The board's lists; Gruppi and Personali are the same list of group tabs, the first showing the
    // tabs alone, the second the lines of the group chosen too.
    enum class Lista { Lettere, Dossier, Gruppi, Personali };

    // Opens (or brings forward) the one board, in the main window's frame, showing the given list.
    static QuoteBoardWindow *open(const WindowContext &context, Lista lista, bool graficoVisibile);
    static QuoteBoardWindow *instance();

    // The procedures other windows call.
    void caricaX(); // the letter of TabStrip1's selected tab
    void CercaTitoloDossier();
    void CaricaGruppiPersonali(); // the group tabs, then the lines of the selected one
    void CaricaPersonali(); // the lines of the group whose tab is selected
    void TrovaTitolo(int riga);
    void GraficoStorico(); // redraws the chart of the current title

    const QList<RigaListino> &righe() const { return m_righe; }
    int puntiGrafico() const;
    QString gruppoCorrente() const { return m_gruppo; }

protected:
    void hideEvent(QHideEvent *event) override;

private:
    friend class SingleWindow<QuoteBoardWindow>;
    explicit QuoteBoardWindow(const WindowContext &context);

    void mostraLista(Lista lista);
    void caricaLista(); // the lines of the list shown, read again
    void caricaSchedeGruppi(); // TabStrip2 from the groups as stored, keeping the group chosen
    bool leggiCartelle(QStringList &cartelle);
    void riempi(const Listino &listino);
    void rigaScelta(int riga, bool daCombo);
    void impostaPeriodo(int valore);
    void periodoCambiato(int valore);
    void premuto(Qt::MouseButton pulsante);
    void avanzamento(int fatto, int totale);

    WindowContext m_context;

    QTreeWidget *m_lista; // ListView1
    QTabBar *m_lettere; // TabStrip1
    QTabBar *m_gruppi; // TabStrip2
    QWidget *m_rigaGruppi; // TabStrip2 and the button of the groups editor
    QWidget *m_avanzamento; // Picture1
    ProgressBar *m_barra;
    QWidget *m_pannelloGrafico;
    QuoteCharts *m_grafici;
    QLabel *m_didascalia; // Label1
    QScrollBar *m_periodo; // FlatScrollBar1
    QCheckBox *m_storico; // Check1
    QCheckBox *m_volumi; // Check2
    QCheckBox *m_trend; // Check3

    Lista m_modo = Lista::Lettere;
    QList<RigaListino> m_righe;
    QString m_gruppo;
    int m_rigaGrafico = -1;
    QList<metastock::QuotaMS> m_storia;
    bool m_primoDisegno = true;
};

} // namespace vm::quotes
