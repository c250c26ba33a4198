#include "shell/regleslignedate.h"

#include "shell/base/support.h"

#include <QLocale>

#include <algorithm>
#include <cstdlib>

QString DateLongue(const QDate &jour)
{
    // The long date of a French desktop, "dddd d MMMM yyyy", from the French
    // locale's own names rather than the machine's.
    static const QLocale francais(QLocale::French, QLocale::France);
    return francais.toString(jour, QStringLiteral("dddd d MMMM yyyy"));
}

std::optional<QString> TexteLigneDate(const QList<QDate> &jours)
{
    if (jours.isEmpty())
        return std::nullopt;
    QString texte = QStringLiteral("Semaine %1 : %2").arg(GetWeekNumber(jours.first())).arg(DateLongue(jours.first()));
    if (jours.size() > 1)
        texte += QStringLiteral(" - ") + DateLongue(jours.last());
    return texte;
}

bool RefuserGlisserRecurrent(bool interrupteur, int operation, int premierEtatRecurrence)
{
    if (!interrupteur || operation < 1 || operation > 4)
        return false;
    return premierEtatRecurrence > 0;
}

bool RefuserCreationWeekEnd(bool interrupteur, int operation, const QDateTime &debut, const QDateTime &fin, bool journeeEntiere)
{
    if (!interrupteur || operation != 14 || !debut.isValid() || !fin.isValid())
        return false;
    // Days counted between the calendar dates of the two ends, as a day
    // difference of dates does: a period ending at midnight reaches the next
    // day.
    const QDate premier = std::min(debut, fin).date();
    qint64 n = std::llabs(debut.date().daysTo(fin.date()));
    if (journeeEntiere && n > 0)
        --n;
    const int w = JourSemaineDimanche1(premier);
    return w + n >= 7 || w == 1;
}
