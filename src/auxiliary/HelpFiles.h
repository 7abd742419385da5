#pragma once

// Where the program finds the files it ships beside itself (the help, the information document), and
// how the windows map to the help's topics.

#include <QString>
#include <QStringList>

namespace vm {
struct ProgramState;
}

namespace vm::aux {

inline constexpr auto kFileGuida = "valorimetrico.qch"; // the compressed help file
inline constexpr auto kNamespaceGuida = "it.valorimetrico.manuale";
inline constexpr auto kCartellaVirtualeGuida = "manuale";
inline constexpr auto kArgomentoPredefinito = "introduzione.html";

// The folders searched, in order: the program folder (a portable copy), the executable's folder,
// <prefix>/share/valorimetrico beside an installed executable, the system's data folders, and the
// build folder of a development build.
QStringList cartelleFileProgramma(const ProgramState &state);
// The first of those folders holding the file; empty when none does.
QString fileProgramma(const QString &nome, const ProgramState &state);
QString fileProgramma(const QString &nome, const QStringList &cartelle);

// "qthelp://it.valorimetrico.manuale/manuale/<page>"; an empty page gives the default topic.
QString indirizzoArgomento(const QString &pagina);

// A help file's name may carry a topic after "::/"; the file is the text before it, trimmed.
QString fileSenzaArgomento(const QString &nomeGuida);
QString argomentoDelNome(const QString &nomeGuida);

// Context numbers of the help topics: each window's topic has one, for the callers that ask by number.
// 0 when the window has none.
int numeroContesto(const QString &finestra);
QString finestraDelContesto(int numero);

} // namespace vm::aux
