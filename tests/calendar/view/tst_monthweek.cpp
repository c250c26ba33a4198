#include "calendar/calendardataprovider.h"
#include "calendar/view/calendarview.h"
#include "calendar/view/datepicker.h"
#include "calendar/view/monthlayout.h"
#include "calendar/view/monthpane.h"
#include "calendar/view/weekpane.h"
#include "shell/base/horloge.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTextCharFormat>
#include <QToolButton>
#include <QtTest>

namespace {

const QDate lundi(2026, 11, 2);

// A drawn appointment: "A 0-2" runs from day 0 10:00 to day 2 11:00,
// "B 1@9" is day 1 at 09:00 for half an hour, "C 2j" is all day 2 ("C 2-3j"
// days 2 and 3), "D 4m" runs from day 4 22:00 to midnight, "E 3-4m" from
// day 3 10:00 to the midnight after day 4.
MonthLayoutItem dessin(const QString &spec, int id)
{
    static const QRegularExpression re(QStringLiteral(R"(^\w (\d+)(?:-(\d+))?(j|m|@(\d+))?$)"));
    const QRegularExpressionMatch m = re.match(spec);
    Q_ASSERT(m.hasMatch());
    const QDate a = lundi.addDays(m.captured(1).toInt());
    const QDate b = m.captured(2).isEmpty() ? a : lundi.addDays(m.captured(2).toInt());
    MonthLayoutItem it;
    it.id = id;
    if (m.captured(3) == u'j') {
        it.allDay = true;
        it.start = QDateTime(a, QTime(0, 0));
        it.end = QDateTime(b.addDays(1), QTime(0, 0));
    } else if (m.captured(3) == u'm') {
        it.start = QDateTime(a, QTime(a == b ? 22 : 10, 0));
        it.end = QDateTime(b.addDays(1), QTime(0, 0));
    } else if (!m.captured(4).isEmpty()) {
        it.start = QDateTime(a, QTime(m.captured(4).toInt(), 0));
        it.end = it.start.addSecs(1800);
    } else {
        it.start = QDateTime(a, QTime(10, 0));
        it.end = QDateTime(b, QTime(11, 0));
    }
    return it;
}

QString connexion(const QTemporaryDir &dir)
{
    return QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source='") + dir.path() + QStringLiteral("/Events.mdb';");
}

// A view over a new Events.mdb of a temporary folder.
struct Agenda
{
    QTemporaryDir dir;
    CalendarDataProvider provider;
    CalendarView view;

    Agenda()
    {
        QVERIFY(dir.isValid());
        QVERIFY(provider.SetDataProvider(connexion(dir)));
        QVERIFY(provider.Open() || provider.Create());
        view.setDataProvider(&provider);
        view.setLabels({{0, QStringLiteral("Aucun"), 0xFFFFFF}, {3, QStringLiteral("Praticien 1"), 0x3C8CE6}});
        view.resize(980, 720);
        view.show();
    }
    CalendarEventPtr ajouter(const QDateTime &debut, const QDateTime &fin, const QString &sujet, bool journee = false)
    {
        CalendarEventPtr e = provider.CreateNewEvent(debut, fin);
        e->setSubject(sujet);
        e->setIsAllDayEvent(journee);
        e->setLabelID(3);
        if (!provider.AddEvent(e))
            return {};
        return e;
    }
    template<typename Pane>
    Pane *pane() const
    {
        const QList<Pane *> panes = view.findChildren<Pane *>();
        return panes.size() == 1 ? panes.first() : nullptr;
    }
};

} // namespace

