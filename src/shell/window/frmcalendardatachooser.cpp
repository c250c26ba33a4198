#include "shell/window/frmcalendardatachooser.h"

#include "patients/dialoguesouverts.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

frmCalendarDataChooser::frmCalendarDataChooser(int currentKind, QString programDir, QWidget *parent)
    : QDialog(parent)
    , m_lignes(ChargerLignesFournisseurs())
    , m_programDir(std::move(programDir))
{
    setObjectName(QStringLiteral("frmCalendarDataChooser"));
    setWindowTitle(QStringLiteral("Base de données de l'agenda"));
    CompterDialogueOuvert(this);

    auto *racine = new QVBoxLayout(this);
    auto *groupe = new QGroupBox(QStringLiteral("Type de base"), this);
    auto *colonne = new QVBoxLayout(groupe);
    const QStringList libelles = {QStringLiteral("Fichier XML"), QStringLiteral("Fichier Access (Events.mdb)"),
                                  QStringLiteral("Outlook (MAPI)"), QStringLiteral("SQL Server"), QStringLiteral("MySQL"),
                                  QStringLiteral("MariaDB")};
    for (qsizetype i = 0; i < m_lignes.size(); ++i) {
        auto *b = new QRadioButton(libelles.value(i), groupe);
        b->setObjectName(m_lignes.at(i).option);
        colonne->addWidget(b);
        options.push_back(b);
        connect(b, &QRadioButton::clicked, this, [this, i] { choisir(int(i)); });
    }
    racine->addWidget(groupe);
    txtLabelTop = new QLabel(this);
    txtLabelTop->setObjectName(QStringLiteral("txtLabelTop"));
    txtConnectionStr = new QLineEdit(this);
    txtConnectionStr->setObjectName(QStringLiteral("txtConnectionStr"));
    txtConnectionStr->setMinimumWidth(380);
    txtLabelBottom = new QLabel(this);
    txtLabelBottom->setObjectName(QStringLiteral("txtLabelBottom"));
    txtLabelBottom->setWordWrap(true);
    racine->addWidget(txtLabelTop);
    racine->addWidget(txtConnectionStr);
    racine->addWidget(txtLabelBottom);

    auto *boutons = new QHBoxLayout;
    boutons->addStretch(1);
    cmdOK = new QPushButton(QStringLiteral("OK"), this);
    cmdOK->setObjectName(QStringLiteral("cmdOK"));
    cmdOK->setDefault(true);
    cmdCancel = new QPushButton(QStringLiteral("Annuler"), this);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    boutons->addWidget(cmdOK);
    boutons->addWidget(cmdCancel);
    racine->addLayout(boutons);
    connect(cmdOK, &QPushButton::clicked, this, &frmCalendarDataChooser::valider);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);

    qsizetype courant = 1;
    for (qsizetype i = 0; i < m_lignes.size(); ++i) {
        if (m_lignes.at(i).kind == currentKind)
            courant = i;
    }
    m_courant = courant;
    txtConnectionStr->setText(m_lignes.at(courant).chaine);
    choisir(int(courant));
}

void frmCalendarDataChooser::choisir(int index)
{
    // The text typed for the kind left is kept for a return to it.
    m_lignes[m_courant].chaine = txtConnectionStr->text();
    m_courant = index;
    const LigneFournisseur &l = m_lignes.at(index);
    for (std::size_t i = 0; i < options.size(); ++i)
        options[i]->setChecked(qsizetype(i) == index);
    const bool actif = !l.labelTop.isEmpty();
    txtLabelTop->setEnabled(actif);
    txtLabelBottom->setEnabled(actif);
    txtConnectionStr->setEnabled(actif);
    txtLabelTop->setText(l.labelTop);
    txtLabelBottom->setText(l.labelBottom);
    txtConnectionStr->setText(l.chaine);
}

QString frmCalendarDataChooser::ConnectionString() const
{
    const LigneFournisseur &l = m_lignes.at(m_courant);
    return ChaineDeConnexion(l.kind, l.chaine, m_programDir);
}

void frmCalendarDataChooser::valider()
{
    m_lignes[m_courant].chaine = txtConnectionStr->text();
    EnregistrerLignesFournisseurs(m_lignes, ProviderType());
    cmdOK->setEnabled(false);
    cmdCancel->setEnabled(false);
    m_cancelled = false;
    accept();
}
