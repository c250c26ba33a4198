#include "calendar/frmresourcesmanager.h"

#include "calendar/calendardataprovider.h"
#include "calendar/gestionressources.h"
#include "shell/base/prompt.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

namespace {

QPushButton *bouton(const QString &nom, const QString &legende, QWidget *parent)
{
    auto *b = new QPushButton(legende, parent);
    b->setObjectName(nom);
    b->setAutoDefault(false);
    return b;
}

template<typename W>
W *nomme(W *w, const QString &nom)
{
    w->setObjectName(nom);
    return w;
}

void informer(const QString &texte)
{
    Prompt::informer(QStringLiteral("Agenda"), texte, Prompt::Icone::Exclamation);
}

} // namespace

frmResourcesManager::frmResourcesManager(GestionRessources &manager, QWidget *parent)
    : QDialog(parent)
    , m_gestion(manager)
{
    setObjectName(QStringLiteral("frmResourcesManager"));
    setWindowTitle(QStringLiteral("Calendar Resources Manager"));
    setModal(true);
    construire();
    for (const RessourceCalendrier &r : m_gestion.Resources())
        m_coches.append(r.Enabled);
    remplirListes(0);
}

void frmResourcesManager::construire()
{
    frameDP = nomme(new QGroupBox(QStringLiteral("Data Providers"), this), QStringLiteral("frameDP"));
    lstDataProviders = nomme(new QListWidget(frameDP), QStringLiteral("lstDataProviders"));
    // A connection string is long: shortened in its middle, whole in the
    // tool tip.
    lstDataProviders->setTextElideMode(Qt::ElideMiddle);
    lstDataProviders->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    lstDataProviders->setFixedHeight(lstDataProviders->fontMetrics().height() * 4 + 8);
    btnDPAdd = bouton(QStringLiteral("btnDPAdd"), QStringLiteral("Add..."), frameDP);
    btnDPChange = bouton(QStringLiteral("btnDPChange"), QStringLiteral("Change..."), frameDP);
    btnDPRemove = bouton(QStringLiteral("btnDPRemove"), QStringLiteral("Remove"), frameDP);
    // The book works on one store: another one is opened from the main
    // window, which also creates it when it is missing.
    const QString ailleurs = QStringLiteral("La base de l'agenda se choisit par « Fichier > Ouvrir ».");
    for (QPushButton *b : {btnDPAdd, btnDPChange, btnDPRemove}) {
        b->setEnabled(false);
        b->setToolTip(ailleurs);
    }
    auto *colonneDP = new QVBoxLayout(frameDP);
    colonneDP->addWidget(lstDataProviders);
    auto *boutonsDP = new QHBoxLayout;
    boutonsDP->addWidget(btnDPAdd);
    boutonsDP->addWidget(btnDPChange);
    boutonsDP->addWidget(btnDPRemove);
    boutonsDP->addStretch();
    colonneDP->addLayout(boutonsDP);

    frameResources = nomme(new QGroupBox(QStringLiteral("Resources"), this), QStringLiteral("frameResources"));
    lstResources = nomme(new QListWidget(frameResources), QStringLiteral("lstResources"));
    btnResAdd = bouton(QStringLiteral("btnResAdd"), QStringLiteral("Add..."), frameResources);
    btnResRemove = bouton(QStringLiteral("btnResRemove"), QStringLiteral("Remove"), frameResources);
    auto *colonneRes = new QVBoxLayout(frameResources);
    colonneRes->addWidget(lstResources);
    auto *boutonsRes = new QHBoxLayout;
    boutonsRes->addWidget(btnResAdd);
    boutonsRes->addWidget(btnResRemove);
    boutonsRes->addStretch();
    colonneRes->addLayout(boutonsRes);

    frameResProps = nomme(new QGroupBox(QStringLiteral("Selected resource properties"), this), QStringLiteral("frameResProps"));
    txtResourceName = nomme(new QLineEdit(frameResProps), QStringLiteral("txtResourceName"));
    chkNameAuto = nomme(new QCheckBox(QStringLiteral("Auto"), frameResProps), QStringLiteral("chkNameAuto"));
    cmbResDP = nomme(new QComboBox(frameResProps), QStringLiteral("cmbResDP"));
    cmbResDP->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cmbResDP->setMinimumContentsLength(24);
    auto *lblNom = new QLabel(QStringLiteral("Name:"), frameResProps);
    lblNom->setBuddy(txtResourceName);
    auto *lblDP = new QLabel(QStringLiteral("Data provider:"), frameResProps);
    lblDP->setBuddy(cmbResDP);

    frameSchedules = nomme(new QGroupBox(QStringLiteral("Schedules"), frameResProps), QStringLiteral("frameSchedules"));
    lstSchedules = nomme(new QListWidget(frameSchedules), QStringLiteral("lstSchedules"));
    chkSchedulesShowAll = nomme(new QCheckBox(QStringLiteral("Show All"), frameSchedules), QStringLiteral("chkSchedulesShowAll"));
    txtScheduleName = nomme(new QLineEdit(frameSchedules), QStringLiteral("txtScheduleName"));
    btnScheduleAdd = bouton(QStringLiteral("btnScheduleAdd"), QStringLiteral("Add"), frameSchedules);
    btnScheduleChange = bouton(QStringLiteral("btnScheduleChange"), QStringLiteral("Change"), frameSchedules);
    btnScheduleRemove = bouton(QStringLiteral("btnScheduleRemove"), QStringLiteral("Remove"), frameSchedules);
    auto *colonnePlannings = new QVBoxLayout(frameSchedules);
    colonnePlannings->addWidget(chkSchedulesShowAll, 0, Qt::AlignLeft);
    colonnePlannings->addWidget(lstSchedules);
    colonnePlannings->addWidget(txtScheduleName);
    auto *boutonsPlannings = new QHBoxLayout;
    boutonsPlannings->addWidget(btnScheduleAdd);
    boutonsPlannings->addWidget(btnScheduleChange);
    boutonsPlannings->addWidget(btnScheduleRemove);
    boutonsPlannings->addStretch();
    colonnePlannings->addLayout(boutonsPlannings);

    auto *grilleProps = new QGridLayout(frameResProps);
    grilleProps->addWidget(lblNom, 0, 0);
    grilleProps->addWidget(txtResourceName, 0, 1);
    grilleProps->addWidget(chkNameAuto, 0, 2);
    grilleProps->addWidget(lblDP, 1, 0);
    grilleProps->addWidget(cmbResDP, 1, 1, 1, 2);
    grilleProps->addWidget(frameSchedules, 2, 0, 1, 3);
    grilleProps->setColumnStretch(1, 1);

    btnOK = bouton(QStringLiteral("btnOK"), QStringLiteral("OK"), this);
    btnOK->setDefault(true);
    btnCancel = bouton(QStringLiteral("btnCancel"), QStringLiteral("Cancel"), this);
    auto *boutons = new QHBoxLayout;
    boutons->addStretch();
    boutons->addWidget(btnOK);
    boutons->addWidget(btnCancel);

    auto *grille = new QGridLayout(this);
    grille->addWidget(frameDP, 0, 0);
    grille->addWidget(frameResources, 1, 0);
    grille->addWidget(frameResProps, 0, 1, 2, 1);
    grille->addLayout(boutons, 2, 0, 1, 2);
    grille->setColumnStretch(0, 1);
    grille->setColumnStretch(1, 1);
    grille->setRowStretch(1, 1);
    resize(760, 460);

    connect(lstResources, &QListWidget::currentRowChanged, this, &frmResourcesManager::afficherRessource);
    connect(lstResources, &QListWidget::itemChanged, this, [this](QListWidgetItem *item) {
        const int i = lstResources->row(item);
        if (i >= 0 && i < m_coches.size())
            m_coches[i] = item->checkState() == Qt::Checked;
    });
    connect(btnResAdd, &QPushButton::clicked, this, [this] {
        const int i = m_gestion.ajouterRessource();
        m_coches.append(true);
        remplirListes(i);
    });
    connect(btnResRemove, &QPushButton::clicked, this, [this] {
        const int i = lstResources->currentRow();
        if (i < 0 || m_gestion.Resources().size() < 2)
            return;
        m_gestion.retirerRessource(i);
        m_coches.removeAt(i);
        remplirListes(std::max(0, i - 1));
    });
    connect(txtResourceName, &QLineEdit::textEdited, this, [this](const QString &texte) {
        RessourceCalendrier *r = GetSelRCDesc();
        if (!r || r->NameAuto)
            return;
        r->Name = texte;
        const QSignalBlocker bloque(lstResources);
        lstResources->currentItem()->setText(texte);
    });
    connect(chkNameAuto, &QCheckBox::toggled, this, [this](bool on) {
        if (RessourceCalendrier *r = GetSelRCDesc())
            r->NameAuto = on;
        txtResourceName->setReadOnly(on);
        majNomAuto();
    });
    connect(cmbResDP, &QComboBox::activated, this, [this](int i) {
        if (RessourceCalendrier *r = GetSelRCDesc())
            r->fournisseur = i;
        remplirPlannings();
        majNomAuto();
    });
    connect(chkSchedulesShowAll, &QCheckBox::toggled, this, [this](bool on) {
        if (RessourceCalendrier *r = GetSelRCDesc())
            r->ShowAll = on;
        remplirPlannings(planningSelectionne());
        majNomAuto();
    });
    connect(lstSchedules, &QListWidget::itemChanged, this, [this](QListWidgetItem *item) {
        RessourceCalendrier *r = GetSelRCDesc();
        if (!r || r->ShowAll)
            return;
        const int cle = item->data(Qt::UserRole).toInt();
        if (item->checkState() == Qt::Checked)
            r->Schedules.insert(cle);
        else
            r->Schedules.remove(cle);
        majNomAuto();
    });
    connect(lstSchedules, &QListWidget::currentItemChanged, this, [this](QListWidgetItem *item) {
        if (item)
            txtScheduleName->setText(item->text());
        majBoutonsPlannings();
    });
    connect(txtScheduleName, &QLineEdit::textChanged, this, &frmResourcesManager::majBoutonsPlannings);
    connect(btnScheduleAdd, &QPushButton::clicked, this, &frmResourcesManager::ajouterPlanning);
    connect(btnScheduleChange, &QPushButton::clicked, this, &frmResourcesManager::renommerPlanning);
    connect(btnScheduleRemove, &QPushButton::clicked, this, &frmResourcesManager::supprimerPlanning);
    connect(btnOK, &QPushButton::clicked, this, &frmResourcesManager::valider);
    connect(btnCancel, &QPushButton::clicked, this, &QDialog::reject);
}

