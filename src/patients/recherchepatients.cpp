#include "patients/recherchepatients.h"

#include "patients/gestiontype.h"
#include "patients/schemapatients.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/jettexte.h"

#include <QFileInfo>
#include <QHash>
#include <QStringDecoder>

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <tuple>
#include <string_view>
#include <utility>
#include <vector>

QString EchapperApostrophes(const QString &texte)
{
    return QString(texte).replace(u'\'', QStringLiteral("''"));
}

namespace {

const QString &modeleBranche()
{
    static const QString t = QStringLiteral(
        "(SELECT Signaletiques.Base, Signaletiques.Nom, Signaletiques.Prenom, Signaletiques.[Date de Naissance], "
        "Signaletiques.[Derniere Visite], Signaletiques.Numero, Signaletiques.Agenda FROM [;Database=db%].Signaletiques "
        "WHERE Nom LIKE 'n%*' AND Prenom LIKE 'p%*' ORDER BY Nom, Prenom ) ");
    return t;
}

const QString separateur = QStringLiteral("UNION ALL ");

QString branche(const QString &chemin)
{
    return QString(modeleBranche()).replace(QStringLiteral("db%"), chemin);
}

// The bases of the union in their order: path1 first; path2, path3 and
// path4 form a dense list.
QStringList cheminsUnion(const QString &p1, const QString &p2, const QString &p3, const QString &p4)
{
    QStringList l;
    if (p1.isEmpty())
        return l;
    l << p1;
    if (!p2.isEmpty()) {
        l << p2;
        if (!p3.isEmpty()) {
            l << p3;
            if (!p4.isEmpty())
                l << p4;
        }
    }
    return l;
}

// A quoted literal as the engine reads it: a doubled apostrophe is one.
QString litteral(const QString &texte)
{
    return QString(texte).replace(QStringLiteral("''"), QStringLiteral("'"));
}

} // namespace

QString ConstruireUnion(QString &path1, QString &path2, QString &path3, QString &path4, QString &nom, QString &prenom,
                        bool avecBaseAgenda)
{
    const QStringList chemins = cheminsUnion(path1, path2, path3, path4);
    if (chemins.isEmpty())
        return {};
    QString texte = branche(chemins.first());
    for (qsizetype i = 1; i < chemins.size(); ++i)
        texte += separateur + branche(chemins.at(i));
    if (avecBaseAgenda)
        texte += separateur + branche(appState().CheminBaseAgenda + QStringLiteral("Patients.mdb"));
    // Replaced only now, over the whole text: a "p%" inside a family name or a
    // path is replaced as well.
    texte.replace(QStringLiteral("n%"), nom);
    texte.replace(QStringLiteral("p%"), prenom);
    return texte;
}

QList<BrancheRecherche> BranchesUnion(const std::array<QString, 5> &paths, const QString &nomEchappe,
                                      const QString &prenomEchappe, bool avecBaseAgenda,
                                      const QString &cheminBaseAgenda)
{
    QStringList chemins = cheminsUnion(paths[1], paths[2], paths[3], paths[4]);
    QList<BrancheRecherche> branches;
    if (chemins.isEmpty())
        return branches;
    if (avecBaseAgenda)
        chemins << cheminBaseAgenda + QStringLiteral("Patients.mdb");
    // The same two replacements as in the one statement, part by part: the
    // family name is put in first, so a "p%" in it (or in a path) becomes the
    // given name; a "n%" in the given name stays.
    auto remplacer = [&](QString s) {
        return s.replace(QStringLiteral("n%"), nomEchappe).replace(QStringLiteral("p%"), prenomEchappe);
    };
    const QString motifNom = litteral(remplacer(QStringLiteral("n%*")));
    const QString motifPrenom = litteral(remplacer(QStringLiteral("p%*")));
    for (const QString &c : chemins)
        branches.append({remplacer(c), motifNom, motifPrenom});
    return branches;
}

