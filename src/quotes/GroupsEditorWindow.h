#pragma once

// The title groups editor "Creazione gruppi titoli" (Form3): the archive titles with check boxes on one
// side, the tree of groups on the other. The rules and messages are those of GruppiTitoli.h.

#include "gui/SingleWindow.h"
#include "gui/WindowContext.h"
#include "quotes/GruppiTitoli.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace vm::quotes {

class GroupsEditorWindow : public QWidget
{
    Q_OBJECT
public:
    // Opens (or brings forward) the one editor, centred on the screen.
    static GroupsEditorWindow *open(const WindowContext &context);
    static GroupsEditorWindow *instance();

    void CaricaGruppi();
    void CaricaMS();
    void TreeStand();

private:
    friend class SingleWindow<GroupsEditorWindow>;
    explicit GroupsEditorWindow(const WindowContext &context);

    QList<TitoloOfferto> selezionati() const;
    int contaSelezionati() const;
    void titoloSpuntato(QTreeWidgetItem *item);
    void nodoSpuntato(QTreeWidgetItem *item);
    void mostra(const QList<Message> &avvisi);
    void salva();
    void aggiungi();
    void nuovo();
    void rimuovi();

    WindowContext m_context;
    store::Database &m_db;
    QTreeWidget *m_titoli; // ListView1
    QTreeWidget *m_albero; // TreeView1
    QLineEdit *m_nome; // Text1
    QLabel *m_selezionati; // Label2
    QPushButton *m_salva; // Command1
    QPushButton *m_chiudi; // Command2
    QPushButton *m_aggiungi; // Command3
    QPushButton *m_nuovo; // Command4
    QPushButton *m_rimuovi; // Command5
    QList<TitoloOfferto> m_offerti; // in the list's order
    bool m_occupato = false; // the window is changing check boxes itself
};

} // namespace vm::quotes
