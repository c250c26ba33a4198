#include "shell/frmmain.h"

#include "patients/gestiontype.h"
#include "shell/appstate.h"

#include <QCloseEvent>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

frmMain::frmMain(Demarrage &demarrage, const ParametresFenetre &parametres, QWidget *parent)
    : QMainWindow(parent)
    , m_demarrage(demarrage)
    , m_parametres(parametres)
    , m_rappelsActifs(parametres.rappelsActifs)
{
    setObjectName(QStringLiteral("frmMain"));
    const AppState &etat = appState();
    setWindowTitle(QStringLiteral("Tavonel : ") + etat.AgendaName);

    auto *centre = new QWidget(this);
    auto *disposition = new QVBoxLayout(centre);
    lblCaption = new QLabel(etat.AgendaName, centre);
    lblCaption->setObjectName(QStringLiteral("lblCaption"));
    QFont police = lblCaption->font();
    police.setPointSize(police.pointSize() + 6);
    police.setBold(true);
    lblCaption->setFont(police);
    disposition->addWidget(lblCaption);
    lblPatient = new QLabel(LegendePatient::instance().texte(), centre);
    lblPatient->setObjectName(QStringLiteral("lblPatient"));
    connect(&LegendePatient::instance(), &LegendePatient::changee, lblPatient, &QLabel::setText);
    disposition->addWidget(lblPatient);

    m_zoneCalendrier = new QWidget(centre);
    m_zoneCalendrier->setObjectName(QStringLiteral("zoneCalendrier"));
    m_zoneCalendrier->setMinimumSize(640, 420);
    disposition->addWidget(m_zoneCalendrier, 1);
    setCentralWidget(centre);

    Timer1 = new QTimer(this);
    Timer1->setObjectName(QStringLiteral("Timer1"));
    Timer1->setInterval(10000);
    connect(Timer1, &QTimer::timeout, this, &frmMain::actualiser);
    Timer1->start();

    timerRMDForm = new QTimer(this);
    timerRMDForm->setObjectName(QStringLiteral("timerRMDForm"));
    timerRMDForm->setInterval(1000);
    connect(timerRMDForm, &QTimer::timeout, this, &frmMain::verifierRappels);

    resize(1100, 760);
}

frmMain::~frmMain() = default;

void frmMain::actualiser()
{
    // The calendar repopulates from the shared store here.
    if (m_zoneCalendrier)
        m_zoneCalendrier->update();
}

void frmMain::verifierRappels()
{
    if (DialoguesOuverts == 0)
        timerRMDForm->stop();
}

void frmMain::closeEvent(QCloseEvent *event)
{
    if (!m_arrete) {
        m_arrete = true;
        Timer1->stop();
        timerRMDForm->stop();
        m_demarrage.arreter(m_rappelsActifs);
    }
    event->accept();
}
