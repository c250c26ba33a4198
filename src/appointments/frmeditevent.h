#pragma once

#include "appointments/editionrdv.h"
#include "calendar/calendarevent.h"

#include <QDialog>

#include <array>

class CalendarDataProvider;
class QCheckBox;
class QComboBox;
class QFocusEvent;
class QFrame;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

// The one dialog in which an appointment is made or changed. The caller
// prepares it with NewEvent (a new appointment on the selected cells) or
// ModifyEvent (an existing record), then runs it modally:
//
//     frmEditEvent editeur(provider, this);
//     editeur.NewEvent(selection.begin, selection.end, selection.allDay);
//     connect(&editeur, &frmEditEvent::Populate, view, &CalendarView::Populate);
//     ExecuterDialogue(editeur);
//
// While it is open the slot is held in table Ini against the other stations
// (a slot held already is told, and the dialog closes itself when shown).
// On OK the record goes to the store with AddEvent or ChangeEvent; the
// dialog never writes the store otherwise. Leaving, whatever the way,
// clears this station's reservations.
class frmEditEvent final : public QDialog
{
    Q_OBJECT

public:
    explicit frmEditEvent(CalendarDataProvider *provider, QWidget *parent = nullptr);
    ~frmEditEvent() override;

    // A new appointment from start to end; scheduleIndex selects that entry
    // of cmbSchedule (the first one when it names none).
    void NewEvent(const QDateTime &start, const QDateTime &end, bool allDay, int scheduleIndex = -1);
    // An existing record; the dialog works on a copy until OK.
    void ModifyEvent(const CalendarEventPtr &event);
    // The start of the calendar's selection when the editor was opened: the
    // recurrence dialog's day lists preselect its day (the record's day when
    // there is none).
    void setDebutSelection(const QDate &jour) { m_debutSelection = jour; }

    // The reservation check, then the four date controls.
    void SetStartEnd(const QDateTime &start, const QDateTime &end, bool allDay);
    void UpdateControlsFromEvent();
    // The first date control that is not valid gets the focus; false then.
    bool ValidateDates();
    // OK with cmdOk(index): 0 "Valider", 1 "Valider et Imprimer".
    void Valider(int index);
    // The status line; pending window events run.
    void setStatus(const QString &texte);

    [[nodiscard]] const CalendarEventPtr &evenement() const { return m_pEditedEvent; }
    [[nodiscard]] bool nouveau() const { return m_bAddEvent; }
    [[nodiscard]] bool plageReservee() const { return m_bSlotReserved; }

    // Controls. Fields 10, 11 and 12 of txtBody are never shown.
    std::array<QLineEdit *, ChampRdv::Nombre> txtBody{};
    std::array<QLabel *, ChampRdv::Nombre> lblBody{};
    std::array<QLineEdit *, 2> txtLocation{};
    std::array<QLabel *, 2> lblLocation{};
    QLineEdit *txtSubject = nullptr;
    QLabel *lblSubject = nullptr;
    QComboBox *cmbLabel = nullptr;
    QLabel *ctrlColor = nullptr;
    QLabel *lblStartDate = nullptr;
    QLabel *lblEndDate = nullptr;
    QComboBox *cmbStartDate = nullptr;
    QComboBox *cmbStartTime = nullptr;
    QComboBox *cmbEndDate = nullptr;
    QComboBox *cmbEndTime = nullptr;
    QCheckBox *chkAllDayEvent = nullptr;
    QComboBox *cmbShowTimeAs = nullptr;
    QComboBox *cmbSchedule = nullptr;
    QLabel *lblSchedule = nullptr;
    QCheckBox *chkMeeting = nullptr;
    QCheckBox *chkPrivate = nullptr;
    QCheckBox *chkReminder = nullptr;
    QComboBox *cmbReminder = nullptr;
    QLabel *lblReminder = nullptr;
    QCheckBox *SSCheck1 = nullptr;
    QPushButton *Command1 = nullptr;
    QPushButton *btnView = nullptr;
    QPushButton *btnRecurrence = nullptr;
    QPushButton *btnCustomProperties = nullptr;
    QPushButton *btnMore = nullptr;
    QPushButton *btnSMS = nullptr;
    QPushButton *btnMail = nullptr;
    std::array<QPushButton *, 2> cmdOk{};
    QPushButton *cmdCancel = nullptr;
    QFrame *frmMarkup = nullptr;
    QPlainTextEdit *txtMarkupText = nullptr;
    QLabel *lblPraticien = nullptr;
    QLabel *lblModif = nullptr;
    QLabel *lblStatus = nullptr;
    QLabel *lblAge = nullptr;
    // Our own additions: the next free slot of the chosen practitioner and
    // type, and the warning shown while the start falls on a public holiday.
    QPushButton *btnProchainCreneau = nullptr;
    QLabel *lblFerie = nullptr;

signals:
    // The record was handed to the store: the calendar reads it again.
    void Populate();

public slots:
    void done(int resultat) override;

protected:
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *objet, QEvent *evenement) override;

private:
    void construire();
    void remplirListes();
    [[nodiscard]] SaisieRdv lireControles() const;
    [[nodiscard]] DatesAffichees datesAffichees() const;
    void afficherChamps(const ChampsRdv &champs);
    void appliquerVisibiliteDates();
    void appliquerJourEntier();
    void remplirHeuresFin();
    void choisirPatient();
    void sansPatient(bool coche);
    void afficherValidite(int champ, bool gardeRappel);
    void couleurNormale(int champ);
    void verifierEnSortie(int champ);
    [[nodiscard]] bool sortieAVerifier(QObject *champ, const QFocusEvent *e) const;
    void prendrePatientCourant();
    void voirPatient();
    void basculerMarkup();
    void recurrence();
    void proprietes();
    // The start as the date controls show it (the record's when they hold
    // no valid date).
    [[nodiscard]] QDateTime debutAffiche() const;
    void envoyerSMS();
    void envoyerMail();
    void majCouleurLibelle();
    void majAge();
    void libererReservations();
    // The date controls of a start and an end (the lists around the start).
    void remplirDates(const QDateTime &start, const QDateTime &end, bool allDay);
    void prochainCreneau();
    void majFerie();
    void selectionnerDonnee(QComboBox *liste, int valeur);

    CalendarDataProvider *m_provider = nullptr;
    CalendarEventPtr m_pEditedEvent;
    bool m_bAddEvent = false;
    QDate m_debutSelection;
    bool m_bSlotReserved = false;
    // The phone or mail field that is taking the focus back, -1 when none.
    int m_champRetour = -1;
    bool m_reservationsLiberees = false;
    // The start whose slot this dialog holds in table Ini.
    QDateTime m_debutReserve;
};
