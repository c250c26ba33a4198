#pragma once

#include <QDate>
#include <QDateTime>

// The present moment. Every routine that needs "now" or "today" asks here, so
// that tests can fix the clock. Values are local wall-clock times, as the
// practice sees them on its own clocks.
namespace Horloge {

[[nodiscard]] QDateTime maintenant();
[[nodiscard]] QDate aujourdhui();

// Tests only: freeze the clock at a moment, or let it run again.
void fixer(const QDateTime &moment);
void liberer();

// Freezes the clock for the lifetime of the object.
class Fixee final
{
public:
    explicit Fixee(const QDateTime &moment) { fixer(moment); }
    ~Fixee() { liberer(); }
    Fixee(const Fixee &) = delete;
    Fixee &operator=(const Fixee &) = delete;
};

} // namespace Horloge