// ---------------------------------------------------------------------------
// Ranges of names for a pattern.
//
// The base compares names with SQLite's NOCASE collation: the UTF-8 bytes,
// with only the ASCII letters folded to lower case. A name matches a pattern
// when its folded form (no case, no accents, see PlierTexte) begins with the
// folded literal start of the pattern. So the candidates are the names whose
// first characters fold to that start: every character below U+0300 is
// listed with its folded form, and each way to spell the start with them
// gives one range. A character from U+0300 up (combining accents, other
// scripts) is not listed: any name that has one within the start is taken
// as a candidate by an open range instead. The ranges may hold too much,
// never too little; the pattern decides.
namespace {

struct Variante
{
    QChar c;
    QString plie;
};

struct TableVariantes
{
    // The characters by the first character of their folded form.
    QHash<QChar, std::vector<Variante>> parInitiale;
    // The characters whose folded form is empty.
    std::vector<Variante> vides;
};

const TableVariantes &variantes()
{
    static const TableVariantes table = [] {
        TableVariantes t;
        for (char16_t u = 1; u < 0x300; ++u) {
            // NOCASE makes "A" and "a" one: the lower case stands for both.
            if (u >= u'A' && u <= u'Z')
                continue;
            Variante v{QChar(u), PlierTexte(QString(QChar(u)))};
            if (v.plie.isEmpty())
                t.vides.push_back(v);
            else
                t.parInitiale[v.plie.at(0)].push_back(v);
        }
        return t;
    }();
    return table;
}

constexpr char16_t premierHorsTable = 0x300;
// Beyond this many characters the start no longer narrows the search much,
// and the number of ranges grows with each one.
constexpr int profondeurMax = 3;
constexpr qsizetype plagesMax = 120;

QString suivant(const QString &v)
{
    QString s = v;
    s[s.size() - 1] = QChar(static_cast<char16_t>(s.back().unicode() + 1));
    return s;
}

void generer(const QString &v, const QString &reste, int profondeur, int profondeurLimite, QList<PlageNoms> &plages)
{
    if (reste.isEmpty() || profondeur == profondeurLimite) {
        plages.append({v, suivant(v)});
        return;
    }
    if (!v.isEmpty())
        plages.append({v + QChar(premierHorsTable), suivant(v)});
    const TableVariantes &table = variantes();
    for (const Variante &var : table.vides) {
        const QString w = v + var.c;
        plages.append({w, suivant(w)});
    }
    const auto bucket = table.parInitiale.constFind(reste.at(0));
    if (bucket == table.parInitiale.cend())
        return;
    for (const Variante &var : *bucket) {
        const QString w = v + var.c;
        if (reste.startsWith(var.plie)) {
            generer(w, reste.mid(var.plie.size()), profondeur + 1, profondeurLimite, plages);
        } else if (var.plie.startsWith(reste)) {
            plages.append({w, suivant(w)});
        }
    }
}

// The order of the NOCASE collation.
QByteArray cle(const QString &s)
{
    QByteArray b = s.toUtf8();
    for (char &c : b) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return b;
}

QList<PlageNoms> fusionner(QList<PlageNoms> plages)
{
    std::sort(plages.begin(), plages.end(),
              [](const PlageNoms &a, const PlageNoms &b) { return cle(a.debut) < cle(b.debut); });
    QList<PlageNoms> sortie;
    for (const PlageNoms &p : plages) {
        if (!sortie.isEmpty()) {
            PlageNoms &d = sortie.last();
            if (d.fin.isEmpty())
                continue;
            if (cle(p.debut) <= cle(d.fin)) {
                if (p.fin.isEmpty() || cle(p.fin) > cle(d.fin))
                    d.fin = p.fin;
                continue;
            }
        }
        sortie.append(p);
    }
    return sortie;
}

} // namespace

