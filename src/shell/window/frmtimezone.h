#pragma once

#include "calendar/fuseaux.h"

#include <QDialog>
#include <QList>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;
class frmMain;

// The captions of the calendar's time scales and the zone of the second
// scale, for the session.
class frmTimeZone final : public QDialog
{
    Q_OBJECT

public:
    // Builds the dialog and loads it from the main window's calendar; the
    // list offers every zone of the system as it stands this year.
    explicit frmTimeZone(frmMain &principal);

    QLineEdit *txtLabel = nullptr;
    QComboBox *cmbTimeZone = nullptr;
    QCheckBox *chkAutoAdjustDaylight1 = nullptr;
    QCheckBox *chkShowAdditionalTimeZone = nullptr;
    QLineEdit *txtLabel2 = nullptr;
    QComboBox *cmbTimeZone2 = nullptr;
    QCheckBox *chkAutoAdjustDaylight2 = nullptr;
    QPushButton *cmdOK = nullptr;
    QPushButton *cmdCancel = nullptr;

private:
    void construire();
    void charger();
    void valider();
    void majSecondeEchelle();
    void zoneChoisie(int index);

    frmMain &m_principal;
    QList<FuseauHoraire> m_fuseaux;
};