RessourceCalendrier *frmResourcesManager::GetSelRCDesc() const
{
    const int i = lstResources->currentRow();
    QList<RessourceCalendrier> &ressources = m_gestion.Resources();
    return i >= 0 && i < ressources.size() ? &ressources[i] : nullptr;
}

void frmResourcesManager::remplirListes(int selection)
{
    if (selection < 0)
        selection = lstResources->currentRow();
    {
        const QSignalBlocker bloqueDP(lstDataProviders);
        const QSignalBlocker bloqueCmb(cmbResDP);
        lstDataProviders->clear();
        cmbResDP->clear();
        for (const FournisseurRessources &f : m_gestion.DataProviders()) {
            auto *item = new QListWidgetItem(f.connexion, lstDataProviders);
            item->setToolTip(f.connexion);
            cmbResDP->addItem(f.connexion);
        }
    }
    const QSignalBlocker bloque(lstResources);
    lstResources->clear();
    for (int i = 0; i < m_gestion.Resources().size(); ++i) {
        RessourceCalendrier &r = m_gestion.Resources()[i];
        CalendarDataProvider *provider = m_gestion.providerDe(r);
        if (r.NameAuto && provider)
            r.Name = CalcAutoRCName(m_gestion.DataProviders().at(r.fournisseur), r, provider->Schedules());
        auto *item = new QListWidgetItem(r.Name, lstResources);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(m_coches.value(i, r.Enabled) ? Qt::Checked : Qt::Unchecked);
    }
    lstResources->setCurrentRow(std::min(selection, int(lstResources->count()) - 1));
    btnResRemove->setEnabled(lstResources->count() > 1);
    afficherRessource();
}