std::optional<QList<PlageNoms>> PlagesDuMotif(const QString &motif)
{
    qsizetype n = 0;
    while (n < motif.size() && !QStringView(u"*?#[").contains(motif.at(n)))
        ++n;
    const QString debut = PlierTexte(motif.left(n));
    if (debut.isEmpty())
        return std::nullopt;
    QList<PlageNoms> plages;
    for (int limite = profondeurMax; limite >= 1; --limite) {
        plages.clear();
        generer(QString(), debut, 0, limite, plages);
        plages = fusionner(plages);
        if (plages.size() <= plagesMax)
            break;
    }
    // Names that begin with a character outside the table.
    plages.append({QString(QChar(premierHorsTable)), QString()});
    return fusionner(plages);
}

// ---------------------------------------------------------------------------

namespace {

ErreurRecherche erreurSqlite(sqlite3 *poignee)
{
    ErreurRecherche r;
    r.numero = sqlite3_extended_errcode(poignee);
    const QString texte = QString::fromUtf8(sqlite3_errmsg(poignee));
    const int primaire = r.numero & 0xff;
    if (primaire == SQLITE_BUSY || primaire == SQLITE_LOCKED)
        r.description = QStringLiteral("La base est verrouillée par un autre utilisateur (%1).").arg(texte);
    else if (primaire == SQLITE_NOTADB || primaire == SQLITE_CORRUPT || texte.contains(QStringLiteral("no such")))
        r.description = QStringLiteral("Le fichier n'est pas une base de patients utilisable (%1).").arg(texte);
    else
        r.description = texte;
    return r;
}

QString colonneTexte(sqlite3_stmt *s, int i)
{
    const auto *u = reinterpret_cast<const char *>(sqlite3_column_text(s, i));
    if (!u)
        return {};
    return QString::fromUtf8(u, sqlite3_column_bytes(s, i));
}

QVariant colonneValeur(sqlite3_stmt *s, int i)
{
    switch (sqlite3_column_type(s, i)) {
    case SQLITE_NULL:
        return {};
    case SQLITE_INTEGER:
        return QVariant::fromValue<qlonglong>(sqlite3_column_int64(s, i));
    case SQLITE_FLOAT:
        return sqlite3_column_double(s, i);
    default:
        return colonneTexte(s, i);
    }
}

void lierTexte(sqlite3_stmt *s, int i, const QString &t)
{
    sqlite3_bind_text16(s, i, t.utf16(), static_cast<int>(t.size() * 2), SQLITE_TRANSIENT);
}

// A prepared statement, finalised when it goes.
struct Instruction
{
    sqlite3_stmt *s = nullptr;
    Instruction() = default;
    Instruction(const Instruction &) = delete;
    Instruction &operator=(const Instruction &) = delete;
    ~Instruction() { sqlite3_finalize(s); }
};

// Rows are read in pages of this many when the grid asks for them.
constexpr qsizetype taillePage = 64;

// UTF-16 texts one after another in one block, which grows without
// clearing what is about to be written: taille units are used.
struct Bloc
{
    size_t taille = 0;

