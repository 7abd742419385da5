#pragma once

// The programs, documents and addresses the program hands over to the desktop: the calculator, the
// companion download program, the information document, the maker's pages and mail.

#include <QString>

class QWidget;

namespace vm {
class SettingsFile;
struct ProgramState;
} // namespace vm

namespace vm::aux {

inline constexpr auto kDocumentoInformativo = "valorimetrico_info.pdf";

QString addressValorimetrico(); // the program's page on the maker's site
QString addressQuotaflusso(); // the maker's home page
QString addressEmail(); // a mailto: with the subject the maker expects

// Each shows its own message when the hand-over fails; the parent owns the message box.
void startCalculator(QWidget *parent);
void startCompanion(QWidget *parent, const SettingsFile &settings);
void openInformationDocument(QWidget *parent, const ProgramState &state);
void openAddress(QWidget *parent, const QString &address);

} // namespace vm::aux
