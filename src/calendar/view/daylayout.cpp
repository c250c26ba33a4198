#include "calendar/view/daylayout.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <vector>

QList<DayLayoutPlace> LayoutDayEvents(const QList<DayLayoutItem> &items, int minimumMinutes)
{
    const int n = static_cast<int>(items.size());
    QList<DayLayoutPlace> places(n);
    for (int i = 0; i < n; ++i) {
        const DayLayoutItem &it = items.at(i);
        DayLayoutPlace &p = places[i];
        p.id = it.id;
        p.shownStart = it.startMinute;
        p.shownEnd = std::max({it.endMinute, it.startMinute + std::max(minimumMinutes, 1)});
    }

    std::vector<int> order(static_cast<size_t>(n));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        const DayLayoutPlace &pa = places.at(a);
        const DayLayoutPlace &pb = places.at(b);
        if (pa.shownStart != pb.shownStart)
            return pa.shownStart < pb.shownStart;
        return pa.shownEnd > pb.shownEnd;
    });

    // Walk the appointments by start; a cluster closes when the next one
    // starts at or after the latest end seen in it.
    std::vector<int> columnEnds; // end of the last appointment of each column
    std::vector<int> cluster;
    int clusterEnd = 0;
    auto closeCluster = [&] {
        const int count = static_cast<int>(columnEnds.size());
        for (int i : cluster)
            places[i].columns = count;
        cluster.clear();
        columnEnds.clear();
    };
    for (int i : order) {
        DayLayoutPlace &p = places[i];
        if (!cluster.empty() && p.shownStart >= clusterEnd)
            closeCluster();
        auto free = std::find_if(columnEnds.begin(), columnEnds.end(), [&](int end) { return end <= p.shownStart; });
        if (free == columnEnds.end()) {
            p.column = static_cast<int>(columnEnds.size());
            columnEnds.push_back(p.shownEnd);
        } else {
            p.column = static_cast<int>(free - columnEnds.begin());
            *free = p.shownEnd;
        }
        clusterEnd = cluster.empty() ? p.shownEnd : std::max(clusterEnd, p.shownEnd);
        cluster.push_back(i);
    }
    closeCluster();
    return places;
}

int ResizedEdgeMinute(int startMinute, int endMinute, bool beginEdge, int pointerMinute, int stepMinutes)
{
    const int step = std::max(1, stepMinutes);
    const int original = beginEdge ? startMinute : endMinute;
    int edge = static_cast<int>(std::lround(double(pointerMinute) / step)) * step;
    if (std::abs(pointerMinute - original) < std::abs(pointerMinute - edge))
        edge = original;
    const int shortest = std::min(step, std::max(0, endMinute - startMinute));
    return beginEdge ? std::min(edge, endMinute - shortest) : std::max(edge, startMinute + shortest);
}
