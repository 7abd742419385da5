#include "dossier/PageModel.h"

#include "core/Format.h"
#include "core/ProgramInfo.h"

namespace vm::dossier {

namespace {

// 700 twips from the left edge, where every line of the table starts.
constexpr double kSinistra = 35;
constexpr double kDestra = kLarghezzaPagina - 36;
constexpr double kAlto = 40;
constexpr double kBasso = kAltezzaPagina - 48;
constexpr double kRiga = 14; // 10-point type with its leading

// Right edges of the figure columns (the date centred), so that figures line up under their headings.
constexpr double kColAcquisto = 300;
constexpr double kColData = 338;
constexpr double kColAttuale = 430;
constexpr double kColDifferenza = 497;
constexpr double kColPercentuale = kDestra;
constexpr double kLarghezzaNome = kColAcquisto - 70 - kSinistra;

// The space the totals and the footer need under the last row.
constexpr double kSpazioTotali = 8 + 26 + 4 * kRiga + 10 + 24;

using Allinea = TestoPagina::Allinea;

TestoPagina testo(const QString &t, double x, double y, Allinea a = Allinea::Sinistra, double punti = 10,
    bool grassetto = false, quint32 colore = kInchiostroNero)
{
    TestoPagina p;
    p.testo = t;
    p.x = x;
    p.y = y;
    p.allinea = a;
    p.punti = punti;
    p.grassetto = grassetto;
    p.colore = colore;
    return p;
}

// The column headings at baseline y.
void intestazioni(Pagina &p, double y)
{
    p.testi.append(testo(QStringLiteral("Titolo"), kSinistra, y, Allinea::Sinistra, 10, true));
    p.testi.append(testo(QStringLiteral("Acquisto"), kColAcquisto, y, Allinea::Destra, 10, true));
    p.testi.append(testo(QStringLiteral("Data"), kColData, y, Allinea::Centro, 10, true));
    p.testi.append(testo(QStringLiteral("Attuale"), kColAttuale, y, Allinea::Destra, 10, true));
    p.testi.append(testo(QStringLiteral("Diff.+/-"), kColDifferenza, y, Allinea::Destra, 10, true));
    p.testi.append(testo(QStringLiteral("Perc.%"), kColPercentuale, y, Allinea::Destra, 10, true));
    p.linee.append({ kSinistra, y + 4, kDestra, y + 4 });
}

void riga(Pagina &p, const RigaStampa &r, double y)
{
    TestoPagina nome = testo(r.descrizione, kSinistra, y);
    nome.larghezzaMassima = kLarghezzaNome;
    p.testi.append(nome);
    p.testi.append(testo(r.acquisto, kColAcquisto, y, Allinea::Destra));
    p.testi.append(testo(r.data, kColData, y, Allinea::Centro));
    p.testi.append(testo(r.attuale, kColAttuale, y, Allinea::Destra));
    p.testi.append(testo(r.differenza, kColDifferenza, y, Allinea::Destra, 10, false,
        r.differenzaRossa ? kInchiostroRosso : kInchiostroNero));
    p.testi.append(testo(r.percentuale, kColPercentuale, y, Allinea::Destra, 10, false,
        r.percentualeRossa ? kInchiostroRosso : kInchiostroNero));
}

} // namespace

QList<RigaStampa> righeStampa(const QList<RigaDossier> &righe)
{
    QList<RigaStampa> s;
    s.reserve(righe.size());
    for (const RigaDossier &r : righe) {
        // Coloured as the list colours them: only titles found carry sign colours.
        const bool colorata = r.stato != StatoTitolo::NonTrovato;
        s.append({ r.descrizione, r.testoAcquisto, r.testoData, r.testoAttuale, r.testoDifferenza, r.testoPercentuale,
            colorata && ColoreValore(r.testoDifferenza) == ColoreSegno::Rosso,
            colorata && ColoreValore(r.testoPercentuale) == ColoreSegno::Rosso });
    }
    return s;
}

QList<Pagina> paginaDossier(const QList<RigaStampa> &righe, const TotaliDossier &totali, const QDate &oggi)
{
    QList<Pagina> pagine;
    Pagina p;
    // Banner: an empty line, then the name centred.
    double y = kAlto + kRiga + 18;
    p.testi.append(testo(QString::fromLatin1(kProgramName), kLarghezzaPagina / 2, y, Allinea::Centro, 18, true));
    y += 26;
    p.testi.append(
        testo(QStringLiteral("Situazione dossier titoli in data ") + formatDate(oggi, u"dd/mm/yyyy"), kSinistra, y));
    y += 2 * kRiga;
    intestazioni(p, y);
    y += kRiga + 4;

    for (qsizetype i = 0; i < righe.size(); ++i) {
        // The last row must leave room for the totals; any other only for itself.
        const bool ultima = i == righe.size() - 1;
        if (y > kBasso || (ultima && y + kSpazioTotali > kBasso && y > kAlto + 3 * kRiga + 4)) {
            // The totals go on with the last row: a row alone would sit on a page of its own otherwise.
            p.testi.append(testo(QStringLiteral("segue"), kDestra, kBasso + 18, Allinea::Destra, 8));
            pagine.append(p);
            p = Pagina();
            y = kAlto + kRiga;
            intestazioni(p, y);
            y += kRiga + 4;
        }
        riga(p, righe[i], y);
        y += kRiga;
    }

    if (y + kSpazioTotali > kBasso + 24 && !righe.isEmpty()) {
        pagine.append(p);
        p = Pagina();
        y = kAlto;
    }
    p.linee.append({ kSinistra, y - kRiga + 6, kDestra, y - kRiga + 6 });
    y += 8 + 12;
    p.testi.append(testo(QStringLiteral("Totali"), kSinistra, y, Allinea::Sinistra, 14));
    y += 6 + kRiga;
    const auto zero = [](const QString &t, const char *vuoto) { return t.isEmpty() ? QString::fromUtf8(vuoto) : t; };
    const std::pair<const char *, QString> voci[] = {
        { "Carico", zero(totali.acquisto, "0,00") },
        { "Attuale", zero(totali.attuale, "0,00") },
        { "Differenza", zero(totali.differenza, "0,00") },
        { "Perc. %", zero(totali.percentuale, "0,00%") },
    };
    for (const auto &[nome, valore] : voci) {
        p.testi.append(testo(QString::fromLatin1(nome), kSinistra, y, Allinea::Sinistra, 10, true));
        p.testi.append(testo(valore, kColAcquisto, y, Allinea::Destra));
        y += kRiga;
    }
    p.linee.append({ kSinistra, y - kRiga + 6, kColAcquisto, y - kRiga + 6 });
    y += 18;
    TestoPagina piede = testo(QString::fromUtf8(kPiePagina), kSinistra, y, Allinea::Sinistra, 8);
    piede.sottolineato = true;
    p.testi.append(piede);
    pagine.append(p);
    return pagine;
}

} // namespace vm::dossier
