#include "calendar/calendarrecurrenceoptions.h"

namespace {

// Masks of the day combo boxes, by list index.
constexpr std::array<int, 10> masquesParIndex{127, 62, 65, 1, 2, 4, 8, 16, 32, 64};

} // namespace

int index2WhichDayMask(int index)
{
    if (index < 0 || index >= int(masquesParIndex.size()))
        return 0;
    return masquesParIndex[size_t(index)];
}

int WhichDayMask2index(int mask)
{
    const int masque = mask & 127;
    for (size_t i = 0; i < masquesParIndex.size(); ++i) {
        if (masquesParIndex[i] == masque)
            return int(i);
    }
    return 0;
}

void CalendarRecurrenceOptions::setRecurrenceType(int type) { m_type = type; pack(); }
void CalendarRecurrenceOptions::setEveryWeekDay(bool value) { m_everyWeekDay = value; pack(); }
void CalendarRecurrenceOptions::setIntervalDays(int value) { m_intervalDays = value; pack(); }
void CalendarRecurrenceOptions::setIntervalWeeks(int value) { m_intervalWeeks = value; pack(); }
void CalendarRecurrenceOptions::setDayOfWeekMask(int value) { m_dayOfWeekMask = value; pack(); }
void CalendarRecurrenceOptions::setIntervalMonths(int value) { m_intervalMonths = value; pack(); }
void CalendarRecurrenceOptions::setDayOfMonth(int value) { m_dayOfMonth = value; pack(); }
void CalendarRecurrenceOptions::setIntervalMonthsNth(int value) { m_intervalMonthsNth = value; pack(); }
void CalendarRecurrenceOptions::setWhichDay(int value) { m_whichDay = value; pack(); }
void CalendarRecurrenceOptions::setWhichDayMask(int value) { m_whichDayMask = value; pack(); }
void CalendarRecurrenceOptions::setMonthOfYear(int value) { m_monthOfYear = value; pack(); }
void CalendarRecurrenceOptions::setDayOfMonthYearly(int value) { m_dayOfMonthYearly = value; pack(); }
void CalendarRecurrenceOptions::setWhichDayYearly(int value) { m_whichDayYearly = value; pack(); }
void CalendarRecurrenceOptions::setWhichDayMaskYearly(int value) { m_whichDayMaskYearly = value; pack(); }
void CalendarRecurrenceOptions::setMonthOfYearNth(int value) { m_monthOfYearNth = value; pack(); }

void CalendarRecurrenceOptions::setData1(qint32 value) { m_data[0] = value; unpack(); }
void CalendarRecurrenceOptions::setData2(qint32 value) { m_data[1] = value; unpack(); }
void CalendarRecurrenceOptions::setData3(qint32 value) { m_data[2] = value; unpack(); }
void CalendarRecurrenceOptions::setData4(qint32 value) { m_data[3] = value; unpack(); }

void CalendarRecurrenceOptions::setData(qint32 d1, qint32 d2, qint32 d3, qint32 d4)
{
    m_data = {d1, d2, d3, d4};
    unpack();
}

// Data1 is the type; Data2..Data4 the fields of that type in the order of the
// table below. Unused places are 0.
void CalendarRecurrenceOptions::pack()
{
    switch (m_type) {
    case Daily:
        m_data = {m_type, m_intervalDays, m_everyWeekDay ? 1 : 0, 0};
        break;
    case Weekly:
        m_data = {m_type, m_intervalWeeks, m_dayOfWeekMask, 0};
        break;
    case Monthly:
        m_data = {m_type, m_intervalMonths, m_dayOfMonth, 0};
        break;
    case MonthNth:
        m_data = {m_type, m_intervalMonthsNth, m_whichDay, m_whichDayMask};
        break;
    case Yearly:
        m_data = {m_type, m_monthOfYear, m_dayOfMonthYearly, 0};
        break;
    case YearNth:
        m_data = {m_type, m_whichDayYearly, m_whichDayMaskYearly, m_monthOfYearNth};
        break;
    default:
        // An unknown type keeps whatever the store gave, untouched.
        m_data[0] = m_type;
        break;
    }
}

void CalendarRecurrenceOptions::unpack()
{
    m_type = m_data[0];
    switch (m_type) {
    case Daily:
        m_intervalDays = m_data[1];
        m_everyWeekDay = m_data[2] != 0;
        break;
    case Weekly:
        m_intervalWeeks = m_data[1];
        m_dayOfWeekMask = m_data[2];
        break;
    case Monthly:
        m_intervalMonths = m_data[1];
        m_dayOfMonth = m_data[2];
        break;
    case MonthNth:
        m_intervalMonthsNth = m_data[1];
        m_whichDay = m_data[2];
        m_whichDayMask = m_data[3];
        break;
    case Yearly:
        m_monthOfYear = m_data[1];
        m_dayOfMonthYearly = m_data[2];
        break;
    case YearNth:
        m_whichDayYearly = m_data[1];
        m_whichDayMaskYearly = m_data[2];
        m_monthOfYearNth = m_data[3];
        break;
    default:
        break;
    }
}
