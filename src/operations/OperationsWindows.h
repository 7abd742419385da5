#pragma once

#include <QString>

namespace vm {
struct WindowContext;
}

namespace vm::operations {

// Puts the new-title window, the fee settings and the title situation behind the main window's commands.
void registerWindows(const WindowContext &context);

// The new-title window, as the dossier's proposal for an empty dossier opens it when answered Yes.
void openNewTitle(const WindowContext &context);

// TitoloSelezionato: the title situation of the dossier's title whose key is simbolo ("Non trovato in archivio,
// forse è stato cambiato il nome.." when the dossier no longer holds it).
void TitoloSelezionato(const WindowContext &context, const QString &simbolo);

} // namespace vm::operations
