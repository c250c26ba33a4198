#include "appointments/editionrdv.h"

#include "rules/praticiens.h"
#include "shell/base/basesqlite.h"
#include "shell/base/config.h"
#include "shell/base/horloge.h"
#include "shell/base/nombres.h"
#include "shell/base/support.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlQuery>

#include <cerrno>
#include <csignal>

namespace {

// Day 0 of the date values that a time alone stands on.
const QDate jourZero(1899, 12, 30);

std::optional<QTime> lireHeure(const QString &texte)
{
    static const QRegularExpression forme(QStringLiteral(R"(^\s*(\d{1,2}):(\d{1,2})(?::(\d{1,2}))?\s*$)"));
    const QRegularExpressionMatch m = forme.match(texte);
    if (!m.hasMatch())
        return std::nullopt;
    const QTime t(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).isEmpty() ? 0 : m.captured(3).toInt());
    if (!t.isValid())
        return std::nullopt;
    return t;
}

// A date, a time, or a date and a time, as seconds from day 0.
std::optional<qint64> lireValeur(const QString &texte)
{
    if (const QDate d = LireDateTexte(texte); d.isValid())
        return jourZero.daysTo(d) * 86400;
    if (const auto t = lireHeure(texte))
        return t->msecsSinceStartOfDay() / 1000;
    const QString simplifie = texte.simplified();
    const qsizetype blanc = simplifie.indexOf(u' ');
    if (blanc > 0) {
        const QDate d = LireDateTexte(simplifie.left(blanc));
        const auto t = lireHeure(simplifie.mid(blanc + 1));
        if (d.isValid() && t)
            return jourZero.daysTo(d) * 86400 + t->msecsSinceStartOfDay() / 1000;
    }
    return std::nullopt;
}

QDateTime depuisValeur(qint64 secondes)
{
    const qint64 jours = secondes >= 0 ? secondes / 86400 : -((-secondes + 86399) / 86400);
    const qint64 reste = secondes - jours * 86400;
    return QDateTime(jourZero.addDays(jours), QTime(0, 0).addSecs(static_cast<int>(reste)));
}

} // namespace

QString TexteDateRdv(const QDate &date)
{
    return date.toString(QStringLiteral("dd/MM/yyyy"));
}

QString TexteHeureRdv(const QTime &heure)
{
    return heure.toString(QStringLiteral("HH:mm"));
}

QString TexteDateHeureDefaut(const QDateTime &moment)
{
    if (moment.time() == QTime(0, 0))
        return TexteDateRdv(moment.date());
    return HorodatageRdv(moment);
}

bool IsDateValid(const QString &texte)
{
    return lireValeur(texte).has_value();
}

QDateTime DateFromString(const QString &date, const QString &heure)
{
    const auto d = lireValeur(date);
    const auto h = lireValeur(heure);
    if (!d || !h)
        return {};
    return depuisValeur(*d + *h);
}

QStringList ListeHeuresDebut()
{
    QStringList heures;
    for (int minutes = 5; minutes <= 23 * 60; minutes += 5)
        heures << TexteHeureRdv(QTime(0, 0).addSecs(minutes * 60));
    return heures;
}

QStringList ListeDatesDebut(const QDate &jour)
{
    QStringList dates;
    for (int i = -7; i <= 7; ++i)
        dates << TexteDateRdv(jour.addDays(i));
    return dates;
}

QStringList ListeHeuresFin(const QString &heureDebut)
{
    const auto debut = lireValeur(heureDebut);
    if (!debut)
        return {};
    QStringList heures;
    for (int i = 1; i <= 24; ++i) {
        const QTime t = depuisValeur(*debut + i * 5 * 60).time();
        heures << TexteHeureRdv(t) + QStringLiteral(" (Rdv de ") + QString::number(5 * i) + QStringLiteral(" Minutes)");
    }
    return heures;
}

QString HeureDeLibelleFin(const QString &libelle)
{
    const qsizetype p = libelle.indexOf(QStringLiteral(" ("));
    return p < 0 ? libelle : libelle.left(p);
}

DatesAffichees AfficherDates(const QDateTime &debut, const QDateTime &fin, bool jourEntier)
{
    QDate dernierJour = fin.date();
    if (jourEntier && fin.time() == QTime(0, 0))
        dernierJour = dernierJour.addDays(-1);
    return {TexteDateRdv(debut.date()), TexteHeureRdv(debut.time()), TexteDateRdv(dernierJour), TexteHeureRdv(fin.time())};
}

