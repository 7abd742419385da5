#include "security/DossierPassword.h"

#include "store/Database.h"

namespace vm::security {

PasswordMode modeFor(const std::optional<QString> &stored)
{
    return stored && !stored->trimmed().isEmpty() ? PasswordMode::Change : PasswordMode::Set;
}

bool passwordMatches(QStringView typed, QStringView stored)
{
    return typed.trimmed().compare(stored.trimmed(), Qt::CaseSensitive) == 0;
}

SaveDecision decideSave(QStringView newPassword, QStringView confirmation)
{
    const QStringView wanted = newPassword.trimmed();
    if (wanted.compare(confirmation.trimmed(), Qt::CaseSensitive) != 0)
        return { SaveOutcome::Mismatch, {} };
    if (wanted.isEmpty())
        return { SaveOutcome::Cleared, {} };
    return { SaveOutcome::Changed, wanted.toString() };
}

std::optional<QString> DossierPassword::stored()
{
    return m_db.dossierPassword();
}

bool DossierPassword::check(QStringView typed)
{
    // Without a stored password there is nothing to match: an empty answer must not open a
    // dossier whose table could not be read.
    const std::optional<QString> pw = stored();
    return pw && !pw->trimmed().isEmpty() && passwordMatches(typed, *pw);
}

DossierPassword::SaveResult DossierPassword::save(QStringView newPassword, QStringView confirmation)
{
    const SaveDecision decision = decideSave(newPassword, confirmation);
    SaveResult result;
    result.outcome = decision.outcome;
    if (decision.outcome == SaveOutcome::Mismatch)
        return result;
    result.written = m_db.setDossierPassword(decision.password);
    if (!result.written) {
        const auto &error = m_db.lastError();
        result.error
            = error.message.isEmpty() ? QStringLiteral("Errore ") + QString::number(error.number) : error.message;
    }
    return result;
}

} // namespace vm::security
