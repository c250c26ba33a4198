#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

// Backups of the agenda's stores, made while the stations work, and their
// restoration.
//
// A backup is a folder named by its moment, "yyyyMMdd-HHmmss", under the
// backup folder, holding a copy of each store under its own name. Each copy
// is made with SQLite's online backup (one consistent state of the file,
// taken under its read lock, so that a station writing meanwhile waits a
// moment and loses nothing). The folder is built under a hidden name and
// renamed when complete: a backup that stopped midway never counts as one.

// One store of the agenda: its file name in a backup and where it lives.
struct StoreAgenda
{
    QString nom;     // "Events.mdb", "Config.mdb", "Patients.mdb"
    QString chemin;  // the live file
};

// The three stores of an agenda: Events.mdb and Config.mdb of its data
// folder, Patients.mdb of its patient base folder.
[[nodiscard]] QList<StoreAgenda> StoresAgenda(const QString &pathDB, const QString &cheminBaseAgenda);

struct ResultatSauvegarde
{
    QString dossier;          // the backup made
    QStringList supprimees;   // older backups removed beyond the ones kept
    std::optional<QString> erreur;
};

// Copies the stores into racine/yyyyMMdd-HHmmss (the moment given), then
// removes the oldest backups of racine beyond `garder`.
[[nodiscard]] ResultatSauvegarde Sauvegarder(const QList<StoreAgenda> &stores, const QString &racine,
                                             const QDateTime &moment, int garder = 30);

// Copies one SQLite file with the online backup into destination (made or
// replaced whole, in one transaction). The French reason on failure.
[[nodiscard]] std::optional<QString> CopierBase(const QString &source, const QString &destination);

// What is wrong with a backup before it may be restored: each store present
// and a database, SQLite's integrity check, and the check of the calendar
// (series, patterns, exceptions) as store-check runs it. Empty: fit.
[[nodiscard]] QStringList VerifierSauvegarde(const QString &dossier, const QList<StoreAgenda> &stores);

// Puts a checked backup in place of the live stores. The copy is first
// written beside each live file under a temporary name and checked there;
// then it takes the place of the live content in one transaction of the
// live file, under its write lock. Stations may stay open: their open
// connections stay valid and they read the restored book at their next
// refresh (a rename would leave them writing into a removed file, lost).
// A live file that is missing or no database is replaced by a rename.
// Before anything is touched the live stores are saved as a backup of
// their own under racine, so that a restoration can be undone.
struct ResultatRestauration
{
    QString sauvegardeAvant;  // the backup of the stores as they were
    QStringList problemes;    // why the backup was refused
    std::optional<QString> erreur;
};
[[nodiscard]] ResultatRestauration Restaurer(const QString &dossier, const QList<StoreAgenda> &stores,
                                             const QString &racine, const QDateTime &moment);
