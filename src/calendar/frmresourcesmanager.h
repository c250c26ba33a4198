#pragma once

#include "calendar/calendarstore.h"

#include <QDialog>

class GestionRessources;
struct RessourceCalendrier;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLineEdit;
class QListWidget;
class QPushButton;

// "Calendar Resources Manager": the stores, the resources built on them and
// the schedules of a store. The caller follows the active store in the
// manager, runs the dialog modally, and reads the calendar again afterwards.
// The schedule buttons change the store at once; every other change goes
// into the manager as it is made, and OK only takes the resources' check
// boxes into their Enabled flags (Cancel leaves them).
class frmResourcesManager final : public QDialog
{
    Q_OBJECT

public:
    explicit frmResourcesManager(GestionRessources &manager, QWidget *parent = nullptr);

    // The resource selected in lstResources, or none.
    [[nodiscard]] RessourceCalendrier *GetSelRCDesc() const;

    QGroupBox *frameDP = nullptr;
    QListWidget *lstDataProviders = nullptr;
    QPushButton *btnDPAdd = nullptr;
    QPushButton *btnDPChange = nullptr;
    QPushButton *btnDPRemove = nullptr;
    QGroupBox *frameResources = nullptr;
    QListWidget *lstResources = nullptr;
    QPushButton *btnResAdd = nullptr;
    QPushButton *btnResRemove = nullptr;
    QGroupBox *frameResProps = nullptr;
    QLineEdit *txtResourceName = nullptr;
    QCheckBox *chkNameAuto = nullptr;
    QComboBox *cmbResDP = nullptr;
    QGroupBox *frameSchedules = nullptr;
    QListWidget *lstSchedules = nullptr;
    QCheckBox *chkSchedulesShowAll = nullptr;
    QLineEdit *txtScheduleName = nullptr;
    QPushButton *btnScheduleAdd = nullptr;
    QPushButton *btnScheduleChange = nullptr;
    QPushButton *btnScheduleRemove = nullptr;
    QPushButton *btnOK = nullptr;
    QPushButton *btnCancel = nullptr;

private:
    void construire();
    // The lists filled again from the manager; `selection` is the resource
    // to select (the current one when -1).
    void remplirListes(int selection = -1);
    void afficherRessource();
    void remplirPlannings(int selectionner = 0);
    void majNomAuto();
    void majBoutonsPlannings();
    [[nodiscard]] int planningSelectionne() const;

    void ajouterPlanning();
    void renommerPlanning();
    void supprimerPlanning();
    void valider();

    GestionRessources &m_gestion;
    // The schedules of the selected resource's store, as last read.
    QList<CalendarSchedule> m_plannings;
    // The check boxes of lstResources, kept across the refills until OK.
    QList<bool> m_coches;
};
