#pragma once

#include <QDate>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <array>
#include <optional>

class QSqlDatabase;
class QSqlRecord;

// What the two patient cards do with the bases: reading a row into the
// card's fields, saving the own card, saving the linked card with its mirror
// in the own base, and the field rules of the cards. The windows only show.

// The fields of a card by column name of Signaletiques, as the card edits
// them: text columns as text, date columns as "dd/MM/yyyy" (empty when
// null), booleans as bool, numbers as qint64.
using ValeursFiche = QMap<QString, QVariant>;

// A row of Signaletiques as ValeursFiche.
[[nodiscard]] ValeursFiche ValeursDeLigne(const QSqlRecord &ligne);

// The row of Signaletiques with this number in the base (a Patients.mdb);
// no value when there is none, with the reason in *erreur when the base could
// not be read.
// With Carte or Carte2 the row also fills PatientCourant
// (ChargerDepuisCarte, ChargerDepuisCarte2).
enum class ChargementPatient { Aucun, Carte, Carte2 };
[[nodiscard]] std::optional<ValeursFiche> LireSignaletique(const QString &cheminBase, qint32 numero,
                                                           QString *erreur = nullptr,
                                                           ChargementPatient chargement = ChargementPatient::Aucun);

// The value of a card field as the base stores it: a date typed "dd/mm/yyyy"
// as "yyyy-MM-dd" (the empty mask "__/__/____" or an empty text as null), a
// boolean as -1 or 0. No value, with a French reason, for a date that is
// not one.
[[nodiscard]] std::optional<QVariant> ValeurStockee(const QString &colonne, const QVariant &valeur,
                                                    QString *erreur = nullptr);

// --- Field rules ----------------------------------------------------------

// The family name in capitals.
[[nodiscard]] QString NomEnCapitales(const QString &nom);
// The first character and each one after "-" or a blank in capitals; the
// others as typed ("jean-pierre marie" gives "Jean-Pierre Marie").
[[nodiscard]] QString PrenomCapitalise(const QString &prenom);

// The birth date mask when it is left.
struct ControleNaissance
{
    enum class Etat { Vide, Erronee, Future, Valide } etat = Etat::Vide;
    QString texte; // the mask's text, completed ("dd/MM/yyyy") when a short date was typed
};
[[nodiscard]] ControleNaissance ControlerNaissance(const QString &texteMasque, const QDate &aujourdhui);

// The empty form of a date mask.
inline const QString MasqueDateVide = QStringLiteral("__/__/____");

// Sesam_Divers holds the treating physician as "NOM@Prénom".
struct MedecinTraitant
{
    QString nom;
    QString prenom;
};
[[nodiscard]] std::optional<MedecinTraitant> SeparerSesamDivers(const QString &sesamDivers);
[[nodiscard]] QString JoindreSesamDivers(const QString &nom, const QString &prenom);
// The physician of the practice itself.
inline const QString MoiMeme = QStringLiteral("MOI-MEME");

// The complementary-cover block packed in Photo: nineteen values each
// followed by "|", the whole followed by "§".
constexpr int NombreValeursAMC = 19;
using BlocAMC = std::array<QString, NombreValeursAMC>;
[[nodiscard]] QString StockerAMC(const BlocAMC &bloc);
// The values that Photo gives, in slot order (at most nineteen; slots beyond
// the list keep what the card shows). Empty when Photo holds no "§" or no
// "|" in front of it.
[[nodiscard]] QStringList GetAMC(const QString &photo);
// The slot of the Mutuelle block's identification: a block whose slot is
// filled is shown on the tab "Coordonnées Mutuelle".
constexpr int SlotIdentificationMutuelle = 13;

// --- Lists of the own card -------------------------------------------------

// The patient's appointments from table Events of the own base, latest
// first: Date, Heure, Praticien, Motif, Date de Prise, Dernière modif,
// Numero as shown.
[[nodiscard]] QList<QStringList> RendezVousDuPatient(qint32 numero, QString *erreur = nullptr);
// The physicians already typed on cards of the own base (Sesam_Divers
// values) that begin with the text.
[[nodiscard]] QStringList MedecinsConnus(const QString &debut, QString *erreur = nullptr);
// The patients of the own base whose family name begins with the text, in
// name order (the "*" and "?" of the text act as wildcards).
[[nodiscard]] QList<ValeursFiche> MemeFamille(const QString &debutNom, QString *erreur = nullptr);

// The note row of a patient in the own base: whether it exists, and Texte.
struct NoteFiche
{
    bool existe = false;
    QString texte; // the stored format (HTML on this platform)
};
[[nodiscard]] NoteFiche LireNote(qint32 numero, QString *erreur = nullptr);
// The note as the own card saves it: the stored format and the plain text.
struct NoteSaisie
{
    QString texte;
    QString txt;
};

// --- Saving ---------------------------------------------------------------

// The number that a new card of the own base keeps from its opening: the
// next patient number after the auto-number that the new row will get.
// 0 when the base cannot be read.
[[nodiscard]] qint32 NumeroNouvelleFiche();

// Writes the own card: a new row with this number (nouvelle) or the row of
// this number; Base "Agenda"; the note row written or made. One
// transaction: on failure nothing is written and *erreur holds the base's
// text. On success PatientCourant holds the saved row (ChargerDepuisCarte).
bool EnregistrerFicheAgenda(const ValeursFiche &valeurs, qint32 numero, bool nouvelle,
                            const std::optional<NoteSaisie> &note, QString *erreur);

// The base of a linked patient: the Path of the first link slot whose
// Identity equals the patient's Base, else the own base.
[[nodiscard]] QString BaseDuPatientLie(const QString &base);

// Writes the linked card: the linked row of this number, then the mirror of
// PatientCourant in the own base (found by identity, made when missing, with
// its note row), then Agenda of the linked row. PatientCourant ends with the
// mirror's number. A failed step stops the save with *erreur; the own base
// is written in one transaction, so it never holds half a mirror.
bool EnregistrerFicheLiee(const QString &cheminBaseLiee, qint32 numeroLie, const ValeursFiche &valeurs,
                          QString *erreur);

// The mirror of PatientCourant in the own base (one transaction): its
// number, or 0 with *erreur.
[[nodiscard]] qint32 EcrireMiroirPatient(QString *erreur);
