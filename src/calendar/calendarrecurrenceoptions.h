#pragma once

#include <QtGlobal>

#include <array>

// Index of the day combo boxes of the recurrence dialog to a day mask, and back.
// Masks have one bit per weekday: Sunday 1, Monday 2, ... Saturday 64.
[[nodiscard]] int index2WhichDayMask(int index);
[[nodiscard]] int WhichDayMask2index(int mask);

// The kind-dependent part of a recurrence pattern. Each recurrence type has its
// own fields; the store sees them only packed into four integers (Data1..Data4).
// Data1 holds the type, Data2..Data4 the fields of that type, so that the fields
// of the current type survive the round trip through the store unchanged.
class CalendarRecurrenceOptions
{
public:
    enum Type {
        Daily = 1,
        Weekly = 2,
        Monthly = 3,
        MonthNth = 4,
        Yearly = 5,
        YearNth = 6,
    };

    // Bits of a day mask.
    enum DayBit {
        Sunday = 1,
        Monday = 2,
        Tuesday = 4,
        Wednesday = 8,
        Thursday = 16,
        Friday = 32,
        Saturday = 64,
        AllDays = 127,
        WorkDays = 62,
        WeekendDays = 65,
    };

    // WhichDay value of the last matching day of the month ("dernier").
    static constexpr int LastWhichDay = 5;

    [[nodiscard]] int RecurrenceType() const { return m_type; }
    void setRecurrenceType(int type);

    // 1: daily
    [[nodiscard]] bool EveryWeekDay() const { return m_everyWeekDay; }
    void setEveryWeekDay(bool value);
    [[nodiscard]] int IntervalDays() const { return m_intervalDays; }
    void setIntervalDays(int value);

    // 2: weekly
    [[nodiscard]] int IntervalWeeks() const { return m_intervalWeeks; }
    void setIntervalWeeks(int value);
    [[nodiscard]] int DayOfWeekMask() const { return m_dayOfWeekMask; }
    void setDayOfWeekMask(int value);

    // 3: monthly on a day of the month
    [[nodiscard]] int IntervalMonths() const { return m_intervalMonths; }
    void setIntervalMonths(int value);
    [[nodiscard]] int DayOfMonth() const { return m_dayOfMonth; }
    void setDayOfMonth(int value);

    // 4: monthly on the nth day
    [[nodiscard]] int IntervalMonthsNth() const { return m_intervalMonthsNth; }
    void setIntervalMonthsNth(int value);
    [[nodiscard]] int WhichDay() const { return m_whichDay; }
    void setWhichDay(int value);
    [[nodiscard]] int WhichDayMask() const { return m_whichDayMask; }
    void setWhichDayMask(int value);

    // 5: yearly on a date
    [[nodiscard]] int MonthOfYear() const { return m_monthOfYear; }
    void setMonthOfYear(int value);
    [[nodiscard]] int DayOfMonthYearly() const { return m_dayOfMonthYearly; }
    void setDayOfMonthYearly(int value);

    // 6: yearly on the nth day of a month
    [[nodiscard]] int WhichDayYearly() const { return m_whichDayYearly; }
    void setWhichDayYearly(int value);
    [[nodiscard]] int WhichDayMaskYearly() const { return m_whichDayMaskYearly; }
    void setWhichDayMaskYearly(int value);
    [[nodiscard]] int MonthOfYearNth() const { return m_monthOfYearNth; }
    void setMonthOfYearNth(int value);

    // Packed form, as the store keeps it. The setters may be called in any order:
    // the fields follow once the four values have been given.
    [[nodiscard]] qint32 Data1() const { return m_data[0]; }
    [[nodiscard]] qint32 Data2() const { return m_data[1]; }
    [[nodiscard]] qint32 Data3() const { return m_data[2]; }
    [[nodiscard]] qint32 Data4() const { return m_data[3]; }
    void setData1(qint32 value);
    void setData2(qint32 value);
    void setData3(qint32 value);
    void setData4(qint32 value);
    void setData(qint32 d1, qint32 d2, qint32 d3, qint32 d4);

    friend bool operator==(const CalendarRecurrenceOptions &, const CalendarRecurrenceOptions &) = default;

private:
    void pack();
    void unpack();

    int m_type = Daily;
    bool m_everyWeekDay = false;
    int m_intervalDays = 1;
    int m_intervalWeeks = 1;
    int m_dayOfWeekMask = Monday;
    int m_intervalMonths = 1;
    int m_dayOfMonth = 1;
    int m_intervalMonthsNth = 1;
    int m_whichDay = 1;
    int m_whichDayMask = AllDays;
    int m_monthOfYear = 1;
    int m_dayOfMonthYearly = 1;
    int m_whichDayYearly = 1;
    int m_whichDayMaskYearly = AllDays;
    int m_monthOfYearNth = 1;

    // Kept apart from the fields: a store row hands the four values one by one,
    // and the type in Data1 may come after the others.
    std::array<qint32, 4> m_data{Daily, 1, 0, 0};
};
