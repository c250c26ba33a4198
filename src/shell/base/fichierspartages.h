#pragma once

#include <QString>

// Files of the practice's shared folder: stores, journal and working files are
// read and written by every workstation through one group, and hold patient
// data, so they are never readable by others. A new file is made under a
// private temporary name and put in place only when complete, never over a
// file that another workstation has put there meanwhile.

// Owner and group may read and write; others nothing.
inline constexpr unsigned ModeFichierPartage = 0660;

// Gives the open file (descriptor) or the named file the shared mode. False
// when the file system refuses (the file is left as it is).
bool PartagerDescripteur(int descripteur);
bool PartagerFichier(const QString &chemin);

// The process-wide file creation mask that gives the shared mode to every
// file created afterwards (0007: nothing for others, whatever the session's
// mask allowed the group). Called first thing by the programs.
void FixerMasqueCreation();

// A name in the folder of `chemin` that no other process uses: hidden, it
// names the station and the process ("…/.Events.mdb.tmp-poste-1234-1").
[[nodiscard]] QString NomTemporaire(const QString &chemin);

enum class Installation {
    Posee,      // the temporary file is now at the target
    DejaLa,     // another file was at the target: ours is left where it was
    Echec,      // the file system refused
};

// Moves `temporaire` to `cible` atomically, unless `cible` exists. Never
// replaces nor deletes the target.
[[nodiscard]] Installation InstallerSansEcraser(const QString &temporaire, const QString &cible, QString *erreur = nullptr);