    char16_t *place(size_t n)
    {
        if (taille + n > m_capacite)
            reserver(std::max(2 * m_capacite, taille + n + 4096));
        return m_d.get() + taille;
    }
    void reserver(size_t capacite)
    {
        if (capacite <= m_capacite)
            return;
        std::unique_ptr<char16_t[]> d(new char16_t[capacite]);
        std::copy(m_d.get(), m_d.get() + taille, d.get());
        m_d = std::move(d);
        m_capacite = capacite;
    }
    void ajouter(QStringView t)
    {
        std::copy(t.utf16(), t.utf16() + t.size(), place(static_cast<size_t>(t.size())));
        taille += static_cast<size_t>(t.size());
    }
    [[nodiscard]] const char16_t *data() const { return m_d.get(); }
    [[nodiscard]] QStringView vue(size_t debut, size_t longueur) const
    {
        return QStringView(m_d.get() + debut, static_cast<qsizetype>(longueur));
    }

private:
    std::unique_ptr<char16_t[]> m_d;
    size_t m_capacite = 0;
};

// PlierTexte character by character, for the characters below U+0300: each
// one folds on its own there (no combining mark among them, and the marks
// that their decompositions give are all dropped), so a name made only of
// them folds as the folded characters one after the other.
constexpr char16_t finPliageRapide = 0x300;
// In the table of single units: this character does not fold to one unit.
constexpr char16_t pasUnSeul = 0xFFFF;

struct TablePliage
{
    std::array<char16_t, finPliageRapide> seul;
    std::array<QString, finPliageRapide> texte;
};

const TablePliage &tablePliage()
{
    static const TablePliage table = [] {
        TablePliage t;
        for (char16_t u = 0; u < finPliageRapide; ++u) {
            t.texte[u] = PlierTexte(QString(QChar(u)));
            t.seul[u] = t.texte[u].size() == 1 ? t.texte[u].front().unicode() : pasUnSeul;
        }
        return t;
    }();
    return table;
}

// Appends the folded form of the text (see PlierTexte) to plis.
void plier(QStringView texte, Bloc &plis)
{
    const TablePliage &table = tablePliage();
    const size_t debut = plis.taille;
    char16_t *sortie = plis.place(static_cast<size_t>(texte.size()));
    for (const QChar c : texte) {
        const char16_t u = c.unicode();
        if (u < finPliageRapide && table.seul[u] != pasUnSeul) {
            *sortie++ = table.seul[u];
            continue;
        }
        plis.taille = static_cast<size_t>(sortie - plis.data());
        if (u >= finPliageRapide) {
            plis.taille = debut;
            plis.ajouter(PlierTexte(texte.toString()));
            return;
        }
        plis.ajouter(table.texte[u]);
        // Room for the rest, which may be one unit each.
        sortie = plis.place(static_cast<size_t>(texte.size()));
    }
    plis.taille = static_cast<size_t>(sortie - plis.data());
}

// Appends a text of the base (UTF-8, read as QString::fromUtf8 reads it)
// to noms and its folded form to plis; the lengths of both.
std::pair<quint32, quint32> ajouterNom(const unsigned char *u, size_t octets, QStringDecoder &utf8, Bloc &noms,
                                       Bloc &plis)
{
    // Nearly every name, in one pass: characters of one or two bytes that
    // fold to one unit each.
    const TablePliage &table = tablePliage();
    char16_t *n = noms.place(octets);
    char16_t *p = plis.place(octets);
    size_t i = 0;
    size_t k = 0;
    for (; i < octets; ++i, ++k) {
        char16_t c = u[i];
        if (c >= 0x80) {
            if (c < 0xC2 || c > 0xDF || i + 1 == octets || (u[i + 1] & 0xC0) != 0x80)
                break;
            c = static_cast<char16_t>(((c & 0x1F) << 6) | (u[i + 1] & 0x3F));
            if (c >= finPliageRapide || table.seul[c] == pasUnSeul)
                break;
            ++i;
        }
        n[k] = c;
        p[k] = table.seul[c];
    }
    if (i == octets) {
        noms.taille += k;
        plis.taille += k;
        return {static_cast<quint32>(k), static_cast<quint32>(k)};
    }
    // Any other text, in full.
    const size_t debut = noms.taille;
    auto *q = reinterpret_cast<QChar *>(noms.place(static_cast<size_t>(utf8.requiredSpace(static_cast<qsizetype>(octets)))));
    const QChar *fin = utf8.appendToBuffer(q, QByteArrayView(u, static_cast<qsizetype>(octets)));
    const auto longueur = static_cast<size_t>(fin - q);
    noms.taille += longueur;
    const size_t pli = plis.taille;
    plier(noms.vue(debut, longueur), plis);
    return {static_cast<quint32>(longueur), static_cast<quint32>(plis.taille - pli)};
}

// The four texts that order a row (folded family name, folded given name,
// family name, given name) as one run of bytes whose order is the order of
// the rows wherever two runs differ: each UTF-16 unit as the unit plus one,
// and a 0 after each text; a unit from 0xFE up counts as 0xFF and ends the
// run. The first 32 bytes are kept, as four numbers; when the whole run fits
// in them, two equal keys mean four equal texts.
struct CleTri
{
    std::array<quint64, 4> mots{};
    bool entiere = false;
};

CleTri cleTri(const std::array<std::u16string_view, 4> &textes)
{
    CleTri c;
    unsigned place = 0;
    auto poser = [&](quint64 octet) {
        c.mots[place / 8] |= octet << (56 - 8 * (place % 8));
        ++place;
    };
    for (const std::u16string_view t : textes) {
        for (const char16_t u : t) {
            if (place == 32)
                return c;
            if (u >= 0xFE) {
                poser(0xFF);
                return c;
            }
            poser(u + 1u);
        }
        if (place == 32)
            return c;
        ++place;
    }
    c.entiere = true;
    return c;
}

// A row that the patterns accept: its row number, where its names are in
// the result's block, where their folded forms are in the working block.
struct Trouvee
{
    qint64 rowid;
    quint32 nom;
    quint32 longueurNom;
    quint32 longueurPrenom;
    quint32 pli;
    quint32 longueurPliNom;
    quint32 longueurPliPrenom;
};

// The first number of a row's key, and the row.
using Rang = std::pair<quint64, quint32>;

// The other numbers of a row's key, for the rows whose first numbers are
// equal.
struct Suite
{
    quint64 mot1, mot2, mot3;
    quint32 trouvee;
    bool entiere;
};

} // namespace

