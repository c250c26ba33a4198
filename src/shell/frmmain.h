#pragma once

#include "shell/demarrage.h"

#include <QMainWindow>

class QLabel;
class QTimer;

// The main window: caption, calendar, commands and the two timers. Start-up
// and shut-down themselves are the work of Demarrage; the window applies
// what they read.
class frmMain final : public QMainWindow
{
    Q_OBJECT

public:
    frmMain(Demarrage &demarrage, const ParametresFenetre &parametres, QWidget *parent = nullptr);
    ~frmMain() override;

    // Counter of the editing dialogs now open: they add 1 when they load and
    // take 1 away when they unload.
    int DialoguesOuverts = 0;

    QLabel *lblCaption = nullptr;
    // The current patient, "Prénom Nom", empty when there is none.
    QLabel *lblPatient = nullptr;
    QTimer *Timer1 = nullptr;
    QTimer *timerRMDForm = nullptr;

    [[nodiscard]] const ParametresFenetre &parametres() const { return m_parametres; }
    [[nodiscard]] bool rappelsActifs() const { return m_rappelsActifs; }

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void actualiser();
    void verifierRappels();

    Demarrage &m_demarrage;
    ParametresFenetre m_parametres;
    bool m_rappelsActifs = false;
    bool m_arrete = false;
    QWidget *m_zoneCalendrier = nullptr;
};
