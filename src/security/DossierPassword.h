#pragma once

// The user's own password that guards the dossier view. It lives in table PASSW as plain text;
// no row, or a row of blanks, means the dossier is open to anyone. It has nothing to do with the
// database file's fixed password.

#include <QString>
#include <QStringView>

#include <optional>

namespace vm::store {
class Database;
}

namespace vm::security {

// The window that edits the password asks for the current one first when there is one.
enum class PasswordMode {
    Set, // nothing stored: straight to the new password and its confirmation
    Change, // a password is stored: the current one must be typed first
};

PasswordMode modeFor(const std::optional<QString> &stored);

// Typed text against the stored password: blanks around the typed text do not count, letter case
// does. The stored text is trimmed too: the program never stores blanks around a password, and a
// file edited by hand must not lock the user out for good.
bool passwordMatches(QStringView typed, QStringView stored);

// What saving the new password and its confirmation does.
enum class SaveOutcome {
    Mismatch, // the two differ: nothing is saved
    Cleared, // both empty: the protection is switched off
    Changed, // a password is stored and guards the dossier
};

struct SaveDecision {
    SaveOutcome outcome = SaveOutcome::Mismatch;
    QString password; // what goes into PASSW.pw (trimmed); empty for Mismatch and Cleared
};

SaveDecision decideSave(QStringView newPassword, QStringView confirmation);

// Reads and writes the password through the database layer.
class DossierPassword
{
public:
    explicit DossierPassword(store::Database &db)
        : m_db(db)
    { }

    // The stored password as stored, nullopt without a row or when the table cannot be read.
    std::optional<QString> stored();
    PasswordMode mode() { return modeFor(stored()); }
    bool check(QStringView typed);

    struct SaveResult {
        SaveOutcome outcome = SaveOutcome::Mismatch;
        bool written = false; // false for Mismatch, and when the database refused the write
        QString error; // the reason, for the user, when a write failed
    };
    // Nothing is written on a mismatch; otherwise the row is edited or added.
    SaveResult save(QStringView newPassword, QStringView confirmation);

private:
    store::Database &m_db;
};

// The windows' texts.
namespace text {
inline constexpr auto kChangeTitle = "Inserimento Password"; // Form10
inline constexpr auto kPromptTitle = "Sicurezza"; // Form8
inline constexpr auto kChangeInstruction = "Per cambiare la password, digitare la password attuale.";
inline constexpr auto kSetInstruction = "Per proteggere l'accesso al dossier, inserire una password di accesso";
inline constexpr auto kNewPassword = "Nuova Password";
inline constexpr auto kVerifyPassword = "Verifica Password";
inline constexpr auto kCurrentPassword = "Password attuale";
inline constexpr auto kPassword = "Password";
inline constexpr auto kPromptLabel = "Il dossier titoli ha l'accesso protetto da password.";
inline constexpr auto kClose = "&Chiudi";
inline constexpr auto kConfirm = "&Conferma";
inline constexpr auto kSave = "&Salva";

inline constexpr auto kWrongPassword = "Password non esatta"; // title: the program's name
inline constexpr auto kProtectionTitle = "Protezione Dossier";
inline constexpr auto kVerifyNew = "Verifica la nuova Password.";
inline constexpr auto kProtectionOff = "Nessuna password è stata inserita, protezione dossier non attivata";
inline constexpr auto kPasswordChanged = "La password è stata cambiata";
inline constexpr auto kNotSaved = "La password non è stata salvata: ";
} // namespace text

} // namespace vm::security
