#include "archives/ArchiveSearch.h"

#include "metastock/Master.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <chrono>
#include <cstring>
#include <string>
#include <unordered_set>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vm::archives {

namespace {

// "\040" and the like stand for blanks and tabs in mountinfo.
std::string senzaOttali(const std::string &s)
{
    std::string r;
    r.reserve(s.size());
    for (size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '\\' && i + 3 < s.size() + 0 && s[i + 1] >= '0' && s[i + 1] <= '7') {
            r.push_back(char((s[i + 1] - '0') * 64 + (s[i + 2] - '0') * 8 + (s[i + 3] - '0')));
            i += 3;
        } else {
            r.push_back(s[i]);
        }
    }
    return r;
}

// The mark of the first title record, read from the first two records only.
bool marcato(int dirFd, const char *nome)
{
    const int fd = ::openat(dirFd, nome, O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (fd < 0)
        return false;
    unsigned char b[2 * metastock::kLunghezzaRecordMaster];
    const ssize_t letti = ::pread(fd, b, sizeof b, 0);
    ::close(fd);
    if (letti != ssize_t(sizeof b) || (b[0] == 0 && b[1] == 0))
        return false;
    const unsigned char *r = b + metastock::kLunghezzaRecordMaster;
    return r[3] == 'Z' && r[5] == 'O' && r[6] == 'R' && r[50] == 'L' && r[52] == 'A';
}

struct Voce {
    std::string percorso; // without the final "/", except for the root
    bool primoLivello = false;
};

std::string figlio(const std::string &padre, const char *nome)
{
    std::string p = padre;
    if (p.empty() || p.back() != '/')
        p.push_back('/');
    p += nome;
    return p;
}

} // namespace

QStringList puntiDiMontaggio()
{
    QStringList punti;
    QFile f(QStringLiteral("/proc/self/mountinfo"));
    if (!f.open(QIODevice::ReadOnly))
        return punti;
    const QList<QByteArray> righe = f.readAll().split('\n');
    for (const QByteArray &riga : righe) {
        const QList<QByteArray> campi = riga.split(' ');
        if (campi.size() > 4)
            punti << QString::fromStdString(senzaOttali(campi[4].toStdString()));
    }
    return punti;
}

QList<ArchivioTrovato> RicercaArchivi::DirUt(const QString &radice, const OpzioniRicerca &opzioni,
    const Trovato &trovato, const Progress &avanzamento, const Pausa &pausa)
{
    using Orologio = std::chrono::steady_clock;
    const auto intervallo = std::chrono::milliseconds(m_intervallo);

    m_fermata = false;
    m_visitate = 0;
    m_illeggibili = 0;
    QList<ArchivioTrovato> trovati;

    QString partenza = QDir::cleanPath(QDir::fromNativeSeparators(radice.trimmed()));
    if (partenza.isEmpty())
        return trovati;
    // A link named as the start is followed; the links met below it are not.
    if (const QString vera = QFileInfo(partenza).canonicalFilePath(); !vera.isEmpty())
        partenza = vera;
    const std::string inizio = QFile::encodeName(partenza).toStdString();

    // Other file systems mounted below the start are other drives.
    std::unordered_set<std::string> montati;
    for (const QString &p : puntiDiMontaggio()) {
        const std::string s = QFile::encodeName(p).toStdString();
        if (s != inizio)
            montati.insert(s);
    }

    std::vector<Voce> pila;
    pila.push_back({ inizio, false });
    int primoLivelloTotale = 0;
    int primoLivelloFatti = 0;
    auto ultimaPausa = Orologio::now();
    bool radiceLetta = false;

    while (!pila.empty() && !m_fermata) {
        Voce voce = std::move(pila.back());
        pila.pop_back();
        if (voce.primoLivello)
            ++primoLivelloFatti;

        const int fd = ::open(voce.percorso.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW);
        DIR *dir = fd >= 0 ? ::fdopendir(fd) : nullptr;
        if (!dir) {
            if (fd >= 0)
                ::close(fd);
            ++m_illeggibili;
            continue;
        }
        ++m_visitate;
        const bool primo = !radiceLetta;
        radiceLetta = true;
        const char *master = nullptr;
        std::string nomeMaster;
        while (const dirent *e = ::readdir(dir)) {
            const char *nome = e->d_name;
            if (nome[0] == '.' && (nome[1] == 0 || (nome[1] == '.' && nome[2] == 0)))
                continue;
            unsigned char tipo = e->d_type;
            if (tipo == DT_UNKNOWN) {
                struct stat st;
                if (::fstatat(::dirfd(dir), nome, &st, AT_SYMLINK_NOFOLLOW) != 0)
                    continue;
                tipo = S_ISDIR(st.st_mode) ? DT_DIR : S_ISREG(st.st_mode) ? DT_REG : DT_UNKNOWN;
            }
            if (tipo == DT_DIR) {
                std::string p = figlio(voce.percorso, nome);
                if (montati.count(p))
                    continue;
                pila.push_back({ std::move(p), primo });
                if (primo)
                    ++primoLivelloTotale;
            } else if (tipo == DT_REG && !master && ::strcasecmp(nome, "master") == 0) {
                nomeMaster = nome;
                master = nomeMaster.c_str();
            }
        }
        if (master) {
            const bool compatibile = marcato(::dirfd(dir), master);
            if (compatibile || !opzioni.soloCompatibili) {
                ArchivioTrovato a { QFile::decodeName(QByteArray::fromStdString(figlio(voce.percorso, ""))),
                    compatibile };
                trovati << a;
                if (trovato)
                    trovato(a);
            }
        }
        ::closedir(dir);

        if (pausa || avanzamento) {
            const auto adesso = Orologio::now();
            if (adesso - ultimaPausa >= intervallo) {
                ultimaPausa = adesso;
                if (avanzamento)
                    avanzamento(primoLivelloFatti, primoLivelloTotale);
                if (pausa)
                    pausa();
            }
        }
    }
    if (avanzamento && !m_fermata)
        avanzamento(primoLivelloTotale, primoLivelloTotale);
    return trovati;
}

} // namespace vm::archives
