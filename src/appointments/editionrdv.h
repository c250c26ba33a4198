#pragma once

#include "appointments/paquetrdv.h"
#include "calendar/calendarevent.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

struct PatientCourantRecord;

// The logic of the appointment editor (frmEditEvent), without widgets: the
// date and time texts and lists, the all-day rule, the slot reservation, the
// keyboard filter, the field checks, and the passage between the editor's
// values and a CalendarEvent.

// --- Dates and times as the editor shows them ----------------------------

// "dd/MM/yyyy" and "HH:mm".
[[nodiscard]] QString TexteDateRdv(const QDate &date);
[[nodiscard]] QString TexteHeureRdv(const QTime &heure);
// A moment as the settings write a date-time: "dd/MM/yyyy HH:mm:ss", or the
// date alone at midnight. The section of a slot's reservation row.
[[nodiscard]] QString TexteDateHeureDefaut(const QDateTime &moment);

// True when the text reads as a date ("15/03/2026", "15/3/26"), a time of
// day ("9:05", "09:05:30") or a date followed by a time; false otherwise,
// the empty text included.
[[nodiscard]] bool IsDateValid(const QString &texte);
// The moment of a date text and a time text, each read as IsDateValid
// reads it, added together (a time alone counts from day 0, a date alone at
// midnight). Invalid when either text is not valid.
[[nodiscard]] QDateTime DateFromString(const QString &date, const QString &heure);

// cmbStartTime: 276 times from 00:05 to 23:00 in steps of 5 minutes.
[[nodiscard]] QStringList ListeHeuresDebut();
// cmbStartDate: 15 dates, from 7 days before the day to 7 days after it.
[[nodiscard]] QStringList ListeDatesDebut(const QDate &jour);
// cmbEndTime: 24 items, the start time plus 5 * i minutes for i = 1..24,
// "09:35 (Rdv de 5 Minutes)"; empty when the start time is not a time.
[[nodiscard]] QStringList ListeHeuresFin(const QString &heureDebut);
// An item of cmbEndTime cut in front of the blank before "(": the time alone.
[[nodiscard]] QString HeureDeLibelleFin(const QString &libelle);

// The four date controls of a start and an end. An all-day appointment
// ends, in the store, at midnight after its last day; the editor shows that
// last day.
struct DatesAffichees
{
    QString dateDebut;
    QString heureDebut;
    QString dateFin;
    QString heureFin;
};
[[nodiscard]] DatesAffichees AfficherDates(const QDateTime &debut, const QDateTime &fin, bool jourEntier);
// Back from the controls: an all-day end at exactly midnight moves one day
// forward. Invalid values when a text is not valid.
struct DatesLues
{
    QDateTime debut;
    QDateTime fin;
};
[[nodiscard]] DatesLues LireDates(const DatesAffichees &dates, bool jourEntier);

// Which of the four date controls fails first, in the order start date,
// start time, end date, end time; none when all are valid.
enum class ControleDate { Aucun, DateDebut, HeureDebut, DateFin, HeureFin };
[[nodiscard]] ControleDate ValidateDates(const DatesAffichees &dates);

// --- Reservation of a slot -------------------------------------------------

// What this station writes in a reservation row: "computer - user".
[[nodiscard]] QString ValeurReservation();
// Takes the slot that starts at the moment, in table Ini (section: the start
// as TexteDateHeureDefaut, item "Réservation"). When a row is there already
// (this station's own included) nothing is written and its value is given
// back: the slot is held by that station.
[[nodiscard]] std::optional<QString> ReserverPlage(const QDateTime &debut);
// The message of a slot held elsewhere (title "Plage horaire réservée").
[[nodiscard]] QString TextePlageReservee(const QString &valeur);
// Removes every reservation of this station, whatever its slot.
void LibererReservations();
// Removes this station's reservation of one slot (another's stays).
void LibererPlage(const QDateTime &debut);

// A reservation names its station for the message; beside it, in the same
// section, item "Réservation.Veille" says who holds it and since when it
// was last confirmed: "computer;process id;program;yyyy-MM-dd HH:mm:ss".
// The editor confirms its reservations every minute while it is open, so a
// reservation whose station stopped (killed, crashed, switched off) is no
// longer held against the others:
// - on this computer, when its process is gone (or is no longer the
//   agenda), and only then;
// - from another computer, once its last confirmation is older than
//   MinutesAbandonReservation.
// A reservation without that row (written by an older version) stays held.
inline constexpr int MinutesAbandonReservation = 30;
inline constexpr int SecondesVeilleReservation = 60;
inline const QString ItemVeilleReservation = QStringLiteral("Réservation.Veille");
[[nodiscard]] QString ValeurVeille(const QString &poste, qint64 pid, const QString &programme, const QDateTime &moment);
// The process of this station runs the given program (false when gone).
using ProcessusVivant = bool (*)(qint64 pid, const QString &programme);
[[nodiscard]] bool ProcessusAgendaVivant(qint64 pid, const QString &programme);
[[nodiscard]] bool ReservationAbandonnee(const QString &veille, const QDateTime &maintenant, const QString &posteLocal,
                                        ProcessusVivant vivant = ProcessusAgendaVivant);
