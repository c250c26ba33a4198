#include "calendar/calendarstore.h"

#include <QRegularExpression>
#include <QSet>

void CalendarStore::DoRetrieveRangeEvents(const QDate &first, const QDate &last, QList<CalendarEventPtr> &events)
{
    QSet<int> vus;
    for (QDate d = first; d <= last; d = d.addDays(1)) {
        QList<CalendarEventPtr> jour;
        DoRetrieveDayEvents(d, jour);
        for (const CalendarEventPtr &e : std::as_const(jour)) {
            if (!vus.contains(e->EventID())) {
                vus.insert(e->EventID());
                events.append(e);
            }
        }
    }
}

QHash<int, CalendarRecurrencePatternPtr> CalendarStore::DoReadRPatterns(const QList<int> &patternIds)
{
    QHash<int, CalendarRecurrencePatternPtr> lus;
    for (const int id : patternIds) {
        if (CalendarRecurrencePatternPtr p = DoReadRPattern(id))
            lus.insert(id, p);
    }
    return lus;
}

QString SourceDeConnexion(const QString &connection)
{
    static const QRegularExpression avecQuotes(QStringLiteral("Data Source\\s*=\\s*'([^']*)'"),
                                               QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression sansQuotes(QStringLiteral("Data Source\\s*=\\s*([^;]*)"),
                                               QRegularExpression::CaseInsensitiveOption);
    QRegularExpressionMatch m = avecQuotes.match(connection);
    if (!m.hasMatch())
        m = sansQuotes.match(connection);
    return m.hasMatch() ? m.captured(1).trimmed() : QString();
}
