// Occurrences of 500 series begun over the last ten years, for one work week:
// the first time (nothing kept yet) and again, as the calendar asks every ten
// seconds. Run with TZ=Europe/Paris for figures comparable from one machine to
// another; the argument "counted" makes every third series end after a count.

#include "calendar/calendarevent.h"
#include "calendar/recurrenceexpander.h"
#include "shell/base/processus.h"

#include <QElapsedTimer>

#include <cstdio>
#include <cstring>

int main(int argc, char **argv)
{
    PreparerProcessus();
    const bool comptees = argc > 1 && std::strcmp(argv[1], "counted") == 0;
    const QList<QList<int>> sortes{{1, 1, 0},     {1, 1, 1},       {2, 1, 2 | 8 | 32}, {3, 1, 31},
                                   {4, 1, 5, 62}, {5, 2, 29},      {6, 2, 16, 5}};
    QList<CalendarEventPtr> masters;
    for (int i = 0; i < 500; ++i) {
        auto master = CalendarEvent::create(i + 1);
        const QDate jour = QDate(2016, 1, 4).addDays(i * 7);
        master->setStartDateTime(QDateTime(jour, QTime(8 + i % 10, 0)));
        master->setEndDateTime(QDateTime(jour, QTime(8 + i % 10, 30)));
        const CalendarRecurrencePatternPtr pattern = master->CreateRecurrence();
        const QList<int> &o = sortes.at(i % sortes.size());
        pattern->Options().setData(o.value(0), o.value(1), o.value(2), o.value(3));
        if (comptees && i % 3 == 1) {
            pattern->setEndMethod(CalendarRecurrencePattern::EndAfterOccurrencesCount);
            pattern->setEndAfterOccurrences(4000);
        }
        masters.append(master);
    }

    const QDate lundi(2026, 3, 2);
    const QDate vendredi(2026, 3, 6);
    QElapsedTimer chrono;
    chrono.start();
    qsizetype premiere = 0;
    for (const CalendarEventPtr &m : masters)
        premiere += ExpandOccurrences(m, lundi, vendredi).size();
    const double msPremiere = double(chrono.nsecsElapsed()) / 1e6;

    constexpr int tours = 20;
    chrono.restart();
    qsizetype ensuite = 0;
    for (int t = 0; t < tours; ++t) {
        for (const CalendarEventPtr &m : masters)
            ensuite += ExpandOccurrences(m, lundi, vendredi).size();
    }
    const double msEnsuite = double(chrono.nsecsElapsed()) / 1e6 / tours;

    std::printf("500 series%s, week 2026-03-02..06: first %.2f ms (%lld occurrences), again %.2f ms (mean of %d)\n",
                comptees ? " (a third counted)" : "", msPremiere, static_cast<long long>(premiere), msEnsuite,
                tours);
    return ensuite == premiere * tours ? 0 : 1;
}