void frmResourcesManager::afficherRessource()
{
    RessourceCalendrier *r = GetSelRCDesc();
    frameResProps->setEnabled(r != nullptr);
    btnResRemove->setEnabled(r != nullptr && lstResources->count() > 1);
    {
        const QSignalBlocker b1(chkNameAuto);
        const QSignalBlocker b2(chkSchedulesShowAll);
        const QSignalBlocker b3(cmbResDP);
        txtResourceName->setText(r ? r->Name : QString());
        chkNameAuto->setChecked(r && r->NameAuto);
        txtResourceName->setReadOnly(r && r->NameAuto);
        cmbResDP->setCurrentIndex(r ? r->fournisseur : -1);
        chkSchedulesShowAll->setChecked(r && r->ShowAll);
    }
    remplirPlannings(planningSelectionne());
}

void frmResourcesManager::remplirPlannings(int selectionner)
{
    RessourceCalendrier *r = GetSelRCDesc();
    CalendarDataProvider *provider = r ? m_gestion.providerDe(*r) : nullptr;
    m_plannings = provider ? provider->Schedules() : QList<CalendarSchedule>();
    {
        const QSignalBlocker bloque(lstSchedules);
        lstSchedules->clear();
        for (const CalendarSchedule &p : std::as_const(m_plannings)) {
            auto *item = new QListWidgetItem(p.Name, lstSchedules);
            item->setData(Qt::UserRole, p.ScheduleID);
            // Showing all of them, the boxes only say so.
            if (!r->ShowAll)
                item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
            else
                item->setFlags(item->flags() & ~Qt::ItemIsUserCheckable);
            item->setCheckState(r->ShowAll || r->Schedules.contains(p.ScheduleID) ? Qt::Checked : Qt::Unchecked);
            if (p.ScheduleID == selectionner)
                lstSchedules->setCurrentItem(item);
        }
    }
    if (!lstSchedules->currentItem())
        txtScheduleName->clear();
    else
        txtScheduleName->setText(lstSchedules->currentItem()->text());
    majBoutonsPlannings();
}

