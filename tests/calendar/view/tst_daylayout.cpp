#include "calendar/view/daylayout.h"

#include <QtTest>

// Overlapping appointments of one day column. Cases are written as
// "name start-end" with times h:mm, and the expected places as
// "name column/columns".
class tst_daylayout : public QObject
{
    Q_OBJECT

private:
    static int minutes(const QString &hm)
    {
        const QStringList p = hm.split(u':');
        return p.at(0).toInt() * 60 + p.value(1).toInt();
    }

private Q_SLOTS:
    void places_data()
    {
        QTest::addColumn<QString>("day");
        QTest::addColumn<int>("minimum");
        QTest::addColumn<QString>("expected");

        QTest::newRow("alone") << "A 9:00-10:00" << 15 << "A 0/1";
        QTest::newRow("chain of three") << "A 9:00-10:00, B 9:30-10:30, C 10:00-11:00" << 15 << "A 0/2, B 1/2, C 0/2";
        QTest::newRow("touching is no overlap") << "A 9:00-10:00, B 10:00-11:00" << 15 << "A 0/1, B 0/1";
        QTest::newRow("two clusters") << "A 9:00-10:00, B 9:00-10:00, C 11:00-12:00" << 15 << "A 0/2, B 1/2, C 0/1";
        QTest::newRow("three at once") << "A 9:00-9:30, B 9:00-9:30, C 9:00-9:30" << 15 << "A 0/3, B 1/3, C 2/3";
        QTest::newRow("longer first on a tie") << "A 9:00-9:15, B 9:00-11:00" << 15 << "A 1/2, B 0/2";
        QTest::newRow("long one spans a chain")
            << "L 8:00-12:00, A 8:00-9:00, B 9:00-10:00, C 9:30-10:30" << 15 << "L 0/3, A 1/3, B 1/3, C 2/3";
        QTest::newRow("column reused after a gap in it")
            << "A 9:00-9:30, B 9:00-11:00, C 9:45-10:15" << 15 << "A 1/2, B 0/2, C 1/2";
        QTest::newRow("unsorted input, order kept") << "C 10:00-11:00, A 9:00-10:00, B 9:30-10:30" << 15
                                                   << "C 0/2, A 0/2, B 1/2";
        // A five-minute appointment is drawn for the minimum, and so pushes
        // aside the one starting within it.
        QTest::newRow("short one grows to the minimum") << "A 9:00-9:05, B 9:10-9:30" << 20 << "A 0/2, B 1/2";
        QTest::newRow("short one alone when far enough") << "A 9:00-9:05, B 9:20-9:30" << 20 << "A 0/1, B 0/1";
        QTest::newRow("zero length gets the minimum") << "A 9:00-9:00, B 9:00-9:30" << 10 << "A 1/2, B 0/2";
        QTest::newRow("running past midnight") << "A 23:00-25:00, B 23:30-23:45" << 15 << "A 0/2, B 1/2";
    }
    void places()
    {
        QFETCH(QString, day);
        QFETCH(int, minimum);
        QFETCH(QString, expected);

        QList<DayLayoutItem> items;
        QStringList names;
        for (const QString &entry : day.split(QStringLiteral(", "))) {
            const QStringList parts = entry.split(u' ');
            const QStringList range = parts.at(1).split(u'-');
            items.append({static_cast<int>(names.size()), minutes(range.at(0)), minutes(range.at(1))});
            names.append(parts.at(0));
        }
        const QList<DayLayoutPlace> places = LayoutDayEvents(items, minimum);
        QCOMPARE(places.size(), items.size());
        QStringList got;
        for (const DayLayoutPlace &p : places) {
            got.append(QStringLiteral("%1 %2/%3").arg(names.at(p.id)).arg(p.column).arg(p.columns));
            // What is drawn is never shorter than the minimum nor than the appointment.
            const DayLayoutItem &it = items.at(p.id);
            QCOMPARE(p.shownStart, it.startMinute);
            QCOMPARE(p.shownEnd, std::max(it.endMinute, it.startMinute + minimum));
        }
        QCOMPARE(got.join(QStringLiteral(", ")), expected);

        // No two drawn boxes of one column overlap.
        for (const DayLayoutPlace &a : places) {
            for (const DayLayoutPlace &b : places) {
                if (a.id < b.id && a.column == b.column)
                    QVERIFY2(a.shownEnd <= b.shownStart || b.shownEnd <= a.shownStart,
                             qPrintable(names.at(a.id) + QStringLiteral(" et ") + names.at(b.id)));
            }
        }
    }

    void empty() { QVERIFY(LayoutDayEvents({}, 15).isEmpty()); }

    // A dragged edge: 10:00-10:20 is 600-620. "b" drags the begin, "e" the
    // end; the pointer's minute; the grid step; where the edge lands.
    void resize_data()
    {
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("edge");
        QTest::addColumn<int>("pointer");
        QTest::addColumn<int>("step");
        QTest::addColumn<int>("result");
        QTest::newRow("top grabbed, not moved") << 600 << 620 << "b" << 601 << 30 << 600;
        QTest::newRow("top up a step") << 600 << 620 << "b" << 572 << 30 << 570;
        QTest::newRow("top down: never past the end") << 600 << 620 << "b" << 625 << 30 << 600;
        QTest::newRow("bottom grabbed, not moved") << 600 << 620 << "e" << 618 << 30 << 620;
        QTest::newRow("bottom up shortens nothing below its length") << 600 << 620 << "e" << 605 << 30 << 620;
        QTest::newRow("bottom down to the grid") << 600 << 620 << "e" << 633 << 30 << 630;
        QTest::newRow("hour shortened from the bottom") << 600 << 660 << "e" << 638 << 30 << 630;
        QTest::newRow("hour shortened from the top, 15 min") << 600 << 660 << "b" << 623 << 15 << 630;
        QTest::newRow("top shortened to a step, 15 min") << 600 << 660 << "b" << 655 << 15 << 645;
        QTest::newRow("end off the grid kept, 15 min") << 600 << 620 << "e" << 622 << 15 << 620;
    }
    void resize()
    {
        QFETCH(int, start);
        QFETCH(int, end);
        QFETCH(QString, edge);
        QFETCH(int, pointer);
        QFETCH(int, step);
        QFETCH(int, result);
        QCOMPARE(ResizedEdgeMinute(start, end, edge == u'b', pointer, step), result);
    }
};

QTEST_GUILESS_MAIN(tst_daylayout)
#include "tst_daylayout.moc"
