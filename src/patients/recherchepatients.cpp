#include "patients/recherchepatients.h"

#include "patients/gestiontype.h"
#include "patients/schemapatients.h"
#include "shell/appstate.h"
#include "shell/base/basesqlite.h"
#include "shell/base/jettexte.h"

#include <QFileInfo>
#include <QHash>

#include <sqlite3.h>

#include <algorithm>
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

} // namespace

struct ResultatRecherche::Donnees
{
    struct Source
    {
        std::unique_ptr<BaseSqlite> base;
        std::unique_ptr<Instruction> details;
    };
    struct Entree
    {
        int source = 0;
        qint64 rowid = 0;
        bool complete = false;
        LigneRecherche ligne;
    };
    std::vector<Source> sources;
    std::vector<Entree> entrees;

    bool completer(qsizetype i, ErreurRecherche *erreur = nullptr)
    {
        Entree &e = entrees[static_cast<size_t>(i)];
        if (e.complete)
            return true;
        sqlite3_stmt *s = sources[static_cast<size_t>(e.source)].details->s;
        sqlite3_bind_int64(s, 1, e.rowid);
        const int rc = sqlite3_step(s);
        if (rc == SQLITE_ROW) {
            e.ligne.Base = colonneTexte(s, 0);
            e.ligne.DerniereVisite = colonneValeur(s, 1);
            e.ligne.Numero = colonneValeur(s, 2);
            e.ligne.Agenda = colonneValeur(s, 3);
            e.ligne.DateNaissance = colonneValeur(s, 4);
            e.complete = true;
        }
        // A row that has gone since the search keeps empty columns; a base
        // that is busy for a moment is asked again next time.
        else if (rc == SQLITE_DONE) {
            e.complete = true;
        } else if (erreur) {
            *erreur = erreurSqlite(sqlite3_db_handle(s));
        }
        sqlite3_reset(s);
        return e.complete;
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
    if (!d->entrees[static_cast<size_t>(i)].complete) {
        const qsizetype debut = i - i % taillePage;
        const qsizetype fin = std::min(size(), debut + taillePage);
        for (qsizetype j = debut; j < fin; ++j)
            d->completer(j);
    }
    return d->entrees[static_cast<size_t>(i)].ligne;
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
    d->sources.clear();
}

bool ResultatRecherche::ajouterBase(const QString &chemin, const QString &motifNom, const QString &motifPrenom,
                                    ErreurRecherche *erreur)
{
    ErreurRecherche e;
    auto echec = [&]() {
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
    Instruction fermee, ouverte, tout;
    auto details = std::make_unique<Instruction>();
    auto preparer = [&](Instruction &ins, const QString &sql) {
        return sqlite3_prepare16_v2(poignee, sql.utf16(), -1, &ins.s, nullptr) == SQLITE_OK;
    };
    if (!preparer(fermee, colonnes + QStringLiteral(" WHERE Nom COLLATE NOCASE >= ?1 AND Nom COLLATE NOCASE < ?2"))
        || !preparer(ouverte, colonnes + QStringLiteral(" WHERE Nom COLLATE NOCASE >= ?1"))
        || !preparer(tout, colonnes)
        || !preparer(*details, QStringLiteral("SELECT Base, \"Derniere Visite\", Numero, Agenda, "
                                              "\"Date de Naissance\" FROM Signaletiques WHERE rowid = ?1"))) {
        e = erreurSqlite(poignee);
        return echec();
    }

    struct Trouvee
    {
        QString cleNom;
        QString clePrenom;
        QString nom;
        QString prenom;
        qint64 rowid;
    };
    const MotifJet filtreNom(motifNom);
    const MotifJet filtrePrenom(motifPrenom);
    std::vector<Trouvee> trouvees;
    trouvees.reserve(1024);
    auto lire = [&](sqlite3_stmt *s) {
        int rc;
        while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
            // A null name matches no pattern.
            if (sqlite3_column_type(s, 0) == SQLITE_NULL || sqlite3_column_type(s, 1) == SQLITE_NULL)
                continue;
            QString nom = colonneTexte(s, 0);
            QString cleNom = PlierTexte(nom);
            if (!filtreNom.correspondPlie(cleNom))
                continue;
            QString prenom = colonneTexte(s, 1);
            QString clePrenom = PlierTexte(prenom);
            if (!filtrePrenom.correspondPlie(clePrenom))
                continue;
            trouvees.push_back({std::move(cleNom), std::move(clePrenom), std::move(nom), std::move(prenom),
                                sqlite3_column_int64(s, 2)});
        }
        const bool ok = rc == SQLITE_DONE;
        if (!ok)
            e = erreurSqlite(poignee);
        sqlite3_reset(s);
        return ok;
    };
    if (!plages) {
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
    // accents, the exact spelling only between equal names. An order of
    // indexes is sorted, which moves no text.
    std::vector<quint32> ordre(trouvees.size());
    for (quint32 i = 0; i < ordre.size(); ++i)
        ordre[i] = i;
    std::stable_sort(ordre.begin(), ordre.end(), [&trouvees](quint32 ia, quint32 ib) {
        const Trouvee &a = trouvees[ia];
        const Trouvee &b = trouvees[ib];
        if (const int c = a.cleNom.compare(b.cleNom))
            return c < 0;
        if (const int c = a.clePrenom.compare(b.clePrenom))
            return c < 0;
        if (const int c = a.nom.compare(b.nom))
            return c < 0;
        return a.prenom.compare(b.prenom) < 0;
    });
    const int source = static_cast<int>(d->sources.size());
    d->sources.push_back({std::move(base), std::move(details)});
    d->entrees.reserve(d->entrees.size() + trouvees.size());
    for (const quint32 i : ordre) {
        Donnees::Entree &e = d->entrees.emplace_back();
        e.source = source;
        e.rowid = trouvees[i].rowid;
        e.ligne.Nom = std::move(trouvees[i].nom);
        e.ligne.Prenom = std::move(trouvees[i].prenom);
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
