#include "messaging/operateurs.h"

#include "shell/base/cp1252.h"
#include "shell/base/dossiers.h"
#include "shell/base/nombres.h"

#include <QFile>
#include <QRegularExpression>

namespace {

bool EstControle(QChar c)
{
    return c.unicode() < 14;
}

} // namespace

QString SansControles(const QString &texte)
{
    qsizetype debut = 0;
    qsizetype fin = texte.size();
    while (debut < fin && EstControle(texte.at(debut)))
        ++debut;
    while (fin > debut && EstControle(texte.at(fin - 1)))
        --fin;
    return texte.mid(debut, fin - debut);
}

QString GetOperatorName(const QString &reponse)
{
    QString nom = reponse;
    if (!nom.isEmpty()) {
        nom = nom.mid(nom.indexOf(u'"') + 1); // no quote: the whole answer
        const qsizetype fin = nom.indexOf(u'"');
        if (fin >= 0)
            nom.truncate(fin);
    }
    if (nom.isEmpty())
        return QStringLiteral("Inconnu");

    // At most four line-end characters go from the front: the answer's own
    // line end, not what a modem might put inside a name.
    for (int i = 0; i < 4 && !nom.isEmpty() && EstControle(nom.front()); ++i)
        nom.remove(0, 1);
    while (!nom.isEmpty() && EstControle(nom.back()))
        nom.chop(1);
    if (nom.endsWith(QLatin1String("OK")))
        nom.chop(2);
    while (!nom.isEmpty() && EstControle(nom.back()))
        nom.chop(1);

    nom = LookupOperator(nom);
    // A modem in manual selection with no operator answers just this.
    if (nom == QLatin1String("+COPS: 1"))
        return QStringLiteral("Inconnu");
    return nom;
}

QString LookupOperator(const QString &nom)
{
    return LookupOperator(nom, FichierSysteme(QStringLiteral("Opérateurs.txt")));
}

QString LookupOperator(const QString &nom, const QString &cheminListe)
{
    QFile fichier(cheminListe);
    if (!fichier.open(QIODevice::ReadOnly))
        return nom;
    const QString texte = DepuisCp1252(fichier.readAll());
    static const QRegularExpression finsDeLigne(QStringLiteral("\r\n|\r|\n"));
    const double code = LireNombre(nom);
    QString resultat = nom;
    for (const QString &ligne : texte.split(finsDeLigne)) {
        const qsizetype separateur = ligne.indexOf(QLatin1String("; "));
        // A line without the separator holds no name (a blank line at the
        // end of the file, for one).
        if (separateur < 0)
            continue;
        if (LireNombre(ligne) == code)
            resultat = ligne.mid(separateur + 2);
    }
    return resultat;
}