class tst_monthweek : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { Horloge::liberer(); }

    // Lanes drawn one string per line of the boxes, one character per day
    // (a blank between weeks): the letter of the appointment, capital for a
    // bar, small for a timed line, "." for an empty line.
    void lanes_data()
    {
        QTest::addColumn<int>("jours");
        QTest::addColumn<int>("parRangee");
        QTest::addColumn<QString>("lignes");   // lines per box: one digit, or one per day
        QTest::addColumn<QStringList>("rdv");
        QTest::addColumn<QStringList>("attendu");
        QTest::addColumn<QString>("debordement");

        QTest::newRow("bars first, single days in the free lanes")
            << 7 << 7 << "3" << QStringList{"A 0-2", "B 1@9", "C 2j", "D 0@8", "Z 8@9"}
            << QStringList{"AAA....", "dbC....", "......."} << "0000000";
        QTest::newRow("a bar keeps its lane across the row")
            << 7 << 7 << "2" << QStringList{"A 1-3", "B 0-1", "C 3-5"} << QStringList{"BB.CCC.", ".AAA..."} << "0000000";
        QTest::newRow("the longer of two bars of one day on top")
            << 7 << 7 << "2" << QStringList{"A 0-1", "B 0-4"} << QStringList{"BBBBB..", "AA....."} << "0000000";
        QTest::newRow("timed lines by start")
            << 7 << 7 << "3" << QStringList{"C 3@11", "A 3@8", "B 3@9"} << QStringList{"...a...", "...b...", "...c..."}
            << "0000000";
        QTest::newRow("a bar starts again in the next week")
            << 14 << 7 << "2" << QStringList{"A 5-8", "B 7@9", "C 8@9", "D 8@10"}
            << QStringList{".....AA AA.....", "....... bc....."} << "00000000100000";
        QTest::newRow("more than fits is counted per day")
            << 7 << 7 << "2" << QStringList{"A 0-2", "B 1@8", "C 1@9", "D 1@10"} << QStringList{"AAA....", ".b....."}
            << "0200000";
        QTest::newRow("a bar below the last line is left out on all its days")
            << 7 << 7 << "1" << QStringList{"A 0-1", "B 1-2"} << QStringList{"AA....."} << "0110000";
        QTest::newRow("ending at midnight stays on its own day")
            << 7 << 7 << "1" << QStringList{"D 2m", "E 3-4m", "C 5j", "F 6-6j"} << QStringList{"..dEECF"} << "0000000";
        QTest::newRow("week boxes: each day alone, weekend boxes smaller")
            << 7 << 1 << "3333311" << QStringList{"A 4-6", "B 5@9", "C 3@9", "D 3-4"}
            << QStringList{"...DDAA", "...cA..", "......."} << "0000010";
    }
    void lanes()
    {
        QFETCH(int, jours);
        QFETCH(int, parRangee);
        QFETCH(QString, lignes);
        QFETCH(QStringList, rdv);
        QFETCH(QStringList, attendu);
        QFETCH(QString, debordement);

        QList<QDate> days;
        for (int i = 0; i < jours; ++i)
            days.append(lundi.addDays(i));
        QList<MonthLayoutItem> items;
        for (const QString &s : std::as_const(rdv))
            items.append(dessin(s, int(items.size()) + 100));
        QList<int> capacite;
        for (const QChar c : std::as_const(lignes))
            capacite.append(c.digitValue());

        const QList<MonthLayoutDay> layout = LayoutMonthDays(days, items, capacite, parRangee);
        QCOMPARE(layout.size(), jours);
        const int lanes = *std::max_element(capacite.begin(), capacite.end());
        QStringList dessine(lanes);
        QString deborde;
        for (int d = 0; d < jours; ++d) {
            if (d > 0 && d % 7 == 0) {
                for (QString &l : dessine)
                    l += u' ';
            }
            QCOMPARE(layout.at(d).day, days.at(d));
            for (int lane = 0; lane < lanes; ++lane) {
                QChar c = u'.';
                for (const MonthLayoutLine &l : layout.at(d).lines) {
                    if (l.lane != lane)
                        continue;
                    QVERIFY2(c == u'.', "two lines in one lane");
                    c = rdv.at(l.item).at(0);
                    if (!l.bar)
                        c = c.toLower();
                }
                dessine[lane] += c;
            }
            deborde += QString::number(layout.at(d).overflow);
        }
        QCOMPARE(dessine, attendu);
        QCOMPARE(deborde, debordement);
    }

    // The pieces of a bar cut by the end of a week: the first piece of each
    // row carries the length of the bar in that row, and every piece says on
    // which sides it goes on.
    void barPieces()
    {
        QList<QDate> days;
        for (int i = 0; i < 14; ++i)
            days.append(lundi.addDays(i));
        const QList<MonthLayoutDay> layout = LayoutMonthDays(days, {dessin(QStringLiteral("A 4-8"), 1)}, {3});
        struct Piece
        {
            int day, span;
            bool before, after;
        };
        const QList<Piece> expected{{4, 3, false, true}, {5, 0, true, true}, {6, 0, true, true}, {7, 2, true, true},
                                    {8, 0, true, false}};
        int pieces = 0;
        for (const MonthLayoutDay &d : layout)
            pieces += int(d.lines.size());
        QCOMPARE(pieces, expected.size());
        for (const Piece &p : expected) {
            QCOMPARE(layout.at(p.day).lines.size(), 1);
            const MonthLayoutLine &l = layout.at(p.day).lines.first();
            QVERIFY(l.bar);
            QCOMPARE(l.lane, 0);
            QCOMPARE(l.spanInRow, p.span);
            QCOMPARE(l.continuesBefore, p.before);
            QCOMPARE(l.continuesAfter, p.after);
        }
    }

    // The work week follows the work days and the first day of the week.
    void workWeek_data()
    {
        QTest::addColumn<int>("mask");
        QTest::addColumn<int>("first");
        QTest::addColumn<QDate>("anchor");
        QTest::addColumn<QString>("days");
        QTest::newRow("default, from a Sunday") << 0x3E << 2 << QDate(2026, 11, 8) << "2,3,4,5,6";
        QTest::newRow("Monday to Thursday and Saturday") << 0x5E << 2 << QDate(2026, 11, 4) << "2,3,4,5,7";
        QTest::newRow("week from Sunday, with it") << 0x3F << 1 << QDate(2026, 11, 8) << "8,9,10,11,12,13";
        QTest::newRow("empty mask counts as the default") << 0 << 2 << QDate(2026, 11, 6) << "2,3,4,5,6";
    }
    void workWeek()
    {
        QFETCH(int, mask);
        QFETCH(int, first);
        QFETCH(QDate, anchor);
        QFETCH(QString, days);
        Agenda a;
        CalendarOptions o = a.view.options();
        o.workDaysMask = mask;
        o.firstDayOfWeek = first;
        a.view.setOptions(o);
        a.view.setViewType(CalendarViewType::WorkWeek);
        a.view.ShowDay(anchor);
        QStringList shown;
        for (int i = 0; i < a.view.shownDaysCount(); ++i)
            shown << QString::number(a.view.shownDay(i).day());
        QCOMPARE(shown.join(u','), days);
    }

    void monthDays_data()
    {
        QTest::addColumn<QDate>("anchor");
        QTest::addColumn<QDate>("first");
        QTest::addColumn<QDate>("last");
        QTest::addColumn<QStringList>("labels"); // of the first, the 1st of the month, the last box
        QTest::newRow("starts on Sunday, ends on Monday")
            << QDate(2026, 11, 17) << QDate(2026, 10, 26) << QDate(2026, 12, 6) << QStringList{"26", "nov. 1", "6"};
        QTest::newRow("February 2027 in four weeks")
            << QDate(2027, 2, 28) << QDate(2027, 2, 1) << QDate(2027, 2, 28) << QStringList{"févr. 1", "févr. 1", "28"};
        QTest::newRow("January, from the last days of December")
            << QDate(2027, 1, 1) << QDate(2026, 12, 28) << QDate(2027, 1, 31)
            << QStringList{"28", "janvier 1", "31"};
    }
    void monthDays()
    {
        QFETCH(QDate, anchor);
        QFETCH(QDate, first);
        QFETCH(QDate, last);
        QFETCH(QStringList, labels);
        Agenda a;
        a.view.setViewType(CalendarViewType::Month);
        a.view.ShowDay(anchor);
        auto *pane = a.pane<MonthPane>();
        QVERIFY(pane);
        QCOMPARE(a.view.shownDaysCount(), first.daysTo(last) + 1);
        QCOMPARE(a.view.shownDaysCount() % 7, 0);
        QCOMPARE(a.view.shownDay(0), first);
        QCOMPARE(a.view.shownDay(a.view.shownDaysCount() - 1), last);
        QCOMPARE(pane->days().size(), a.view.shownDaysCount());
        QCOMPARE(pane->shownMonth(), anchor.month());
        const auto &boxes = pane->boxes();
        const int firstOfMonth = int(first.daysTo(QDate(anchor.year(), anchor.month(), 1)));
        QCOMPARE((QStringList{boxes.first().headerText, boxes.at(firstOfMonth).headerText, boxes.last().headerText}),
                 labels);
        // Seven boxes a row, rows of one height, the grid filling the pane.
        QCOMPARE(boxes.at(7).rect.left(), boxes.at(0).rect.left());
        QVERIFY(boxes.at(7).rect.top() > boxes.at(0).rect.bottom());
        QCOMPARE(boxes.at(6).rect.right(), pane->width() - 1);
        QCOMPARE(boxes.last().rect.bottom(), pane->height() - 1);
    }

    // The times written on a line, by the week and month views' options:
    // "c" clock (no effect on the text), "e" end time, "S"/"E" start/end on
    // every day. Appointments drawn as above; the day counted from Monday.
    void lineTimes_data()
    {
        QTest::addColumn<QString>("rdv");
        QTest::addColumn<int>("day");
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("times");
        QTest::newRow("one day") << "B 1@9" << 1 << "" << "09:00";
        QTest::newRow("one day, end") << "B 1@9" << 1 << "ce" << "09:00-09:30";
        QTest::newRow("middle day") << "A 0-2" << 1 << "e" << "";
        QTest::newRow("middle day, both always") << "A 0-2" << 1 << "SE" << "10:00-11:00";
        QTest::newRow("last day, end") << "A 0-2" << 2 << "e" << "-11:00";
        QTest::newRow("first day, end") << "A 0-2" << 0 << "e" << "10:00";
        QTest::newRow("until midnight") << "D 4m" << 4 << "e" << "22:00-00:00";
        QTest::newRow("all day") << "C 2j" << 2 << "eSE" << "";
    }
    void lineTimes()
    {
        QFETCH(QString, rdv);
        QFETCH(int, day);
        QFETCH(QString, options);
        QFETCH(QString, times);
        const MonthLayoutItem it = dessin(rdv, 1);
        const CalendarEventPtr e = CalendarEvent::create();
        e->setStartDateTime(it.start);
        e->setEndDateTime(it.end);
        e->setIsAllDayEvent(it.allDay);
        const DayBoxTimes o{options.contains(u'c'), options.contains(u'e'), options.contains(u'S'), options.contains(u'E')};
        QCOMPARE(DayBoxPane::timesText(LineTimesForDay(*e, lundi.addDays(day), o)), times);
    }

    // Two weeks from the anchor's week, Saturday over Sunday in one column:
    // a bar from Friday to Sunday is drawn on each of its three boxes.
    void monthWeeksAndWeekend()
    {
        Agenda a;
        CalendarOptions o = a.view.options();
        o.monthWeeksCount = 2;
        o.compressWeekendDays = true;
        a.view.setOptions(o);
        a.view.setViewType(CalendarViewType::Month);
        a.view.ShowDay(QDate(2026, 11, 18));
        QCOMPARE(a.view.shownDaysCount(), 14);
        QCOMPARE(a.view.shownDay(0), QDate(2026, 11, 16));
        CalendarEventPtr congres = a.ajouter(QDateTime(QDate(2026, 11, 20), QTime(0, 0)),
                                             QDateTime(QDate(2026, 11, 23), QTime(0, 0)), QStringLiteral("Congrès"), true);
        QVERIFY(congres);
        a.view.Populate();
        auto *pane = a.pane<MonthPane>();
        QVERIFY(pane);
        const auto &b = pane->boxes();
        QCOMPARE(b.at(5).rect.left(), b.at(6).rect.left());
        QVERIFY(b.at(6).rect.top() > b.at(5).rect.top());
        QCOMPARE(b.at(6).rect.right(), pane->width() - 1);
        const QImage image = pane->grab().toImage();
        for (int day : {20, 21, 22}) {
            const QRect r = pane->eventRect(congres, QDate(2026, 11, day));
            QVERIFY2(!r.isEmpty(), qPrintable(QString::number(day)));
            QCOMPARE(image.pixelColor(r.right() - 3, r.center().y()), a.view.labelColor(3));
        }
    }

    // A click on a box selects its day, a click on a line the appointment; a
    // double click is handed to the main window; lines that do not fit are
    // counted.
    void monthHitAndClick()
    {
        Horloge::Fixee horloge(QDateTime(QDate(2026, 11, 18), QTime(9, 0)));
        Agenda a;
        const QDate jour(2026, 11, 18);
        CalendarEventPtr rdv = a.ajouter(QDateTime(jour, QTime(9, 30)), QDateTime(jour, QTime(10, 0)),
                                         QStringLiteral("DUPONT Jeanne"));
        CalendarEventPtr conges = a.ajouter(QDateTime(QDate(2026, 11, 26), QTime(0, 0)),
                                            QDateTime(QDate(2026, 12, 2), QTime(0, 0)), QStringLiteral("Congés"), true);
        QVERIFY(rdv && conges);
        for (int h = 11; h < 19; ++h)
            QVERIFY(a.ajouter(QDateTime(QDate(2026, 11, 20), QTime(h, 0)), QDateTime(QDate(2026, 11, 20), QTime(h, 20)),
                              QStringLiteral("Patient %1").arg(h)));
        a.view.setViewType(CalendarViewType::Month);
        a.view.ShowDay(jour);
        a.view.Populate();
        auto *pane = a.pane<MonthPane>();
        QVERIFY(pane && pane->isVisible());

        const QRect line = pane->eventRect(rdv, jour);
        QVERIFY(!line.isEmpty());
        CalendarHit hit = a.view.hitTest(pane->mapTo(&a.view, line.center()));
        QCOMPARE(hit.area, int(HitEvent));
        QVERIFY(hit.event);
        QCOMPARE(hit.event->EventID(), rdv->EventID());
        QCOMPARE(hit.time, QDateTime(jour, QTime(0, 0)));

        // The holiday bar runs over the end of the week into the next row.
        for (const QDate &d : {QDate(2026, 11, 26), QDate(2026, 11, 29), QDate(2026, 11, 30), QDate(2026, 12, 1)})
            QVERIFY2(!pane->eventRect(conges, d).isEmpty(), qPrintable(d.toString()));
        QVERIFY(pane->eventRect(conges, QDate(2026, 12, 2)).isEmpty());
        QCOMPARE(pane->eventRect(conges, QDate(2026, 11, 27)).top(), pane->eventRect(conges, QDate(2026, 11, 26)).top());

        // Eight appointments in one box: some lines are left out and counted.
        const int more = pane->overflow(QDate(2026, 11, 20));
        QVERIFY(more > 0 && more < 8);
        int shown = 0;
        for (const CalendarEventPtr &e : a.view.shownEvents())
            shown += pane->eventRect(e, QDate(2026, 11, 20)).isEmpty() ? 0 : 1;
        QCOMPARE(shown + more, 8);

        // An empty part of a box.
        const DayBoxPane::Box &box = pane->boxes().at(pane->days().indexOf(QDate(2026, 11, 24)));
        const QPoint empty = box.body.bottomRight() - QPoint(4, 4);
        hit = pane->hitTest(empty);
        QCOMPARE(hit.area, int(HitMonthDay));
        QVERIFY(!hit.event);
        QCOMPARE(hit.time, QDateTime(QDate(2026, 11, 24), QTime(0, 0)));
        QVERIFY(hit.allDay);

        QTest::mouseClick(pane, Qt::LeftButton, {}, line.center());
        QCOMPARE(a.view.selectedEvents().size(), 1);
        QCOMPARE(a.view.selectedEvents().first()->EventID(), rdv->EventID());
        QTest::mouseClick(pane, Qt::LeftButton, {}, empty);
        QVERIFY(a.view.selectedEvents().isEmpty());
        QCOMPARE(a.view.selection(), (CalendarSelection{QDateTime(QDate(2026, 11, 24), QTime(0, 0)),
                                                        QDateTime(QDate(2026, 11, 25), QTime(0, 0)), true}));

        QSignalSpy doubles(&a.view, &CalendarView::doubleClicked);
        QSignalSpy rights(&a.view, &CalendarView::rightClicked);
        QTest::mouseDClick(pane, Qt::LeftButton, {}, line.center());
        QCOMPARE(doubles.count(), 1);
        hit = a.view.hitTest(doubles.first().first().toPoint());
        QVERIFY(hit.event);
        QCOMPARE(hit.event->EventID(), rdv->EventID());
        QTest::mouseClick(pane, Qt::RightButton, {}, empty);
        QCOMPARE(rights.count(), 1);
        QCOMPARE(a.view.hitTest(rights.first().first().toPoint()).area, int(HitMonthDay));
    }

    void weekBoxes_data()
    {
        QTest::addColumn<QDate>("anchor");
        QTest::addColumn<QStringList>("headers");
        QTest::newRow("Thursday in November")
            << QDate(2026, 11, 26)
            << QStringList{"lun., 23 novembre", "mar., 24 novembre", "mer., 25 novembre", "jeu., 26 novembre",
                           "ven., 27 novembre", "sam., 28 novembre", "dim., 29 novembre"};
        QTest::newRow("Sunday, across the new year")
            << QDate(2027, 1, 3)
            << QStringList{"lun., 28 décembre", "mar., 29 décembre", "mer., 30 décembre", "jeu., 31 décembre",
                           "ven., 01 janvier", "sam., 02 janvier", "dim., 03 janvier"};
    }
    void weekBoxes()
    {
        QFETCH(QDate, anchor);
        QFETCH(QStringList, headers);
        Agenda a;
        const QDate dimanche = anchor.addDays(7 - anchor.dayOfWeek());
        CalendarEventPtr rdv = a.ajouter(QDateTime(dimanche, QTime(10, 0)), QDateTime(dimanche, QTime(10, 30)),
                                         QStringLiteral("Garde"));
        QVERIFY(rdv);
        a.view.setViewType(CalendarViewType::Week);
        a.view.ShowDay(anchor);
        a.view.Populate();
        auto *pane = a.pane<WeekPane>();
        QVERIFY(pane && pane->isVisible());
        QCOMPARE(a.view.shownDaysCount(), 7);
        QCOMPARE(a.view.shownDay(0).dayOfWeek(), 1);
        QStringList texts;
        for (const DayBoxPane::Box &b : pane->boxes())
            texts << b.headerText;
        QCOMPARE(texts, headers);

        // Monday to Wednesday on the left, the rest on the right; Saturday
        // and Sunday share the height of one box.
        const auto &b = pane->boxes();
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(b.at(i).rect.left(), 0);
            QCOMPARE(b.at(i + 3).rect.left(), b.at(0).rect.right() + 1);
            QCOMPARE(b.at(i + 3).rect.right(), pane->width() - 1);
        }
        QCOMPARE(b.at(3).rect.top(), b.at(0).rect.top());
        QCOMPARE(b.at(5).rect.left(), b.at(6).rect.left());
        QCOMPARE(b.at(5).rect.top(), b.at(4).rect.bottom() + 1);
        QCOMPARE(b.at(6).rect.top(), b.at(5).rect.bottom() + 1);
        QCOMPARE(b.at(6).rect.bottom(), b.at(2).rect.bottom());
        QVERIFY(qAbs(b.at(5).rect.height() * 2 - b.at(4).rect.height()) <= 2);

        // The Sunday appointment is hit in the small box, the rest of the
        // box is the day.
        const QRect line = pane->eventRect(rdv, dimanche);
        QVERIFY(b.at(6).body.contains(line.center()));
        CalendarHit hit = pane->hitTest(line.center());
        QCOMPARE(hit.area, int(HitEvent));
        QCOMPARE(hit.event->EventID(), rdv->EventID());
        hit = pane->hitTest(b.at(6).header.center());
        QCOMPARE(hit.area, int(HitWeekDay));
        QCOMPARE(hit.time, QDateTime(dimanche, QTime(0, 0)));
        QVERIFY(!hit.event);
    }

    // The wheel turns the month or the week when scrolling is on.
    void wheel_data()
    {
        QTest::addColumn<bool>("month");
        QTest::addColumn<bool>("scrolling");
        QTest::addColumn<int>("delta");
        QTest::addColumn<QDate>("first");
        QTest::newRow("month down") << true << true << -120 << QDate(2026, 10, 26);
        QTest::newRow("month up") << true << true << 120 << QDate(2026, 8, 31);
        QTest::newRow("month, scrolling off") << true << false << -120 << QDate(2026, 9, 28);
        QTest::newRow("week down") << false << true << -120 << QDate(2026, 10, 19);
        QTest::newRow("week, scrolling off") << false << false << 120 << QDate(2026, 10, 12);
    }
    void wheel()
    {
        QFETCH(bool, month);
        QFETCH(bool, scrolling);
        QFETCH(int, delta);
        QFETCH(QDate, first);
        Agenda a;
        a.view.setViewType(month ? CalendarViewType::Month : CalendarViewType::Week);
        a.view.setScrolling(true, true, month || scrolling, !month || scrolling);
        a.view.ShowDay(QDate(2026, 10, 15));
        QWidget *pane = month ? static_cast<QWidget *>(a.pane<MonthPane>()) : a.pane<WeekPane>();
        QVERIFY(pane);
        const QPointF at(pane->width() / 2, pane->height() / 2);
        QWheelEvent ev(at, pane->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton, Qt::NoModifier,
                       Qt::NoScrollPhase, false);
        QApplication::sendEvent(pane, &ev);
        QCOMPARE(a.view.shownDay(0), first);
    }

    // The picker follows the view, drives it without echo, and marks the
    // days with appointments in bold.
    void picker()
    {
        Horloge::Fixee horloge(QDateTime(QDate(2026, 11, 23), QTime(9, 0)));
        Agenda a;
        QVERIFY(a.ajouter(QDateTime(QDate(2026, 12, 15), QTime(14, 0)), QDateTime(QDate(2026, 12, 15), QTime(14, 30)),
                          QStringLiteral("MARTIN Paul")));
        QVERIFY(a.ajouter(QDateTime(QDate(2026, 11, 30), QTime(0, 0)), QDateTime(QDate(2026, 12, 3), QTime(0, 0)),
                          QStringLiteral("Formation"), true));
        a.view.setViewType(CalendarViewType::Week);
        DatePicker picker;
        picker.AttachToCalendar(&a.view);
        picker.show();

        a.view.ShowDay(QDate(2026, 11, 26));
        QCOMPARE(picker.selectedDate(), QDate(2026, 11, 26));
        QCOMPARE(picker.monthShown(), 11);
        for (const QDate &d : {QDate(2026, 11, 23), QDate(2026, 11, 29)})
            QVERIFY(picker.dateTextFormat(d).background().style() != Qt::NoBrush);
        QCOMPARE(picker.dateTextFormat(QDate(2026, 11, 30)).background().style(), Qt::NoBrush);
        QCOMPARE(picker.dateTextFormat(QDate(2026, 11, 30)).fontWeight(), int(QFont::Bold));
        auto *mois = picker.findChild<QToolButton *>(QStringLiteral("qt_calendar_monthbutton"));
        QVERIFY(mois);
        QCOMPARE(mois->text(), QStringLiteral("novembre"));

        // A day chosen in the picker brings its week on show, once.
        QSignalSpy vues(&a.view, &CalendarView::viewChanged);
        picker.setSelectedDate(QDate(2026, 12, 10));
        QCOMPARE(vues.count(), 1);
        QCOMPARE(a.view.shownDay(0), QDate(2026, 12, 7));
        QCOMPARE(picker.selectedDate(), QDate(2026, 12, 10));
        QCOMPARE(picker.monthShown(), 12);

        // December read: the 15th bold, the 16th not, the training bold on
        // its days in December only up to the midnight it ends on.
        QCOMPARE(picker.dateTextFormat(QDate(2026, 12, 15)).fontWeight(), int(QFont::Bold));
        QVERIFY(picker.dateTextFormat(QDate(2026, 12, 16)).fontWeight() != int(QFont::Bold));
        QCOMPARE(picker.busyDays(), (QSet<QDate>{QDate(2026, 12, 1), QDate(2026, 12, 2), QDate(2026, 12, 15)}));

        // A new appointment added through the store shows at once.
        QVERIFY(a.ajouter(QDateTime(QDate(2026, 12, 16), QTime(8, 0)), QDateTime(QDate(2026, 12, 16), QTime(8, 30)),
                          QStringLiteral("LEROY Anne")));
        QCOMPARE(picker.dateTextFormat(QDate(2026, 12, 16)).fontWeight(), int(QFont::Bold));

        // The month view is followed on the day it was brought to, not on the
        // first shown day of the month before.
        a.view.setViewType(CalendarViewType::Month);
        a.view.ShowDay(QDate(2027, 2, 10));
        QCOMPARE(picker.selectedDate(), QDate(2027, 2, 10));
        QCOMPARE(vues.count(), 3);
    }
};

QTEST_MAIN(tst_monthweek)
#include "tst_monthweek.moc"
