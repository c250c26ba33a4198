#include "shell/window/frmintro.h"

#include "patients/dialoguesouverts.h"

#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>

frmIntro::frmIntro(const QString &agenda, const QString &dossier, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmIntro"));
    setWindowTitle(QStringLiteral("A propos d'Tavonel"));
    setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);
    setModal(true);
    CompterDialogueOuvert(this);
    setAutoFillBackground(true);
    QPalette fond = palette();
    fond.setColor(QPalette::Window, QColor(0x1F, 0x4E, 0x79));
    fond.setColor(QPalette::WindowText, Qt::white);
    setPalette(fond);

    const auto etiquette = [this](const char *nom, const QString &texte, int taille, bool gras) {
        auto *l = new QLabel(texte, this);
        l->setObjectName(QString::fromLatin1(nom));
        QFont f = l->font();
        f.setPointSizeF(f.pointSizeF() * taille / 10.0);
        f.setBold(gras);
        l->setFont(f);
        l->setAlignment(Qt::AlignCenter);
        l->setWordWrap(true);
        return l;
    };
    lblProduit = etiquette("lblProduit", QStringLiteral("Tavonel"), 26, true);
    lblVersion = etiquette("lblVersion",
                           QStringLiteral("Agenda du cabinet médical - version %1").arg(QStringLiteral(TAVONEL_VERSION)), 11, false);
    lblAgenda = etiquette("lblAgenda", QStringLiteral("Agenda : %1\nDossier des données : %2").arg(agenda, dossier), 9, false);
    auto *l = new QVBoxLayout(this);
    l->setContentsMargins(36, 28, 36, 22);
    l->setSpacing(10);
    l->addWidget(lblProduit);
    l->addWidget(lblVersion);
    l->addSpacing(12);
    l->addWidget(lblAgenda);
    l->addWidget(etiquette("lblFermer", QStringLiteral("Cliquez ou appuyez sur une touche pour fermer."), 8, false));
    setFixedWidth(480);

    Timer1 = new QTimer(this);
    Timer1->setObjectName(QStringLiteral("Timer1"));
    Timer1->setSingleShot(true);
    Timer1->setInterval(9000);
    Timer2 = new QTimer(this);
    Timer2->setObjectName(QStringLiteral("Timer2"));
    Timer2->setSingleShot(true);
    Timer2->setInterval(1000);
    auto *fondu = new QTimer(this);
    fondu->setInterval(50);
    auto *ecoule = new QElapsedTimer;
    connect(this, &QObject::destroyed, this, [ecoule] { delete ecoule; });
    connect(Timer1, &QTimer::timeout, this, [this, fondu, ecoule] {
        ecoule->start();
        fondu->start();
        Timer2->start();
    });
    connect(fondu, &QTimer::timeout, this,
            [this, ecoule] { setWindowOpacity(std::max(0.0, 1.0 - double(ecoule->elapsed()) / Timer2->interval())); });
    connect(Timer2, &QTimer::timeout, this, &QDialog::accept);
    Timer1->start();
}

void frmIntro::mousePressEvent(QMouseEvent *) { accept(); }

void frmIntro::keyPressEvent(QKeyEvent *) { accept(); }
