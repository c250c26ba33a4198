#pragma once

#include <QList>
#include <QString>
#include <QVariant>

#include <array>
#include <memory>
#include <optional>

struct AppState;

// The patient search over the own base and over the linked bases.

// The text with each apostrophe doubled, for a quoted literal of a statement.
[[nodiscard]] QString EchapperApostrophes(const QString &texte);

// The statement of the search over the linked bases as one text: one branch a
// base, joined by "UNION ALL ", in the order path1, path2, path3, path4, then
// the own base when avecBaseAgenda is set. The paths are a dense list: an
// empty path2 hides path3 and path4, an empty path3 hides path4, and an empty
// path1 gives the empty text. The family and given names (already escaped)
// replace "n%" and then "p%" over the whole text.
[[nodiscard]] QString ConstruireUnion(QString &path1, QString &path2, QString &path3, QString &path4, QString &nom,
                                      QString &prenom, bool avecBaseAgenda);

// One base of a search, and the two patterns it is searched with (patterns of
// the practice's LIKE: "*", "?", "#", "[...]"; case and accents not
// regarded).
struct BrancheRecherche
{
    QString chemin;
    QString motifNom;
    QString motifPrenom;
};

// The bases of ConstruireUnion's statement, in its order, each with the path
// and the patterns exactly as that statement gives them to the engine. The
// search runs one query a base and joins the results in this order.
[[nodiscard]] QList<BrancheRecherche> BranchesUnion(const std::array<QString, 5> &paths, const QString &nomEchappe,
                                                    const QString &prenomEchappe, bool avecBaseAgenda,
                                                    const QString &cheminBaseAgenda);

// One row of the result grid.
struct LigneRecherche
{
    QString Base;
    QString Nom;
    QString Prenom;
    QVariant DateNaissance;  // as stored ("yyyy-MM-dd"), or null; see TexteDateBase
    QVariant DerniereVisite; // as stored, or null
    QVariant Numero;
    QVariant Agenda;
};

struct ErreurRecherche
{
    int numero = 0;
    QString description;
};

// The rows of a search, in their order. The names and the count are known
// at once (the index on the identity serves them); the other columns
// of a row are read from its base the first time the row is asked for, a
// page at a time, so that a long result costs no more than what is shown.
// The bases stay open read-only as long as the result lives.
class ResultatRecherche final
{
public:
    ResultatRecherche();
    ~ResultatRecherche();
    ResultatRecherche(ResultatRecherche &&) noexcept;
    ResultatRecherche &operator=(ResultatRecherche &&) noexcept;
    ResultatRecherche(const ResultatRecherche &) = delete;
    ResultatRecherche &operator=(const ResultatRecherche &) = delete;

    [[nodiscard]] qsizetype size() const;
    [[nodiscard]] bool isEmpty() const { return size() == 0; }
    // The row, with every column (read now when it was not yet).
    [[nodiscard]] const LigneRecherche &ligne(qsizetype i);
    // Reads the row now if it was not yet; false with the error when its base
    // cannot be read at the moment (a row that has gone since the search
    // counts as read, with empty columns).
    bool lire(qsizetype i, ErreurRecherche *erreur = nullptr);
    // Every row, read completely.
    [[nodiscard]] QList<LigneRecherche> toutes();
    void vider();

    // Appends the rows of one base whose Nom and Prenom match the patterns,
    // sorted by family name then given name (without regard to case or
    // accents). The base is opened read-only. False, with the error, when the
    // base cannot be read; the result is then as it was.
    bool ajouterBase(const QString &chemin, const QString &motifNom, const QString &motifPrenom,
                     ErreurRecherche *erreur = nullptr);

private:
    struct Donnees;
    std::unique_ptr<Donnees> d;
};

// The search over the linked bases of the state's link slots (nom and prenom
// as typed). No row at all when one base fails: the error is returned.
[[nodiscard]] std::optional<ErreurRecherche> RechercheBasesLiees(const AppState &etat, const QString &nom,
                                                                 const QString &prenom, ResultatRecherche &resultat);
// The search over the own base.
[[nodiscard]] std::optional<ErreurRecherche> RechercheBaseAgenda(const AppState &etat, const QString &nom,
                                                                 const QString &prenom, ResultatRecherche &resultat);

// A range of family names, in the order of the base's case-blind collation
// (SQLite NOCASE): debut <= Nom < fin; an empty fin has no upper bound.
struct PlageNoms
{
    QString debut;
    QString fin;
};

// Ranges that hold every name the pattern can match, so that an index on the
// name serves the search; the pattern itself decides afterwards. No value
// when the pattern begins with a wildcard (every name is a candidate).
[[nodiscard]] std::optional<QList<PlageNoms>> PlagesDuMotif(const QString &motif);