DatesLues LireDates(const DatesAffichees &dates, bool jourEntier)
{
    DatesLues lues{DateFromString(dates.dateDebut, dates.heureDebut), DateFromString(dates.dateFin, dates.heureFin)};
    if (jourEntier && lues.fin.isValid() && lues.fin.time() == QTime(0, 0))
        lues.fin = lues.fin.addDays(1);
    return lues;
}

ControleDate ValidateDates(const DatesAffichees &dates)
{
    if (!IsDateValid(dates.dateDebut))
        return ControleDate::DateDebut;
    if (!IsDateValid(dates.heureDebut))
        return ControleDate::HeureDebut;
    if (!IsDateValid(dates.dateFin))
        return ControleDate::DateFin;
    if (!IsDateValid(dates.heureFin))
        return ControleDate::HeureFin;
    return ControleDate::Aucun;
}

QString ValeurReservation()
{
    return NomOrdinateur() + QStringLiteral(" - ") + NomUtilisateur();
}

namespace {

QString nomProgramme()
{
    return QFileInfo(QCoreApplication::applicationFilePath()).fileName().left(15);
}

// "computer;pid;" : the beginning of this process's watch rows.
QString prefixeVeille()
{
    return NomOrdinateur() + u';' + QString::number(QCoreApplication::applicationPid()) + u';';
}

QString veilleLocale()
{
    return ValeurVeille(NomOrdinateur(), QCoreApplication::applicationPid(), nomProgramme(), Horloge::maintenant());
}

// Text of a value for the practice's LIKE: "*" and "?" would be wildcards.
QString motifExact(const QString &texte)
{
    QString m = texte;
    return m.replace(u'[', QStringLiteral("[[]")).replace(u'*', QStringLiteral("[*]")).replace(u'?', QStringLiteral("[?]")).replace(u'#', QStringLiteral("[#]"));
}

} // namespace

QString ValeurVeille(const QString &poste, qint64 pid, const QString &programme, const QDateTime &moment)
{
    return QStringList{poste, QString::number(pid), programme, moment.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))}.join(u';');
}

bool ProcessusAgendaVivant(qint64 pid, const QString &programme)
{
    if (pid <= 0 || (::kill(pid_t(pid), 0) != 0 && errno != EPERM))
        return false;
    // A killed process that its parent has not collected yet still answers
    // (state Z): it runs nothing.
    QFile etat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (etat.open(QIODevice::ReadOnly)) {
        const QByteArray texte = etat.readAll();
        const qsizetype fin = texte.lastIndexOf(')');
        if (fin >= 0 && fin + 2 < texte.size() && (texte.at(fin + 2) == 'Z' || texte.at(fin + 2) == 'X'))
            return false;
    }
    // A process number given again to another program is no agenda.
    QFile comm(QStringLiteral("/proc/%1/comm").arg(pid));
    if (!comm.open(QIODevice::ReadOnly))
        return true;
    return QString::fromLocal8Bit(comm.readAll()).trimmed() == programme;
}

