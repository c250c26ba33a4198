#include "shell/window/miseenpage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QTimeEdit>
#include <QVBoxLayout>

namespace {

template<typename W>
W *nomme(W *w, const QString &nom)
{
    w->setObjectName(nom);
    return w;
}

} // namespace

DialogueMiseEnPage::DialogueMiseEnPage(const ReglagesMiseEnPage &reglages, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("DialogueMiseEnPage"));
    setWindowTitle(QStringLiteral("Mise en page"));
    setModal(true);
    auto *lignes = new QVBoxLayout(this);

    auto *papier = new QGroupBox(QStringLiteral("Papier"), this);
    auto *formePapier = new QFormLayout(papier);
    cboFormat = nomme(new QComboBox(papier), QStringLiteral("cboFormat"));
    const std::pair<QString, QPageSize::PageSizeId> formats[] = {
        {QStringLiteral("A4"), QPageSize::A4},
        {QStringLiteral("A5"), QPageSize::A5},
        {QStringLiteral("A3"), QPageSize::A3},
        {QStringLiteral("Lettre US"), QPageSize::Letter},
        {QStringLiteral("Légal US"), QPageSize::Legal},
    };
    for (const auto &[nom, id] : formats)
        cboFormat->addItem(nom, int(id));
    formePapier->addRow(QStringLiteral("Format :"), cboFormat);
    auto *sens = new QHBoxLayout;
    optPortrait = nomme(new QRadioButton(QStringLiteral("Portrait"), papier), QStringLiteral("optPortrait"));
    optPaysage = nomme(new QRadioButton(QStringLiteral("Paysage"), papier), QStringLiteral("optPaysage"));
    sens->addWidget(optPortrait);
    sens->addWidget(optPaysage);
    sens->addStretch(1);
    formePapier->addRow(QStringLiteral("Orientation :"), sens);
    lignes->addWidget(papier);

    auto *marges = new QGroupBox(QStringLiteral("Marges (mm)"), this);
    auto *formeMarges = new QFormLayout(marges);
    const QString legendes[4] = {QStringLiteral("Haut :"), QStringLiteral("Bas :"), QStringLiteral("Gauche :"),
                                 QStringLiteral("Droite :")};
    for (int i = 0; i < 4; ++i) {
        txtMarge[i] = nomme(new QDoubleSpinBox(marges), QStringLiteral("txtMarge(%1)").arg(i));
        txtMarge[i]->setRange(0, 60);
        txtMarge[i]->setDecimals(1);
        txtMarge[i]->setSuffix(QStringLiteral(" mm"));
        formeMarges->addRow(legendes[i], txtMarge[i]);
    }
    lignes->addWidget(marges);

    auto *plage = new QGroupBox(QStringLiteral("Heures imprimées (vues jour et semaine de travail)"), this);
    auto *formePlage = new QFormLayout(plage);
    txtPrintFrom = nomme(new QTimeEdit(plage), QStringLiteral("txtPrintFrom"));
    txtPrintTo = nomme(new QTimeEdit(plage), QStringLiteral("txtPrintTo"));
    for (QTimeEdit *e : {txtPrintFrom, txtPrintTo})
        e->setDisplayFormat(QStringLiteral("HH:mm"));
    formePlage->addRow(QStringLiteral("De :"), txtPrintFrom);
    formePlage->addRow(QStringLiteral("À :"), txtPrintTo);
    chkPrintFromToExactly =
        nomme(new QCheckBox(QStringLiteral("Exactement (sinon élargies aux rendez-vous du jour)"), plage),
              QStringLiteral("chkPrintFromToExactly"));
    formePlage->addRow(chkPrintFromToExactly);
    lignes->addWidget(plage);

    auto *boutons = new QHBoxLayout;
    boutons->addStretch(1);
    cmdOK = nomme(new QPushButton(QStringLiteral("OK"), this), QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = nomme(new QPushButton(QStringLiteral("Annuler"), this), QStringLiteral("cmdCancel"));
    boutons->addWidget(cmdOK);
    boutons->addWidget(cmdCancel);
    lignes->addLayout(boutons);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    // A paper size not in the list is offered by its own name.
    const QPageSize taille = reglages.page.pageSize();
    int index = cboFormat->findData(int(taille.id()));
    if (index < 0) {
        cboFormat->addItem(taille.name(), int(taille.id()));
        index = cboFormat->count() - 1;
    }
    cboFormat->setCurrentIndex(index);
    (reglages.page.orientation() == QPageLayout::Landscape ? optPaysage : optPortrait)->setChecked(true);
    const QMarginsF m = reglages.page.margins(QPageLayout::Millimeter);
    const qreal valeurs[4] = {m.top(), m.bottom(), m.left(), m.right()};
    for (int i = 0; i < 4; ++i)
        txtMarge[i]->setValue(valeurs[i]);
    txtPrintFrom->setTime(reglages.debut);
    txtPrintTo->setTime(reglages.fin);
    chkPrintFromToExactly->setChecked(reglages.exactement);
}

ReglagesMiseEnPage DialogueMiseEnPage::reglages() const
{
    ReglagesMiseEnPage r;
    r.page = QPageLayout(QPageSize(QPageSize::PageSizeId(cboFormat->currentData().toInt())),
                         optPaysage->isChecked() ? QPageLayout::Landscape : QPageLayout::Portrait,
                         QMarginsF(txtMarge[2]->value(), txtMarge[0]->value(), txtMarge[3]->value(), txtMarge[1]->value()),
                         QPageLayout::Millimeter);
    r.debut = txtPrintFrom->time();
    r.fin = txtPrintTo->time();
    r.exactement = chkPrintFromToExactly->isChecked();
    return r;
}
