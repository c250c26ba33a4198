#include "rules/frmsettings.h"

#include "patients/dialoguesouverts.h"
#include "patients/frmzek_ag2.h"
#include "patients/liaisons.h"
#include "patients/schemapatients.h"
#include "rules/frmregles.h"
#include "rules/regles.h"
#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/base/joursferies.h"
#include "shell/base/modal.h"
#include "shell/base/nombres.h"
#include "shell/base/prompt.h"
#include "shell/base/support.h"
#include "shell/base/supportui.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

QPushButton *bouton(const QString &nom, const QString &texte, QWidget *parent)
{
    auto *b = new QPushButton(texte, parent);
    b->setObjectName(nom);
    b->setAutoDefault(false);
    return b;
}

QComboBox *liste(const QString &nom, const QStringList &items, QWidget *parent)
{
    auto *c = new QComboBox(parent);
    c->setObjectName(nom);
    c->addItems(items);
    return c;
}

QLineEdit *champ(const QString &nom, QWidget *parent)
{
    auto *t = new QLineEdit(parent);
    t->setObjectName(nom);
    return t;
}

const int dureesRdv[] = {5, 6, 10, 15, 20, 30, 45, 60, 90, 120};

} // namespace

frmSettings::frmSettings(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmSettings"));
    setWindowTitle(QStringLiteral("Configuration...."));
    setModal(true);
    CompterDialogueOuvert(this);

    SSTab1 = new QTabWidget(this);
    SSTab1->setObjectName(QStringLiteral("SSTab1"));
    SSTab1->addTab(ongletGeneral(), QStringLiteral("&Cabinet"));
    SSTab1->addTab(ongletBases(), QStringLiteral("&Bases patients"));
    SSTab1->addTab(ongletAffichage(), QStringLiteral("A&ffichage"));
    SSTab1->addTab(ongletRegles(), QStringLiteral("Editer les &Règles de Rendez-Vous"));

    cmdOk = bouton(QStringLiteral("cmdOk"), QStringLiteral("&OK"), this);
    cmdCancel = bouton(QStringLiteral("cmdCancel"), QStringLiteral("&Annuler"), this);
    connect(cmdOk, &QPushButton::clicked, this, &frmSettings::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *boutons = new QHBoxLayout;
    boutons->addStretch();
    boutons->addWidget(cmdOk);
    boutons->addWidget(cmdCancel);
    auto *l = new QVBoxLayout(this);
    l->addWidget(SSTab1, 1);
    l->addLayout(boutons);
    charger();
    resize(900, 500);
}

QWidget *frmSettings::ongletGeneral()
{
    auto *page = new QWidget(this);
    auto *heures = new QGroupBox(QStringLiteral("Horaires du cabinet"), page);
    auto *fh = new QFormLayout(heures);
    cbOuverture = liste(QStringLiteral("cbOuverture"), ListeDemiHeures(QTime(7, 0)), heures);
    cbFermeture = liste(QStringLiteral("cbFermeture"), ListeDemiHeures(QTime(18, 0)), heures);
    cbDebutPause = liste(QStringLiteral("cbDebutPause"), ListeDemiHeures(QTime(11, 0)), heures);
    cbFinPause = liste(QStringLiteral("cbFinPause"), ListeDemiHeures(QTime(12, 30)), heures);
    cmbRDVMn = new QComboBox(heures);
    cmbRDVMn->setObjectName(QStringLiteral("cmbRDVMn"));
    cmbRDVMn->addItem(QStringLiteral("(selon la sélection)"), QString());
    for (int d : dureesRdv)
        cmbRDVMn->addItem(QStringLiteral("%1 minutes").arg(d), QString::number(d));
    fh->addRow(QStringLiteral("Ouverture :"), cbOuverture);
    fh->addRow(QStringLiteral("Fermeture :"), cbFermeture);
    fh->addRow(QStringLiteral("Début de la pause :"), cbDebutPause);
    fh->addRow(QStringLiteral("Fin de la pause :"), cbFinPause);
    fh->addRow(QStringLiteral("Durée d'un rendez-vous :"), cmbRDVMn);
    chkFeriesAlsaceMoselle = new QCheckBox(QStringLiteral("Jours fériés d'Alsace-Moselle (Vendredi saint, 26 décembre)"), heures);
    chkFeriesAlsaceMoselle->setObjectName(QStringLiteral("chkFeriesAlsaceMoselle"));
    fh->addRow(QString(), chkFeriesAlsaceMoselle);

    auto *praticiens = new QGroupBox(QStringLiteral("Praticiens"), page);
    auto *gp = new QGridLayout(praticiens);
    gp->addWidget(new QLabel(QStringLiteral("Nom"), praticiens), 0, 1);
    gp->addWidget(new QLabel(QStringLiteral("Initiales"), praticiens), 0, 2);
    gp->addWidget(new QLabel(QStringLiteral("Couleurs"), praticiens), 0, 3);
    for (int p = 0; p < 2; ++p) {
        txtPraticien[p] = champ(QStringLiteral("txtPraticien(%1)").arg(p), praticiens);
        txtInitiales[p] = champ(QStringLiteral("txtInitiales(%1)").arg(p), praticiens);
        txtInitiales[p]->setMaximumWidth(70);
        Combo1[p] = liste(QStringLiteral("Combo1(%1)").arg(p), QStringList{QStringLiteral("Choisir...")} + FamillesCouleurs(),
                          praticiens);
        connect(Combo1[p], &QComboBox::activated, this, [this, p](int famille) { choisirFamille(p, famille); });
        gp->addWidget(new QLabel(QStringLiteral("Praticien %1 :").arg(p + 1), praticiens), p + 1, 0);
        gp->addWidget(txtPraticien[p], p + 1, 1);
        gp->addWidget(txtInitiales[p], p + 1, 2);
        gp->addWidget(Combo1[p], p + 1, 3);
    }
    gp->setColumnStretch(1, 1);

    auto *types = new QGroupBox(QStringLiteral("Types de rendez-vous et leurs couleurs"), page);
    auto *gt = new QGridLayout(types);
    gt->addWidget(new QLabel(QStringLiteral("Praticien 1"), types), 0, 2);
    gt->addWidget(new QLabel(QStringLiteral("Praticien 2"), types), 0, 3);
    for (int t = 0; t < 7; ++t) {
        txtType[t] = champ(QStringLiteral("txtType(%1)").arg(t), types);
        PicColor1[t] = bouton(QStringLiteral("PicColor1(%1)").arg(t), QString(), types);
        PicColor2[t] = bouton(QStringLiteral("PicColor2(%1)").arg(t), QString(), types);
        for (QPushButton *b : {PicColor1[t], PicColor2[t]}) {
            b->setFixedSize(70, 22);
            b->setToolTip(QStringLiteral("Cliquez pour choisir la couleur"));
            connect(b, &QPushButton::clicked, this, [this, b] { choisirCouleur(b); });
        }
        gt->addWidget(new QLabel(QStringLiteral("Type %1 :").arg(t + 1), types), t + 1, 0);
        gt->addWidget(txtType[t], t + 1, 1);
        gt->addWidget(PicColor1[t], t + 1, 2);
        gt->addWidget(PicColor2[t], t + 1, 3);
    }
    gt->setColumnStretch(1, 1);

    auto *g = new QGridLayout(page);
    g->addWidget(heures, 0, 0);
    g->addWidget(praticiens, 1, 0);
    g->addWidget(types, 0, 1, 2, 1);
    g->setRowStretch(2, 1);
    gt->setRowStretch(8, 1);
    return page;
}

QWidget *frmSettings::ongletBases()
{
    auto *page = new QWidget(this);
    auto *l = new QVBoxLayout(page);
    auto *bases = new QGroupBox(QStringLiteral("Bases de patients de Brenwick liées à l'agenda"), page);
    auto *g = new QGridLayout(bases);
    g->addWidget(new QLabel(QStringLiteral("Base patients (Patients.mdb)"), bases), 0, 1);
    g->addWidget(new QLabel(QStringLiteral("Identifiant"), bases), 0, 3);
    for (int i = 1; i <= 2; ++i) {
        DBPath[i] = champ(QStringLiteral("DBPath(%1)").arg(i), bases);
        DBIdentity[i] = champ(QStringLiteral("DBIdentity(%1)").arg(i), bases);
        DBIdentity[i]->setMaximumWidth(140);
        DBpathDialog[i] = bouton(QStringLiteral("DBpathDialog(%1)").arg(i), QStringLiteral("..."), bases);
        DBpathDialog[i]->setToolTip(QStringLiteral("Choisir le dossier de la base"));
        DBpathDialog[i]->setFixedWidth(40);
        connect(DBpathDialog[i], &QPushButton::clicked, this, [this, i] { choisirBase(i); });
        g->addWidget(new QLabel(i == 1 ? QStringLiteral("Base principale :") : QStringLiteral("Base secondaire :"), bases), i, 0);
        g->addWidget(DBPath[i], i, 1);
        g->addWidget(DBpathDialog[i], i, 2);
        g->addWidget(DBIdentity[i], i, 3);
    }
    g->setColumnStretch(1, 1);
    btnLiaisons = bouton(QStringLiteral("btnLiaisons"), QStringLiteral("&Liaison avec Brenwick (quatre bases, fichiers *.zek)..."),
                         page);
    connect(btnLiaisons, &QPushButton::clicked, this, [this] {
        frmZek_AG2 liaisons(this);
        if (ExecuterDialogue(liaisons) == QDialog::Accepted)
            lireLiaisons();
    });
    l->addWidget(bases);
    l->addWidget(btnLiaisons, 0, Qt::AlignLeft);
    l->addStretch();
    return page;
}

QWidget *frmSettings::ongletAffichage()
{
    auto *page = new QWidget(this);
    const auto caseACocher = [](const char *nom, const QString &texte, QWidget *parent) {
        auto *c = new QCheckBox(texte, parent);
        c->setObjectName(QString::fromLatin1(nom));
        return c;
    };

    auto *general = new QGroupBox(QStringLiteral("Agenda (pour cette session)"), page);
    auto *f = new QFormLayout(general);
    f->setFieldGrowthPolicy(QFormLayout::FieldsStayAtSizeHint);
    cmbTimeScale = new QComboBox(general);
    cmbTimeScale->setObjectName(QStringLiteral("cmbTimeScale"));
    for (int d : dureesRdv)
        cmbTimeScale->addItem(QStringLiteral("%1 minutes").arg(d), d);
    cmbStartTime = liste(QStringLiteral("cmbStartTime"), {}, general);
    cmbEndTime = liste(QStringLiteral("cmbEndTime"), {}, general);
    for (int m = 0; m < 24 * 60; m += 30) {
        const QTime t(m / 60, m % 60);
        cmbStartTime->addItem(t.toString(QStringLiteral("HH:mm")), t);
        cmbEndTime->addItem(t.toString(QStringLiteral("HH:mm")), t);
    }
    // The day drawn follows the practice's hours as they are chosen.
    connect(cbOuverture, &QComboBox::currentTextChanged, this,
            [this](const QString &t) { ChoisirTexte(cmbStartTime, t.left(5)); });
    connect(cbFermeture, &QComboBox::currentTextChanged, this,
            [this](const QString &t) { ChoisirTexte(cmbEndTime, t.left(5)); });
    auto *journee = new QHBoxLayout;
    journee->addWidget(cmbStartTime);
    journee->addWidget(new QLabel(QStringLiteral("à"), general));
    journee->addWidget(cmbEndTime);
    journee->addStretch();
    cmbFirstDayOfWeek = new QComboBox(general);
    cmbFirstDayOfWeek->setObjectName(QStringLiteral("cmbFirstDayOfWeek"));
    auto *jours = new QHBoxLayout;
    for (int j = 1; j <= 7; ++j) {
        cmbFirstDayOfWeek->addItem(NomJourRegle(j), j);
        chkWorkDay[j] = new QCheckBox(NomJourRegle(j), general);
        chkWorkDay[j]->setObjectName(QStringLiteral("chkWorkDay(%1)").arg(j));
    }
    for (int j : {2, 3, 4, 5, 6, 7, 1})
        jours->addWidget(chkWorkDay[j]);
    cmbToolTipsMode = liste(QStringLiteral("cmbToolTipsMode"),
                            {QStringLiteral("Standard"), QStringLiteral("Personnalisée"), QStringLiteral("Désactivée")}, general);
    f->addRow(QStringLiteral("Échelle de temps :"), cmbTimeScale);
    f->addRow(QStringLiteral("Journée de travail :"), journee);
    f->addRow(QStringLiteral("Premier jour de la semaine :"), cmbFirstDayOfWeek);
    f->addRow(QStringLiteral("Jours de la semaine de travail :"), jours);
    f->addRow(QStringLiteral("Infobulles des rendez-vous :"), cmbToolTipsMode);

    auto *semaine = new QGroupBox(QStringLiteral("Vue hebdomadaire"), page);
    auto *ls = new QVBoxLayout(semaine);
    chkShowTimeAsClockWeek = caseACocher("chkShowTimeAsClockWeek", QStringLiteral("Heures en horloges"), semaine);
    chkShowEndTimeWeek = caseACocher("chkShowEndTimeWeek", QStringLiteral("Heure de fin"), semaine);
    chkWVShowStartTimeAlways = caseACocher("chkWVShowStartTimeAlways", QStringLiteral("Heure de début sur chaque jour"), semaine);
    chkWVShowEndTimeAlways = caseACocher("chkWVShowEndTimeAlways", QStringLiteral("Heure de fin sur chaque jour"), semaine);
    for (QCheckBox *c : {chkShowTimeAsClockWeek, chkShowEndTimeWeek, chkWVShowStartTimeAlways, chkWVShowEndTimeAlways})
        ls->addWidget(c);
    ls->addStretch();

    auto *mois = new QGroupBox(QStringLiteral("Vue mensuelle"), page);
    auto *lm = new QVBoxLayout(mois);
    chkShowTimeAsClockMonth = caseACocher("chkShowTimeAsClockMonth", QStringLiteral("Heures en horloges"), mois);
    chkShowEndTimeMonth = caseACocher("chkShowEndTimeMonth", QStringLiteral("Heure de fin"), mois);
    chkMVShowStartTimeAlways = caseACocher("chkMVShowStartTimeAlways", QStringLiteral("Heure de début sur chaque jour"), mois);
    chkMVShowEndTimeAlways = caseACocher("chkMVShowEndTimeAlways", QStringLiteral("Heure de fin sur chaque jour"), mois);
    chkComperssWeekendDays = caseACocher("chkComperssWeekendDays", QStringLiteral("Samedi et dimanche sur une colonne"), mois);
    for (QCheckBox *c : {chkShowTimeAsClockMonth, chkShowEndTimeMonth, chkMVShowStartTimeAlways, chkMVShowEndTimeAlways,
                         chkComperssWeekendDays})
        lm->addWidget(c);
    cmbWeeksCount = liste(QStringLiteral("cmbWeeksCount"), {QStringLiteral("2"), QStringLiteral("3"), QStringLiteral("4"),
                                                            QStringLiteral("5"), QStringLiteral("6")}, mois);
    // No number chosen: the weeks of the month shown.
    cmbWeeksCount->setPlaceholderText(QStringLiteral("le mois entier"));
    auto *semaines = new QHBoxLayout;
    semaines->addWidget(new QLabel(QStringLiteral("Semaines affichées :"), mois));
    semaines->addWidget(cmbWeeksCount);
    semaines->addStretch();
    lm->addLayout(semaines);

    auto *autres = new QGroupBox(QStringLiteral("Autres"), page);
    auto *fa = new QFormLayout(autres);
    chkOthEnableTooltip = caseACocher("chkOthEnableTooltip", QStringLiteral("Infobulles de l'agenda"), autres);
    txtOthAddNew = champ(QStringLiteral("txtOthAddNew"), autres);
    connect(chkOthEnableTooltip, &QCheckBox::toggled, txtOthAddNew, &QWidget::setEnabled);
    fa->addRow(chkOthEnableTooltip);
    fa->addRow(QStringLiteral("Sur une plage libre choisie :"), txtOthAddNew);

    auto *vues = new QHBoxLayout;
    vues->addWidget(semaine);
    vues->addWidget(mois);
    auto *l = new QVBoxLayout(page);
    l->addWidget(general);
    l->addLayout(vues);
    l->addWidget(autres);
    l->addStretch();
    fixerAffichage({});
    return page;
}

void frmSettings::fixerAffichage(const AffichageCalendrier &a)
{
    m_options = a.options;
    const CalendarOptions &o = a.options;
    cmbTimeScale->setCurrentIndex(std::max(0, cmbTimeScale->findData(a.echelle)));
    cmbStartTime->setCurrentIndex(std::max(0, cmbStartTime->findData(QTime(a.debut.hour(), a.debut.minute() / 30 * 30))));
    cmbEndTime->setCurrentIndex(std::max(0, cmbEndTime->findData(QTime(a.fin.hour(), a.fin.minute() / 30 * 30))));
    cmbFirstDayOfWeek->setCurrentIndex(std::max(0, cmbFirstDayOfWeek->findData(o.firstDayOfWeek)));
    for (int j = 1; j <= 7; ++j)
        chkWorkDay[j]->setChecked(o.workDaysMask & (1 << (j - 1)));
    cmbToolTipsMode->setCurrentIndex(std::clamp(a.infobulles, 0, 2));
    chkShowTimeAsClockWeek->setChecked(o.weekTimes.asClock);
    chkShowEndTimeWeek->setChecked(o.weekTimes.endTime);
    chkWVShowStartTimeAlways->setChecked(o.weekTimes.startAlways);
    chkWVShowEndTimeAlways->setChecked(o.weekTimes.endAlways);
    chkShowTimeAsClockMonth->setChecked(o.monthTimes.asClock);
    chkShowEndTimeMonth->setChecked(o.monthTimes.endTime);
    chkMVShowStartTimeAlways->setChecked(o.monthTimes.startAlways);
    chkMVShowEndTimeAlways->setChecked(o.monthTimes.endAlways);
    chkComperssWeekendDays->setChecked(o.compressWeekendDays);
    cmbWeeksCount->setCurrentIndex(o.monthWeeksCount >= 2 && o.monthWeeksCount <= 6 ? o.monthWeeksCount - 2 : -1);
    chkOthEnableTooltip->setChecked(o.enableTooltips);
    txtOthAddNew->setText(o.addNewText);
    txtOthAddNew->setEnabled(o.enableTooltips);
}

AffichageCalendrier frmSettings::affichage() const
{
    AffichageCalendrier a;
    a.echelle = cmbTimeScale->currentData().toInt();
    a.debut = cmbStartTime->currentData().toTime();
    a.fin = cmbEndTime->currentData().toTime();
    a.infobulles = cmbToolTipsMode->currentIndex();
    CalendarOptions &o = a.options;
    o = m_options;
    o.firstDayOfWeek = cmbFirstDayOfWeek->currentData().toInt();
    o.workDaysMask = 0;
    for (int j = 1; j <= 7; ++j) {
        if (chkWorkDay[j]->isChecked())
            o.workDaysMask |= 1 << (j - 1);
    }
    o.weekTimes = {chkShowTimeAsClockWeek->isChecked(), chkShowEndTimeWeek->isChecked(),
                   chkWVShowStartTimeAlways->isChecked(), chkWVShowEndTimeAlways->isChecked()};
    o.monthTimes = {chkShowTimeAsClockMonth->isChecked(), chkShowEndTimeMonth->isChecked(),
                    chkMVShowStartTimeAlways->isChecked(), chkMVShowEndTimeAlways->isChecked()};
    o.compressWeekendDays = chkComperssWeekendDays->isChecked();
    o.monthWeeksCount = cmbWeeksCount->currentIndex() < 0 ? 0 : cmbWeeksCount->currentIndex() + 2;
    o.enableTooltips = chkOthEnableTooltip->isChecked();
    o.addNewText = txtOthAddNew->text();
    return a;
}

QWidget *frmSettings::ongletRegles()
{
    auto *page = new QWidget(this);
    auto *jours = new QHBoxLayout;
    // The day and the end-date filter are two separate choices.
    auto *groupeJours = new QButtonGroup(page);
    auto *groupeDates = new QButtonGroup(page);
    for (int j : {2, 3, 4, 5, 6, 7, 1}) {
        optDay[j] = new QRadioButton(appState().JoursSemaine.at(j).isEmpty() ? NomJourRegle(j) : appState().JoursSemaine.at(j),
                                     page);
        optDay[j]->setObjectName(QStringLiteral("optDay(%1)").arg(j));
        groupeJours->addButton(optDay[j]);
        connect(optDay[j], &QRadioButton::toggled, this, [this](bool coche) {
            if (coche)
                filtrer();
        });
        jours->addWidget(optDay[j]);
    }
    jours->addStretch();
    OpDate[0] = new QRadioButton(QStringLiteral("Date Fin supérieure au : "), page);
    OpDate[1] = new QRadioButton(QStringLiteral("Toutes date de fin"), page);
    for (int i = 0; i < 2; ++i) {
        OpDate[i]->setObjectName(QStringLiteral("OpDate(%1)").arg(i));
        groupeDates->addButton(OpDate[i]);
        connect(OpDate[i], &QRadioButton::toggled, this, &frmSettings::filtrer);
    }
    mebDateFinRegle = champ(QStringLiteral("mebDateFinRegle"), page);
    mebDateFinRegle->setInputMask(QStringLiteral("99/99/9999;_"));
    mebDateFinRegle->setMaximumWidth(110);
    connect(mebDateFinRegle, &QLineEdit::textChanged, this, &frmSettings::filtrer);
    auto *dates = new QHBoxLayout;
    dates->addWidget(OpDate[0]);
    dates->addWidget(mebDateFinRegle);
    dates->addWidget(OpDate[1]);
    dates->addStretch();

    grdRegles = new QTableWidget(0, 7, page);
    grdRegles->setObjectName(QStringLiteral("grdRegles"));
    grdRegles->setHorizontalHeaderLabels({QStringLiteral("Date Debut"), QStringLiteral("Date Fin"), QStringLiteral("H Debut"),
                                          QStringLiteral("H Fin"), QStringLiteral("Sem"), QStringLiteral("Praticien"),
                                          QStringLiteral("Type de RDV")});
    grdRegles->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdRegles->setSelectionBehavior(QAbstractItemView::SelectRows);
    grdRegles->setSelectionMode(QAbstractItemView::SingleSelection);
    grdRegles->verticalHeader()->hide();
    grdRegles->verticalHeader()->setDefaultSectionSize(grdRegles->fontMetrics().height() + 6);
    grdRegles->horizontalHeader()->setStretchLastSection(true);
    connect(grdRegles, &QTableWidget::cellDoubleClicked, this, [this] { editerRegle(false); });
    OpDate[1]->setChecked(true);

    btnAjouterRegle = bouton(QStringLiteral("btnAjouterRegle"), QStringLiteral("&Ajouter"), page);
    btnEditerRegle = bouton(QStringLiteral("btnEditerRegle"), QStringLiteral("&Editer"), page);
    btnDupliquerRegle = bouton(QStringLiteral("btnDupliquerRegle"), QStringLiteral("&Dupliquer"), page);
    btnSupprimerRegle = bouton(QStringLiteral("btnSupprimerRegle"), QStringLiteral("&Supprimer"), page);
    Command1 = bouton(QStringLiteral("Command1"), QStringLiteral("&Modification générale d'une date de fin de règle"), page);
    connect(btnAjouterRegle, &QPushButton::clicked, this, &frmSettings::ajouterRegle);
    connect(btnEditerRegle, &QPushButton::clicked, this, [this] { editerRegle(false); });
    connect(btnDupliquerRegle, &QPushButton::clicked, this, [this] { editerRegle(true); });
    connect(btnSupprimerRegle, &QPushButton::clicked, this, &frmSettings::supprimerRegle);
    connect(Command1, &QPushButton::clicked, this, &frmSettings::changerDateFin);
    auto *commandes = new QHBoxLayout;
    for (QPushButton *b : {btnAjouterRegle, btnEditerRegle, btnDupliquerRegle, btnSupprimerRegle})
        commandes->addWidget(b);
    commandes->addStretch();
    commandes->addWidget(Command1);

    auto *l = new QVBoxLayout(page);
    l->addLayout(jours);
    l->addLayout(dates);
    l->addWidget(grdRegles, 1);
    l->addLayout(commandes);
    return page;
}

void frmSettings::charger()
{
    m_reglages = LireReglagesCabinet(appState());
    ChoisirTexte(cbOuverture, m_reglages.debut);
    ChoisirTexte(cbFermeture, m_reglages.fin);
    ChoisirTexte(cbDebutPause, m_reglages.pauseDebut);
    ChoisirTexte(cbFinPause, m_reglages.pauseFin);
    const int duree = cmbRDVMn->findData(m_reglages.duree);
    if (duree < 0)
        cmbRDVMn->addItem(QStringLiteral("%1 minutes").arg(m_reglages.duree), m_reglages.duree);
    cmbRDVMn->setCurrentIndex(cmbRDVMn->findData(m_reglages.duree));
    chkFeriesAlsaceMoselle->setChecked(m_reglages.feriesAlsaceMoselle);
    for (int p = 0; p < 2; ++p) {
        txtPraticien[p]->setText(m_reglages.noms[p]);
        txtInitiales[p]->setText(m_reglages.initiales[p]);
    }
    for (int t = 0; t < 7; ++t) {
        txtType[t]->setText(m_reglages.types[t].nom);
        FixerCouleurBouton(PicColor1[t], m_reglages.types[t].couleur1);
        FixerCouleurBouton(PicColor2[t], m_reglages.types[t].couleur2);
    }
    lireLiaisons();
}

void frmSettings::lireLiaisons()
{
    const AppState &etat = appState();
    for (int i = 1; i <= 2; ++i) {
        DBPath[i]->setText(etat.Path[i]);
        DBIdentity[i]->setText(etat.Identity[i]);
    }
}

void frmSettings::choisirFamille(int praticien, int famille)
{
    if (famille < 1)
        return;
    for (int t = 0; t < 7; ++t)
        FixerCouleurBouton(praticien == 0 ? PicColor1[t] : PicColor2[t], CouleurFamille(appState(), t, famille));
}

void frmSettings::choisirCouleur(QPushButton *b)
{
    if (const auto c = Prompt::choisirCouleur(CouleurBouton(b)))
        FixerCouleurBouton(b, *c);
}

void frmSettings::choisirBase(int slot)
{
    const QString dossier = Prompt::choisirDossier(QStringLiteral("Dossier de la base de patients"), DBPath[slot]->text());
    if (dossier.isEmpty())
        return;
    const QString chemin = CheminPatientsMdb(dossier);
    if (!FichierExiste(chemin)) {
        Prompt::informer(QStringLiteral("Erreur..."),
                         QStringLiteral("Le dossier choisi ne contient pas de base de patients (Patients.mdb) :\n") + dossier,
                         Prompt::Icone::Exclamation);
        return;
    }
    DBPath[slot]->setText(chemin);
    if (const QString id = IdentifiantDansBase(chemin); !id.isEmpty())
        DBIdentity[slot]->setText(id);
}

bool frmSettings::Enregistrer()
{
    m_reglages.debut = cbOuverture->currentText();
    m_reglages.fin = cbFermeture->currentText();
    m_reglages.pauseDebut = cbDebutPause->currentText();
    m_reglages.pauseFin = cbFinPause->currentText();
    m_reglages.duree = cmbRDVMn->currentData().toString();
    m_reglages.feriesAlsaceMoselle = chkFeriesAlsaceMoselle->isChecked();
    for (int p = 0; p < 2; ++p) {
        m_reglages.noms[p] = txtPraticien[p]->text().trimmed();
        m_reglages.initiales[p] = txtInitiales[p]->text().trimmed();
    }
    for (int t = 0; t < 7; ++t)
        m_reglages.types[t] = {txtType[t]->text().trimmed(), CouleurBouton(PicColor1[t]), CouleurBouton(PicColor2[t])};
    QString erreur;
    if (!EcrireReglagesCabinet(m_reglages, &erreur)) {
        Prompt::informer(QStringLiteral("Erreur"), QStringLiteral("Les réglages du cabinet ne peuvent être enregistrés :\n") + erreur,
                         Prompt::Icone::Critique);
        return false;
    }
    for (int p = 0; p < 2; ++p)
        txtInitiales[p]->setText(m_reglages.initiales[p]);
    for (int t = 0; t < 7; ++t)
        txtType[t]->setText(m_reglages.types[t].nom);
    m_libelles = LibellesDesReglages(m_reglages);
    return true;
}

void frmSettings::cmdOk_Click()
{
    // A failed save keeps the dialog open with what was typed.
    if (!Enregistrer())
        return;
    AppState &etat = appState();
    std::array<QString, 5> paths = etat.Path;
    std::array<QString, 5> identites = etat.Identity;
    std::array<QString, 5> zeks = etat.Zek;
    for (int i = 1; i <= 2; ++i) {
        if (paths[i] != DBPath[i]->text().trimmed())
            zeks[i].clear(); // chosen here, not from a user file
        paths[i] = DBPath[i]->text().trimmed();
        identites[i] = DBIdentity[i]->text().trimmed();
    }
    EcrireLiaisons(etat, paths, identites, zeks);
    etat.PauseDebut = m_reglages.pauseDebut;
    etat.PauseFin = m_reglages.pauseFin;
    etat.DureeDefaut = static_cast<qint16>(m_reglages.duree.toInt());
    FixerFeriesAlsaceMoselle(m_reglages.feriesAlsaceMoselle);
    accept();
}

int frmSettings::jourChoisi() const
{
    for (int j = 1; j <= 7; ++j) {
        if (optDay[j]->isChecked())
            return j;
    }
    return 0;
}

qint32 frmSettings::regleCourante() const
{
    const int r = grdRegles->currentRow();
    if (r < 0 || !grdRegles->item(r, 0))
        return 0;
    return grdRegles->item(r, 0)->data(Qt::UserRole).toInt();
}

void frmSettings::selectionnerRegle(qint32 compteur)
{
    for (int r = 0; r < grdRegles->rowCount(); ++r) {
        if (grdRegles->item(r, 0)->data(Qt::UserRole).toInt() == compteur)
            grdRegles->selectRow(r);
    }
}

void frmSettings::signalerErreur(const QString &texte)
{
    Prompt::informer(QStringLiteral("Erreur"), texte, Prompt::Icone::Critique);
}

void frmSettings::filtrer()
{
    grdRegles->setRowCount(0);
    const int jour = jourChoisi();
    auto config = ConfigOuverte();
    if (jour == 0 || !config)
        return;
    const QDate fin = OpDate[0]->isChecked() ? LireDateTexte(mebDateFinRegle->displayText()) : QDate();
    QString erreur;
    const QList<Regle> regles = ListerRegles(*config, jour, fin, &erreur);
    if (!erreur.isEmpty())
        signalerErreur(QStringLiteral("Les règles ne peuvent être lues :\n") + erreur);
    static const char16_t *const semaines[] = {u"", u"Impaire", u"Paire", u"Toutes"};
    grdRegles->setRowCount(static_cast<int>(regles.size()));
    for (int i = 0; i < regles.size(); ++i) {
        const Regle &r = regles[i];
        const QStringList cellules{r.DateDebut.toString(QStringLiteral("dd/MM/yyyy")), r.DateFin.toString(QStringLiteral("dd/MM/yyyy")),
                                   r.HeureDebut.toString(QStringLiteral("HH:mm")), r.HeureFin.toString(QStringLiteral("HH:mm")),
                                   r.Semaine >= 1 && r.Semaine <= 3 ? QString::fromUtf16(semaines[r.Semaine]) : QString::number(r.Semaine),
                                   r.Praticien, r.TypeText};
        for (int c = 0; c < cellules.size(); ++c) {
            auto *item = new QTableWidgetItem(cellules[c]);
            item->setData(Qt::UserRole, r.Compteur);
            grdRegles->setItem(i, c, item);
        }
    }
    grdRegles->resizeColumnsToContents();
}

void frmSettings::ajouterRegle()
{
    if (!Enregistrer())
        return;
    RegleEnEdition = RegleEdition{};
    const int jour = jourChoisi();
    if (jour == 0) {
        Prompt::informer(QStringLiteral("Erreur"), QStringLiteral("Veuillez sélectionner un jour"), Prompt::Icone::Exclamation);
        optDay[2]->setFocus();
        return;
    }
    RegleEnEdition.JourNumero = QString::number(jour);
    frmRegles dialogue(this);
    ExecuterDialogue(dialogue);
    if (LireEntier(RegleEnEdition.JourNumero) <= 0)
        return;
    QString erreur;
    if (AjouterRegle(*ConfigOuverte(), RegleDuTampon(RegleEnEdition), &erreur) == 0)
        signalerErreur(erreur);
    filtrer();
    grdRegles->selectRow(grdRegles->rowCount() - 1);
}

void frmSettings::editerRegle(bool dupliquer)
{
    if (!Enregistrer())
        return;
    RegleEnEdition = RegleEdition{};
    if (jourChoisi() == 0) {
        Prompt::informer(QStringLiteral("Erreur"), QStringLiteral("Veuillez sélectionner un jour"), Prompt::Icone::Exclamation);
        optDay[2]->setFocus();
        return;
    }
    const qint32 compteur = regleCourante();
    if (compteur == 0)
        return;
    QString erreur;
    const QList<Regle> regles = ListerRegles(*ConfigOuverte(), jourChoisi(), {}, &erreur);
    const auto it = std::find_if(regles.begin(), regles.end(), [compteur](const Regle &r) { return r.Compteur == compteur; });
    if (it == regles.end()) {
        filtrer();
        return;
    }
    RegleEnEdition = TamponDeRegle(*it);
    frmRegles dialogue(this);
    ExecuterDialogue(dialogue);
    if (LireEntier(RegleEnEdition.JourNumero) <= 0)
        return;
    Regle regle = RegleDuTampon(RegleEnEdition);
    qint32 aSelectionner = compteur;
    if (dupliquer) {
        aSelectionner = AjouterRegle(*ConfigOuverte(), regle, &erreur);
        if (aSelectionner == 0)
            signalerErreur(erreur);
    } else {
        regle.Compteur = compteur;
        if (!ModifierRegle(*ConfigOuverte(), regle, &erreur))
            signalerErreur(erreur);
    }
    filtrer();
    selectionnerRegle(aSelectionner);
}

void frmSettings::supprimerRegle()
{
    const qint32 compteur = regleCourante();
    if (grdRegles->rowCount() == 0 || compteur == 0)
        return;
    if (!Prompt::confirmer(QStringLiteral("Supprimer une règle"),
                           QStringLiteral("Êtes-vous sur de vouloir supprimer la règle sélectionnée ? "), Prompt::Reponse::Non))
        return;
    QString erreur;
    if (!SupprimerRegle(*ConfigOuverte(), compteur, &erreur))
        signalerErreur(erreur);
    filtrer();
}

void frmSettings::changerDateFin()
{
    if (!Enregistrer())
        return;
    RegleEnEdition = RegleEdition{};
    const qint32 courante = regleCourante();
    frmChangeDate dialogue(this);
    ExecuterDialogue(dialogue);
    if (OldEndDate.isEmpty() || NewEndDate.isEmpty())
        return;
    const auto date = [](const QString &t) { return QDate::fromString(t, QStringLiteral("yyyy/MM/dd")); };
    QString erreur;
    if (DeplacerDateFin(*ConfigOuverte(), date(OldEndDate), date(NewEndDate), &erreur) < 0)
        signalerErreur(erreur);
    filtrer();
    selectionnerRegle(courante);
}
