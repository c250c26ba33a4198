#pragma once

#include <QList>
#include <QPair>
#include <QString>
#include <QVariant>

#include <optional>

// The property bag of an appointment or a pattern: named values, kept in the
// order in which they were first set. Names are compared exactly.
//
// Two entries are only in transit: process_RecurrenceState and
// process_RecurrencePatternID carry the state and pattern key of a row read from
// the store to the calendar layer. SaveToString never writes them, so they can
// never come back from a store.
class CustomProperties
{
public:
    static inline const QString RecurrenceStateEntry = QStringLiteral("process_RecurrenceState");
    static inline const QString RecurrencePatternIDEntry = QStringLiteral("process_RecurrencePatternID");

    using Entry = QPair<QString, QVariant>;

    // Value of an entry, or an invalid QVariant when there is none.
    [[nodiscard]] QVariant GetProperty(const QString &name) const;
    [[nodiscard]] bool HasProperty(const QString &name) const;
    // Replaces the value in place, or appends a new entry.
    void SetProperty(const QString &name, const QVariant &value);
    // True when an entry was removed.
    bool RemoveProperty(const QString &name);
    void RemoveAll();

    [[nodiscard]] int Count() const { return int(m_entries.size()); }
    [[nodiscard]] bool isEmpty() const { return m_entries.isEmpty(); }
    [[nodiscard]] const QList<Entry> &Entries() const { return m_entries; }
    [[nodiscard]] QStringList Names() const;

    // XML form of the bag, without the transfer entries. An empty bag (or one
    // holding nothing but transfer entries) gives an empty string.
    [[nodiscard]] QString SaveToString() const;
    // Replaces the content by what the text holds. An empty text gives an empty
    // bag; a text that is not a bag leaves the bag empty and answers false.
    bool LoadFromString(const QString &text);

    // For the data layer: reads and removes one transfer entry. The answer is
    // empty when the entry is missing or not a number.
    std::optional<int> TakeTransferEntry(const QString &name);

    friend bool operator==(const CustomProperties &, const CustomProperties &) = default;

private:
    [[nodiscard]] qsizetype indexOf(const QString &name) const;

    QList<Entry> m_entries;
};

// Icon ids shown on an appointment. The system only carries the text through
// load and save; the form is the ids in decimal, separated by commas.
class CustomIcons
{
public:
    [[nodiscard]] const QList<int> &Ids() const { return m_ids; }
    void Add(int id);
    bool Remove(int id);
    void RemoveAll() { m_ids.clear(); }
    [[nodiscard]] int Count() const { return int(m_ids.size()); }

    [[nodiscard]] QString SaveToString() const;
    // Fields that are not whole numbers are skipped.
    void LoadFromString(const QString &text);

    friend bool operator==(const CustomIcons &, const CustomIcons &) = default;

private:
    QList<int> m_ids;
};