struct ResultatRecherche::Donnees
{
    struct Source
    {
        std::unique_ptr<BaseSqlite> base;
        std::unique_ptr<Instruction> details;
    };
    // A row as found: its base, its row number, and where its names are in
    // noms (the given name follows the family name).
    struct Entree
    {
        qint64 rowid = 0;
        quint32 debut = 0;
        quint32 longueurNom = 0;
        quint32 longueurPrenom = 0;
        quint32 source = 0;
    };
    // The rows as the grid reads them, made when a row of the page is first
    // asked for.
    struct Page
    {
        std::array<LigneRecherche, taillePage> lignes;
        std::array<bool, taillePage> complete{};
        qsizetype nommees = 0;
    };
    std::vector<Source> sources;
    std::vector<Entree> entrees;
    // The names of every row, one after another: a long list costs no
    // allocation a row.
    Bloc noms;
    std::vector<std::unique_ptr<Page>> pages;

    QString texte(quint32 debut, quint32 longueur) const
    {
        return QString(reinterpret_cast<const QChar *>(noms.data() + debut), longueur);
    }

    Page &page(qsizetype i)
    {
        const size_t n = static_cast<size_t>(i / taillePage);
        if (pages.size() <= n)
            pages.resize(n + 1);
        if (!pages[n])
            pages[n] = std::make_unique<Page>();
        Page &p = *pages[n];
        // The rows of the page that exist now; a base added later may
        // fill the rest of it.
        const qsizetype premier = i - i % taillePage;
        const qsizetype nombre = std::min<qsizetype>(taillePage, static_cast<qsizetype>(entrees.size()) - premier);
        for (; p.nommees < nombre; ++p.nommees) {
            const Entree &e = entrees[static_cast<size_t>(premier + p.nommees)];
            LigneRecherche &l = p.lignes[static_cast<size_t>(p.nommees)];
            l.Nom = texte(e.debut, e.longueurNom);
            l.Prenom = texte(e.debut + e.longueurNom, e.longueurPrenom);
        }
        return p;
    }

    bool completer(qsizetype i, ErreurRecherche *erreur = nullptr)
    {
        Page &p = page(i);
        const size_t k = static_cast<size_t>(i % taillePage);
        if (p.complete[k])
            return true;
        const Entree &e = entrees[static_cast<size_t>(i)];
        LigneRecherche &l = p.lignes[k];
        sqlite3_stmt *s = sources[e.source].details->s;
        sqlite3_bind_int64(s, 1, e.rowid);
        const int rc = sqlite3_step(s);
        if (rc == SQLITE_ROW) {
            l.Base = colonneTexte(s, 0);
            l.DerniereVisite = colonneValeur(s, 1);
            l.Numero = colonneValeur(s, 2);
            l.Agenda = colonneValeur(s, 3);
            l.DateNaissance = colonneValeur(s, 4);
            p.complete[k] = true;
        }
        // A row that has gone since the search keeps empty columns; a base
        // that is busy for a moment is asked again next time.
        else if (rc == SQLITE_DONE) {
            p.complete[k] = true;
        } else if (erreur) {
            *erreur = erreurSqlite(sqlite3_db_handle(s));
        }
        sqlite3_reset(s);
        return p.complete[k];
    }
};