void frmResourcesManager::majNomAuto()
{
    RessourceCalendrier *r = GetSelRCDesc();
    if (!r || !r->NameAuto || r->fournisseur < 0 || r->fournisseur >= m_gestion.DataProviders().size())
        return;
    r->Name = CalcAutoRCName(m_gestion.DataProviders().at(r->fournisseur), *r, m_plannings);
    txtResourceName->setText(r->Name);
    const QSignalBlocker bloque(lstResources);
    lstResources->currentItem()->setText(r->Name);
}

void frmResourcesManager::majBoutonsPlannings()
{
    const bool nom = !txtScheduleName->text().trimmed().isEmpty();
    const bool choisi = planningSelectionne() != 0;
    btnScheduleAdd->setEnabled(nom);
    btnScheduleChange->setEnabled(nom && choisi);
    btnScheduleRemove->setEnabled(choisi);
}

int frmResourcesManager::planningSelectionne() const
{
    const QListWidgetItem *item = lstSchedules->currentItem();
    return item ? item->data(Qt::UserRole).toInt() : 0;
}

void frmResourcesManager::ajouterPlanning()
{
    RessourceCalendrier *r = GetSelRCDesc();
    CalendarDataProvider *provider = r ? m_gestion.providerDe(*r) : nullptr;
    if (!provider)
        return;
    int cle = 0;
    if (const QString refus = AjouterPlanning(*provider, txtScheduleName->text(), &cle); !refus.isEmpty()) {
        informer(refus);
        txtScheduleName->setFocus();
        return;
    }
    remplirListes();
    remplirPlannings(cle);
}

void frmResourcesManager::renommerPlanning()
{
    RessourceCalendrier *r = GetSelRCDesc();
    CalendarDataProvider *provider = r ? m_gestion.providerDe(*r) : nullptr;
    const int cle = planningSelectionne();
    if (!provider || cle == 0)
        return;
    if (const QString refus = RenommerPlanning(*provider, cle, txtScheduleName->text()); !refus.isEmpty()) {
        informer(refus);
        txtScheduleName->setFocus();
        return;
    }
    remplirListes();
    remplirPlannings(cle);
}

void frmResourcesManager::supprimerPlanning()
{
    RessourceCalendrier *r = GetSelRCDesc();
    CalendarDataProvider *provider = r ? m_gestion.providerDe(*r) : nullptr;
    const int cle = planningSelectionne();
    if (!provider || cle == 0)
        return;
    const QString question = QuestionSuppressionPlanning(lstSchedules->currentItem()->text(), provider->CountScheduleEvents(cle));
    if (!question.isEmpty()) {
        if (!Prompt::confirmer(QStringLiteral("Agenda"), question, Prompt::Reponse::Non))
            return;
    }
    if (const QString refus = SupprimerPlanning(*provider, cle); !refus.isEmpty()) {
        informer(refus);
        return;
    }
    m_gestion.oublierPlanning(cle);
    remplirListes();
}

void frmResourcesManager::valider()
{
    QList<RessourceCalendrier> &ressources = m_gestion.Resources();
    for (int i = 0; i < lstResources->count() && i < ressources.size(); ++i)
        ressources[i].Enabled = lstResources->item(i)->checkState() == Qt::Checked;
    accept();
}
