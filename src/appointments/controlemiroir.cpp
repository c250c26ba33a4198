#include "appointments/controlemiroir.h"

#include "appointments/miroir.h"
#include "appointments/paquetrdv.h"
#include "calendar/calendardataprovider.h"
#include "patients/schemapatients.h"
#include "rules/regles.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/base/support.h"

#include <QFileInfo>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>

#include <algorithm>

namespace {

QList<int> triee(const QSet<int> &cles)
{
    QList<int> l(cles.cbegin(), cles.cend());
    std::sort(l.begin(), l.end());
    return l;
}

// Writes the missing copies with the records as the calendar gives them.
void ecrireManquantes(ControleMiroir &r, const QString &events, const QString &dossierAgenda, const QString &dossierPatients)
{
    CalendarDataProvider calendrier;
    if (!calendrier.SetDataProvider(QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='%1';").arg(events))
        || !calendrier.Open()) {
        r.erreur = QStringLiteral("Le fichier %1 ne peut pas être ouvert pour la réparation.").arg(events);
        return;
    }
    // The practitioner of each copy comes from the rules of this agenda.
    const auto avant = ConfigOuverte();
    const QString config = dossierAgenda + QStringLiteral("Config.mdb");
    if (QFileInfo::exists(config))
        OuvrirConfig(config);
    for (const int id : std::as_const(r.manquantes)) {
        const CalendarEventPtr e = calendrier.GetEvent(id);
        if (!e)
            continue;
        const QString praticien = ConfigOuverte() ? GetRegleForDate(e->StartDateTime()).Praticien : QString();
        if (const auto raison = EcrireMiroir(dossierPatients, *e, praticien))
            r.erreur = *raison;
        else
            ++r.ecrites;
    }
    FixerConfig(avant);
}

} // namespace

namespace {

ControleMiroir controler(const QString &dossierAgenda, const QString &dossierPatients, bool reparer, const QDateTime &depuis);

} // namespace

ControleMiroir ControlerMiroir(const QString &dossierAgenda, const QString &dossierPatients, bool reparer)
{
    return controler(dossierAgenda, dossierPatients, reparer, {});
}

int RattraperMiroir(const QString &dossierAgenda, const QString &dossierPatients, const QDateTime &depuis)
{
    return controler(dossierAgenda, dossierPatients, true, depuis).ecrites;
}

namespace {

ControleMiroir controler(const QString &dossierAgenda, const QString &dossierPatients, bool reparer, const QDateTime &depuis)
{
    ControleMiroir r;
    const QString agenda = AjouterSlash(dossierAgenda);
    const QString patients = AjouterSlash(dossierPatients);
    const QString events = agenda + QStringLiteral("Events.mdb");
    const auto lecture = reparer ? BaseSqlite::Mode::Existante : BaseSqlite::Mode::Lecture;
    const auto calendrier = BaseSqlite::ouvrir(events, BaseSqlite::Mode::Lecture, &r.erreur);
    if (!calendrier)
        return r;
    const auto miroir = BaseSqlite::ouvrir(CheminPatientsMdb(patients), lecture, &r.erreur);
    if (!miroir)
        return r;

    // An appointment of a patient has a copy: plain rows, masters, and the
    // exceptions that were not deletions.
    QSet<int> attendues;
    {
        QSqlQuery q(calendrier->db());
        q.setForwardOnly(true);
        q.prepare(QStringLiteral("SELECT EventID, Body FROM CalendarEvents WHERE (RecurrenceState IN (0, 1) "
                                 "OR (RecurrenceState = 3 AND ISRecurrenceExceptionDeleted = 0)) AND LastModificationTime >= ?"));
        q.addBindValue(depuis.isValid() ? depuis.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) : QStringLiteral("0000"));
        if (!q.exec()) {
            r.erreur = q.lastError().text();
            return r;
        }
        while (q.next()) {
            if (NumeroPatientBody(q.value(1).toString()))
                attendues.insert(q.value(0).toInt());
        }
    }
    QSet<int> copies;
    {
        QSqlQuery q(miroir->db());
        q.setForwardOnly(true);
        if (!q.exec(QStringLiteral("SELECT ID FROM Events"))) {
            r.erreur = q.lastError().text();
            return r;
        }
        while (q.next())
            copies.insert(q.value(0).toInt());
    }
    r.ouvert = true;
    r.copies = int(copies.size());
    r.attendues = int(attendues.size());
    r.manquantes = triee(attendues - copies);
    // A copy of any row of the store that still stands for an appointment is
    // kept; the others name nothing.
    // Copies of older appointments are not looked at by the catch-up.
    r.orphelines = depuis.isValid() ? QList<int>() : triee(copies - attendues);
    if (!r.orphelines.isEmpty()) {
        QSqlQuery q(calendrier->db());
        q.prepare(QStringLiteral("SELECT 1 FROM CalendarEvents WHERE EventID = ? AND NOT (RecurrenceState = 3 AND "
                                 "ISRecurrenceExceptionDeleted <> 0)"));
        r.orphelines.removeIf([&](int id) {
            q.addBindValue(id);
            const bool existe = q.exec() && q.next();
            q.finish();
            return existe;
        });
    }
    if (!reparer)
        return r;
    if (!r.orphelines.isEmpty()) {
        if (const auto raison = EffacerMiroir(*miroir, r.orphelines))
            r.erreur = *raison;
        else
            r.effacees = int(r.orphelines.size());
    }
    if (!r.manquantes.isEmpty())
        ecrireManquantes(r, events, agenda, patients);
    return r;
}

} // namespace
