#include "shell/window/frmtimezone.h"

#include "calendar/view/calendarview.h"
#include "patients/dialoguesouverts.h"
#include "shell/base/horloge.h"
#include "shell/base/modal.h"
#include "shell/window/frmmain.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

const QString TexteAjustement = QStringLiteral("Ajuster automatiquement l'horloge à l'heure dété");

template <typename T>
T *nomme(T *w, const char *nom)
{
    w->setObjectName(QLatin1String(nom));
    return w;
}

} // namespace

frmTimeZone::frmTimeZone(frmMain &principal) : QDialog(&principal), m_principal(principal)
{
    setObjectName(QStringLiteral("frmTimeZone"));
    setWindowTitle(QStringLiteral("Fuseau horaire"));
    CompterDialogueOuvert(this);
    construire();
    charger();
    connect(chkShowAdditionalTimeZone, &QCheckBox::toggled, this, &frmTimeZone::majSecondeEchelle);
    connect(cmbTimeZone2, &QComboBox::currentIndexChanged, this, &frmTimeZone::zoneChoisie);
    connect(cmdOK, &QPushButton::clicked, this, &frmTimeZone::valider);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
}

void frmTimeZone::construire()
{
    auto *actuel = new QGroupBox(QStringLiteral("Fuseau horaire actuel"), this);
    auto *grille = new QGridLayout(actuel);
    txtLabel = nomme(new QLineEdit(actuel), "txtLabel");
    cmbTimeZone = nomme(new QComboBox(actuel), "cmbTimeZone");
    chkAutoAdjustDaylight1 = nomme(new QCheckBox(TexteAjustement, actuel), "chkAutoAdjustDaylight1");
    auto *nom = new QLabel(QStringLiteral("&Nom :"), actuel);
    nom->setBuddy(txtLabel);
    auto *fuseau = new QLabel(QStringLiteral("&Fuseau :"), actuel);
    fuseau->setBuddy(cmbTimeZone);
    grille->addWidget(nom, 0, 0);
    grille->addWidget(txtLabel, 0, 1);
    grille->addWidget(fuseau, 1, 0);
    grille->addWidget(cmbTimeZone, 1, 1);
    grille->addWidget(chkAutoAdjustDaylight1, 2, 1);
    grille->setColumnStretch(1, 1);

    auto *autre = new QGroupBox(this);
    auto *grille2 = new QGridLayout(autre);
    chkShowAdditionalTimeZone =
        nomme(new QCheckBox(QStringLiteral("Afficher un autre fuseau horaire"), autre), "chkShowAdditionalTimeZone");
    txtLabel2 = nomme(new QLineEdit(autre), "txtLabel2");
    cmbTimeZone2 = nomme(new QComboBox(autre), "cmbTimeZone2");
    cmbTimeZone2->setMaxVisibleItems(20);
    chkAutoAdjustDaylight2 = nomme(new QCheckBox(TexteAjustement, autre), "chkAutoAdjustDaylight2");
    auto *nom2 = new QLabel(QStringLiteral("Nom :"), autre);
    nom2->setBuddy(txtLabel2);
    auto *fuseau2 = new QLabel(QStringLiteral("Fuseau :"), autre);
    fuseau2->setBuddy(cmbTimeZone2);
    grille2->addWidget(chkShowAdditionalTimeZone, 0, 0, 1, 2);
    grille2->addWidget(nom2, 1, 0);
    grille2->addWidget(txtLabel2, 1, 1);
    grille2->addWidget(fuseau2, 2, 0);
    grille2->addWidget(cmbTimeZone2, 2, 1);
    grille2->addWidget(chkAutoAdjustDaylight2, 3, 1);
    grille2->setColumnStretch(1, 1);

    cmdOK = nomme(new QPushButton(QStringLiteral("OK"), this), "cmdOK");
    cmdOK->setDefault(true);
    cmdCancel = nomme(new QPushButton(QStringLiteral("Annuler"), this), "cmdCancel");
    cmdCancel->setAutoDefault(false);
    auto *boutons = new QHBoxLayout;
    boutons->addStretch(1);
    boutons->addWidget(cmdOK);
    boutons->addWidget(cmdCancel);

    auto *tout = new QVBoxLayout(this);
    tout->addWidget(actuel);
    tout->addWidget(autre);
    tout->addLayout(boutons);
    setMinimumWidth(460);
}

void frmTimeZone::charger()
{
    const CalendarView &calendrier = *m_principal.CalendarControl;
    const CalendarOptions &o = calendrier.options();
    txtLabel->setText(o.timeScaleCaption);
    txtLabel2->setText(o.additionalTimeScaleCaption);

    const FuseauHoraire &courant = calendrier.currentTimeZone();
    cmbTimeZone->addItem(courant.nom);
    cmbTimeZone->setEnabled(false);
    chkAutoAdjustDaylight1->setVisible(AHeureEte(courant));
    chkAutoAdjustDaylight1->setChecked(AjustementActif(courant));
    chkAutoAdjustDaylight1->setEnabled(false);

    m_fuseaux = TableFuseaux(Horloge::aujourdhui().year());
    for (const FuseauHoraire &f : std::as_const(m_fuseaux))
        cmbTimeZone2->addItem(f.nom);
    // The calendar's zone is found by its name; its adjustment is the one
    // chosen last time, not the system's.
    qsizetype index = 0;
    for (qsizetype i = 0; i < m_fuseaux.size(); ++i) {
        if (m_fuseaux.at(i).id == o.additionalTimeZone.id) {
            index = i;
            break;
        }
    }
    cmbTimeZone2->setCurrentIndex(m_fuseaux.isEmpty() ? -1 : int(index));
    chkShowAdditionalTimeZone->setChecked(o.showAdditionalTimeZone);
    zoneChoisie(cmbTimeZone2->currentIndex());
    if (!m_fuseaux.isEmpty() && m_fuseaux.at(index).id == o.additionalTimeZone.id)
        chkAutoAdjustDaylight2->setChecked(AjustementActif(o.additionalTimeZone));
}

void frmTimeZone::majSecondeEchelle()
{
    const bool montre = chkShowAdditionalTimeZone->isChecked();
    cmbTimeZone2->setEnabled(montre);
    txtLabel2->setEnabled(montre);
    const int index = cmbTimeZone2->currentIndex();
    chkAutoAdjustDaylight2->setEnabled(montre && index >= 0 && AHeureEte(m_fuseaux.at(index)));
}

void frmTimeZone::zoneChoisie(int index)
{
    chkAutoAdjustDaylight2->setChecked(index >= 0 && AjustementActif(m_fuseaux.at(index)));
    majSecondeEchelle();
}

void frmTimeZone::valider()
{
    CalendarView &calendrier = *m_principal.CalendarControl;
    CalendarOptions o = calendrier.options();
    o.timeScaleCaption = txtLabel->text();
    o.additionalTimeScaleCaption = txtLabel2->text();
    o.showAdditionalTimeZone = chkShowAdditionalTimeZone->isChecked();
    const int index = cmbTimeZone2->currentIndex();
    if (index >= 0) {
        FuseauHoraire zone = m_fuseaux.at(index);
        if (!chkAutoAdjustDaylight2->isChecked()) {
            zone.biaisStandard = 0;
            zone.biaisEte = 0;
        }
        o.additionalTimeZone = zone;
    }
    calendrier.setOptions(o);
    calendrier.Populate();
    accept();
}

void frmMain::ChangerDeZone()
{
    frmTimeZone dialogue(*this);
    ExecuterDialogue(dialogue);
}