bool ReservationAbandonnee(const QString &veille, const QDateTime &maintenant, const QString &posteLocal, ProcessusVivant vivant)
{
    const QStringList parties = veille.split(u';');
    if (parties.size() != 4)
        return false;
    bool ok = false;
    const qint64 pid = parties.at(1).toLongLong(&ok);
    const QDateTime confirmee = QDateTime::fromString(parties.at(3), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    if (!ok || !confirmee.isValid())
        return false;
    // This computer knows whether its agenda still runs; of another one only
    // the age of the last confirmation tells.
    if (parties.at(0).compare(posteLocal, Qt::CaseInsensitive) == 0)
        return !vivant(pid, parties.at(2));
    return confirmee.secsTo(maintenant) > qint64(MinutesAbandonReservation) * 60;
}

std::optional<QString> ReserverPlage(const QDateTime &debut)
{
    const QString section = TexteDateHeureDefaut(debut);
    const QString item = QStringLiteral("Réservation");
    const auto config = ConfigOuverte();
    // Read and take in one transaction, write lock first: two stations that
    // ask for the same slot at the same moment never both get it.
    const bool transaction = config && config->base().executer(QStringLiteral("BEGIN IMMEDIATE"));
    const QString tenue = LireConfig(section, item, QString());
    if (!tenue.isEmpty()
        && !ReservationAbandonnee(LireConfig(section, ItemVeilleReservation, QString()), Horloge::maintenant(), NomOrdinateur())) {
        if (transaction)
            config->base().executer(QStringLiteral("ROLLBACK"));
        return tenue;
    }
    EcrireConfig(section, item, ValeurReservation());
    EcrireConfig(section, ItemVeilleReservation, veilleLocale());
    if (transaction && !config->base().executer(QStringLiteral("COMMIT")))
        config->base().executer(QStringLiteral("ROLLBACK"));
    return std::nullopt;
}

void EntretenirReservations()
{
    const auto config = ConfigOuverte();
    if (!config)
        return;
    QSqlQuery q(config->base().db());
    q.prepare(QStringLiteral("UPDATE Ini SET Valeur = ? WHERE Item = ? AND Valeur LIKE ?"));
    q.addBindValue(veilleLocale());
    q.addBindValue(ItemVeilleReservation);
    q.addBindValue(motifExact(prefixeVeille()) + u'*');
    q.exec();
}

QString TextePlageReservee(const QString &valeur)
{
    return QStringLiteral("Cette plage horaire est déjà réservée par : ") + valeur + QStringLiteral("  ");
}

void LibererReservations()
{
    SupprimerReservation(ValeurReservation());
    // The watch rows of this process, and those left without their
    // reservation.
    const auto config = ConfigOuverte();
    if (!config)
        return;
    QSqlQuery q(config->base().db());
    q.prepare(QStringLiteral("DELETE FROM Ini WHERE Item = ? AND (Valeur LIKE ? OR Section NOT IN "
                             "(SELECT Section FROM Ini WHERE Item = ?))"));
    q.addBindValue(ItemVeilleReservation);
    q.addBindValue(motifExact(prefixeVeille()) + u'*');
    q.addBindValue(QStringLiteral("Réservation"));
    q.exec();
}

void LibererPlage(const QDateTime &debut)
{
    const auto config = ConfigOuverte();
    if (!config)
        return;
    QSqlQuery q(config->base().db());
    q.prepare(QStringLiteral("DELETE FROM Ini WHERE Section = ? AND ((Item = ? AND Valeur = ?) OR (Item = ? AND Valeur LIKE ?))"));
    q.addBindValue(TexteDateHeureDefaut(debut));
    q.addBindValue(QStringLiteral("Réservation"));
    q.addBindValue(ValeurReservation());
    q.addBindValue(ItemVeilleReservation);
    q.addBindValue(motifExact(prefixeVeille()) + u'*');
    q.exec();
}

QString TitreEchecEnregistrement()
{
    return QStringLiteral("Rendez-vous non enregistré");
}

QString TexteEchecEnregistrement(const QString &detail)
{
    QString texte = QStringLiteral("Le rendez-vous n'a pas pu être enregistré dans l'agenda : le fichier des rendez-vous "
                                   "est occupé par un autre poste ou ne peut pas être modifié.");
    if (!detail.trimmed().isEmpty())
        texte += QStringLiteral("\n(") + detail.trimmed() + u')';
    return texte + QStringLiteral("\n\nVotre saisie est conservée : cliquez de nouveau sur OK pour réessayer, "
                                  "ou sur Annuler pour l'abandonner.");
}

QString TitreEchecModification()
{
    return QStringLiteral("Modification non enregistrée");
}

QString TexteEchecModification(const QString &detail)
{
    QString texte = QStringLiteral("La modification de l'agenda n'a pas pu être enregistrée : le fichier des rendez-vous "
                                   "est occupé par un autre poste ou ne peut pas être modifié.");
    if (!detail.trimmed().isEmpty())
        texte += QStringLiteral("\n(") + detail.trimmed() + u')';
    return texte + QStringLiteral("\n\nL'agenda montre les rendez-vous tels qu'ils sont enregistrés : refaites la "
                                  "modification dans un instant.");
}

QString TexteAgendaOccupe()
{
    return QStringLiteral("L'agenda est occupé sur un autre poste : affichage du dernier état lu, nouvel essai dans "
                          "quelques secondes.");
}

QChar FiltrerCaractere(QChar c)
{
    static const QString interdits = QStringLiteral("§#*&\"");
    return interdits.contains(c) ? QChar(u'_') : c;
}

bool CaractereTelephone(QChar c)
{
    return QStringLiteral("1234567890 .+").contains(c);
}

QString ChampNaissanceSansPatient(const QString &champ, bool sansPatient)
{
    QString texte = champ;
    if (sansPatient) {
        if (!texte.contains(MarqueSansPatient))
            texte += MarqueSansPatient;
    } else {
        texte.remove(MarqueSansPatient);
    }
    return texte;
}

bool PatientDejaVu(const QString &base)
{
    return !base.contains(QStringLiteral("Agenda"));
}

QString PraticienDuLibelle(const QString &libelle)
{
    return NomPraticien(libelle.contains(QStringLiteral("Praticien 1")) ? 1 : 2);
}

int ChampManquant(const ChampsRdv &champs)
{
    if (champs[ChampRdv::Nom].isEmpty())
        return ChampRdv::Nom;
    if (!champs[ChampRdv::DateNaissance].contains(MarqueSansPatient)) {
        if (champs[ChampRdv::Prenom].isEmpty())
            return ChampRdv::Prenom;
        if (!IsDateValid(champs[ChampRdv::DateNaissance]))
            return ChampRdv::DateNaissance;
    }
    return -1;
}

AffichageValidite ValiditeChamp(int champ, const QString &texte, bool rappelsSMS, bool rappelsMails, bool gardeRappel,
                                bool autreBoutonActif)
{
    AffichageValidite a;
    const bool mel = champ == ChampRdv::Mel;
    const bool valide = mel ? MelValide(texte) : TelephoneValide(texte);
    if (!valide) {
        a.rouge = true;
        if (champ == ChampRdv::Telephone)
            return a;
        a.bouton = false;
        // Another channel may still carry the reminder.
        if (rappelsSMS)
            a.rappelActif = autreBoutonActif;
        return a;
    }
    if (texte.isEmpty()) {
        // Nothing to send to.
        if (champ != ChampRdv::Telephone)
            a.bouton = false;
        return a;
    }
    if (champ == ChampRdv::Telephone)
        return a;
    a.bouton = mel ? rappelsMails : rappelsSMS;
    if (gardeRappel)
        a.rappelActif = true;
    return a;
}

void LireSaisieDansEvenement(const SaisieRdv &saisie, CalendarEvent &evenement)
{
    const DatesLues dates = LireDates(saisie.dates, saisie.jourEntier);
    if (evenement.RecurrenceState() != CalendarEvent::Master) {
        evenement.setStartDateTime(dates.debut);
        evenement.setEndDateTime(dates.fin);
    }

    evenement.setSubject(ConstruireSubject(saisie.champs));
    evenement.setLocation(PackerLocation(saisie.motif, saisie.adressePar));
    evenement.setBody(PackerBody(saisie.champs));

    evenement.setIsAllDayEvent(saisie.jourEntier);
    evenement.setLabelID(saisie.labelId);
    evenement.setBusyStatus(saisie.presence);
    if (saisie.scheduleId)
        evenement.setScheduleID(*saisie.scheduleId);
    evenement.setIsPrivate(saisie.prive);
    evenement.setIsMeeting(saisie.dejaVu);

    // The box is 0 or 1, the record's flag 0 or -1: a checked box never
    // equals a set flag, so checking always rewrites the reminder.
    const int caseRappel = BooleenVersCase(saisie.rappel);
    const int drapeau = evenement.IsReminder() ? -1 : 0;
    if (caseRappel != drapeau) {
        evenement.setIsReminder(saisie.rappel);
        evenement.setReminderSoundFile(QString());
    }
    if (saisie.rappel && LireEntier(saisie.dureeRappel) != evenement.ReminderMinutesBeforeStart())
        evenement.setReminderMinutesBeforeStart(DureeTexteVersMinutes(saisie.dureeRappel));

    const QString markup = saisie.markup.trimmed();
    if (markup.isEmpty())
        evenement.CustomProperties().RemoveProperty(EntreeMarkup);
    else
        evenement.CustomProperties().SetProperty(EntreeMarkup, markup);
}

LectureSaisie LireEvenementDansSaisie(const CalendarEvent &evenement, SaisieRdv &saisie)
{
    LectureSaisie lecture;
    const LectureBody lu = LireBody(evenement.Body(), saisie.champs);
    lecture.ancienneForme = lu.ancienneForme;
    lecture.sansPatient = lu.sansPatient;
    if (lu.ancienneForme)
        saisie.sujet = evenement.Subject();
    const LocationLue location = LireLocation(evenement.Location());
    saisie.motif = location.motif;
    saisie.adressePar = location.adressePar;

    saisie.jourEntier = evenement.IsAllDayEvent();
    saisie.labelId = evenement.LabelID();
    saisie.scheduleId = evenement.ScheduleID();
    saisie.presence = evenement.BusyStatus();
    saisie.prive = evenement.IsPrivate();
    saisie.dejaVu = evenement.IsMeeting();
    saisie.dates = AfficherDates(evenement.StartDateTime(), evenement.EndDateTime(), evenement.IsAllDayEvent());
    if (evenement.IsReminder()) {
        saisie.rappel = true;
        saisie.dureeRappel = MinutesVersDureeTexte(evenement.ReminderMinutesBeforeStart());
    }
    saisie.markup = evenement.CustomProperties().GetProperty(EntreeMarkup).toString();
    return lecture;
}

QString TexteModification(const CalendarEvent &evenement)
{
    return QStringLiteral("Rendez-vous pris le ") + HorodatageRdv(evenement.CreationTime()) + QStringLiteral(" modifié le ")
           + HorodatageRdv(evenement.LastModificationTime());
}
