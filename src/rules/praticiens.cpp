#include "rules/praticiens.h"

#include "shell/appstate.h"
#include "shell/base/config.h"
#include "shell/base/nombres.h"
#include "shell/base/prompt.h"

QString ChosenPraticien;
QString ChosenColor;
qint16 ChosenNumero = 0;

QString NomPraticien(int numero)
{
    const QString n = QString::number(numero);
    return LireConfig(QStringLiteral("Praticien") + n, QStringLiteral("Nom"), QStringLiteral("Praticien ") + n);
}

QString CouleurPraticien(int numero)
{
    return LireConfig(QStringLiteral("RDVType1"), QStringLiteral("Couleur") + QString::number(numero), QStringLiteral("&HFFFFFF"));
}

void ChoisirPraticien(int index, const QString &legende, const QString &couleur)
{
    ChosenPraticien = legende;
    ChosenNumero = static_cast<qint16>(index + 1);
    ChosenColor = couleur;
}

const RegleMatch &ProposerPraticien(const QDateTime &debut, const ChoixPraticien &choisir)
{
    RegleMatch &regle = appState().RegleCourante;
    QString erreur;
    regle = GetRegleForDate(debut.addSecs(1), &erreur);
    if (!erreur.isEmpty()) {
        Prompt::informer(QStringLiteral("Erreur..."),
                         QStringLiteral("Les règles de l'agenda (Config.mdb) ne peuvent être lues :\n%1\n\n"
                                        "Le praticien de ce rendez-vous reste à préciser.")
                             .arg(erreur),
                         Prompt::Icone::Critique);
        return regle;
    }
    if (regle.Praticien.isEmpty() && choisir && choisir()) {
        regle.Praticien = ChosenPraticien;
        regle.PraticienNumero = ChosenNumero;
        regle.TypeColor = static_cast<qint32>(LireEntier(ChosenColor) & 0xFFFFFF);
    }
    return regle;
}

int IndexLibelle(const RegleMatch &regle)
{
    return regle.TypeRV + (regle.PraticienNumero == 2 ? 8 : 0);
}
