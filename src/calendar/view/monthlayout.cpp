#include "calendar/view/monthlayout.h"

#include <algorithm>
#include <vector>

QDate MonthLayoutFirstDay(const MonthLayoutItem &item) { return item.start.date(); }

QDate MonthLayoutLastDay(const MonthLayoutItem &item)
{
    const QDate first = item.start.date();
    if (!item.end.isValid() || item.end <= item.start)
        return first;
    QDate last = item.end.date();
    if (item.end.time() == QTime(0, 0) && last > first)
        last = last.addDays(-1);
    return last;
}

namespace {

struct Placed
{
    int item;
    QDate first;
    QDate last;
    bool bar;
};

// Lowest lane free in every one of the given day slots.
int freeLane(const std::vector<std::vector<bool>> &used, int from, int to)
{
    for (int lane = 0;; ++lane) {
        bool free = true;
        for (int d = from; d <= to && free; ++d)
            free = lane >= int(used[d].size()) || !used[d][lane];
        if (free)
            return lane;
    }
}

void take(std::vector<bool> &lanes, int lane)
{
    if (int(lanes.size()) <= lane)
        lanes.resize(lane + 1, false);
    lanes[lane] = true;
}

} // namespace

QList<MonthLayoutDay> LayoutMonthDays(const QList<QDate> &days, const QList<MonthLayoutItem> &items,
                                      const QList<int> &linesPerDay, int daysPerRow)
{
    QList<MonthLayoutDay> result(days.size());
    for (int i = 0; i < days.size(); ++i)
        result[i].day = days.at(i);
    if (days.isEmpty())
        return result;
    daysPerRow = std::max(1, daysPerRow);

    std::vector<Placed> placed;
    for (int i = 0; i < items.size(); ++i) {
        const MonthLayoutItem &it = items.at(i);
        if (!it.start.isValid())
            continue;
        const QDate first = MonthLayoutFirstDay(it);
        const QDate last = MonthLayoutLastDay(it);
        placed.push_back({i, first, last, it.allDay || last > first});
    }
    // Bars: earlier first, then the longer, so that long bars stay on top.
    // Single days: by start, then end.
    std::stable_sort(placed.begin(), placed.end(), [&](const Placed &a, const Placed &b) {
        if (a.bar != b.bar)
            return a.bar;
        if (a.first != b.first)
            return a.first < b.first;
        if (a.bar && a.last != b.last)
            return a.last > b.last;
        const MonthLayoutItem &x = items.at(a.item);
        const MonthLayoutItem &y = items.at(b.item);
        if (x.start != y.start)
            return x.start < y.start;
        return x.end < y.end;
    });

    auto capacity = [&](int d) {
        if (linesPerDay.isEmpty())
            return 0;
        return std::max(0, linesPerDay.size() == 1 ? linesPerDay.first() : linesPerDay.value(d, 0));
    };

    for (int rowStart = 0; rowStart < days.size(); rowStart += daysPerRow) {
        const int rowEnd = std::min<int>(rowStart + daysPerRow, days.size()) - 1;
        const int n = rowEnd - rowStart + 1;
        std::vector<std::vector<bool>> used(n);
        // Lane of each placed item on each day of the row (-1: not there).
        for (const Placed &p : placed) {
            int from = -1;
            int to = -1;
            for (int d = 0; d < n; ++d) {
                const QDate day = days.at(rowStart + d);
                if (day >= p.first && day <= p.last) {
                    if (from < 0)
                        from = d;
                    to = d;
                }
            }
            if (from < 0)
                continue;
            const int lane = freeLane(used, from, to);
            for (int d = from; d <= to; ++d) {
                take(used[d], lane);
                const int index = rowStart + d;
                MonthLayoutDay &box = result[index];
                if (lane >= capacity(index)) {
                    ++box.overflow;
                    continue;
                }
                MonthLayoutLine line;
                line.item = p.item;
                line.lane = lane;
                line.bar = p.bar;
                line.continuesBefore = days.at(index) > p.first;
                line.continuesAfter = days.at(index) < p.last;
                line.spanInRow = d == from ? to - from + 1 : 0;
                box.lines.append(line);
            }
        }
    }
    for (MonthLayoutDay &box : result)
        std::sort(box.lines.begin(), box.lines.end(),
                  [](const MonthLayoutLine &a, const MonthLayoutLine &b) { return a.lane < b.lane; });
    return result;
}
