#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

// The copies of the appointments in table Events of Patients.mdb against the
// calendar store: the appointments of a patient that have no copy (a copy
// that failed and was never written again), and the copies that name no
// appointment (an exception removed with its series by an older version).
struct ControleMiroir
{
    bool ouvert = false;
    QString erreur;           // why either file could not be read
    int copies = 0;           // rows of Events in Patients.mdb
    int attendues = 0;        // appointments with a patient number
    QList<int> manquantes;    // their keys without a copy
    QList<int> orphelines;    // keys of copies naming no appointment
    int ecrites = 0;          // copies written by the repair
    int effacees = 0;         // copies deleted by the repair

    [[nodiscard]] bool sain() const { return ouvert && manquantes.isEmpty() && orphelines.isEmpty(); }
};

// Compares the Events.mdb of `dossierAgenda` with the Patients.mdb of
// `dossierPatients`. With `reparer`, the missing copies are written (the
// practitioner of the rule in force, from the Config.mdb of `dossierAgenda`
// when there is one) and the orphan ones deleted; the lists still give what
// was found. The patient base must serve this agenda alone: copies of
// another agenda sharing it would count as orphans.
[[nodiscard]] ControleMiroir ControlerMiroir(const QString &dossierAgenda, const QString &dossierPatients, bool reparer);

// At the start of the window: the copies missing for appointments changed
// since `depuis` (a station stopped between the appointment and its copy)
// are written; nothing is deleted. Answers how many were written.
inline constexpr int JoursRattrapageMiroir = 7;
int RattraperMiroir(const QString &dossierAgenda, const QString &dossierPatients, const QDateTime &depuis);
