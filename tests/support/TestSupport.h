#pragma once
// What the program's window and settings tests share: files written and read whole, the messages
// shown, and controls found by name.
#include <QFile>
#include <QStringList>
#ifdef QT_WIDGETS_LIB
#include "app/MainWindow.h"
#include "core/ProgramFolder.h"
#include "core/ProgramState.h"
#include "core/Settings.h"
#include "gui/DataEvents.h"
#include "gui/MessageBox.h"
#include "gui/WindowContext.h"

#include <memory>
#endif

namespace vm::test {

// A null array stands for no file at all.
inline void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile::remove(path);
    QFile f(path);
    if (!bytes.isNull() && (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size()))
        qFatal("%s not written", qPrintable(path));
}
inline QByteArray readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}
#ifdef QT_WIDGETS_LIB // the window tests
// What start-up owns for the windows, for a window test: the program state, the settings file, the data
// events and a main window on them.
struct Program {
    vm::ProgramState state;
    vm::SettingsFile settings;
    vm::DataEvents events;

    void setFolder(const QString &folder)
    {
        state.setProgramFolder(folder);
        settings.setPath(state.file(QString::fromLatin1(vm::kSettingsFileName)));
    }
    std::unique_ptr<vm::MainWindow> mainWindow() { return std::make_unique<vm::MainWindow>(state, settings, events); }
    vm::WindowContext context(vm::MainWindow &window, vm::store::Database &db)
    {
        return { window, db, settings, state, events };
    }
};
inline Program &program()
{
    static Program p;
    return p;
}

// The messages shown since the last reset, each as "title|text".
inline QStringList shown()
{
    QStringList texts;
    for (const auto &m : vm::ui::testing::messages())
        texts << m.title + QLatin1Char('|') + m.text;
    return texts;
}
#endif
template<class T> T *child(const QObject *parent, const char *name)
{
    return parent->findChild<T *>(QString::fromLatin1(name));
}

} // namespace vm::test
