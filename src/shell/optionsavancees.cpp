#include "shell/optionsavancees.h"

#include "shell/base/profilini.h"

#include <QDir>

bool EcrireOptionsAvancees(const QString &fichier, const QString &section, const ClesOptionsAvancees &cles, QString *erreur)
{
    const auto ouiNon = [](bool b) { return b ? QStringLiteral("Oui") : QStringLiteral("Non"); };
    FichierProfil profil = FichierProfil::charger(fichier);
    profil.fixer(section, QStringLiteral("RemindersManEnabled"), cles.rappels ? QStringLiteral("1") : QStringLiteral("0"));
    profil.fixer(section, QStringLiteral("PrinterRDV"), cles.imprimante);
    profil.fixer(section, QStringLiteral("PrinterFormat"), cles.format);
    profil.fixer(section, QStringLiteral("PrinterEntete"), cles.entete);
    profil.fixer(section, QStringLiteral("MarginL"), cles.margeGauche);
    profil.fixer(section, QStringLiteral("MarginR"), cles.margeDroite);
    profil.fixer(section, QStringLiteral("MAILS"), ouiNon(cles.mails));
    profil.fixer(section, QStringLiteral("SMS"), ouiNon(cles.sms));
    if (profil.enregistrer(fichier))
        return true;
    if (erreur)
        *erreur = QStringLiteral("Les options n'ont pas pu être enregistrées dans le fichier %1.")
                      .arg(QDir::toNativeSeparators(fichier));
    return false;
}
