#include "calendar/choixstore.h"

#include "shell/base/registre.h"
#include "shell/base/support.h"

namespace {

const QString kSection = QStringLiteral("Provider");

} // namespace

QList<LigneFournisseur> LignesFournisseursParDefaut()
{
    return {
        {1, QStringLiteral("Memory"), QStringLiteral("rdDP_Memory"), QStringLiteral("XML (binary) data file:"),
         QStringLiteral("Load/Save events when app Start/Exit."), QStringLiteral("events.xml")},
        {2, QStringLiteral("Access"), QStringLiteral("rdDP_Access"), QStringLiteral("DataBase file (*.mdb):"),
         QStringLiteral("Load/Save events on the fly (when we need show or change data)."), QStringLiteral("events.mdb")},
        {3, QStringLiteral("MAPI"), QStringLiteral("rdDP_MAPI"), QString(),
         QStringLiteral("Work with events from your Outlook calendar."), QString()},
        {4, QStringLiteral("SQLServer"), QStringLiteral("rdDP_SQLServer"), QStringLiteral("Connection string:"), QString(),
         QStringLiteral("DSN=Calendar_SQLServer")},
        {5, QStringLiteral("MySQL"), QStringLiteral("rdDP_MySQL"), QStringLiteral("Connection string:"), QString(),
         QStringLiteral("DSN=Calendar_MySQL")},
        {6, QStringLiteral("MariaDB"), QStringLiteral("rdDP_MariaDB"), QStringLiteral("Paramètres du serveur MariaDB :"),
         QStringLiteral("Base partagée sur un serveur MariaDB ou MySQL, pour les cabinets à plusieurs postes."),
         QStringLiteral("Server=localhost;Port=3306;Database=Calendar;User=agenda;Password=")},
    };
}

QList<LigneFournisseur> ChargerLignesFournisseurs()
{
    QList<LigneFournisseur> lignes = LignesFournisseursParDefaut();
    for (LigneFournisseur &l : lignes)
        l.chaine = LireParametreUtilisateur(kSection, l.cle, l.chaine);
    return lignes;
}

void EnregistrerLignesFournisseurs(const QList<LigneFournisseur> &lignes, int kindActif)
{
    QString actif;
    for (const LigneFournisseur &l : lignes) {
        EcrireParametreUtilisateur(kSection, l.cle, l.chaine);
        if (l.kind == kindActif)
            actif = l.chaine;
    }
    EcrireParametreUtilisateur(kSection, QStringLiteral("Active"), QString::number(kindActif));
    EcrireParametreUtilisateur(kSection, QStringLiteral("ActivePath"), actif);
}

QString ChaineDeConnexion(int kind, const QString &chaine, const QString &dossierProgramme)
{
    switch (kind) {
    case 1:
        return QStringLiteral("Provider=XML;Data Source='") + AjouterSlash(dossierProgramme) + chaine
               + QStringLiteral("';Encoding=iso-8859-1;");
    case 2:
        return QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='") + AjouterSlash(dossierProgramme) + chaine
               + QStringLiteral("';");
    case 3:
        return QStringLiteral("Provider=MAPI;");
    case 4:
    case 5:
        return QStringLiteral("Provider=Custom;") + chaine;
    case 6:
        return MarqueMariaDb + chaine;
    default:
        return {};
    }
}
