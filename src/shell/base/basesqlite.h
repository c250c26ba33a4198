#pragma once

#include <QSqlDatabase>
#include <QString>

#include <functional>
#include <memory>

struct sqlite3;

// One SQLite file opened for the action at hand (the configuration, a patient
// base, the calendar store). The connection follows the practice's rules:
// journal in a side file (WAL does not work on network shares), a busy
// timeout so that a file locked by another workstation waits instead of
// failing, foreign keys off, and the database's own LIKE replaced by the
// practice's one ("*", "?", no regard to case or accents).
//
// The connection is removed when the object goes.
class BaseSqlite final
{
public:
    enum class Mode {
        Existante,  // the file must exist and be a SQLite database
        Creer,      // the file is created (it must not exist yet)
        Lecture,    // as Existante, but read-only: nothing is ever written
    };

    // Opens the file; on failure returns nullptr, sets *erreur to a French
    // description and *code to the SQLite result code (SQLITE_CANTOPEN for a
    // missing file, SQLITE_NOTADB for a file of another kind, SQLITE_BUSY for
    // a base locked by another connection...).
    // A delay (ms) other than -1 replaces the busy timeout for this
    // connection (a periodic task that must not hold the window).
    [[nodiscard]] static std::unique_ptr<BaseSqlite> ouvrir(const QString &chemin, Mode mode, QString *erreur = nullptr,
                                                            int *code = nullptr, int delai = -1);

    // Makes a new store at `chemin` as several workstations may at the same
    // moment: the file is made (shared mode) under a temporary name in the
    // same folder, `remplir` writes its schema there, and only then is it
    // put in place, unless another station's file got there first; ours is
    // then dropped and theirs is used. A file this process did not create is
    // never removed.
    enum class Creation { Creee, DejaLa, Echec };
    using Remplissage = std::function<bool(BaseSqlite &base, QString *erreur)>;
    [[nodiscard]] static Creation creer(const QString &chemin, const Remplissage &remplir, QString *erreur = nullptr);

    ~BaseSqlite();
    BaseSqlite(const BaseSqlite &) = delete;
    BaseSqlite &operator=(const BaseSqlite &) = delete;

    [[nodiscard]] QSqlDatabase db() const { return QSqlDatabase::database(m_connexion, false); }
    [[nodiscard]] const QString &chemin() const { return m_chemin; }
    [[nodiscard]] const QString &nomConnexion() const { return m_connexion; }
    [[nodiscard]] sqlite3 *poignee() const;

    // Runs statements that return no rows. On failure returns false and sets
    // *erreur.
    bool executer(const QString &sql, QString *erreur = nullptr);
    [[nodiscard]] bool tableExiste(const QString &table) const;

    // Busy timeout in milliseconds for every connection opened after the call
    // (tests shorten it).
    static void fixerDelaiOccupe(int millisecondes);
    [[nodiscard]] static int delaiOccupe();

private:
    BaseSqlite(QString chemin, QString connexion);
    QString m_chemin;
    QString m_connexion;
};

// Registers the practice's text functions on a SQLite handle: "like" with two
// and three arguments (see JetLike), "plier" (see PlierTexte) and "jet_like".
// Used by BaseSqlite, and callable on any other handle.
bool EnregistrerFonctionsJet(sqlite3 *poignee);

// True when the file begins with the SQLite header: a real database of
// another engine (a Jet file copied from another installation) is refused
// before anything is written to it.
[[nodiscard]] bool EstFichierSqlite(const QString &chemin);
