#include "shell/base/promptwidgets.h"

#include <QAbstractButton>
#include <QApplication>
#include <QColorDialog>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPrinterInfo>

using Prompt::Reponse;

namespace {

QMessageBox::StandardButton versBouton(Reponse r)
{
    switch (r) {
    case Reponse::Ok: return QMessageBox::Ok;
    case Reponse::Annuler: return QMessageBox::Cancel;
    case Reponse::Abandonner: return QMessageBox::Abort;
    case Reponse::Reessayer: return QMessageBox::Retry;
    case Reponse::Ignorer: return QMessageBox::Ignore;
    case Reponse::Oui: return QMessageBox::Yes;
    case Reponse::Non: return QMessageBox::No;
    }
    return QMessageBox::Ok;
}

Reponse depuisBouton(int b)
{
    switch (b) {
    case QMessageBox::Cancel: return Reponse::Annuler;
    case QMessageBox::Abort: return Reponse::Abandonner;
    case QMessageBox::Retry: return Reponse::Reessayer;
    case QMessageBox::Ignore: return Reponse::Ignorer;
    case QMessageBox::Yes: return Reponse::Oui;
    case QMessageBox::No: return Reponse::Non;
    default: return Reponse::Ok;
    }
}

QMessageBox::StandardButtons versBoutons(Prompt::Boutons b)
{
    switch (b) {
    case Prompt::Boutons::Ok: return QMessageBox::Ok;
    case Prompt::Boutons::OkAnnuler: return QMessageBox::Ok | QMessageBox::Cancel;
    case Prompt::Boutons::AbandonnerReessayerIgnorer: return QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore;
    case Prompt::Boutons::OuiNonAnnuler: return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case Prompt::Boutons::OuiNon: return QMessageBox::Yes | QMessageBox::No;
    case Prompt::Boutons::ReessayerAnnuler: return QMessageBox::Retry | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

QMessageBox::Icon versIcone(Prompt::Icone i)
{
    switch (i) {
    case Prompt::Icone::Aucune: return QMessageBox::NoIcon;
    case Prompt::Icone::Information: return QMessageBox::Information;
    case Prompt::Icone::Question: return QMessageBox::Question;
    case Prompt::Icone::Exclamation: return QMessageBox::Warning;
    case Prompt::Icone::Critique: return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

void traduire(QMessageBox &box)
{
    const std::pair<QMessageBox::StandardButton, const char *> noms[] = {
        {QMessageBox::Ok, "OK"},          {QMessageBox::Cancel, "Annuler"}, {QMessageBox::Abort, "Abandonner"},
        {QMessageBox::Retry, "Réessayer"}, {QMessageBox::Ignore, "Ignorer"}, {QMessageBox::Yes, "Oui"},
        {QMessageBox::No, "Non"}};
    for (const auto &[bouton, nom] : noms) {
        if (QAbstractButton *b = box.button(bouton))
            b->setText(QString::fromUtf8(nom));
    }
}

} // namespace

Reponse RepondeurWidgets::message(const Prompt::Message &m)
{
    QMessageBox box(versIcone(m.icone), m.titre, m.texte, versBoutons(m.boutons), QApplication::activeWindow());
    box.setDefaultButton(versBouton(m.parDefaut));
    traduire(box);
    return depuisBouton(box.exec());
}

QString RepondeurWidgets::choisirFichier(const Prompt::ChoixFichier &choix)
{
    if (choix.enregistrer)
        return QFileDialog::getSaveFileName(QApplication::activeWindow(), choix.titre, choix.dossier, choix.filtre);
    return QFileDialog::getOpenFileName(QApplication::activeWindow(), choix.titre, choix.dossier, choix.filtre);
}

QString RepondeurWidgets::choisirDossier(const QString &titre, const QString &dossier)
{
    return QFileDialog::getExistingDirectory(QApplication::activeWindow(), titre, dossier);
}

std::optional<quint32> RepondeurWidgets::choisirCouleur(quint32 couleur)
{
    const QColor depart(couleur & 0xFF, (couleur >> 8) & 0xFF, (couleur >> 16) & 0xFF);
    const QColor c = QColorDialog::getColor(depart, QApplication::activeWindow(), QStringLiteral("Couleur"));
    if (!c.isValid())
        return std::nullopt;
    return static_cast<quint32>(c.red()) | (static_cast<quint32>(c.green()) << 8) | (static_cast<quint32>(c.blue()) << 16);
}

QString RepondeurWidgets::choisirImprimante(const QString &actuelle)
{
    const QStringList noms = QPrinterInfo::availablePrinterNames();
    if (noms.isEmpty())
        return {};
    bool ok = false;
    const QString choix = QInputDialog::getItem(QApplication::activeWindow(), QStringLiteral("Imprimante"),
                                                QStringLiteral("Imprimante :"), noms,
                                                std::max<qsizetype>(0, noms.indexOf(actuelle)), false, &ok);
    return ok ? choix : QString();
}

void RepondeurWidgets::bip()
{
    QApplication::beep();
}
