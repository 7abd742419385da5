#pragma once

// "Form5": the dossier overview (the titles valued, their totals and chart) and, in the same window,
// the portfolio history (the recorded totals of a period, their chart, the deletion of a record).

#include "dossier/History.h"
#include "dossier/Overview.h"
#include "gui/SingleWindow.h"
#include "gui/WindowContext.h"

#include <QHash>
#include <QIcon>
#include <QMdiSubWindow>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QLabel;
class QStackedWidget;
class QTreeWidget;
class QTreeWidgetItem;

namespace vm {
class ProgressBar;
}

namespace vm::dossier {

class DiagrammaDossier;

// A view of the main window's frame in its own right: minimized inside the frame it is still there,
// and the commands bring the same overview back.
class DossierWindow : public QMdiSubWindow
{
    Q_OBJECT
public:
    ~DossierWindow() override;

    // The one overview, made on first use as a maximized view of the main window and brought to the
    // front; *made says whether it was made now (its load then still has to value the dossier).
    static DossierWindow *open(const WindowContext &context, bool *made = nullptr);
    // The overview while it exists.
    static DossierWindow *instance();

    // Procedures the main window and other windows call.
    void PreparaDati(); // recompute list, totals, chart; records the day's total
    void Storico(); // records the day's total when it is new
    void CaricaStorico(); // the period's records into ListView2
    void GraficoStoricoList(); // Graph2 and the history labels from ListView2
    void TitoloSelezionato(const QString &simbolo); // asks for the title situation of a dossier title
    void ModificaNomeTitolo(); // the rename window on the selected row
    void Stampo(); // the print window with the page of the overview as shown
    void PosizionaTitolo(int riga); // select a row and show its title, as Combo2 of the main window asks
    void EliminaTitolo(); // removal of the selected title, with its confirmation

    void mostraPanoramica();
    void mostraStorico();
    bool inStorico() const;
    void mostraPannelloGrafico(bool visibile);

    // The selected row of ListView1, or -1.
    int rigaSelezionata() const;
    const Valutazione &valutazione() const { return m_valutazione; }
    const QList<RigaStorico> &righeStorico() const { return m_storico; }

Q_SIGNALS:
    void ricalcolato(); // after each PreparaDati

private:
    friend class SingleWindow<DossierWindow>;
    explicit DossierWindow(const WindowContext &context);

    void costruisciPanoramica(QWidget *pagina);
    void costruisciStorico(QWidget *pagina);
    void riempiLista();
    void impostaRiga(QTreeWidgetItem *item, const RigaLista &riga);
    void PreparaGrafico();
    void disegnaTitoli();
    void zero(bool grafico = true);
    void mostraAvvisi(const QList<Message> &avvisi);
    void rigaCliccata(QTreeWidgetItem *item);
    void rigaDoppioClic(QTreeWidgetItem *item);
    void selezionaInCombo(int riga);
    void cambiaDati(int indice); // Combo1
    void cambiaTipo(int indice); // Combo2
    void cambiaPeriodo();
    void eliminaValore(QTreeWidgetItem *item);
    void menuStorico(const QPoint &pos);
    void titoloScelto(int indice); // Combo2 of the main window, chosen by the user
    void mostraComandi(); // the overview's keys of the dossier toolbar shown and enabled
    void mostra(const Message &avviso);

    WindowContext m_context;
    QStringList m_titoliSelettore; // what Combo2 of the main window was last filled with
    Valutazione m_valutazione;
    QList<RigaStorico> m_storico;
    QList<RigaLista> m_righeMostrate; // what ListView1 shows now
    QHash<int, QIcon> m_icone; // by IconaStato

    QStackedWidget *m_pagine = nullptr;
    QTreeWidget *m_lista = nullptr; // ListView1
    QLabel *m_acquisto = nullptr; // Label2
    QLabel *m_attuale = nullptr; // Label5
    QLabel *m_differenza = nullptr; // Label1
    QLabel *m_percentuale = nullptr; // Label8
    ProgressBar *m_progresso = nullptr;
    QWidget *m_pannelloGrafico = nullptr;
    QComboBox *m_dati = nullptr; // Combo1
    QComboBox *m_tipo = nullptr; // Combo2
    QCheckBox *m_titoli = nullptr; // Check2
    DiagrammaDossier *m_grafico = nullptr; // Graph1

    QDateEdit *m_dal = nullptr; // DTPicker1
    QDateEdit *m_al = nullptr; // DTPicker2
    QTreeWidget *m_listaStorico = nullptr; // ListView2
    DiagrammaDossier *m_graficoStorico = nullptr; // Graph2
    QLabel *m_periodo = nullptr; // Label12
    QLabel *m_numero = nullptr; // Label15
    QLabel *m_ultimo = nullptr; // Label16
    QLabel *m_nota = nullptr; // Label17
};

// The sign colours of the lists and labels: red 255, blue &HFF0000, black.
QColor coloreSegno(ColoreSegno colore);

} // namespace vm::dossier
