#include "patients/cartes.h"

#include "shell/base/dossiers.h"
#include "shell/base/support.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace {

PageCarte echec(PageCarte::Issue issue, const QString &message)
{
    PageCarte p;
    p.issue = issue;
    p.message = message;
    return p;
}

} // namespace

QString CheminPageCarte()
{
    return DossierProgramme() + QStringLiteral("~maps.htm");
}

PageCarte EcrirePageCarte(const AdresseCarte &adresse)
{
    if (adresse.adresse1.trimmed().isEmpty() || adresse.codePostal.trimmed().isEmpty() || adresse.ville.trimmed().isEmpty())
        return echec(PageCarte::Issue::AdresseIncomplete,
                     QStringLiteral("Veuillez saisir une adresse complète (Adresse, code postal et ville)"));

    const QString modele = FichierSysteme(QStringLiteral("Maps.htm"));
    QFile lecture(modele);
    if (!lecture.open(QIODevice::ReadOnly))
        return echec(PageCarte::Issue::Erreur,
                     QStringLiteral("Le modèle de plan %1 ne peut pas être lu.").arg(QDir::toNativeSeparators(modele)));
    QByteArray page = lecture.readAll();

    const QString texte = adresse.adresse1 + u' ' + adresse.adresse2 + u' ' + adresse.codePostal + u' ' + adresse.ville + u' ';
    // The address is escaped: a "<" or "&" typed in a field must stay text
    // and cannot break the page. The page's script reads it back from there.
    page.replace("------ADRESSE------", texte.toHtmlEscaped().toUtf8());

    const QString chemin = CheminPageCarte();
    const auto erreurEcriture = [&] {
        return echec(PageCarte::Issue::Erreur,
                     QStringLiteral("Le plan ne peut pas être écrit dans %1.").arg(QDir::toNativeSeparators(chemin)));
    };
    SupprimerFichier(chemin);
    QSaveFile ecriture(chemin);
    if (!ecriture.open(QIODevice::WriteOnly))
        return erreurEcriture();
    // A patient's address: readable by the practice's group only.
    ecriture.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup | QFileDevice::WriteGroup);
    if (ecriture.write(page) != page.size()) {
        ecriture.cancelWriting();
        return erreurEcriture();
    }
    if (!ecriture.commit())
        return erreurEcriture();

    PageCarte p;
    p.issue = PageCarte::Issue::Ecrite;
    p.chemin = chemin;
    return p;
}

void SupprimerPageCarte()
{
    SupprimerFichier(CheminPageCarte());
}
