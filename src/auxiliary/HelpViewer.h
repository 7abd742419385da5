#pragma once

#include <QPointer>
#include <QString>
#include <QUrl>
#include <QWidget>

class QHelpEngine;
class QLineEdit;
class QTabWidget;
class QTextBrowser;

namespace vm {
struct ProgramState;
}

namespace vm::aux {

// The help viewer: contents, index and search beside the page, over the program's compressed help
// file. One at a time; opened again it shows what it is asked.
class HelpViewerWindow : public QWidget
{
    Q_OBJECT
public:
    enum Pane { Contents = 0, Index = 1, Search = 2 };

    static HelpViewerWindow *instance();
    // The viewer on helpFile (a .qch), made when missing or when it showed another file.
    static HelpViewerWindow *open(const QString &helpFile, QWidget *owner);

    QString helpFile() const { return m_helpFile; }
    QUrl currentTopic() const;
    int currentPane() const;
    QString pageTitle() const;

    void showTopic(const QUrl &topic);
    void showPane(Pane pane);
    void showIndex(const QString &keyword);
    void search(const QString &words);
    // The topic filed under the identifier (a window's objectName); an invalid URL when there is none.
    QUrl topicOf(const QString &identifier) const;
    QString titleOf(const QUrl &topic) const;

    // Where the viewer keeps its collection and search index (a cache folder by default).
    static void setCollectionFolder(const QString &folder);

private:
    HelpViewerWindow(const QString &helpFile, QWidget *owner);
    void openLink(const QUrl &url);

    QString m_helpFile;
    QHelpEngine *m_engine = nullptr;
    QTabWidget *m_panes = nullptr;
    QLineEdit *m_indexFilter = nullptr;
    QTextBrowser *m_browser = nullptr;
};

// "cHtmlHelp": the help viewer for one help file and one owner window. The file name may carry a
// topic after "::/", which DisplayTopic shows when asked for none. Every operation first checks the
// file and says "File Help di valorimetrico non trovato." when it is missing; false then.
class HtmlHelp
{
public:
    HtmlHelp(QWidget *owner, const QString &helpFile);

    QString HelpFile() const { return m_helpFile; }
    void setHelpFile(const QString &helpFile) { m_helpFile = helpFile; }

    // The topic mapped to a context number (each window's topic has one).
    bool DisplayContext(int context);
    // A page of the file; no page: the file's default topic.
    bool DisplayTopic(const QString &topic = {});
    // A short text in a pop-up near the active window, in "Verdana,8".
    void PopUp(const QString &text);
    bool DisplaySearch();
    bool DisplayTOC();
    // The index, at a keyword when one is given.
    bool DisplayIndex(const QString &keyword = {});
    // The pop-up help of the control under the pointer: its own help text, or the title of the topic
    // mapped to controlId.
    void HelpContextPop(int controlId);
    // A context topic in a named viewer window: "file >window"; this program has one viewer, whose
    // caption takes the name.
    bool HelpContext(int context, const QString &windowName);

    // The topic of a window (its objectName), or the default topic when the window has none.
    bool DisplayWindow(const QString &objectName);

    static QString missingText();
    static QString missingTitle();

private:
    HelpViewerWindow *viewer();

    QPointer<QWidget> m_owner;
    QString m_helpFile;
};

// "&Help" and F1: the default topic, or the topic of the window named, from the help file the
// program finds (HelpFiles.h).
void showHelp(QWidget *owner, const ProgramState &state, const QString &windowName = {});

} // namespace vm::aux