// Confirms every reservation of this process (the editor's timer).
void EntretenirReservations();

// --- Keyboard ----------------------------------------------------------------

// The characters that would break the packing ("§", "#", "*", "&" and the
// double quote) become "_" as they are typed; any other is kept.
[[nodiscard]] QChar FiltrerCaractere(QChar c);
// The telephone fields accept only "1234567890 .+".
[[nodiscard]] bool CaractereTelephone(QChar c);

// --- Fields ------------------------------------------------------------------

// Field 2 of an appointment without a patient ends with "£"; with a patient
// it holds no "£" at all.
[[nodiscard]] QString ChampNaissanceSansPatient(const QString &champ, bool sansPatient);
// A patient of a linked base counts as seen already: true unless the base's
// name contains "Agenda".
[[nodiscard]] bool PatientDejaVu(const QString &base);
// The practitioner's name for a label's text: practitioner 1 when the text
// contains "Praticien 1", otherwise practitioner 2.
[[nodiscard]] QString PraticienDuLibelle(const QString &libelle);

// Which missing or wrong value stops the confirmation (after the dates):
// field 0 always, then, for a patient (no "£" in field 2), field 1 and a
// valid birth date in field 2. -1 when nothing is missing.
[[nodiscard]] int ChampManquant(const ChampsRdv &champs);

// The display of fields 3 (telephone), 4 (mobile) and 13 (mail) after a
// check. Each value is what the control takes; no value leaves it alone.
struct AffichageValidite
{
    bool rouge = false;                // text in red, else in the normal colour
    std::optional<bool> bouton;        // btnSMS (field 4) or btnMail (field 13)
    std::optional<bool> rappelActif;   // chkReminder enabled
};
// rappelsSMS / rappelsMails: the agenda's channel switches; gardeRappel: the
// switch that decides whether chkReminder follows (RappelsSMS, except for the
// mail field after a patient pick, where it is RappelsMails);
// autreBoutonActif: btnMail for field 4, btnSMS for field 13.
[[nodiscard]] AffichageValidite ValiditeChamp(int champ, const QString &texte, bool rappelsSMS, bool rappelsMails,
                                              bool gardeRappel, bool autreBoutonActif);

// --- The editor's values and the record ------------------------------------

// Everything the editor's controls hold, as plain values.
struct SaisieRdv
{
    ChampsRdv champs;
    QString motif;
    QString adressePar;
    QString sujet; // the raw subject of an old record, shown only
    DatesAffichees dates;
    bool jourEntier = false;
    int labelId = 0;
    int presence = 1; // 0 "En salle d'attente", 1 "Non Arrivé"
    std::optional<int> scheduleId;
    bool prive = false;
    bool dejaVu = false;
    bool rappel = false;
    QString dureeRappel; // text of cmbReminder
    QString markup;
};

// The bag entry of the markup text.
inline const QString EntreeMarkup = QStringLiteral("xtpMarkupText");

// Controls to record. The dates go to the record unless it is the master of
// a series (its dates are its pattern's). Body, Subject and Location are
// packed from the fields; a checked reminder box always counts as a change
// (the record's flag is compared as 0 / -1 with the box's 0 / 1).
void LireSaisieDansEvenement(const SaisieRdv &saisie, CalendarEvent &evenement);

// Record to controls, for what the record holds: the fields (an old record
// gives its whole Body to the comment and its Subject to sujet, the other
// fields staying as they were in `saisie`), the location, the dates, the
// flags, the reminder, the markup. labelId / scheduleId are the record's
// keys; the caller selects them when its lists have them.
struct LectureSaisie
{
    bool ancienneForme = false;
    bool sansPatient = false;
};
LectureSaisie LireEvenementDansSaisie(const CalendarEvent &evenement, SaisieRdv &saisie);

// Title and text of the box of an appointment that the store refused (file
// held by another station past the busy wait, read-only, missing...); the
// editor stays open with what was typed. `detail` is the store's own reason.
[[nodiscard]] QString TitreEchecEnregistrement();
[[nodiscard]] QString TexteEchecEnregistrement(const QString &detail);
// The box of a change of the book made from the main window (move, resize,
// paste, delete, presence, recurrence) that the store refused.
[[nodiscard]] QString TitreEchecModification();
[[nodiscard]] QString TexteEchecModification(const QString &detail);
// The status line while the calendar store is held by another station.
[[nodiscard]] QString TexteAgendaOccupe();

// "Rendez-vous pris le dd/MM/yyyy HH:mm:ss modifié le dd/MM/yyyy HH:mm:ss".
[[nodiscard]] QString TexteModification(const CalendarEvent &evenement);
