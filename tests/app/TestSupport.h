#pragma once
// What the program's window and settings tests share: files written and read whole, the messages
// shown, and controls found by name.
#include <QFile>
#include <QStringList>
#ifdef QT_WIDGETS_LIB
#include "app/MessageBox.h"
#endif

namespace vmtest {

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

} // namespace vmtest