ResultatRecherche::ResultatRecherche()
    : d(std::make_unique<Donnees>())
{
}

ResultatRecherche::~ResultatRecherche() = default;
ResultatRecherche::ResultatRecherche(ResultatRecherche &&) noexcept = default;
ResultatRecherche &ResultatRecherche::operator=(ResultatRecherche &&) noexcept = default;

qsizetype ResultatRecherche::size() const
{
    return static_cast<qsizetype>(d->entrees.size());
}

const LigneRecherche &ResultatRecherche::ligne(qsizetype i)
{
    Donnees::Page &p = d->page(i);
    if (!p.complete[static_cast<size_t>(i % taillePage)]) {
        const qsizetype debut = i - i % taillePage;
        const qsizetype fin = std::min(size(), debut + taillePage);
        for (qsizetype j = debut; j < fin; ++j)
            d->completer(j);
    }
    return p.lignes[static_cast<size_t>(i % taillePage)];
}

bool ResultatRecherche::lire(qsizetype i, ErreurRecherche *erreur)
{
    return d->completer(i, erreur);
}

QList<LigneRecherche> ResultatRecherche::toutes()
{
    QList<LigneRecherche> l;
    l.reserve(size());
    for (qsizetype i = 0; i < size(); ++i)
        l.append(ligne(i));
    return l;
}

void ResultatRecherche::vider()
{
    d->entrees.clear();
    d->noms = Bloc();
    d->pages.clear();
    d->sources.clear();
}

