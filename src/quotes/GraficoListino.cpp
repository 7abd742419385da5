#include "quotes/GraficoListino.h"

#include "core/Format.h"
#include "quotes/Listino.h"

#include <algorithm>
#include <cmath>

namespace vm::quotes {

TipoGrafico tipoGrafico(double valoreImpostazione)
{
    if (valoreImpostazione == 1)
        return TipoGrafico::Hlc;
    if (valoreImpostazione == 3)
        return TipoGrafico::Area;
    return TipoGrafico::Linea;
}

Griglie griglie(int valoreImpostazione)
{
    switch (valoreImpostazione) {
    case 0:
        return { false, false };
    case 2:
        return { false, true };
    case 3:
        return { true, true };
    default:
        return { true, false };
    }
}

Periodo periodoIniziale(int n, int periodoSalvato)
{
    Periodo p;
    p.massimo = std::max(2, n - 1);
    p.valore = std::clamp(periodoSalvato >= n - 1 ? n - 1 : periodoSalvato, p.minimo, p.massimo);
    return p;
}

Periodo periodoPerTitolo(int n, int valoreAttuale)
{
    Periodo p;
    p.massimo = std::max(2, n - 1);
    p.valore = std::clamp(valoreAttuale, p.minimo, p.massimo);
    return p;
}

int periodoTastoSinistro(int valore, int massimo)
{
    if (valore >= massimo - 16)
        return massimo;
    return valore + kPassoZoom;
}

int periodoTastoDestro(int valore)
{
    if (valore > 31)
        return valore - kPassoZoom;
    return 2;
}

std::optional<Trend> trendMinimiQuadrati(const QList<double> &valori)
{
    const qsizetype k = valori.size();
    if (k < 2)
        return std::nullopt;
    // Centred sums: x runs 0..k-1, so its mean is (k-1)/2 and the slope needs no large products.
    const double mediaX = double(k - 1) / 2;
    double mediaY = 0;
    for (double v : valori)
        mediaY += v;
    mediaY /= double(k);
    double sxy = 0, sxx = 0;
    for (qsizetype i = 0; i < k; ++i) {
        const double dx = double(i) - mediaX;
        sxy += dx * (valori.at(i) - mediaY);
        sxx += dx * dx;
    }
    Trend t;
    t.pendenza = sxy / sxx;
    t.inizio = mediaY - t.pendenza * mediaX;
    t.fine = mediaY + t.pendenza * mediaX;
    return t;
}

DatiGrafico datiGrafico(const QList<metastock::QuotaMS> &storia, int campi, int periodo, bool storico, TipoGrafico tipo)
{
    DatiGrafico d;
    d.campi = campi;
    d.n = int(storia.size()) + 1;
    if (!storia.isEmpty())
        d.primaData = storia.first().data;
    if (!d.disegnabile())
        return d;

    // Records are numbered from 1 (the header); record r is storia[r - 2]. The points are those after s.
    const int s = storico ? 2 : std::clamp(d.n - periodo, 1, d.n - 1);
    d.punti = storia.mid(s - 1);

    QList<double> chiusure;
    chiusure.reserve(d.punti.size());
    for (const metastock::QuotaMS &q : std::as_const(d.punti)) {
        const double basso = tipo == TipoGrafico::Hlc ? q.minimo : q.chiusura;
        const double alto = tipo == TipoGrafico::Hlc ? q.massimo : q.chiusura;
        d.minimo = std::min(d.minimo, basso);
        d.massimo = std::max(d.massimo, alto);
        d.volumeMassimo = std::max(d.volumeMassimo, double(q.volume));
        chiusure.append(q.chiusura);
    }
    d.trend = trendMinimiQuadrati(chiusure);
    d.didascalia = didascaliaGrafico(storia.last(), campi, int(d.punti.size()));
    return d;
}

QString didascaliaGrafico(const metastock::QuotaMS &ultima, int campi, int punti)
{
    const QString data = formatDate(ultima.data, u"dd/mm/yy ");
    if (campi == 7) {
        return QStringLiteral("Ultima ") + data + QStringLiteral("  Chius.:") + testoSingolo(ultima.chiusura)
            + QStringLiteral("  Max:") + testoSingolo(ultima.massimo) + QStringLiteral("  Min:")
            + testoSingolo(ultima.minimo) + QStringLiteral("  Vol:") + testoSingolo(ultima.volume)
            + QStringLiteral("  Uffic.:") + testoSingolo(ultima.ufficiale.value_or(0)) + QStringLiteral(" [")
            + QString::number(punti) + u']';
    }
    return QStringLiteral("Ultima quotazione ") + data + QStringLiteral("  Chiusura:") + testoSingolo(ultima.chiusura)
        + QStringLiteral("  Max:") + testoSingolo(ultima.massimo) + QStringLiteral("  Min:")
        + testoSingolo(ultima.minimo) + QStringLiteral("  Vol:") + testoSingolo(ultima.volume);
}

} // namespace vm::quotes
