#include "patients/codespostaux.h"

#include "shell/base/basesqlite.h"
#include "shell/base/dossiers.h"

#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>

namespace {

// The numeric test the field has always had: a number as a user may type it,
// with blanks around, a sign, a decimal point or comma, an exponent. Letters,
// as in Corsica's "2A", fail it.
bool estNumerique(const QString &texte)
{
    static const QRegularExpression nombre(QStringLiteral(R"(^\s*[+-]?(\d+([.,]\d*)?|[.,]\d+)([eE][+-]?\d+)?\s*$)"));
    return nombre.match(texte).hasMatch();
}

AideCodePostal issue(AideCodePostal::Issue i, const QString &message)
{
    AideCodePostal a;
    a.issue = i;
    a.message = message;
    return a;
}

} // namespace

AideCodePostal ChercherCodePostal(const QString &texte)
{
    using Issue = AideCodePostal::Issue;
    if (texte.size() < 2 || !estNumerique(texte))
        return issue(Issue::Departement, QStringLiteral("Veuillez saisir au moins le département"));

    QString erreur;
    const auto base = BaseSqlite::ouvrir(FichierSysteme(QStringLiteral("cp.mdb")), BaseSqlite::Mode::Lecture, &erreur);
    if (!base)
        return issue(Issue::Erreur, QStringLiteral("La liste des codes postaux ne peut pas être lue. %1").arg(erreur));

    QSqlQuery q(base->db());
    q.setForwardOnly(true);
    // The LIKE is the practice's own (registered on the connection): "*" is
    // the wildcard, and the typed text is bound, never put in the statement.
    q.prepare(QStringLiteral("SELECT CP, \"Localité\" FROM CP WHERE CP LIKE ? GROUP BY \"Localité\", CP "
                             "ORDER BY \"Localité\", CP"));
    q.addBindValue(texte + u'*');
    if (!q.exec())
        return issue(Issue::Erreur,
                     QStringLiteral("La liste des codes postaux ne peut pas être lue : %1").arg(q.lastError().text()));

    AideCodePostal a;
    a.issue = Issue::Liste;
    while (q.next()) {
        const QString ligne = q.value(0).toString().leftJustified(8) + q.value(1).toString();
        if (!ligne.trimmed().isEmpty())
            a.lignes << ligne;
    }
    if (a.lignes.isEmpty())
        return issue(Issue::Inconnu, QStringLiteral("Code postal non connu"));
    return a;
}

CodeVille LireLigneCodePostal(const QString &ligne)
{
    if (ligne.size() < 9)
        return {ligne.trimmed(), {}};
    return {ligne.left(7).trimmed(), ligne.mid(8).trimmed()};
}