bool ResultatRecherche::ajouterBase(const QString &chemin, const QString &motifNom, const QString &motifPrenom,
                                    ErreurRecherche *erreur)
{
    ErreurRecherche e;
    Bloc &noms = d->noms;
    const size_t nomsAvant = noms.taille;
    auto echec = [&]() {
        noms.taille = nomsAvant;
        if (erreur)
            *erreur = e;
        return false;
    };
    QString fichier = chemin;
    if (!QFileInfo::exists(fichier)
        && QFileInfo(fichier).fileName().compare(QStringLiteral("Patients.mdb"), Qt::CaseInsensitive) == 0)
        fichier = CheminPatientsMdb(QFileInfo(fichier).path());
    // A search never writes: the bases of the other product are theirs.
    auto base = BaseSqlite::ouvrir(fichier, BaseSqlite::Mode::Lecture, &e.description, &e.numero);
    if (!base)
        return echec();
    sqlite3 *poignee = base->poignee();

    // The index on the identity gives the candidates, one range of names at
    // a time (a single range is always searched through the index), with
    // the names; the patterns then decide here, which saves
    // the base a call to the comparison function for each row.
    const std::optional<QList<PlageNoms>> plages = PlagesDuMotif(motifNom);
    const QString colonnes = QStringLiteral("SELECT Nom, Prenom, rowid FROM Signaletiques");
    auto preparer = [&](Instruction &ins, const QString &sql) {
        return sqlite3_prepare16_v2(poignee, sql.utf16(), -1, &ins.s, nullptr) == SQLITE_OK;
    };
    Instruction fermee, ouverte, tout;
    auto details = std::make_unique<Instruction>();
    const bool prete =
        (plages ? preparer(fermee, colonnes + QStringLiteral(" WHERE Nom COLLATE NOCASE >= ?1 AND Nom COLLATE NOCASE < ?2"))
                      && preparer(ouverte, colonnes + QStringLiteral(" WHERE Nom COLLATE NOCASE >= ?1"))
                : preparer(tout, colonnes))
        && preparer(*details, QStringLiteral("SELECT Base, \"Derniere Visite\", Numero, Agenda, "
                                             "\"Date de Naissance\" FROM Signaletiques WHERE rowid = ?1"));
    if (!prete) {
        e = erreurSqlite(poignee);
        return echec();
    }

    // The names go straight to noms, and their folded forms to plis; a row
    // that the patterns refuse is taken back out of both.
    const MotifJet filtreNom(motifNom);
    const MotifJet filtrePrenom(motifPrenom);
    std::vector<Trouvee> trouvees;
    trouvees.reserve(1024);
    Bloc plis;
    QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    auto vue = [](const Bloc &v, quint32 debut, quint32 longueur) {
        return std::u16string_view(v.data() + debut, longueur);
    };
    auto textes = [&](const Trouvee &t) {
        return std::array<std::u16string_view, 4>{vue(plis, t.pli, t.longueurPliNom),
                                                  vue(plis, t.pli + t.longueurPliNom, t.longueurPliPrenom),
                                                  vue(noms, t.nom, t.longueurNom),
                                                  vue(noms, t.nom + t.longueurNom, t.longueurPrenom)};
    };
    std::vector<CleTri> cles;
    cles.reserve(1024);
    auto lire = [&](sqlite3_stmt *s) {
        int rc;
        while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
            // A null name matches no pattern.
            const auto *nom = sqlite3_column_text(s, 0);
            const auto *prenom = sqlite3_column_text(s, 1);
            if (!nom || !prenom)
                continue;
            Trouvee t{sqlite3_column_int64(s, 2), static_cast<quint32>(noms.taille), 0, 0,
                      static_cast<quint32>(plis.taille), 0, 0};
            std::tie(t.longueurNom, t.longueurPliNom) =
                ajouterNom(nom, static_cast<size_t>(sqlite3_column_bytes(s, 0)), utf8, noms, plis);
            if (filtreNom.correspondPlie(plis.vue(t.pli, t.longueurPliNom))) {
                std::tie(t.longueurPrenom, t.longueurPliPrenom) =
                    ajouterNom(prenom, static_cast<size_t>(sqlite3_column_bytes(s, 1)), utf8, noms, plis);
                if (filtrePrenom.correspondPlie(plis.vue(t.pli + t.longueurPliNom, t.longueurPliPrenom))) {
                    trouvees.push_back(t);
                    cles.push_back(cleTri(textes(t)));
                    continue;
                }
            }
            noms.taille = t.nom;
            plis.taille = t.pli;
        }
        const bool ok = rc == SQLITE_DONE;
        if (!ok)
            e = erreurSqlite(poignee);
        sqlite3_reset(s);
        return ok;
    };
    if (!plages) {
        // Every row is a candidate: room for them all at once, from the
        // highest row number (a cheap count from above), spares the copies
        // of growing.
        Instruction plusHaut;
        if (preparer(plusHaut, QStringLiteral("SELECT max(rowid) FROM Signaletiques"))
            && sqlite3_step(plusHaut.s) == SQLITE_ROW) {
            const auto n = static_cast<size_t>(std::clamp<qint64>(sqlite3_column_int64(plusHaut.s, 0), 0, 1 << 20));
            trouvees.reserve(n);
            cles.reserve(n);
            noms.reserver(noms.taille + 16 * n);
            plis.reserver(16 * n);
        }
        if (!lire(tout.s))
            return echec();
    } else {
        for (const PlageNoms &p : *plages) {
            sqlite3_stmt *s = p.fin.isEmpty() ? ouverte.s : fermee.s;
            lierTexte(s, 1, p.debut);
            if (!p.fin.isEmpty())
                lierTexte(s, 2, p.fin);
            if (!lire(s))
                return echec();
        }
    }
    // Sorted as the practice's bases sort names: no regard to case or
    // accents, the exact spelling only between equal names, the order found
    // between rows of the same spelling. The keys settle nearly every
    // comparison without reading the texts: first by the first number alone,
    // a byte at a time from the last (each pass keeps the order of the one
    // before), then each run of rows with the same first number by the rest.
    std::vector<Rang> ordre(trouvees.size());
    for (quint32 i = 0; i < ordre.size(); ++i)
        ordre[i] = {cles[i].mots[0], i};
    {
        std::vector<Rang> tampon(ordre.size());
        std::array<size_t, 257> compte;
        for (int octet = 0; octet < 8; ++octet) {
            const int decalage = 8 * octet;
            compte.fill(0);
            for (const Rang &r : ordre)
                ++compte[((r.first >> decalage) & 0xFF) + 1];
            // A byte that every row shares changes nothing.
            if (std::find(compte.begin(), compte.end(), ordre.size()) != compte.end())
                continue;
            for (size_t i = 1; i < compte.size(); ++i)
                compte[i] += compte[i - 1];
            for (const Rang &r : ordre)
                tampon[compte[(r.first >> decalage) & 0xFF]++] = r;
            ordre.swap(tampon);
        }
    }
    // The texts compare by their UTF-16 code units, as QString does.
    auto avant = [&](const Suite &a, const Suite &b) {
        if (a.mot1 != b.mot1)
            return a.mot1 < b.mot1;
        if (a.mot2 != b.mot2)
            return a.mot2 < b.mot2;
        if (a.mot3 != b.mot3)
            return a.mot3 < b.mot3;
        if (!a.entiere) {
            if (const auto ta = textes(trouvees[a.trouvee]), tb = textes(trouvees[b.trouvee]); ta != tb)
                return ta < tb;
        }
        return a.trouvee < b.trouvee;
    };
    std::vector<Suite> suite;
    for (auto debut = ordre.begin(); debut != ordre.end();) {
        auto fin = debut + 1;
        while (fin != ordre.end() && fin->first == debut->first)
            ++fin;
        if (fin - debut > 1) {
            // The rest of the keys side by side, so that comparing reads no
            // further.
            suite.clear();
            for (auto r = debut; r != fin; ++r) {
                const CleTri &c = cles[r->second];
                suite.push_back({c.mots[1], c.mots[2], c.mots[3], r->second, c.entiere});
            }
            std::sort(suite.begin(), suite.end(), avant);
            for (const Suite &x : suite)
                (debut++)->second = x.trouvee;
        }
        debut = fin;
    }
    const auto source = static_cast<quint32>(d->sources.size());
    d->sources.push_back({std::move(base), std::move(details)});
    if (d->entrees.capacity() < d->entrees.size() + trouvees.size())
        d->entrees.reserve(std::max(2 * d->entrees.capacity(), d->entrees.size() + trouvees.size()));
    for (const Rang &r : ordre) {
        const Trouvee &t = trouvees[r.second];
        d->entrees.push_back({t.rowid, t.nom, t.longueurNom, t.longueurPrenom, source});
    }
    return true;
}

std::optional<ErreurRecherche> RechercheBasesLiees(const AppState &etat, const QString &nom, const QString &prenom,
                                                   ResultatRecherche &resultat)
{
    const QList<BrancheRecherche> branches =
        BranchesUnion(etat.Path, EchapperApostrophes(nom), EchapperApostrophes(prenom), false, etat.CheminBaseAgenda);
    ResultatRecherche toutes;
    for (const BrancheRecherche &b : branches) {
        ErreurRecherche e;
        // The bases are searched as one: a base that fails fails the whole
        // search, and no partial list is shown.
        if (!toutes.ajouterBase(b.chemin, b.motifNom, b.motifPrenom, &e))
            return e;
    }
    resultat = std::move(toutes);
    return std::nullopt;
}

std::optional<ErreurRecherche> RechercheBaseAgenda(const AppState &etat, const QString &nom, const QString &prenom,
                                                   ResultatRecherche &resultat)
{
    ResultatRecherche toutes;
    ErreurRecherche e;
    if (!toutes.ajouterBase(CheminPatientsMdb(etat.CheminBaseAgenda), nom + u'*', prenom + u'*', &e))
        return e;
    resultat = std::move(toutes);
    return std::nullopt;
}
