#include "dossier/DossierChart.h"

#include "core/Format.h"
#include "core/Settings.h"

#include <QAreaSeries>
#include <QBarCategoryAxis>
#include <QBarSeries>
#include <QBarSet>
#include <QCategoryAxis>
#include <QLineSeries>
#include <QValueAxis>

namespace vm::dossier {

namespace {

QColor coloreIndice(const Converted<qint16> &letto, int predefinito)
{
    const int indice = letto.ok() ? letto.value : predefinito;
    return QColor::fromRgba(consoleColourRgb(indice).value_or(*consoleColourRgb(predefinito)));
}

QColor coloreChiave(const SettingsFile &impostazioni, const IniKey &chiave, const IniKey &riserva, int predefinito)
{
    // A key only the colour menu writes: absent until the user picks one, then it wins.
    if (!impostazioni.read(chiave).isEmpty())
        return coloreIndice(impostazioni.readInt16(chiave), predefinito);
    return coloreIndice(impostazioni.readInt16(riserva), predefinito);
}

// The second series (the differences, or the purchase total) in a colour that stands apart from the first.
QColor secondoColore(const QColor &primo, const QColor &sfondo)
{
    QColor c = primo.red() > 150 && primo.green() < 120 ? QColor(0x55, 0x55, 0xFF) : QColor(0xFF, 0x55, 0x55);
    if (c == sfondo)
        c = Qt::darkGray;
    return c;
}

// Labels of many points crowd the axis into a smear: beyond this many they are left out, and the
// point under the pointer names itself in a tool tip.
constexpr int kEtichetteMassime = 12;
// A name on the axis is cut to this many characters.
constexpr int kLunghezzaEtichetta = 11;

} // namespace

StileDiagramma stileTitoli(const SettingsFile &impostazioni, int indiceTipo)
{
    StileDiagramma s;
    s.forma = StileDiagramma::Forma(std::clamp(indiceTipo, 0, 3));
    const auto grafico = impostazioni.grafico().value;
    s.dati = QColor::fromRgba(consoleColourRgb(grafico.ColoreDati).value_or(*consoleColourRgb(2)));
    s.sfondo = QColor::fromRgba(consoleColourRgb(grafico.ColoreSfondo).value_or(*consoleColourRgb(15)));
    s.assi = QColor::fromRgba(consoleColourRgb(grafico.ColoreAssi).value_or(*consoleColourRgb(0)));
    s.griglieOrizzontali = grafico.GriglieGrafico == 1 || grafico.GriglieGrafico == 3;
    s.griglieVerticali = grafico.GriglieGrafico == 2 || grafico.GriglieGrafico == 3;
    return s;
}

StileDiagramma stileStorico(const SettingsFile &impostazioni)
{
    StileDiagramma s;
    s.dati = coloreChiave(impostazioni, settings::GraficoStoricoDati, settings::GraficoDati, 2);
    s.sfondo = coloreChiave(impostazioni, settings::GraficoStoricoSfondo, settings::GraficoSfondo, 15);
    s.assi = coloreChiave(impostazioni, settings::GraficoStoricoAssi, settings::GraficoAssi, 0);
    // Items of the type menu: "Barre 3D", "Barre 2D", "Area", "Linea".
    static constexpr StileDiagramma::Forma forme[] = { StileDiagramma::Forma::Barre3D, StileDiagramma::Forma::Barre,
        StileDiagramma::Forma::Area, StileDiagramma::Forma::Linea };
    s.forma = forme[voceTipoStorico(impostazioni.read(settings::GraficoStoricoTipo))];
    s.griglieOrizzontali = true;
    return s;
}

DiagrammaDossier::DiagrammaDossier(QWidget *parent)
    : QChartView(new QChart(), parent)
{
    setRenderHint(QPainter::Antialiasing);
    chart()->setAnimationOptions(QChart::NoAnimation);
    chart()->legend()->setAlignment(Qt::AlignBottom);
    chart()->setMargins(QMargins(4, 4, 4, 4));
    // Axis labels with the thousands point, whatever the system's locale.
    chart()->setLocale(italianLocale());
    chart()->setLocalizeNumbers(true);
}

void DiagrammaDossier::pulisci()
{
    disegna({}, m_stile);
}

bool DiagrammaDossier::aggiorna(const DatiDiagramma &dati, const StileDiagramma &stile)
{
    // A recomputation changes the values, seldom the titles or the shape: the bars and their labels
    // stay, only their heights move, which spares rebuilding hundreds of items.
    const bool stessaForma = stile.forma == m_stile.forma && stile.dati == m_stile.dati
        && stile.sfondo == m_stile.sfondo && stile.assi == m_stile.assi
        && stile.griglieOrizzontali == m_stile.griglieOrizzontali && stile.griglieVerticali == m_stile.griglieVerticali;
    if (!stessaForma || dati.etichette.isEmpty() || dati.etichette != m_dati.etichette
        || dati.serie.size() != m_dati.serie.size() || dati.titolo != m_dati.titolo)
        return false;
    for (qsizetype s = 0; s < dati.serie.size(); ++s) {
        if (dati.serie[s].nome != m_dati.serie[s].nome)
            return false;
    }
    const auto serie = chart()->series();
    auto *barre = serie.size() == 1 ? qobject_cast<QBarSeries *>(serie.first()) : nullptr;
    if (!barre || barre->count() != dati.serie.size())
        return false;
    for (qsizetype s = 0; s < dati.serie.size(); ++s) {
        QBarSet *set = barre->barSets().at(s);
        for (qsizetype i = 0; i < dati.serie[s].valori.size(); ++i) {
            if (set->at(i) != dati.serie[s].valori[i])
                set->replace(i, dati.serie[s].valori[i]);
        }
    }
    if (auto *assey = qobject_cast<QValueAxis *>(chart()->axes(Qt::Vertical).value(0)))
        impostaScala(assey, dati);
    m_dati = dati;
    return true;
}

void DiagrammaDossier::impostaScala(QValueAxis *assey, const DatiDiagramma &dati)
{
    double minimo = dati.minimo;
    double massimo = dati.massimo;
    if (massimo <= minimo)
        massimo = minimo + 1;
    const double margine = (massimo - minimo) * 0.05;
    assey->setRange(minimo < 0 ? minimo - margine : minimo, massimo + margine);
    assey->applyNiceNumbers();
}

void DiagrammaDossier::disegna(const DatiDiagramma &dati, const StileDiagramma &stile)
{
    if (aggiorna(dati, stile))
        return;
    m_dati = dati;
    m_stile = stile;
    // Bars are upright rectangles: smoothing their edges only slows down a chart of hundreds of them.
    setRenderHint(QPainter::Antialiasing,
        stile.forma != StileDiagramma::Forma::Barre && stile.forma != StileDiagramma::Forma::Barre3D);
    QChart *c = chart();
    c->removeAllSeries();
    for (QAbstractAxis *asse : c->axes())
        c->removeAxis(asse), delete asse;
    c->setTitle(dati.titolo);
    c->setBackgroundBrush(stile.sfondo);
    c->setTitleBrush(stile.assi);
    c->legend()->setLabelColor(stile.assi);
    c->legend()->setVisible(dati.serie.size() > 1);
    if (dati.etichette.isEmpty())
        return;

    const bool barre = stile.forma == StileDiagramma::Forma::Barre || stile.forma == StileDiagramma::Forma::Barre3D;
    const bool etichette = dati.etichette.size() <= kEtichetteMassime;
    QStringList nomi;
    if (etichette) {
        for (const QString &e : dati.etichette)
            nomi << (e.size() > kLunghezzaEtichetta ? e.left(kLunghezzaEtichetta - 1) + QChar(0x2026) : e);
        // Two names cut alike would merge their points: then the whole names go.
        if (QStringList(nomi).removeDuplicates() > 0)
            nomi = dati.etichette;
    }
    QAbstractAxis *assex = nullptr;
    if (barre) {
        auto *categorie = new QBarCategoryAxis();
        if (!etichette) {
            // Categories still need distinct names to place the bars.
            for (qsizetype i = 0; i < dati.etichette.size(); ++i)
                nomi << QString(int(i + 1), QChar(0x200B));
        }
        categorie->append(nomi);
        assex = categorie;
    } else {
        // Lines and areas run through points 0, 1, 2...: each label stands under its point.
        auto *punti = new QCategoryAxis();
        punti->setLabelsPosition(QCategoryAxis::AxisLabelsPositionOnValue);
        punti->setRange(-0.5, double(dati.etichette.size()) - 0.5);
        for (qsizetype i = 0; i < nomi.size(); ++i)
            punti->append(nomi[i], double(i));
        assex = punti;
    }
    auto *assey = new QValueAxis();
    assey->setTickCount(height() < 220 ? 4 : 6);
    const double minimo = dati.minimo;
    impostaScala(assey, dati);
    assey->setLabelFormat(QStringLiteral("%.0f"));
    for (QAbstractAxis *a : { assex, static_cast<QAbstractAxis *>(assey) }) {
        a->setLabelsColor(stile.assi);
        a->setLinePenColor(stile.assi);
        a->setGridLineColor(stile.assi.lighter(180));
    }
    assex->setGridLineVisible(stile.griglieVerticali);
    assey->setGridLineVisible(stile.griglieOrizzontali);
    QFont piccolo = assey->labelsFont();
    piccolo.setPointSizeF(std::max(6.0, piccolo.pointSizeF() - 1.5));
    assex->setLabelsFont(piccolo);
    assey->setLabelsFont(piccolo);
    assex->setLabelsAngle(dati.etichette.size() > 4 ? -30 : 0);
    c->addAxis(assex, Qt::AlignBottom);
    c->addAxis(assey, Qt::AlignLeft);

    const QColor colori[] = { stile.dati, secondoColore(stile.dati, stile.sfondo) };
    switch (stile.forma) {
    case StileDiagramma::Forma::Barre:
    case StileDiagramma::Forma::Barre3D: {
        auto *barre = new QBarSeries();
        for (qsizetype s = 0; s < dati.serie.size(); ++s) {
            auto *set = new QBarSet(dati.serie[s].nome);
            QList<qreal> valori(dati.serie[s].valori.begin(), dati.serie[s].valori.end());
            set->append(valori);
            const QColor colore = colori[std::min<qsizetype>(s, 1)];
            if (stile.forma == StileDiagramma::Forma::Barre3D) {
                // Lit from the left: the front face runs from a light edge to the full colour.
                QLinearGradient luce(0, 0, 1, 0);
                luce.setCoordinateMode(QGradient::ObjectBoundingMode);
                luce.setColorAt(0, colore.lighter(150));
                luce.setColorAt(1, colore.darker(110));
                set->setBrush(luce);
            } else {
                set->setBrush(colore);
            }
            set->setPen(QPen(colore.darker(150), 0.5));
            barre->append(set);
        }
        barre->setBarWidth(stile.forma == StileDiagramma::Forma::Barre3D ? 0.6 : 0.7);
        connect(barre, &QBarSeries::hovered, this, [this](bool dentro, int indice, QBarSet *set) {
            if (dentro && indice >= 0 && indice < m_dati.etichette.size())
                setToolTip(m_dati.etichette[indice] + QStringLiteral(": ") + set->label() + u' '
                    + formatPattern(set->at(indice), u"###,##0.00"));
            else
                setToolTip(QString());
        });
        c->addSeries(barre);
        barre->attachAxis(assex);
        barre->attachAxis(assey);
        break;
    }
    case StileDiagramma::Forma::Linea:
    case StileDiagramma::Forma::Area:
        for (qsizetype s = 0; s < dati.serie.size(); ++s) {
            auto *linea = new QLineSeries();
            linea->setName(dati.serie[s].nome);
            for (qsizetype i = 0; i < dati.serie[s].valori.size(); ++i)
                linea->append(double(i), dati.serie[s].valori[i]);
            const QColor colore = colori[std::min<qsizetype>(s, 1)];
            if (stile.forma == StileDiagramma::Forma::Area) {
                auto *base = new QLineSeries();
                for (qsizetype i = 0; i < dati.serie[s].valori.size(); ++i)
                    base->append(double(i), std::min(0.0, minimo));
                auto *area = new QAreaSeries(linea, base);
                area->setName(dati.serie[s].nome);
                QColor riempimento = colore;
                riempimento.setAlpha(dati.serie.size() > 1 ? 140 : 220);
                area->setBrush(riempimento);
                area->setPen(QPen(colore.darker(130), 1.5));
                c->addSeries(area);
                area->attachAxis(assex);
                area->attachAxis(assey);
            } else {
                linea->setPen(QPen(colore, 2));
                linea->setPointsVisible(dati.etichette.size() <= kEtichetteMassime);
                c->addSeries(linea);
                linea->attachAxis(assex);
                linea->attachAxis(assey);
            }
        }
        break;
    }
}

void DiagrammaDossier::drawForeground(QPainter *painter, const QRectF &rect)
{
    QChartView::drawForeground(painter, rect);
    if (m_stile.forma != StileDiagramma::Forma::Barre3D || m_dati.serie.isEmpty() || m_dati.etichette.isEmpty())
        return;
    // The depth of each bar: a top face and a right face slanting back-right, darker than the front.
    const auto serie = chart()->series();
    auto *barre = serie.isEmpty() ? nullptr : qobject_cast<QBarSeries *>(serie.first());
    if (!barre)
        return;
    const int insiemi = int(m_dati.serie.size());
    const double larghezzaGruppo = barre->barWidth();
    const double larghezzaBarra = larghezzaGruppo / insiemi;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF area = chart()->plotArea();
    painter->setClipRect(area.adjusted(0, -12, 12, 0));
    for (int s = 0; s < insiemi; ++s) {
        const QColor colore = barre->barSets().at(s)->pen().color();
        for (qsizetype i = 0; i < m_dati.serie[s].valori.size(); ++i) {
            const double v = m_dati.serie[s].valori[i];
            const double x0 = double(i) - larghezzaGruppo / 2 + s * larghezzaBarra;
            const QPointF alto = chart()->mapToPosition(QPointF(x0, v), barre);
            const QPointF altoDestra = chart()->mapToPosition(QPointF(x0 + larghezzaBarra, v), barre);
            const QPointF base = chart()->mapToPosition(QPointF(x0 + larghezzaBarra, 0), barre);
            const double profondita = std::min(8.0, (altoDestra.x() - alto.x()) * 0.5);
            const QPointF d(profondita, -profondita);
            const QPointF sopra = v >= 0 ? alto : chart()->mapToPosition(QPointF(x0, 0), barre);
            const QPointF sopraDestra = v >= 0 ? altoDestra : base;
            const QPointF sotto = v >= 0 ? base : altoDestra;
            QPolygonF cima { sopra, sopra + d, sopraDestra + d, sopraDestra };
            QPolygonF fianco { sopraDestra, sopraDestra + d, sotto + d, sotto };
            painter->setPen(QPen(colore, 0.5));
            painter->setBrush(colore.lighter(160));
            painter->drawPolygon(cima);
            painter->setBrush(colore);
            painter->drawPolygon(fianco);
        }
    }
    painter->restore();
}

} // namespace vm::dossier
