#include "metastock/ArchiveWriter.h"

#include "core/AtomicFile.h"

#include "core/Testo1252.h"
#include "metastock/Master.h"
#include "metastock/Mbf.h"

#include <QDir>
#include <QtEndian>

namespace vm::metastock {

namespace {

void poni16(QByteArray &d, int at, int v)
{
    qToLittleEndian<quint16>(quint16(v), d.data() + at);
}
void poni32(QByteArray &d, int at, quint32 v)
{
    qToLittleEndian<quint32>(v, d.data() + at);
}

void poniMbf(QByteArray &d, int at, float v)
{
    const CampoMbf b = floatToMbf(v).value_or(CampoMbf { 0, 0, 0, 0 });
    for (int i = 0; i < 4; ++i)
        d[at + i] = char(b[i]);
}

void poniTesto(QByteArray &d, int at, int larghezza, const QString &testo, char riempimento)
{
    const QByteArray b = inWindows1252(testo).left(larghezza);
    for (int i = 0; i < larghezza; ++i)
        d[at + i] = i < b.size() ? b[i] : riempimento;
}

float numeroData(const QuotaMS &q)
{
    return q.data.isValid() ? float(numeroDataMS(q.data)) : q.numeroData;
}

QDate primaDi(const TitoloArchivio &t)
{
    return t.primaData.value_or(t.quote.isEmpty() ? QDate() : t.quote.first().data);
}

QDate ultimaDi(const TitoloArchivio &t)
{
    return t.ultimaData.value_or(t.quote.isEmpty() ? QDate() : t.quote.last().data);
}

quint32 annoMeseGiorno(QDate d)
{
    return d.isValid() ? quint32(d.year() * 10000 + d.month() * 100 + d.day()) : 0;
}

} // namespace

QByteArray recordMasterArchivio(const TitoloArchivio &t, int numeroFile, const OpzioniArchivio &opzioni)
{
    QByteArray r(kLunghezzaRecordMaster, '\0');
    r[0] = char(numeroFile);
    r[1] = 'e';
    r[3] = opzioni.marcato ? 'Z' : char(4 * t.campi);
    r[4] = char(t.campi);
    if (opzioni.marcato) {
        r[5] = 'O';
        r[6] = 'R';
        r[50] = 'L';
        r[52] = 'A';
    }
    poniTesto(r, 7, 16, t.nome, opzioni.riempimento);
    poniMbf(r, 25, float(numeroDataMS(primaDi(t))));
    poniMbf(r, 29, float(numeroDataMS(ultimaDi(t))));
    r[33] = 'D';
    poniTesto(r, 36, 14, t.simbolo, opzioni.riempimento);
    return r;
}

QByteArray datiMasterArchivio(const QList<QByteArray> &record, int ultimoNumeroFile)
{
    QByteArray d(kLunghezzaRecordMaster, '\0');
    poni16(d, 0, int(record.size()));
    poni16(d, 2, ultimoNumeroFile);
    for (const QByteArray &r : record)
        d.append(r);
    return d;
}

QByteArray recordXMasterArchivio(const TitoloArchivio &t, int numeroFile)
{
    QByteArray r(kLunghezzaRecordXMaster, '\0');
    r[0] = 1;
    poniTesto(r, 1, 14, t.simbolo, '\0');
    poniTesto(r, 16, 45, t.nome, '\0');
    r[62] = 'D';
    poni16(r, 65, numeroFile);
    r[70] = char((1 << std::clamp(t.campi, 0, 7)) - 1);
    poni32(r, 108, annoMeseGiorno(primaDi(t)));
    poni32(r, 116, annoMeseGiorno(ultimaDi(t)));
    return r;
}

QByteArray datiXMasterArchivio(const QList<QByteArray> &record, int prossimoNumeroFile)
{
    QByteArray d(kLunghezzaRecordXMaster, '\0');
    d[0] = char(0x5D);
    d[1] = char(0xFE);
    d[2] = 'X';
    d[3] = 'M';
    poni16(d, 10, int(record.size()));
    poni16(d, 14, int(record.size()));
    poni16(d, 16, prossimoNumeroFile);
    for (const QByteArray &r : record)
        d.append(r);
    return d;
}

QByteArray datiPrezziArchivio(const QList<QuotaMS> &quote, int campi)
{
    const int c = lunghezzaRecordPrezzi(campi) ? campi : 7;
    QByteArray d(4 * c * (quote.size() + 1), '\0');
    poni16(d, 2, int(std::min<qsizetype>(quote.size() + 1, 0xFFFF)));
    int at = 4 * c;
    for (const QuotaMS &q : quote) {
        float campo[7];
        if (c == 5) {
            const float v[5] = { numeroData(q), q.massimo, q.minimo, q.chiusura, q.volume };
            std::copy(v, v + 5, campo);
        } else {
            const float v[7] = { numeroData(q), q.apertura.value_or(0), q.massimo, q.minimo, q.chiusura, q.volume,
                q.ufficiale.value_or(0) };
            std::copy(v, v + 7, campo);
        }
        for (int i = 0; i < c; ++i)
            poniMbf(d, at + 4 * i, campo[i]);
        at += 4 * c;
    }
    return d;
}

bool scriviFile(const QString &percorso, const QByteArray &dati, QString *errore)
{
    QString motivo;
    if (writeFileAtomically(percorso, dati, &motivo))
        return true;
    if (errore)
        *errore = QStringLiteral("Impossibile scrivere il file ") + percorso + QStringLiteral(": ") + motivo;
    return false;
}

bool scriviArchivio(
    const QString &cartella, const QList<TitoloArchivio> &titoli, const OpzioniArchivio &opzioni, QString *errore)
{
    const QDir dir(cartella);
    const auto nome = [&](const QString &n) { return dir.filePath(opzioni.nomiMinuscoli ? n.toLower() : n); };
    QList<QByteArray> master;
    QList<QByteArray> xmaster;
    int ultimoMaster = 0;
    int ultimoX = 255;
    for (qsizetype i = 0; i < titoli.size(); ++i) {
        const TitoloArchivio &t = titoli.at(i);
        const bool inMaster = i < opzioni.titoliInMaster;
        const int numero = t.numeroFile.value_or(inMaster ? int(i + 1) : int(256 + xmaster.size()));
        if (inMaster) {
            master.append(recordMasterArchivio(t, numero, opzioni));
            ultimoMaster = std::max(ultimoMaster, numero);
        } else {
            xmaster.append(recordXMasterArchivio(t, numero));
            ultimoX = std::max(ultimoX, numero);
        }
        const QString file = nomeFilePrezzi(numero, inMaster ? Elenco::Master : Elenco::XMaster);
        if (!scriviFile(nome(file), datiPrezziArchivio(t.quote, t.campi), errore))
            return false;
    }
    if (!xmaster.isEmpty()
        && !scriviFile(nome(QStringLiteral("XMASTER")), datiXMasterArchivio(xmaster, ultimoX + 1), errore))
        return false;
    return scriviFile(nome(QStringLiteral("MASTER")), datiMasterArchivio(master, ultimoMaster), errore);
}

} // namespace vm::metastock
