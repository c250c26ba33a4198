#pragma once

#include "patients/patientcourant.h"

#include <QObject>
#include <QString>
#include <QVariant>

class QSqlDatabase;
class QSqlRecord;
struct LigneRecherche;

// The current patient (appState().PatientCourant) and the patient numbers.

// Outcome of the last patient search: 0 nothing, 1 a row of a linked base,
// 2 a row of the own base, 3 a new patient, 4 keep the current patient.
extern qint16 RetourRecherche;

// The main window's patient caption follows the current patient through this
// object: the window connects to changee() at construction.
class LegendePatient final : public QObject
{
    Q_OBJECT

public:
    [[nodiscard]] static LegendePatient &instance();
    [[nodiscard]] const QString &texte() const { return m_texte; }
    void fixer(const QString &texte);

signals:
    void changee(const QString &texte);

private:
    QString m_texte;
};

// Fills PatientCourant from the current row of the own card.
void ChargerDepuisCarte(const QSqlRecord &ligne);
// Fills PatientCourant from the current row of the linked card.
void ChargerDepuisCarte2(const QSqlRecord &ligne);
// Takes the five fields of a search row (Nom, Prenom, DateNaissance as
// TexteDateBase gives it, Numero, Base) into PatientCourant. With
// viderAvant the record is first reset as ViderPatientCourant does (caption
// emptied); otherwise its other fields and the caption stay as they were.
void ChargerDepuisLigne(const LigneRecherche &ligne, bool viderAvant);
// Fills PatientCourant from the own base's row with this number; Identifiant
// is then the plain number.
void ChargerParNumero(qint32 &numero);
// Resets every field and empties the patient caption.
void ViderPatientCourant();
// The next patient number of the own base: the larger of the lower bound and
// the highest Numero + 1; the lower bound when the base has no row; 0 when
// the base cannot be read.
[[nodiscard]] qint32 NumeroSuivant(qint32 &borneBasse);
// The same on a connection already open on the own base (inside the
// transaction that writes the new row).
[[nodiscard]] qint32 NumeroSuivantSur(const QSqlDatabase &db, qint32 borneBasse);
// "Agenda00000042": the Base of PatientCourant ("Agenda" when empty) and the
// number on eight digits; empty for a number of 0 or below.
[[nodiscard]] QString IdentifiantPatient(qint32 &numero);

// A date column as the base engine gives it as text: "dd/MM/yyyy", followed
// by " HH:mm:ss" when the value has a time other than midnight. A null gives
// a null QVariant; a text that is no date is given back unchanged.
[[nodiscard]] QVariant TexteDateBase(const QVariant &valeur);
