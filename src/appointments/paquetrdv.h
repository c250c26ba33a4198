#pragma once

#include <QDateTime>
#include <QString>

#include <array>
#include <optional>

struct PatientCourantRecord;

// An appointment keeps a snapshot of its patient in the three free texts of
// its CalendarEvent, so that it can be shown, printed, reminded and mirrored
// without a look-up in the patient base:
//
//   Body      fourteen fields, each followed by "§" (the last one too);
//   Subject   the display line, built from the fields, never read back
//             (except as the raw subject of an old record);
//   Location  the motive, and " => " and who sent the patient when known.
//
// Writing (the editor's OK, the demo agenda):
//
//     ChampsRdv champs;                              // all empty
//     ChampsDuPatient(patient, champs);              // or fill by index:
//     champs[ChampRdv::Commentaire] = u"Contrôle"_qs;
//     champs[ChampRdv::DatePrise] = HorodatageRdv(Horloge::maintenant());
//     event->setBody(PackerBody(champs));
//     event->setSubject(ConstruireSubject(champs));  // age counted to Horloge
//     event->setLocation(PackerLocation(motif, adressePar));
//
// Reading (the editor's UpdateControlsFromEvent):
//
//     ChampsRdv champs = <what the controls hold>;
//     const LectureBody lu = LireBody(event->Body(), champs);
//     if (lu.ancienneForme)   // champs[Commentaire] got the whole text; show
//         txtSubject = ...;   // event->Subject() in the raw subject control
//     if (lu.sansPatient)     // field 2 holds "£": no patient
//         SSCheck1 checked;
//     const LocationLue loc = LireLocation(event->Location());
//
// Readers used by the mirror and the reminders work on the raw Body and say
// plainly when the text is too short, instead of failing at run time:
//
//     if (const auto numero = NumeroPatientBody(body)) ... else <malformed>
//     PortableBody(body), MelBody(body)
//
// Field checks used by the editor's validity display: TelephoneValide,
// MelValide.

// Indices of the fourteen Body fields.
namespace ChampRdv {
enum : int {
    Nom = 0,            // family name, or the free wording when there is no patient
    Prenom = 1,         // given name, or the complement
    DateNaissance = 2,  // birth date as text; holds "£" when there is no patient
    Telephone = 3,      // Telephone1
    Portable = 4,       // Telephone2, the number for SMS
    Adresse1 = 5,
    Adresse2 = 6,
    CodePostal = 7,
    Ville = 8,
    Commentaire = 9,    // the secretary's comment
    DatePrise = 10,     // when the appointment was taken, "dd/MM/yyyy hh:mm:ss"
    NumeroPatient = 11, // patient Numero in decimal; empty or 0 without a patient
    Base = 12,          // name of the patient's base; empty without a patient
    Mel = 13,           // mail address
    Nombre = 14
};
}

using ChampsRdv = std::array<QString, ChampRdv::Nombre>;

// The field separator of Body, and the marker of an appointment without a
// patient in field 2.
inline constexpr QChar SeparateurRdv = QChar(0x00A7);   // "§"
inline constexpr QChar MarqueSansPatient = QChar(0x00A3); // "£"
// Between the motive and the sender in Location.
inline constexpr QLatin1String SeparateurLocation(" => ");

// --- Writing ------------------------------------------------------------

// Every field followed by "§": splitting the result on "§" gives the fourteen
// fields and an empty fifteenth. Fields are written as they stand.
[[nodiscard]] QString PackerBody(const ChampsRdv &champs);

// The display line: a block of exactly 50 characters (26 of the name, a
// blank, 14 of the first name, and " (age)" when field 2 is a valid date;
// padded or cut at 50), then field 3, a blank only when field 3 is not
// empty, field 4, " (Pris le ", the first 5 characters of field 10, ") ".
// The age is counted to Horloge::aujourdhui().
[[nodiscard]] QString ConstruireSubject(const ChampsRdv &champs);

// "motif => adressePar", or the motive alone when the sender is empty.
[[nodiscard]] QString PackerLocation(const QString &motif, const QString &adressePar);

// Field 10: the moment as "dd/MM/yyyy hh:mm:ss".
[[nodiscard]] QString HorodatageRdv(const QDateTime &moment);

// Fields 0-8, 11, 12, 13 from the patient record, as the editor's patient
// pick does; fields 9 (comment) and 10 (taken on) are left as they are.
void ChampsDuPatient(const PatientCourantRecord &patient, ChampsRdv &champs);

// --- Reading ------------------------------------------------------------

struct LectureBody
{
    // No "§" in the text (after a leading one is dropped): the whole text
    // went into the comment and nothing else was touched; the caller shows
    // the event's Subject as the raw subject.
    bool ancienneForme = false;
    // Field 2 holds "£": the appointment concerns no patient.
    bool sansPatient = false;
};

// Unpacks body into champs. A leading "§" is dropped first. In the packed
// form the parts in front of the last one (the empty part behind the final
// separator) go into fields 0, 1, ...; fields beyond what the text holds
// keep their value, and parts beyond field 13 are ignored.
LectureBody LireBody(const QString &body, ChampsRdv &champs);

// The same into fourteen empty fields.
[[nodiscard]] ChampsRdv DepaquerBody(const QString &body, LectureBody *lecture = nullptr);

struct LocationLue
{
    QString motif;
    QString adressePar;
};

// Split at " => " when the text holds it (a text ending in " => " gives an
// empty sender); otherwise all of it is the motive.
[[nodiscard]] LocationLue LireLocation(const QString &location);

// The patient number in field 11, by the leading-number rule (an empty field
// gives 0). The text is split as it stands: a leading "§" is not dropped, so
// such a Body yields the number from the wrong part, as it always has. No
// value when the text has fewer than twelve parts (an old record without
// separators, for one).
[[nodiscard]] std::optional<qint64> NumeroPatientBody(const QString &body);

// Field 4 (mobile) and field 13 (mail) of a Body, split the same way. No
// value when the text holds no "§" or has no such part.
[[nodiscard]] std::optional<QString> PortableBody(const QString &body);
[[nodiscard]] std::optional<QString> MelBody(const QString &body);

// --- Field checks ---------------------------------------------------------

// Empty, or 10 characters or more once ".", " " and "+" are removed.
[[nodiscard]] bool TelephoneValide(const QString &telephone);
// Empty, or holding both "@" and ".".
[[nodiscard]] bool MelValide(const QString &mel);
